#ifndef RKXMLLIB16_SCHEMA_EMIT_INTERNAL_NAMES_H
#define RKXMLLIB16_SCHEMA_EMIT_INTERNAL_NAMES_H

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace RkXmlSchema {

// The name as a C++ identifier: letters, digits and '_' stay, what else stands between words is dropped and the next
// letter becomes a capital; other letters are written as uXXXX.
std::string ToIdentifier(std::wstring_view name);
// The same with a capital at the beginning: "line-item" is LineItem.
std::string ToPascal(std::wstring_view name);
// The name of an enumerator: as it is where it is an identifier, "v" before a digit, "empty" for no character, "_"
// behind a keyword or a common macro.
std::string ToEnumerator(std::wstring_view text);
// "my::order" or, from the last word of a URI that begins with a letter, "order_1".
std::string ToNamespace(std::wstring_view uri);

// A wide string literal.
std::string ToLiteral(std::wstring_view text);
// Lines of a comment with the text, `indent` blanks in front; what is longer than `most` lines is left out.
std::vector<std::string> ToComment(std::wstring_view text, std::size_t indent, std::size_t most = 8);

// Names in one scope. A name that is taken gets the next number that is free: Item, Item2, Item3.
class CScope {
 public:
  CScope() = default;
  explicit CScope(std::unordered_set<std::string> taken) : m_taken(std::move(taken)) {}
  std::string Add(const std::string& name);
  bool Has(const std::string& name) const { return m_taken.count(name) != 0; }

 private:
  std::unordered_set<std::string> m_taken;
};

// Classes and functions of the library that generated code sees.
const std::unordered_set<std::string>& LibraryNames();
// What may not stand behind Get, Set, Has, Clear and the like, because the library's classes have such functions.
const std::unordered_set<std::string>& LibraryProperties();

}  // namespace RkXmlSchema

#endif

#ifndef RKXMLLIB16_SCHEMA_EMIT_INTERNAL_NAMES_H
#define RKXMLLIB16_SCHEMA_EMIT_INTERNAL_NAMES_H

#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace RkXmlSchema {

using NameSet = std::unordered_set<std::string>;

// The name as a C++ identifier: letters, digits and '_' stay, what else stands between words is dropped and the next
// letter becomes a capital; other letters are written as uXXXX.
std::string ToIdentifier(std::wstring_view name);
// The same with a capital at the beginning: "line-item" is LineItem. "Unnamed" where nothing is left of the name.
std::string ToPascal(std::wstring_view name);
// The name of an enumerator: as it is where it is an identifier, "v" before a digit, "empty" for no character, "_"
// behind a keyword or a common macro.
std::string ToEnumerator(std::wstring_view text);
// From the last word of a URI that begins with a letter: "order_1". "_" behind what stands in the global namespace.
std::string ToNamespace(std::wstring_view uri);
std::string ToNamespaceOfFile(std::wstring_view stem);

// A wide string literal.
std::string ToLiteral(std::wstring_view text);
// Lines of a comment with the text, `indent` blanks in front; what is longer than `most` lines is left out.
std::vector<std::string> ToComment(std::wstring_view text, std::size_t indent, std::size_t most = 8);

// What is made of a name: "New" before it, "Element" behind it.
struct NameForm {
  std::string before;
  std::string behind;
};

// Names in one scope. A name that is taken gets the next number that is free: Item, Item2, Item3.
class CScope {
 public:
  CScope() = default;
  explicit CScope(NameSet taken) : m_taken(std::move(taken)) {}
  // The name with which all its forms are free; they are taken then.
  std::string Add(const std::string& name, std::initializer_list<NameForm> forms = {{"", ""}});
  bool Has(const std::string& name) const { return m_taken.count(name) != 0; }

 private:
  NameSet m_taken;
  std::unordered_map<std::string, int> m_numbers;  // the last ones, so that many equal names take no long search
};

// Words of C++.
const NameSet& Keywords();
// Macros that generated code may see: those of the headers that Generated.h includes, and of others of the C library.
const NameSet& Macros();
bool IsMacro(const std::string& name);
// What a namespace cannot be called: functions of the C library, names of this library that generated code uses.
const NameSet& GlobalNames();
// Names that generated code uses or has itself, as far as those of classes, enumerations and tables could be alike.
const NameSet& LibraryNames();
// What may not stand behind Get, Set, Has, Clear and the like, because the library's classes have such functions.
const NameSet& LibraryProperties();

}  // namespace RkXmlSchema

#endif

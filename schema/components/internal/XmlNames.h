#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_XMLNAMES_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_XMLNAMES_H

#include <string_view>
#include <vector>

// Names of XML 1.0 (fifth edition) and Namespaces in XML, and the other lexical forms of the string types.
namespace RkXmlSchema {

struct CodeRange {
  char32_t first, last;
};

// NameStartChar and NameChar, in ascending order; what \i and \c stand for.
const std::vector<CodeRange>& NameStartRanges();
const std::vector<CodeRange>& NameRanges();

bool IsName(std::wstring_view text);
bool IsNCName(std::wstring_view text);
bool IsNMToken(std::wstring_view text);
bool IsQName(std::wstring_view text);
bool IsLanguage(std::wstring_view text);

constexpr bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r'; }

// Calls `visit` with each token of the text.
template <class Visit>
void ForEachToken(std::wstring_view text, Visit&& visit) {
  for (std::size_t at = 0; at < text.size();) {
    if (IsBlank(text[at])) {
      ++at;
      continue;
    }
    std::size_t end = at;
    while (end < text.size() && !IsBlank(text[end])) ++end;
    visit(text.substr(at, end - at));
    at = end;
  }
}

}  // namespace RkXmlSchema

#endif

#include "RkXmlLib16/document/internal/Names.h"

#include <algorithm>
#include <cstddef>

namespace RkXmlLib16 {

namespace {

struct Range {
  char32_t first, last;
};

// NameStartChar of XML 1.0 (fifth edition) above ASCII, and what NameChar adds to it.
constexpr Range kNameStart[] = {{0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                                {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                                {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
constexpr Range kNameFurther[] = {{0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <std::size_t N>
bool IsIn(const Range (&ranges)[N], char32_t c) {
  return std::any_of(ranges, ranges + N, [c](const Range& r) { return c >= r.first && c <= r.last; });
}

bool IsNameStart(char32_t c) {
  if (c < 0x80) return (c | 0x20u) - U'a' < 26u || c == U'_';
  return IsIn(kNameStart, c);
}

bool IsNameCharacter(char32_t c) {
  return IsNameStart(c) || c - U'0' < 10u || c == U'-' || c == U'.' || (c >= 0x80 && IsIn(kNameFurther, c));
}

template <class Start, class Further>
bool Consists(std::wstring_view text, Start&& start, Further&& further) {
  const auto code = [](wchar_t c) { return static_cast<char32_t>(c); };
  return !text.empty() && start(code(text[0])) &&
         std::all_of(text.begin() + 1, text.end(), [&](wchar_t c) { return further(code(c)); });
}

}  // namespace

bool IsName(std::wstring_view text) {
  return Consists(
      text, [](char32_t c) { return c == U':' || IsNameStart(c); },
      [](char32_t c) { return c == U':' || IsNameCharacter(c); });
}

bool IsNCName(std::wstring_view text) { return Consists(text, IsNameStart, IsNameCharacter); }

bool IsQName(std::wstring_view text) {
  const std::size_t colon = text.find(L':');
  if (colon == std::wstring_view::npos) return IsNCName(text);
  return IsNCName(text.substr(0, colon)) && IsNCName(text.substr(colon + 1));
}

bool IsNamespaceName(std::wstring_view text) {
  return IsXmlText(text) && std::all_of(text.begin(), text.end(), [](wchar_t c) { return c >= L' ' && c != L'|'; });
}

bool IsXmlText(std::wstring_view text) {
  return std::all_of(text.begin(), text.end(), [](wchar_t c) {
    const auto code = static_cast<char32_t>(c);
    return code >= 0x20 ? code < 0xFFFE || code > 0xFFFF : c == L'\t' || c == L'\n' || c == L'\r';
  });
}

}  // namespace RkXmlLib16

#include <algorithm>

#include "RkXmlLib16/types/XsdLexical.h"

namespace RkXmlLib16::Xsd {

namespace {

bool IsIn(const std::vector<CodeRange>& ranges, char32_t c) {
  const auto after = std::upper_bound(ranges.begin(), ranges.end(), c,
                                      [](char32_t code, const CodeRange& r) { return code < r.first; });
  return after != ranges.begin() && c <= std::prev(after)->last;
}

// Surrogates, in pairs above U+FFFF, are name characters of the planes up to 14.
bool IsNameCharacter(wchar_t c) {
  const auto code = static_cast<char32_t>(c);
  return (code & ~0x7FFu) == 0xD800 || IsIn(NameRanges(), code);
}

bool IsNameStart(wchar_t c) {
  const auto code = static_cast<char32_t>(c);
  return (code & ~0x3FFu) == 0xD800 || IsIn(NameStartRanges(), code);
}

}  // namespace

const std::vector<CodeRange>& NameStartRanges() {
  static const std::vector<CodeRange> ranges = {
      {U':', U':'},     {U'A', U'Z'},     {U'_', U'_'},     {U'a', U'z'},      {0xC0, 0xD6},     {0xD8, 0xF6},
      {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D},  {0x2070, 0x218F}, {0x2C00, 0x2FEF},
      {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
  return ranges;
}

const std::vector<CodeRange>& NameRanges() {
  static const std::vector<CodeRange> ranges = {
      {U'-', U'.'},     {U'0', U':'},     {U'A', U'Z'},     {U'_', U'_'},     {U'a', U'z'},     {0xB7, 0xB7},
      {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x37D},    {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x203F, 0x2040},
      {0x2070, 0x218F}, {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
  return ranges;
}

bool IsNMToken(std::wstring_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), IsNameCharacter);
}

bool IsName(std::wstring_view text) { return IsNMToken(text) && IsNameStart(text[0]); }

bool IsNCName(std::wstring_view text) { return IsName(text) && text.find(L':') == std::wstring_view::npos; }

bool IsQName(std::wstring_view text) {
  const std::size_t colon = text.find(L':');
  if (colon == std::wstring_view::npos) return IsNCName(text);
  return IsNCName(text.substr(0, colon)) && IsNCName(text.substr(colon + 1));
}

bool IsLanguage(std::wstring_view text) {
  std::size_t length = 0;
  bool first = true;
  for (const wchar_t c : text) {
    if (c == L'-') {
      if (length == 0) return false;
      length = 0;
      first = false;
      continue;
    }
    const bool letter = (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
    if (!letter && (first || c < L'0' || c > L'9')) return false;
    if (++length > 8) return false;
  }
  return length != 0;
}

}  // namespace RkXmlLib16::Xsd

#ifndef RKXMLLIB16_TYPES_WHITESPACE_H
#define RKXMLLIB16_TYPES_WHITESPACE_H

#include <cstdint>
#include <string>
#include <string_view>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// The whiteSpace facet of XML Schema: Datatypes.
//
//   CWhitespaceUtils::Collapse(L"  a \t b ");  // "a b"
class RKXML_EXPORT CWhitespaceUtils {
 public:
  enum WhitespaceRule : std::int32_t {
    none = 0,      // the text is passed unchanged
    preserve = 1,  // likewise
    replace = 2,   // tab, line feed and carriage return become a blank
    collapse = 3   // replace, then one blank for each run and none at the ends
  };

  // Whether the rule is one of the enumeration.
  static constexpr bool IsRule(WhitespaceRule rule) noexcept { return rule >= none && rule <= collapse; }
  // Blank, tab, carriage return and line feed; nothing else.
  static constexpr bool IsWhiteSpace(wchar_t c) noexcept { return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n'; }
  // Whether a text has no other characters.
  static constexpr bool IsBlank(std::wstring_view text) noexcept {
    for (const wchar_t c : text)
      if (!IsWhiteSpace(c)) return false;
    return true;
  }
  static std::wstring Preserve(const std::wstring& text);
  static std::wstring Replace(const std::wstring& text);
  static std::wstring Collapse(const std::wstring& text);
  // Throws CRkException "Unknown WhitespaceRule" for a rule outside the enumeration.
  static std::wstring ApplyRule(WhitespaceRule rule, const std::wstring& text);
  // The same without a copy where none is needed: the result is a part of `text`, or of `scratch` when the rule changes
  // characters inside it.
  static std::wstring_view ApplyRule(WhitespaceRule rule, std::wstring_view text, std::wstring& scratch);
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_SECTION_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_SECTION_H

#include <string_view>

namespace RkXmlLib16 {

// The marks of a CDATA section (W3C XML 1.0, section 2.7).
inline constexpr std::wstring_view kSectionStart = L"<![CDATA[";
inline constexpr std::wstring_view kSectionEnd = L"]]>";

// Whether the text is a finished section to a writer of XML text that does not escape them.
inline bool StartsSection(std::wstring_view text) {
  return !text.empty() && text.front() == kSectionStart.front() &&
         text.substr(0, kSectionStart.size()) == kSectionStart;
}

}  // namespace RkXmlLib16

#endif

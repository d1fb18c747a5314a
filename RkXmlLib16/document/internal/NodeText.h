#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_NODETEXT_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_NODETEXT_H

#include <cstddef>
#include <string_view>

#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/types/Whitespace.h"

namespace RkXmlLib16 {

// The text of an element or the value of an attribute for one who reads it once: a short part of the input is widened
// here, so that the document does not have to hold it a second time. NUL-terminated; valid as long as this is.
class CNodeText {
 public:
  explicit CNodeText(const CXmlElement& element) : m_text(Find(element, element.m_text)) {}
  explicit CNodeText(const CXmlAttribute& attribute) : m_text(Find(*attribute.m_element, attribute.m_value)) {}
  CNodeText(const CNodeText&) = delete;
  CNodeText& operator=(const CNodeText&) = delete;

  const CXmlText& Get() const noexcept { return m_text; }
  // Whether there is nothing but white space.
  static bool IsBlank(const CXmlElement& element) {
    const CXmlHeldText text = element.m_text.load(std::memory_order_acquire);
    return text.IsNone() || text.IsOfGaps() || CWhitespaceUtils::IsBlank(CNodeText(element).Get());
  }

 private:
  static constexpr std::size_t kFew = 64;

  CXmlText Find(const CXmlElement& element, std::atomic<CXmlHeldText>& held) {
    const CXmlHeldText text = held.load(std::memory_order_acquire);
    if (!text.IsOfInput()) return text.View();
    const CXmlDocument& document = *element.GetDocument();
    const std::size_t length = text.GetLength();
    if (RKXML_UNLIKELY(length > kFew || text.IsOfGaps())) return document.Widen(element, held);
    Ascii::WidenSteps(document.m_textInput + text.GetOffset(), length, m_few);
    m_few[length] = L'\0';
    return {m_few, length};
  }

  CXmlText m_text;
  wchar_t m_few[kFew + 1];
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_BINDING_INTERNAL_VALUETEXT_H
#define RKXMLLIB16_BINDING_INTERNAL_VALUETEXT_H

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/object/Variant.h"
#include "RkXmlLib16/types/Conversions.h"

namespace RkXmlLib16Data {

// The text of a primitive value as it is written: the variant's own, or its lexical form, which is here if it is short,
// else in the writer's buffer.
class ValueText {
 public:
  ValueText(const RkXmlLib16::RkVariant& value, const std::wstring& format, RkXmlLib16::CXmlWriter& writer) {
    if (value.GetItemType() == RkXmlLib16::ItemType_string) {
      m_text = value.GetString();
      return;
    }
    if (format.empty()) {
      m_isCanonical = true;
      if (const wchar_t* const first = value.WriteFew(std::end(m_few))) {
        m_text = {first, static_cast<std::size_t>(std::end(m_few) - first)};
        return;
      }
    }
    std::wstring& text = writer.GetValueBuffer();
    text.clear();
    value.AppendTo(text, format.c_str());
    m_text = text;
  }
  ValueText(const ValueText&) = delete;
  ValueText& operator=(const ValueText&) = delete;

  std::wstring_view Get() const noexcept { return m_text; }
  // Whether it is what the library writes for a value of its type, unless a format says otherwise.
  bool IsCanonical() const noexcept { return m_isCanonical; }

 private:
  std::wstring_view m_text;
  bool m_isCanonical = false;
  wchar_t m_few[RkXmlLib16::CConversions::kFewCharacters];
};

}  // namespace RkXmlLib16Data

#endif

#ifndef RKXMLLIB16_BINDING_INTERNAL_VALUETEXT_H
#define RKXMLLIB16_BINDING_INTERNAL_VALUETEXT_H

#include <string>

#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16Data {

// The text of a primitive value as it is written: its own, or its lexical form in the writer's buffer.
inline const std::wstring& ValueText(const RkXmlLib16::RkVariant& value, const std::wstring& format,
                                     RkXmlLib16::CXmlWriter& writer) {
  if (value.GetItemType() == RkXmlLib16::ItemType_string) return value.GetString();
  std::wstring& text = writer.GetValueBuffer();
  text.clear();
  value.AppendTo(text, format.c_str());
  return text;
}

}  // namespace RkXmlLib16Data

#endif

#ifndef RKXMLLIB16_BINDING_INTERNAL_RECORDTEXT_H
#define RKXMLLIB16_BINDING_INTERNAL_RECORDTEXT_H

#include <string_view>

#include "RkXmlLib16/binding/ElementInfo.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/internal/RecordOutput.h"

namespace RkXmlLib16Data {

inline void CElementInfo::WriteText(const CSerializationContext& context, CXmlWriter* writer, std::wstring_view text,
                                    ItemType type, bool isCanonical) const {
  if (IsDefault(text) && !context.GetWriteDefaultElementValues()) return WriteEmpty(writer);
  RkXmlLib16::CRecordOutput::WriteText(*writer, m_name, text, type, isCanonical);
}

inline void CElementInfo::WriteText(const CSerializationContext& context, std::wstring_view text,
                                    CXmlWriter* writer) const {
  WriteText(context, writer, text, m_itemType, /*isCanonical=*/true);
}

}  // namespace RkXmlLib16Data

#endif

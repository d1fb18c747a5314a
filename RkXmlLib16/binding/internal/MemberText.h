#ifndef RKXMLLIB16_BINDING_INTERNAL_MEMBERTEXT_H
#define RKXMLLIB16_BINDING_INTERNAL_MEMBERTEXT_H

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/binding/ModelObject.h"
#include "RkXmlLib16/binding/internal/ModelClass.h"
#include "RkXmlLib16/document/internal/NodeText.h"

namespace RkXmlLib16 {

// Reads into the member itself, from the text that Text makes of the source. What fails is left to the variant, which
// tells why.
template <class Text, bool mayBeEmpty, class Source>
[[gnu::always_inline]] inline bool CModelObject::TrySetText(int property, const Source& source) {
  const RkXmlLib16Data::ModelProperty& info = m_class.GetProperty(property);
  if (RKXML_UNLIKELY(!info.isPlain || (info.mayRefuse && IsSet(property)))) return false;
  const CMember member = FindMember(property);
  if (RKXML_UNLIKELY(!member.Is(MemberType::Kind::Value))) return false;
  const Text text(source);
  if (!mayBeEmpty && RKXML_UNLIKELY(text.Get().empty())) return false;
  try {
    if (RKXML_UNLIKELY(!member.Type().read(member.At(), info, text.Get()))) return false;
    if (info.mayRefuse && info.member != nullptr && RKXML_UNLIKELY(GetModel().group == XmlElementGroupType_Choice))
      Select(property);
  } catch (const CRkException&) {
    if (!IsSet(property)) member.Type().reset(member.At());
    return false;
  }
  Mark(property);
  return true;
}

inline bool CModelObject::TrySetFrom(int property, const CXmlAttribute& attribute) {
  return TrySetText<CNodeText, /*mayBeEmpty=*/true>(property, attribute);
}

}  // namespace RkXmlLib16

#endif

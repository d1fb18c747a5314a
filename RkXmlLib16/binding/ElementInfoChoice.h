#ifndef RKXMLLIB16_BINDING_ELEMENTINFOCHOICE_H
#define RKXMLLIB16_BINDING_ELEMENTINFOCHOICE_H

#include "RkXmlLib16/binding/ElementInfoKinds.h"

namespace RkXmlLib16Data {

// The members of a choice. A record answers true only when it consumed the element under the cursor; none throws for an
// absent element and none skips one. Objects are stored in the property before they are read, so that the setter can
// refuse a second member, and taken out again when an inline group turns out not to be there.
template <class Kind>
class RKXML_EXPORT CElementInfoChoice : public Kind {
 public:
  using Kind::Kind;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

// clang-format off
#define RKXML_CHOICE_RECORDS(RECORD, COLLECTION)                                   \
  RECORD(CElementInfoChoiceCol,           CElementInfoChoice<CElementInfoCol>)     \
  COLLECTION(CElementInfoChoiceClsCol,    CElementInfoChoiceCol)                   \
  COLLECTION(CElementInfoChoiceAbsClsCol, CElementInfoChoiceCol)                   \
  COLLECTION(CElementInfoChoicePrimCol,   CElementInfoChoiceCol)                   \
  COLLECTION(CElementInfoChoiceEnumCol,   CElementInfoChoiceCol)                   \
  RECORD(CElementInfoChoiceClsOpt,        CElementInfoChoice<CElementInfoCls>)     \
  RECORD(CElementInfoChoiceAbsClsOpt,     CElementInfoChoice<CElementInfoAbsCls>)  \
  RECORD(CElementInfoChoicePrimOpt,       CElementInfoChoice<CElementInfoPrim>)    \
  RECORD(CElementInfoChoiceEnumOpt,       CElementInfoChoice<CElementInfoEnum>)    \
  RECORD(CElementInfoChoiceUntpdOpt,      CElementInfoChoice<CElementInfoUntpd>)
// clang-format on
RKXML_CHOICE_RECORDS(RKXML_DECLARE_RECORD_BASE, RKXML_NO_RECORD_BASE)
RKXML_CHOICE_RECORDS(RKXML_DECLARE_RECORD, RKXML_DECLARE_RECORD)

// Wildcard elements, of any local name when the record is called "AnyElement".
class RKXML_EXPORT CElementInfoChoiceUntpdCol : public CElementInfoChoiceCol {
 public:
  using CElementInfoChoiceCol::CElementInfoChoiceCol;
  ~CElementInfoChoiceUntpdCol() override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

}  // namespace RkXmlLib16Data

#endif

#ifndef RKXMLLIB16_BINDING_ELEMENTINFOSEQ_H
#define RKXMLLIB16_BINDING_ELEMENTINFOSEQ_H

#include "RkXmlLib16/binding/ElementInfoKinds.h"

namespace RkXmlLib16Data {

// The members of a sequence. Each is asked once, in order. When the element of a mandatory one is missing, it throws
// CRkValidationException with the path of the parent, or answers false in an inline owner:
//   Prim, Enum, Cls  "Failed to find the required child element [%ls]."
//   AbsCls           "Failed to find a suitable substitution element for [%ls]."
//   Untpd            the first, or "Failed to find the required element from namespace [%ls]." for another element
// An optional one never skips an element. Writing a mandatory member that is unset throws CRkInvalidParamException
// "The Property [%ls] is mandatory, it may not be NULL".
//
// A `memberType` of 1 is an inline group: its children stand among the parent's, its attributes on the parent's
// element. `required` says that such a group must consume something. The child of a mandatory class member exists
// already when the owner is read; all others are created by the factory.
template <class Kind, Cardinality kCardinality>
class RKXML_EXPORT CElementInfoSeq : public Kind {
 public:
  using Kind::Kind;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

// clang-format off
#define RKXML_SEQUENCE_RECORDS(RECORD, COLLECTION)                                               \
  RECORD(CElementInfoSeqCol,           CElementInfoSeq<CElementInfoCol,      Cardinality::Col>)  \
  COLLECTION(CElementInfoSeqClsCol,    CElementInfoSeqCol)                                       \
  COLLECTION(CElementInfoSeqAbsClsCol, CElementInfoSeqCol)                                       \
  COLLECTION(CElementInfoSeqPrimCol,   CElementInfoSeqCol)                                       \
  COLLECTION(CElementInfoSeqEnumCol,   CElementInfoSeqCol)                                       \
  RECORD(CElementInfoSeqClsMnd,        CElementInfoSeq<CElementInfoClsMnd,   Cardinality::Mnd>)  \
  RECORD(CElementInfoSeqClsOpt,        CElementInfoSeq<CElementInfoCls,      Cardinality::Opt>)  \
  RECORD(CElementInfoSeqAbsClsMnd,     CElementInfoSeq<CElementInfoAbsCls,   Cardinality::Mnd>)  \
  RECORD(CElementInfoSeqAbsClsOpt,     CElementInfoSeq<CElementInfoAbsCls,   Cardinality::Opt>)  \
  RECORD(CElementInfoSeqPrimMnd,       CElementInfoSeq<CElementInfoPrim,     Cardinality::Mnd>)  \
  RECORD(CElementInfoSeqPrimOpt,       CElementInfoSeq<CElementInfoPrim,     Cardinality::Opt>)  \
  RECORD(CElementInfoSeqEnumMnd,       CElementInfoSeq<CElementInfoEnum,     Cardinality::Mnd>)  \
  RECORD(CElementInfoSeqEnumOpt,       CElementInfoSeq<CElementInfoEnum,     Cardinality::Opt>)  \
  RECORD(CElementInfoSeqUntpdMnd,      CElementInfoSeq<CElementInfoUntpdMnd, Cardinality::Mnd>)  \
  RECORD(CElementInfoSeqUntpdOpt,      CElementInfoSeq<CElementInfoUntpd,    Cardinality::Opt>)
// clang-format on
RKXML_SEQUENCE_RECORDS(RKXML_DECLARE_RECORD_BASE, RKXML_NO_RECORD_BASE)
RKXML_SEQUENCE_RECORDS(RKXML_DECLARE_RECORD, RKXML_DECLARE_RECORD)

// Wildcard elements, of any local name when the record is called "AnyElement".
class RKXML_EXPORT CElementInfoSeqUntpdCol : public CElementInfoSeqCol {
 public:
  using CElementInfoSeqCol::CElementInfoSeqCol;
  ~CElementInfoSeqUntpdCol() override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

}  // namespace RkXmlLib16Data

#endif

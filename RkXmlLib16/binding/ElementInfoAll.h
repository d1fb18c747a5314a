#ifndef RKXMLLIB16_BINDING_ELEMENTINFOALL_H
#define RKXMLLIB16_BINDING_ELEMENTINFOALL_H

#include "RkXmlLib16/binding/ElementInfoKinds.h"

namespace RkXmlLib16Data {

// The members of an all group, in any order. A record answers true only when it consumed the element under the cursor;
// a collection never does, though it moves the cursor. What is missing is reported afterwards by Validate, unless it is
// a class member with an element of its own that is not `required`.
template <class Kind, Cardinality kCardinality>
class RKXML_EXPORT CElementInfoAll : public Kind {
 public:
  using Kind::Kind;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
  // Of collections the counts are checked instead.
  bool Validate(const CSerializationContext& context, const CXmlGeneratedClass* object, bool found,
                bool final) const override;
};

// `extra` is handed over by generated code and without meaning to the record.
class RKXML_EXPORT CElementInfoAbsClsExtra : public CElementInfoAbsCls {
 public:
  CElementInfoAbsClsExtra(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                          AbstractClassFactory factory, int extra)
      : CElementInfoAbsCls(name, ns, propertyIndex, memberType, factory), m_extra(extra) {}
  int GetExtra() const noexcept { return m_extra; }

 private:
  int m_extra;
};

// CElementInfoAllEnumCol is abstract: an all group has no repeated enumerations.
// clang-format off
#define RKXML_ALL_RECORDS(RECORD, COLLECTION)                                                       \
  RECORD(CElementInfoAllCol,           CElementInfoAll<CElementInfoCol,         Cardinality::Col>)  \
  COLLECTION(CElementInfoAllClsCol,    CElementInfoAllCol)                                          \
  COLLECTION(CElementInfoAllAbsClsCol, CElementInfoAllCol)                                          \
  COLLECTION(CElementInfoAllPrimCol,   CElementInfoAllCol)                                          \
  COLLECTION(CElementInfoAllEnumCol,   CElementInfoCol)                                             \
  COLLECTION(CElementInfoAllUntpdCol,  CElementInfoAllCol)                                          \
  RECORD(CElementInfoAllClsMnd,        CElementInfoAll<CElementInfoClsMnd,      Cardinality::Mnd>)  \
  RECORD(CElementInfoAllClsOpt,        CElementInfoAll<CElementInfoCls,         Cardinality::Opt>)  \
  RECORD(CElementInfoAllAbsClsMnd,     CElementInfoAll<CElementInfoAbsClsExtra, Cardinality::Mnd>)  \
  RECORD(CElementInfoAllAbsClsOpt,     CElementInfoAll<CElementInfoAbsCls,      Cardinality::Opt>)  \
  RECORD(CElementInfoAllPrimMnd,       CElementInfoAll<CElementInfoPrim,        Cardinality::Mnd>)  \
  RECORD(CElementInfoAllPrimOpt,       CElementInfoAll<CElementInfoPrim,        Cardinality::Opt>)  \
  RECORD(CElementInfoAllEnumMnd,       CElementInfoAll<CElementInfoEnum,        Cardinality::Mnd>)  \
  RECORD(CElementInfoAllEnumOpt,       CElementInfoAll<CElementInfoEnum,        Cardinality::Opt>)  \
  RECORD(CElementInfoAllUntpdMnd,      CElementInfoAll<CElementInfoUntpdMnd,    Cardinality::Mnd>)  \
  RECORD(CElementInfoAllUntpdOpt,      CElementInfoAll<CElementInfoUntpd,       Cardinality::Opt>)
// clang-format on
RKXML_ALL_RECORDS(RKXML_DECLARE_RECORD_BASE, RKXML_NO_RECORD_BASE)
RKXML_ALL_RECORDS(RKXML_DECLARE_RECORD, RKXML_DECLARE_RECORD)

}  // namespace RkXmlLib16Data

#endif

#ifndef RKXMLLIB16_BINDING_ELEMENTINFOSEQ_H
#define RKXMLLIB16_BINDING_ELEMENTINFOSEQ_H

#include <string>

#include "RkXmlLib16/binding/ElementInfo.h"

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

// Any collection.
class RKXML_EXPORT CElementInfoSeqCol : public CElementInfo {
 public:
  CElementInfoSeqCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                     XmlElementType memberType = RkXmlLib16::XmlElementType_Element);
  ~CElementInfoSeqCol() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoSeqClsCol : public CElementInfoSeqCol {
 public:
  CElementInfoSeqClsCol(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType);
  ~CElementInfoSeqClsCol() override;
};

class RKXML_EXPORT CElementInfoSeqAbsClsCol : public CElementInfoSeqCol {
 public:
  CElementInfoSeqAbsClsCol(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType);
  ~CElementInfoSeqAbsClsCol() override;
};

class RKXML_EXPORT CElementInfoSeqPrimCol : public CElementInfoSeqCol {
 public:
  CElementInfoSeqPrimCol(const wchar_t* name, const wchar_t* ns, int propertyIndex);
  ~CElementInfoSeqPrimCol() override;
};

class RKXML_EXPORT CElementInfoSeqEnumCol : public CElementInfoSeqCol {
 public:
  CElementInfoSeqEnumCol(const wchar_t* name, const wchar_t* ns, int propertyIndex);
  ~CElementInfoSeqEnumCol() override;
};

// Wildcard elements, of any local name when the record is called "AnyElement".
class RKXML_EXPORT CElementInfoSeqUntpdCol : public CElementInfoSeqCol {
 public:
  CElementInfoSeqUntpdCol(const wchar_t* name, const wchar_t* ns, int propertyIndex);
  ~CElementInfoSeqUntpdCol() override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoSeqClsMnd : public CElementInfo {
 public:
  CElementInfoSeqClsMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                        ClassFactory factory, int classId, bool required);
  ~CElementInfoSeqClsMnd() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;

 private:
  bool ReadGroup(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                 CXmlElement** cursor, XmlElementType ownerType);

  bool m_required;
};

class RKXML_EXPORT CElementInfoSeqClsOpt : public CElementInfo {
 public:
  CElementInfoSeqClsOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                        ClassFactory factory, int classId);
  ~CElementInfoSeqClsOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoSeqAbsClsMnd : public CElementInfo {
 public:
  CElementInfoSeqAbsClsMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                           AbstractClassFactory factory);
  ~CElementInfoSeqAbsClsMnd() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoSeqAbsClsOpt : public CElementInfo {
 public:
  CElementInfoSeqAbsClsOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                           AbstractClassFactory factory);
  ~CElementInfoSeqAbsClsOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoSeqPrimMnd : public CElementInfo {
 public:
  CElementInfoSeqPrimMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable, ItemType type,
                         const wchar_t* format, CWhitespaceUtils::WhitespaceRule whitespace,
                         const CPrimitiveRestrictions& facets, const wchar_t* defaultValue);
  ~CElementInfoSeqPrimMnd() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoSeqPrimOpt : public CElementInfo {
 public:
  CElementInfoSeqPrimOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable, ItemType type,
                         const wchar_t* format, CWhitespaceUtils::WhitespaceRule whitespace,
                         const CPrimitiveRestrictions& facets, const wchar_t* defaultValue);
  ~CElementInfoSeqPrimOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoSeqEnumMnd : public CElementInfo {
 public:
  CElementInfoSeqEnumMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                         EnumToString enumToString, EnumFromString enumFromString, const wchar_t* defaultValue);
  ~CElementInfoSeqEnumMnd() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoSeqEnumOpt : public CElementInfo {
 public:
  CElementInfoSeqEnumOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                         EnumToString enumToString, EnumFromString enumFromString, const wchar_t* defaultValue);
  ~CElementInfoSeqEnumOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoSeqUntpdMnd : public CElementInfo {
 public:
  CElementInfoSeqUntpdMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, const wchar_t* namespaceConstraint,
                          const wchar_t* targetNamespace);
  ~CElementInfoSeqUntpdMnd() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;

 private:
  std::wstring m_namespaceConstraint;
  std::wstring m_targetNamespace;
};

class RKXML_EXPORT CElementInfoSeqUntpdOpt : public CElementInfo {
 public:
  CElementInfoSeqUntpdOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, const wchar_t* namespaceConstraint,
                          const wchar_t* targetNamespace);
  ~CElementInfoSeqUntpdOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;

 private:
  std::wstring m_namespaceConstraint;
  std::wstring m_targetNamespace;
};

}  // namespace RkXmlLib16Data

#endif

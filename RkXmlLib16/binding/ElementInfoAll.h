#ifndef RKXMLLIB16_BINDING_ELEMENTINFOALL_H
#define RKXMLLIB16_BINDING_ELEMENTINFOALL_H

#include <string>

#include "RkXmlLib16/binding/ElementInfo.h"

namespace RkXmlLib16Data {

// The members of an all group, in any order. A record answers true only when it consumed the element under the cursor;
// a collection never does, though it moves the cursor. What is missing is reported afterwards by Validate, unless it is
// a class member with an element of its own that is not `required`.

// Any collection.
class RKXML_EXPORT CElementInfoAllCol : public CElementInfo {
 public:
  CElementInfoAllCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                     XmlElementType memberType = RkXmlLib16::XmlElementType_Element);
  ~CElementInfoAllCol() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoAllClsCol : public CElementInfoAllCol {
 public:
  CElementInfoAllClsCol(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType);
  ~CElementInfoAllClsCol() override;
};

class RKXML_EXPORT CElementInfoAllAbsClsCol : public CElementInfoAllCol {
 public:
  CElementInfoAllAbsClsCol(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType);
  ~CElementInfoAllAbsClsCol() override;
};

class RKXML_EXPORT CElementInfoAllPrimCol : public CElementInfoAllCol {
 public:
  CElementInfoAllPrimCol(const wchar_t* name, const wchar_t* ns, int propertyIndex);
  ~CElementInfoAllPrimCol() override;
};

// Abstract: an all group has no repeated enumerations.
class RKXML_EXPORT CElementInfoAllEnumCol : public CElementInfo {
 public:
  CElementInfoAllEnumCol(const wchar_t* name, const wchar_t* ns, int propertyIndex);
  ~CElementInfoAllEnumCol() override;
};

class RKXML_EXPORT CElementInfoAllUntpdCol : public CElementInfoAllCol {
 public:
  CElementInfoAllUntpdCol(const wchar_t* name, const wchar_t* ns, int propertyIndex);
  ~CElementInfoAllUntpdCol() override;
};

class RKXML_EXPORT CElementInfoAllClsMnd : public CElementInfo {
 public:
  CElementInfoAllClsMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                        ClassFactory factory, int classId, bool required);
  ~CElementInfoAllClsMnd() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
  bool Validate(const CSerializationContext& context, const CXmlGeneratedClass* object, bool found,
                bool final) const override;

 private:
  bool m_required;
};

class RKXML_EXPORT CElementInfoAllClsOpt : public CElementInfo {
 public:
  CElementInfoAllClsOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                        ClassFactory factory, int classId);
  ~CElementInfoAllClsOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
  bool Validate(const CSerializationContext& context, const CXmlGeneratedClass* object, bool found,
                bool final) const override;
};

class RKXML_EXPORT CElementInfoAllAbsClsMnd : public CElementInfo {
 public:
  CElementInfoAllAbsClsMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                           AbstractClassFactory factory, int extra);
  ~CElementInfoAllAbsClsMnd() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
  bool Validate(const CSerializationContext& context, const CXmlGeneratedClass* object, bool found,
                bool final) const override;

  // Handed over by generated code; without meaning to the record.
  int GetExtra() const noexcept { return m_extra; }

 private:
  int m_extra;
};

class RKXML_EXPORT CElementInfoAllAbsClsOpt : public CElementInfo {
 public:
  CElementInfoAllAbsClsOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                           AbstractClassFactory factory);
  ~CElementInfoAllAbsClsOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
  bool Validate(const CSerializationContext& context, const CXmlGeneratedClass* object, bool found,
                bool final) const override;
};

class RKXML_EXPORT CElementInfoAllPrimMnd : public CElementInfo {
 public:
  CElementInfoAllPrimMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable, ItemType type,
                         const wchar_t* format, CWhitespaceUtils::WhitespaceRule whitespace,
                         const CPrimitiveRestrictions& facets, const wchar_t* defaultValue);
  ~CElementInfoAllPrimMnd() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
  bool Validate(const CSerializationContext& context, const CXmlGeneratedClass* object, bool found,
                bool final) const override;
};

class RKXML_EXPORT CElementInfoAllPrimOpt : public CElementInfo {
 public:
  CElementInfoAllPrimOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable, ItemType type,
                         const wchar_t* format, CWhitespaceUtils::WhitespaceRule whitespace,
                         const CPrimitiveRestrictions& facets, const wchar_t* defaultValue);
  ~CElementInfoAllPrimOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
  bool Validate(const CSerializationContext& context, const CXmlGeneratedClass* object, bool found,
                bool final) const override;
};

class RKXML_EXPORT CElementInfoAllEnumMnd : public CElementInfo {
 public:
  CElementInfoAllEnumMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                         EnumToString enumToString, EnumFromString enumFromString, const wchar_t* defaultValue);
  ~CElementInfoAllEnumMnd() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
  bool Validate(const CSerializationContext& context, const CXmlGeneratedClass* object, bool found,
                bool final) const override;
};

class RKXML_EXPORT CElementInfoAllEnumOpt : public CElementInfo {
 public:
  CElementInfoAllEnumOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                         EnumToString enumToString, EnumFromString enumFromString, const wchar_t* defaultValue);
  ~CElementInfoAllEnumOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
  bool Validate(const CSerializationContext& context, const CXmlGeneratedClass* object, bool found,
                bool final) const override;
};

class RKXML_EXPORT CElementInfoAllUntpdMnd : public CElementInfo {
 public:
  CElementInfoAllUntpdMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, const wchar_t* namespaceConstraint,
                          const wchar_t* targetNamespace);
  ~CElementInfoAllUntpdMnd() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
  bool Validate(const CSerializationContext& context, const CXmlGeneratedClass* object, bool found,
                bool final) const override;

 private:
  std::wstring m_namespaceConstraint;
  std::wstring m_targetNamespace;
};

class RKXML_EXPORT CElementInfoAllUntpdOpt : public CElementInfo {
 public:
  CElementInfoAllUntpdOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, const wchar_t* namespaceConstraint,
                          const wchar_t* targetNamespace);
  ~CElementInfoAllUntpdOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
  bool Validate(const CSerializationContext& context, const CXmlGeneratedClass* object, bool found,
                bool final) const override;

 private:
  std::wstring m_namespaceConstraint;
  std::wstring m_targetNamespace;
};

}  // namespace RkXmlLib16Data

#endif

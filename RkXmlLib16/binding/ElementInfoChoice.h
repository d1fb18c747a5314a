#ifndef RKXMLLIB16_BINDING_ELEMENTINFOCHOICE_H
#define RKXMLLIB16_BINDING_ELEMENTINFOCHOICE_H

#include <string>

#include "RkXmlLib16/binding/ElementInfo.h"

namespace RkXmlLib16Data {

// The members of a choice. A record answers true only when it consumed the element under the cursor; none throws for an
// absent element and none skips one. Objects are stored in the property before they are read, so that the setter can
// refuse a second member, and taken out again when an inline group turns out not to be there.

// Any collection.
class RKXML_EXPORT CElementInfoChoiceCol : public CElementInfo {
 public:
  CElementInfoChoiceCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                        XmlElementType memberType = RkXmlLib16::XmlElementType_Element);
  ~CElementInfoChoiceCol() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoChoiceClsCol : public CElementInfoChoiceCol {
 public:
  CElementInfoChoiceClsCol(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType);
  ~CElementInfoChoiceClsCol() override;
};

class RKXML_EXPORT CElementInfoChoiceAbsClsCol : public CElementInfoChoiceCol {
 public:
  CElementInfoChoiceAbsClsCol(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType);
  ~CElementInfoChoiceAbsClsCol() override;
};

class RKXML_EXPORT CElementInfoChoicePrimCol : public CElementInfoChoiceCol {
 public:
  CElementInfoChoicePrimCol(const wchar_t* name, const wchar_t* ns, int propertyIndex);
  ~CElementInfoChoicePrimCol() override;
};

class RKXML_EXPORT CElementInfoChoiceEnumCol : public CElementInfoChoiceCol {
 public:
  CElementInfoChoiceEnumCol(const wchar_t* name, const wchar_t* ns, int propertyIndex);
  ~CElementInfoChoiceEnumCol() override;
};

// Wildcard elements, of any local name when the record is called "AnyElement".
class RKXML_EXPORT CElementInfoChoiceUntpdCol : public CElementInfoChoiceCol {
 public:
  CElementInfoChoiceUntpdCol(const wchar_t* name, const wchar_t* ns, int propertyIndex);
  ~CElementInfoChoiceUntpdCol() override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoChoiceClsOpt : public CElementInfo {
 public:
  CElementInfoChoiceClsOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                           ClassFactory factory, int classId);
  ~CElementInfoChoiceClsOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoChoiceAbsClsOpt : public CElementInfo {
 public:
  CElementInfoChoiceAbsClsOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                              AbstractClassFactory factory);
  ~CElementInfoChoiceAbsClsOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoChoicePrimOpt : public CElementInfo {
 public:
  CElementInfoChoicePrimOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable, ItemType type,
                            const wchar_t* format, CWhitespaceUtils::WhitespaceRule whitespace,
                            const CPrimitiveRestrictions& facets, const wchar_t* defaultValue);
  ~CElementInfoChoicePrimOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoChoiceEnumOpt : public CElementInfo {
 public:
  CElementInfoChoiceEnumOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                            EnumToString enumToString, EnumFromString enumFromString, const wchar_t* defaultValue);
  ~CElementInfoChoiceEnumOpt() override;
  bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                      CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) override;
};

class RKXML_EXPORT CElementInfoChoiceUntpdOpt : public CElementInfo {
 public:
  CElementInfoChoiceUntpdOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                             const wchar_t* namespaceConstraint, const wchar_t* targetNamespace);
  ~CElementInfoChoiceUntpdOpt() override;
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

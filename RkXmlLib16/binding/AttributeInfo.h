#ifndef RKXMLLIB16_BINDING_ATTRIBUTEINFO_H
#define RKXMLLIB16_BINDING_ATTRIBUTEINFO_H

#include <string>
#include <string_view>

#include "RkXmlLib16/binding/ElementInfo.h"

namespace RkXmlLib16 {
class CXmlAttribute;
}  // namespace RkXmlLib16

namespace RkXmlLib16Data {

using RkXmlLib16::CXmlAttribute;

// Describes one attribute of a generated class. Static; threads share it freely, as they do element records.
class RKXML_EXPORT CAttributeInfo {
 public:
  // `defaultValue` is in lexical form; null or empty for none.
  CAttributeInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool optional, const wchar_t* defaultValue);
  CAttributeInfo(const CAttributeInfo&) = delete;
  CAttributeInfo& operator=(const CAttributeInfo&) = delete;
  virtual ~CAttributeInfo();

  // Writes the attribute onto the open start tag, or nothing.
  virtual void AttributeToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                              CXmlWriter* writer) const = 0;
  // Reads the attribute if it is the record's own; true when it was.
  virtual bool AttributeFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                CXmlAttribute* attribute) = 0;
  // Throws CRkValidationException "Failed to find the required Attribute [%ls].".
  virtual void Validate(const CSerializationContext& context, bool found) const = 0;

  const std::wstring& GetAttributeName() const noexcept { return m_name.GetLocalName(); }
  const std::wstring& GetNamespace() const noexcept { return m_name.GetNamespace(); }
  const RkXmlLib16::CNameToken& GetName() const noexcept { return m_name; }
  int GetPropertyIndex() const noexcept { return m_propertyIndex; }
  bool IsOptional() const noexcept { return m_optional; }
  const std::wstring& GetDefaultValue() const noexcept { return m_defaultValue; }
  // For values of CModelObject that are read by their text alone, so that the driver can do it.
  bool IsModelText() const noexcept { return m_isModelText; }
  void SetModelText() noexcept { m_isModelText = true; }

  // Whether the attribute has the record's local name and, unless the context ignores namespaces, its namespace.
  bool IsThisAttribute(const CSerializationContext& context, CXmlAttribute* attribute) const;
  // The property of `object`. A CRkException of the accessor is wrapped in CRkValidationException
  // "Failed to get the property value for [%ls]." or "Failed to set the property value." with the attribute's path.
  void InvokePropertyGet(CXmlGeneratedClass* object, RkVariant& value) const;
  void ReadProperty(const CXmlGeneratedClass* object, RkVariant& value) const;
  void InvokePropertySet(CXmlGeneratedClass* object, RkVariant& value, const CXmlAttribute& attribute) const;
  // Forward to the object.
  std::wstring GetTargetNamespace(const CXmlObjectBase* object) const;
  void ToXml_Int(const CXmlObjectBase* collection, CXmlWriter* writer, bool registerNamespaces, const wchar_t* ns,
                 const CSerializationContext& context) const;
  // Whether a namespace constraint admits the URI; TestNamespace throws CRkInvalidNamespaceException if not.
  void TestNamespace(const wchar_t* namespaceUri, const wchar_t* constraint, const wchar_t* targetNamespace) const;
  bool IsNamespaceValid(const wchar_t* namespaceUri, const wchar_t* constraint, const wchar_t* targetNamespace) const;

 protected:
  // Whether an optional attribute with this text is left out because it is the default.
  bool IsSuppressedDefault(const CSerializationContext& context, std::wstring_view text) const;
  void ValidateRequired(bool found) const;

 private:
  RkXmlLib16::CNameToken m_name;
  int m_propertyIndex;
  bool m_optional;
  bool m_isModelText = false;
  std::wstring m_defaultValue;
};

// An attribute of an XSD primitive type. Its namespace is compared even when the context ignores namespaces.
class RKXML_EXPORT CAttributeInfoPrimitive : public CAttributeInfo {
 public:
  // `format` may be null; the facets are copied.
  CAttributeInfoPrimitive(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool optional, ItemType type,
                          const wchar_t* format, CWhitespaceUtils::WhitespaceRule whitespace,
                          const CPrimitiveRestrictions& facets, const wchar_t* defaultValue);
  ~CAttributeInfoPrimitive() override;
  void AttributeToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                      CXmlWriter* writer) const override;
  bool AttributeFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                        CXmlAttribute* attribute) override;
  void Validate(const CSerializationContext& context, bool found) const override;

  // Throws CRkException when the value breaks a facet.
  void CheckRestriction(const RkVariant& value) const;
  // For values of CModelObject, which reads and writes their text itself.
  void SetModelValue() noexcept { m_isModelValue = true; }

 private:
  friend class RkXmlLib16::CMetaDataCheck;

  bool m_isModelValue = false;
  CPrimitiveRestrictions m_facets;
  ItemType m_itemType;
  std::wstring m_format;
  CWhitespaceUtils::WhitespaceRule m_whitespace;
};

// An enumerated attribute.
class RKXML_EXPORT CAttributeInfoEnum : public CAttributeInfo {
 public:
  CAttributeInfoEnum(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool optional, EnumToString toString,
                     EnumFromString fromString, const wchar_t* defaultValue);
  ~CAttributeInfoEnum() override;
  void AttributeToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                      CXmlWriter* writer) const override;
  bool AttributeFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                        CXmlAttribute* attribute) override;
  void Validate(const CSerializationContext& context, bool found) const override;

 private:
  friend class RkXmlLib16::CMetaDataCheck;

  EnumFromString m_fromString;
  EnumToString m_toString;
};

// The attributes that a wildcard admits, held in a CAttributeCol.
class RKXML_EXPORT CAttributeInfoAny : public CAttributeInfo {
 public:
  CAttributeInfoAny(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool optional,
                    const wchar_t* namespaceConstraint, const wchar_t* targetNamespace, const wchar_t* defaultValue);
  ~CAttributeInfoAny() override;
  void AttributeToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                      CXmlWriter* writer) const override;
  // Throws CRkException "Serialization Data Error : The collection should be a CAttributeCol, it was not!".
  bool AttributeFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                        CXmlAttribute* attribute) override;
  void Validate(const CSerializationContext& context, bool found) const override;

 private:
  std::wstring m_namespaceConstraint;
  std::wstring m_targetNamespace;
};

}  // namespace RkXmlLib16Data

#endif

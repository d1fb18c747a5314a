#include "RkXmlLib16/binding/AttributeInfo.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/ModelObject.h"
#include "RkXmlLib16/binding/internal/ReadingValue.h"
#include "RkXmlLib16/collections/CollectionBase.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/document/internal/NodeText.h"
#include "RkXmlLib16/facets/FacetChecks.h"
#include "RkXmlLib16/object/Variant.h"
#include "RkXmlLib16/wildcards/AttributeCol.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

CAttributeInfo::CAttributeInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool optional,
                               const wchar_t* defaultValue)
    : m_name(TextOrEmpty(name), TextOrEmpty(ns)),
      m_propertyIndex(propertyIndex),
      m_optional(optional),
      m_defaultValue(TextOrEmpty(defaultValue)) {}

CAttributeInfo::~CAttributeInfo() = default;

bool CAttributeInfo::IsThisAttribute(const CSerializationContext& context, CXmlAttribute* attribute) const {
  return attribute != nullptr && attribute->GetLocalName() == GetAttributeName() &&
         (context.GetIgnoreNamespaces() || attribute->GetNamespaceURI() == GetNamespace());
}

void CAttributeInfo::InvokePropertyGet(CXmlGeneratedClass* object, RkVariant& value) const {
  GetProperty(*object, m_propertyIndex, m_name, value);
}

void CAttributeInfo::ReadProperty(const CXmlGeneratedClass* object, RkVariant& value) const {
  InvokePropertyGet(const_cast<CXmlGeneratedClass*>(object), value);  // a getter changes nothing
}

void CAttributeInfo::InvokePropertySet(CXmlGeneratedClass* object, RkVariant& value,
                                       const CXmlAttribute& attribute) const {
  try {
    object->AccessProperty(m_propertyIndex, /*get=*/false, value);
  } catch (const CRkException& e) {
    throw CRkValidationException(L"Failed to set the property value.", attribute.GetXPath(), e);
  }
}

std::wstring CAttributeInfo::GetTargetNamespace(const CXmlObjectBase* object) const {
  return object->GetTargetNamespace();
}

void CAttributeInfo::ToXml_Int(const CXmlObjectBase* collection, CXmlWriter* writer, bool registerNamespaces,
                               const wchar_t* ns, const CSerializationContext& context) const {
  collection->ToXml_Int(writer, registerNamespaces, ns, context, /*isOptionalChoice=*/false);
}

void CAttributeInfo::TestNamespace(const wchar_t* namespaceUri, const wchar_t* constraint,
                                   const wchar_t* targetNamespace) const {
  CXmlObjectHelper::TestNamespace(TextOrEmpty(namespaceUri), TextOrEmpty(constraint), TextOrEmpty(targetNamespace));
}

bool CAttributeInfo::IsNamespaceValid(const wchar_t* namespaceUri, const wchar_t* constraint,
                                      const wchar_t* targetNamespace) const {
  return CXmlObjectHelper::IsNamespaceValid(TextOrEmpty(namespaceUri), TextOrEmpty(constraint),
                                            TextOrEmpty(targetNamespace));
}

bool CAttributeInfo::IsSuppressedDefault(const CSerializationContext& context, std::wstring_view text) const {
  return m_optional && !m_defaultValue.empty() && context.GetNoOptionalAttributeDefaultOutput() &&
         text == m_defaultValue;
}

void CAttributeInfo::ValidateRequired(bool found) const {
  if (!m_optional && !found)
    throw CRkValidationException(
        FormatString(L"Failed to find the required Attribute [%ls].", GetAttributeName().c_str()), std::wstring());
}

CAttributeInfoPrimitive::CAttributeInfoPrimitive(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                 bool optional, ItemType type, const wchar_t* format,
                                                 CWhitespaceUtils::WhitespaceRule whitespace,
                                                 const CPrimitiveRestrictions& facets, const wchar_t* defaultValue)
    : CAttributeInfo(name, ns, propertyIndex, optional, defaultValue),
      m_facets(facets),
      m_itemType(type),
      m_format(TextOrEmpty(format)),
      m_whitespace(whitespace) {}

CAttributeInfoPrimitive::~CAttributeInfoPrimitive() = default;

void CAttributeInfoPrimitive::CheckRestriction(const RkVariant& value) const {
  CXmlObjectHelper::CheckRestriction(GetAttributeName().c_str(), value, m_itemType, m_facets);
}

void CAttributeInfoPrimitive::AttributeToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                             CXmlWriter* writer) const {
  RkVariant& value = writer->BeginValue();
  ReadProperty(object, value);
  if (IsOptional() && !value.IsValid()) return;
  const ItemType type = value.GetItemType();
  TextSpace space(writer->GetValueBuffer());
  const std::wstring_view text = value.GetText(space, m_format.c_str());
  if (IsSuppressedDefault(context, text)) return;
  if (type != m_itemType || !m_facets.IsEmpty()) CheckRestriction(value);
  writer->Attribute(GetName(), text, type, /*isCanonical=*/m_format.empty());
}

bool CAttributeInfoPrimitive::AttributeFromXml(const CSerializationContext&, CXmlGeneratedClass* object,
                                               CXmlAttribute* attribute) {
  if (!attribute->GetNameRef()->Is(GetName())) return false;
  const CNodeText held(*attribute);
  const CXmlText& text = held.Get();
  bool isValue = false;
  try {
    if (m_isModelValue) {
      static_cast<CModelObject*>(object)->SetFromText(GetPropertyIndex(), text, *attribute, isValue);
    } else {
      ReadingValue value(text.size());
      value.Get().FromText(text, m_itemType, m_whitespace);
      isValue = true;
      InvokePropertySet(object, value.Get(), *attribute);
    }
  } catch (CRkException& e) {
    if (!isValue) e.SetRefusedValue({GetAttributeName(), text, NameOfXsdType(m_itemType), {}, {}});
    throw;
  }
  return true;
}

void CAttributeInfoPrimitive::Validate(const CSerializationContext&, bool found) const { ValidateRequired(found); }

CAttributeInfoEnum::CAttributeInfoEnum(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool optional,
                                       EnumToString toString, EnumFromString fromString, const wchar_t* defaultValue)
    : CAttributeInfo(name, ns, propertyIndex, optional, defaultValue), m_fromString(fromString), m_toString(toString) {}

CAttributeInfoEnum::~CAttributeInfoEnum() = default;

void CAttributeInfoEnum::AttributeToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                        CXmlWriter* writer) const {
  RkVariant& value = writer->BeginValue();
  ReadProperty(object, value);
  if (IsOptional() && !value.IsValid()) return;
  const std::wstring_view text = TextOrEmpty(m_toString(static_cast<int>(value.GetI4())));
  if (IsSuppressedDefault(context, text)) return;
  writer->Attribute(GetName(), text, ItemType_string);
}

bool CAttributeInfoEnum::AttributeFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                          CXmlAttribute* attribute) {
  if (!IsThisAttribute(context, attribute)) return false;
  const CNodeText text(*attribute);
  ReadingValue value(/*charCount=*/0);
  try {
    value.Get().SetI4(m_fromString(text.Get().c_str()));
  } catch (CRkException& e) {
    e.SetRefusedValue({GetAttributeName(), text.Get(), L"string", RkFacet_Enumeration, {}});
    throw;
  }
  InvokePropertySet(object, value.Get(), *attribute);
  return true;
}

void CAttributeInfoEnum::Validate(const CSerializationContext&, bool found) const { ValidateRequired(found); }

CAttributeInfoAny::CAttributeInfoAny(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool optional,
                                     const wchar_t* namespaceConstraint, const wchar_t* targetNamespace,
                                     const wchar_t* defaultValue)
    : CAttributeInfo(name, ns, propertyIndex, optional, defaultValue),
      m_namespaceConstraint(TextOrEmpty(namespaceConstraint)),
      m_targetNamespace(TextOrEmpty(targetNamespace)) {}

CAttributeInfoAny::~CAttributeInfoAny() = default;

void CAttributeInfoAny::AttributeToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                       CXmlWriter* writer) const {
  RkVariant value;
  ReadProperty(object, value);
  const CSmartPtr<CXmlCollectionBase> collection = value.GetXmlCollection();
  if (collection != nullptr) ToXml_Int(collection, writer, false, GetTargetNamespace(object).c_str(), context);
}

bool CAttributeInfoAny::AttributeFromXml(const CSerializationContext&, CXmlGeneratedClass* object,
                                         CXmlAttribute* attribute) {
  if (!IsNamespaceValid(attribute->GetNamespaceURI().c_str(), m_namespaceConstraint.c_str(), m_targetNamespace.c_str()))
    return false;
  RkVariant value;
  ReadProperty(object, value);
  auto* attributes = dynamic_cast<CAttributeCol*>(value.GetXmlCollection().Get());
  if (attributes == nullptr)
    throw CRkException(L"Serialization Data Error : The collection should be a CAttributeCol, it was not!");
  attributes->Add(*attribute);
  return true;
}

void CAttributeInfoAny::Validate(const CSerializationContext&, bool) const {}

}  // namespace RkXmlLib16Data

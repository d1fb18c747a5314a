#include "RkXmlLib16/wildcards/AttributeCol.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/NeverDestroyed.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/document/internal/NodeText.h"
#include "RkXmlLib16/wildcards/internal/NameTest.h"

namespace RkXmlLib16 {

namespace {

const CNeverDestroyed<std::wstring> kNoNamespace;

}  // namespace

CAttribute::CAttribute() = default;

CAttribute::CAttribute(const wchar_t* localName, const wchar_t* value, const wchar_t* namespaceUri) {
  const std::wstring_view uri = TextOrEmpty(namespaceUri);
  if (!uri.empty()) m_namespaceUri = std::make_shared<const std::wstring>(uri);
  SetElementName(localName);
  SetValue(value);
}

CAttribute::CAttribute(const CXmlAttribute& source)
    : m_value(CNodeText(source).Get().View()),
      m_namespaceUri(source.GetElement()->GetDocument()->ShareName(source.GetNamespaceRef())) {
  m_elementName.Set(source.GetLocalName());
}

CAttribute::~CAttribute() = default;

CXmlObjectBase* CAttribute::GetBase() { return this; }
const wchar_t* CAttribute::GetTargetNamespace() const { return GetNamespace(); }
const wchar_t* CAttribute::GetNamespace() const { return GetNamespaceRef().c_str(); }
const std::wstring& CAttribute::GetNamespaceRef() const noexcept {
  return m_namespaceUri != nullptr ? *m_namespaceUri : kNoNamespace.Get();
}
void CAttribute::SetValue(const wchar_t* value) { m_value = TextOrEmpty(value); }

void CAttribute::AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& /*context*/) const {
  writer->Attribute(m_elementName, m_namespaceUri, m_value, ItemType_string);
}

void CAttribute::ToXml_Int(CXmlWriter* writer, bool /*registerNamespaces*/, const wchar_t* /*namespaceUri*/,
                           const CSerializationContext& context, bool /*isOptionalChoice*/) const {
  AttributesToXml_Int(writer, context);
}

CXmlElement* CAttribute::FromXml_Int(CXmlElement* /*element*/, CXmlElement* /*firstChild*/,
                                     const CSerializationContext& /*context*/, bool /*isOptionalChoice*/) {
  throw CRkException(L"An attribute cannot be read from an element.");
}

CAttributeCol::CAttributeCol() = default;

CAttributeCol::CAttributeCol(const wchar_t* constraint, const wchar_t* targetNamespace)
    : m_rule(constraint, targetNamespace) {}

CAttributeCol::~CAttributeCol() = default;

void CAttributeCol::ToXml_Int(CXmlWriter* writer, bool /*registerNamespaces*/, const wchar_t* /*namespaceUri*/,
                              const CSerializationContext& context, bool /*isOptionalChoice*/) const {
  AttributesToXml_Int(writer, context);
}

CXmlElement* CAttributeCol::FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                        const CSerializationContext& /*context*/, bool /*isOptionalChoice*/) {
  for (const CXmlAttribute* attribute : element->GetAttributes()) {
    if (attribute->IsNamespaceAttribute() || !m_rule.Admits(attribute->GetNamespaceURI())) continue;
    Add(*attribute);
  }
  return firstChild;
}

const wchar_t* CAttributeCol::GetNamespaceConstraint() const noexcept { return m_rule.GetConstraint(); }

const wchar_t* CAttributeCol::GetConstraintTargetNamespace() const noexcept { return m_rule.GetTargetNamespace(); }

void CAttributeCol::Test(const CAttribute* attribute) const {
  if (attribute != nullptr) m_rule.TestAttribute(attribute->GetLocalName(), attribute->GetNamespaceRef());
}

void CAttributeCol::Add(const wchar_t* localName, const wchar_t* value, const wchar_t* namespaceUri) {
  const CSmartPtr<CAttribute> attribute(new CAttribute(localName, value, namespaceUri));
  Add(attribute);
}

void CAttributeCol::Add(CAttribute* attribute) { AppendItem(attribute); }

void CAttributeCol::Add(const CXmlAttribute& source) {
  const CSmartPtr<CAttribute> attribute(new CAttribute(source));
  Add(attribute);
}

void CAttributeCol::AppendItem(CAttribute* attribute) {
  Test(attribute);
  CXmlCollection::AppendItem(attribute);
}

void CAttributeCol::PrependItem(CAttribute* attribute) {
  Test(attribute);
  CXmlCollection::PrependItem(attribute);
}

void CAttributeCol::AddItemAt(int index, CAttribute* attribute) {
  Test(attribute);
  CXmlCollection::AddItemAt(index, attribute);
}

void CAttributeCol::AddAfterItem(const CXmlObjectBase* existing, CAttribute* attribute) {
  Test(attribute);
  CXmlCollection::AddAfterItem(existing, attribute);
}

void CAttributeCol::AddBeforeItem(const CXmlObjectBase* existing, CAttribute* attribute) {
  Test(attribute);
  CXmlCollection::AddBeforeItem(existing, attribute);
}

CAttribute* CAttributeCol::Item(int index) const { return CAttribute::Of(GetNodeAtIndex(index)->GetItem()); }

CAttribute* CAttributeCol::Find(const wchar_t* localName, const wchar_t* namespaceUri) const {
  CNameTest isWanted(localName, namespaceUri);
  for (const CNode* node = GetFirstNode(); node != nullptr; node = node->GetNext()) {
    CAttribute* const attribute = CAttribute::Of(node->GetItem());
    if (attribute != nullptr && isWanted(attribute->GetLocalName(), attribute->m_namespaceUri)) return attribute;
  }
  return nullptr;
}

std::wstring CAttributeCol::GetValue(const wchar_t* localName, const wchar_t* namespaceUri) const {
  const CAttribute* const attribute = Find(localName, namespaceUri);
  return attribute != nullptr ? attribute->GetValue() : std::wstring();
}

CSmartPtr<CAttributeCol> CSerializationContext::GetAdditionalRootAttributes() const {
  return m_settings.additionalRootAttributes.Get([] {
    return std::shared_ptr<CAttributeCol>(CSmartPtr<CAttributeCol>(new CAttributeCol).Detach(),
                                          [](CAttributeCol* attributes) { attributes->Release(); });
  });
}

}  // namespace RkXmlLib16

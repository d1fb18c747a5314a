#include "RkXmlLib16/wildcards/ElementCol.h"

#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/context/internal/ErrorSession.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/wildcards/internal/NameTest.h"

namespace RkXmlLib16 {

CElementCol::CElementCol() = default;

CElementCol::CElementCol(const wchar_t* name, const wchar_t* namespaceUri, int minOccurs, int maxOccurs,
                         const wchar_t* constraint, const wchar_t* targetNamespace)
    : CXmlCollection(name, namespaceUri, minOccurs, maxOccurs), m_rule(constraint, targetNamespace) {}

CElementCol::~CElementCol() = default;

void CElementCol::ToXml_Int(CXmlWriter* writer, bool /*registerNamespaces*/, const wchar_t* namespaceUri,
                            const CSerializationContext& context, bool isOptionalChoice) const {
  ValidateCount(context);
  for (CItemWalk<sizeof(CElement)> walk(*this); walk.Advance();) {
    const CXmlObjectBase* const item = walk.GetItem();
    if (IsToBeWritten(item, context)) item->ToXml_Int(writer, false, namespaceUri, context, isOptionalChoice);
  }
}

CXmlElement* CElementCol::FromXml_Int(CXmlElement* /*parent*/, CXmlElement* current,
                                      const CSerializationContext& context, bool /*isOptionalChoice*/) {
  while (current != nullptr && m_rule.Admits(current->GetNamespaceURI())) current = TakeElement(current, context);
  return current;
}

CXmlElement* CElementCol::FromXmlLockElementName_Int(const wchar_t* elementName, const wchar_t* /*namespaceUri*/,
                                                     CXmlElement* /*parent*/, CXmlElement* current,
                                                     const CSerializationContext& context) {
  const std::wstring_view name(TextOrEmpty(elementName));
  while (current != nullptr && current->GetLocalName() == name && m_rule.Admits(current->GetNamespaceURI()))
    current = TakeElement(current, context);
  return current;
}

CXmlElement* CElementCol::TakeElement(CXmlElement* element, const CSerializationContext& context) {
  CErrorSession::NoteRead(context, element);
  const CSmartPtr<CElement> item(new CElement(m_rule, *element, context));
  CXmlCollection::AppendItem(item);
  return element->GetNextSiblingElement();
}

const wchar_t* CElementCol::GetNamespaceConstraint() const noexcept { return m_rule.GetConstraint(); }

const wchar_t* CElementCol::GetConstraintTargetNamespace() const noexcept { return m_rule.GetTargetNamespace(); }

void CElementCol::Test(const CElement* element) const {
  if (element != nullptr)
    m_rule.TestElement(element->m_namespaceUri != nullptr ? *element->m_namespaceUri : std::wstring_view());
}

void CElementCol::Add(CElement* element) { AppendItem(element); }

void CElementCol::AppendItem(CElement* element) {
  Test(element);
  CXmlCollection::AppendItem(element);
}

void CElementCol::PrependItem(CElement* element) {
  Test(element);
  CXmlCollection::PrependItem(element);
}

void CElementCol::AddItemAt(int index, CElement* element) {
  Test(element);
  CXmlCollection::AddItemAt(index, element);
}

void CElementCol::AddAfterItem(const CXmlObjectBase* existing, CElement* element) {
  Test(element);
  CXmlCollection::AddAfterItem(existing, element);
}

void CElementCol::AddBeforeItem(const CXmlObjectBase* existing, CElement* element) {
  Test(element);
  CXmlCollection::AddBeforeItem(existing, element);
}

CElement* CElementCol::Item(int index) const { return dynamic_cast<CElement*>(GetNodeAtIndex(index)->GetItem()); }

CElement* CElementCol::Find(const wchar_t* localName, const wchar_t* namespaceUri) const {
  CNameTest isWanted(localName, namespaceUri);
  for (const CNode* node = GetFirstNode(); node != nullptr; node = node->GetNext()) {
    auto* const element = dynamic_cast<CElement*>(node->GetItem());
    if (element != nullptr && isWanted(element->GetElementNameRef(), element->m_namespaceUri)) return element;
  }
  return nullptr;
}

}  // namespace RkXmlLib16

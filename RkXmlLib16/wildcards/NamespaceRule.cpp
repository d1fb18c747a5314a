#include "RkXmlLib16/wildcards/NamespaceRule.h"

#include "RkXmlLib16/core/Exception.h"
#include "RkXmlLib16/core/internal/TextOrEmpty.h"
#include "RkXmlLib16/metadata/FacetChecks.h"
#include "RkXmlLib16/support/Format.h"

namespace RkXmlLib16 {

CNamespaceRule::CNamespaceRule(const wchar_t* constraint, const wchar_t* targetNamespace) {
  const std::wstring text(constraint != nullptr ? constraint : L"##any");
  const std::wstring target(TextOrEmpty(targetNamespace));
  if (text != L"##any" || !target.empty()) m_texts = std::make_shared<const Texts>(Texts{text, target});
}

bool CNamespaceRule::Admits(const wchar_t* namespaceUri) const {
  return m_texts == nullptr ||
         CXmlObjectHelper::IsNamespaceValid(namespaceUri, m_texts->constraint, m_texts->targetNamespace);
}

void CNamespaceRule::TestElement(const wchar_t* namespaceUri) const {
  if (Admits(namespaceUri)) return;
  throw CRkInvalidNamespaceException(FormatString(L"Invalid Namespace [%ls].", namespaceUri), L"");
}

void CNamespaceRule::TestAttribute(const wchar_t* localName, const wchar_t* namespaceUri) const {
  if (Admits(namespaceUri)) return;
  throw CRkInvalidNamespaceException(
      FormatString(L"Invalid Attribute [%ls]. The attributes namespace is Inappropriate.", localName), L"");
}

const wchar_t* CNamespaceRule::GetConstraint() const noexcept {
  return m_texts != nullptr ? m_texts->constraint.c_str() : L"##any";
}

const wchar_t* CNamespaceRule::GetTargetNamespace() const noexcept {
  return m_texts != nullptr ? m_texts->targetNamespace.c_str() : L"";
}

}  // namespace RkXmlLib16

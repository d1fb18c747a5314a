#include "RkXmlLib16/wildcards/NamespaceRule.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/facets/internal/NamespaceConstraint.h"

namespace RkXmlLib16 {

namespace {

constexpr const wchar_t* kAny = L"##any";

}  // namespace

CNamespaceRule::CNamespaceRule(const wchar_t* constraint, const wchar_t* targetNamespace) {
  const std::wstring_view text = constraint != nullptr ? constraint : kAny;
  const std::wstring_view target = TextOrEmpty(targetNamespace);
  if (text == kAny && target.empty()) return;
  m_admitsAll = false;
  m_constraint.Set(text);
  m_targetNamespace.Set(target);
}

bool CNamespaceRule::Admits(std::wstring_view namespaceUri) const {
  return m_admitsAll || IsNamespaceAdmitted(namespaceUri, m_constraint.Get(), m_targetNamespace.Get());
}

void CNamespaceRule::TestElement(std::wstring_view namespaceUri) const {
  if (Admits(namespaceUri)) return;
  throw CRkInvalidNamespaceException(FormatString(L"Invalid Namespace [%ls].", std::wstring(namespaceUri).c_str()),
                                     L"");
}

void CNamespaceRule::TestAttribute(const std::wstring& localName, std::wstring_view namespaceUri) const {
  if (Admits(namespaceUri)) return;
  throw CRkInvalidNamespaceException(
      FormatString(L"Invalid Attribute [%ls]. The attributes namespace is Inappropriate.", localName.c_str()), L"");
}

const wchar_t* CNamespaceRule::GetConstraint() const noexcept {
  return m_admitsAll ? kAny : m_constraint.Get().c_str();
}

const wchar_t* CNamespaceRule::GetTargetNamespace() const noexcept { return m_targetNamespace.Get().c_str(); }

}  // namespace RkXmlLib16

#include "RkXmlLib16/facets/internal/NamespaceConstraint.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/facets/FacetChecks.h"

namespace RkXmlLib16 {

namespace {

bool Admits(std::wstring_view token, std::wstring_view uri, std::wstring_view targetNamespace) {
  if (token == L"##any") return true;
  if (token == L"##other") return uri != targetNamespace;
  if (token == L"##local") return uri.empty();
  if (token == L"##targetNamespace") return uri == targetNamespace;
  return uri == token;
}

}  // namespace

bool IsNamespaceAdmitted(std::wstring_view uri, std::wstring_view constraint, std::wstring_view targetNamespace) {
  for (;;) {
    const std::size_t blank = constraint.find(L' ');
    if (Admits(constraint.substr(0, blank), uri, targetNamespace)) return true;
    if (blank == std::wstring_view::npos) return false;
    constraint.remove_prefix(blank + 1);
  }
}

bool CXmlObjectHelper::IsNamespaceValid(const std::wstring& uri, const std::wstring& constraint,
                                        const std::wstring& targetNamespace) {
  return IsNamespaceAdmitted(uri, constraint, targetNamespace);
}

void CXmlObjectHelper::TestNamespace(const std::wstring& uri, const std::wstring& constraint,
                                     const std::wstring& targetNamespace) {
  if (IsNamespaceAdmitted(uri, constraint, targetNamespace)) return;
  throw CRkInvalidNamespaceException(
      FormatString(L"Invalid namespace [%ls]. The namespace must be one of [%ls] where the target namespace is [%ls].",
                   uri.c_str(), constraint.c_str(), targetNamespace.c_str()),
      std::wstring());
}

}  // namespace RkXmlLib16

#ifndef RKXMLLIB16_WILDCARDS_NAMESPACERULE_H
#define RKXMLLIB16_WILDCARDS_NAMESPACERULE_H

#include <string_view>

#include "RkXmlLib16/base/SharedName.h"

namespace RkXmlLib16 {

// The namespaces that a wildcard admits, as its schema states them: "##any", "##other", "##local", "##targetNamespace",
// URIs, or a list of these with single blanks. Cheap to copy.
class CNamespaceRule {
 public:
  // Admits every namespace.
  CNamespaceRule() = default;
  // A null constraint is "##any".
  CNamespaceRule(const wchar_t* constraint, const wchar_t* targetNamespace);

  bool Admits(std::wstring_view namespaceUri) const;
  // Throws CRkInvalidNamespaceException "Invalid Namespace [%ls].".
  void TestElement(std::wstring_view namespaceUri) const;
  // Throws CRkInvalidNamespaceException "Invalid Attribute [%ls]. The attributes namespace is Inappropriate.".
  void TestAttribute(const std::wstring& localName, std::wstring_view namespaceUri) const;

  const wchar_t* GetConstraint() const noexcept;
  const wchar_t* GetTargetNamespace() const noexcept;

 private:
  bool m_admitsAll = true;
  CSharedName m_constraint;  // neither is set when all are admitted
  CSharedName m_targetNamespace;
};

}  // namespace RkXmlLib16

#endif

#include <set>
#include <string>

#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlLib16 {

namespace {

bool HasElementWithoutNamespace(const CXmlElement* element) {
  while (element != nullptr) {
    if (element->GetNamespaceURI().empty()) return true;
    const CXmlElement* next = element->GetFirstElement();
    for (; next == nullptr && element != nullptr; element = element->GetParentElement())
      next = element->GetNextSiblingElement();
    element = next;
  }
  return false;
}

}  // namespace

void CSerializationContext::TakeNamespaces(const CXmlDocument& document) {
  const CXmlElement* const root = document.GetDocumentElement();
  if (root == nullptr) return;
  CNamespaceAliasMap& aliases = GetNamespaceAliases();
  std::set<std::wstring> used;
  for (const auto& [uri, alias] : aliases.GetEntries()) used.insert(alias);
  const auto add = [&](const CXmlText& prefix, const CXmlText& uri) {
    if (prefix.empty() || uri.empty() || aliases.DoesNamespaceExist(uri.c_str())) return;
    if (used.insert(prefix.ToString()).second) aliases.Add(prefix.c_str(), uri.c_str());
  };
  const auto declarations = document.GetDeclarations(root);
  for (const auto& declaration : declarations) add(declaration.prefix->GetText(), declaration.namespaceUri->GetText());
  // What the root means by a second prefix of a namespace stands, whatever an inner element means by it.
  for (const auto& declaration : declarations) used.insert(declaration.prefix->GetText().ToString());
  for (const auto& [prefix, uri] : document.GetNamespaceAliases()) add(prefix, uri);
  // An inner element may have declared another default than the root's; the root's counts. An element without namespace
  // could not be told from one in the default namespace.
  const bool rootHasPrefix = aliases.DoesNamespaceExist(root->GetNamespaceURI().c_str());
  const CXmlText defaultNamespace = rootHasPrefix ? document.LookupNamespaceFromAlias(L"") : root->GetNamespaceURI();
  if (GetDefaultNamespaceURI().empty() && !defaultNamespace.empty() && !HasElementWithoutNamespace(root))
    SetDefaultNamespaceURI(defaultNamespace.c_str());
}

}  // namespace RkXmlLib16

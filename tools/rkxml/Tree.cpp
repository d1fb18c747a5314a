#include "Tree.h"

#include <set>
#include <string>

using namespace RkXmlLib16;

namespace {

bool HasElementWithoutNamespace(const CXmlDocument& document) {
  for (TreeWalk walk(document); walk; walk.Next()) {
    if (walk->GetNamespaceURI().empty()) return true;
  }
  return false;
}

}  // namespace

void TreeWalk::Next() {
  if (const CXmlElement* const child = m_element->GetFirstElement()) {
    m_element = child;
    ++m_depth;
    return;
  }
  while (m_element != nullptr && m_element->GetNextSiblingElement() == nullptr) {
    m_element = m_element->GetParentElement();
    --m_depth;
  }
  if (m_element != nullptr) m_element = m_element->GetNextSiblingElement();
}

void KeepPrefixes(const CXmlDocument& document, CSerializationContext& context) {
  CNamespaceAliasMap& aliases = context.GetNamespaceAliases();
  for (const auto& [prefix, uri] : document.GetNamespaceAliases()) {
    if (!prefix.empty() && !uri.empty() && !aliases.DoesNamespaceExist(uri.c_str())) {
      aliases.Add(prefix.c_str(), uri.c_str());
    }
  }
  // An inner element may have declared another default than the root's; the root's counts. An element without namespace
  // could not be told from one in the default namespace.
  const CXmlText rootNamespace = document.GetDocumentElement()->GetNamespaceURI();
  const CXmlText lastDefault = document.LookupNamespaceFromAlias(L"");
  const bool rootHasPrefix = aliases.DoesNamespaceExist(rootNamespace.c_str());
  const CXmlText defaultNamespace = rootHasPrefix ? lastDefault : rootNamespace;
  if (!defaultNamespace.empty() && !HasElementWithoutNamespace(document)) {
    context.SetDefaultNamespaceURI(defaultNamespace.c_str());
  }
}

void AddPrefixes(const CXmlDocument& document, CSerializationContext& context) {
  CNamespaceAliasMap& aliases = context.GetNamespaceAliases();
  std::set<std::wstring> taken;
  for (const auto& [uri, prefix] : aliases.GetEntries()) taken.insert(prefix);
  int number = 0;
  const auto require = [&](const CXmlText& uri) {
    if (uri.empty() || uri == L"http://www.w3.org/XML/1998/namespace" || aliases.DoesNamespaceExist(uri.c_str()))
      return;
    std::wstring prefix;
    do prefix = L"ns" + std::to_wstring(++number);
    while (!taken.insert(prefix).second);
    aliases.Add(prefix.c_str(), uri.c_str());
  };
  const std::wstring defaultNamespace = context.GetDefaultNamespaceURI();
  for (TreeWalk walk(document); walk; walk.Next()) {
    if (walk->GetNamespaceURI() != defaultNamespace) require(walk->GetNamespaceURI());
    for (const CXmlAttribute* attribute : walk->GetAttributes()) require(attribute->GetNamespaceURI());
  }
}

#include "Tree.h"

#include <set>
#include <string>

using namespace RkXmlLib16;

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

bool Row::GoesOn(const CXmlElement& next) {
  const bool isSame = next.GetLocalNameRef() == m_localName && next.GetNamespaceRef() == m_namespace;
  m_localName = next.GetLocalNameRef();
  m_namespace = next.GetNamespaceRef();
  return isSame;
}

void AddPrefixes(const std::vector<UsedNamespace>& namespaces, CSerializationContext& context) {
  CNamespaceAliasMap& aliases = context.GetNamespaceAliases();
  const std::wstring defaultNamespace = context.GetDefaultNamespaceURI();
  std::set<std::wstring> taken;
  for (const auto& [uri, prefix] : aliases.GetEntries()) taken.insert(prefix);
  int number = 0;
  for (const auto& [uri, isOfAttribute] : namespaces) {
    const bool needsNone = uri == CXmlWriter::XML_NAMESPACE || (!isOfAttribute && uri == defaultNamespace);
    if (needsNone || aliases.DoesNamespaceExist(uri.c_str())) continue;
    std::wstring prefix;
    do prefix = L"ns" + std::to_wstring(++number);
    while (!taken.insert(prefix).second);
    aliases.Add(prefix.c_str(), uri.c_str());
  }
}

void AddPrefixes(const CXmlDocument& document, CSerializationContext& context) {
  std::vector<UsedNamespace> namespaces;
  std::set<const CXmlName*> known[2];
  const auto add = [&](const CXmlName* uri, bool isOfAttribute) {
    if (!uri->empty() && known[isOfAttribute ? 1 : 0].insert(uri).second)
      namespaces.push_back({uri->GetText().ToString(), isOfAttribute});
  };
  for (TreeWalk walk(document); walk; walk.Next()) {
    add(walk->GetNamespaceRef(), /*isOfAttribute=*/false);
    for (const CXmlAttribute* attribute : walk->GetAttributes())
      add(attribute->GetNamespaceRef(), /*isOfAttribute=*/true);
  }
  AddPrefixes(namespaces, context);
}

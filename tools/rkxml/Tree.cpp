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

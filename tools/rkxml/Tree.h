#ifndef RKXML_TOOL_TREE_H
#define RKXML_TOOL_TREE_H

#include <RkXmlLib16/RkXmlLib16.h>

#include <string>
#include <vector>

// Goes through a document in document order without recursion.
//
//   for (TreeWalk walk(document); walk; walk.Next()) walk->GetLocalName();
class TreeWalk {
 public:
  explicit TreeWalk(const RkXmlLib16::CXmlDocument& document) : m_element(document.GetDocumentElement()) {}
  explicit operator bool() const { return m_element != nullptr; }
  const RkXmlLib16::CXmlElement* Get() const { return m_element; }
  const RkXmlLib16::CXmlElement* operator->() const { return m_element; }
  // 1 for the document element.
  unsigned long long GetDepth() const { return m_depth; }
  void Next();

 private:
  const RkXmlLib16::CXmlElement* m_element;
  unsigned long long m_depth = 1;
};

// Elements of one name that follow each other.
class Row {
 public:
  // Whether the next sibling goes on with the row; otherwise it begins another one.
  bool GoesOn(const RkXmlLib16::CXmlElement& next);

 private:
  const RkXmlLib16::CXmlName* m_localName = nullptr;
  const RkXmlLib16::CXmlName* m_namespace = nullptr;
};

// A namespace of some element or attribute.
struct UsedNamespace {
  std::wstring uri;
  bool isOfAttribute;
};

// Gives every namespace that `context` cannot write yet a prefix: ns1, ns2, ...
void AddPrefixes(const std::vector<UsedNamespace>& namespaces, RkXmlLib16::CSerializationContext& context);
void AddPrefixes(const RkXmlLib16::CXmlDocument& document, RkXmlLib16::CSerializationContext& context);

#endif

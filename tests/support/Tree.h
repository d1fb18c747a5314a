#ifndef RKXMLLIB16_TESTS_SUPPORT_TREE_H
#define RKXMLLIB16_TESTS_SUPPORT_TREE_H

#include <string>
#include <string_view>

#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlTest {

using namespace RkXmlLib16;

// A tree as one text: {uri}name@{uri}name=value...(text)<child>...
inline std::wstring TreeOf(const CXmlElement* element) {
  const auto name = [](const CXmlText& uri, const CXmlText& local) {
    return (uri.empty() ? std::wstring() : L"{" + uri.ToString() + L"}") + local.ToString();
  };
  std::wstring text = name(element->GetNamespaceURI(), element->GetLocalName());
  for (const CXmlAttribute* a : element->GetAttributes())
    text += L"@" + name(a->GetNamespaceURI(), a->GetLocalName()) + L"=" + a->GetValue().ToString();
  text += L"(" + element->GetText().ToString() + L")";
  for (const CXmlElement* e = element->GetFirstElement(); e != nullptr; e = e->GetNextSiblingElement())
    text += L"<" + TreeOf(e) + L">";
  return text;
}

inline std::wstring TreeOf(const CXmlDocument& document) { return TreeOf(document.GetDocumentElement()); }

inline void Load(CXmlDocument& document, std::string_view bytes) {
  document.LoadXmlStream(reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())), bytes.size());
}

// The tree of a document in bytes.
inline std::wstring TreeOf(std::string_view bytes,
                           const CSerializationContext& context = CSerializationContext::m_defaultContext) {
  CXmlDocument document(context);
  Load(document, bytes);
  return TreeOf(document);
}

}  // namespace RkXmlTest

#endif

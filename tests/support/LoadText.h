#ifndef RKXMLLIB16_TESTS_SUPPORT_LOADTEXT_H
#define RKXMLLIB16_TESTS_SUPPORT_LOADTEXT_H

#include <string>

#include "RkXmlLib16/base/ErrorHandler.h"
#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlTest {

using namespace RkXmlLib16;

inline void AddLocation(std::wstring& text, const CRkLocation& location) {
  text += L" " + location.ToString() + L"@" + std::to_wstring(location.GetOffset()) + L"/" + location.GetPath();
}

inline void AddName(std::wstring& text, const CXmlName* name) {
  text += L" " + std::to_wstring(name->GetOrdinal()) + L"[" + name->GetText() + L"]";
}

inline void AddElement(std::wstring& text, const CXmlDocument& document, const CXmlElement& element) {
  AddName(text += L"\n<", element.GetNamespaceRef());
  AddName(text, element.GetLocalNameRef());
  AddLocation(text, element.GetLocationWithoutPath());
  for (const auto& declaration : document.GetDeclarations(&element)) {
    AddName(text += L"\n xmlns", declaration.prefix);
    AddName(text, declaration.namespaceUri);
  }
  for (const CXmlAttribute* attribute : element.GetAttributes()) {
    AddName(text += L"\n @", attribute->GetNamespaceRef());
    AddName(text, attribute->GetLocalNameRef());
    text += L"=[" + attribute->GetValue() + L"]";
    AddLocation(text, attribute->GetLocation());
  }
  text += L"\n [" + element.GetText() + L"]";
  if (element.GetSections() != nullptr)
    for (const std::size_t at : *element.GetSections()) text += L"," + std::to_wstring(at);
}

// All that can be told of a loaded tree: names with their ordinals, declarations, attributes, texts, sections, places.
inline std::wstring DescribeTree(const CXmlDocument& document) {
  std::wstring text;
  for (const CXmlElement* element = document.GetDocumentElement(); element != nullptr;) {
    AddElement(text, document, *element);
    const CXmlElement* next = element->GetFirstElement();
    for (; next == nullptr && element != nullptr; element = element->GetParentElement()) {
      text += L">";
      next = element->GetNextSiblingElement();
    }
    element = next;
  }
  text += document.HasInnerDeclarations() ? L"\ninner" : L"\nouter";
  for (const auto& [prefix, uri] : document.GetNamespaceAliases()) text += L"\n" + prefix + L"=" + uri;
  return text;
}

// Runs `load` on a document; its tree, and the error or what was dropped, as one text.
template <class Load>
std::wstring DescribeLoad(CXmlDocument& document, CErrorCollector& told, Load&& load) {
  std::wstring outcome;
  try {
    load(document);
  } catch (const CRkException& e) {
    outcome = L"\nerror " + e.GetFullMessage();
    AddLocation(outcome, e.GetLocation());
  }
  for (const CRkDropped& dropped : told.GetDropped()) outcome += L"\n" + dropped.GetReport();
  return DescribeTree(document) + outcome;
}

}  // namespace RkXmlTest

#endif

#ifndef RKXMLLIB16_TESTS_SUPPORT_LOADTEXT_H
#define RKXMLLIB16_TESTS_SUPPORT_LOADTEXT_H

#include <cstdint>
#include <string>
#include <string_view>

#include "RkXmlLib16/base/ErrorHandler.h"
#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlTest {

using namespace RkXmlLib16;

// Numbers are told by a character of that code, which is quicker than digits.
inline void AddNumber(std::wstring& text, std::uint64_t number) { text += static_cast<wchar_t>(number); }

inline void AddLocation(std::wstring& text, const CRkLocation& location) {
  AddNumber(text, location.GetLine());
  AddNumber(text, location.GetColumn());
  AddNumber(text, location.GetOffset());
  text += location.GetPath();
}

inline void AddText(std::wstring& text, std::wstring_view more) {
  AddNumber(text, more.size());
  text += more;
}

inline void AddName(std::wstring& text, const CXmlName* name) {
  AddNumber(text, name->GetOrdinal());
  AddText(text, name->View());
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
    AddText(text, attribute->GetValue());
  }
  // The path takes a look at all siblings: one is enough.
  if (!element.GetAttributes().empty() && element.GetFirstElement() == nullptr)
    AddLocation(text, element.GetAttributes().back()->GetLocation());
  AddText(text += L"\n ", element.GetText());
  if (element.GetSections() != nullptr)
    for (const std::size_t at : *element.GetSections()) AddNumber(text, at);
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

#include <algorithm>

#include "schema/components/internal/Source.h"
#include "schema/components/internal/Xsd.h"

namespace RkXmlSchema {

SourceLocation LocationOf(const std::wstring& file, const CXmlElement* element) {
  if (element == nullptr) return {&file, 0, 0};
  const RkXmlLib16::CRkLocation location = element->GetLocationWithoutPath();
  return {&file, location.GetLine(), location.GetColumn()};
}

bool IsSchemaElement(const CXmlElement* element) { return element->GetNamespaceURI() == kSchemaNamespace; }

bool IsSchemaElement(const CXmlElement* element, std::wstring_view localName) {
  return element->GetLocalName() == localName && IsSchemaElement(element);
}

namespace {

const CXmlElement* FromPart(const CXmlElement* element) {
  while (element != nullptr && (!IsSchemaElement(element) || element->GetLocalName() == L"annotation"))
    element = element->GetNextSiblingElement();
  return element;
}

}  // namespace

const CXmlElement* FirstPart(const CXmlElement* element) { return FromPart(element->GetFirstElement()); }
const CXmlElement* NextPart(const CXmlElement* part) { return FromPart(part->GetNextSiblingElement()); }

const CXmlElement* FindPart(const CXmlElement* element, std::wstring_view localName) {
  const CXmlElement* part = FirstPart(element);
  while (part != nullptr && part->GetLocalName() != localName) part = NextPart(part);
  return part;
}

const CXmlAttribute* FindAttributeOf(const CXmlElement* element, std::wstring_view localName) {
  for (const CXmlAttribute* attribute : element->GetAttributes()) {
    if (attribute->GetLocalName() == localName && attribute->GetNamespaceURI().empty()) return attribute;
  }
  return nullptr;
}

std::wstring Collapsed(std::wstring_view text) {
  std::wstring result;
  ForEachToken(text, [&](std::wstring_view token) {
    if (!result.empty()) result += L' ';
    result += token;
  });
  return result;
}

std::wstring TokenOf(const CXmlElement* element, std::wstring_view localName) {
  const CXmlAttribute* const attribute = FindAttributeOf(element, localName);
  return attribute != nullptr ? Collapsed(attribute->GetValue()) : std::wstring();
}

bool BooleanOf(const CXmlElement* element, std::wstring_view localName, bool otherwise) {
  const std::wstring text = TokenOf(element, localName);
  return text.empty() ? otherwise : text == L"true" || text == L"1";
}

std::optional<std::wstring> LookupNamespace(const CXmlElement* element, std::wstring_view prefix) {
  if (prefix == L"xml") return std::wstring(kXmlNamespace);
  const auto* const found = element->LookupNamespaceRef(prefix);
  if (found != nullptr) return std::wstring(found->View());
  return prefix.empty() ? std::optional<std::wstring>(std::wstring()) : std::nullopt;
}

NamespaceBindings BindingsAt(const CXmlElement* element) {
  NamespaceBindings bindings;
  for (const auto& alias : element->GetDocument()->GetNamespaceAliases()) {
    const auto* const bound = element->LookupNamespaceRef(alias.first);
    if (bound != nullptr) bindings.emplace(alias.first.ToString(), std::wstring(bound->View()));
  }
  return bindings;
}

std::wstring DocumentationOf(const CXmlElement* element) {
  std::wstring text;
  for (const CXmlElement* annotation = element->GetFirstElement(); annotation != nullptr;
       annotation = annotation->GetNextSiblingElement()) {
    if (!IsSchemaElement(annotation, L"annotation")) continue;
    for (const CXmlElement* part = annotation->GetFirstElement(); part != nullptr;
         part = part->GetNextSiblingElement()) {
      if (!IsSchemaElement(part, L"documentation")) continue;
      const std::wstring words = Collapsed(part->GetText());
      if (!text.empty() && !words.empty()) text += L'\n';
      text += words;
    }
  }
  return text;
}

}  // namespace RkXmlSchema

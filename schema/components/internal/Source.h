#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_SOURCE_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_SOURCE_H

#include <RkXmlLib16/RkXmlLib16.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "schema/components/Components.h"

// Schema documents as elements: what is asked of them again and again.
namespace RkXmlSchema {

using RkXmlLib16::CXmlAttribute;
using RkXmlLib16::CXmlDocument;
using RkXmlLib16::CXmlElement;

struct SourceFile {
  std::filesystem::path file;
  std::wstring path;  // the same for messages
  RkXmlLib16::CSerializationContext context;
  CXmlDocument document;
  CXmlElement* root = nullptr;  // xs:schema; null when the file is no schema document
  std::size_t nodeCount = 0;
  bool isChecked = false;

  SourceFile() : document(context) {}
};

// A schema document with the target namespace that it is read for.
struct DocumentInstance {
  SourceFile* source = nullptr;
  std::wstring targetNamespace;
  bool isChameleon = false;
  bool elementQualified = false;
  bool attributeQualified = false;
  DerivationSet blockDefault = 0;
  DerivationSet finalDefault = 0;
  std::set<std::wstring, std::less<>> imported;  // "" for no namespace
};

SourceLocation LocationOf(const std::wstring& file, const CXmlElement* element);
inline SourceLocation LocationOf(const DocumentInstance& document, const CXmlElement* element) {
  return LocationOf(document.source->path, element);
}

// Whether it is an element of XML Schema, with this name.
bool IsSchemaElement(const CXmlElement* element);
bool IsSchemaElement(const CXmlElement* element, std::wstring_view localName);

// The first child in the namespace of XML Schema, annotations left out, and the next one after such a child.
const CXmlElement* FirstPart(const CXmlElement* element);
const CXmlElement* NextPart(const CXmlElement* part);
const CXmlElement* FindPart(const CXmlElement* element, std::wstring_view localName);

// Attributes without a namespace.
const CXmlAttribute* FindAttributeOf(const CXmlElement* element, std::wstring_view localName);
inline bool HasAttribute(const CXmlElement* element, std::wstring_view localName) {
  return FindAttributeOf(element, localName) != nullptr;
}
// Collapsed; empty when absent.
std::wstring TokenOf(const CXmlElement* element, std::wstring_view localName);
std::wstring Collapsed(std::wstring_view text);
bool BooleanOf(const CXmlElement* element, std::wstring_view localName, bool otherwise);

// The namespace bound to the prefix at the element.
std::optional<std::wstring> LookupNamespace(const CXmlElement* element, std::wstring_view prefix);
NamespaceBindings BindingsAt(const CXmlElement* element);

// The text of all xs:documentation elements of the element's annotation.
std::wstring DocumentationOf(const CXmlElement* element);

}  // namespace RkXmlSchema

#endif

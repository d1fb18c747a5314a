#ifndef RKXMLLIB16_XML_ELEMENTTREE_H
#define RKXMLLIB16_XML_ELEMENTTREE_H

#include <string>

#include "RkXmlLib16/core/Enumerations.h"
#include "RkXmlLib16/core/Export.h"
#include "RkXmlLib16/types/BinaryData.h"
#include "RkXmlLib16/xml/Text.h"

namespace RkXmlLib16 {

class CSerializationContext;
class CXmlDocument;
class CXmlElement;

// One attribute of a loaded element. Namespace declarations are not attributes; xsi:type and xsi:nil are.
class RKXML_EXPORT CXmlAttribute {
 public:
  CXmlText GetLocalName() const noexcept;
  CXmlText GetValue() const noexcept;
  CXmlText GetNamespaceURI() const noexcept;
  // The owning element's path, "/@" and the name with the prefix of its namespace, if it has one.
  std::wstring GetXPath() const;
  // Namespace machinery: xsi:type, xsi:schemaLocation, xsi:noNamespaceSchemaLocation, xmlns.
  bool IsNamespaceAttribute() const noexcept;
  // xsi:nil.
  bool IsNilAttribute() const noexcept;
  const CXmlElement* GetElement() const noexcept;
};

// The attributes of an element in document order; `for (CXmlAttribute* a : element->GetAttributes())`.
class CXmlAttributes {
 public:
  class iterator;
  std::size_t size() const noexcept;
  bool empty() const noexcept;
  CXmlAttribute* operator[](std::size_t index) const noexcept;
  iterator begin() const noexcept;
  iterator end() const noexcept;
};

// One element of a loaded document: names, attributes, children, and its text. All character data of the element is
// joined into one text without carriage returns, so mixed content loses its position between the children.
//
//   document -> element -> first child -> next sibling -> ...
//                 |-> attributes
class RKXML_EXPORT CXmlElement {
 public:
  CXmlElement(const CXmlDocument* document, const CXmlElement* parent);

  CXmlElement* GetFirstElement() const noexcept;
  CXmlElement* GetNextSiblingElement() const noexcept;
  CXmlElement* GetParentElement() const noexcept;
  const CXmlDocument* GetDocument() const noexcept;
  CXmlAttributes GetAttributes() const noexcept;
  CXmlText GetText() const noexcept;
  CXmlText GetLocalName() const noexcept;
  CXmlText GetNamespaceURI() const noexcept;
  // The value of the first attribute with this name; empty when there is none.
  CXmlText GetAttribute(const wchar_t* localName, const wchar_t* namespaceUri) const noexcept;
  // The local name with the prefix that the document has for the namespace.
  std::wstring GetQName() const;
  // The same with the 1-based position among the siblings of that name, "item[2]", unless it is the only one.
  std::wstring GetNameWithPredicate() const;
  // "/order/item[2]".
  std::wstring GetXPath() const;

  // Building.
  CXmlElement* CreateNewChildElement();
  void SetElementName(const wchar_t* localName);
  void SetNamespace(const wchar_t* namespaceUri);
  void AppendText(const wchar_t* text, int length);
  void AppendText(const wchar_t* text);
  void AddAttribute(const wchar_t* localName, const wchar_t* value, const wchar_t* namespaceUri);
  // Unlinks and returns the last child; null when there is none. Its storage stays with the document.
  CXmlElement* RemoveLastChildElement();
};

// A document held as a tree of elements, filled from XML text, Fast Infoset or, by way of XML text, JSON. Each load
// replaces the tree. Nodes live as long as their document and are only read by the objects.
//
//   CXmlDocument document;
//   document.Load(L"track.gpx.gz");
//   for (CXmlElement* e = document.GetDocumentElement()->GetFirstElement(); e != nullptr; e =
//   e->GetNextSiblingElement())
class RKXML_EXPORT CXmlDocument {
 public:
  // Called for each element when it ends; true drops the element with its subtree, so that a document of any size is
  // read in bounded memory. Not asked of the document element.
  using ElementFilter = bool (*)(CXmlElement*);

  CXmlDocument();
  explicit CXmlDocument(const CSerializationContext& context);  // kept
  explicit CXmlDocument(ElementFilter filter);
  CXmlDocument(ElementFilter filter, const CSerializationContext& context);
  CXmlDocument(const CXmlDocument&) = delete;
  CXmlDocument& operator=(const CXmlDocument&) = delete;
  virtual ~CXmlDocument();

  // Empties the document; runs at the start of every load.
  virtual void Cleanup();

  // Byte input: unwraps gzip or zlib, then takes Fast Infoset by its header, else XML text.
  void Load(const wchar_t* fileName);
  void LoadXmlStream(unsigned char* bytes, unsigned long length);
  // XML text; the narrow form detects its encoding (UTF-8 unless the text says otherwise), the wide form takes the low
  // 16 bits of each character.
  void LoadXml(const char* text);
  void LoadXml(const wchar_t* text);
  // Convert JSON to XML text in UTF-8 without filling the tree. Files and streams may be wrapped and hold UTF-8.
  CBinaryData LoadJsonFile(const wchar_t* fileName);
  CBinaryData LoadJsonStream(unsigned char* bytes, unsigned long length);
  CBinaryData LoadJson(const char* text);
  CBinaryData LoadJson(const wchar_t* text);

  // The root element, or null.
  CXmlElement* GetDocumentElement() const noexcept;
  const CSerializationContext& GetContext() const noexcept;
  SchemaType GetSchemaType() const noexcept;

  // Building, by the readers: the new element becomes the current one until EndElement.
  CXmlElement* AddDocElement(const wchar_t* namespaceUri, const wchar_t* localName);
  CXmlElement* AddChildElement(const wchar_t* namespaceUri, const wchar_t* localName);
  void EndElement();
  CXmlElement* GetCurrentElement() const noexcept;
  void AddElementAttribute(CXmlElement* element, const std::wstring& localName, const std::wstring& value,
                           const std::wstring& namespaceUri);
  void AppendTextExcludingCR(CXmlElement* element, const wchar_t* text, unsigned long length);
  void AppendTextExcludingCR(CXmlElement* element, const wchar_t* text);

  // Prefixes as declared anywhere in the document, the latest declaration of a prefix winning. An unknown argument
  // gives the empty text.
  void AddNamespaceAlias(const wchar_t* prefix, const wchar_t* namespaceUri);
  CXmlText LookupAliasFromNamespace(const wchar_t* namespaceUri) const;
  CXmlText LookupNamespaceFromAlias(const wchar_t* prefix) const;
};

}  // namespace RkXmlLib16

#endif

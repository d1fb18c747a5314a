#ifndef RKXMLLIB16_DOCUMENT_ELEMENTTREE_H
#define RKXMLLIB16_DOCUMENT_ELEMENTTREE_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/ErrorHandler.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/HugePages.h"
#include "RkXmlLib16/base/Location.h"
#include "RkXmlLib16/base/NameToken.h"
#include "RkXmlLib16/document/Text.h"
#include "RkXmlLib16/io/FileName.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

class CPieces;
class CNodeText;
class CRkException;
class CSerializationContext;
class CSource;
class CTreeBuilder;
class CXmlDocument;
class CXmlElement;
class CXmlExpandedName;

// A local name or namespace URI of a document, held once however often it occurs: within one document, two names are
// equal when their addresses are.
class CXmlName {
 public:
  constexpr CXmlText GetText() const noexcept { return {m_text, m_length}; }
  constexpr std::wstring_view View() const noexcept { return {m_text, m_length}; }
  constexpr bool empty() const noexcept { return m_length == 0; }
  // The place of the name among those of the document, from 0 for the empty name.
  constexpr std::uint32_t GetOrdinal() const noexcept { return m_ordinal; }

 private:
  friend class CXmlDocument;
  friend class CXmlExpandedName;
  constexpr CXmlName(const wchar_t* text, std::uint32_t length, std::uint32_t hash, std::uint32_t ordinal) noexcept
      : m_text(text), m_length(length), m_hash(hash), m_ordinal(ordinal) {}

  const wchar_t* m_text;
  std::uint32_t m_length;
  std::uint32_t m_hash;
  std::uint32_t m_ordinal;
  // As a local name: with the namespace in which it was met first.
  mutable const CXmlExpandedName* m_first = nullptr;
};

// A local name in a namespace, as elements and attributes of a document have it. Held once, too.
class CXmlExpandedName {
 public:
  const CXmlName* GetLocalName() const noexcept { return m_localName; }
  const CXmlName* GetNamespace() const noexcept { return m_namespaceUri; }
  CXmlDocument* GetDocument() const noexcept { return m_document; }

  // Whether this is the name of the token. It keeps the token that it was last found to be, so that it is compared
  // once. Threads that read the document at the same time share that.
  bool Is(const CNameToken& token) const noexcept { return IsKnownAs(token) || (MayBe(token) && Compare(token)); }
  // False for most other names, without a look at the whole.
  bool MayBe(const CNameToken& token) const noexcept {
    const std::wstring& name = token.GetLocalName();
    const std::size_t length = m_localName->m_length;
    return length == name.size() && m_localName->m_text[length / 2] == name[length / 2];
  }
  // Whether that was found before.
  bool IsKnownAs(const CNameToken& token) const noexcept {
    return m_token.load(std::memory_order_relaxed) == token.GetNumber();
  }

 private:
  friend class CXmlDocument;
  CXmlExpandedName(CXmlDocument* document, const CXmlName* localName, const CXmlName* namespaceUri) noexcept
      : m_document(document), m_localName(localName), m_namespaceUri(namespaceUri) {}

  RKXML_EXPORT bool Compare(const CNameToken& token) const noexcept;

  static constexpr std::uint64_t kNoToken = UINT64_MAX;  // no number of a token

  CXmlDocument* m_document;
  const CXmlName* m_localName;
  const CXmlName* m_namespaceUri;
  mutable std::atomic<std::uint64_t> m_token{kNoToken};  // its number
};

// The head of a text in the storage of a document; the characters and their NUL follow it.
struct CXmlTextBlock {
  std::uint32_t m_length;
  std::uint32_t m_capacity;  // without the NUL; 0 for a block that several elements share

  wchar_t* Chars() noexcept { return reinterpret_cast<wchar_t*>(this + 1); }
  const wchar_t* Chars() const noexcept { return reinterpret_cast<const wchar_t*>(this + 1); }
};

// The text of an element or the value of an attribute: none, a block, or, of an input that stays while objects are
// read, a part with a character of ASCII in each byte, or the white space in front of the child elements and of a place
// behind them. What is no block becomes one when it is asked for as text.
class CXmlHeldText {
 public:
  constexpr CXmlHeldText() noexcept = default;
  CXmlHeldText(CXmlTextBlock* block) noexcept : m_held(reinterpret_cast<std::uintptr_t>(block)) {}  // may be null
  static constexpr CXmlHeldText OfInput(std::size_t offset, std::size_t length) noexcept {
    CXmlHeldText text;
    text.m_held = std::uint64_t{length} << 32 | std::uint64_t{offset} << 1 | kOfInput;
    return text;
  }

  // So many characters of white space, the last of them before the place.
  static constexpr CXmlHeldText OfGaps(std::size_t place, std::size_t length) noexcept {
    return OfInput(place, length | kGaps);
  }

  static constexpr std::size_t kLongestInput = std::size_t{1} << 31;

  constexpr bool IsNone() const noexcept { return m_held == 0; }
  constexpr bool IsOfInput() const noexcept { return (m_held & kOfInput) != 0; }
  // Of the input.
  constexpr std::size_t GetOffset() const noexcept { return static_cast<std::uint32_t>(m_held) >> 1; }
  constexpr std::size_t GetLength() const noexcept { return (m_held >> 32) & ~kGaps; }
  constexpr bool IsOfGaps() const noexcept { return IsOfInput() && (m_held >> 32 & kGaps) != 0; }
  // Not of the input.
  CXmlTextBlock* GetBlock() const noexcept { return reinterpret_cast<CXmlTextBlock*>(m_held); }
  CXmlText View() const noexcept {
    return m_held != 0 ? CXmlText(GetBlock()->Chars(), GetBlock()->m_length) : CXmlText();
  }

 private:
  static constexpr std::uint64_t kOfInput = 1;
  static constexpr std::size_t kGaps = kLongestInput;

  std::uint64_t m_held = 0;
};

// One attribute of a loaded element. Namespace declarations are not attributes; xsi:type and xsi:nil are.
class RKXML_EXPORT CXmlAttribute {
 public:
  CXmlText GetLocalName() const noexcept { return GetLocalNameRef()->GetText(); }
  inline CXmlText GetValue() const;
  CXmlText GetNamespaceURI() const noexcept { return GetNamespaceRef()->GetText(); }
  // The owning element's path, "/@" and the name with the prefix of its namespace, if it has one; see
  // CXmlElement::GetXPath.
  std::wstring GetXPath() const;
  // Namespace machinery: xsi:type, xsi:schemaLocation, xsi:noNamespaceSchemaLocation, xmlns.
  bool IsNamespaceAttribute() const noexcept { return !GetNamespaceRef()->empty() && HasNamespaceName(); }
  // xsi:nil.
  bool IsNilAttribute() const noexcept { return !GetNamespaceRef()->empty() && HasNilName(); }
  // Where the attribute stands; that of the element when a DTD or an entity supplied it. See CXmlElement::GetLocation.
  CRkLocation GetLocation() const;
  const CXmlElement* GetElement() const noexcept { return m_element; }
  // The names as the document holds them, for comparison by address.
  const CXmlExpandedName* GetNameRef() const noexcept { return m_name; }
  const CXmlName* GetLocalNameRef() const noexcept { return m_name->GetLocalName(); }
  const CXmlName* GetNamespaceRef() const noexcept { return m_name->GetNamespace(); }

 private:
  friend class CNodeText;
  friend class CTreeBuilder;
  friend class CXmlDocument;
  bool HasNamespaceName() const noexcept;
  bool HasNilName() const noexcept;
  CXmlAttribute(const CXmlElement* element, const CXmlExpandedName* name) noexcept : m_element(element), m_name(name) {}

  const CXmlElement* m_element;
  const CXmlExpandedName* m_name;
  mutable std::atomic<CXmlHeldText> m_value{CXmlHeldText()};  // none while empty
  std::uint64_t m_offset = CRkLocation::kNoOffset;
};

// The head of an element's attributes, which follow it.
struct CXmlAttributeBlock {
  std::uint32_t m_count;
  std::uint32_t m_capacity;

  CXmlAttribute* Attributes() noexcept { return reinterpret_cast<CXmlAttribute*>(this + 1); }
};

// The attributes of an element in document order, as a vector of pointers would hand them out. Pointers are valid until
// another attribute is added to the element.
//
//   for (CXmlAttribute* attribute : element->GetAttributes()) ...
class CXmlAttributes {
 public:
  using value_type = CXmlAttribute*;
  using size_type = std::size_t;

  class iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = CXmlAttribute*;
    using difference_type = std::ptrdiff_t;
    using pointer = CXmlAttribute* const*;
    using reference = CXmlAttribute* const&;

    constexpr iterator() noexcept = default;
    constexpr explicit iterator(CXmlAttribute* at) noexcept : m_at(at) {}
    // The reference is that of this iterator.
    reference operator*() const noexcept { return m_at; }
    pointer operator->() const noexcept { return &m_at; }
    iterator& operator++() noexcept {
      ++m_at;
      return *this;
    }
    iterator operator++(int) noexcept { return iterator(m_at++); }
    friend bool operator==(const iterator& a, const iterator& b) noexcept { return a.m_at == b.m_at; }
    friend bool operator!=(const iterator& a, const iterator& b) noexcept { return a.m_at != b.m_at; }

   private:
    CXmlAttribute* m_at = nullptr;
  };
  using const_iterator = iterator;

  CXmlAttributes() noexcept = default;

  std::size_t size() const noexcept { return m_block != nullptr ? m_block->m_count : 0; }
  bool empty() const noexcept { return size() == 0; }
  CXmlAttribute* operator[](std::size_t index) const noexcept { return First() + index; }
  // Throws CRkInvalidParamException "Index %d is out of range, use 0 - %d" with the index and the count.
  RKXML_EXPORT CXmlAttribute* at(std::size_t index) const;
  // Not of an element without attributes.
  CXmlAttribute* front() const noexcept { return First(); }
  CXmlAttribute* back() const noexcept { return First() + (size() - 1); }
  iterator begin() const noexcept { return iterator(First()); }
  iterator end() const noexcept { return iterator(First() + size()); }

 private:
  friend class CTreeBuilder;
  friend class CXmlDocument;
  CXmlAttribute* First() const noexcept { return m_block != nullptr ? m_block->Attributes() : nullptr; }

  CXmlAttributeBlock* m_block = nullptr;  // null without attributes
};

// One element of a loaded document: names, attributes, children, and its text. All character data of the element is
// joined into one text without carriage returns, so mixed content loses its position between the children.
//
//   document -> element -> first child -> next sibling -> ...
//                 |-> attributes
class RKXML_EXPORT CXmlElement {
 public:
  // Throws CRkInvalidParamException without a document.
  CXmlElement(const CXmlDocument* document, const CXmlElement* parent);

  CXmlElement* GetFirstElement() const noexcept {
    return m_lastChild != nullptr ? reinterpret_cast<CXmlElement*>(m_lastChild->m_next - kFirst) : nullptr;
  }
  CXmlElement* GetNextSiblingElement() const noexcept {
    return (m_next & kFirst) == 0 ? reinterpret_cast<CXmlElement*>(m_next) : nullptr;
  }
  CXmlElement* GetParentElement() const noexcept { return m_parent; }
  const CXmlDocument* GetDocument() const noexcept { return m_name->GetDocument(); }
  const CXmlAttributes& GetAttributes() const noexcept { return m_attributes; }
  inline CXmlText GetText() const;
  // Where in the text the CDATA sections begin whose marks it holds (CSerializationContext::SetStripCDATA), in
  // ascending order; null when there are none. What else looks like a mark is data.
  const std::vector<std::size_t>* GetSections() const noexcept;
  CXmlText GetLocalName() const noexcept { return GetLocalNameRef()->GetText(); }
  CXmlText GetNamespaceURI() const noexcept { return GetNamespaceRef()->GetText(); }
  // The names as the document holds them, for comparison by address.
  const CXmlExpandedName* GetNameRef() const noexcept { return m_name; }
  const CXmlName* GetLocalNameRef() const noexcept { return m_name->GetLocalName(); }
  const CXmlName* GetNamespaceRef() const noexcept { return m_name->GetNamespace(); }
  // Whether the other element, of the same document, bears the same name in the same namespace; null bears none.
  bool HasNameOf(const CXmlElement* other) const noexcept { return other != nullptr && m_name == other->m_name; }
  // The value of the first attribute with this name; empty when there is none.
  CXmlText GetAttribute(const wchar_t* localName, const wchar_t* namespaceUri) const;
  // The local name with the prefix that the document has for the namespace.
  std::wstring GetQName() const;
  // The same with the 1-based position among the siblings of that name, "item[2]", unless it is the only one.
  std::wstring GetNameWithPredicate() const;
  // "/order/item[2]". Not to be called on one document from two threads at the same time while one of them reads it
  // with an error handler.
  std::wstring GetXPath() const;
  // The namespace that the start tags of this element and those around it bind the prefix to, "" standing for the
  // default namespace; null for a prefix that none of them declares. For QNames in texts and attribute values.
  // Not to be called on one document from two threads at the same time.
  const CXmlName* LookupNamespaceRef(std::wstring_view prefix) const;
  // Where the element begins, with its path. Line and column are worked out here, from the input, which the document
  // keeps until it is emptied; a document with a filter keeps it during the load only. For elements that no reader made
  // the path alone. Not to be called on one document from two threads at the same time.
  CRkLocation GetLocation() const;
  // The same without the path, which takes a look at all siblings: for whoever asks it of many elements.
  CRkLocation GetLocationWithoutPath() const;

  // Building.
  CXmlElement* CreateNewChildElement();
  void SetElementName(const wchar_t* localName);
  void SetNamespace(const wchar_t* namespaceUri);
  void AppendText(const wchar_t* text, int length);
  void AppendText(const wchar_t* text);
  void AddAttribute(const wchar_t* localName, const wchar_t* value, const wchar_t* namespaceUri);
  // Unlinks and returns the last child; null when there is none. It is valid until the next load of the document, which
  // keeps its storage: deleting it is allowed and frees nothing.
  CXmlElement* RemoveLastChildElement();

  // Elements of a document lie in its storage, and `delete` leaves that alone. It frees what `new` made.
  static void* operator new(std::size_t size);
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void* element) noexcept;
  static void operator delete(void*, void*) noexcept {}

 private:
  friend class CNodeText;
  friend class CTreeBuilder;
  friend class CXmlAttribute;
  friend class CXmlDocument;
  CXmlElement(CXmlElement* parent, const CXmlExpandedName* name) noexcept : m_name(name), m_parent(parent) {}
  CXmlDocument& Owner() const;
  void AppendChild(CXmlElement* child) noexcept {
    const auto next = reinterpret_cast<std::uintptr_t>(child);
    child->m_next = m_lastChild != nullptr ? std::exchange(m_lastChild->m_next, next) : next + kFirst;
    m_lastChild = child;
  }
  // `previous` is the child before the last one, or null.
  void DropLastChild(CXmlElement* previous) noexcept {
    const std::uintptr_t first = std::exchange(m_lastChild->m_next, kFirst);
    if (previous != nullptr) previous->m_next = first;
    m_lastChild = previous;
  }

  static constexpr std::uintptr_t kFirst = 1;

  const CXmlExpandedName* m_name;  // never null; the document is reached through it
  CXmlElement* m_parent;
  std::uintptr_t m_next = kFirst;  // the next sibling; of the last one the first, plus kFirst
  CXmlElement* m_lastChild = nullptr;
  CXmlAttributes m_attributes;
  mutable std::atomic<CXmlHeldText> m_text{CXmlHeldText()};
  std::uint64_t m_offset = CRkLocation::kNoOffset;
};

// A document held as a tree of elements, filled from XML text, Fast Infoset or, by way of XML text, JSON. Each load
// replaces the tree. Nodes live as long as their document and are only read by the objects.
//
//   CXmlDocument document;
//   document.Load(L"track.gpx.gz");
//   for (CXmlElement* e = document.GetDocumentElement()->GetFirstElement(); e != nullptr; e =
//   e->GetNextSiblingElement())
//
// Implemented in document/ElementTree.cpp; the load operations, which know all readers, in binding/DocumentLoad.cpp.
class RKXML_EXPORT CXmlDocument {
 public:
  // Called for each element when it ends; true drops the element with its subtree, so that a document of any size is
  // read in bounded memory. For the document element, which has no parent, the answer is ignored.
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

  // The loads throw CRkException: for an empty or null input, for a file that cannot be opened or read (with its name
  // and the error number), for what the reader of the form refuses, and "Limit exceeded: ..." by the limits of the
  // context. What was read before a failure stays until the next load.

  // Byte input: unwraps gzip or zlib, then takes Fast Infoset by its header, else XML text.
  void Load(const wchar_t* fileName);
  void Load(const CFileName& fileName);
  void LoadXmlStream(unsigned char* bytes, unsigned long length);
  // XML text; the narrow form detects its encoding (UTF-8 unless the text says otherwise), the wide form takes the low
  // 16 bits of each character, unless the context joins surrogate pairs.
  void LoadXml(const char* text);
  void LoadXml(const wchar_t* text);
  // XML text of this library's own making: like LoadXml, but characters above U+FFFF arrive whole (as surrogate pairs).
  void LoadXmlWide(std::wstring_view text);
  // XML text that `json` has converted just now (see LoadJson): elements and attributes stand where the JSON has them.
  void LoadConverted(const CBinaryData& xml, CXmlDocument& json);
  // Convert JSON to XML text in UTF-8 without filling the tree. Files and streams may be wrapped and hold UTF-8. Throw
  // also what CJsonTextReader::ConvertJsonToXml does.
  CBinaryData LoadJsonFile(const wchar_t* fileName);
  CBinaryData LoadJsonFile(const CFileName& fileName);
  CBinaryData LoadJsonStream(unsigned char* bytes, unsigned long length);
  CBinaryData LoadJson(const char* text);
  CBinaryData LoadJson(const wchar_t* text);
  // Whether that XML text is indented, as it is at first. Without indentation text beside children is that of the JSON
  // alone.
  void SetIndentsJson(bool indents) noexcept { m_indentsJson = indents; }

  // The root element, or null.
  CXmlElement* GetDocumentElement() const noexcept { return m_documentElement; }
  const CSerializationContext& GetContext() const noexcept { return *m_context; }
  SchemaType GetSchemaType() const noexcept { return m_schemaType; }
  bool HasElementFilter() const noexcept { return m_filter != nullptr; }
  // Whether the last load was left to no general parser (see CSerializationContext::SetScanPlainXml).
  bool WasScanned() const noexcept { return m_wasScanned; }
  // Before a load of borrowed bytes or text: whether they stay valid until the document is emptied. Otherwise, and at
  // first, the document keeps a copy of them, for the lines and columns of its elements; not if it has a filter.
  void SetInputStays(bool stays) noexcept { m_inputStays = stays; }
  // Before a load: where the input begins in a larger one. Added to the offsets of locations.
  void SetFirstOffset(std::uint64_t offset) noexcept { m_firstOffset = offset; }
  // The place `offset` bytes into the input, for the readers; with the path of the current element.
  CRkLocation Locate(std::uint64_t offset) const;

  // For the readers: that something is left out, if the context has an error handler. Comments and processing
  // instructions are counted, and told at the end of the load with the place of the first.
  void NoteDropped(RkDropped kind, std::uint64_t offset, std::uint64_t count = 1);

  // The bytes being read; for the readers, during a load only.
  const unsigned char* GetInput() const noexcept { return m_input; }
  std::size_t GetInputLength() const noexcept { return m_inputLength; }

  // For a reader that gives up: the document without elements, names and notes, its input as before.
  void DropTree();

  // Building, by the readers: the new element becomes the current one until EndElement. Throw CRkException for a second
  // document element, for a child or an end without an open element, and by the limits of the context.
  CXmlElement* AddDocElement(const wchar_t* namespaceUri, const wchar_t* localName);
  CXmlElement* AddChildElement(const wchar_t* namespaceUri, const wchar_t* localName);
  void EndElement();
  CXmlElement* GetCurrentElement() const noexcept { return m_currentElement; }
  void AddElementAttribute(CXmlElement* element, const std::wstring& localName, const std::wstring& value,
                           const std::wstring& namespaceUri);
  void AppendTextExcludingCR(CXmlElement* element, const wchar_t* text, unsigned long length);
  void AppendTextExcludingCR(CXmlElement* element, const wchar_t* text);

  // The same for readers that keep tables of their own: a name is interned once and then passed by address. Texts are
  // taken whole and may hold any character. An element without a current element becomes the document element.
  const CXmlName* InternName(std::wstring_view text);
  const CXmlName* GetEmptyName() const noexcept;
  // A copy of the name for objects that outlive the document, which all share it. Null for the empty name.
  std::shared_ptr<const std::wstring> ShareName(const CXmlName* name) const;
  const CXmlExpandedName* InternName(const CXmlName* namespaceUri, const CXmlName* localName);
  const CXmlExpandedName* InternName(std::wstring_view namespaceUri, std::wstring_view localName) {
    return InternName(InternName(namespaceUri), InternName(localName));
  }
  CXmlElement* AddElement(const CXmlExpandedName* name);
  // Where the element or attribute begins in the input, in bytes.
  static void SetOffset(CXmlElement* element, std::uint64_t offset) noexcept { element->m_offset = offset; }
  static void SetOffset(CXmlAttribute* attribute, std::uint64_t offset) noexcept { attribute->m_offset = offset; }
  // The attribute is valid until the next one is added to the element.
  CXmlAttribute* AddAttribute(CXmlElement* element, const CXmlExpandedName* name, std::wstring_view value);
  // Stores a value once for many attributes; it is good until the document is emptied, whatever a filter drops.
  CXmlTextBlock* StoreValue(std::wstring_view value);
  CXmlAttribute* AddAttribute(CXmlElement* element, const CXmlExpandedName* name, CXmlTextBlock* storedValue);
  void AppendText(CXmlElement* element, std::wstring_view text);  // drops carriage returns
  // The same for white space in the current element, which a document has again and again: texts of nothing else are
  // held once while they are short.
  void AppendBlanks(std::wstring_view blanks);
  // Notes that a CDATA section begins where the text of the current element ends; its mark is appended next.
  void MarkSection();
  // Space for `charCount` characters to be decoded into: at the end of the element's text, or as an attribute's value.
  // Commit tells how many were used (at most charCount; carriage returns count as any character), directly after.
  wchar_t* ReserveText(CXmlElement* element, std::size_t charCount);
  void CommitText(CXmlElement* element, std::size_t charCount);
  wchar_t* ReserveValue(CXmlAttribute* attribute, std::size_t charCount);
  void CommitValue(CXmlAttribute* attribute, std::size_t charCount);

  // Prefixes as declared anywhere in the document, the latest declaration of a prefix winning. An unknown argument
  // gives the empty text.
  void AddNamespaceAlias(const wchar_t* prefix, const wchar_t* namespaceUri);
  void AddNamespaceAlias(const CXmlName* prefix, const CXmlName* namespaceUri);
  CXmlText LookupAliasFromNamespace(const wchar_t* namespaceUri) const;
  CXmlText LookupNamespaceFromAlias(const wchar_t* prefix) const;
  const CXmlName* LookupNamespaceRef(std::wstring_view prefix) const noexcept;  // null when unknown
  // The same by scope, which keeps the meaning of names in values. A declaration is one of `element`, or of the
  // document element while that is still to come.
  struct Declaration {
    const CXmlElement* element;
    const CXmlName* prefix;        // empty for the default namespace
    const CXmlName* namespaceUri;  // empty when it is undeclared
  };
  struct Declarations {
    const Declaration* first;
    const Declaration* last;

    const Declaration* begin() const noexcept { return first; }
    const Declaration* end() const noexcept { return last; }
  };
  // Whether some element declares what the document element does not. Until then the look-ups above are right for every
  // scope.
  bool HasInnerDeclarations() const noexcept;
  // Those that the element itself makes; good until the document changes.
  Declarations GetDeclarations(const CXmlElement* element) const;
  // All of them, prefix and namespace URI, in ascending order of the prefixes.
  std::vector<std::pair<CXmlText, CXmlText>> GetNamespaceAliases() const;

  // Reading in pieces, see CDocumentStream, which alone calls this.
  CPieces& StartPieces(std::unique_ptr<CSource> source);
  CPieces* GetPieces() const noexcept { return m_pieces.get(); }
  CSource* GetSource() const noexcept { return m_source.get(); }
  // What GetInput and GetInputLength give: some bytes, which are borrowed, and the number of all bytes so far.
  void SetPieceInput(const unsigned char* bytes, std::size_t length, std::size_t lengthSoFar);
  // Takes the first event away, and what it told the end of out of the tree.
  void ReleaseEvent();
  void FinishPieces() { TellNoted(); }
  // For the readers: whether they are to stop until all events are taken.
  bool IsPaused() const noexcept { return m_isPaused; }
  // For the readers: the attributes of the element are there.
  void CompleteStart(CXmlElement* element);
  // For the readers: characters of their own tables, which grow with a document of any size.
  void CountTable(std::size_t charCount);

 private:
  friend class CNodeText;
  friend class CSiblingIndex;
  friend class CTreeBuilder;
  friend class CXmlAttribute;
  friend class CXmlElement;
  struct Input;
  struct Storage;

  void Init();
  CSource& SetSource(std::string_view input);
  std::string_view Unwrap(std::string_view bytes, CBinaryData& inflated);
  CBinaryData ConvertJsonBytes(std::string_view bytes, std::shared_ptr<const void> owner, const std::wstring& fileName);
  CBinaryData ConvertJson(std::string_view json);
  CBinaryData ConvertJson(const std::wstring& json);
  void SetPlaces(const CLargeVector<std::uint64_t>& places);
  void TellNoted();
  void ParseBytes(std::string_view bytes, std::shared_ptr<const void> owner, const std::wstring& fileName);
  void ParseXmlText();
  bool ScanWideText(std::wstring_view text);
  bool KeepsText() const noexcept;
  wchar_t* ReserveOpenText(std::size_t charCount);
  void CommitOpenText(std::size_t charCount);
  void DropPiece(CXmlElement* element);
  // The text of a node, made a block if it is none yet. Threads may ask together.
  CXmlText Widen(const CXmlElement& element, std::atomic<CXmlHeldText>& text) const;
  // Has the text of the element in a block if it depends on its children.
  void SettleGaps(const CXmlElement& element) const;

  std::unique_ptr<Storage> m_storage;
  const CSerializationContext* m_context;  // kept
  ElementFilter m_filter;
  SchemaType m_schemaType;
  bool m_indentsJson = true;
  CXmlElement* m_documentElement = nullptr;
  CXmlElement* m_currentElement = nullptr;
  const unsigned char* m_input = nullptr;  // borrowed during a load
  std::size_t m_inputLength = 0;
  const unsigned char* m_textInput = nullptr;  // the input if texts are parts of it, as long as there are any
  CBinaryData m_convertedXml;
  std::unique_ptr<CSource> m_source;     // null when the places of the input mean nothing to the caller
  CLargeVector<std::uint64_t> m_places;  // of the nodes that JSON was converted to, in their order
  bool m_inputStays = false;
  bool m_isPaused = false;
  bool m_wasScanned = false;
  std::uint64_t m_firstOffset = 0;
  std::unique_ptr<CPieces> m_pieces;  // null unless it is read in pieces
  std::size_t m_openTextLength = 0;   // before the characters reserved for an element that is not kept
};

inline CXmlText CXmlElement::GetText() const {
  const CXmlHeldText text = m_text.load(std::memory_order_acquire);
  return text.IsOfInput() ? GetDocument()->Widen(*this, m_text) : text.View();
}

inline CXmlText CXmlAttribute::GetValue() const {
  const CXmlHeldText value = m_value.load(std::memory_order_acquire);
  return value.IsOfInput() ? m_element->GetDocument()->Widen(*m_element, m_value) : value.View();
}

// Gives the exception the location of an element or attribute, unless it has one; `throw At(e, *element)`.
template <class Exception, class Node>
Exception&& At(Exception&& exception, const Node& node) {
  if (!exception.HasLocation()) exception.SetLocation(node.GetLocation());
  return std::forward<Exception>(exception);
}

}  // namespace RkXmlLib16

#endif

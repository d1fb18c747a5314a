#ifndef RKXMLLIB16_DOCUMENT_XMLWRITER_H
#define RKXMLLIB16_DOCUMENT_XMLWRITER_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/NameToken.h"
#include "RkXmlLib16/base/SharedName.h"
#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16 {

class CDocumentNames;
class CNamespacePool;
class CRecordOutput;
class OutputChecks;
struct CNamespaceName;

// What the metadata records tell a writer about the children of the open element.
enum ContextState : std::int32_t {
  ContextState_None = 0,
  ContextState_CollectionStart = 1,  // the items of a collection are about to be written
  ContextState_ArrayOpen = 2,        // a writer has opened an array for them
  ContextState_CollectionEnd = 3     // the items have been written
};

// The interface through which objects are written, whatever the document form. It owns what all forms share: the stack
// of open elements with their namespace scopes, the declarations of the root element, and the invention of prefixes
// (W3C Namespaces in XML 1.0). A writer serves one document on one thread.
class RKXML_EXPORT CXmlWriter {
 public:
  // Namespace URI to prefix, in ascending order of the URIs.
  using NamespaceMap = std::map<std::wstring, std::wstring, std::less<>>;

  // One open element and its namespace scope. A scope without declarations of its own shares those of the nearest
  // ancestor that has some.
  class RKXML_EXPORT CXmlWriterContext {
   public:
    // The root element: takes copies of the writer's default namespace and declarations.
    CXmlWriterContext(const std::wstring& localName, const std::wstring& namespaceUri,
                      const std::wstring& defaultNamespace, const NamespaceMap& namespaces,
                      std::unique_ptr<CXmlWriterContext> parent);
    // A child element of `parent`, which it owns.
    CXmlWriterContext(const std::wstring& localName, const std::wstring& namespaceUri,
                      std::unique_ptr<CXmlWriterContext> parent);
    CXmlWriterContext(const CXmlWriterContext&) = delete;
    CXmlWriterContext& operator=(const CXmlWriterContext&) = delete;
    // Frees the whole chain of parents without recursion.
    virtual ~CXmlWriterContext();

    const std::wstring& GetDefaultNamespace() const;
    bool IsDefaultNamespace(const std::wstring& namespaceUri) const;
    // Every declaration in scope.
    const NamespaceMap& GetNamespaceMap() const;
    void SetDefaultNamespace(const std::wstring& namespaceUri);
    void SetNamespaceMapValue(const std::wstring& namespaceUri, const std::wstring& prefix);
    // The prefix of the namespace in scope. Like a map's subscript: an absent namespace is added with an empty prefix.
    // Since the caller may change the prefix at any time, each search for one then looks at all declarations in scope.
    std::wstring& GetNamespaceMapValue(const std::wstring& namespaceUri);
    std::wstring& GetNamespaceMapValue(const wchar_t* namespaceUri);
    // The prefix of the namespace in scope, or null; inserts nothing.
    const std::wstring* FindPrefix(const std::wstring& namespaceUri) const;
    // Whether any namespace in scope has the prefix.
    bool HasPrefix(const std::wstring& prefix) const;
    // The number of the token by which the element was started, if it was.
    std::uint32_t GetNameNumber() const noexcept { return m_nameNumber; }
    // The namespace of the element as its writer has it once, and the same of those by such a name.
    const CNamespaceName* GetName() const noexcept { return m_name; }
    bool IsDefaultNamespace(const CNamespaceName& name) const;
    const std::wstring* FindPrefix(const CNamespaceName& name) const;
    const std::wstring& InventPrefix(const CNamespaceName& name);
    // Declares the namespace in this element with the first invented prefix that is free in scope, and returns it.
    const std::wstring& InventPrefix(const std::wstring& namespaceUri);

    std::uint64_t m_childCount = 0;
    bool m_startTagOpen = true;
    std::int64_t m_depth = 0;
    CSharedName m_namespaceUri;
    CSharedName m_localName;
    std::wstring m_prefix;  // as written in the start tag
    std::unique_ptr<CXmlWriterContext> m_parent;
    ContextState m_state = ContextState_None;
    bool m_itemsAreGroups = false;

   private:
    friend class CXmlWriter;
    struct Document;
    struct Scope;
    CXmlWriterContext(const std::wstring& localName, const std::wstring& namespaceUri,
                      const std::wstring& defaultNamespace, const NamespaceMap& namespaces,
                      std::unique_ptr<CXmlWriterContext> parent, CXmlWriter* writer);
    void SetName(const std::wstring& namespaceUri);
    void SetName(const CNamespaceName& name);
    Scope& OwnScope();

    const CNamespaceName* m_name = nullptr;  // the namespace
    std::uint32_t m_nameNumber = CNameToken::kNoNumber;
    std::unique_ptr<Document> m_document;  // of the root element
    std::unique_ptr<Scope> m_ownScope;     // null while the scope is inherited
    std::unique_ptr<Scope> m_spareScope;   // that of an earlier element, for reuse
    Scope* m_scope = nullptr;              // the scope in effect: this element's own or that of an ancestor
  };

  CXmlWriter();
  CXmlWriter(const CXmlWriter&) = delete;
  CXmlWriter& operator=(const CXmlWriter&) = delete;
  virtual ~CXmlWriter();

  virtual void Open();
  // Throws CRkException "An Element has not been closed.".
  virtual void Close();
  // Before the root element these hold for the document; later for the open element.
  virtual void SetDefaultNamespace(const std::wstring& namespaceUri);
  virtual void AddNamespace(const std::wstring& prefix, const std::wstring& namespaceUri);
  virtual void WriteComment(const std::wstring& text) = 0;
  // `text` is the whole instruction, L"<?go now?>".
  virtual void WritePI(const std::wstring& text) = 0;
  virtual void WriteInlineSchema(const std::wstring& schemaText) = 0;
  virtual void WriteStartElement(const std::wstring& localName, const std::wstring& namespaceUri) = 0;
  // `type` tells the kind of value that the text came from. Without an open element a text that is not empty throws
  // CRkException, and so does WriteEndElement.
  virtual void WriteString(const std::wstring& text, ItemType type) = 0;
  virtual void WriteEndElement() = 0;
  // Throws CRkException "Attributes must be added before elements", or another one without an open element; the two
  // that follow do too. JSON takes attributes at any time.
  virtual void WriteAttributeString(const std::wstring& localName, const std::wstring& namespaceUri,
                                    const std::wstring& value, ItemType type) = 0;
  // xsi:type and xsi:nil="true" (XML Schema Part 1).
  virtual void WriteAttributeType(const std::wstring& typeNamespaceUri, const std::wstring& typeName,
                                  ItemType type) = 0;
  virtual void WriteAttributeNil() = 0;

  // An element with nothing but text: WriteStartElement, WriteString and WriteEndElement.
  void WriteTextElement(const std::wstring& localName, const std::wstring& namespaceUri, const std::wstring& text,
                        ItemType type);

  // What records write, by the tokens of their names. A writer of the library's own dynamic type keeps what it has made
  // of a name and writes the element in one step; every other writer gets the calls above, and both write the same.
  void StartElement(const CNameToken& name);
  // `isCanonical`: the text is what the library writes for a value of the type, so that nobody need look at it again.
  void TextElement(const CNameToken& name, std::wstring_view text, ItemType type, bool isCanonical = false);
  void Attribute(const CNameToken& name, std::wstring_view value, ItemType type, bool isCanonical = false);
  void EndElement();
  // The same for objects and collections, which do not know the record that they are written for: the record tells the
  // writer before, and takes it back after, by what name they will start their elements, if they do. Null for none.
  void StartElement(const std::wstring& localName, const std::wstring& namespaceUri);
  void TextElement(const std::wstring& localName, const std::wstring& namespaceUri, const std::wstring& text,
                   ItemType type);
  // The same by names of documents, which many of their elements share; the namespace is null for none.
  using SharedText = std::shared_ptr<const std::wstring>;
  void StartElement(const CSharedName& localName, const SharedText& namespaceUri);
  void TextElement(const CSharedName& localName, const SharedText& namespaceUri, const std::wstring& text,
                   ItemType type);
  void Attribute(const CSharedName& localName, const SharedText& namespaceUri, const std::wstring& value,
                 ItemType type);
  const CNameToken* GetExpectedName() const noexcept { return m_expectedName; }
  void SetExpectedName(const CNameToken* name) noexcept { m_expectedName = name; }

  // Declares the prefix on the open start tag, for values that use it, unless it is in scope for the namespace already.
  // False when it cannot be: it is empty, "xml" or "xmlns", or this very tag uses or declares it for another namespace.
  // Writers see the declaration as an attribute of XMLNS_NAMESPACE that is named like the prefix.
  bool DeclareNamespace(const std::wstring& prefix, const std::wstring& namespaceUri);
  // The prefix in scope for the namespace, for names in values; without one an invented prefix is declared as above.
  std::wstring DeclareNamespace(const std::wstring& namespaceUri);
  // The name of the next element is written without this prefix, so that the start tag can declare it anew. Empty for
  // none. JSON text, which invents no prefixes, takes no notice.
  void AvoidPrefix(const std::wstring& prefix) { m_avoidedPrefix = prefix; }
  // About the open element; an element must be open. The prefix in scope for the namespace, or null; whether a name
  // without prefix is in the namespace.
  bool HasOpenElement() const noexcept { return m_context != nullptr; }
  const std::wstring* FindPrefixInScope(const std::wstring& namespaceUri) const;
  bool IsDefaultNamespace(const std::wstring& namespaceUri) const;
  // Whether the document tells namespaces; JSON text may drop them.
  bool WritesNamespaces() const noexcept { return m_writesNamespaces; }
  // Whether names of elements take the prefix when a value brings it: not when it is so long that it would make the
  // document many times as long. It is declared all the same.
  static bool CanNameElements(const std::wstring& prefix) noexcept { return prefix.size() <= 64; }
  // Before the root element: adds the namespace with an invented prefix unless it has one.
  void AddNamespaceWithoutPrefix(const std::wstring& namespaceUri);
  // Tells that names in this namespace, which others share, are about to be written, and tells whether two are the
  // same. The writer keeps them and knows them again by their addresses, so that the length of a namespace counts once.
  void TellNamespace(const SharedText& namespaceUri);
  bool AreSameNamespaces(const SharedText& a, const SharedText& b);
  // Sets the state of the open element; without one it does nothing.
  void SetContextState(ContextState state) noexcept {
    if (m_context == nullptr) return;
    m_context->m_state = state;
    m_context->m_itemsAreGroups = false;
  }
  // The items of the collection that begins are groups without an element of their own: what follows is not an item.
  void SetItemsAreGroups();
  // Space for a value on its way to the writer, invalid at first, and for its text; both are good until the next value.
  RkVariant& BeginValue() noexcept {
    m_value.SetUnused();
    return m_value;
  }
  std::wstring& GetValueBuffer() noexcept { return m_valueBuffer; }
  // The first of "AA", "AB", ... that is not a prefix in the map.
  static std::wstring GetUniquePrefix(const NamespaceMap& namespaces);
  static std::wstring NsIntToString(int n);

  // The namespace bound to the prefix xml.
  static const std::wstring& XML_NAMESPACE;
  // The XML Schema instance namespace (xsi:type, xsi:nil).
  static const std::wstring& XSI_NAMESPACE;
  // The namespace bound to the prefix xmlns.
  static const std::wstring& XMLNS_NAMESPACE;

 protected:
  // Opens a context under the present one and makes it current. The root element's default namespace is the writer's
  // or, when that is empty, the first namespace that was added with an empty prefix.
  CXmlWriterContext& PushContext(const std::wstring& localName, const std::wstring& namespaceUri);
  // The same for a child element, by the token of its name and the namespace as this writer has it once.
  inline CXmlWriterContext& PushContext(const CNameToken& name, const CNamespaceName& namespaceName);
  // Closes the current context and makes its parent current. Its storage serves the next one that is opened.
  void PopContext();
  // The same without a call, for the library's own writers.
  inline void CloseContext();
  // The prefix of the namespace in the current context. Without one (an empty one does not count) a prefix is invented
  // there, which `invented` tells, so that the caller declares it. An element must be open.
  const std::wstring& RequirePrefix(const std::wstring& namespaceUri, bool& invented);
  const std::wstring& RequirePrefix(const CNamespaceName& name, bool& invented);
  // The prefix that stands for the namespace of an element: empty for none and for the default one, null when the scope
  // has none. An element must be open.
  const std::wstring* FindElementPrefix(const std::wstring& namespaceUri) const;
  const std::wstring* FindElementPrefix(const CNamespaceName& name) const;
  // The namespace as this writer has it once.
  const CNamespaceName& NameOf(const std::wstring& namespaceUri) const;

  // For the library's own writers, in their constructors: what they do with names of records, an `Output`. It is made
  // when the root element is opened, and only if the writer is a `Writer` itself.
  template <class Writer, class Output>
  void SetRecordOutput() noexcept {
    m_recordOutputType = &typeid(Writer);
    m_makeRecordOutput = [](CXmlWriter& writer) -> std::unique_ptr<CRecordOutput> {
      return std::make_unique<Output>(static_cast<Writer&>(writer));
    };
  }
  // Forgets what was made of names, because settings have changed; an open document goes on without.
  void ForgetNames() noexcept;

  // What is refused while writing; null (at first) for nothing.
  void SetChecks(std::unique_ptr<OutputChecks> checks);

  std::unique_ptr<OutputChecks> m_checks;
  std::wstring m_defaultNamespace;
  std::unique_ptr<CNamespacePool> m_pool;  // outlives the contexts
  std::unique_ptr<CXmlWriterContext> m_context;
  NamespaceMap m_namespaces;
  // What a form is able to do; for the writers to set.
  bool m_writesNamespaces = true;
  bool m_inventsPrefixes = true;
  std::wstring m_avoidedPrefix;
  // The number of the declarations in effect. Other declarations have another number, and the same ones get theirs back
  // when they are in effect again. kNoScope when they may change unnoticed.
  static constexpr std::uint64_t kNoScope = 0;
  std::uint64_t m_scopeNumber = kNoScope;

 private:
  friend class CRecordOutput;
  void CheckElement(const std::wstring& localName, const std::wstring& namespaceUri);
  bool IsTakenByStartTag(const std::wstring& prefix) const;

  // What StartElement, TextElement and Attribute do for every other writer.
  [[gnu::noinline]] void PlainTextElement(const CNameToken& name, std::wstring_view text, ItemType type);
  [[gnu::noinline]] void PlainAttribute(const CNameToken& name, std::wstring_view value, ItemType type);
  void MakeRecordOutput();
  // The token by which the output takes the name, or null when the operations above have to write it.
  inline const CNameToken* FindKnownToken(const CSharedName& localName, const SharedText& namespaceUri) const noexcept;
  const CNameToken* FindToken(const CSharedName& localName, const SharedText& namespaceUri);
  // The same with names that are met for the first time, or that no token is made of.
  [[gnu::noinline]] void OtherStartElement(const CSharedName& localName, const SharedText& namespaceUri);
  [[gnu::noinline]] void OtherTextElement(const CSharedName& localName, const SharedText& namespaceUri,
                                          const std::wstring& text, ItemType type);
  [[gnu::noinline]] void OtherAttribute(const CSharedName& localName, const SharedText& namespaceUri,
                                        const std::wstring& value, ItemType type);
  // The namespace for the operations above, which is told.
  const std::wstring& TextOf(const SharedText& namespaceUri);
  inline bool IsExpected(const std::wstring& localName, const std::wstring& namespaceUri) const noexcept;
  inline void ReopenContext() noexcept;
  [[gnu::cold, gnu::noinline]] void CheckEnd();
  [[gnu::cold, gnu::noinline]] void CloseScope(CXmlWriterContext& context) noexcept;

  std::uint64_t m_lastScopeNumber = kNoScope;
  const std::type_info* m_recordOutputType = nullptr;
  std::unique_ptr<CRecordOutput> (*m_makeRecordOutput)(CXmlWriter& writer) = nullptr;
  std::unique_ptr<CRecordOutput> m_recordOutput;
  std::unique_ptr<CDocumentNames> m_documentNames;  // null until the first one
  const CNameToken* m_expectedName = nullptr;
  std::wstring m_plainText;  // on its way to writers that take no view
  RkVariant m_value;
  std::wstring m_valueBuffer;
  std::unique_ptr<CXmlWriterContext> m_closedContexts;  // kept for reuse, chained by their parents
};

}  // namespace RkXmlLib16

#endif

// The writer base: open elements and their namespace scopes.
//
// The plain algorithm: each open element has a context, which owns that of its parent, and a map from namespaces to
// prefixes, which begins as a copy of its parent's. A start tag looks up the prefix of its namespace, or declares an
// invented one ("AA", "AB", ...) and adds it to the map. The end of the element drops context and map.
//
// Copied maps would cost each element all that is declared around it, and comparing namespaces their length. So:
//   Names     The writer has each namespace once (CNamespacePool) and compares addresses. CNamespaceName::innermost
//             leads to the declaration of the namespace that is in effect and on to those that it hides. Invariant:
//             that chain holds the declarations of all open elements, innermost first. A look-up takes one step at any
//             depth.
//   Scopes    A Scope holds what its own element declares, and nothing else. Elements without declarations, which are
//             most, have none and share that of an ancestor (m_scope). Closing a scope takes its declarations out of
//             their chains.
//   Maps      GetNamespaceMap still gives the whole map. It is made when it is asked for, and dropped by a declaration.
//   Prefixes  Whether a prefix is in use is found out by a look at all declarations while they are few
//             (kFewDeclarations, kFewScopes). Then the uses are counted. Invariant: the count of a prefix is the number
//             of namespaces for which it is in effect. A caller that got a prefix by reference may change it at any
//             time; from then on (arePrefixesGivenAway) the counts and maps that were kept are not used any more.
//   Invented  All invented prefixes before Scope::firstFree are in use, so that a search begins there. A declaration
//             that frees a prefix sets it back.
//   Values    DeclareNamespace declares prefixes that values bring along. Such a prefix may take that of another
//             namespace, or be none for names; `replaced` keeps what is declared in the document but not used for
//             names.
//   Tokens    Names of documents get tokens of this writer (CDocumentNames), by which they are written like those of
//             records. Long namespaces do not: they are to be told by their addresses.
//   Reuse     Closed contexts wait in a chain, with their storage: an element mostly allocates nothing once another one
//             has been as deep as it.
#include "RkXmlLib16/document/XmlWriter.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/KeyedHash.h"
#include "RkXmlLib16/base/internal/NeverDestroyed.h"
#include "RkXmlLib16/base/internal/WideText.h"
#include "RkXmlLib16/document/internal/DocumentNames.h"
#include "RkXmlLib16/document/internal/NamespacePool.h"
#include "RkXmlLib16/document/internal/OutputChecks.h"
#include "RkXmlLib16/document/internal/RecordOutput.h"

namespace RkXmlLib16 {

// A prefix of a namespace, declared in the scope of this level. One of the same namespace that lies further out is
// hidden by it.
struct CNamespaceDeclaration {
  const CNamespaceName* name = nullptr;
  std::wstring prefix;
  int level = 0;
  CNamespaceDeclaration* hidden = nullptr;
};

namespace {

const CNeverDestroyed<std::wstring> kXmlNamespace(L"http://www.w3.org/XML/1998/namespace");
const CNeverDestroyed<std::wstring> kXsiNamespace(L"http://www.w3.org/2001/XMLSchema-instance");
const CNeverDestroyed<std::wstring> kXmlnsNamespace(L"http://www.w3.org/2000/xmlns/");
const CNeverDestroyed<std::wstring> kNoPrefix, kNoNamespace;

using Declaration = CNamespaceDeclaration;

// With more declarations, in effect or hidden, or more scopes inside each other, prefixes are counted.
constexpr std::size_t kFewDeclarations = 16;
constexpr int kFewScopes = 16;
constexpr std::size_t kLongText = 64;  // longer ones are written in more than one step by some forms

}  // namespace

// What all scopes of a document share.
struct CXmlWriter::CXmlWriterContext::Document {
  CXmlWriter* writer = nullptr;  // unless the context stands alone
  CNamespacePool ownPool;
  CNamespacePool* pool = &ownPool;
  std::size_t declarationCount = 0;
  bool arePrefixesGivenAway = false;  // whoever got one may change it at any time
  bool arePrefixesCounted = false;
  // For how many namespaces a prefix is in effect, and which one that is when it is one: the addresses, as bits, of
  // all.
  struct PrefixUse {
    long count = 0;
    std::uintptr_t names = 0;
  };
  std::unordered_map<std::wstring, PrefixUse, CKeyedHash> prefixUses;
  // The namespaces, or null, of prefixes that are declared in the innermost element but not used for names.
  using ReplacedPrefixes = std::unordered_map<std::wstring, const CNamespaceName*, CKeyedHash>;
  ReplacedPrefixes replaced;

  // Once it is there the use of a prefix stays, so that it can come back without failing.
  void Count(const Declaration& declaration, const std::wstring& prefix, long more) noexcept {
    const auto found = prefixUses.find(prefix);
    if (found == prefixUses.end()) return;
    found->second.count += more;
    found->second.names ^= reinterpret_cast<std::uintptr_t>(declaration.name);
  }
};

// The declarations made in one element, on top of those around it. Only what is declared here is stored, so that a
// scope costs what it declares however much is in effect around it.
struct CXmlWriter::CXmlWriterContext::Scope {
  Scope() = default;
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;
  ~Scope() { Close(); }

  void Open(Document& shared) {
    document = &shared;
    defaultNamespace = &shared.pool->GetEmpty();
    outer = nullptr;
    level = 0;
    firstFree = 0;
  }

  void Open(Scope& around) {
    around.PassUsedPrefixes();
    document = around.document;
    defaultNamespace = around.defaultNamespace;
    outer = &around;
    level = around.level + 1;
    firstFree = around.firstFree;
    number = around.number;
  }

  // Gives the scope, which is the innermost one, a new number because it has changed.
  void Renumber() noexcept {
    if (document->writer != nullptr) number = ++document->writer->m_lastScopeNumber;
    MakeCurrent();
  }
  void MakeCurrent() const noexcept {
    if (document->writer != nullptr)
      document->writer->m_scopeNumber = document->arePrefixesGivenAway ? kNoScope : number;
  }

  // Empties the scope and keeps its storage for another element.
  void Close() noexcept {
    while (count != 0) Remove(declared[--count]);
    for (; !formerlyReplaced.empty(); formerlyReplaced.pop_back())
      formerlyReplaced.back().first->second = formerlyReplaced.back().second;
    merged.reset();
  }

  const CNamespaceName& NameOf(const std::wstring& namespaceUri) const { return document->pool->Find(namespaceUri); }

  Declaration* Find(const CNamespaceName& name) const noexcept {
    Declaration* found = name.innermost;
    while (found != nullptr && found->level > level) found = found->hidden;
    return found;
  }

  Declaration& Declare(const CNamespaceName& name, const std::wstring& prefix) {
    Declaration* const former = Find(name);
    const bool frees = former != nullptr && !former->prefix.empty() && former->prefix != prefix;
    Declaration& changed = former != nullptr && former->level == level ? Change(*former, prefix) : Add(name, prefix);
    merged.reset();
    if (frees) firstFree = 0;
    Renumber();
    return changed;
  }

  const NamespaceMap& Merged() const {
    if (merged != nullptr && !document->arePrefixesGivenAway) return *merged;
    auto all = std::make_unique<NamespaceMap>();
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer)
      for (std::size_t i = 0; i < scope->count; ++i)
        all->emplace(scope->declared[i].name->text.Get(), scope->declared[i].prefix);
    merged = std::move(all);
    return *merged;
  }

  // Whether a namespace has the prefix, which another one of that namespace may have replaced.
  bool HasPrefix(const std::wstring& prefix) const {
    const bool areMany = document->declarationCount > kFewDeclarations || level > kFewScopes;
    if (areMany && !document->arePrefixesGivenAway) {
      if (!document->arePrefixesCounted) CountPrefixes();
      const auto found = document->prefixUses.find(prefix);
      return found != document->prefixUses.end() && found->second.count > 0;
    }
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer) {
      for (std::size_t i = 0; i < scope->count; ++i)
        if (scope->declared[i].prefix == prefix && Find(*scope->declared[i].name) == &scope->declared[i]) return true;
    }
    return false;
  }

  // Whether this scope, which is the innermost one, declares the prefix for a namespace.
  bool Declares(const std::wstring& prefix) const {
    const std::vector<const CNamespaceName*> names = NamesWith(prefix);
    return std::any_of(names.begin(), names.end(), [&](const auto* name) { return Find(*name)->level == level; });
  }

  // Takes the prefix from the namespaces that have it, which are returned: from here on it stands for another one.
  std::vector<const CNamespaceName*> HidePrefix(const std::wstring& prefix) {
    if (FindReplaced(prefix) != nullptr) SetReplaced(prefix, nullptr);
    std::vector<const CNamespaceName*> hidden = NamesWith(prefix);
    for (const CNamespaceName* const name : hidden) Declare(*name, std::wstring());
    return hidden;
  }

  // The namespace of a prefix that is declared in the document but not used for names.
  const CNamespaceName* FindReplaced(const std::wstring& prefix) const {
    const auto found = document->replaced.find(prefix);
    return found != document->replaced.end() ? found->second : nullptr;
  }

  void KeepReplaced(const std::wstring& prefix, const CNamespaceName& name) {
    if (FindReplaced(prefix) == nullptr) SetReplaced(prefix, &name);
  }

  // `reserved` is not taken either.
  std::wstring UniquePrefix(const std::wstring& reserved) {
    std::wstring prefix = PassUsedPrefixes();
    for (int n = firstFree; prefix == reserved || IsUsed(prefix);) prefix = NsIntToString(++n);
    return prefix;
  }

  // The caller may change the prefixes of this scope from now on.
  void GiveAway() noexcept {
    document->arePrefixesGivenAway = true;
    firstFree = 0;
    Renumber();
  }

  Document* document = nullptr;
  const CNamespaceName* defaultNamespace = nullptr;
  std::uint64_t number = kNoScope;  // see m_scopeNumber

 private:
  void SetReplaced(const std::wstring& prefix, const CNamespaceName* name) {
    auto& entry = *document->replaced.try_emplace(prefix, nullptr).first;
    formerlyReplaced.emplace_back(&entry, entry.second);
    entry.second = name;
  }

  // The namespaces for which the prefix is in effect.
  std::vector<const CNamespaceName*> NamesWith(const std::wstring& prefix) const {
    std::vector<const CNamespaceName*> names;
    if (!HasPrefix(prefix)) return names;
    if (document->arePrefixesCounted && !document->arePrefixesGivenAway) {
      const Document::PrefixUse& use = document->prefixUses.find(prefix)->second;
      if (use.count == 1) return {reinterpret_cast<const CNamespaceName*>(use.names)};
    }
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer) {
      for (std::size_t i = 0; i < scope->count; ++i) {
        const Declaration& declaration = scope->declared[i];
        if (declaration.prefix == prefix && Find(*declaration.name) == &declaration) names.push_back(declaration.name);
      }
    }
    return names;
  }

  Declaration& Add(const CNamespaceName& name, const std::wstring& prefix) {
    if (count == declared.size()) declared.emplace_back();
    Declaration& added = declared[count];
    added.prefix = prefix;
    if (document->arePrefixesCounted) document->prefixUses[prefix];
    added.name = &name;
    added.level = level;
    Declaration** at = &name.innermost;
    while (*at != nullptr && (*at)->level > level) at = &(*at)->hidden;
    added.hidden = *at;
    *at = &added;
    ++count;
    ++document->declarationCount;
    if (document->arePrefixesCounted) {
      document->Count(added, prefix, 1);
      if (added.hidden != nullptr) document->Count(added, added.hidden->prefix, -1);
    }
    return added;
  }

  Declaration& Change(Declaration& declaration, const std::wstring& prefix) {
    std::wstring copy = prefix;
    if (document->arePrefixesCounted) {
      document->prefixUses[prefix];
      document->Count(declaration, prefix, 1);
      document->Count(declaration, declaration.prefix, -1);
    }
    declaration.prefix.swap(copy);
    return declaration;
  }

  void Remove(const Declaration& declaration) noexcept {
    Declaration** at = &declaration.name->innermost;
    while (*at != nullptr && *at != &declaration) at = &(*at)->hidden;
    if (*at != nullptr) *at = declaration.hidden;
    --document->declarationCount;
    if (!document->arePrefixesCounted) return;
    document->Count(declaration, declaration.prefix, -1);
    if (declaration.hidden != nullptr) document->Count(declaration, declaration.hidden->prefix, 1);
  }

  void CountPrefixes() const {
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer) {
      for (std::size_t i = 0; i < scope->count; ++i) {
        const Declaration& declaration = scope->declared[i];
        document->prefixUses[declaration.prefix];
        if (Find(*declaration.name) == &declaration) document->Count(declaration, declaration.prefix, 1);
      }
    }
    document->arePrefixesCounted = true;
  }

  bool IsUsed(const std::wstring& prefix) const { return FindReplaced(prefix) != nullptr || HasPrefix(prefix); }

  // The first invented prefix that is not in use, where those of scopes inside begin too.
  std::wstring PassUsedPrefixes() {
    std::wstring prefix = NsIntToString(firstFree);
    while (IsUsed(prefix)) prefix = NsIntToString(++firstFree);
    return prefix;
  }

  const Scope* outer = nullptr;
  int level = 0;
  int firstFree = 0;  // all invented prefixes before this one are in use
  std::deque<Declaration> declared;
  std::size_t count = 0;  // of the declarations that are in use, first ones first; the others are spare
  std::vector<std::pair<Document::ReplacedPrefixes::value_type*, const CNamespaceName*>> formerlyReplaced;
  mutable std::unique_ptr<NamespaceMap> merged;
};

CXmlWriter::CXmlWriterContext::CXmlWriterContext(const std::wstring& localName, const std::wstring& namespaceUri,
                                                 const std::wstring& defaultNamespace, const NamespaceMap& namespaces,
                                                 std::unique_ptr<CXmlWriterContext> parent)
    : CXmlWriterContext(localName, namespaceUri, defaultNamespace, namespaces, std::move(parent), nullptr) {}

CXmlWriter::CXmlWriterContext::CXmlWriterContext(const std::wstring& localName, const std::wstring& namespaceUri,
                                                 const std::wstring& defaultNamespace, const NamespaceMap& namespaces,
                                                 std::unique_ptr<CXmlWriterContext> parent, CXmlWriter* writer)
    : m_localName(localName),
      m_parent(std::move(parent)),
      m_document(std::make_unique<Document>()),
      m_ownScope(std::make_unique<Scope>()),
      m_scope(m_ownScope.get()) {
  m_document->writer = writer;
  if (writer != nullptr) m_document->pool = writer->m_pool.get();
  m_scope->Open(*m_document);
  SetName(namespaceUri);
  m_scope->defaultNamespace = &m_scope->NameOf(defaultNamespace);
  for (const auto& [uri, prefix] : namespaces) m_scope->Declare(m_scope->NameOf(uri), prefix);
  m_scope->Renumber();
}

CXmlWriter::CXmlWriterContext::CXmlWriterContext(const std::wstring& localName, const std::wstring& namespaceUri,
                                                 std::unique_ptr<CXmlWriterContext> parent)
    : m_depth(parent->m_depth + 1), m_localName(localName), m_parent(std::move(parent)), m_scope(m_parent->m_scope) {
  SetName(namespaceUri);
}

CXmlWriter::CXmlWriterContext::~CXmlWriterContext() {
  m_ownScope.reset();  // before those around it
  while (m_parent != nullptr) m_parent = std::move(m_parent->m_parent);
}

void CXmlWriter::CXmlWriterContext::SetName(const std::wstring& namespaceUri) {
  const CNamespaceName& name = m_scope->NameOf(namespaceUri);
  if (&name != m_name) SetName(name);
}

void CXmlWriter::CXmlWriterContext::SetName(const CNamespaceName& name) {
  m_name = &name;
  m_namespaceUri = name.text;
}

CXmlWriter::CXmlWriterContext::Scope& CXmlWriter::CXmlWriterContext::OwnScope() {
  if (m_ownScope == nullptr) {
    if (m_spareScope == nullptr) m_spareScope = std::make_unique<Scope>();
    m_spareScope->Open(*m_scope);
    m_ownScope = std::move(m_spareScope);
    m_scope = m_ownScope.get();
  }
  return *m_scope;
}

const std::wstring& CXmlWriter::CXmlWriterContext::GetDefaultNamespace() const {
  return m_scope->defaultNamespace->text.Get();
}

bool CXmlWriter::CXmlWriterContext::IsDefaultNamespace(const std::wstring& namespaceUri) const {
  return IsDefaultNamespace(m_scope->NameOf(namespaceUri));
}

bool CXmlWriter::CXmlWriterContext::IsDefaultNamespace(const CNamespaceName& name) const {
  return &name == m_scope->defaultNamespace;
}

const CXmlWriter::NamespaceMap& CXmlWriter::CXmlWriterContext::GetNamespaceMap() const { return m_scope->Merged(); }

void CXmlWriter::CXmlWriterContext::SetDefaultNamespace(const std::wstring& namespaceUri) {
  Scope& scope = OwnScope();
  scope.defaultNamespace = &scope.NameOf(namespaceUri);
  scope.Renumber();
}

void CXmlWriter::CXmlWriterContext::SetNamespaceMapValue(const std::wstring& namespaceUri, const std::wstring& prefix) {
  Scope& scope = OwnScope();
  scope.Declare(scope.NameOf(namespaceUri), prefix);
}

std::wstring& CXmlWriter::CXmlWriterContext::GetNamespaceMapValue(const std::wstring& namespaceUri) {
  const CNamespaceName& name = m_scope->NameOf(namespaceUri);
  const Declaration* const found = m_scope->Find(name);
  Declaration& own = m_scope->Declare(name, found != nullptr ? found->prefix : std::wstring());
  m_scope->GiveAway();
  return own.prefix;
}

std::wstring& CXmlWriter::CXmlWriterContext::GetNamespaceMapValue(const wchar_t* namespaceUri) {
  return GetNamespaceMapValue(std::wstring(namespaceUri != nullptr ? namespaceUri : L""));
}

const std::wstring* CXmlWriter::CXmlWriterContext::FindPrefix(const std::wstring& namespaceUri) const {
  return FindPrefix(m_scope->NameOf(namespaceUri));
}

const std::wstring* CXmlWriter::CXmlWriterContext::FindPrefix(const CNamespaceName& name) const {
  const Declaration* const found = m_scope->Find(name);
  return found != nullptr ? &found->prefix : nullptr;
}

bool CXmlWriter::CXmlWriterContext::HasPrefix(const std::wstring& prefix) const { return m_scope->HasPrefix(prefix); }

const std::wstring& CXmlWriter::CXmlWriterContext::InventPrefix(const std::wstring& namespaceUri) {
  return InventPrefix(m_scope->NameOf(namespaceUri));
}

const std::wstring& CXmlWriter::CXmlWriterContext::InventPrefix(const CNamespaceName& name) {
  Scope& scope = OwnScope();
  // The start tag may use a prefix that a later declaration for its namespace took out of the scope.
  return scope.Declare(name, scope.UniquePrefix(m_prefix)).prefix;
}

const std::wstring& CXmlWriter::XML_NAMESPACE = kXmlNamespace.Get();
const std::wstring& CXmlWriter::XSI_NAMESPACE = kXsiNamespace.Get();
const std::wstring& CXmlWriter::XMLNS_NAMESPACE = kXmlnsNamespace.Get();

CXmlWriter::CXmlWriter() : m_pool(std::make_unique<CNamespacePool>()) { m_namespaces[XML_NAMESPACE] = L"xml"; }

CXmlWriter::~CXmlWriter() = default;

void CXmlWriter::Open() {}

void CXmlWriter::Close() {
  if (m_context != nullptr) throw CRkException(L"An Element has not been closed.");
}

void CXmlWriter::SetDefaultNamespace(const std::wstring& namespaceUri) {
  if (m_context == nullptr)
    m_defaultNamespace = namespaceUri;
  else
    m_context->SetDefaultNamespace(namespaceUri);
}

void CXmlWriter::AddNamespace(const std::wstring& prefix, const std::wstring& namespaceUri) {
  if (m_context == nullptr)
    m_namespaces[namespaceUri] = prefix;
  else
    m_context->SetNamespaceMapValue(namespaceUri, prefix);
}

void CXmlWriter::WriteTextElement(const std::wstring& localName, const std::wstring& namespaceUri,
                                  const std::wstring& text, ItemType type) {
  WriteStartElement(localName, namespaceUri);
  WriteString(text, type);
  WriteEndElement();
}

bool CXmlWriter::DeclareNamespace(const std::wstring& prefix, const std::wstring& namespaceUri) {
  if (prefix.empty() || prefix == L"xmlns" || prefix == L"xml") return false;
  std::vector<const CNamespaceName*> hidden;
  const bool isForNames = m_context == nullptr || CanNameElements(prefix);
  if (m_context != nullptr) {
    const CNamespaceName& name = NameOf(namespaceUri);
    const std::wstring* known = m_context->FindPrefix(name);
    if (known != nullptr && *known == prefix) return true;
    if (m_context->m_scope->FindReplaced(prefix) == &name) return true;
    if (IsTakenByStartTag(prefix)) return false;
    CXmlWriterContext::Scope& scope = m_context->OwnScope();
    hidden = scope.HidePrefix(prefix);
    known = m_context->FindPrefix(name);
    if (!isForNames)
      scope.KeepReplaced(prefix, name);
    else if (known != nullptr && !known->empty())
      scope.KeepReplaced(*known, name);
    AddNamespace(L"xmlns", XMLNS_NAMESPACE);
  }
  WriteAttributeString(prefix, XMLNS_NAMESPACE, namespaceUri, ItemType_string);
  if (isForNames) AddNamespace(prefix, namespaceUri);
  if (!m_inventsPrefixes)
    for (const CNamespaceName* const other : hidden) DeclareNamespace(other->text.Get());
  return true;
}

std::wstring CXmlWriter::DeclareNamespace(const std::wstring& namespaceUri) {
  const std::wstring* const known = FindPrefixInScope(namespaceUri);
  if (known != nullptr) return *known;
  std::wstring prefix = m_context->m_scope->UniquePrefix(m_context->m_prefix);
  DeclareNamespace(prefix, namespaceUri);
  return prefix;
}

// By the name of the element, which may use a prefix that a later declaration for its namespace took out of the scope,
// or by a declaration that the tag has.
bool CXmlWriter::IsTakenByStartTag(const std::wstring& prefix) const {
  const CNamespaceName& name = *m_context->GetName();
  const bool isUnprefixed = name.ordinal == 0 || m_context->IsDefaultNamespace(name);
  const std::wstring* const own = isUnprefixed ? nullptr : m_context->FindPrefix(name);
  return m_context->m_prefix == prefix || (own != nullptr && *own == prefix) ||
         (m_context->m_ownScope != nullptr && m_context->m_ownScope->Declares(prefix));
}

const std::wstring* CXmlWriter::FindPrefixInScope(const std::wstring& namespaceUri) const {
  const std::wstring* const prefix = m_context->FindPrefix(namespaceUri);
  return prefix != nullptr && !prefix->empty() ? prefix : nullptr;
}

bool CXmlWriter::IsDefaultNamespace(const std::wstring& namespaceUri) const {
  return m_context->IsDefaultNamespace(namespaceUri);
}

void CXmlWriter::AddNamespaceWithoutPrefix(const std::wstring& namespaceUri) {
  if (m_namespaces.find(namespaceUri) == m_namespaces.end()) AddNamespace(GetUniquePrefix(m_namespaces), namespaceUri);
}

void CXmlWriter::TellNamespace(const SharedText& namespaceUri) {
  if (namespaceUri != nullptr) m_pool->Tell(namespaceUri);
}

bool CXmlWriter::AreSameNamespaces(const SharedText& a, const SharedText& b) {
  return a == b || (a != nullptr && b != nullptr && m_pool->AreSame(a, b));
}

const CNamespaceName& CXmlWriter::NameOf(const std::wstring& namespaceUri) const { return m_pool->Find(namespaceUri); }

void CXmlWriter::ForgetNames() noexcept { m_recordOutput.reset(); }

void CXmlWriter::MakeRecordOutput() {
  if (m_recordOutput != nullptr || m_checks != nullptr || m_recordOutputType == nullptr) return;
  if (typeid(*this) == *m_recordOutputType) m_recordOutput = m_makeRecordOutput(*this);
}

void CXmlWriter::StartElement(const CNameToken& name) { CRecordOutput::WriteStart(*this, name); }

void CXmlWriter::TextElement(const CNameToken& name, std::wstring_view text, ItemType type, bool isCanonical) {
  CRecordOutput::WriteText(*this, name, text, type, isCanonical);
}

void CXmlWriter::Attribute(const CNameToken& name, std::wstring_view value, ItemType type, bool isCanonical) {
  CRecordOutput::WriteAttribute(*this, name, value, type, isCanonical);
}

void CXmlWriter::EndElement() { CRecordOutput::WriteEnd(*this); }

void CXmlWriter::PlainTextElement(const CNameToken& name, std::wstring_view text, ItemType type) {
  m_plainText = text;
  WriteTextElement(name.GetLocalName(), name.GetNamespace(), m_plainText, type);
}

void CXmlWriter::PlainAttribute(const CNameToken& name, std::wstring_view value, ItemType type) {
  m_plainText = value;
  WriteAttributeString(name.GetLocalName(), name.GetNamespace(), m_plainText, type);
}

void CXmlWriter::StartElement(const std::wstring& localName, const std::wstring& namespaceUri) {
  CRecordOutput::WriteStart(*this, localName, namespaceUri);
}

void CXmlWriter::TextElement(const std::wstring& localName, const std::wstring& namespaceUri, const std::wstring& text,
                             ItemType type) {
  CRecordOutput* const output = CRecordOutput::Of(*this);
  if (output == nullptr || !IsExpected(localName, namespaceUri))
    return WriteTextElement(localName, namespaceUri, text, type);
  output->TextElement(*m_expectedName, text, type, /*isCanonical=*/false);
}

// A token that was found before, without a call.
inline const CNameToken* CXmlWriter::FindKnownToken(const CSharedName& localName,
                                                    const SharedText& namespaceUri) const noexcept {
  const bool mayBeKnown = m_documentNames != nullptr && CRecordOutput::Of(*this) != nullptr;
  return mayBeKnown ? m_documentNames->FindKnown(localName, namespaceUri) : nullptr;
}

const CNameToken* CXmlWriter::FindToken(const CSharedName& localName, const SharedText& namespaceUri) {
  if (CRecordOutput::Of(*this) == nullptr || (namespaceUri != nullptr && !CNamespacePool::IsShort(*namespaceUri)))
    return nullptr;
  if (m_documentNames == nullptr) m_documentNames = std::make_unique<CDocumentNames>();
  if (const CNameToken* const known = m_documentNames->FindKnown(localName, namespaceUri)) return known;
  bool isNew = false;
  const CNameToken& token = m_documentNames->Find(localName, namespaceUri, *m_pool, isNew);
  return isNew && !m_recordOutput->TakesNewNames() ? nullptr : &token;
}

inline const std::wstring& CXmlWriter::TextOf(const SharedText& namespaceUri) {
  if (namespaceUri == nullptr) return kNoNamespace.Get();
  m_pool->Tell(namespaceUri);
  return *namespaceUri;
}

void CXmlWriter::StartElement(const CSharedName& localName, const SharedText& namespaceUri) {
  if (const CNameToken* const token = FindKnownToken(localName, namespaceUri))
    return m_recordOutput->StartElement(*token);
  OtherStartElement(localName, namespaceUri);
}

void CXmlWriter::OtherStartElement(const CSharedName& localName, const SharedText& namespaceUri) {
  if (const CNameToken* const token = FindToken(localName, namespaceUri)) return m_recordOutput->StartElement(*token);
  WriteStartElement(localName.Get(), TextOf(namespaceUri));
}

void CXmlWriter::TextElement(const CSharedName& localName, const SharedText& namespaceUri, const std::wstring& text,
                             ItemType type) {
  const CNameToken* const token = FindKnownToken(localName, namespaceUri);
  if (token != nullptr && text.size() <= kLongText)
    return m_recordOutput->TextElement(*token, text, type, /*isCanonical=*/false);
  OtherTextElement(localName, namespaceUri, text, type);
}

void CXmlWriter::OtherTextElement(const CSharedName& localName, const SharedText& namespaceUri,
                                  const std::wstring& text, ItemType type) {
  const CNameToken* const token = FindToken(localName, namespaceUri);
  if (token == nullptr) return WriteTextElement(localName.Get(), TextOf(namespaceUri), text, type);
  if (text.size() <= kLongText) return m_recordOutput->TextElement(*token, text, type, /*isCanonical=*/false);
  m_recordOutput->StartElement(*token);
  WriteString(text, type);
  EndElement();
}

void CXmlWriter::Attribute(const CSharedName& localName, const SharedText& namespaceUri, const std::wstring& value,
                           ItemType type) {
  if (const CNameToken* const token = FindKnownToken(localName, namespaceUri))
    return m_recordOutput->Attribute(*token, value, type, /*isCanonical=*/false);
  OtherAttribute(localName, namespaceUri, value, type);
}

void CXmlWriter::OtherAttribute(const CSharedName& localName, const SharedText& namespaceUri, const std::wstring& value,
                                ItemType type) {
  if (const CNameToken* const token = FindToken(localName, namespaceUri))
    return m_recordOutput->Attribute(*token, value, type, /*isCanonical=*/false);
  WriteAttributeString(localName.Get(), TextOf(namespaceUri), value, type);
}

void CXmlWriter::SetItemsAreGroups() {
  if (m_context != nullptr) m_context->m_itemsAreGroups = true;
}

std::wstring CXmlWriter::GetUniquePrefix(const NamespaceMap& namespaces) {
  std::unordered_set<std::wstring, CKeyedHash> used;
  for (const auto& entry : namespaces) used.insert(entry.second);
  int n = 0;
  while (used.count(NsIntToString(n)) != 0) ++n;
  return NsIntToString(n);
}

std::wstring CXmlWriter::NsIntToString(int n) {
  return {static_cast<wchar_t>(L'A' + n / 26), static_cast<wchar_t>(L'A' + n % 26)};
}

CXmlWriter::CXmlWriterContext& CXmlWriter::PushContext(const std::wstring& localName,
                                                       const std::wstring& namespaceUri) {
  if (m_context == nullptr) {
    const std::wstring* defaultNamespace = &m_defaultNamespace;
    for (auto entry = m_namespaces.begin(); defaultNamespace->empty() && entry != m_namespaces.end(); ++entry)
      if (entry->second.empty()) defaultNamespace = &entry->first;
    m_context.reset(new CXmlWriterContext(localName, namespaceUri, *defaultNamespace, m_namespaces, nullptr, this));
    MakeRecordOutput();
  } else if (m_closedContexts == nullptr) {
    CSharedName name(localName);  // before the parent moves, so that a failure loses no element
    NameOf(namespaceUri);
    auto context = std::make_unique<CXmlWriterContext>(std::wstring(), namespaceUri, std::move(m_context));
    context->m_localName = std::move(name);
    m_context = std::move(context);
  } else {
    m_closedContexts->m_localName.Set(localName);
    m_closedContexts->m_scope = m_context->m_scope;
    if (&NameOf(namespaceUri) != m_closedContexts->m_name) m_closedContexts->SetName(namespaceUri);
    ReopenContext();
  }
  if (m_checks != nullptr) CheckElement(localName, namespaceUri);
  return *m_context;
}

void CXmlWriter::CheckElement(const std::wstring& localName, const std::wstring& namespaceUri) {
  m_checks->Element(localName, namespaceUri, !m_context->GetDefaultNamespace().empty());
  if (m_context->m_depth != 0) return;
  std::unordered_set<std::wstring> prefixes;
  for (const auto& [uri, prefix] : m_namespaces) {
    if (prefix.empty()) continue;
    m_checks->Declaration(prefix, uri);
    if (!prefixes.insert(prefix).second) OutputChecks::Refuse(L"prefix of two namespaces", prefix);
  }
}

void CXmlWriter::SetChecks(std::unique_ptr<OutputChecks> checks) {
  m_checks = std::move(checks);
  m_recordOutput.reset();
}

void CXmlWriter::PopContext() { CloseContext(); }

void CXmlWriter::CheckEnd() { m_checks->EndElement(); }

// Of the element that was closed.
void CXmlWriter::CloseScope(CXmlWriterContext& context) noexcept {
  context.m_ownScope->Close();
  context.m_spareScope = std::move(context.m_ownScope);
  if (m_context != nullptr)
    m_context->m_scope->MakeCurrent();
  else
    m_scopeNumber = kNoScope;
}

const std::wstring& CXmlWriter::RequirePrefix(const std::wstring& namespaceUri, bool& invented) {
  return RequirePrefix(NameOf(namespaceUri), invented);
}

const std::wstring& CXmlWriter::RequirePrefix(const CNamespaceName& name, bool& invented) {
  const std::wstring* prefix = m_context->FindPrefix(name);
  invented = prefix == nullptr || prefix->empty() || (!m_avoidedPrefix.empty() && *prefix == m_avoidedPrefix);
  if (invented) prefix = &m_context->InventPrefix(name);
  if (m_checks != nullptr) m_checks->Declaration(*prefix, name.text.Get());
  return *prefix;
}

const std::wstring* CXmlWriter::FindElementPrefix(const std::wstring& namespaceUri) const {
  return FindElementPrefix(NameOf(namespaceUri));
}

const std::wstring* CXmlWriter::FindElementPrefix(const CNamespaceName& name) const {
  const CXmlWriterContext::Scope& scope = *m_context->m_scope;
  if (name.ordinal == 0 || &name == scope.defaultNamespace) return &kNoPrefix.Get();
  const Declaration* const found = scope.Find(name);
  if (found == nullptr || found->prefix.empty()) return nullptr;
  const bool isAvoided = m_inventsPrefixes && !m_avoidedPrefix.empty() && found->prefix == m_avoidedPrefix;
  return isAvoided ? nullptr : &found->prefix;
}

}  // namespace RkXmlLib16

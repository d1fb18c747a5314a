#include "RkXmlLib16/xml/XmlWriter.h"

#include <unordered_set>
#include <utility>

#include "RkXmlLib16/core/Exception.h"

namespace RkXmlLib16 {

namespace {

// A prefix of the form that is invented, as a number; 0 for any other.
std::uint64_t InventedPrefixKey(const std::wstring& prefix) {
  if (prefix.size() != 2) return 0;
  return static_cast<std::uint64_t>(prefix[0]) << 32 | static_cast<std::uint32_t>(prefix[1]);
}

}  // namespace

// The declarations made in one element, on top of those around it. Only what is declared here is stored, so that a
// scope costs what it declares however much is in effect around it.
struct CXmlWriter::CXmlWriterContext::Scope {
  explicit Scope(const Scope* around) : outer(around) {
    if (outer == nullptr) return;
    firstFree = outer->firstFree;
    plain = outer->plain;
  }

  const NamespaceMap::value_type* Find(const std::wstring& namespaceUri) const {
    if (lastFound != nullptr && lastFound->first == namespaceUri) return lastFound;
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer) {
      const auto found = scope->declared.find(namespaceUri);
      if (found != scope->declared.end()) return lastFound = &*found;
    }
    return nullptr;
  }

  void Declare(const std::wstring& namespaceUri, const std::wstring& prefix) {
    const NamespaceMap::value_type* former = Find(namespaceUri);
    if (former != nullptr && !former->second.empty() && former->second != prefix) plain = false;
    declared[namespaceUri] = prefix;
    if (const std::uint64_t key = InventedPrefixKey(prefix)) prefixes.insert(key);
    lastFound = nullptr;
    merged.reset();
  }

  const NamespaceMap& Merged() const {
    if (outer == nullptr) return declared;
    if (merged != nullptr && plain) return *merged;
    auto all = std::make_unique<NamespaceMap>();
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer)
      all->insert(scope->declared.begin(), scope->declared.end());
    merged = std::move(all);
    return *merged;
  }

  bool HasPrefix(std::uint64_t key) const {
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer)
      if (scope->prefixes.count(key) != 0) return true;
    return false;
  }

  std::wstring UniquePrefix() {
    if (!plain) return GetUniquePrefix(Merged());
    for (;; ++firstFree) {
      std::wstring prefix = NsIntToString(firstFree);
      if (!HasPrefix(InventedPrefixKey(prefix))) return prefix;
    }
  }

  const Scope* outer;
  std::wstring defaultNamespace;
  NamespaceMap declared;
  std::unordered_set<std::uint64_t> prefixes;  // those of `declared` that could be invented
  int firstFree = 0;                           // all invented prefixes before this one are in use
  // Nothing in effect has replaced a prefix, so `prefixes` and `firstFree` hold for the whole chain of scopes.
  bool plain = true;
  mutable const NamespaceMap::value_type* lastFound = nullptr;
  mutable std::unique_ptr<NamespaceMap> merged;
};

CXmlWriter::CXmlWriterContext::CXmlWriterContext(const std::wstring& localName, const std::wstring& namespaceUri,
                                                 const std::wstring& defaultNamespace, const NamespaceMap& namespaces,
                                                 std::unique_ptr<CXmlWriterContext> parent)
    : m_namespaceUri(namespaceUri),
      m_localName(localName),
      m_parent(std::move(parent)),
      m_ownScope(std::make_unique<Scope>(nullptr)),
      m_scope(m_ownScope.get()) {
  m_scope->defaultNamespace = defaultNamespace;
  for (const auto& [uri, prefix] : namespaces) m_scope->Declare(uri, prefix);
}

CXmlWriter::CXmlWriterContext::CXmlWriterContext(const std::wstring& localName, const std::wstring& namespaceUri,
                                                 std::unique_ptr<CXmlWriterContext> parent)
    : m_depth(parent->m_depth + 1),
      m_namespaceUri(namespaceUri),
      m_localName(localName),
      m_parent(std::move(parent)),
      m_scope(m_parent->m_scope) {}

CXmlWriter::CXmlWriterContext::~CXmlWriterContext() {
  while (m_parent != nullptr) m_parent = std::move(m_parent->m_parent);
}

CXmlWriter::CXmlWriterContext::Scope& CXmlWriter::CXmlWriterContext::OwnScope() {
  if (m_ownScope == nullptr) {
    auto own = std::make_unique<Scope>(m_scope);
    own->defaultNamespace = m_scope->defaultNamespace;
    m_ownScope = std::move(own);
    m_scope = m_ownScope.get();
  }
  return *m_scope;
}

const std::wstring& CXmlWriter::CXmlWriterContext::GetDefaultNamespace() const { return m_scope->defaultNamespace; }

const CXmlWriter::NamespaceMap& CXmlWriter::CXmlWriterContext::GetNamespaceMap() const { return m_scope->Merged(); }

void CXmlWriter::CXmlWriterContext::SetDefaultNamespace(const std::wstring& namespaceUri) {
  OwnScope().defaultNamespace = namespaceUri;
}

void CXmlWriter::CXmlWriterContext::SetNamespaceMapValue(const std::wstring& namespaceUri, const std::wstring& prefix) {
  OwnScope().Declare(namespaceUri, prefix);
}

std::wstring& CXmlWriter::CXmlWriterContext::GetNamespaceMapValue(const std::wstring& namespaceUri) {
  const auto own = m_scope->declared.find(namespaceUri);
  if (own != m_scope->declared.end()) {
    m_scope->plain = false;  // the caller may change it
    return own->second;
  }
  const NamespaceMap::value_type* found = m_scope->Find(namespaceUri);
  m_scope->Declare(namespaceUri, found != nullptr ? found->second : std::wstring());
  m_scope->plain = false;
  return m_scope->declared.find(namespaceUri)->second;
}

std::wstring& CXmlWriter::CXmlWriterContext::GetNamespaceMapValue(const wchar_t* namespaceUri) {
  return GetNamespaceMapValue(std::wstring(namespaceUri != nullptr ? namespaceUri : L""));
}

const std::wstring* CXmlWriter::CXmlWriterContext::FindPrefix(const std::wstring& namespaceUri) const {
  const NamespaceMap::value_type* found = m_scope->Find(namespaceUri);
  return found != nullptr ? &found->second : nullptr;
}

const std::wstring& CXmlWriter::CXmlWriterContext::InventPrefix(const std::wstring& namespaceUri) {
  Scope& scope = OwnScope();
  scope.Declare(namespaceUri, scope.UniquePrefix());
  return scope.Find(namespaceUri)->second;
}

const std::wstring CXmlWriter::XML_NAMESPACE = L"http://www.w3.org/XML/1998/namespace";
const std::wstring CXmlWriter::XSI_NAMESPACE = L"http://www.w3.org/2001/XMLSchema-instance";
const std::wstring CXmlWriter::XMLNS_NAMESPACE = L"http://www.w3.org/2000/xmlns/";

CXmlWriter::CXmlWriter() { m_namespaces[XML_NAMESPACE] = L"xml"; }

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

bool CXmlWriter::DeclareNamespace(const std::wstring& prefix, const std::wstring& namespaceUri) {
  if (m_context != nullptr) {
    const std::wstring* known = m_context->FindPrefix(namespaceUri);
    if (known != nullptr && *known == prefix) return true;
    for (const auto& entry : m_context->GetNamespaceMap())
      if (entry.second == prefix) return false;
    AddNamespace(L"xmlns", XMLNS_NAMESPACE);
  }
  WriteAttributeString(prefix, XMLNS_NAMESPACE, namespaceUri, ItemType_string);
  AddNamespace(prefix, namespaceUri);
  return true;
}

void CXmlWriter::SetContextState(ContextState state) {
  if (m_context != nullptr) m_context->m_state = state;
}

std::wstring CXmlWriter::GetUniquePrefix(const NamespaceMap& namespaces) {
  std::unordered_set<std::uint64_t> used;
  for (const auto& entry : namespaces) used.insert(InventedPrefixKey(entry.second));
  for (int n = 0;; ++n) {
    std::wstring prefix = NsIntToString(n);
    if (used.count(InventedPrefixKey(prefix)) == 0) return prefix;
  }
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
    m_context = std::make_unique<CXmlWriterContext>(localName, namespaceUri, *defaultNamespace, m_namespaces, nullptr);
  } else if (m_closedContexts == nullptr) {
    std::wstring name = localName;  // copied before the parent moves, so that a failure loses no element
    std::wstring uri = namespaceUri;
    auto context = std::make_unique<CXmlWriterContext>(std::wstring(), std::wstring(), std::move(m_context));
    context->m_localName.swap(name);
    context->m_namespaceUri.swap(uri);
    m_context = std::move(context);
  } else {
    m_closedContexts->m_localName = localName;
    m_closedContexts->m_namespaceUri = namespaceUri;
    std::unique_ptr<CXmlWriterContext> context = std::move(m_closedContexts);
    m_closedContexts = std::move(context->m_parent);
    context->m_childCount = 0;
    context->m_startTagOpen = true;
    context->m_depth = m_context->m_depth + 1;
    context->m_prefix.clear();
    context->m_state = ContextState_None;
    context->m_scope = m_context->m_scope;
    context->m_parent = std::move(m_context);
    m_context = std::move(context);
  }
  return *m_context;
}

void CXmlWriter::PopContext() {
  std::unique_ptr<CXmlWriterContext> context = std::move(m_context);
  m_context = std::move(context->m_parent);
  context->m_ownScope.reset();
  context->m_scope = nullptr;
  context->m_parent = std::move(m_closedContexts);
  m_closedContexts = std::move(context);
}

const std::wstring& CXmlWriter::RequirePrefix(const std::wstring& namespaceUri, bool& invented) {
  const std::wstring* prefix = m_context->FindPrefix(namespaceUri);
  invented = prefix == nullptr || prefix->empty();
  return invented ? m_context->InventPrefix(namespaceUri) : *prefix;
}

}  // namespace RkXmlLib16

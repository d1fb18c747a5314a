#include "RkXmlLib16/xml/XmlWriter.h"

#include <algorithm>
#include <cstddef>
#include <unordered_set>
#include <utility>

#include "RkXmlLib16/core/Exception.h"

namespace RkXmlLib16 {

namespace {

// Up to so many declarations of one element are searched one by one for a prefix.
constexpr std::size_t kFewDeclarations = 8;

}  // namespace

// The declarations made in one element, on top of those around it. Only what is declared here is stored, so that a
// scope costs what it declares however much is in effect around it.
struct CXmlWriter::CXmlWriterContext::Scope {
  void Open(const Scope* around) {
    outer = around;
    firstFree = around != nullptr ? around->firstFree : 0;
    plain = around == nullptr || around->plain;
    if (around != nullptr) defaultNamespace = around->defaultNamespace;
  }

  // Empties the scope and keeps its storage for another element.
  void Close() noexcept {
    spare.merge(declared);
    declared.clear();
    prefixes.clear();
    lastFound = nullptr;
    merged.reset();
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
    lastFound = nullptr;
    merged.reset();
    Store(namespaceUri, prefix);
    if (declared.size() <= kFewDeclarations) return;
    if (prefixes.empty())
      for (const auto& entry : declared) prefixes.insert(entry.second);
    prefixes.insert(prefix);
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

  bool HasPrefix(const std::wstring& prefix) const {
    const auto among = [&](const NamespaceMap& map) {
      return std::any_of(map.begin(), map.end(), [&](const auto& entry) { return entry.second == prefix; });
    };
    if (!plain) return among(Merged());
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer)
      if (scope->prefixes.empty() ? among(scope->declared) : scope->prefixes.count(prefix) != 0) return true;
    return false;
  }

  // `reserved` is not taken either.
  std::wstring UniquePrefix(const std::wstring& reserved) {
    if (!plain) {
      NamespaceMap namespaces = Merged();
      namespaces[L"xmlns:" + reserved] = reserved;
      return GetUniquePrefix(namespaces);
    }
    std::wstring prefix = NsIntToString(firstFree);
    while (prefix == reserved || HasPrefix(prefix)) prefix = NsIntToString(++firstFree);
    return prefix;
  }

  const Scope* outer = nullptr;
  std::wstring defaultNamespace;
  NamespaceMap declared;
  std::unordered_set<std::wstring> prefixes;  // those of `declared`, once there are more than a few
  int firstFree = 0;                          // all invented prefixes before this one are in use
  // Nothing in effect has replaced a prefix, so every prefix in the chain of scopes is in effect too.
  bool plain = true;
  NamespaceMap spare;  // entries to use again
  mutable const NamespaceMap::value_type* lastFound = nullptr;
  mutable std::unique_ptr<NamespaceMap> merged;

 private:
  void Store(const std::wstring& namespaceUri, const std::wstring& prefix) {
    const auto known = declared.find(namespaceUri);
    if (known != declared.end()) {
      known->second = prefix;
    } else if (spare.empty()) {
      declared.emplace(namespaceUri, prefix);
    } else {
      NamespaceMap::node_type entry = spare.extract(spare.begin());
      entry.key() = namespaceUri;
      entry.mapped() = prefix;
      declared.insert(std::move(entry));
    }
  }
};

CXmlWriter::CXmlWriterContext::CXmlWriterContext(const std::wstring& localName, const std::wstring& namespaceUri,
                                                 const std::wstring& defaultNamespace, const NamespaceMap& namespaces,
                                                 std::unique_ptr<CXmlWriterContext> parent)
    : m_namespaceUri(namespaceUri),
      m_localName(localName),
      m_parent(std::move(parent)),
      m_ownScope(std::make_unique<Scope>()),
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
    if (m_spareScope == nullptr) m_spareScope = std::make_unique<Scope>();
    m_spareScope->Open(m_scope);
    m_ownScope = std::move(m_spareScope);
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

bool CXmlWriter::CXmlWriterContext::HasPrefix(const std::wstring& prefix) const { return m_scope->HasPrefix(prefix); }

const std::wstring& CXmlWriter::CXmlWriterContext::InventPrefix(const std::wstring& namespaceUri) {
  Scope& scope = OwnScope();
  // The start tag may use a prefix that a later declaration for its namespace took out of the scope.
  scope.Declare(namespaceUri, scope.UniquePrefix(m_prefix));
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

void CXmlWriter::WriteTextElement(const std::wstring& localName, const std::wstring& namespaceUri,
                                  const std::wstring& text, ItemType type) {
  WriteStartElement(localName, namespaceUri);
  WriteString(text, type);
  WriteEndElement();
}

bool CXmlWriter::DeclareNamespace(const std::wstring& prefix, const std::wstring& namespaceUri) {
  if (m_context != nullptr) {
    const std::wstring* known = m_context->FindPrefix(namespaceUri);
    if (known != nullptr && *known == prefix) return true;
    // The start tag may use a prefix that a later declaration for its namespace took out of the scope.
    if (m_context->HasPrefix(prefix) || m_context->m_prefix == prefix) return false;
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
  std::unordered_set<std::wstring> used;
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
  if (context->m_ownScope != nullptr) {
    context->m_ownScope->Close();
    context->m_spareScope = std::move(context->m_ownScope);
  }
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

#include "RkXmlLib16/document/XmlWriter.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/NeverDestroyed.h"
#include "RkXmlLib16/base/internal/WideText.h"
#include "RkXmlLib16/document/internal/OutputChecks.h"

namespace RkXmlLib16 {

namespace {

const CNeverDestroyed<std::wstring> kXmlNamespace(L"http://www.w3.org/XML/1998/namespace");
const CNeverDestroyed<std::wstring> kXsiNamespace(L"http://www.w3.org/2001/XMLSchema-instance");
const CNeverDestroyed<std::wstring> kXmlnsNamespace(L"http://www.w3.org/2000/xmlns/");

using Declaration = CXmlWriter::NamespaceMap::value_type;

// Beyond so many scopes inside each other, or declarations in one of them, an index finds what is in effect.
constexpr int kFewScopes = 16;
constexpr std::size_t kFewDeclarations = 8;

// The declarations of a scope and all around it. Scopes leave in the reverse order of their coming.
class DeclarationIndex {
 public:
  const Declaration* Find(const std::wstring& namespaceUri) const {
    const auto found = m_declarations.find(namespaceUri);
    return found != m_declarations.end() ? found->second.back() : nullptr;
  }

  bool HasPrefix(const std::wstring& prefix) const {
    const auto found = m_prefixes.find(prefix);
    return found != m_prefixes.end() && found->second > 0;
  }

  // A failure adds nothing.
  void Add(const Declaration& declaration) {
    long& count = m_prefixes[declaration.second];
    const auto [at, isNew] = m_declarations.try_emplace(declaration.first, 1, &declaration);
    if (!isNew) {
      at->second.push_back(&declaration);
      Count(at->second.end()[-2]->second, -1);
    }
    ++count;
  }

  void Remove(const Declaration& declaration) noexcept {
    const auto found = m_declarations.find(declaration.first);
    if (found == m_declarations.end() || found->second.back() != &declaration) return;
    Count(declaration.second, -1);
    found->second.pop_back();
    if (found->second.empty())
      m_declarations.erase(found);
    else
      Count(found->second.back()->second, 1);
  }

 private:
  // The prefix stays known when nothing has it any more, so that it can come back without failing.
  void Count(const std::wstring& prefix, long more) noexcept {
    const auto found = m_prefixes.find(prefix);
    if (found != m_prefixes.end()) found->second += more;
  }

  std::unordered_map<std::wstring_view, std::vector<const Declaration*>> m_declarations;  // the one in effect last
  std::unordered_map<std::wstring, long> m_prefixes;  // for how many namespaces a prefix is in effect
};

}  // namespace

// The declarations made in one element, on top of those around it. Only what is declared here is stored, so that a
// scope costs what it declares however much is in effect around it.
struct CXmlWriter::CXmlWriterContext::Scope {
  Scope() = default;
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;
  ~Scope() { LeaveIndex(); }

  void Open(const Scope* around) {
    outer = around;
    level = around != nullptr ? around->level + 1 : 0;
    index = around != nullptr ? around->index : nullptr;
    firstFree = around != nullptr ? around->firstFree : 0;
    givenAway = around != nullptr && around->givenAway;
    if (around != nullptr) defaultNamespace = around->defaultNamespace;
    if (around != nullptr) replaced = around->replaced;
    if (level == kFewScopes && index == nullptr) BuildIndex();
  }

  void SetDefault(const std::wstring& namespaceUri) { defaultNamespace.Set(namespaceUri); }

  bool IsDefault(const std::wstring& namespaceUri) const {
    return WideText::IsEqual(namespaceUri, defaultNamespace.Get());
  }

  // Empties the scope and keeps its storage for another element.
  void Close() noexcept {
    LeaveIndex();
    spare.merge(declared);
    declared.clear();
    replaced.reset();
    lastFound = nullptr;
    merged.reset();
  }

  const Declaration* Find(const std::wstring& namespaceUri) const {
    if (lastFound != nullptr && lastFound->first == namespaceUri) return lastFound;
    if (index != nullptr) {
      const Declaration* const found = index->Find(namespaceUri);
      if (found != nullptr) lastFound = found;
      return found;
    }
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer) {
      const auto found = scope->declared.find(namespaceUri);
      if (found != scope->declared.end()) return lastFound = &*found;
    }
    return nullptr;
  }

  void Declare(const std::wstring& namespaceUri, const std::wstring& prefix) {
    const Declaration* const former = Find(namespaceUri);
    const std::wstring formerPrefix = former != nullptr ? former->second : std::wstring();
    const auto own = declared.find(namespaceUri);
    lastFound = nullptr;
    merged.reset();
    if (own != declared.end()) {
      if (index != nullptr) index->Remove(*own);
      own->second = prefix;
      if (index != nullptr) index->Add(*own);
    } else {
      const Declaration& added = Store(namespaceUri, prefix);
      if (index != nullptr) index->Add(added);
    }
    if (index == nullptr && declared.size() > kFewDeclarations) BuildIndex();
    if (!formerPrefix.empty() && formerPrefix != prefix) firstFree = 0;
  }

  const NamespaceMap& Merged() const {
    if (outer == nullptr) return declared;
    if (merged != nullptr && !givenAway) return *merged;
    auto all = std::make_unique<NamespaceMap>();
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer)
      all->insert(scope->declared.begin(), scope->declared.end());
    merged = std::move(all);
    return *merged;
  }

  // Whether a namespace has the prefix, which another one of that namespace may have replaced.
  bool HasPrefix(const std::wstring& prefix) const {
    if (index != nullptr) return index->HasPrefix(prefix);
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer) {
      for (const Declaration& declaration : scope->declared)
        if (declaration.second == prefix && Find(declaration.first) == &declaration) return true;
    }
    return false;
  }

  const std::wstring* FindPrefix(const std::wstring& namespaceUri) const {
    const Declaration* const found = Find(namespaceUri);
    return found != nullptr ? &found->second : nullptr;
  }

  // Whether this scope itself declares the prefix for a namespace.
  bool Declares(const std::wstring& prefix) const {
    return std::any_of(declared.begin(), declared.end(), [&](const Declaration& d) { return d.second == prefix; });
  }

  // Takes the prefix from the namespaces that have it, which are returned: from here on it stands for another one.
  std::vector<std::wstring> HidePrefix(const std::wstring& prefix) {
    std::vector<std::wstring> hidden;
    if (FindReplaced(prefix) != nullptr) OwnReplaced().erase(prefix);
    if (!HasPrefix(prefix)) return hidden;
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer)
      for (const Declaration& declaration : scope->declared)
        if (declaration.second == prefix && Find(declaration.first) == &declaration)
          hidden.push_back(declaration.first);
    for (const std::wstring& namespaceUri : hidden) Declare(namespaceUri, std::wstring());
    return hidden;
  }

  // The namespace of a prefix that stays declared in the document, although its namespace has got another one.
  const std::wstring* FindReplaced(const std::wstring& prefix) const {
    if (replaced == nullptr) return nullptr;
    const auto found = replaced->find(prefix);
    return found != replaced->end() ? &found->second : nullptr;
  }

  void KeepReplaced(const std::wstring& prefix, const std::wstring& namespaceUri) {
    OwnReplaced().emplace(prefix, namespaceUri);
  }

  // `reserved` is not taken either.
  std::wstring UniquePrefix(const std::wstring& reserved) {
    std::wstring prefix = NsIntToString(firstFree);
    while (HasPrefix(prefix)) prefix = NsIntToString(++firstFree);
    for (int n = firstFree; prefix == reserved || FindReplaced(prefix) != nullptr || HasPrefix(prefix);)
      prefix = NsIntToString(++n);
    return prefix;
  }

  // The caller may change the prefixes of this scope from now on.
  void GiveAway() noexcept {
    LeaveIndex();
    firstFree = 0;
    givenAway = true;
  }

  const Scope* outer = nullptr;
  CSharedName defaultNamespace;  // set by SetDefault
  NamespaceMap declared;
  int firstFree = 0;  // all invented prefixes before this one are in use

 private:
  void BuildIndex() {
    auto built = std::make_unique<DeclarationIndex>();
    std::vector<const Scope*> scopes;
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer) scopes.push_back(scope);
    for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope)
      for (const Declaration& declaration : (*scope)->declared) built->Add(declaration);
    ownIndex = std::move(built);
    index = ownIndex.get();
  }

  void LeaveIndex() noexcept {
    if (index != nullptr && ownIndex == nullptr)
      for (const Declaration& declaration : declared) index->Remove(declaration);
    index = nullptr;
    ownIndex.reset();
  }

  const Declaration& Store(const std::wstring& namespaceUri, const std::wstring& prefix) {
    if (spare.empty()) return *declared.emplace(namespaceUri, prefix).first;
    NamespaceMap::node_type entry = spare.extract(spare.begin());
    entry.key() = namespaceUri;
    entry.mapped() = prefix;
    return *declared.insert(std::move(entry)).position;
  }

  using PrefixMap = std::map<std::wstring, std::wstring>;

  PrefixMap& OwnReplaced() {
    if (replaced == nullptr)
      replaced = std::make_shared<PrefixMap>();
    else if (replaced.use_count() != 1)
      replaced = std::make_shared<PrefixMap>(*replaced);
    return *replaced;
  }

  int level = 0;
  bool givenAway = false;
  std::shared_ptr<PrefixMap> replaced;         // shared with scopes inside
  NamespaceMap spare;                          // entries to use again
  DeclarationIndex* index = nullptr;           // null while a search is quick
  std::unique_ptr<DeclarationIndex> ownIndex;  // the same where it begins
  mutable const Declaration* lastFound = nullptr;
  mutable std::unique_ptr<NamespaceMap> merged;
};

CXmlWriter::CXmlWriterContext::CXmlWriterContext(const std::wstring& localName, const std::wstring& namespaceUri,
                                                 const std::wstring& defaultNamespace, const NamespaceMap& namespaces,
                                                 std::unique_ptr<CXmlWriterContext> parent)
    : m_namespaceUri(namespaceUri),
      m_localName(localName),
      m_parent(std::move(parent)),
      m_ownScope(std::make_unique<Scope>()),
      m_scope(m_ownScope.get()) {
  m_scope->SetDefault(defaultNamespace);
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
  m_ownScope.reset();  // before those around it
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

const std::wstring& CXmlWriter::CXmlWriterContext::GetDefaultNamespace() const {
  return m_scope->defaultNamespace.Get();
}

bool CXmlWriter::CXmlWriterContext::IsDefaultNamespace(const std::wstring& namespaceUri) const {
  return m_scope->IsDefault(namespaceUri);
}

const CXmlWriter::NamespaceMap& CXmlWriter::CXmlWriterContext::GetNamespaceMap() const { return m_scope->Merged(); }

void CXmlWriter::CXmlWriterContext::SetDefaultNamespace(const std::wstring& namespaceUri) {
  OwnScope().SetDefault(namespaceUri);
}

void CXmlWriter::CXmlWriterContext::SetNamespaceMapValue(const std::wstring& namespaceUri, const std::wstring& prefix) {
  OwnScope().Declare(namespaceUri, prefix);
}

std::wstring& CXmlWriter::CXmlWriterContext::GetNamespaceMapValue(const std::wstring& namespaceUri) {
  if (m_scope->declared.count(namespaceUri) == 0) {
    const Declaration* const found = m_scope->Find(namespaceUri);
    m_scope->Declare(namespaceUri, found != nullptr ? found->second : std::wstring());
  }
  m_scope->GiveAway();
  return m_scope->declared.find(namespaceUri)->second;
}

std::wstring& CXmlWriter::CXmlWriterContext::GetNamespaceMapValue(const wchar_t* namespaceUri) {
  return GetNamespaceMapValue(std::wstring(namespaceUri != nullptr ? namespaceUri : L""));
}

const std::wstring* CXmlWriter::CXmlWriterContext::FindPrefix(const std::wstring& namespaceUri) const {
  const Declaration* const found = m_scope->Find(namespaceUri);
  return found != nullptr ? &found->second : nullptr;
}

bool CXmlWriter::CXmlWriterContext::HasPrefix(const std::wstring& prefix) const { return m_scope->HasPrefix(prefix); }

const std::wstring& CXmlWriter::CXmlWriterContext::InventPrefix(const std::wstring& namespaceUri) {
  Scope& scope = OwnScope();
  // The start tag may use a prefix that a later declaration for its namespace took out of the scope.
  scope.Declare(namespaceUri, scope.UniquePrefix(m_prefix));
  return scope.Find(namespaceUri)->second;
}

const std::wstring& CXmlWriter::XML_NAMESPACE = kXmlNamespace.Get();
const std::wstring& CXmlWriter::XSI_NAMESPACE = kXsiNamespace.Get();
const std::wstring& CXmlWriter::XMLNS_NAMESPACE = kXmlnsNamespace.Get();

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
  if (prefix.empty() || prefix == L"xmlns" || prefix == L"xml") return false;
  std::vector<std::wstring> hidden;
  if (m_context != nullptr) {
    const std::wstring* known = m_context->FindPrefix(namespaceUri);
    if (known != nullptr && *known == prefix) return true;
    const std::wstring* const replaced = m_context->m_scope->FindReplaced(prefix);
    if (replaced != nullptr && *replaced == namespaceUri) return true;
    if (IsTakenByStartTag(prefix)) return false;
    CXmlWriterContext::Scope& scope = m_context->OwnScope();
    hidden = scope.HidePrefix(prefix);
    known = scope.FindPrefix(namespaceUri);
    if (known != nullptr && !known->empty()) scope.KeepReplaced(*known, namespaceUri);
    AddNamespace(L"xmlns", XMLNS_NAMESPACE);
  }
  WriteAttributeString(prefix, XMLNS_NAMESPACE, namespaceUri, ItemType_string);
  AddNamespace(prefix, namespaceUri);
  if (!m_inventsPrefixes)
    for (const std::wstring& other : hidden) DeclareNamespace(other);
  return true;
}

std::wstring CXmlWriter::DeclareNamespace(const std::wstring& namespaceUri) {
  const std::wstring* const known = FindPrefixInScope(namespaceUri);
  if (known != nullptr) return *known;
  const std::wstring prefix = m_context->m_scope->UniquePrefix(m_context->m_prefix);
  DeclareNamespace(prefix, namespaceUri);
  return prefix;
}

// By the name of the element, which may use a prefix that a later declaration for its namespace took out of the scope,
// or by a declaration that the tag has.
bool CXmlWriter::IsTakenByStartTag(const std::wstring& prefix) const {
  const std::wstring& elementUri = m_context->m_namespaceUri.Get();
  const std::wstring* const own =
      elementUri.empty() || IsDefaultNamespace(elementUri) ? nullptr : FindPrefixInScope(elementUri);
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

void CXmlWriter::SetContextState(ContextState state) {
  if (m_context == nullptr) return;
  m_context->m_state = state;
  m_context->m_itemsAreGroups = false;
}

void CXmlWriter::SetItemsAreGroups() {
  if (m_context != nullptr) m_context->m_itemsAreGroups = true;
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
    CSharedName name(localName);  // before the parent moves, so that a failure loses no element
    CSharedName uri(namespaceUri);
    auto context = std::make_unique<CXmlWriterContext>(std::wstring(), std::wstring(), std::move(m_context));
    context->m_localName = std::move(name);
    context->m_namespaceUri = std::move(uri);
    m_context = std::move(context);
  } else {
    m_closedContexts->m_localName.Set(localName);
    m_closedContexts->m_namespaceUri.Set(namespaceUri);
    std::unique_ptr<CXmlWriterContext> context = std::move(m_closedContexts);
    m_closedContexts = std::move(context->m_parent);
    context->m_childCount = 0;
    context->m_startTagOpen = true;
    context->m_depth = m_context->m_depth + 1;
    context->m_prefix.clear();
    context->m_state = ContextState_None;
    context->m_itemsAreGroups = false;
    context->m_scope = m_context->m_scope;
    context->m_parent = std::move(m_context);
    m_context = std::move(context);
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

void CXmlWriter::SetChecks(std::unique_ptr<OutputChecks> checks) { m_checks = std::move(checks); }

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
  invented = prefix == nullptr || prefix->empty() || (!m_avoidedPrefix.empty() && *prefix == m_avoidedPrefix);
  if (invented) prefix = &m_context->InventPrefix(namespaceUri);
  if (m_checks != nullptr) m_checks->Declaration(*prefix, namespaceUri);
  return *prefix;
}

}  // namespace RkXmlLib16

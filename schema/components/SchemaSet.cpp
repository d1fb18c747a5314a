#include "schema/components/SchemaSet.h"

#include <algorithm>

#include "schema/components/internal/Builder.h"
#include "schema/components/internal/Reader.h"
#include "schema/components/internal/State.h"

namespace RkXmlSchema {

void CReporter::Add(Severity severity, SourceLocation location, std::wstring message) {
  m_all.push_back({severity, location, std::move(message)});
  if (severity == Severity::Error) ++m_errorCount;
  if (m_all.size() < m_most) return;
  m_all.push_back({Severity::Error, {}, L"Limit exceeded: diagnostics " + std::to_wstring(m_most) + L"."});
  ++m_errorCount;
  throw ReadingEnds();
}

void CReporter::Exceeded(SourceLocation location, const std::wstring& what, std::size_t limit) {
  m_all.push_back({Severity::Error, location, L"Limit exceeded: " + what + L" " + std::to_wstring(limit) + L"."});
  ++m_errorCount;
  throw ReadingEnds();
}

// By file, in the order in which the files were met, and place.
void CReporter::Sort() {
  std::map<std::wstring, std::size_t> order;
  for (const Diagnostic& d : m_all) {
    if (d.location.file != nullptr) order.emplace(*d.location.file, order.size());
  }
  const auto rank = [&](const Diagnostic& d) { return d.location.file != nullptr ? order[*d.location.file] + 1 : 0; };
  std::stable_sort(m_all.begin(), m_all.end(), [&](const Diagnostic& a, const Diagnostic& b) {
    const std::size_t x = rank(a);
    const std::size_t y = rank(b);
    if (x != y) return x < y;
    if (a.location.line != b.location.line) return a.location.line < b.location.line;
    return a.location.column < b.location.column;
  });
  const auto same = [](const Diagnostic& a, const Diagnostic& b) {
    return a.location.file == b.location.file && a.location.line == b.location.line &&
           a.location.column == b.location.column && a.message == b.message;
  };
  m_all.erase(std::unique(m_all.begin(), m_all.end(), same), m_all.end());
}

CSchemaSet::CSchemaSet(SchemaOptions options) : m_state(std::make_unique<State>(std::move(options))) {
  AddBuiltInTypes(*m_state);
}

CSchemaSet::~CSchemaSet() = default;

namespace {

template <class Read>
void ReadInto(CSchemaSet::State& state, Read&& read) {
  if (state.hasEnded) return;
  try {
    read(CSchemaReader(state));
  } catch (const ReadingEnds&) {
    state.hasEnded = true;
  }
}

}  // namespace

void CSchemaSet::AddFile(const std::wstring& file) { AddFile(RkXmlLib16::CFileName(RkXmlLib16::ToUtf8(file))); }

void CSchemaSet::AddFile(const RkXmlLib16::CFileName& file) {
  ReadInto(*m_state, [&](CSchemaReader&& reader) { reader.ReadFile(file); });
}

void CSchemaSet::AddText(std::string_view bytes, const std::wstring& file) {
  ReadInto(*m_state, [&](CSchemaReader&& reader) { reader.ReadText(bytes, file); });
}

bool CSchemaSet::Resolve() {
  if (!m_state->hasEnded) {
    m_state->hasEnded = true;
    try {
      CBuilder(*m_state).Build();
    } catch (const ReadingEnds&) {
    }
  }
  m_state->reporter.Sort();
  return !HasErrors();
}

const std::vector<Diagnostic>& CSchemaSet::GetDiagnostics() const noexcept { return m_state->reporter.m_all; }
bool CSchemaSet::HasErrors() const noexcept { return m_state->reporter.m_errorCount != 0; }

namespace {

template <class T>
const T* FindIn(const ComponentTable<T>& table, const QName& name) {
  const auto found = table.find(name);
  return found != table.end() ? found->second : nullptr;
}

}  // namespace

const ElementDeclaration* CSchemaSet::FindElement(const QName& name) const {
  return FindIn(m_state->elementTable, name);
}
const AttributeDeclaration* CSchemaSet::FindAttribute(const QName& name) const {
  return FindIn(m_state->attributeTable, name);
}
const TypeDefinition* CSchemaSet::FindType(const QName& name) const { return FindIn(m_state->typeTable, name); }
const ModelGroupDefinition* CSchemaSet::FindModelGroup(const QName& name) const {
  return FindIn(m_state->groupTable, name);
}
const AttributeGroupDefinition* CSchemaSet::FindAttributeGroup(const QName& name) const {
  return FindIn(m_state->attributeGroupTable, name);
}
const NotationDeclaration* CSchemaSet::FindNotation(const QName& name) const {
  return FindIn(m_state->notationTable, name);
}
const IdentityConstraintDefinition* CSchemaSet::FindIdentityConstraint(const QName& name) const {
  return FindIn(m_state->constraintTable, name);
}

const std::vector<const ElementDeclaration*>& CSchemaSet::GetElements() const noexcept { return m_state->elements; }
const std::vector<const AttributeDeclaration*>& CSchemaSet::GetAttributes() const noexcept {
  return m_state->attributes;
}
const std::vector<const TypeDefinition*>& CSchemaSet::GetTypes() const noexcept { return m_state->types; }
const std::vector<const ModelGroupDefinition*>& CSchemaSet::GetModelGroups() const noexcept { return m_state->groups; }
const std::vector<const AttributeGroupDefinition*>& CSchemaSet::GetAttributeGroups() const noexcept {
  return m_state->attributeGroups;
}
const std::vector<const NotationDeclaration*>& CSchemaSet::GetNotations() const noexcept { return m_state->notations; }
const std::vector<const TypeDefinition*>& CSchemaSet::GetAllTypes() const noexcept { return m_state->allTypes; }
const std::vector<SchemaDocument>& CSchemaSet::GetDocuments() const noexcept { return m_state->documents; }

const ComplexTypeDefinition* CSchemaSet::GetAnyType() const noexcept { return m_state->anyType; }
const SimpleTypeDefinition* CSchemaSet::GetBuiltIn(BuiltInType type) const noexcept {
  return m_state->builtIns[static_cast<std::size_t>(type)];
}

}  // namespace RkXmlSchema

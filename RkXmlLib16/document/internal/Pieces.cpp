#include "RkXmlLib16/document/internal/Pieces.h"

#include <algorithm>
#include <functional>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/internal/Names.h"

namespace RkXmlLib16 {

namespace {

// Characters of a text that is told in parts.
constexpr std::size_t kTextPart = std::size_t{1} << 16;
// Names of children that are looked for one by one.
constexpr std::size_t kFewNames = 8;

[[noreturn]] void ThrowBadPath(std::wstring_view path) {
  throw CRkInvalidParamException(
      FormatString(L"The path [%ls] names no elements. Give the names from the root on, as in /order/item",
                   std::wstring(path).c_str()));
}

std::wstring NamespaceOfPrefix(std::wstring_view prefix, std::wstring_view path, const CSerializationContext& context) {
  for (const auto& [uri, alias] : context.GetNamespaceAliases().GetEntries())
    if (alias == prefix) return uri;
  throw CRkInvalidParamException(FormatString(L"The prefix [%ls] of the path [%ls] is not among the namespace aliases",
                                              std::wstring(prefix).c_str(), std::wstring(path).c_str()));
}

}  // namespace

std::size_t CPiecePaths::Add(std::wstring_view path, const CSerializationContext& context) {
  if (path.empty() || path[0] != L'/') ThrowBadPath(path);
  std::vector<Step> steps;
  for (std::size_t at = 0; at != path.size();) {
    const std::size_t end = std::min(path.find(L'/', at + 1), path.size());
    steps.push_back(MakeStep(path.substr(at + 1, end - at - 1), path, context));
    at = end;
  }
  m_paths.push_back(std::move(steps));
  return m_paths.size() - 1;
}

CPiecePaths::Step CPiecePaths::MakeStep(std::wstring_view text, std::wstring_view path,
                                        const CSerializationContext& context) {
  Step step;
  const std::size_t colon = text.find(L':');
  const bool hasPrefix = colon != std::wstring_view::npos;
  std::wstring_view localName = hasPrefix ? text.substr(colon + 1) : text;
  const std::wstring_view prefix = hasPrefix ? text.substr(0, colon) : std::wstring_view();
  if ((localName != L"*" && !IsNCName(localName)) || (hasPrefix && !IsNCName(prefix))) ThrowBadPath(path);
  if (context.GetSchemaType() == SchemaType_NoNamespaces && hasPrefix && localName != L"*") {
    localName = text;  // prefixes are part of the names
  } else if (!context.GetIgnoreNamespaces() && (hasPrefix || localName != L"*")) {
    step.namespaceUri = hasPrefix ? NamespaceOfPrefix(prefix, path, context) : context.GetDefaultNamespaceURI();
    step.isOfNamespace = hasPrefix || !step.namespaceUri.empty();
  }
  if (localName != L"*") step.localName = localName;
  return step;
}

bool CPiecePaths::Matches(std::size_t path, std::size_t index, const CXmlElement& element) {
  Step& step = m_paths[path][index];
  const CXmlName* const local = element.GetLocalNameRef();
  const CXmlName* const uri = element.GetNamespaceRef();
  if (step.lastLocal == local && step.lastUri == uri) return step.didMatch;
  step.lastLocal = local;
  step.lastUri = uri;
  step.didMatch = (step.localName.empty() || local->View() == step.localName) &&
                  (!step.isOfNamespace || uri->View() == step.namespaceUri);
  return step.didMatch;
}

std::size_t CPieces::NameHash::operator()(const Name& name) const noexcept {
  const std::hash<const void*> hash;
  return hash(name.first) * 31 + hash(name.second);
}

std::uint64_t CPieces::CountChild(Level& parent, const CXmlElement& child) {
  const Name name(child.GetLocalNameRef(), child.GetNamespaceRef());
  for (auto& [known, count] : parent.children)
    if (known == name) return ++count;
  if (parent.children.size() == kFewNames) return ++parent.moreChildren[name];
  parent.children.emplace_back(name, 1);
  return 1;
}

void CPieces::Start(CXmlElement* element) {
  if (m_subtreeDepth != 0) {
    ++m_subtreeDepth;
    return;
  }
  FlushText();
  const std::size_t step = m_levelCount;
  if (step == m_levels.size()) m_levels.emplace_back();
  Level& level = m_levels[step];
  level.element = element;
  level.children.clear();
  level.moreChildren.clear();
  level.position = step != 0 ? CountChild(m_levels[step - 1], *element) : 1;
  level.firstActive = m_active.size();
  ++m_levelCount;
  FindPaths(level, step);
}

void CPieces::FindPaths(Level& level, std::size_t step) {
  const std::size_t first = step != 0 ? m_levels[step - 1].firstActive : 0;
  const std::size_t end = step != 0 ? level.firstActive : m_paths.GetCount();
  for (std::size_t i = first; i < end; ++i) {
    const std::size_t path = step != 0 ? m_active[i] : i;
    if (!m_paths.Matches(path, step, *level.element)) continue;
    if (m_paths.IsLast(path, step)) {
      m_active.resize(level.firstActive);
      m_subtreeDepth = 1;
      m_subtreePath = path;
      return;
    }
    m_active.push_back(path);
  }
}

void CPieces::CompleteStart(CXmlElement* element, std::uint64_t offset) {
  if (m_subtreeDepth > 1) return;
  if (m_subtreeDepth == 1) {
    m_subtreeOffset = offset;
    return;
  }
  m_offsets.push_back(offset);
  if (m_reportsOpen) m_events.push_back({Kind::Start, element, {}, 0});
}

bool CPieces::End(CXmlElement* element) {
  if (m_subtreeDepth != 0) {
    if (--m_subtreeDepth == 0) m_events.push_back({Kind::Subtree, element, {}, m_subtreePath});
    return false;
  }
  FlushText();
  if (!m_reportsOpen && m_events.empty()) return true;
  m_events.push_back({Kind::End, element, {}, 0});
  return false;
}

void CPieces::PopLevel() {
  Level& level = m_levels[--m_levelCount];
  m_active.resize(level.firstActive);
  if (m_offsets.size() <= m_levelCount) return;
  m_offsets.resize(m_levelCount);
  m_unchangedOffsets = std::min(m_unchangedOffsets, m_levelCount);
}

void CPieces::TextGrew() {
  if (!m_reportsOpen) m_text.clear();
  if (m_text.size() >= kTextPart) FlushText();
}

void CPieces::FlushText() {
  if (m_text.empty()) return;
  m_events.push_back({Kind::Text, nullptr, std::move(m_text), 0});
  m_text.clear();
}

std::uint64_t CPieces::GetPosition(const CXmlElement* element, std::size_t level) const noexcept {
  return level < m_levelCount && m_levels[level].element == element ? m_levels[level].position : 0;
}

std::size_t CPieces::TakeUnchangedOffsets() noexcept { return std::exchange(m_unchangedOffsets, m_offsets.size()); }

std::uint64_t CPieces::GetFirstNeeded(std::uint64_t offset) const noexcept {
  return m_subtreeDepth != 0 ? std::min(offset, m_subtreeOffset) : offset;
}

}  // namespace RkXmlLib16

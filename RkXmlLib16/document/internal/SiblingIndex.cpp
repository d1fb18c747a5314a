#include "RkXmlLib16/document/internal/SiblingIndex.h"

#include <cstdint>
#include <utility>

#include "RkXmlLib16/base/internal/KeyedHash.h"

namespace RkXmlLib16 {

CPrefixIndex::CPrefixIndex(const std::map<std::wstring_view, const CXmlName*>& aliases) {
  for (const auto& [prefix, uri] : aliases)
    if (!uri->empty()) m_prefixes.try_emplace(uri, prefix);
}

std::wstring_view CPrefixIndex::Find(const CXmlName* namespaceUri) const {
  const auto found = m_prefixes.find(namespaceUri);
  return found != m_prefixes.end() ? found->second : std::wstring_view();
}

std::wstring CPrefixIndex::GetQName(const CXmlName* namespaceUri, const CXmlText& localName) const {
  std::wstring name(Find(namespaceUri));
  if (!name.empty()) name += L':';
  return name += localName.View();
}

std::size_t CSiblingIndex::KeyHash::operator()(const Key& key) const noexcept {
  const auto local = reinterpret_cast<std::uintptr_t>(key.localName);
  const auto uri = reinterpret_cast<std::uintptr_t>(key.namespaceUri);
  return CKeyedHash::Of(local ^ uri << 32 ^ uri >> 32);
}

CSiblingIndex::Place CSiblingIndex::Find(const CXmlElement& element) {
  const Siblings* const siblings = Reach(element);
  return siblings != nullptr ? siblings->places.find(KeyOf(element))->second : Place{0, 1};
}

bool CSiblingIndex::HasNameFromHere(const CXmlElement& element, std::wstring_view localName) {
  const Siblings* const siblings = Reach(element);
  if (siblings == nullptr) return element.GetLocalName() == localName;
  const auto found = siblings->names.find(localName);
  return found != siblings->names.end() && found->second.before < found->second.all;
}

CSiblingIndex::Siblings* CSiblingIndex::Reach(const CXmlElement& element) {
  const CXmlElement* const parent = element.GetParentElement();
  if (parent == nullptr || parent->GetFirstElement() == nullptr) return nullptr;
  std::size_t depth = 0;
  for (const CXmlElement* outer = parent->GetParentElement(); outer != nullptr; outer = outer->GetParentElement())
    ++depth;
  if (m_levels.size() <= depth) m_levels.resize(depth + 1);
  Siblings& siblings = m_levels[depth];
  const bool isKnown = siblings.parent == parent && siblings.last->GetNextSiblingElement() == nullptr;
  if (!isKnown) {
    siblings = {};
    siblings.reached = parent->GetFirstElement();
    for (const CXmlElement* e = siblings.reached; e != nullptr; e = e->GetNextSiblingElement()) {
      ++siblings.places[KeyOf(*e)].all;
      ++siblings.names[e->GetLocalName().View()].all;
      siblings.last = e;
    }
    siblings.parent = parent;  // when everything else succeeded
  }
  bool isAgain = false;
  while (siblings.reached != &element) {
    if (siblings.reached == nullptr) {
      if (std::exchange(isAgain, true)) return nullptr;
      for (auto& [key, place] : siblings.places) place.before = 0;
      for (auto& [name, place] : siblings.names) place.before = 0;
      siblings.reached = parent->GetFirstElement();
    } else {
      ++siblings.places.find(KeyOf(*siblings.reached))->second.before;
      ++siblings.names.find(siblings.reached->GetLocalName().View())->second.before;
      siblings.reached = siblings.reached->GetNextSiblingElement();
    }
  }
  return &siblings;
}

}  // namespace RkXmlLib16

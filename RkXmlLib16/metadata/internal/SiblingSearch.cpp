#include "RkXmlLib16/metadata/internal/SiblingSearch.h"

#include <algorithm>

#include "RkXmlLib16/xml/ElementTree.h"

namespace RkXmlLib16Data {

namespace {

thread_local SiblingSearch* t_innermost = nullptr;

// Steps before an index is made, and before one that is there is asked.
constexpr int kStepsWithoutIndex = 64;
constexpr int kStepsBesideIndex = 4;

}  // namespace

SiblingSearch::SiblingSearch(const CXmlElement* element) noexcept : m_element(element), m_outer(t_innermost) {
  t_innermost = this;
}

SiblingSearch::~SiblingSearch() { t_innermost = m_outer; }

CXmlElement* SiblingSearch::Find(const CElementInfo& info, const CSerializationContext& context, CXmlElement* from) {
  SiblingSearch* const search = t_innermost;
  const bool hasIndex = search != nullptr && from != nullptr && search->m_element == from->GetParentElement();
  const int limit = hasIndex && !search->m_children.empty() ? kStepsBesideIndex : kStepsWithoutIndex;
  for (int steps = 0; from != nullptr && !info.IsThisElement(context, from); ++steps) {
    if (hasIndex && steps == limit) return search->FindInIndex(info, context, from);
    from = from->GetNextSiblingElement();
  }
  return from;
}

CXmlElement* SiblingSearch::FindInIndex(const CElementInfo& info, const CSerializationContext& context,
                                        const CXmlElement* from) {
  if (m_children.empty()) {
    for (CXmlElement* e = m_element->GetFirstElement(); e != nullptr; e = e->GetNextSiblingElement()) {
      m_places.emplace(e, m_children.size());
      m_children.push_back(e);
    }
  }
  const auto [entry, isNew] = m_accepted.try_emplace(&info);
  std::vector<std::size_t>& places = entry->second;
  if (isNew) {
    for (std::size_t i = 0; i < m_children.size(); ++i)
      if (info.IsThisElement(context, m_children[i])) places.push_back(i);
  }
  const auto found = std::lower_bound(places.begin(), places.end(), m_places.at(from));
  return found == places.end() ? nullptr : m_children[*found];
}

}  // namespace RkXmlLib16Data

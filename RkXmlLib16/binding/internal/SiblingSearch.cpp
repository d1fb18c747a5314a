#include "RkXmlLib16/binding/internal/SiblingSearch.h"

#include <algorithm>

#include "RkXmlLib16/context/ReadLimits.h"
#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlLib16Data {

namespace {

thread_local SiblingSearch* t_innermost = nullptr;
thread_local std::uint64_t t_takenCount = 0;

// Steps before an index is made, and before one that is there is asked.
constexpr int kStepsWithoutIndex = 64;
constexpr int kStepsBesideIndex = 4;
// Elements that failed attempts may take: this many for each child, but at least so many in all.
constexpr std::uint64_t kWastedPerChild = 200;
constexpr std::uint64_t kWastedAtLeast = 1000000;

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

CXmlElement* SiblingSearch::Next(const CElementInfo& info, const CXmlElement* from) {
  const SiblingSearch* const search = t_innermost;
  if (search != nullptr && !search->m_failed.empty() && search->m_element == from->GetParentElement()) {
    const auto known = search->m_failed.find(&info);
    if (known != search->m_failed.end() && known->second.IsTrueOf(info)) {
      const std::map<std::size_t, std::size_t>& ranges = known->second.ranges;
      const std::size_t place = search->m_places.at(from);
      auto range = ranges.upper_bound(place);
      const std::size_t end = range != ranges.begin() ? (--range)->second : 0;
      if (place < end) return end < search->m_children.size() ? search->m_children[end] : nullptr;
    }
  }
  return from->GetNextSiblingElement();
}

void SiblingSearch::SetFailed(const CElementInfo& info, const CXmlElement* from, const CXmlElement* end, int steps) {
  SiblingSearch* const search = t_innermost;
  if (steps < kStepsWithoutIndex || search == nullptr || search->m_element != from->GetParentElement()) return;
  search->MakeIndex();
  Failed& failed = search->m_failed[&info];
  if (!failed.IsTrueOf(info)) failed.ranges.clear();
  failed.takenCount = t_takenCount;
  failed.ranges[search->m_places.at(from)] = end != nullptr ? search->m_places.at(end) : search->m_children.size();
}

std::uint64_t SiblingSearch::GetTakenCount() noexcept { return t_takenCount; }

void SiblingSearch::CountTaken() noexcept { ++t_takenCount; }

void SiblingSearch::CountWasted(std::uint64_t takenCount) {
  SiblingSearch* const search = t_innermost;
  if (search == nullptr) return;
  search->m_wastedCount += takenCount;
  if (search->m_wastedCount <= kWastedAtLeast) return;
  search->MakeIndex();
  const std::uint64_t limit = std::max(kWastedAtLeast, kWastedPerChild * search->m_children.size());
  if (search->m_wastedCount > limit)
    RkXmlLib16::CReadLimits::ThrowExceeded(L"elements in failed attempts", limit, search->m_element->GetXPath());
}

void SiblingSearch::MakeIndex() {
  if (!m_children.empty()) return;
  for (CXmlElement* e = m_element->GetFirstElement(); e != nullptr; e = e->GetNextSiblingElement()) {
    m_places.emplace(e, m_children.size());
    m_children.push_back(e);
  }
}

CXmlElement* SiblingSearch::FindInIndex(const CElementInfo& info, const CSerializationContext& context,
                                        const CXmlElement* from) {
  MakeIndex();
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

// Searching the children of an element past those that nobody knows.
//
// The plain search goes from sibling to sibling and asks the record about each. It is enough as long as every search
// begins where the last one ended. Inline groups break that: each may look through all children from the same place to
// the end and give them back, and with many groups and many unknown children that is quadratic. So:
//
//   Index     Once a search has gone kStepsWithoutIndex steps, the children are numbered, and for each record that is
//             searched for the numbers of those it accepts are listed, in one pass. Further searches for it take a
//             binary search. Invariant: names and the order of the children do not change while their element is read.
//   Memo      A record that refused all elements from one place to another is remembered with these places, and asked
//             about none of them again. For a group whose members keep what they took in earlier attempts the answer
//             may change with what has been taken, so that its memo is good only until anything is taken; the session
//             counts that.
//   Budget    What attempts take and then lose is counted, since the next attempt may read it again. Beyond
//             kWastedPerChild times the number of children reading ends with an error instead of running on.
//
// All three belong to one element and exist while it is read; those of the elements around it wait in m_outer.
#include "RkXmlLib16/binding/internal/SiblingSearch.h"

#include <algorithm>

#include "RkXmlLib16/context/ReadLimits.h"
#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlLib16Data {

namespace {

// Steps before an index is made, and before one that is there is asked.
constexpr int kStepsWithoutIndex = 64;
constexpr int kStepsBesideIndex = 4;
// Elements that failed attempts may take: this many for each child, but at least so many in all.
constexpr std::uint64_t kWastedPerChild = 200;
constexpr std::uint64_t kWastedAtLeast = 1000000;

}  // namespace

SiblingSearch::SiblingSearch(const CXmlElement* element) noexcept
    : m_element(element), m_session(*ReadSession::Current()), m_outer(m_session.siblings) {
  m_session.siblings = this;
}

SiblingSearch::~SiblingSearch() { m_session.siblings = m_outer; }

CXmlElement* SiblingSearch::Find(const CElementInfo& info, const CSerializationContext& context, CXmlElement* from) {
  const ReadSession* const session = ReadSession::Current();
  SiblingSearch* const search = session != nullptr ? session->siblings : nullptr;
  const bool hasIndex = search != nullptr && from != nullptr && search->m_element == from->GetParentElement();
  const int limit = hasIndex && !search->m_children.empty() ? kStepsBesideIndex : kStepsWithoutIndex;
  for (int steps = 0; from != nullptr && !info.IsThisElement(context, from); ++steps) {
    if (hasIndex && steps == limit) return search->FindInIndex(info, context, from);
    from = from->GetNextSiblingElement();
  }
  return from;
}

CXmlElement* SiblingSearch::Next(const CElementInfo& info, const CXmlElement* from) {
  const SiblingSearch* const search = ReadSession::Current()->siblings;
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

void SiblingSearch::SetFailed(const CElementInfo& info, const CXmlElement* from, const CXmlElement* end, int count) {
  SiblingSearch* const search = ReadSession::Current()->siblings;
  if (count < kStepsWithoutIndex || search == nullptr || search->m_element != from->GetParentElement()) return;
  search->MakeIndex();
  Failed& failed = search->m_failed[&info];
  if (!failed.IsTrueOf(info)) failed.ranges.clear();
  failed.takenCount = search->m_session.takenCount;
  failed.ranges[search->m_places.at(from)] = end != nullptr ? search->m_places.at(end) : search->m_children.size();
}

void SiblingSearch::CountWasted(std::uint64_t takenCount) {
  SiblingSearch* const search = ReadSession::Current()->siblings;
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

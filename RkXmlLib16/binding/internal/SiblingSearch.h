#ifndef RKXMLLIB16_BINDING_INTERNAL_SIBLINGSEARCH_H
#define RKXMLLIB16_BINDING_INTERNAL_SIBLINGSEARCH_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

#include "RkXmlLib16/binding/ElementInfo.h"
#include "RkXmlLib16/binding/internal/ReadSession.h"

namespace RkXmlLib16Data {

// Finds the next child that a record accepts and skips unknown ones. Inline groups search the same children from one
// position after the other, each to the end. To keep that from being quadratic, a long search builds an index of the
// children, which exists while their element is being read, and failed searches are remembered.
class SiblingSearch {
 public:
  // Serves the children of `element` in the session of this thread, which there must be, until it is destroyed.
  explicit SiblingSearch(const CXmlElement* element) noexcept;
  SiblingSearch(const SiblingSearch&) = delete;
  SiblingSearch& operator=(const SiblingSearch&) = delete;
  ~SiblingSearch();

  // The first element from `from` (may be null) on that the record accepts; null when there is none.
  static CXmlElement* Find(const CElementInfo& info, const CSerializationContext& context, CXmlElement* from);

  // For records that are asked about one element after the other, within a session: the one to ask about after `from`,
  // and that a record took none of the `count` elements from `from` up to `end` (null for all that follow). Of a record
  // that keeps attempts that is true only until something is taken.
  static CXmlElement* Next(const CElementInfo& info, const CXmlElement* from);
  static void SetFailed(const CElementInfo& info, const CXmlElement* from, const CXmlElement* end, int count);
  // Whether what the record took before it failed may decide whether it fails the next time.
  static bool KeepsAttempts(const CElementInfo& info) noexcept {
    return info.IsInlineGroup() && info.GetMemberKind() == MemberKind::Single;
  }
  // An attempt failed after so many were taken. Throws CRkException "Limit exceeded: ..." when too many are read again
  // and again.
  static void CountWasted(std::uint64_t takenCount);

 private:
  void MakeIndex();
  CXmlElement* FindInIndex(const CElementInfo& info, const CSerializationContext& context, const CXmlElement* from);

  struct Failed {
    std::map<std::size_t, std::size_t> ranges;  // places and their ends
    std::uint64_t takenCount = 0;               // when they were noted

    bool IsTrueOf(const CElementInfo& info) const noexcept {
      return !KeepsAttempts(info) || takenCount == ReadSession::Current()->takenCount;
    }
  };

  const CXmlElement* m_element;
  ReadSession& m_session;
  SiblingSearch* m_outer;
  std::vector<CXmlElement*> m_children;                                          // empty until needed
  std::unordered_map<const CXmlElement*, std::size_t> m_places;                  // in m_children
  std::unordered_map<const CElementInfo*, std::vector<std::size_t>> m_accepted;  // places, ascending
  std::unordered_map<const CElementInfo*, Failed> m_failed;
  std::uint64_t m_wastedCount = 0;
};

}  // namespace RkXmlLib16Data

#endif

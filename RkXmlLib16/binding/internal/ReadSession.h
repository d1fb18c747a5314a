#ifndef RKXMLLIB16_BINDING_INTERNAL_READSESSION_H
#define RKXMLLIB16_BINDING_INTERNAL_READSESSION_H

#include <array>
#include <cstdint>

#include "RkXmlLib16/binding/ElementInfo.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/object/Variant.h"
#include "RkXmlLib16/object/internal/ObjectMemory.h"

namespace RkXmlLib16Data {

class SiblingSearch;

// Where runs of records end that are skipped (CElementInfo::IsSkipped) when an element of some name is next: objects
// of one class mostly have the same members. Holds for one document and one context.
class SkippedRuns {
 public:
  SkippedRuns(const RkXmlLib16::CXmlDocument* document, const RkXmlLib16::CSerializationContext& context) noexcept
      : m_document(document), m_context(context) {}

  bool HoldFor(const CXmlElement& element, const CSerializationContext& context) const noexcept {
    return element.GetDocument() == m_document && &context == &m_context;
  }
  // The first record from `from` on that is not skipped, or the null behind the last one.
  CElementInfo** Pass(CElementInfo** from, const CXmlElement* next) {
    const RkXmlLib16::CXmlExpandedName* const name = next != nullptr ? next->GetNameRef() : nullptr;
    const std::uintptr_t ordinal = name != nullptr ? name->GetLocalName()->GetOrdinal() : 0;
    const std::uintptr_t place = reinterpret_cast<std::uintptr_t>(from) / sizeof(void*) + 11 * ordinal;
    Run& run = m_runs[place % m_runs.size()];
    if (run.from != from || run.name != name) {
      run = {from, name, from};
      while (*run.to != nullptr && (*run.to)->IsSkipped(m_context, next)) ++run.to;
    }
    return run.to;
  }

 private:
  struct Run {
    CElementInfo** from;
    const RkXmlLib16::CXmlExpandedName* name;
    CElementInfo** to;
  };

  const RkXmlLib16::CXmlDocument* m_document;
  const RkXmlLib16::CSerializationContext& m_context;
  std::array<Run, 64> m_runs{};
};

// What one read keeps. The outermost object that is read makes it, all objects inside share it, also those that a
// setter reads meanwhile, and it goes with the outermost object. One thread has at most one.
struct ReadSession {
  // `document` is the one that the outermost object is read from.
  ReadSession(const RkXmlLib16::CXmlDocument* document, const RkXmlLib16::CSerializationContext& context) noexcept
      : skippedRuns(document, context) {
    t_current = this;
  }
  ReadSession(const ReadSession&) = delete;
  ReadSession& operator=(const ReadSession&) = delete;
  ~ReadSession() { t_current = nullptr; }

  // That of this thread; null outside of a read, as when a program calls a record itself.
  static ReadSession* Current() noexcept { return t_current; }

  // Objects being read inside each other.
  unsigned long depth = 0;
  // Of the innermost element whose unknown children are skipped: the index of its children, failed attempts to read
  // them and how much those have taken.
  SiblingSearch* siblings = nullptr;
  // Elements that were taken by anyone, also by attempts that failed later.
  std::uint64_t takenCount = 0;
  // The storage of the values that are read, see ReadingValue.
  RkXmlLib16::RkVariant value;
  bool isValueTaken = false;
  SkippedRuns skippedRuns;
  RkXmlLib16::CObjectMemory memory;
  // Whether the objects are read for the sake of their errors and thrown away, as those of known elements in a wildcard
  // are. Wildcards inside keep nothing then: each would copy all that the ones inside it copy again.
  bool isCheck = false;

 private:
  static inline thread_local ReadSession* t_current = nullptr;
};

}  // namespace RkXmlLib16Data

#endif

#ifndef RKXMLLIB16_BASE_REFERENCECOUNT_H
#define RKXMLLIB16_BASE_REFERENCECOUNT_H

#include <sys/single_threaded.h>

#include <atomic>
#include <cstdint>

#include "RkXmlLib16/base/Likely.h"

namespace RkXmlLib16 {

// A count that threads may change at the same time. An interlocked addition costs about as much as reading a short
// number, so a process with one thread goes without.
class CReferenceCount {
 public:
  explicit CReferenceCount(std::int64_t count) noexcept : m_count(count) {}

  std::int64_t Get() const noexcept { return m_count.load(std::memory_order_relaxed); }
  // The new count.
  std::int64_t Increment() noexcept { return Add(1, std::memory_order_relaxed); }
  std::int64_t Decrement() noexcept { return Add(-1, std::memory_order_acq_rel); }

 private:
  std::int64_t Add(std::int64_t change, std::memory_order order) noexcept {
    if (RKXML_UNLIKELY(__libc_single_threaded == 0)) return m_count.fetch_add(change, order) + change;
    const std::int64_t count = Get() + change;
    m_count.store(count, std::memory_order_relaxed);
    return count;
  }

  std::atomic<std::int64_t> m_count;
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_BASE_INTERNAL_STACKEND_H
#define RKXMLLIB16_BASE_INTERNAL_STACKEND_H

#include <cstddef>
#include <cstdint>

#include "RkXmlLib16/base/Likely.h"

namespace RkXmlLib16 {

// How far the stack of this thread has been used up.
class CStackEnd {
 public:
  // Whether less is left than 64 KiB (a quarter of a smaller stack) and an eighth of what is in use: what was built by
  // recursion is walked by other recursions afterwards. False on a stack that the system does not know, such as that of
  // a coroutine.
  static bool IsNear() noexcept {
    if (RKXML_UNLIKELY(t_range.near == 0)) Measure();
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    return RKXML_UNLIKELY(here < t_range.near) && here >= t_range.end;
  }

 private:
  struct Range {
    std::uintptr_t near;  // 0 before it was measured
    std::uintptr_t end;
  };
  static constexpr std::size_t kReserve = 64 * 1024;

  [[gnu::cold]] static void Measure() noexcept;

  static inline thread_local Range t_range{0, 0};
};

}  // namespace RkXmlLib16

#endif

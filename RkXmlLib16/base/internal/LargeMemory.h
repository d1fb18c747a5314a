#ifndef RKXMLLIB16_BASE_INTERNAL_LARGEMEMORY_H
#define RKXMLLIB16_BASE_INTERNAL_LARGEMEMORY_H

#include <array>
#include <cstddef>

#include "RkXmlLib16/base/HugePages.h"

namespace RkXmlLib16 {

// Large memory that is mapped apart from the heap and mostly grows without being copied. All sizes are multiples of a
// huge page, up to PTRDIFF_MAX. Some of what is freed is spare memory for later.
class CLargeMemory {
 public:
  static constexpr std::size_t kSpares = 2;
  static constexpr std::size_t kMostSpare = 8 * kHugePage;  // in each

  static constexpr std::size_t RoundUp(std::size_t size) noexcept { return (size + kHugePage - 1) & ~(kHugePage - 1); }

  // Null when there is none.
  static void* Allocate(std::size_t size) noexcept;
  // Where the memory lies then; null, and nothing changed, when there is none.
  static void* Grow(void* memory, std::size_t size, std::size_t newSize) noexcept;
  static void Free(void* memory, std::size_t size) noexcept;
  static void FreeSpare() noexcept;

 private:
  struct Range {
    std::size_t Size() const noexcept { return static_cast<std::size_t>(end - begin); }
    unsigned char* begin = nullptr;
    unsigned char* end = nullptr;
  };
  static bool IsSmaller(const Range& a, const Range& b) noexcept { return a.Size() < b.Size(); }
  static void Unmap(const Range& range) noexcept;
  static void* TakeSpare(std::size_t size) noexcept;  // null when there is none
  // Null, and nothing changed, where the kernel has to be asked more than once.
  static void* Remap(void* memory, std::size_t size, std::size_t newSize) noexcept;
  static void FreeTail(Range& spare) noexcept;  // what is more than the most

  // Memory is taken from the front of one, so that what was taken last can grow into the rest.
  static std::array<Range, kSpares> m_spares;
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_BASE_HUGEPAGES_H
#define RKXMLLIB16_BASE_HUGEPAGES_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

constexpr std::size_t kHugePage = std::size_t{2} << 20;

// Asks the kernel to make memory, which is aligned to a huge page, of such pages: page faults are a good part of
// filling large memory, and the search for pages of reading it here and there. A wish only.
void WishForHugePages(void* memory, std::size_t size) noexcept;
// Memory as std::malloc gives it, null when there is none; std::free frees it. Memory that holds whole huge pages is
// aligned to them and made of them.
void* AllocateOfHugePages(std::size_t size) noexcept;

// Such memory that knows its size. Some of what is freed is kept for later, see KeptMemory.h: that the kernel clears it
// again costs more than to fill it.
struct CFreeChunk {
  static constexpr std::size_t kLeastKept = 16 * 1024;

  void operator()(void* memory) const noexcept {
    if (size < kLeastKept)
      std::free(memory);
    else
      FreeLarge(memory);
  }
  [[gnu::cold]] RKXML_EXPORT void FreeLarge(void* memory) const noexcept;

  std::size_t size = 0;  // bytes
};
template <class T>
using CChunk = std::unique_ptr<T[], CFreeChunk>;
[[gnu::cold]] RKXML_EXPORT void* AllocateLargeChunk(std::size_t size);

// Throws std::bad_alloc.
inline void* AllocateChunk(std::size_t size) {
  if (size >= CFreeChunk::kLeastKept) return AllocateLargeChunk(size);
  void* const memory = std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

// Memory for `count` objects, none of which is made.
template <class T>
CChunk<T> MakeChunk(std::size_t count) {
  if (count > PTRDIFF_MAX / sizeof(T)) throw std::bad_alloc();
  const std::size_t size = count * sizeof(T);
  return CChunk<T>(static_cast<T*>(AllocateChunk(size)), CFreeChunk{size});
}

// The same for containers that grow large.
template <class T>
struct CHugePageAllocator {
  using value_type = T;

  CHugePageAllocator() noexcept = default;
  template <class U>
  CHugePageAllocator(const CHugePageAllocator<U>&) noexcept {}
  T* allocate(std::size_t count) { return MakeChunk<T>(count).release(); }
  void deallocate(T* memory, std::size_t count) noexcept { CFreeChunk{count * sizeof(T)}(memory); }

  friend bool operator==(const CHugePageAllocator&, const CHugePageAllocator&) noexcept { return true; }
  friend bool operator!=(const CHugePageAllocator&, const CHugePageAllocator&) noexcept { return false; }
};

template <class T>
using CLargeVector = std::vector<T, CHugePageAllocator<T>>;

}  // namespace RkXmlLib16

#endif

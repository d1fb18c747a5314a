#ifndef RKXMLLIB16_BASE_HUGEPAGES_H
#define RKXMLLIB16_BASE_HUGEPAGES_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>

namespace RkXmlLib16 {

constexpr std::size_t kHugePage = std::size_t{2} << 20;

// Memory as std::malloc gives it, null when there is none; std::free frees it. Memory that holds whole huge pages is
// aligned to them, and the kernel is asked to use them: page faults are a good part of filling large memory, and the
// search for pages of reading it here and there. A wish only.
void* AllocateOfHugePages(std::size_t size) noexcept;

struct CFreeMemory {
  void operator()(void* memory) const noexcept { std::free(memory); }
};

// Such memory for `count` objects, none of which is made.
template <class T>
std::unique_ptr<T[], CFreeMemory> MakeRoomOfHugePages(std::size_t count) {
  void* const memory = count <= PTRDIFF_MAX / sizeof(T) ? AllocateOfHugePages(count * sizeof(T)) : nullptr;
  if (memory == nullptr) throw std::bad_alloc();
  return std::unique_ptr<T[], CFreeMemory>(static_cast<T*>(memory));
}

// The same for containers that grow large.
template <class T>
struct CHugePageAllocator {
  using value_type = T;

  CHugePageAllocator() noexcept = default;
  template <class U>
  CHugePageAllocator(const CHugePageAllocator<U>&) noexcept {}
  T* allocate(std::size_t count) { return MakeRoomOfHugePages<T>(count).release(); }
  void deallocate(T* memory, std::size_t) noexcept { std::free(memory); }

  friend bool operator==(const CHugePageAllocator&, const CHugePageAllocator&) noexcept { return true; }
  friend bool operator!=(const CHugePageAllocator&, const CHugePageAllocator&) noexcept { return false; }
};

}  // namespace RkXmlLib16

#endif

#include "AllocationCount.h"

#include <malloc.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

// Stands in front of the allocator of the whole process, shared libraries included. Counting is off while timing.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

bool counting = false;
std::size_t allocations = 0;
long long liveBytes = 0;
long long peakBytes = 0;

void Count(long long bytes) {
  if (!counting) return;
  liveBytes += bytes;
  peakBytes = std::max(peakBytes, liveBytes);
}

void* Took(void* block) {
  if (counting && block != nullptr) {
    ++allocations;
    Count(static_cast<long long>(malloc_usable_size(block)));
  }
  return block;
}

void Gave(void* block) {
  if (counting && block != nullptr) Count(-static_cast<long long>(malloc_usable_size(block)));
}

template <class... Arguments>
void* Call(long number, Arguments... arguments) {
  return reinterpret_cast<void*>(syscall(number, arguments...));
}

}  // namespace

extern "C" {
void* malloc(std::size_t size) { return Took(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) { return Took(__libc_calloc(count, size)); }
void* realloc(void* block, std::size_t size) {
  Gave(block);
  return Took(__libc_realloc(block, size));
}
void* memalign(std::size_t alignment, std::size_t size) { return Took(__libc_memalign(alignment, size)); }
void* aligned_alloc(std::size_t alignment, std::size_t size) { return Took(__libc_memalign(alignment, size)); }
int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  *block = Took(__libc_memalign(alignment, size));
  return *block != nullptr ? 0 : ENOMEM;
}
void free(void* block) {
  Gave(block);
  __libc_free(block);
}
// What is mapped apart from the allocator.
void* mmap(void* at, std::size_t size, int protection, int flags, int file, off_t offset) {
  void* const memory = Call(SYS_mmap, at, size, protection, flags, file, offset);
  if (memory != MAP_FAILED && file < 0) Count(static_cast<long long>(size));
  return memory;
}
int munmap(void* memory, std::size_t size) {
  Count(-static_cast<long long>(size));
  return static_cast<int>(syscall(SYS_munmap, memory, size));
}
void* mremap(void* memory, std::size_t size, std::size_t newSize, int flags, ...) {
  void* const moved = Call(SYS_mremap, memory, size, newSize, flags);
  if (moved != MAP_FAILED) Count(static_cast<long long>(newSize) - static_cast<long long>(size));
  return moved;
}
}

namespace Bench {

void StartCounting() {
  allocations = 0;
  liveBytes = peakBytes = 0;
  counting = true;
}

HeapUse StopCounting() {
  counting = false;
  return {allocations, static_cast<std::size_t>(peakBytes)};
}

}  // namespace Bench

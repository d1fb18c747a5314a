#include "AllocationCount.h"

#include <malloc.h>

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

void* Took(void* block) {
  if (counting && block != nullptr) {
    ++allocations;
    liveBytes += static_cast<long long>(malloc_usable_size(block));
    peakBytes = std::max(peakBytes, liveBytes);
  }
  return block;
}

void Gave(void* block) {
  if (counting && block != nullptr) liveBytes -= static_cast<long long>(malloc_usable_size(block));
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

#include "RkXmlLib16/base/HugePages.h"

#include <sys/mman.h>

namespace RkXmlLib16 {

void* AllocateOfHugePages(std::size_t size) noexcept {
  if (size < kHugePage) return std::malloc(size);
  if (size > SIZE_MAX - kHugePage) return nullptr;
  size = (size + kHugePage - 1) & ~(kHugePage - 1);
  void* const memory = std::aligned_alloc(kHugePage, size);
  if (memory != nullptr) ::madvise(memory, size, MADV_HUGEPAGE);
  return memory;
}

}  // namespace RkXmlLib16

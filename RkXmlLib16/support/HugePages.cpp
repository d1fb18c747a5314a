#include "RkXmlLib16/support/HugePages.h"

#include <sys/mman.h>

#include <cstdint>

namespace RkXmlLib16 {

void AskForHugePages(void* memory, std::size_t size) noexcept {
  const auto start = reinterpret_cast<std::uintptr_t>(memory);
  const std::size_t skip = (kHugePage - start % kHugePage) % kHugePage;
  if (size < skip + kHugePage) return;
  const std::size_t whole = (size - skip) / kHugePage * kHugePage;
  ::madvise(static_cast<unsigned char*>(memory) + skip, whole, MADV_HUGEPAGE);
}

}  // namespace RkXmlLib16

#include "RkXmlLib16/base/internal/LargeMemory.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstring>

using RkXmlLib16::CLargeMemory;
using RkXmlLib16::kHugePage;

// Two mappings that touch by chance are not one to the kernel.
TEST(LargeMemory, GrowsWhatLiesBeforeSpareMemoryOfAnotherMapping) {
  CLargeMemory::FreeSpare();
  constexpr std::size_t kSize = 2 * kHugePage;
  auto* const second = static_cast<unsigned char*>(CLargeMemory::Allocate(kSize));
  ASSERT_NE(nullptr, second);
  void* const first =
      mmap(second - kSize, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
  if (first != second - kSize) GTEST_SKIP() << "something else lies there";
  std::memset(first, 1, kSize);
  std::memset(second, 2, kSize);
  CLargeMemory::Free(second, kSize);
  void* const grown = CLargeMemory::Grow(first, kSize, 20 * kHugePage);
  ASSERT_NE(nullptr, grown);
  std::memset(static_cast<unsigned char*>(grown) + kSize, 3, 18 * kHugePage);
  for (std::size_t i = 0; i < kSize; i += 1000) ASSERT_EQ(1, static_cast<unsigned char*>(grown)[i]);
  CLargeMemory::Free(grown, 20 * kHugePage);
}

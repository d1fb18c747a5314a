#include "RkXmlLib16/base/HugePages.h"

#include <sys/mman.h>

#include <array>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "RkXmlLib16/base/KeptMemory.h"
#include "RkXmlLib16/base/internal/HoldOverFork.h"
#include "RkXmlLib16/base/internal/LargeMemory.h"
#include "RkXmlLib16/base/internal/Sanitizer.h"

namespace RkXmlLib16 {

namespace {

// Chunks of one size that are free, each with the address of the next one in it.
class KeptChunks {
 public:
  void* Take() noexcept;
  bool Keep(void* memory) noexcept;  // false when there are enough

 private:
  struct Chunk {
    Chunk* next;
  };

  Chunk* m_first = nullptr;
  std::size_t m_count = 0;
};

// By size, powers of two, and how many of each are kept.
constexpr std::size_t kLeastKept = CFreeChunk::kLeastKept;
constexpr std::array<std::size_t, 10> kMost = {16, 8, 8, 8, 8, 8, 8, 40, 2, 1};
std::array<KeptChunks, kMost.size()> kept;

constexpr std::size_t BytesOfMost() {
  std::size_t bytes = CLargeMemory::kSpares * CLargeMemory::kMostSpare;
  for (std::size_t i = 0; i < kMost.size(); ++i) bytes += kMost[i] * (kLeastKept << i);
  return bytes;
}
static_assert(BytesOfMost() <= kMostKeptMemory);

std::mutex keptLock;
[[maybe_unused]] const bool isKeptHeld = HoldOverFork<keptLock>();

void* KeptChunks::Take() noexcept {
  const std::lock_guard lock(keptLock);
  if (m_first == nullptr) return nullptr;
  --m_count;
  return std::exchange(m_first, m_first->next);
}

bool KeptChunks::Keep(void* memory) noexcept {
  const std::lock_guard lock(keptLock);
  if (m_count == kMost[static_cast<std::size_t>(this - kept.data())]) return false;
  ++m_count;
  m_first = ::new (memory) Chunk{m_first};
  return true;
}

// Of a size not below the least; null for sizes that are not kept.
KeptChunks* KeptOf(std::size_t size) noexcept {
  const bool isKept = !kIsSanitized && size <= kLeastKept << (kMost.size() - 1) && (size & (size - 1)) == 0;
  return isKept ? &kept[static_cast<std::size_t>(__builtin_ctzll(size) - __builtin_ctzll(kLeastKept))] : nullptr;
}

}  // namespace

void WishForHugePages(void* memory, std::size_t size) noexcept { ::madvise(memory, size, MADV_HUGEPAGE); }

void* AllocateOfHugePages(std::size_t size) noexcept {
  if (size < kHugePage) return std::malloc(size);
  if (size > SIZE_MAX - kHugePage) return nullptr;
  size = (size + kHugePage - 1) & ~(kHugePage - 1);
  void* const memory = std::aligned_alloc(kHugePage, size);
  if (memory != nullptr) WishForHugePages(memory, size);
  return memory;
}

void* AllocateLargeChunk(std::size_t size) {
  KeptChunks* const chunks = KeptOf(size);
  void* memory = chunks != nullptr ? chunks->Take() : nullptr;
  if (memory == nullptr) memory = AllocateOfHugePages(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void CFreeChunk::FreeLarge(void* memory) const noexcept {
  KeptChunks* const chunks = KeptOf(size);
  if (chunks == nullptr || !chunks->Keep(memory)) std::free(memory);
}

void FreeKeptMemory() noexcept {
  for (KeptChunks& chunks : kept)
    while (void* const memory = chunks.Take()) std::free(memory);
  CLargeMemory::FreeSpare();
}

}  // namespace RkXmlLib16

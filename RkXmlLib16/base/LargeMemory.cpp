#include "RkXmlLib16/base/internal/LargeMemory.h"

#include <sys/mman.h>

#include <cstdint>
#include <cstring>
#include <mutex>
#include <utility>

#include "RkXmlLib16/base/internal/HoldOverFork.h"

namespace RkXmlLib16 {

namespace {

std::mutex spareLock;
[[maybe_unused]] const bool isSpareHeld = HoldOverFork<spareLock>();

}  // namespace

CLargeMemory::Range CLargeMemory::m_spare;

void CLargeMemory::Unmap(const Range& range) noexcept {
  if (range.Size() != 0) ::munmap(range.begin, range.Size());
}

void* CLargeMemory::Allocate(std::size_t size) noexcept {
  {
    const std::lock_guard lock(spareLock);
    if (m_spare.Size() >= size) return std::exchange(m_spare.begin, m_spare.begin + size);
  }
  const std::size_t mapped = size + kHugePage;  // to be cut to whole huge pages
  void* const memory = ::mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  auto* const first = static_cast<unsigned char*>(memory);
  unsigned char* const begin = first + (kHugePage - reinterpret_cast<std::uintptr_t>(first) % kHugePage) % kHugePage;
  Unmap({first, begin});
  Unmap({begin + size, first + mapped});
  WishForHugePages(begin, size);
  return begin;
}

void* CLargeMemory::Remap(void* memory, std::size_t size, std::size_t newSize) noexcept {
  const std::lock_guard lock(spareLock);
  const bool isBeforeSpare = m_spare.begin == static_cast<unsigned char*>(memory) + size;
  if (isBeforeSpare && m_spare.Size() >= newSize - size) {
    m_spare.begin += newSize - size;
    return memory;
  }
  const std::size_t held = size + (isBeforeSpare ? m_spare.Size() : 0);
  void* const grown = ::mremap(memory, held, newSize, MREMAP_MAYMOVE);
  if (grown == MAP_FAILED) return nullptr;
  if (isBeforeSpare) m_spare = Range();
  return grown;
}

// The kernel does not remap memory at once that was mapped in parts, as what lies before the spare memory by chance.
void* CLargeMemory::Grow(void* memory, std::size_t size, std::size_t newSize) noexcept {
  if (void* const grown = Remap(memory, size, newSize)) return grown;
  void* const copy = Allocate(newSize);
  if (copy == nullptr) return nullptr;
  std::memcpy(copy, memory, size);
  Free(memory, size);
  return copy;
}

void CLargeMemory::Free(void* memory, std::size_t size) noexcept {
  auto* const begin = static_cast<unsigned char*>(memory);
  Range freed{begin, begin + size};
  const std::lock_guard lock(spareLock);
  if (freed.end == m_spare.begin) {
    m_spare.begin = freed.begin;
    freed.end = freed.begin;
  } else if (size > m_spare.Size()) {
    std::swap(freed, m_spare);
  }
  Unmap(freed);
  if (m_spare.Size() <= kMostSpare) return;
  unsigned char* const end = m_spare.begin + kMostSpare;
  Unmap({end, m_spare.end});
  m_spare.end = end;
}

void CLargeMemory::FreeSpare() noexcept {
  const std::lock_guard lock(spareLock);
  Unmap(std::exchange(m_spare, Range()));
}

}  // namespace RkXmlLib16

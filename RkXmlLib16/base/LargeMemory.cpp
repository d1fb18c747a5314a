#include "RkXmlLib16/base/internal/LargeMemory.h"

#include <sys/mman.h>

#include <algorithm>
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

std::array<CLargeMemory::Range, CLargeMemory::kSpares> CLargeMemory::m_spares;

void CLargeMemory::Unmap(const Range& range) noexcept {
  if (range.Size() != 0) ::munmap(range.begin, range.Size());
}

void* CLargeMemory::TakeSpare(std::size_t size) noexcept {
  const std::lock_guard lock(spareLock);
  for (Range& spare : m_spares)
    if (spare.Size() >= size) return std::exchange(spare.begin, spare.begin + size);
  Range& most = *std::max_element(m_spares.begin(), m_spares.end(), IsSmaller);
  if (most.Size() == 0) return nullptr;
  void* const grown = ::mremap(most.begin, most.Size(), size, MREMAP_MAYMOVE);
  if (grown == MAP_FAILED) return nullptr;
  most = Range();
  return grown;
}

void* CLargeMemory::Allocate(std::size_t size) noexcept {
  if (void* const memory = TakeSpare(size)) return memory;
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
  const auto isBehind = [end = static_cast<unsigned char*>(memory) + size](const Range& r) { return r.begin == end; };
  const auto behind = std::find_if(m_spares.begin(), m_spares.end(), isBehind);
  Range none;
  Range& rest = behind != m_spares.end() ? *behind : none;
  if (rest.Size() >= newSize - size) {
    rest.begin += newSize - size;
    return memory;
  }
  void* const grown = ::mremap(memory, size + rest.Size(), newSize, MREMAP_MAYMOVE);
  if (grown == MAP_FAILED) return nullptr;
  rest = Range();
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
  for (Range& spare : m_spares) {
    if (spare.begin != freed.end) continue;
    spare.begin = freed.begin;
    return FreeTail(spare);
  }
  Range& least = *std::min_element(m_spares.begin(), m_spares.end(), IsSmaller);
  if (size > least.Size()) std::swap(freed, least);
  Unmap(freed);
  FreeTail(least);
}

void CLargeMemory::FreeTail(Range& spare) noexcept {
  if (spare.Size() <= kMostSpare) return;
  unsigned char* const end = spare.begin + kMostSpare;
  Unmap({end, std::exchange(spare.end, end)});
}

void CLargeMemory::FreeSpare() noexcept {
  const std::lock_guard lock(spareLock);
  for (Range& spare : m_spares) Unmap(std::exchange(spare, Range()));
}

}  // namespace RkXmlLib16

#ifndef RKXMLLIB16_BASE_PREFETCH_H
#define RKXMLLIB16_BASE_PREFETCH_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace RkXmlLib16 {

// These are always inline: g++ takes calls out of a program that do nothing but prefetch.

constexpr std::size_t kCacheLine = 64;

// Asks for the memory of an object that a walk is about to reach, `size` bytes and then up to the object that the walk
// reaches next: what belongs to an object that was read lies behind it. Long lists do not fit the caches, and the
// processor can't look through pointers by itself. Either may be null.
[[gnu::always_inline]] inline void PrefetchObject(const void* object, std::size_t size, const void* next) noexcept {
  constexpr std::size_t kMost = 2048;
  if (object == nullptr) return;
  const auto begin = reinterpret_cast<std::uintptr_t>(object);
  const auto end = reinterpret_cast<std::uintptr_t>(next);
  const char* const memory = static_cast<const char*>(object);
  const std::size_t count = std::max(size, end > begin ? std::min<std::size_t>(end - begin, kMost) : 0);
  for (std::size_t at = 0; at < count; at += kCacheLine) __builtin_prefetch(memory + at);
}

// For memory that is filled front to back: `size` bytes behind `place` have been taken. Asks for as much of what is
// taken a little later, so that writing does not wait for it. It need not be there.
[[gnu::always_inline]] inline void PrefetchBehind(const void* place, std::size_t size) noexcept {
  constexpr std::size_t kDistance = 2048;
  const std::uintptr_t memory = reinterpret_cast<std::uintptr_t>(place) + kDistance;
  for (std::size_t at = 0; at < size; at += kCacheLine)
    __builtin_prefetch(reinterpret_cast<const void*>(memory + at), /*write=*/1);
}

}  // namespace RkXmlLib16

#endif

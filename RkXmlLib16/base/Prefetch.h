#ifndef RKXMLLIB16_BASE_PREFETCH_H
#define RKXMLLIB16_BASE_PREFETCH_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace RkXmlLib16 {

// Asks for the memory of an object that a walk is about to reach, `size` bytes and then up to the object that the walk
// reaches next: what belongs to an object that was read lies behind it. Long lists do not fit the caches, and the
// processor can't look through pointers by itself. Either may be null.
inline void PrefetchObject(const void* object, std::size_t size, const void* next) noexcept {
  constexpr std::size_t kCacheLine = 64;
  constexpr std::size_t kMost = 2048;
  if (object == nullptr) return;
  const auto begin = reinterpret_cast<std::uintptr_t>(object);
  const auto end = reinterpret_cast<std::uintptr_t>(next);
  const char* const memory = static_cast<const char*>(object);
  const std::size_t count = std::max(size, end > begin ? std::min<std::size_t>(end - begin, kMost) : 0);
  for (std::size_t at = 0; at < count; at += kCacheLine) __builtin_prefetch(memory + at);
}

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_ARENA_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_ARENA_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "RkXmlLib16/base/HugePages.h"
#include "RkXmlLib16/base/Prefetch.h"

namespace RkXmlLib16 {

// Memory that is handed out front to back and freed as a whole, or back to a mark. What lies in it is never destroyed,
// so it must not need to be.
class CArena {
 public:
  CArena() = default;
  CArena(const CArena&) = delete;
  CArena& operator=(const CArena&) = delete;

  // `size` bytes at a multiple of 8.
  void* Allocate(std::size_t size) {
    size = RoundUp(size);
    if (size > static_cast<std::size_t>(m_limit - m_cursor)) AddChunk(size);
    void* const memory = m_cursor;
    Advance(size);
    return memory;
  }

  // The same in two steps: `most` bytes that may be written, and then how many of them are taken.
  unsigned char* Prepare(std::size_t most) {
    most = RoundUp(most);
    if (most > static_cast<std::size_t>(m_limit - m_cursor)) AddChunk(most);
    return m_cursor;
  }
  void Take(std::size_t size) noexcept { Advance(RoundUp(size)); }

  // Takes `more` bytes, a multiple of 8, if they lie at `place`; false when something else does or there is no space.
  bool Extend(const void* place, std::size_t more) noexcept {
    if (place != m_cursor || more > static_cast<std::size_t>(m_limit - m_cursor)) return false;
    m_cursor += more;
    return true;
  }
  // Makes the memory at `memory`, `oldSize` bytes, `newSize` bytes long where it lies; false when something else
  // follows it or there is no space.
  bool Extend(const void* memory, std::size_t oldSize, std::size_t newSize) noexcept {
    return Extend(static_cast<const unsigned char*>(memory) + RoundUp(oldSize), RoundUp(newSize) - RoundUp(oldSize));
  }

  struct Mark {
    std::size_t chunkCount;
    unsigned char* cursor;
    friend bool operator==(const Mark& a, const Mark& b) noexcept {
      return a.chunkCount == b.chunkCount && a.cursor == b.cursor;
    }
  };
  Mark GetMark() const noexcept { return {m_chunks.size(), m_cursor}; }
  // Frees all that was allocated since the mark was taken.
  void RewindTo(const Mark& mark) noexcept;

 private:
  static constexpr std::size_t RoundUp(std::size_t size) noexcept { return (size + 7) & ~std::size_t{7}; }
  void Advance(std::size_t size) noexcept {
    PrefetchBehind(m_cursor, kCacheLine);  // most nodes and texts are shorter
    m_cursor += size;
  }
  [[gnu::cold]] void AddChunk(std::size_t atLeast);

  using Chunk = CChunk<unsigned char>;
  static std::size_t SizeOf(const Chunk& chunk) noexcept { return chunk.get_deleter().size; }

  std::vector<Chunk> m_chunks;
  unsigned char* m_cursor = nullptr;  // within the last chunk
  unsigned char* m_limit = nullptr;
  Chunk m_spare;  // the last chunk that a rewind freed, so that going to and fro allocates nothing
};

}  // namespace RkXmlLib16

#endif

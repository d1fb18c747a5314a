#include "RkXmlLib16/document/internal/Arena.h"

#include <algorithm>
#include <utility>

namespace RkXmlLib16 {

namespace {

constexpr std::size_t kFirstChunk = 4 * 1024;
constexpr std::size_t kLargestChunk = 2 * 1024 * 1024;  // what the last one has to spare counts

}  // namespace

void CArena::AddChunk(std::size_t atLeast) {
  Chunk chunk = std::move(m_spare);
  m_spare.size = 0;
  if (chunk.size < atLeast) {
    // Chunks double, so that small documents stay small and large ones need few.
    std::size_t size = m_chunks.empty() ? kFirstChunk : std::min(2 * m_chunks.back().size, kLargestChunk);
    size = std::max(size, atLeast);
    chunk.memory = MakeRoomOfHugePages<unsigned char>(size);
    chunk.size = size;
  }
  m_chunks.push_back(std::move(chunk));
  m_cursor = m_chunks.back().memory.get();
  m_limit = m_cursor + m_chunks.back().size;
}

void CArena::RewindTo(const Mark& mark) noexcept {
  while (m_chunks.size() > mark.chunkCount) {
    m_spare = std::move(m_chunks.back());
    m_chunks.pop_back();
  }
  m_cursor = mark.cursor;
  m_limit = m_chunks.empty() ? m_cursor : m_chunks.back().memory.get() + m_chunks.back().size;
}

}  // namespace RkXmlLib16

#include "RkXmlLib16/document/internal/Arena.h"

#include <algorithm>
#include <utility>

namespace RkXmlLib16 {

namespace {

constexpr std::size_t kFirstChunk = 4 * 1024;
constexpr std::size_t kLargestChunk = kHugePage;  // what the last one has to spare counts

}  // namespace

void CArena::AddChunk(std::size_t atLeast) {
  // Chunks double, so that small documents stay small and large ones need few.
  const std::size_t usual = m_chunks.empty() ? kFirstChunk : std::min(2 * SizeOf(m_chunks.back()), kLargestChunk);
  Chunk chunk = std::move(m_spare);
  if (chunk == nullptr || SizeOf(chunk) < atLeast) chunk = MakeChunk<unsigned char>(std::max(usual, atLeast));
  m_chunks.push_back(std::move(chunk));
  m_cursor = m_chunks.back().get();
  m_limit = m_cursor + SizeOf(m_chunks.back());
}

void CArena::RewindTo(const Mark& mark) noexcept {
  while (m_chunks.size() > mark.chunkCount) {
    m_spare = std::move(m_chunks.back());
    m_chunks.pop_back();
  }
  m_cursor = mark.cursor;
  m_limit = m_chunks.empty() ? m_cursor : m_chunks.back().get() + SizeOf(m_chunks.back());
}

}  // namespace RkXmlLib16

#include "RkXmlLib16/object/internal/ObjectMemory.h"

#include <cstdint>
#include <new>

#include "RkXmlLib16/base/HugePages.h"
#include "RkXmlLib16/object/internal/ObjectBlocks.h"

namespace RkXmlLib16 {

void CObjectMemory::Release(Block* block) noexcept {
  if (block->users.Decrement() != 0) return;
  if (block->isOfPage)
    CObjectBlocks::Free(block);
  else
    CFreeChunk{kBlock}(block);
}

void* CObjectMemory::TakeFromNewBlock(std::size_t size) {
  static_assert(sizeof(Block) + sizeof(Head) <= kFirst);
  const bool isOfPage = ++m_blockCount > kBlocksAlone;
  auto* const block = ::new (isOfPage ? CObjectBlocks::Allocate() : AllocateChunk(kBlock)) Block;
  block->isOfPage = isOfPage;
  LeaveBlock();
  m_block = block;
  m_used = kFirst;
  return Take(size);
}

void* CObjectMemory::AllocateAlone(CObjectMemory* current, std::size_t size) {
  if (current != nullptr && size <= kLargest && current->m_count != kAlone) ++current->m_count;
  if (size > SIZE_MAX - kAlignment) throw std::bad_alloc();
  return Place(static_cast<unsigned char*>(::operator new(size + kAlignment)) + kAlignment, nullptr);
}

void CObjectMemory::Free(void* object) noexcept {
  if (object == nullptr) return;
  Block* const block = (static_cast<Head*>(object) - 1)->block;
  if (block != nullptr)
    Release(block);
  else
    ::operator delete(static_cast<unsigned char*>(object) - kAlignment);
}

}  // namespace RkXmlLib16

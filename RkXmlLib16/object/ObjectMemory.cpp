#include "RkXmlLib16/object/internal/ObjectMemory.h"

#include <cstdint>
#include <new>

#include "RkXmlLib16/base/internal/Sanitizer.h"
#include "RkXmlLib16/object/internal/ObjectBlocks.h"

namespace RkXmlLib16 {

void* CObjectMemory::Place(unsigned char* memory, Block* block) noexcept {
  ::new (memory - sizeof(Head)) Head{block};
  return memory;
}

void CObjectMemory::Release(Block* block) noexcept {
  if (block->users.Decrement() != 0) return;
  if (block->isOfPage)
    CObjectBlocks::Free(block);
  else
    ::operator delete(block);
}

inline void* CObjectMemory::Take(std::size_t size) {
  m_block->users.Increment();
  unsigned char* const memory = reinterpret_cast<unsigned char*>(m_block) + m_used;
  m_used += (size + sizeof(Head) + kAlignment - 1) / kAlignment * kAlignment;
  return Place(memory, m_block);
}

void* CObjectMemory::TakeFromNewBlock(std::size_t size) {
  static_assert(sizeof(Block) + sizeof(Head) <= kFirst);
  const bool isOfPage = ++m_blockCount > kBlocksAlone;
  auto* const block = ::new (isOfPage ? CObjectBlocks::Allocate() : ::operator new(kBlock)) Block;
  block->isOfPage = isOfPage;
  LeaveBlock();
  m_block = block;
  m_used = kFirst;
  return Take(size);
}

void* CObjectMemory::Allocate(std::size_t size) {
  CObjectMemory* const current = t_current;
  const bool usesBlock = !kIsSanitized && current != nullptr && size <= kLargest && current->m_count == kAlone;
  if (!usesBlock) return AllocateAlone(current, size);
  return current->m_used + size <= kBlock ? current->Take(size) : current->TakeFromNewBlock(size);
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

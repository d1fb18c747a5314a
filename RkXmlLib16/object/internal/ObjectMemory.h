#ifndef RKXMLLIB16_OBJECT_INTERNAL_OBJECTMEMORY_H
#define RKXMLLIB16_OBJECT_INTERNAL_OBJECTMEMORY_H

#include <cstddef>
#include <new>

#include "RkXmlLib16/base/Prefetch.h"
#include "RkXmlLib16/base/ReferenceCount.h"
#include "RkXmlLib16/base/internal/Sanitizer.h"
#include "RkXmlLib16/object/internal/ObjectBlocks.h"

namespace RkXmlLib16 {

// Where objects lie. While one of these lives, as during a read, its thread takes objects from blocks, so that those of
// one document lie side by side and few allocations are made. A block goes with the last of its objects, in whatever
// thread that ends: an object that outlives the others keeps a whole block. The first few objects, and all that are
// made at other times, are allocated one by one. One that is made while another lives in the same thread does nothing.
class CObjectMemory {
 public:
  CObjectMemory() noexcept {
    if (t_current == nullptr) t_current = this;
  }
  CObjectMemory(const CObjectMemory&) = delete;
  CObjectMemory& operator=(const CObjectMemory&) = delete;
  ~CObjectMemory() {
    if (t_current == this) t_current = nullptr;
    LeaveBlock();
  }

  // Throws std::bad_alloc.
  static void* Allocate(std::size_t size) {
    CObjectMemory* const current = t_current;
    const bool usesBlock = !kIsSanitized && current != nullptr && size <= kLargest && current->m_count == kAlone;
    if (!usesBlock) return AllocateAlone(current, size);
    return current->m_used + size <= kBlock ? current->Take(size) : current->TakeFromNewBlock(size);
  }
  static void Free(void* object) noexcept;

 private:
  struct Block {
    CReferenceCount users{1};  // its objects, and who takes them from it
    bool isOfPage = false;     // see CObjectBlocks
  };
  // Stands right in front of each object.
  struct Head {
    Block* block;  // null for an object of its own
  };

  static constexpr std::size_t kAlignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
  static constexpr std::size_t kBlock = CObjectBlocks::kBlock;
  static constexpr std::size_t kFirst = 2 * kAlignment;  // where the first object of a block lies
  static constexpr int kBlocksAlone = 16;                // so that small documents need no huge page
  static constexpr std::size_t kLargest = kBlock / 16;
  static constexpr int kAlone = 8;  // objects before the first block

  static void* Place(unsigned char* memory, Block* block) noexcept {
    ::new (memory - sizeof(Head)) Head{block};
    return memory;
  }
  static void Release(Block* block) noexcept;
  void* Take(std::size_t size) {
    m_block->users.Increment();
    unsigned char* const memory = reinterpret_cast<unsigned char*>(m_block) + m_used;
    m_used += (size + sizeof(Head) + kAlignment - 1) / kAlignment * kAlignment;
    PrefetchBehind(memory, size);
    return Place(memory, m_block);
  }
  [[gnu::cold, gnu::noinline]] void* TakeFromNewBlock(std::size_t size);
  [[gnu::noinline]] static void* AllocateAlone(CObjectMemory* current, std::size_t size);
  void LeaveBlock() noexcept {
    if (m_block != nullptr) Release(m_block);
  }

  static inline thread_local CObjectMemory* t_current = nullptr;

  Block* m_block = nullptr;
  std::size_t m_used = kBlock;  // bytes of it, the head of the next object included
  int m_count = 0;              // up to kAlone
  int m_blockCount = 0;         // so far
};

}  // namespace RkXmlLib16

#endif

#include "RkXmlLib16/object/internal/ObjectBlocks.h"

#include <bitset>
#include <cstdint>
#include <mutex>
#include <new>

#include "RkXmlLib16/base/HugePages.h"
#include "RkXmlLib16/base/internal/HoldOverFork.h"

namespace RkXmlLib16 {

// Stands at the beginning of a huge page, in the place of its first block.
struct CObjectBlocks::Page {
  static constexpr std::size_t kCount = kHugePage / kBlock;

  static Page& Of(void* block) noexcept {
    const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(block) % kHugePage;
    return *reinterpret_cast<Page*>(static_cast<unsigned char*>(block) - offset);
  }

  Page() noexcept {
    used.set(0);
    Link();
  }
  void* Take() noexcept {
    std::size_t index = 1;
    while (used[index]) ++index;
    used.set(index);
    if (used.all()) Unlink();
    return reinterpret_cast<unsigned char*>(this) + index * kBlock;
  }
  // Whether the page is no longer needed.
  bool Give(void* block) noexcept {
    if (used.all()) Link();
    used.reset(reinterpret_cast<std::uintptr_t>(block) % kHugePage / kBlock);
    if (used.count() > 1) return false;
    Unlink();
    return true;
  }

  void Link() noexcept {
    next = first;
    previous = nullptr;
    if (next != nullptr) next->previous = this;
    first = this;
  }
  void Unlink() noexcept {
    (previous != nullptr ? previous->next : first) = next;
    if (next != nullptr) next->previous = previous;
  }

  std::bitset<kCount> used;
  Page* next = nullptr;  // with a free block
  Page* previous = nullptr;

  static inline Page* first = nullptr;  // with a free block
};

namespace {

std::mutex pagesLock;
[[maybe_unused]] const bool arePagesHeld = HoldOverFork<pagesLock>();

}  // namespace

void* CObjectBlocks::Allocate() {
  std::unique_lock lock(pagesLock);
  if (Page::first == nullptr) {
    lock.unlock();
    void* const memory = AllocateChunk(kHugePage);
    lock.lock();
    ::new (memory) Page;
  }
  return Page::first->Take();
}

void CObjectBlocks::Free(void* block) noexcept {
  std::unique_lock lock(pagesLock);
  Page& page = Page::Of(block);
  if (!page.Give(block)) return;
  lock.unlock();
  CFreeChunk{kHugePage}(&page);
}

}  // namespace RkXmlLib16

#ifndef RKXMLLIB16_OBJECT_INTERNAL_OBJECTBLOCKS_H
#define RKXMLLIB16_OBJECT_INTERNAL_OBJECTBLOCKS_H

#include <cstddef>

namespace RkXmlLib16 {

// Blocks for objects, cut from huge pages: the first free block of a page that has one, so that few pages are in use
// when objects outlive their documents. Any thread may free a block.
class CObjectBlocks {
 public:
  static constexpr std::size_t kBlock = 16 * 1024;

  // kBlock bytes, aligned to as many. Throws std::bad_alloc.
  static void* Allocate();
  static void Free(void* block) noexcept;

 private:
  struct Page;
};

}  // namespace RkXmlLib16

#endif

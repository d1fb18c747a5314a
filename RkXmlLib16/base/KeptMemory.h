#ifndef RKXMLLIB16_BASE_KEPTMEMORY_H
#define RKXMLLIB16_BASE_KEPTMEMORY_H

#include <cstddef>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// The most bytes that the library keeps of the memory that documents, their objects and byte buffers free, in pieces of
// 16 KB and more. The next ones take it: memory from the kernel costs more time than filling it.
constexpr std::size_t kMostKeptMemory = std::size_t{144} << 20;

// Frees what is kept. Any thread may call it at any time.
RKXML_EXPORT void FreeKeptMemory() noexcept;

}  // namespace RkXmlLib16

#endif

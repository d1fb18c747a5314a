#ifndef RKXMLLIB16_BASE_KEPTMEMORY_H
#define RKXMLLIB16_BASE_KEPTMEMORY_H

#include <cstddef>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// The library keeps so many bytes at most of what large documents, their objects and their bytes free, for the next
// ones: memory that comes from the kernel costs more than to fill it.
constexpr std::size_t kMostKeptMemory = std::size_t{128} << 20;

// Frees what it keeps. Any thread may call it at any time.
RKXML_EXPORT void FreeKeptMemory() noexcept;

}  // namespace RkXmlLib16

#endif

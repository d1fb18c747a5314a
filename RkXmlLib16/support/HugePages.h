#ifndef RKXMLLIB16_SUPPORT_HUGEPAGES_H
#define RKXMLLIB16_SUPPORT_HUGEPAGES_H

#include <cstddef>

namespace RkXmlLib16 {

constexpr std::size_t kHugePage = std::size_t{2} << 20;

// Asks the kernel for huge pages where the memory, which is about to be filled, holds whole ones: page faults are a
// good part of filling large memory. A wish only; small memory is left alone.
void AskForHugePages(void* memory, std::size_t size) noexcept;

}  // namespace RkXmlLib16

#endif

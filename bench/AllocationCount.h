#ifndef RKXMLLIB16_BENCH_ALLOCATIONCOUNT_H
#define RKXMLLIB16_BENCH_ALLOCATIONCOUNT_H

#include <cstddef>

namespace Bench {

// What the process took from the heap between Start and Stop, counted in the allocator itself.
struct HeapUse {
  std::size_t allocations = 0;
  std::size_t peakBytes = 0;  // above what was held at the start
};

void StartCounting();
HeapUse StopCounting();

}  // namespace Bench

#endif

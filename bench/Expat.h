#ifndef RKXMLLIB16_BENCH_EXPAT_H
#define RKXMLLIB16_BENCH_EXPAT_H

#include <cstddef>
#include <string>

namespace Bench {

// The baseline: the 16-bit parser with namespace processing and callbacks that only count. Returns the number of
// elements.
std::size_t ParseWithBareExpat(const std::string& xml);

}  // namespace Bench

#endif

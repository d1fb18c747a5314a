#ifndef RKXMLLIB16_BENCH_DOCUMENTS_H
#define RKXMLLIB16_BENCH_DOCUMENTS_H

#include <cstddef>
#include <string>

namespace Bench {

// Documents of the two examples as UTF-8 XML text of about `bytes` bytes, always the same for the same size.
// MakeGpx gives a track of numbers and times, MakeProse waypoints in GPX that are mostly text, in several scripts and
// with escaped characters.
std::string MakeGpx(std::size_t bytes);
std::string MakeProse(std::size_t bytes);
std::string MakeOrder(std::size_t bytes);

}  // namespace Bench

#endif

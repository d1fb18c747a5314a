#ifndef RKXML_TOOL_GZIP_H
#define RKXML_TOOL_GZIP_H

#include <cstdint>
#include <string>

#include "Files.h"

// The bytes in a gzip wrapper, however short they are.
Bytes Gzip(const unsigned char* data, std::size_t length);

// What a file holds inside of its wrapper.
enum class Wrapper { None, Gzip, Zlib };
struct Content {
  Wrapper wrapper = Wrapper::None;  // told by its magic number, and None where the wrapper turns out to be damaged
  std::string start;                // the first bytes
  std::uint64_t length = 0;         // of all of it, when it was looked at to the end
};
Content LookInto(const InputFile& file, bool toEnd);

// Whether the file begins as gzip, but does not come to its end.
bool IsDamagedGzip(const InputFile& file);

#endif

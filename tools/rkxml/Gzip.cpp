#include "Gzip.h"

#include <zlib.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

Bytes Gzip(const unsigned char* data, std::size_t length) {
  constexpr int kGzipWrapper = 16;
  z_stream stream{};
  if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, MAX_WBITS + kGzipWrapper, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY) !=
      Z_OK) {
    throw std::bad_alloc();
  }
  const std::unique_ptr<z_stream, int (*)(z_stream*)> end(&stream, deflateEnd);

  Bytes out(deflateBound(&stream, length));
  std::size_t written = 0;
  const auto piece = [](std::size_t size) {
    return static_cast<uInt>(std::min<std::size_t>(size, std::numeric_limits<uInt>::max()));
  };
  for (int status = Z_OK; status != Z_STREAM_END;) {
    stream.next_in = const_cast<unsigned char*>(data);
    stream.avail_in = piece(length);
    stream.next_out = out.data() + written;
    stream.avail_out = piece(out.size() - written);
    const uInt in = stream.avail_in;
    const uInt space = stream.avail_out;
    status = deflate(&stream, in == length ? Z_FINISH : Z_NO_FLUSH);
    data += in - stream.avail_in;
    length -= in - stream.avail_in;
    written += space - stream.avail_out;
  }
  out.resize(written);
  return out;
}

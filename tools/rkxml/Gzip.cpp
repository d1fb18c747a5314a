#include "Gzip.h"

#include <zlib.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

namespace {

constexpr std::size_t kStart = 4096;

Wrapper WrapperOf(const unsigned char* bytes, std::size_t length) {
  if (length < 2) return Wrapper::None;
  if (bytes[0] == 0x1F && bytes[1] == 0x8B) return Wrapper::Gzip;                             // RFC 1952, 2.3.1
  if ((bytes[0] & 0x0F) == 8 && (bytes[0] * 256 + bytes[1]) % 31 == 0) return Wrapper::Zlib;  // RFC 1950, 2.2
  return Wrapper::None;
}

// Inflates the file into `content`; false when it is damaged, as far as it was looked at.
bool Inflate(const InputFile& file, bool toEnd, Content& content) {
  constexpr int kDetectWrapper = 32;
  z_stream stream{};
  if (inflateInit2(&stream, MAX_WBITS + kDetectWrapper) != Z_OK) throw std::bad_alloc();
  const std::unique_ptr<z_stream, int (*)(z_stream*)> end(&stream, inflateEnd);
  Bytes in(1 << 16);
  Bytes out(1 << 18);
  std::uint64_t offset = 0;
  for (int status = Z_OK; status != Z_STREAM_END;) {
    if (stream.avail_in == 0) {
      stream.next_in = in.data();
      stream.avail_in = static_cast<uInt>(file.ReadAt(offset, in.data(), in.size()));
      offset += stream.avail_in;
    }
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    status = inflate(&stream, Z_NO_FLUSH);
    const std::size_t made = out.size() - stream.avail_out;
    content.length += made;
    content.start.append(reinterpret_cast<const char*>(out.data()), std::min(made, kStart - content.start.size()));
    if (status != Z_OK && status != Z_STREAM_END) return false;
    if (!toEnd && content.start.size() == kStart) break;
  }
  return true;
}

}  // namespace

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

Content LookInto(const InputFile& file, bool toEnd) {
  Bytes start(kStart);
  start.resize(file.ReadAt(0, start.data(), start.size()));
  Content content;
  content.wrapper = WrapperOf(start.data(), start.size());
  if (content.wrapper != Wrapper::None && Inflate(file, toEnd, content)) return content;
  content.wrapper = Wrapper::None;
  content.start.assign(reinterpret_cast<const char*>(start.data()), start.size());
  content.length = file.GetLength();
  return content;
}

bool IsDamagedGzip(const InputFile& file) {
  unsigned char start[2];
  Content content;
  return WrapperOf(start, file.ReadAt(0, start, sizeof start)) == Wrapper::Gzip &&
         !Inflate(file, /*toEnd=*/true, content);
}

#include "RkXmlLib16/io/Zip.h"

#define ZLIB_CONST  // z_stream::next_in is a pointer to const
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/io/internal/ByteSink.h"
#include "RkXmlLib16/io/internal/InflatingSource.h"

namespace RkXmlLib16 {

namespace {

constexpr int kLevel = 1;
constexpr int kMemoryLevel = 8;
constexpr int kGZipWindowBits = 15 + 16;
constexpr int kZLibWindowBits = 15;
constexpr int kDetectWindowBits = 15 + 32;
constexpr unsigned long kInflateChunk = 65536;
constexpr std::size_t kDeflateChunk = 65536;

void CheckInit(int code) {
  if (code == Z_MEM_ERROR) throw std::bad_alloc();
  if (code != Z_OK) throw CRkException(FormatString(L"Failed to compress data. [Error Code: %d]", code));
}

// The bytes that zlib still has to read or may write. zlib counts in 32 bits, so it gets them in pieces.
template <class Byte>
class Pieces {
 public:
  Pieces(Byte* data, unsigned long length) : m_next(data), m_left(length) {}

  // Hands out a piece when zlib is done with the last one; false when there is none left.
  bool Refill(Byte*& next, uInt& available) {
    if (available == 0 && m_left > 0) {
      available = static_cast<uInt>(std::min<unsigned long>(m_left, std::numeric_limits<uInt>::max()));
      next = m_next;
      m_next += available;
      m_left -= available;
    }
    return available > 0;
  }
  bool AllGivenOut() const { return m_left == 0; }

 private:
  Byte* m_next;
  unsigned long m_left;
};

class Deflater {
 public:
  explicit Deflater(CompressionType type) {
    const int windowBits = type == CompressionType_GZip ? kGZipWindowBits : kZLibWindowBits;
    CheckInit(deflateInit2(&m_stream, kLevel, Z_DEFLATED, windowBits, kMemoryLevel, Z_DEFAULT_STRATEGY));
  }
  Deflater(const Deflater&) = delete;
  Deflater& operator=(const Deflater&) = delete;
  ~Deflater() { deflateEnd(&m_stream); }

  // zlib's code of the finishing call: Z_STREAM_END when all of the input became output.
  int Run(const unsigned char* data, unsigned long length, unsigned char* result, unsigned long room) {
    Pieces<const unsigned char> in(data, length);
    Pieces<unsigned char> out(result, room);
    m_stream.next_out = result;
    do {
      in.Refill(m_stream.next_in, m_stream.avail_in);
      out.Refill(m_stream.next_out, m_stream.avail_out);
      deflate(&m_stream, Z_NO_FLUSH);
    } while (Unfinished(in, out));
    int code;
    do code = deflate(&m_stream, Z_FINISH);
    while (code == Z_OK && m_stream.avail_out == 0 && out.Refill(m_stream.next_out, m_stream.avail_out));
    return code;
  }

  unsigned long TotalOut() const { return m_stream.total_out; }

  // Compresses the next bytes, or ends the stream, and hands what comes out to `sink`.
  void Run(const unsigned char* data, std::size_t length, bool ends, ByteSink& sink) {
    Pieces<const unsigned char> in(data, length);
    unsigned char out[kDeflateChunk];
    do {
      in.Refill(m_stream.next_in, m_stream.avail_in);
      m_stream.next_out = out;
      m_stream.avail_out = sizeof out;
      deflate(&m_stream, ends ? Z_FINISH : Z_NO_FLUSH);
      if (m_stream.avail_out < sizeof out) sink.Write(out, sizeof out - m_stream.avail_out);
    } while (m_stream.avail_out == 0 || m_stream.avail_in > 0 || !in.AllGivenOut());
  }

 private:
  // Input is left and there is space for what becomes of it.
  bool Unfinished(const Pieces<const unsigned char>& in, const Pieces<unsigned char>& out) const {
    return (m_stream.avail_in > 0 || !in.AllGivenOut()) && (m_stream.avail_out > 0 || !out.AllGivenOut());
  }

  z_stream m_stream{};
};

class Inflater {
 public:
  Inflater() {
    if (inflateInit2(&m_stream, kDetectWindowBits) != Z_OK) throw std::bad_alloc();
  }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;
  ~Inflater() { inflateEnd(&m_stream); }

  InflateResult Run(const unsigned char* data, unsigned long length, const InflateLimits& limits, CBinaryData& result) {
    Pieces<const unsigned char> in(data, length);
    result.Reserve(kInflateChunk);
    int code = Z_OK;
    while (code == Z_OK) {
      in.Refill(m_stream.next_in, m_stream.avail_in);
      m_stream.next_out = result.Extend(kInflateChunk);
      m_stream.avail_out = kInflateChunk;
      code = inflate(&m_stream, Z_NO_FLUSH);
      result.Truncate(m_stream.total_out);
      if (const InflateResult over = Check(limits); over != InflateResult::Inflated) return over;
    }
    return ResultOf(code);
  }

  // One step: from the `length` bytes at `data`, of which `used` are taken, to the room at `out`, of which `made` are
  // filled. No result while there is more to come.
  std::optional<InflateResult> Step(const unsigned char* data, std::size_t length, unsigned char* out, std::size_t room,
                                    const InflateLimits& limits, std::size_t& used, std::size_t& made) {
    constexpr std::size_t kMost = std::numeric_limits<uInt>::max();
    m_stream.next_in = data;
    m_stream.avail_in = static_cast<uInt>(std::min(length, kMost));
    m_stream.next_out = out;
    m_stream.avail_out = static_cast<uInt>(std::min(room, kMost));
    const int code = inflate(&m_stream, Z_NO_FLUSH);
    used = static_cast<std::size_t>(m_stream.next_in - data);
    made = static_cast<std::size_t>(m_stream.next_out - out);
    if (const InflateResult over = Check(limits); over != InflateResult::Inflated) return over;
    // Without input there can be no progress, which is no fault.
    if (code == Z_OK || (code == Z_BUF_ERROR && length == 0)) return std::nullopt;
    return ResultOf(code);
  }
  unsigned long TotalIn() const noexcept { return m_stream.total_in; }

 private:
  InflateResult Check(const InflateLimits& limits) const {
    if (limits.maxBytes != 0 && m_stream.total_out > limits.maxBytes) return InflateResult::TooManyBytes;
    const bool isOver = limits.maxRatio != 0 && m_stream.total_out > limits.ratioFrom &&
                        m_stream.total_out / limits.maxRatio > m_stream.total_in;
    return isOver ? InflateResult::RatioTooHigh : InflateResult::Inflated;
  }
  static InflateResult ResultOf(int code) {
    if (code == Z_MEM_ERROR) throw std::bad_alloc();
    return code == Z_STREAM_END ? InflateResult::Inflated : InflateResult::NotCompressed;
  }

  z_stream m_stream{};
};

// The compressed bytes in an array as long as the input, and their number.
std::pair<std::unique_ptr<unsigned char[]>, unsigned long> Deflate(const unsigned char* data, unsigned long length,
                                                                   CompressionType type) {
  std::unique_ptr<unsigned char[]> result(new unsigned char[length]);
  Deflater deflater(type);
  const int code = deflater.Run(data, length, result.get(), length);
  if (code != Z_STREAM_END) throw CRkException(FormatString(L"Failed to compress data. [Error Code: %d]", code));
  return {std::move(result), deflater.TotalOut()};
}

class DeflatingSink : public ByteSink {
 public:
  DeflatingSink(std::unique_ptr<ByteSink> sink, CompressionType type) : m_sink(std::move(sink)), m_deflater(type) {}

  void Write(const unsigned char* bytes, std::size_t count) override { m_deflater.Run(bytes, count, false, *m_sink); }
  void Finish() override {
    m_deflater.Run(nullptr, 0, true, *m_sink);
    m_sink->Finish();
  }

 private:
  std::unique_ptr<ByteSink> m_sink;
  Deflater m_deflater;
};

// Whether the bytes can be the beginning of a gzip or zlib header.
bool MayBeCompressed(const unsigned char* data, unsigned long length) {
  if (length < 2) return false;
  const bool gzip = data[0] == 0x1F && data[1] == 0x8B;
  const bool zlib = (data[0] & 0x0F) == Z_DEFLATED && data[0] >> 4 <= 7 && (data[0] << 8 | data[1]) % 31 == 0;
  return gzip || zlib;
}

bool IsCompression(CompressionType type) { return type == CompressionType_GZip || type == CompressionType_ZLib; }

}  // namespace

std::unique_ptr<ByteSink> Compressing(std::unique_ptr<ByteSink> sink, CompressionType compression) {
  if (!IsCompression(compression)) return sink;
  return std::make_unique<DeflatingSink>(std::move(sink), compression);
}

void CRkZip::Compress(unsigned char** data, unsigned long* length, CompressionType type) {
  if (!IsCompression(type)) return;
  auto [result, resultLength] = Deflate(*data, *length, type);
  delete[] * data;
  *data = result.release();
  *length = resultLength;
}

void CRkZip::CompressData(CBinaryData& data, CompressionType type) {
  if (!IsCompression(type) || data.GetLength() == 0) return;
  auto [result, resultLength] = Deflate(data.GetData(), data.GetLength(), type);
  CBinaryData compressed(result.get(), resultLength, /*copy=*/false);
  static_cast<void>(result.release());
  data.Swap(compressed);
}

void CRkZip::Decompress(unsigned char** data, unsigned long* length) {
  CBinaryData inflated;
  if (Inflate(*data, *length, InflateLimits(), inflated) != InflateResult::Inflated) return;
  delete[] * data;
  *data = inflated.ReleaseData(length);
}

InflateResult CRkZip::Inflate(const unsigned char* data, unsigned long length, const InflateLimits& limits,
                              CBinaryData& out, unsigned long* used) {
  if (!MayBeCompressed(data, length)) return InflateResult::NotCompressed;
  CBinaryData inflated;
  Inflater inflater;
  const InflateResult result = inflater.Run(data, length, limits, inflated);
  if (result == InflateResult::Inflated) out.Swap(inflated);
  if (result == InflateResult::Inflated && used != nullptr) *used = inflater.TotalIn();
  return result;
}

// ---- in pieces ----

struct CInflatingSource::Stream {
  Inflater inflater;
};

CInflatingSource::CInflatingSource(CByteSource& source, const InflateLimits& limits)
    : m_source(source), m_limits(limits), m_buffer(new unsigned char[kInflateChunk]) {}

CInflatingSource::~CInflatingSource() = default;

std::size_t CInflatingSource::Read(unsigned char* buffer, std::size_t room) {
  if (!m_isBegun) Begin();
  return m_stream != nullptr ? ReadInflated(buffer, room) : ReadPlain(buffer, room);
}

void CInflatingSource::Begin() {
  m_isBegun = true;
  while (m_length < 2 && Fill()) {
  }
  if (MayBeCompressed(m_buffer.get(), m_length)) m_stream = std::make_unique<Stream>();
}

// Appends to the bytes of the source that are still to be taken.
bool CInflatingSource::Fill() {
  if (m_isAtEnd) return false;
  const std::size_t count = m_source.Read(m_buffer.get() + m_length, kInflateChunk - m_length);
  m_isAtEnd = count == 0;
  m_length += count;
  m_bytesRead += count;
  if (m_start.size() < kStart) m_start.append(reinterpret_cast<char*>(m_buffer.get()) + m_length - count, count);
  return count != 0;
}

std::size_t CInflatingSource::ReadPlain(unsigned char* buffer, std::size_t room) {
  if (m_next != m_length) {
    const std::size_t count = std::min(room, m_length - m_next);
    std::memcpy(buffer, m_buffer.get() + m_next, count);
    m_next += count;
    return count;
  }
  if (m_isAtEnd) return 0;
  const std::size_t count = m_source.Read(buffer, room);
  m_isAtEnd = count == 0;
  m_bytesRead += count;
  return count;
}

std::size_t CInflatingSource::ReadInflated(unsigned char* buffer, std::size_t room) {
  while (!m_result) {
    if (m_next == m_length) {
      m_next = m_length = 0;
      Fill();
    }
    std::size_t used = 0;
    std::size_t made = 0;
    const bool isAtEnd = m_next == m_length;
    m_result = m_stream->inflater.Step(m_buffer.get() + m_next, m_length - m_next, buffer, room, m_limits, used, made);
    m_next += used;
    if (isAtEnd && made == 0 && !m_result) m_result = InflateResult::NotCompressed;
    if (made != 0 && m_result.value_or(InflateResult::Inflated) == InflateResult::Inflated) return made;
  }
  return 0;
}

std::uint64_t CInflatingSource::CountTrailingBytes() {
  std::uint64_t count = m_length - m_next;
  for (m_next = m_length = 0; Fill(); m_length = 0) count += m_length;
  return count;
}

}  // namespace RkXmlLib16

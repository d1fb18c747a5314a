#ifndef RKXMLLIB16_IO_ZIP_H
#define RKXMLLIB16_IO_ZIP_H

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

// What inflating may cost; 0 means no limit.
struct InflateLimits {
  unsigned long maxBytes = 0;  // bytes out
  unsigned long maxRatio = 0;  // bytes out for each byte read, looked at once more than `ratioFrom` bytes are out
  unsigned long ratioFrom = 0;
};

enum class InflateResult {
  Inflated,
  NotCompressed,  // no complete gzip or zlib stream: plain bytes, or a stream that is cut short or corrupt
  TooManyBytes,   // over InflateLimits::maxBytes
  RatioTooHigh    // over InflateLimits::maxRatio
};

// gzip (RFC 1952) and zlib (RFC 1950) wrappers around finished bytes. A buffer is an array from new[], owned by the
// caller; on success it is replaced by a new one with its length, and otherwise left as it was.
class RKXML_EXPORT CRkZip {
 public:
  // Compresses with level 1. Does nothing for CompressionType_None. Throws CRkException
  // "Failed to compress data. [Error Code: %d]" with zlib's code, always when the result would be longer than the
  // input, as it is for very short or already compressed data.
  static void Compress(unsigned char** data, unsigned long* length, CompressionType type);
  // As Compress, for the content of `data`; an empty buffer stays empty.
  static void CompressData(CBinaryData& data, CompressionType type);
  // Inflates a buffer that begins with a complete gzip or zlib stream, recognised by itself; what follows the stream is
  // dropped. Leaves any other buffer unchanged.
  static void Decompress(unsigned char** data, unsigned long* length);
  // Inflates the stream at the start of the `length` bytes at `data` into `out`, whose content it replaces only when
  // the result is Inflated, and tells in `used` (may be null) how many bytes the stream takes. Stops soon after a limit
  // is passed.
  static InflateResult Inflate(const unsigned char* data, unsigned long length, const InflateLimits& limits,
                               CBinaryData& out, unsigned long* used = nullptr);
};

}  // namespace RkXmlLib16

#endif

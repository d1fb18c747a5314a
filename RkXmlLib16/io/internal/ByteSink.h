#ifndef RKXMLLIB16_IO_INTERNAL_BYTESINK_H
#define RKXMLLIB16_IO_INTERNAL_BYTESINK_H

#include <cstddef>
#include <memory>

#include "RkXmlLib16/base/Enumerations.h"

namespace RkXmlLib16 {

// Takes the bytes of a document in the order in which they are made.
class ByteSink {
 public:
  virtual ~ByteSink() = default;
  virtual void Write(const unsigned char* bytes, std::size_t count) = 0;
  // All bytes have been written. A sink that goes without it leaves nothing behind, where it can help that.
  virtual void Finish() {}
};

// Compresses what goes to `sink` as CRkZip does; `sink` itself without compression.
std::unique_ptr<ByteSink> Compressing(std::unique_ptr<ByteSink> sink, CompressionType compression);

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_IO_INTERNAL_SINKSTREAMS_H
#define RKXMLLIB16_IO_INTERNAL_SINKSTREAMS_H

#include <cstddef>
#include <exception>
#include <memory>

#include "RkXmlLib16/io/BinaryStream.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/io/TextStream.h"
#include "RkXmlLib16/io/internal/ByteSink.h"

namespace RkXmlLib16 {

// Hands bytes to a sink in larger pieces, and remembers the failure of the sink, which objects that write themselves
// wrap in errors of their own.
class SinkEnd {
 public:
  explicit SinkEnd(std::unique_ptr<ByteSink> sink) : m_sink(std::move(sink)) {}

  // Hands over the bytes when they are many, and empties `bytes` then.
  void Offer(CBinaryData& bytes) {
    if (bytes.GetLength() >= kPiece) Write(bytes);
  }
  void Write(CBinaryData& bytes);
  void Finish();
  // Throws the failure of the sink, if there was one.
  void ThrowFailure() const {
    if (m_failure != nullptr) std::rethrow_exception(m_failure);
  }

 private:
  static constexpr unsigned long kPiece = 65536;

  std::unique_ptr<ByteSink> m_sink;
  std::exception_ptr m_failure;
};

// A text stream that sends its text to a sink, in UTF-8, whenever it is flushed.
class SinkTextStream : public CTextStream {
 public:
  explicit SinkTextStream(SinkEnd& end) : CTextStream(XmlEncoding_UTF8), m_end(end) {}  // kept

  void Flush() override;
  void Close() override;

 private:
  SinkEnd& m_end;
  CBinaryData m_encoded;
  CUtf8Appender m_utf8{m_encoded};
};

// A byte stream whose bytes go to a sink when they are asked to.
class SinkBinaryStream : public CBinaryStream {
 public:
  explicit SinkBinaryStream(SinkEnd& end) : m_end(end) {}  // kept

  void Offer() { m_end.Offer(m_data); }
  void Flush() { m_end.Write(m_data); }

 private:
  SinkEnd& m_end;
};

}  // namespace RkXmlLib16

#endif

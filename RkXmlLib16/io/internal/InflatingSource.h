#ifndef RKXMLLIB16_IO_INTERNAL_INFLATINGSOURCE_H
#define RKXMLLIB16_IO_INTERNAL_INFLATINGSOURCE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/io/ByteSource.h"
#include "RkXmlLib16/io/Zip.h"

namespace RkXmlLib16 {

// The bytes of another source without their gzip or zlib wrapper, if they have one. A wrapper that turns out to be none
// after all, or goes over a limit, ends the bytes: ask GetResult. Implemented in io/Zip.cpp.
class RKXML_EXPORT CInflatingSource : public CByteSource {
 public:
  CInflatingSource(CByteSource& source, const InflateLimits& limits);  // the source is kept
  ~CInflatingSource() override;

  std::size_t Read(unsigned char* buffer, std::size_t room) override;
  const std::wstring& GetName() const override { return m_source.GetName(); }

  // After the first Read.
  bool IsInflated() const noexcept { return m_stream != nullptr; }
  // Of inflating, at the end of the bytes; Inflated for those that were not wrapped.
  InflateResult GetResult() const noexcept { return m_result.value_or(InflateResult::Inflated); }
  // The first bytes of the source, as they are.
  const std::string& GetStart() const noexcept { return m_start; }
  // Bytes taken from the source.
  std::uint64_t GetBytesRead() const noexcept { return m_bytesRead; }
  // Of what follows the wrapped bytes, at their end. Reads the source to its end.
  std::uint64_t CountTrailingBytes();

 private:
  struct Stream;
  static constexpr std::size_t kStart = 256;

  void Begin();
  bool Fill();
  std::size_t ReadPlain(unsigned char* buffer, std::size_t room);
  std::size_t ReadInflated(unsigned char* buffer, std::size_t room);

  CByteSource& m_source;
  InflateLimits m_limits;
  std::unique_ptr<unsigned char[]> m_buffer;
  std::size_t m_next = 0;    // of the buffer
  std::size_t m_length = 0;  // of what is in the buffer
  bool m_isBegun = false;
  bool m_isAtEnd = false;  // of the source
  std::unique_ptr<Stream> m_stream;
  std::optional<InflateResult> m_result;
  std::string m_start;
  std::uint64_t m_bytesRead = 0;
};

}  // namespace RkXmlLib16

#endif

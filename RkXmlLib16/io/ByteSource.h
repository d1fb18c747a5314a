#ifndef RKXMLLIB16_IO_BYTESOURCE_H
#define RKXMLLIB16_IO_BYTESOURCE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>
#include <utility>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/io/File.h"
#include "RkXmlLib16/io/FileName.h"

namespace RkXmlLib16 {

class CBinaryData;

// Where the bytes of a document come from that is read in pieces: a file, memory, a std::istream or a function. It is
// read once, from its start to its end, by one thread. The bytes may be wrapped in gzip or zlib.
class RKXML_EXPORT CByteSource {
 public:
  CByteSource() = default;
  CByteSource(const CByteSource&) = delete;
  CByteSource& operator=(const CByteSource&) = delete;
  virtual ~CByteSource();

  // Puts at least 1 and at most `capacity` bytes to `buffer` and returns how many; 0 when there are no more. `capacity`
  // is never 0. Throws CRkException when the bytes cannot be read.
  virtual std::size_t Read(unsigned char* buffer, std::size_t capacity) = 0;
  // The file name that locations and messages show; empty where there is none.
  virtual const std::wstring& GetName() const;
  // How many bytes there are in all; kUnknownLength where only the end will tell.
  static constexpr std::uint64_t kUnknownLength = UINT64_MAX;
  virtual std::uint64_t GetLength() const;
};

// A file, which may be one without a size, such as a pipe. It is opened when it is read first. Reading throws
// CRkException "Failed to open the file [%ls]." and, also for an empty file or a directory, "Failed to read the
// contents of the file [%ls] Error [%d]".
class RKXML_EXPORT CFileSource : public CByteSource {
 public:
  explicit CFileSource(const CFileName& fileName) : m_fileName(fileName) {}
  explicit CFileSource(const wchar_t* fileName) : m_fileName(fileName) {}
  ~CFileSource() override;

  std::size_t Read(unsigned char* buffer, std::size_t capacity) override;
  const std::wstring& GetName() const override { return m_fileName.GetText(); }
  // Opens the file, and does not throw when that fails.
  std::uint64_t GetLength() const override;

 private:
  CFileName m_fileName;
  mutable CFile m_file;
  bool m_hasRead = false;
};

// Bytes in memory, which are kept, not copied.
class RKXML_EXPORT CMemorySource : public CByteSource {
 public:
  CMemorySource(const void* bytes, std::size_t length)
      : m_next(static_cast<const unsigned char*>(bytes)), m_left(length), m_length(length) {}
  explicit CMemorySource(const CBinaryData& data);
  ~CMemorySource() override;

  std::size_t Read(unsigned char* buffer, std::size_t capacity) override;
  std::uint64_t GetLength() const override { return m_length; }

 private:
  const unsigned char* m_next;
  std::size_t m_left;
  std::size_t m_length;
};

// A stream of the standard library, from where it stands; it is kept. Open files as std::ios::binary. Reading throws
// CRkException "Failed to read the stream." when the stream is bad.
class RKXML_EXPORT CStreamSource : public CByteSource {
 public:
  explicit CStreamSource(std::istream& stream) : m_stream(stream) {}
  ~CStreamSource() override;

  std::size_t Read(unsigned char* buffer, std::size_t capacity) override;

 private:
  std::istream& m_stream;
};

// A function that is called as Read is and may throw anything, which ends the reading call. Reading throws
// CRkInvalidParamException when it returns more than it was given space for.
class RKXML_EXPORT CCallbackSource : public CByteSource {
 public:
  using Function = std::function<std::size_t(unsigned char* buffer, std::size_t capacity)>;

  explicit CCallbackSource(Function function) : m_function(std::move(function)) {}
  ~CCallbackSource() override;

  std::size_t Read(unsigned char* buffer, std::size_t capacity) override;

 private:
  Function m_function;
};

}  // namespace RkXmlLib16

#endif

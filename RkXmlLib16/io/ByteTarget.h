#ifndef RKXMLLIB16_IO_BYTETARGET_H
#define RKXMLLIB16_IO_BYTETARGET_H

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <type_traits>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/io/FileName.h"

namespace RkXmlLib16 {

class ByteSink;

// Where the bytes of a document go while it is made: a file, a stream or a function.
//
// A file appears whole or not at all: the bytes go to a new file beside it, which takes its name, and the permissions
// of the file that was there, when the document ends, and which is removed otherwise. A link is followed. Devices and
// pipes are written directly; a pipe that nobody reads is an error, not a signal.
//
//   CXmlDocumentWriter writer("track.gpx");
//   CXmlDocumentWriter writer(std::cout);
//   CXmlDocumentWriter writer([&](const unsigned char* bytes, std::size_t count) { return Send(bytes, count); });
class RKXML_EXPORT CByteTarget {
 public:
  // Takes `count` bytes, borrowed; false when it cannot, which ends the document with an error. What it throws reaches
  // the caller of the writer.
  using Function = std::function<bool(const unsigned char* bytes, std::size_t count)>;

  // A file by any name that CFileName takes. Throws CRkException "Failed to write data to the file [%ls]." when it
  // cannot be created.
  template <class Name, std::enable_if_t<std::is_constructible_v<CFileName, const Name&>, int> = 0>
  CByteTarget(const Name& fileName) : CByteTarget(FileTag(), CFileName(fileName)) {}
  CByteTarget(std::ostream& stream);  // kept; it should be opened with std::ios::binary
  template <class Call,
            std::enable_if_t<std::is_invocable_r_v<bool, Call&, const unsigned char*, std::size_t>, int> = 0>
  CByteTarget(Call function) : CByteTarget(FunctionTag(), Function(std::move(function))) {}
  CByteTarget(CByteTarget&& other) noexcept;
  CByteTarget& operator=(CByteTarget&& other) noexcept;
  ~CByteTarget();

  bool IsFile() const noexcept { return m_isFile; }
  // For the writers: hands the place over.
  std::unique_ptr<ByteSink> TakeSink();

 private:
  struct FileTag {};
  struct FunctionTag {};
  CByteTarget(FileTag tag, const CFileName& fileName);
  CByteTarget(FunctionTag tag, Function function);

  std::unique_ptr<ByteSink> m_sink;
  bool m_isFile = false;
};

}  // namespace RkXmlLib16

#endif

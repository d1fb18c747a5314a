#ifndef RKXMLLIB16_IO_FILE_H
#define RKXMLLIB16_IO_FILE_H

#include <cstdio>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/io/FileName.h"

namespace RkXmlLib16 {

// The size of an open file in bytes, found by seeking to its end and back; -1 when any of that fails.
RKXML_EXPORT long _filelength(FILE* file);

// An open file, closed by the destructor. Failures are told by the results; errno says why.
class CFile {
 public:
  CFile() = default;
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;
  ~CFile();

  // Opens the file with a mode of fopen; closes an earlier one.
  bool Open(const CFileName& fileName, const char* mode);
  bool IsOpen() const noexcept { return m_file != nullptr; }
  FILE* Get() const noexcept { return m_file; }
  bool Write(const void* bytes, unsigned long length);
  // The number of bytes read, which is below `length` at the end of the file or after a failure.
  unsigned long Read(void* bytes, unsigned long length);
  // False when bytes written before do not reach the file. Closing a closed file succeeds.
  bool Close();

 private:
  FILE* m_file = nullptr;
};

// Throws CRkException "Failed to write data to the file [%ls].".
[[noreturn]] void ThrowWriteFailed(const CFileName& fileName);

// Creates the file and writes the byte order mark FF FE when the encoding is UTF16 or Wide. On a failure it closes the
// file and throws as ThrowWriteFailed does.
void OpenForWriting(CFile& file, const CFileName& fileName, XmlEncoding encoding);

}  // namespace RkXmlLib16

#endif

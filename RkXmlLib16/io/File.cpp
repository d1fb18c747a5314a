#include "RkXmlLib16/io/File.h"

#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"

namespace RkXmlLib16 {

long _filelength(FILE* file) {
  if (file == nullptr) return -1;
  const long position = std::ftell(file);
  if (position < 0 || std::fseek(file, 0, SEEK_END) != 0) return -1;
  const long length = std::ftell(file);
  if (std::fseek(file, position, SEEK_SET) != 0) return -1;
  return length;
}

CFile::~CFile() { Close(); }

bool CFile::Open(const CFileName& fileName, const char* mode) {
  Close();
  m_file = std::fopen(fileName.GetBytes().c_str(), mode);
  return IsOpen();
}

bool CFile::Write(const void* bytes, unsigned long length) {
  return length == 0 || std::fwrite(bytes, 1, length, m_file) == length;
}

unsigned long CFile::Read(void* bytes, unsigned long length) {
  return length == 0 ? 0 : std::fread(bytes, 1, length, m_file);
}

bool CFile::Close() {
  FILE* const file = std::exchange(m_file, nullptr);
  return file == nullptr || std::fclose(file) == 0;
}

void ThrowWriteFailed(const CFileName& fileName) {
  throw CRkException(FormatString(L"Failed to write data to the file [%ls].", fileName.GetText().c_str()));
}

void OpenForWriting(CFile& file, const CFileName& fileName, XmlEncoding encoding) {
  static constexpr unsigned char kMark[] = {0xFF, 0xFE};
  const bool marked = encoding == XmlEncoding_UTF16 || encoding == XmlEncoding_Wide;
  if (file.Open(fileName, "w") && (!marked || file.Write(kMark, sizeof kMark))) return;
  file.Close();
  ThrowWriteFailed(fileName);
}

}  // namespace RkXmlLib16

#include "RkXmlLib16/support/File.h"

#include <utility>

#include "RkXmlLib16/support/Encoder.h"

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

bool CFile::Open(const wchar_t* fileName, const char* mode) {
  Close();
  m_file = std::fopen(UnicodeToMultiByte(fileName).c_str(), mode);
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

}  // namespace RkXmlLib16

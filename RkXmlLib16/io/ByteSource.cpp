#include "RkXmlLib16/io/ByteSource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <istream>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/NeverDestroyed.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

CByteSource::~CByteSource() = default;

namespace {

const CNeverDestroyed<std::wstring> kNoName;

}  // namespace

const std::wstring& CByteSource::GetName() const { return kNoName.Get(); }

std::uint64_t CByteSource::GetLength() const { return kUnknownLength; }

CFileSource::~CFileSource() = default;

std::size_t CFileSource::Read(unsigned char* buffer, std::size_t capacity) {
  const wchar_t* const name = m_fileName.GetText().c_str();
  if (!m_file.IsOpen() && !m_file.Open(m_fileName, "r"))
    throw CRkException(FormatString(L"Failed to open the file [%ls].", name));
  errno = 0;
  const std::size_t length = m_file.Read(buffer, capacity);
  const int error = errno;
  if (length == 0 && (!m_hasRead || std::ferror(m_file.Get()) != 0))
    throw CRkException(FormatString(L"Failed to read the contents of the file [%ls] Error [%d]", name, error));
  m_hasRead = true;
  return length;
}

std::uint64_t CFileSource::GetLength() const {
  if (!m_file.IsOpen() && !m_file.Open(m_fileName, "r")) return kUnknownLength;
  const long length = _filelength(m_file.Get());
  return length > 0 ? static_cast<std::uint64_t>(length) : kUnknownLength;
}

CMemorySource::CMemorySource(const CBinaryData& data) : CMemorySource(data.GetData(), data.GetLength()) {}

CMemorySource::~CMemorySource() = default;

std::size_t CMemorySource::Read(unsigned char* buffer, std::size_t capacity) {
  const std::size_t length = std::min(capacity, m_left);
  if (length != 0) std::memcpy(buffer, m_next, length);
  m_next += length;
  m_left -= length;
  return length;
}

CStreamSource::~CStreamSource() = default;

std::size_t CStreamSource::Read(unsigned char* buffer, std::size_t capacity) {
  try {
    m_stream.read(reinterpret_cast<char*>(buffer), static_cast<std::streamsize>(capacity));
  } catch (const std::ios_base::failure&) {  // at its end, too, if the stream was told so
  }
  if (m_stream.bad()) throw CRkException(L"Failed to read the stream.");
  return static_cast<std::size_t>(m_stream.gcount());
}

CCallbackSource::~CCallbackSource() = default;

std::size_t CCallbackSource::Read(unsigned char* buffer, std::size_t capacity) {
  const std::size_t length = m_function(buffer, capacity);
  if (length > capacity) {
    throw CRkInvalidParamException(
        FormatString(L"The source returned %lu bytes, more than the %lu that it was asked for.",
                     static_cast<unsigned long>(length), static_cast<unsigned long>(capacity)));
  }
  return length;
}

}  // namespace RkXmlLib16

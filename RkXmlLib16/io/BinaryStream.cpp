#include "RkXmlLib16/io/BinaryStream.h"

#include "RkXmlLib16/io/File.h"

namespace RkXmlLib16 {

CBinaryStream::CBinaryStream() = default;
CBinaryStream::CBinaryStream(CBinaryData& data) : m_data(data) {}
CBinaryStream::CBinaryStream(const wchar_t*) {}
CBinaryStream::CBinaryStream(const wchar_t*, CBinaryData& data) : m_data(data) {}
CBinaryStream::~CBinaryStream() = default;

CFileBinaryStream::CFileBinaryStream(const wchar_t* fileName, XmlEncoding encoding)
    : CFileBinaryStream(CFileName(fileName), encoding) {}

CFileBinaryStream::CFileBinaryStream(const wchar_t* fileName, XmlEncoding encoding, CBinaryData& data)
    : CFileBinaryStream(CFileName(fileName), encoding, data) {}

CFileBinaryStream::CFileBinaryStream(const CFileName& fileName, XmlEncoding encoding)
    : CBinaryStream(L"CFileBinaryStream"), m_fileName(fileName), m_encoding(encoding) {}

CFileBinaryStream::CFileBinaryStream(const CFileName& fileName, XmlEncoding encoding, CBinaryData& data)
    : CFileBinaryStream(fileName, encoding) {
  m_data = data;
}

CFileBinaryStream::~CFileBinaryStream() = default;

void CFileBinaryStream::ToFile() {
  CFile file;
  OpenForWriting(file, m_fileName, m_encoding);
  const bool written = file.Write(m_data.GetData(), m_data.GetLength());
  if (!file.Close() || !written) ThrowWriteFailed(m_fileName);
}

}  // namespace RkXmlLib16

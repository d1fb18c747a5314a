#ifndef RKXMLLIB16_IO_BINARYSTREAM_H
#define RKXMLLIB16_IO_BINARYSTREAM_H

#include <string>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/io/FileName.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

// The sink of the binary writer: collects bytes.
class RKXML_EXPORT CBinaryStream {
 public:
  CBinaryStream();
  // Starts with the content of `data` (shared).
  explicit CBinaryStream(CBinaryData& data);
  // For subclasses; `trackingName` names the kind of stream while debugging and is not kept.
  explicit CBinaryStream(const wchar_t* trackingName);
  CBinaryStream(const wchar_t* trackingName, CBinaryData& data);
  virtual ~CBinaryStream();

  void Append(unsigned char byte) { m_data.Append(byte); }
  void Append(const CBinaryData& data) { m_data.Append(data); }
  void Append(const unsigned char* data, unsigned long length) { m_data.Append(data, length); }
  // A copy (shared) of what was collected.
  CBinaryData GetBinaryStream() const { return m_data; }
  unsigned long GetLength() const noexcept { return m_data.GetLength(); }

 protected:
  CBinaryData m_data;
};

// A finished byte form on its way to a file.
class RKXML_EXPORT CFileBinaryStream : public CBinaryStream {
 public:
  CFileBinaryStream(const wchar_t* fileName, XmlEncoding encoding);
  CFileBinaryStream(const wchar_t* fileName, XmlEncoding encoding, CBinaryData& data);
  CFileBinaryStream(const CFileName& fileName, XmlEncoding encoding);
  CFileBinaryStream(const CFileName& fileName, XmlEncoding encoding, CBinaryData& data);
  ~CFileBinaryStream() override;

  // Creates the file and writes the bytes, after the byte order mark FF FE for the encodings UTF16 and Wide. Throws
  // CRkException "Failed to write data to the file [%ls].".
  void ToFile();

 private:
  CFileName m_fileName;
  XmlEncoding m_encoding;
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_IO_TEXTSTREAM_H
#define RKXMLLIB16_IO_TEXTSTREAM_H

#include <string>
#include <string_view>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/io/File.h"
#include "RkXmlLib16/io/StringBuffer.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

// The sink of the text writers: collects wide text and turns it into the bytes of an encoding when asked.
class RKXML_EXPORT CTextStream {
 public:
  // Without an encoding, for text only.
  CTextStream();
  explicit CTextStream(XmlEncoding encoding);
  // For subclasses; `trackingName` names the kind of stream while debugging and is not kept.
  CTextStream(const wchar_t* trackingName, XmlEncoding encoding);
  CTextStream(const CTextStream&) = delete;
  CTextStream& operator=(const CTextStream&) = delete;
  virtual ~CTextStream();

  // As in CStringBuffer.
  void Append(wchar_t character) { m_text.Append(character); }
  void Append(const wchar_t* text) { m_text.Append(text); }
  void Append(const std::wstring& text) { m_text.Append(text); }
  // Where the text is collected.
  CStringBuffer& GetBuffer() noexcept { return m_text; }
  unsigned long GetLength() const noexcept { return m_text.GetLength(); }
  const wchar_t* GetText() { return m_text.GetText(); }
  std::wstring ToString() const { return m_text.ToString(); }

  XmlEncoding GetEncoding() const noexcept { return m_encoding; }
  // The text in the stream's encoding, without byte order mark:
  //   XmlEncoding_UTF8   its UTF-8.
  //   XmlEncoding_UTF16  as many 16-bit units as the text has characters, unit i being byte i of the text's bytes in
  //                      memory. Prefer UTF-8: this is the text in UTF-16 only where the bytes happen to be so.
  //   XmlEncoding_Wide   the raw wide characters.
  // Throws CRkException "Unknown Encoding, select UTF-8 (contact our support team)" without one of these.
  CBinaryData GetEncodedStream() const;

  virtual void Open();  // empties the text
  virtual void Close();
  virtual void Flush();

 protected:
  // Appends the encoded text to `out`. When more text may follow (`last` is false), a high surrogate that ends the text
  // is not encoded but returned, so that it can be joined with the other half; 0 otherwise.
  wchar_t EncodeTo(CBinaryData& out, bool last) const;

  CStringBuffer m_text{kBlockSize};

 private:
  static constexpr unsigned long kBlockSize = 8192;

  XmlEncoding m_encoding;
};

// A text stream that encodes its text in UTF-8 whenever it is flushed, so that the wide text never grows long.
class RKXML_EXPORT CUtf8TextStream : public CTextStream {
 public:
  CUtf8TextStream();
  ~CUtf8TextStream() override;

  void Open() override;
  void Flush() override;
  // Flushes and hands the bytes over; the stream is empty then.
  CBinaryData TakeBytes();

 private:
  CBinaryData m_encoded;
  CUtf8Appender m_utf8{m_encoded};
};

// A text stream that writes its encoded text to a file whenever it is flushed. A file left open is closed by the
// destructor, which never throws; call Close to learn of a failure.
class RKXML_EXPORT CFileTextStream : public CTextStream {
 public:
  CFileTextStream(const wchar_t* fileName, XmlEncoding encoding);
  CFileTextStream(const CFileName& fileName, XmlEncoding encoding);
  ~CFileTextStream() override;

  // Creates the file, with the byte order mark FF FE for the encodings UTF16 and Wide. Throws CRkException
  // "Failed to write data to the file [%ls].".
  void Open() override;
  // Writes the text and empties it. Does nothing while no file is open. Throws CRkException
  // "Failed to write data to the file" and closes the file, so that a further flush does nothing.
  void Flush() override;
  // Flushes and closes. Throws as Flush does, and the message of Open when the last bytes do not reach the file.
  void Close() override;

 private:
  void WriteText(bool last);

  CFileName m_fileName;
  CBinaryData m_encoded;
  CFile m_file;
};

}  // namespace RkXmlLib16

#endif

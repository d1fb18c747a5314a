#include "RkXmlLib16/io/TextStream.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/io/Encoder.h"

namespace RkXmlLib16 {

namespace {

wchar_t EncodeUtf8(const CStringBuffer& text, CBinaryData& out, bool last) {
  unsigned long length = out.GetLength();
  text.ForEachBlock([&length](std::wstring_view block) { length += CEncoder::Utf8Length(block); });
  out.Reserve(length);
  CUtf8Appender utf8(out);
  text.ForEachBlock([&utf8](std::wstring_view block) { utf8.Append(block); });
  if (last) utf8.Finish();
  return utf8.TakePending();
}

void EncodeBytesAsUnits(const CStringBuffer& text, CBinaryData& out) {
  unsigned long left = text.GetLength();
  out.Reserve(out.GetLength() + left * 2);
  unsigned char* unit = out.Extend(left * 2);
  text.ForEachBlock([&](std::wstring_view block) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(block.data());
    for (unsigned long i = 0; i < block.size() * sizeof(wchar_t) && left > 0; ++i, --left) {
      *unit++ = bytes[i];
      *unit++ = 0;
    }
  });
}

void EncodeRaw(const CStringBuffer& text, CBinaryData& out) {
  out.Reserve(out.GetLength() + text.GetLength() * sizeof(wchar_t));
  text.ForEachBlock([&out](std::wstring_view block) {
    out.Append(reinterpret_cast<const unsigned char*>(block.data()), block.size() * sizeof(wchar_t));
  });
}

}  // namespace

CTextStream::CTextStream() : CTextStream(XmlEncoding_None) {}
CTextStream::CTextStream(XmlEncoding encoding) : m_encoding(encoding) {}
CTextStream::CTextStream(const wchar_t*, XmlEncoding encoding) : CTextStream(encoding) {}
CTextStream::~CTextStream() = default;

CBinaryData CTextStream::GetEncodedStream() const {
  CBinaryData encoded;
  EncodeTo(encoded, /*last=*/true);
  return encoded;
}

wchar_t CTextStream::EncodeTo(CBinaryData& out, bool last) const {
  switch (m_encoding) {
    case XmlEncoding_UTF8:
      return EncodeUtf8(m_text, out, last);
    case XmlEncoding_UTF16:
      EncodeBytesAsUnits(m_text, out);
      return 0;
    case XmlEncoding_Wide:
      EncodeRaw(m_text, out);
      return 0;
    case XmlEncoding_None:
      break;
  }
  throw CRkException(L"Unknown Encoding, select UTF-8 (contact our support team)");
}

void CTextStream::Open() { m_text.Empty(); }
void CTextStream::Close() {}
void CTextStream::Flush() {}

CUtf8TextStream::CUtf8TextStream() : CTextStream(XmlEncoding_UTF8) {}
CUtf8TextStream::~CUtf8TextStream() = default;

void CUtf8TextStream::Open() {
  CTextStream::Open();
  m_encoded.Clear();
  m_utf8.TakePending();
}

void CUtf8TextStream::Flush() {
  m_text.ForEachBlock([this](std::wstring_view block) { m_utf8.Append(block); });
  m_text.Empty();
}

CBinaryData CUtf8TextStream::TakeBytes() {
  Flush();
  m_utf8.Finish();
  CBinaryData bytes;
  bytes.Swap(m_encoded);
  return bytes;
}

CFileTextStream::CFileTextStream(const wchar_t* fileName, XmlEncoding encoding)
    : CFileTextStream(CFileName(fileName), encoding) {}
CFileTextStream::CFileTextStream(const CFileName& fileName, XmlEncoding encoding)
    : CTextStream(L"CFileTextStream", encoding), m_fileName(fileName) {}

CFileTextStream::~CFileTextStream() {
  try {
    CFileTextStream::Close();
  } catch (...) {  // a destructor has nobody to tell
  }
}

void CFileTextStream::Open() {
  CTextStream::Open();
  OpenForWriting(m_file, m_fileName, GetEncoding());
}

void CFileTextStream::Flush() { WriteText(/*last=*/false); }

void CFileTextStream::Close() {
  WriteText(/*last=*/true);
  if (!m_file.Close()) ThrowWriteFailed(m_fileName);
  CTextStream::Close();
}

void CFileTextStream::WriteText(bool last) {
  if (!m_file.IsOpen() || GetLength() == 0) return;
  m_encoded.Clear();
  const wchar_t pending = EncodeTo(m_encoded, last);
  if (!m_file.Write(m_encoded.GetData(), m_encoded.GetLength())) {
    m_file.Close();
    throw CRkException(L"Failed to write data to the file");
  }
  m_text.Empty();
  if (pending != 0) m_text.Append(pending);
}

}  // namespace RkXmlLib16

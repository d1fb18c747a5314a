// The load operations of CXmlDocument: which reader takes which input.
#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "RkXmlLib16/core/Exception.h"
#include "RkXmlLib16/core/SerializationContext.h"
#include "RkXmlLib16/fastinfoset/Reader.h"
#include "RkXmlLib16/json/JsonTextReader.h"
#include "RkXmlLib16/support/Encoder.h"
#include "RkXmlLib16/support/File.h"
#include "RkXmlLib16/support/Format.h"
#include "RkXmlLib16/support/Zip.h"
#include "RkXmlLib16/xml/ElementTree.h"
#include "RkXmlLib16/xml/ExpatReader.h"

namespace RkXmlLib16 {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

struct Bytes {
  std::unique_ptr<unsigned char[]> data;
  std::size_t length = 0;
};

Bytes Allocate(std::size_t length) { return {std::unique_ptr<unsigned char[]>(new unsigned char[length]), length}; }

Bytes ReadFile(const wchar_t* fileName) {
  const wchar_t* const name = fileName != nullptr ? fileName : L"";
  CFile file;
  if (!file.Open(name, "r")) throw CRkException(FormatString(L"Failed to open the file [%ls].", name));
  const auto throwUnread = [&] {
    const int error = errno;
    throw CRkException(FormatString(L"Failed to read the contents of the file [%ls] Error [%d]", name, error));
  };
  errno = 0;
  const long length = _filelength(file.Get());
  if (length < 0) {
    const int error = errno;
    throw CRkException(FormatString(L"Failed to get the size of the file [%ls] Error [%d]", name, error));
  }
  // A first byte shows that there is something to read before room is made for all of it: a directory has a length too.
  errno = 0;
  unsigned char first = 0;
  if (length == 0 || file.Read(&first, 1) != 1) throwUnread();
  Bytes bytes = Allocate(static_cast<std::size_t>(length));
  bytes.data[0] = first;
  errno = 0;
  if (file.Read(bytes.data.get() + 1, bytes.length - 1) != bytes.length - 1) throwUnread();
  return bytes;
}

// The bytes without their gzip or zlib wrapper: in `inflated`, or as they are when they have none.
std::string_view Unwrap(const unsigned char* bytes, std::size_t length, const CReadLimits& limits,
                        CBinaryData& inflated) {
  switch (CRkZip::Inflate(bytes, length,
                          {limits.GetMaxInflatedBytes(), limits.GetMaxInflationRatio(), limits.GetInflationRatioFrom()},
                          inflated)) {
    case InflateResult::Inflated:
      return {reinterpret_cast<const char*>(inflated.GetData()), inflated.GetLength()};
    case InflateResult::TooManyBytes:
      CReadLimits::ThrowExceeded(L"inflated bytes", limits.GetMaxInflatedBytes());
    case InflateResult::RatioTooHigh:
      CReadLimits::ThrowExceeded(L"inflation ratio", limits.GetMaxInflationRatio());
    case InflateResult::NotCompressed:
      break;
  }
  return {reinterpret_cast<const char*>(bytes), length};
}

// UTF-16LE with its byte order mark. Characters above U+FFFF become surrogate pairs, or lose their high bits.
Bytes ToUtf16(std::wstring_view text, bool pairs) {
  constexpr std::uint32_t kLastInPlane = 0xFFFF;
  constexpr std::uint32_t kLastCharacter = 0x10FFFF;
  const auto isAbove = [](wchar_t c) { return static_cast<std::uint32_t>(c) > kLastInPlane; };
  const auto above = pairs ? static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isAbove)) : 0;
  Bytes bytes = Allocate(2 * (1 + text.size() + above));
  unsigned char* out = bytes.data.get();
  const auto put = [&out](std::uint32_t unit) {
    *out++ = static_cast<unsigned char>(unit);
    *out++ = static_cast<unsigned char>(unit >> 8);
  };
  put(0xFEFF);
  for (const wchar_t character : text) {
    auto c = static_cast<std::uint32_t>(character);
    if (pairs && c > kLastInPlane) {
      if (c > kLastCharacter) c = 0xFFFD;
      if (c > kLastInPlane) put(0xD7C0 + (c >> 10));
      c = c > kLastInPlane ? 0xDC00 + (c & 0x3FF) : c;
    }
    put(c);
  }
  bytes.length = static_cast<std::size_t>(out - bytes.data.get());
  return bytes;
}

CBinaryData ConvertJsonBytes(const unsigned char* bytes, std::size_t length, const CSerializationContext& context) {
  CBinaryData inflated;
  std::string_view json = Unwrap(bytes, length, context.GetLimits(), inflated);
  if (json.substr(0, kUtf8Mark.size()) == kUtf8Mark) json.remove_prefix(kUtf8Mark.size());
  return CJsonTextReader::ConvertJsonToXml(CEncoder::Utf8ToUnicode(json), context);
}

}  // namespace

// The bytes that the readers see during a load.
struct CXmlDocument::Input {
  Input(CXmlDocument& owner, const unsigned char* bytes, std::size_t length) : document(owner) {
    document.m_input = bytes;
    document.m_inputLength = length;
  }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;
  ~Input() {
    document.m_input = nullptr;
    document.m_inputLength = 0;
  }

  CXmlDocument& document;
};

void CXmlDocument::Load(const wchar_t* fileName) {
  Cleanup();
  const Bytes bytes = ReadFile(fileName);
  ParseBytes(bytes.data.get(), bytes.length);
}

void CXmlDocument::LoadXmlStream(unsigned char* bytes, unsigned long length) {
  Cleanup();
  if (bytes == nullptr || length == 0) throw CRkException(L"XML Stream is empty!");
  ParseBytes(bytes, length);
}

void CXmlDocument::LoadXml(const char* text) {
  Cleanup();
  if (text == nullptr || *text == '\0') throw CRkException(L"XML String is empty!");
  const Input input(*this, reinterpret_cast<const unsigned char*>(text), std::strlen(text));
  ParseXmlText();
}

void CXmlDocument::LoadXml(const wchar_t* text) {
  Cleanup();
  if (text == nullptr || *text == L'\0') throw CRkException(L"XML String is empty!");
  const Bytes bytes = ToUtf16(text, /*pairs=*/false);
  const Input input(*this, bytes.data.get(), bytes.length);
  ParseXmlText();
}

void CXmlDocument::LoadXmlWide(std::wstring_view text) {
  Cleanup();
  if (text.empty()) throw CRkException(L"XML String is empty!");
  const Bytes bytes = ToUtf16(text, /*pairs=*/true);
  const Input input(*this, bytes.data.get(), bytes.length);
  ParseXmlText();
}

CBinaryData CXmlDocument::LoadJsonFile(const wchar_t* fileName) {
  Cleanup();
  const Bytes bytes = ReadFile(fileName);
  return ConvertJsonBytes(bytes.data.get(), bytes.length, *m_context);
}

CBinaryData CXmlDocument::LoadJsonStream(unsigned char* bytes, unsigned long length) {
  Cleanup();
  if (bytes == nullptr || length == 0) throw CRkException(L"JSON Stream is empty!");
  return ConvertJsonBytes(bytes, length, *m_context);
}

CBinaryData CXmlDocument::LoadJson(const char* text) {
  Cleanup();
  if (text == nullptr || *text == '\0') throw CRkException(L"JSON String is empty!");
  return CJsonTextReader::ConvertJsonToXml(CEncoder::Utf8ToUnicode(std::string_view(text)), *m_context);
}

CBinaryData CXmlDocument::LoadJson(const wchar_t* text) {
  Cleanup();
  if (text == nullptr || *text == L'\0') throw CRkException(L"JSON String is empty!");
  return CJsonTextReader::ConvertJsonToXml(text, *m_context);
}

void CXmlDocument::ParseBytes(const unsigned char* bytes, std::size_t length) {
  CBinaryData inflated;
  const std::string_view document = Unwrap(bytes, length, m_context->GetLimits(), inflated);
  const Input input(*this, reinterpret_cast<const unsigned char*>(document.data()), document.size());
  if (CFastInfosetReader(*m_context->GetFIContext(), *this).Parse()) return;
  ParseXmlText();
}

void CXmlDocument::ParseXmlText() {
  CExpatReader reader(*this);
  reader.CreateParser();
  reader.Parse(/*isFinal=*/true);
}

}  // namespace RkXmlLib16

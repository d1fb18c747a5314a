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

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/internal/Source.h"
#include "RkXmlLib16/fastinfoset/Reader.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/io/File.h"
#include "RkXmlLib16/io/Zip.h"
#include "RkXmlLib16/json/JsonTextReader.h"
#include "RkXmlLib16/json/internal/PlainJson.h"
#include "RkXmlLib16/types/Whitespace.h"
#include "RkXmlLib16/xml/ExpatReader.h"
#include "RkXmlLib16/xml/internal/PlainScanner.h"

namespace RkXmlLib16 {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

struct Bytes {
  std::unique_ptr<unsigned char[]> data;
  std::size_t length = 0;

  std::string_view View() const { return {reinterpret_cast<const char*>(data.get()), length}; }
};

Bytes Allocate(std::size_t length) { return {std::unique_ptr<unsigned char[]>(new unsigned char[length]), length}; }

Bytes ReadFile(const CFileName& fileName) {
  const wchar_t* const name = fileName.GetText().c_str();
  CFile file;
  if (!file.Open(fileName, "r")) throw CRkException(FormatString(L"Failed to open the file [%ls].", name));
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
  // A first byte shows that there is something to read before space is made for all of it: a directory has a length
  // too.
  errno = 0;
  unsigned char first = 0;
  if (length == 0 || file.Read(&first, 1) != 1) throwUnread();
  Bytes bytes = Allocate(static_cast<std::size_t>(length));
  bytes.data[0] = first;
  errno = 0;
  if (file.Read(bytes.data.get() + 1, bytes.length - 1) != bytes.length - 1) throwUnread();
  return bytes;
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

}  // namespace

// The bytes that the readers see during a load, and afterwards the places in them.
struct CXmlDocument::Input {
  // `stay` tells whether the bytes stay as the source does.
  Input(CXmlDocument& owner, std::string_view bytes, bool stay) : document(owner) {
    document.m_input = reinterpret_cast<const unsigned char*>(bytes.data());
    document.m_inputLength = bytes.size();
    if (stay && document.m_inputStays && bytes.size() < CXmlHeldText::kLongestInput)
      document.m_textInput = document.m_input;
  }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;
  ~Input() {
    document.m_input = nullptr;
    document.m_inputLength = 0;
    CSource* const source = document.m_source.get();
    if (source == nullptr || source->HasOwner() || document.m_inputStays) return;
    try {
      document.m_filter == nullptr ? source->KeepCopy() : source->Forget();
    } catch (const std::bad_alloc&) {
      source->Forget();  // then without lines
    }
  }

  CXmlDocument& document;
};

CSource& CXmlDocument::SetSource(std::string_view input) {
  m_source = std::make_unique<CSource>(input, CSource::EncodingOf(input));
  m_source->SetFirstOffset(m_firstOffset);
  return *m_source;
}

void CXmlDocument::Load(const wchar_t* fileName) { Load(CFileName(fileName)); }

void CXmlDocument::Load(const CFileName& fileName) {
  Cleanup();
  const std::shared_ptr<const Bytes> bytes = std::make_shared<const Bytes>(ReadFile(fileName));
  ParseBytes(bytes->View(), bytes, fileName.GetText());
}

void CXmlDocument::LoadXmlStream(unsigned char* bytes, unsigned long length) {
  Cleanup();
  if (bytes == nullptr || length == 0) throw CRkException(L"XML Stream is empty!");
  ParseBytes({reinterpret_cast<const char*>(bytes), length}, nullptr, L"");
}

void CXmlDocument::LoadXml(const char* text) {
  Cleanup();
  if (text == nullptr || *text == '\0') throw CRkException(L"XML String is empty!");
  SetSource({text, std::strlen(text)});
  const Input input(*this, text, /*stay=*/true);
  ParseXmlText();
}

void CXmlDocument::LoadXml(const wchar_t* text) {
  Cleanup();
  if (text == nullptr || *text == L'\0') throw CRkException(L"XML String is empty!");
  const std::shared_ptr<const Bytes> bytes =
      std::make_shared<const Bytes>(ToUtf16(text, /*pairs=*/m_context->GetJoinSurrogatePairs()));
  SetSource(bytes->View()).SetWide(true);
  m_source->SetOwner(bytes);
  if (ScanWideText(text)) return TellNoted();
  const Input input(*this, bytes->View(), /*stay=*/true);
  ParseXmlText();
}

bool CXmlDocument::ScanWideText(std::wstring_view text) {
  if (!m_context->GetScanPlainXml()) return false;
  const Bytes narrow = Allocate(text.size());
  if (Ascii::NarrowRun(text.data(), text.size(), narrow.data.get()) != text.size()) return false;
  const Input input(*this, narrow.View(), /*stay=*/false);
  m_wasScanned = ScanPlainXml(*this, ScannedAs::Utf16);
  return m_wasScanned;
}

void CXmlDocument::LoadXmlWide(std::wstring_view text) {
  Cleanup();
  if (text.empty()) throw CRkException(L"XML String is empty!");
  const Bytes bytes = ToUtf16(text, /*pairs=*/true);
  const Input input(*this, bytes.View(), /*stay=*/false);
  ParseXmlText();
}

void CXmlDocument::LoadConverted(const CBinaryData& xml, CXmlDocument& json) {
  Cleanup();
  if (xml.GetLength() == 0) throw CRkException(L"XML String is empty!");
  m_convertedXml = xml;
  {
    const Input input(*this, {reinterpret_cast<const char*>(xml.GetData()), xml.GetLength()}, /*stay=*/true);
    ParseXmlText();
  }
  m_source = std::move(json.m_source);
  SetPlaces(json.m_places);
}

CBinaryData CXmlDocument::LoadJsonFile(const wchar_t* fileName) { return LoadJsonFile(CFileName(fileName)); }

CBinaryData CXmlDocument::LoadJsonFile(const CFileName& fileName) {
  Cleanup();
  const std::shared_ptr<const Bytes> bytes = std::make_shared<const Bytes>(ReadFile(fileName));
  return ConvertJsonBytes(bytes->View(), bytes, fileName.GetText());
}

CBinaryData CXmlDocument::LoadJsonStream(unsigned char* bytes, unsigned long length) {
  Cleanup();
  if (bytes == nullptr || length == 0) throw CRkException(L"JSON Stream is empty!");
  return ConvertJsonBytes({reinterpret_cast<const char*>(bytes), length}, nullptr, L"");
}

CBinaryData CXmlDocument::LoadJson(const char* text) {
  Cleanup();
  if (text == nullptr || *text == '\0') throw CRkException(L"JSON String is empty!");
  m_source = std::make_unique<CSource>(text, CSource::Encoding::Utf8, CSource::Count::Characters);
  return ConvertJson(std::string_view(text));
}

CBinaryData CXmlDocument::LoadJson(const wchar_t* text) {
  Cleanup();
  if (text == nullptr || *text == L'\0') throw CRkException(L"JSON String is empty!");
  const std::wstring_view view = text;
  m_source = std::make_unique<CSource>(
      std::string_view(reinterpret_cast<const char*>(text), view.size() * sizeof(wchar_t)), CSource::Encoding::Wide);
  return ConvertJson(text);
}

CBinaryData CXmlDocument::ConvertJsonBytes(std::string_view bytes, std::shared_ptr<const void> owner,
                                           const std::wstring& fileName) {
  auto inflated = std::make_shared<CBinaryData>();
  std::string_view json = Unwrap(bytes, *inflated);
  const bool isInflated = json.data() != bytes.data();
  m_source = std::make_unique<CSource>(json, CSource::Encoding::Utf8, CSource::Count::Characters);
  m_source->SetOwner(isInflated ? std::move(inflated) : std::move(owner));
  m_source->SetInflated(isInflated);
  m_source->SetFileName(fileName);
  if (json.substr(0, kUtf8Mark.size()) == kUtf8Mark) json.remove_prefix(kUtf8Mark.size());
  return ConvertJson(json);
}

CBinaryData CXmlDocument::ConvertJson(std::string_view json) {
  CBinaryData xml;
  CJsonPlaces places;
  const bool isPlain =
      !m_indentsJson && m_context->GetScanPlainXml() && ConvertPlainJson(json, *m_context, xml, places);
  if (!isPlain) return ConvertJson(CEncoder::Utf8ToUnicode(json));
  m_source->SetFirstOffset(m_firstOffset);
  TellNoted();
  m_places = std::move(places.nodes);
  if (!m_source->HasOwner() && !m_inputStays) m_source->KeepCopy();
  return xml;
}

CBinaryData CXmlDocument::ConvertJson(const std::wstring& json) {
  m_source->SetFirstOffset(m_firstOffset);
  CJsonPlaces places;
  try {
    CBinaryData xml = CJsonTextReader::ConvertJsonToXml(json, *m_context, m_indentsJson, places);
    if (m_context->GetErrorHandler() != nullptr) {
      const std::wstring_view rest = std::wstring_view(json).substr(places.at);
      const auto text = std::find_if_not(rest.begin(), rest.end(), CWhitespaceUtils::IsWhiteSpace);
      if (text != rest.end())
        NoteDropped(RkDropped_TrailingText, places.at + static_cast<std::size_t>(text - rest.begin()),
                    static_cast<std::size_t>(rest.end() - text));
      TellNoted();
    }
    m_places = std::move(places.nodes);
    if (!m_source->HasOwner() && !m_inputStays) m_source->KeepCopy();
    return xml;
  } catch (CRkException& e) {
    e.SetLocation(m_source->Locate(places.at, e.GetPath()));
    e.SetEndsReading();
    throw;
  }
}

// The bytes without their gzip or zlib wrapper: in `inflated`, or as they are when they have none.
std::string_view CXmlDocument::Unwrap(std::string_view bytes, CBinaryData& inflated) {
  const CReadLimits& limits = m_context->GetLimits();
  unsigned long used = bytes.size();
  switch (CRkZip::Inflate(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
                          {limits.GetMaxInflatedBytes(), limits.GetMaxInflationRatio(), limits.GetInflationRatioFrom()},
                          inflated, &used)) {
    case InflateResult::Inflated:
      if (used < bytes.size()) NoteDropped(RkDropped_TrailingBytes, CRkLocation::kNoOffset, bytes.size() - used);
      return {reinterpret_cast<const char*>(inflated.GetData()), inflated.GetLength()};
    case InflateResult::TooManyBytes:
      CReadLimits::ThrowExceeded(L"inflated bytes", limits.GetMaxInflatedBytes());
    case InflateResult::RatioTooHigh:
      CReadLimits::ThrowExceeded(L"inflation ratio", limits.GetMaxInflationRatio());
    case InflateResult::NotCompressed:
      break;
  }
  return bytes;
}

void CXmlDocument::ParseBytes(std::string_view bytes, std::shared_ptr<const void> owner, const std::wstring& fileName) {
  auto inflated = std::make_shared<CBinaryData>();
  const std::string_view document = Unwrap(bytes, *inflated);
  const bool isInflated = document.data() != bytes.data();
  SetSource(document).SetOwner(isInflated ? std::move(inflated) : std::move(owner));
  m_source->SetInflated(isInflated);
  m_source->SetFileName(fileName);
  const Input input(*this, document, /*stay=*/true);
  if (CFastInfosetReader(*m_context->GetFIContext(), *this).Parse())
    TellNoted();
  else
    ParseXmlText();
}

void CXmlDocument::ParseXmlText() {
  m_wasScanned = ScanPlainXml(*this);
  if (!m_wasScanned) {
    CExpatReader reader(*this);
    reader.CreateParser();
    reader.Parse(/*isFinal=*/true);
  }
  TellNoted();
}

}  // namespace RkXmlLib16

#include "RkXmlLib16/document/internal/Source.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "RkXmlLib16/base/internal/CodePoints.h"

namespace RkXmlLib16 {

namespace {

// Bytes of input between two marks.
constexpr std::size_t kStretch = std::size_t{1} << 20;
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::size_t kUtf16MarkSize = 2;

unsigned char ByteAt(std::string_view bytes, std::size_t index) { return static_cast<unsigned char>(bytes[index]); }

bool IsBlank(char32_t c) { return c == U' ' || c == U'\t' || c == U'\r' || c == U'\n'; }

}  // namespace

CSource::Encoding CSource::EncodingOf(std::string_view xml) {
  constexpr std::string_view kFastInfoset("\xE0\0\0\1", 4);
  if (xml.substr(0, kFastInfoset.size()) == kFastInfoset) return Encoding::Octets;
  if (xml.size() >= 2) {
    const unsigned char first = ByteAt(xml, 0);
    const unsigned char second = ByteAt(xml, 1);
    if (first == 0xFE || first == 0) return Encoding::Utf16BE;
    if (first == 0xFF || second == 0) return Encoding::Utf16LE;
  }
  if (xml.substr(0, 5) != "<?xml") return Encoding::Utf8;
  const std::string_view declaration = xml.substr(0, xml.find("?>"));
  std::string_view name = declaration.substr(std::min(declaration.find("encoding"), declaration.size()));
  name = name.substr(std::min(name.find_first_of("\"'"), name.size()));
  // expat knows ISO-8859-1 and US-ASCII besides the forms of Unicode.
  constexpr std::string_view kLatin1 = "iso-8859-1";
  const auto isSame = [](char a, char b) { return (a | 0x20) == (b | 0x20); };
  if (name.substr(0, 6) == "'finf'") return Encoding::Octets;
  const bool isLatin1 =
      name.size() > kLatin1.size() && std::equal(kLatin1.begin(), kLatin1.end(), name.begin() + 1, isSame);
  return isLatin1 ? Encoding::SingleByte : Encoding::Utf8;
}

void CSource::KeepCopy() {
  const auto copy = std::make_shared<const std::string>(m_input);
  m_input = *copy;
  m_owner = copy;
}

char32_t CSource::Next(std::size_t& byte) const {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(m_input.data());
  switch (m_encoding) {
    case Encoding::Utf8: {
      const unsigned char* at = bytes + byte;
      const char32_t c = NextOrReplacement<Utf8Form>(at, bytes + m_input.size());
      byte = static_cast<std::size_t>(at - bytes);
      return c;
    }
    case Encoding::Utf16LE:
    case Encoding::Utf16BE: {
      const std::size_t low = m_encoding == Encoding::Utf16LE ? 0 : 1;
      const auto unitAt = [&](std::size_t at) -> char32_t {
        return at + 1 < m_input.size() ? char32_t{bytes[at + low]} | char32_t{bytes[at + 1 - low]} << 8 : 0;
      };
      char32_t c = unitAt(byte);
      byte = std::min(byte + 2, m_input.size());
      if (IsHighSurrogate(c) && IsLowSurrogate(unitAt(byte))) {
        c = JoinSurrogates(c, unitAt(byte));
        byte += 2;
      }
      return c;
    }
    case Encoding::Wide: {
      wchar_t c = 0;
      std::memcpy(&c, bytes + byte, std::min(sizeof c, m_input.size() - byte));
      byte = std::min(byte + sizeof c, m_input.size());
      return static_cast<char32_t>(c);
    }
    default:
      return bytes[byte++];
  }
}

std::uint64_t CSource::KeyOf(std::size_t bytes) const {
  if (m_encoding == Encoding::Wide) return bytes / sizeof(wchar_t);
  return m_count == Count::Bytes ? bytes : bytes != 0;
}

CSource::Mark CSource::Start() const {
  Mark start;
  if (m_encoding == Encoding::Utf8 && m_input.substr(0, kUtf8Mark.size()) == kUtf8Mark) start.byte = kUtf8Mark.size();
  if (m_encoding == Encoding::Utf16LE || m_encoding == Encoding::Utf16BE) {
    std::size_t behind = 0;
    if (!m_input.empty() && Next(behind) == 0xFEFF) start.byte = behind;
  }
  if (m_count == Count::Bytes) start.key = KeyOf(start.byte);
  return start;
}

void CSource::Advance(Mark& mark, std::uint64_t key) {
  std::size_t markAt = m_marks.empty() ? kStretch : m_marks.back().byte + kStretch;
  while (mark.key < key && mark.byte < m_input.size()) {
    const std::size_t before = mark.byte;
    const char32_t c = Next(mark.byte);
    mark.key += KeyOf(mark.byte - before);
    if (c == U'\n' || c == U'\r') {
      std::size_t behind = mark.byte;
      if (c == U'\r' && behind < m_input.size() && Next(behind) == U'\n') {
        ++mark.column;  // the line ends behind the line feed
        continue;
      }
      ++mark.line;
      mark.column = 1;
    } else {
      ++mark.column;
    }
    if (mark.byte >= markAt) {
      m_marks.push_back(mark);
      markAt = mark.byte + kStretch;
    }
  }
}

CRkLocation CSource::Locate(std::uint64_t offset, std::wstring path) {
  CRkLocation location(std::move(path));
  location.SetFileName(m_fileName);
  if (offset == CRkLocation::kNoOffset) return location;
  std::uint64_t given = offset;
  if (m_encoding != Encoding::Octets && !m_input.empty()) {
    const auto behind = std::upper_bound(m_marks.begin(), m_marks.end(), offset,
                                         [](std::uint64_t key, const Mark& mark) { return key < mark.key; });
    Mark mark = behind != m_marks.begin() ? *(behind - 1) : Start();
    if (m_last.byte != 0 && m_last.key <= offset && m_last.key > mark.key) mark = m_last;
    Advance(mark, offset);
    m_last = mark;
    location.SetLineAndColumn(mark.line, mark.column);
    if (m_count == Count::Characters) given = mark.byte;
  }
  const bool isUtf16 = m_encoding == Encoding::Utf16LE || m_encoding == Encoding::Utf16BE;
  if (m_isWide && isUtf16) given = offset < kUtf16MarkSize ? 0 : (offset - kUtf16MarkSize) / 2;
  location.SetOffset(m_firstOffset + given, m_isWide || m_encoding == Encoding::Wide, m_isInflated);
  return location;
}

std::uint64_t CSource::FindAttribute(std::uint64_t tag, std::wstring_view localName, std::size_t index,
                                     bool hasPrefixes) const {
  if (tag >= m_input.size()) return tag;
  auto at = static_cast<std::size_t>(tag);
  const auto isAtEnd = [&] { return at >= m_input.size(); };
  const auto peek = [&] {
    std::size_t behind = at;
    return isAtEnd() ? U'>' : Next(behind);
  };
  // The content of an entity has no tag where the reference stands.
  if (Next(at) != U'<') return tag;
  while (!isAtEnd() && !IsBlank(peek()) && peek() != U'>') Next(at);
  std::wstring name;
  for (;;) {
    while (IsBlank(peek())) Next(at);
    const std::uint64_t start = at;
    for (name.clear(); !IsBlank(peek()) && peek() != U'=' && peek() != U'>';) name += static_cast<wchar_t>(Next(at));
    while (IsBlank(peek())) Next(at);
    if (peek() != U'=') return tag;
    Next(at);
    while (IsBlank(peek())) Next(at);
    if (isAtEnd()) return tag;
    const char32_t quote = Next(at);
    while (!isAtEnd() && peek() != quote) Next(at);
    if (isAtEnd()) return tag;
    Next(at);

    const std::size_t colon = hasPrefixes ? name.find(L':') : std::wstring::npos;
    if (hasPrefixes && (name == L"xmlns" || name.compare(0, colon + 1, L"xmlns:") == 0)) continue;
    const std::wstring_view local = std::wstring_view(name).substr(colon == std::wstring::npos ? 0 : colon + 1);
    if (local == localName && index-- == 0) return start;
  }
}

}  // namespace RkXmlLib16

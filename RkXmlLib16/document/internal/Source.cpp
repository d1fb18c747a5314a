#include "RkXmlLib16/document/internal/Source.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "RkXmlLib16/base/internal/CodePoints.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

namespace {

// Bytes of input between two marks.
constexpr std::size_t kStretch = std::size_t{1} << 20;
// Bytes that Skip looks at together.
constexpr std::size_t kSkip = 4096;
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
  const auto copy = std::make_shared<CBinaryData>();
  copy->Reserve(m_input.size());
  copy->Append(reinterpret_cast<const unsigned char*>(m_input.data()), m_input.size());
  m_input = {reinterpret_cast<const char*>(copy->GetData()), m_input.size()};
  m_owner = copy;
}

char32_t CSource::Next(std::size_t& byte) const {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(m_input.data());
  const std::size_t end = GetEnd();
  switch (m_encoding) {
    case Encoding::Utf8: {
      const unsigned char* at = bytes + (byte - m_first);
      const char32_t c = NextOrReplacement<Utf8Form>(at, bytes + m_input.size());
      byte = m_first + static_cast<std::size_t>(at - bytes);
      return c;
    }
    case Encoding::Utf16LE:
    case Encoding::Utf16BE: {
      const std::size_t low = m_encoding == Encoding::Utf16LE ? 0 : 1;
      const auto unitAt = [&](std::size_t at) -> char32_t {
        return at + 1 < end ? char32_t{At(at + low)} | char32_t{At(at + 1 - low)} << 8 : 0;
      };
      char32_t c = unitAt(byte);
      byte = std::min(byte + 2, end);
      if (IsHighSurrogate(c) && IsLowSurrogate(unitAt(byte))) {
        c = JoinSurrogates(c, unitAt(byte));
        byte += 2;
      }
      return c;
    }
    case Encoding::Wide: {
      wchar_t c = 0;
      std::memcpy(&c, bytes + (byte - m_first), std::min(sizeof c, end - byte));
      byte = std::min(byte + sizeof c, end);
      return static_cast<char32_t>(c);
    }
    default:
      return At(byte++);
  }
}

std::uint64_t CSource::KeyOf(std::size_t bytes) const {
  if (m_encoding == Encoding::Wide) return bytes / sizeof(wchar_t);
  return m_count == Count::Bytes ? bytes : bytes != 0;
}

CSource::Mark CSource::Start() const {
  if (m_first != 0) return m_base;
  Mark start;
  if (m_encoding == Encoding::Utf8 && m_input.substr(0, kUtf8Mark.size()) == kUtf8Mark) start.byte = kUtf8Mark.size();
  if (m_encoding == Encoding::Utf16LE || m_encoding == Encoding::Utf16BE) {
    std::size_t behind = 0;
    if (!m_input.empty() && Next(behind) == 0xFEFF) start.byte = behind;
  }
  if (m_count == Count::Bytes) start.key = KeyOf(start.byte);
  return start;
}

// Goes over the simple part of the way in large steps: whole lines, or a run of ASCII where characters are counted.
void CSource::Skip(Mark& mark, std::uint64_t key) const {
  if (m_encoding != Encoding::Utf8 && m_encoding != Encoding::SingleByte) return;
  const auto isFirst = [this](char c) { return m_encoding != Encoding::Utf8 || (c & 0xC0) != 0x80; };
  while (mark.key < key && mark.byte < GetEnd()) {
    std::size_t length = std::min<std::uint64_t>({key - mark.key, GetEnd() - mark.byte, kSkip});
    while (length != 0 && mark.byte + length < GetEnd() && !isFirst(static_cast<char>(At(mark.byte + length))))
      --length;
    if (length == 0) return;
    const std::string_view run = m_input.substr(mark.byte - m_first, length);
    if (run.find('\r') != std::string_view::npos) return;
    const auto isWide = [](char c) { return (c & 0x80) != 0; };
    if (m_count == Count::Characters && std::any_of(run.begin(), run.end(), isWide)) return;
    const std::size_t lastFeed = run.rfind('\n');
    const std::string_view line = run.substr(lastFeed + 1);
    if (lastFeed != std::string_view::npos) {
      mark.line += static_cast<std::uint64_t>(std::count(run.begin(), run.end(), '\n'));
      mark.column = 1;
    }
    mark.column += static_cast<std::uint64_t>(std::count_if(line.begin(), line.end(), isFirst));
    mark.byte += length;
    mark.key += length;
  }
}

void CSource::Advance(Mark& mark, std::uint64_t key) {
  if (m_isInPieces) Skip(mark, key);
  std::size_t markAt = m_isInPieces ? SIZE_MAX : m_marks.empty() ? kStretch : m_marks.back().byte + kStretch;
  while (mark.key < key && mark.byte < GetEnd()) {
    const std::size_t before = mark.byte;
    const char32_t c = Next(mark.byte);
    mark.key += KeyOf(mark.byte - before);
    if (c == U'\n' || c == U'\r') {
      std::size_t behind = mark.byte;
      if (c == U'\r' && behind < GetEnd() && Next(behind) == U'\n') {
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

void CSource::SetBufferLength(std::size_t length) {
  m_isInPieces = true;
  m_buffer.resize(length);
  // In front of m_input lies what was let go of.
  const std::size_t gone = std::min(length, m_gone);
  m_input = std::string_view(m_buffer).substr(gone);
}

void CSource::DropBefore(std::uint64_t offset, const std::vector<std::uint64_t>& pinned, std::size_t known) {
  Mark mark = Start();
  if (m_encoding != Encoding::Octets) {
    m_marks.resize(std::min({m_marks.size(), pinned.size(), known}));
    for (std::size_t i = m_marks.size(); i < pinned.size() && pinned[i] <= offset; ++i) {
      Advance(mark, pinned[i]);
      m_marks.push_back(mark);
    }
    Advance(mark, offset);
  } else {
    mark.key = mark.byte = std::min<std::uint64_t>(offset, GetEnd());
  }
  // The last byte may be a carriage return whose line feed is still to come.
  if (mark.byte >= GetEnd() && m_encoding != Encoding::Octets) return;
  m_base = m_last = mark;
  m_gone += mark.byte - m_first;
  m_first = mark.byte;
  if (m_gone > m_buffer.size() / 2) {
    m_buffer.erase(0, m_gone);
    m_gone = 0;
  }
  m_input = std::string_view(m_buffer).substr(m_gone);
}

CRkLocation CSource::Locate(std::uint64_t offset, std::wstring path) {
  CRkLocation location(std::move(path));
  location.SetFileName(m_fileName);
  if (offset == CRkLocation::kNoOffset) return location;
  std::uint64_t given = offset;
  if (m_encoding != Encoding::Octets && (m_isInPieces || !m_input.empty())) {
    const auto behind = std::upper_bound(m_marks.begin(), m_marks.end(), offset,
                                         [](std::uint64_t key, const Mark& mark) { return key < mark.key; });
    Mark mark = behind != m_marks.begin() ? *(behind - 1) : Start();
    if (m_first != 0 && mark.key < m_base.key && offset >= m_base.key) mark = m_base;
    if (m_last.byte != 0 && m_last.key <= offset && m_last.key > mark.key) mark = m_last;
    if (mark.byte < m_first && mark.key != offset) return location;  // it was let go of
    if (mark.key != offset) Advance(mark, offset);
    location.SetLineAndColumn(mark.line, mark.column);
    if (mark.byte >= m_first) m_last = mark;
    if (m_count == Count::Characters) given = mark.byte;
  }
  const bool isUtf16 = m_encoding == Encoding::Utf16LE || m_encoding == Encoding::Utf16BE;
  if (m_isWide && isUtf16) given = offset < kUtf16MarkSize ? 0 : (offset - kUtf16MarkSize) / 2;
  location.SetOffset(m_firstOffset + given, m_isWide || m_encoding == Encoding::Wide, m_isInflated);
  return location;
}

std::uint64_t CSource::FindAttribute(std::uint64_t tag, std::size_t index, std::wstring_view localName,
                                     bool hasPrefixes) {
  if (tag < m_first || tag >= GetEnd()) return tag;
  if (m_tag.offset != tag || m_tag.index > index) {
    m_tag = {tag, 0, static_cast<std::size_t>(tag)};
    // The content of an entity has no tag where the reference stands.
    if (Next(m_tag.byte) != U'<') return m_tag.offset = CRkLocation::kNoOffset, tag;
    while (m_tag.byte < GetEnd() && !IsBlank(Peek(m_tag.byte)) && Peek(m_tag.byte) != U'>') Next(m_tag.byte);
  }
  std::size_t at = m_tag.byte;
  const auto isAtEnd = [&] { return at >= GetEnd(); };
  std::wstring name;
  for (;;) {
    while (IsBlank(Peek(at))) Next(at);
    const std::size_t start = at;
    for (name.clear(); !IsBlank(Peek(at)) && Peek(at) != U'=' && Peek(at) != U'>';)
      name += static_cast<wchar_t>(Next(at));
    while (IsBlank(Peek(at))) Next(at);
    if (Peek(at) != U'=') return tag;
    Next(at);
    while (IsBlank(Peek(at))) Next(at);
    if (isAtEnd()) return tag;
    const char32_t quote = Next(at);
    while (!isAtEnd() && Peek(at) != quote) Next(at);
    if (isAtEnd()) return tag;
    Next(at);

    const std::size_t colon = hasPrefixes ? name.find(L':') : std::wstring::npos;
    if (hasPrefixes && (name == L"xmlns" || name.compare(0, colon + 1, L"xmlns:") == 0)) continue;
    if (m_tag.index == index) {
      const std::wstring_view local = std::wstring_view(name).substr(colon == std::wstring::npos ? 0 : colon + 1);
      m_tag.byte = start;
      return local == localName ? start : tag;
    }
    ++m_tag.index;
    m_tag.byte = at;
  }
}

char32_t CSource::Peek(std::size_t byte) const { return byte < GetEnd() ? Next(byte) : U'>'; }

}  // namespace RkXmlLib16

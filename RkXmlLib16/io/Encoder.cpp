#include "RkXmlLib16/io/Encoder.h"

#include <algorithm>
#include <cstddef>
#include <cwchar>

#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/base/internal/CodePoints.h"

namespace RkXmlLib16 {

namespace {

// A position in UTF-16 that lies as bytes in memory. A last odd byte reads as a high surrogate, which stays alone.
class Utf16Bytes {
 public:
  Utf16Bytes(const unsigned char* at, const unsigned char* end, bool bigEndian)
      : m_at(at), m_end(end), m_bigEndian(bigEndian) {}
  char16_t operator*() const {
    if (m_end - m_at < 2) return 0xD800;
    const unsigned first = m_at[0];
    const unsigned second = m_at[1];
    return static_cast<char16_t>(m_bigEndian ? first << 8 | second : second << 8 | first);
  }
  Utf16Bytes& operator++() {
    m_at += m_end - m_at < 2 ? 1 : 2;
    return *this;
  }
  bool operator==(const Utf16Bytes& other) const { return m_at == other.m_at; }
  bool operator!=(const Utf16Bytes& other) const { return m_at != other.m_at; }

 private:
  const unsigned char* m_at;
  const unsigned char* m_end;
  bool m_bigEndian;
};

unsigned char* PutUtf16Bytes(char32_t c, unsigned char* out) {
  char16_t units[2];
  for (const char16_t *unit = units, *end = Utf16Form::Put(c, units); unit != end; ++unit) {
    *out++ = static_cast<unsigned char>(*unit & 0xFF);
    *out++ = static_cast<unsigned char>(*unit >> 8);
  }
  return out;
}

// Converts whole characters while they fit into `capacity` units of `target`, or all of them when that is null, and
// returns the number of units.
template <class From, class Position, class Target, class Size, class Put>
unsigned long Transcode(Position at, const Position& end, Target* target, unsigned long capacity, Size size, Put put) {
  unsigned long produced = 0;
  while (at != end) {
    const char32_t c = NextOrReplacement<From>(at, end);
    const unsigned long units = size(c);
    if (target != nullptr) {
      if (units > capacity - produced) break;
      put(c, target + produced);
    }
    produced += units;
  }
  return produced;
}

constexpr int kBlock = 16;

// The UTF-8 length of so many characters without a branch in the loop; 0 when one of them is a surrogate or no
// character.
unsigned long PlainBlockLength(const wchar_t* text) {
  unsigned length = kBlock;
  unsigned odd = 0;
  for (int i = 0; i < kBlock; ++i) {
    const auto c = static_cast<unsigned>(text[i]);
    length += (c > 0x7F ? 1u : 0u) + (c > 0x7FF ? 1u : 0u) + (c > 0xFFFF ? 1u : 0u);
    odd |= (c - 0xD800 < 0x800 ? 1u : 0u) | (c > 0x10FFFF ? 1u : 0u);
  }
  return odd != 0 ? 0 : length;
}

const unsigned char* Bytes(std::string_view bytes) { return reinterpret_cast<const unsigned char*>(bytes.data()); }

std::string_view View(const unsigned char* bytes, int length) {
  if (length <= 0) return std::string_view();
  return std::string_view(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

std::wstring_view View(const wchar_t* text) { return text == nullptr ? std::wstring_view() : text; }

}  // namespace

std::string ToUtf8(std::wstring_view text) {
  std::string utf8(CEncoder::Utf8Length(text), '\0');
  CEncoder::WriteUtf8(text, reinterpret_cast<unsigned char*>(utf8.data()));
  return utf8;
}

std::wstring FromUtf8(std::string_view utf8) { return CEncoder::Utf8ToUnicode(utf8); }

std::size_t JoinSurrogatePairs(wchar_t* text, std::size_t length) {
  const auto isHigh = [](wchar_t c) { return IsHighSurrogate(static_cast<char32_t>(c)); };
  const wchar_t* const end = text + length;
  wchar_t* out = std::find_if(text, text + length, isHigh);
  for (const wchar_t* at = out; at != end;) {
    const auto c = static_cast<char32_t>(*at++);
    const bool isPair = IsHighSurrogate(c) && at != end && IsLowSurrogate(static_cast<char32_t>(*at));
    *out++ = static_cast<wchar_t>(isPair ? JoinSurrogates(c, static_cast<char32_t>(*at++)) : c);
  }
  return static_cast<std::size_t>(out - text);
}

CBinaryData CEncoder::UnicodeToUtf8Binary(const wchar_t* text) { return UnicodeToUtf8Binary(View(text)); }

CBinaryData CEncoder::UnicodeToUtf8Binary(std::wstring_view text) {
  CBinaryData utf8;
  AppendUtf8(text, utf8);
  return utf8;
}

std::wstring CEncoder::Utf8ToUnicode(const unsigned char* bytes, int length) {
  return Utf8ToUnicode(View(bytes, length));
}

std::wstring CEncoder::Utf8ToUnicode(std::string_view bytes) {
  const unsigned char* const first = Bytes(bytes);
  if (Ascii::RunLength(first, bytes.size()) == bytes.size()) return std::wstring(first, first + bytes.size());
  std::wstring text(UnicodeLength(bytes), L'\0');
  WriteUnicode(bytes, text.data());
  return text;
}

std::wstring CEncoder::Utf16ToUnicode(const unsigned char* bytes, int length) {
  return Utf16ToUnicode(View(bytes, length));
}

std::wstring CEncoder::Utf16ToUnicode(std::string_view bytes, bool bigEndian) {
  const unsigned char* const last = Bytes(bytes) + bytes.size();
  Utf16Bytes at(Bytes(bytes), last, bigEndian);
  const Utf16Bytes end(last, last, bigEndian);
  std::wstring text;
  text.reserve(bytes.size() / 2);
  while (at != end) text += static_cast<wchar_t>(NextOrReplacement<Utf16Form>(at, end));
  return text;
}

unsigned long CEncoder::Utf8Length(std::wstring_view text) {
  const wchar_t* at = text.data();
  const wchar_t* const end = at + text.size();
  unsigned long length = 0;
  while (at != end) {
    const std::size_t run = Ascii::RunLength(at, static_cast<std::size_t>(end - at));
    length += run;
    at += run;
    for (unsigned long block; end - at >= kBlock && (block = PlainBlockLength(at)) != 0; at += kBlock) length += block;
    for (int i = 0; i < kBlock && at != end; ++i) length += Utf8Form::Size(NextOrReplacement<WideForm>(at, end));
  }
  return length;
}

unsigned char* CEncoder::WriteUtf8(std::wstring_view text, unsigned char* out) {
  const wchar_t* at = text.data();
  const wchar_t* const end = at + text.size();
  // A single character between others, mostly a blank between words, is no run.
  const auto startsRun = [&at, end] { return Ascii::IsAscii(*at) && (end - at == 1 || Ascii::IsAscii(at[1])); };
  while (at != end) {
    const std::size_t run = Ascii::NarrowRun(at, static_cast<std::size_t>(end - at), out);
    out += run;
    for (at += run; at != end && !startsRun();) {
      const bool isWhole = static_cast<char32_t>(*at) < 0xD800;  // most are: no surrogate, nor what may be no character
      out = Utf8Form::Put(isWhole ? static_cast<char32_t>(*at++) : NextOrReplacement<WideForm>(at, end), out);
    }
  }
  return out;
}

void CEncoder::AppendUtf8(std::wstring_view text, CBinaryData& out) {
  if (text.empty()) return;
  const unsigned long length = Utf8Length(text);
  if (out.GetLength() == 0) out.Reserve(length);
  WriteUtf8(text, out.Extend(length));
}

unsigned long CEncoder::UnicodeLength(std::string_view utf8) {
  const unsigned char* at = Bytes(utf8);
  const unsigned char* const end = at + utf8.size();
  unsigned long length = 0;
  while (at != end) {
    const std::size_t run = Ascii::RunLength(at, static_cast<std::size_t>(end - at));
    length += run;
    for (at += run; at != end && !Ascii::IsAscii(*at); ++length) NextOrReplacement<Utf8Form>(at, end);
  }
  return length;
}

wchar_t* CEncoder::WriteUnicode(std::string_view utf8, wchar_t* out) {
  const unsigned char* at = Bytes(utf8);
  const unsigned char* const end = at + utf8.size();
  while (at != end) {
    const std::size_t run = Ascii::WidenRun(at, static_cast<std::size_t>(end - at), out);
    out += run;
    for (at += run; at != end && !Ascii::IsAscii(*at);)
      *out++ = static_cast<wchar_t>(NextOrReplacement<Utf8Form>(at, end));
  }
  return out;
}

void CUtf8Appender::Append(std::wstring_view piece) {
  if (piece.empty()) return;
  if (m_pending != 0) {
    const wchar_t pair[] = {TakePending(), piece.front()};
    const bool joined = IsLowSurrogate(static_cast<char32_t>(piece.front()));
    CEncoder::AppendUtf8(std::wstring_view(pair, joined ? 2 : 1), m_out);
    if (joined) piece.remove_prefix(1);
  }
  if (!piece.empty() && IsHighSurrogate(static_cast<char32_t>(piece.back()))) {
    m_pending = piece.back();
    piece.remove_suffix(1);
  }
  AppendPiece(piece);
}

// Space for the longest encoding spares the first of two looks at the text.
void CUtf8Appender::AppendPiece(std::wstring_view piece) {
  constexpr std::size_t kFewCharacters = 16384;
  if (piece.size() > kFewCharacters) return CEncoder::AppendUtf8(piece, m_out);
  const unsigned long before = m_out.GetLength();
  unsigned char* const start = m_out.Extend(piece.size() * 4);
  m_out.Truncate(before + static_cast<unsigned long>(CEncoder::WriteUtf8(piece, start) - start));
}

wchar_t CUtf8Appender::TakePending() {
  const wchar_t pending = m_pending;
  m_pending = 0;
  return pending;
}

void CUtf8Appender::Finish() {
  if (m_pending == 0) return;
  const wchar_t lone = TakePending();
  CEncoder::AppendUtf8(std::wstring_view(&lone, 1), m_out);
}

unsigned long UnicodeToUTF8(const wchar_t* source, unsigned long length, unsigned char* target,
                            unsigned long capacity) {
  return Transcode<WideForm>(source, source + length, target, capacity, Utf8Form::Size, Utf8Form::Put);
}

unsigned long UTF8ToUnicode(const unsigned char* source, unsigned long length, wchar_t* target,
                            unsigned long capacity) {
  return Transcode<Utf8Form>(source, source + length, target, capacity, WideForm::Size, WideForm::Put);
}

unsigned long UnicodeToUTF16(const wchar_t* source, unsigned long length, unsigned char* target,
                             unsigned long capacity) {
  return Transcode<WideForm>(
      source, source + length, target, capacity, [](char32_t c) { return Utf16Form::Size(c) * sizeof(char16_t); },
      PutUtf16Bytes);
}

unsigned long UTF16ToUnicode(const unsigned char* source, unsigned long length, wchar_t* target,
                             unsigned long capacity) {
  const unsigned char* const last = source + length;
  return Transcode<Utf16Form>(Utf16Bytes(source, last, false), Utf16Bytes(last, last, false), target, capacity,
                              WideForm::Size, WideForm::Put);
}

bool DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(const wchar_t* text, int length) {
  if (length <= 0) return false;
  const auto count = static_cast<std::size_t>(length);
  return Ascii::RunLength(text, count) < count;
}

bool DoesUTF8StrContainAnyCharsLargerThanOneByte(const unsigned char* bytes, unsigned long length) {
  return Ascii::RunLength(bytes, length) < length;
}

std::string UnicodeToMultiByte(const wchar_t* text) {
  const std::wstring_view wide = View(text);
  const wchar_t* source = wide.data();
  std::mbstate_t state{};
  const std::size_t length = wide.empty() ? 0 : std::wcsrtombs(nullptr, &source, 0, &state);
  if (length == static_cast<std::size_t>(-1)) return ToUtf8(wide);
  std::string name(length, '\0');
  source = wide.data();
  state = std::mbstate_t{};
  if (length > 0) std::wcsrtombs(name.data(), &source, length, &state);
  return name;
}

}  // namespace RkXmlLib16

#ifndef RKXMLLIB16_BASE_INTERNAL_ASCII_H
#define RKXMLLIB16_BASE_INTERNAL_ASCII_H

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

// Runs of ASCII, sixteen characters at a time. Most text of most documents is such a run.
namespace RkXmlLib16 {

static_assert(sizeof(wchar_t) == 4, "wide text is UTF-32");

namespace Ascii {

struct WideBlock {
  __m128i a, b, c, d;

  explicit WideBlock(const wchar_t* text) : WideBlock(text, text + 8) {}
  // Eight from each.
  WideBlock(const wchar_t* first, const wchar_t* last)
      : a(Load(first)), b(Load(first + 4)), c(Load(last)), d(Load(last + 4)) {}

  __m128i All() const { return _mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d)); }
  bool IsAscii() const { return IsAscii(All()); }
  // One byte a character.
  __m128i Narrow() const { return _mm_packus_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d)); }

  static bool IsAscii(__m128i characters) {
    const __m128i above = _mm_andnot_si128(_mm_set1_epi32(0x7F), characters);
    return _mm_movemask_epi8(_mm_cmpeq_epi32(above, _mm_setzero_si128())) == 0xFFFF;
  }

  static __m128i Load(const wchar_t* text) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text)); }
};

inline bool IsAscii(wchar_t c) { return static_cast<char32_t>(c) < 0x80; }
inline bool IsAscii(unsigned char c) { return c < 0x80; }
constexpr bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// The number of characters before the first one that is not ASCII.
inline std::size_t RunLength(const wchar_t* text, std::size_t length) {
  std::size_t i = 0;
  while (i + 16 <= length && WideBlock(text + i).IsAscii()) i += 16;
  while (i < length && IsAscii(text[i])) ++i;
  return i;
}

inline std::size_t RunLength(const unsigned char* bytes, std::size_t length) {
  std::size_t i = 0;
  while (i + 16 <= length && _mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i))) == 0)
    i += 16;
  while (i < length && IsAscii(bytes[i])) ++i;
  return i;
}

// Whether some character is not above the limit, which is ASCII.
template <wchar_t kLimit>
bool HasAtMost(const wchar_t* text, std::size_t length) {
  std::size_t i = 0;
  for (; i + 16 <= length; i += 16) {
    const WideBlock block(text + i);
    // Shorter numbers keep the order.
    const __m128i low = _mm_packs_epi32(block.a, block.b), high = _mm_packs_epi32(block.c, block.d);
    const __m128i limit = _mm_set1_epi16(kLimit);
    if (_mm_movemask_epi8(_mm_and_si128(_mm_cmpgt_epi16(low, limit), _mm_cmpgt_epi16(high, limit))) != 0xFFFF)
      return true;
  }
  for (; i + 4 <= length; i += 4)
    if (_mm_movemask_epi8(_mm_cmpgt_epi32(WideBlock::Load(text + i), _mm_set1_epi32(kLimit))) != 0xFFFF) return true;
  for (; i < length; ++i)
    if (text[i] <= kLimit) return true;
  return false;
}

// Whether some character may be white space, and whether some may be white space other than a blank.
inline bool MayHaveSpace(const wchar_t* text, std::size_t length) { return HasAtMost<L' '>(text, length); }
inline bool MayHaveControl(const wchar_t* text, std::size_t length) { return HasAtMost<L' ' - 1>(text, length); }

// Whether some character may be white space that is not a single blank: below the blank, or a blank before such a one.
inline bool MayHaveSpaceRun(const wchar_t* text, std::size_t length) {
  const __m128i blank = _mm_set1_epi32(L' ');
  std::size_t i = 0;
  for (; i + 5 <= length; i += 4) {
    const __m128i block = WideBlock::Load(text + i), next = WideBlock::Load(text + i + 1);
    const __m128i pair = _mm_andnot_si128(_mm_cmpgt_epi32(next, blank), _mm_cmpeq_epi32(block, blank));
    if (_mm_movemask_epi8(_mm_or_si128(pair, _mm_cmplt_epi32(block, blank))) != 0) return true;
  }
  for (; i < length; ++i)
    if (text[i] < L' ' || (text[i] == L' ' && i + 1 < length && text[i + 1] <= L' ')) return true;
  return false;
}

// Copies four characters to `out`, one byte a character, if they are all ASCII.
inline bool NarrowFour(const wchar_t* text, unsigned char* out) {
  const __m128i four = WideBlock::Load(text);
  if (!WideBlock::IsAscii(four)) return false;
  const __m128i units = _mm_packs_epi32(four, four);
  const int bytes = _mm_cvtsi128_si32(_mm_packus_epi16(units, units));
  std::memcpy(out, &bytes, sizeof bytes);
  return true;
}

// How far sixteen characters stand above those of `from`, into `out`; whether none is further than `most` tells.
inline bool Distances(const wchar_t* text, const char (&from)[16], const unsigned char (&most)[16],
                      unsigned char (&out)[16]) {
  const WideBlock block(text);
  // What does not fit a byte becomes -128 or 127, which are far from every character.
  const __m128i bytes = _mm_packs_epi16(_mm_packs_epi32(block.a, block.b), _mm_packs_epi32(block.c, block.d));
  const auto load = [](const auto& values) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(values)); };
  const __m128i distances = _mm_sub_epi8(bytes, load(from));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), distances);
  return _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_min_epu8(distances, load(most)), distances)) == 0xFFFF;
}

// Whether one of the bytes is `a` or `b`.
inline bool HasEither(const unsigned char* bytes, std::size_t length, unsigned char a, unsigned char b) {
  const auto isThere = [a, b](__m128i block) {
    const __m128i isA = _mm_cmpeq_epi8(block, _mm_set1_epi8(static_cast<char>(a)));
    return _mm_movemask_epi8(_mm_or_si128(isA, _mm_cmpeq_epi8(block, _mm_set1_epi8(static_cast<char>(b))))) != 0;
  };
  std::size_t i = 0;
  for (; i + 16 <= length; i += 16)
    if (isThere(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i)))) return true;
  if (length - i >= 8) {  // the first eight and the last
    const auto load = [](const unsigned char* at) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)); };
    return isThere(_mm_unpacklo_epi64(load(bytes + i), load(bytes + length - 8)));
  }
  if (length - i >= 4) {
    int first = 0;
    int last = 0;
    std::memcpy(&first, bytes + i, sizeof first);
    std::memcpy(&last, bytes + length - 4, sizeof last);
    return isThere(_mm_set_epi32(first, last, first, last));
  }
  for (; i < length; ++i)
    if (bytes[i] == a || bytes[i] == b) return true;
  return false;
}

// The same for less than sixteen characters, which it looks at in two pieces that overlap; nothing is written when some
// are not ASCII.
inline bool NarrowFew(const wchar_t* text, std::size_t length, unsigned char* out) {
  if (length >= 8) {
    const WideBlock block(text, text + length - 8);
    if (!block.IsAscii()) return false;
    const __m128i bytes = block.Narrow();
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), bytes);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + length - 8), _mm_unpackhi_epi64(bytes, bytes));
    return true;
  }
  if (length >= 4) {
    const __m128i first = WideBlock::Load(text), last = WideBlock::Load(text + length - 4);
    if (!WideBlock::IsAscii(_mm_or_si128(first, last))) return false;
    const __m128i units = _mm_packs_epi32(first, last);
    const auto bytes = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(units, units)));
    const std::uint32_t four[] = {static_cast<std::uint32_t>(bytes), static_cast<std::uint32_t>(bytes >> 32)};
    std::memcpy(out, &four[0], sizeof four[0]);
    std::memcpy(out + length - 4, &four[1], sizeof four[1]);
    return true;
  }
  if (length == 0) return true;
  const wchar_t first = text[0], middle = text[length / 2], last = text[length - 1];
  if (!IsAscii(static_cast<wchar_t>(first | middle | last))) return false;
  out[0] = static_cast<unsigned char>(first);
  out[length / 2] = static_cast<unsigned char>(middle);
  out[length - 1] = static_cast<unsigned char>(last);
  return true;
}

// Copies the text to `out`, one byte a character; false when some are not ASCII, and what was written is of no use.
inline bool NarrowAll(const wchar_t* text, std::size_t length, unsigned char* out) {
  if (length < 16) return NarrowFew(text, length, out);
  const auto narrowSixteen = [&](std::size_t at) {
    const WideBlock block(text + at);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + at), block.Narrow());
    return block.IsAscii();
  };
  for (std::size_t i = 0; i + 16 < length; i += 16)
    if (!narrowSixteen(i)) return false;
  return narrowSixteen(length - 16);
}

// Copies the run at the start of `text` to `out`, one byte a character, and returns its length.
inline std::size_t NarrowRun(const wchar_t* text, std::size_t length, unsigned char* out) {
  const auto put = [out](std::size_t at, const WideBlock& block) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + at), block.Narrow());
  };
  std::size_t i = 0;
  for (; i + 16 <= length; i += 16) {
    const WideBlock block(text + i);
    if (!block.IsAscii()) break;
    put(i, block);
    // After one block more are likely: two at a time.
    for (; i + 48 <= length; i += 32) {
      const WideBlock first(text + i + 16), second(text + i + 32);
      if (!WideBlock::IsAscii(_mm_or_si128(first.All(), second.All()))) break;
      put(i + 16, first);
      put(i + 32, second);
    }
  }
  while (i + 4 <= length && NarrowFour(text + i, out + i)) i += 4;
  if (i < length && length - i < 4 && length >= 4 && NarrowFour(text + length - 4, out + length - 4)) return length;
  for (; i < length && IsAscii(text[i]); ++i) out[i] = static_cast<unsigned char>(text[i]);
  return i;
}

// Copies four bytes to `out`, one character a byte, if they are all ASCII.
inline bool WidenFour(const unsigned char* bytes, wchar_t* out) {
  std::uint32_t four = 0;
  std::memcpy(&four, bytes, sizeof four);
  if ((four & 0x80808080) != 0) return false;
  const __m128i zero = _mm_setzero_si128();
  const __m128i units = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(four)), zero);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi16(units, zero));
  return true;
}

// Writes sixteen bytes to `out`, one character a byte.
inline void PutSixteen(__m128i bytes, wchar_t* out) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i low = _mm_unpacklo_epi8(bytes, zero);
  const __m128i high = _mm_unpackhi_epi8(bytes, zero);
  auto* const to = reinterpret_cast<__m128i*>(out);
  _mm_storeu_si128(to, _mm_unpacklo_epi16(low, zero));
  _mm_storeu_si128(to + 1, _mm_unpackhi_epi16(low, zero));
  _mm_storeu_si128(to + 2, _mm_unpacklo_epi16(high, zero));
  _mm_storeu_si128(to + 3, _mm_unpackhi_epi16(high, zero));
}

// Copies `bytes` to `out`, one character a byte, in whole steps of sixteen: both are as long as those.
inline void WidenSteps(const unsigned char* bytes, std::size_t length, wchar_t* out) {
  for (std::size_t i = 0; i < length; i += 16)
    PutSixteen(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i)), out + i);
}

// Copies the run at the start of `bytes` to `out`, one character a byte, and returns its length.
inline std::size_t WidenRun(const unsigned char* bytes, std::size_t length, wchar_t* out) {
  std::size_t i = 0;
  for (; i + 16 <= length; i += 16) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
    if (_mm_movemask_epi8(block) != 0) break;
    PutSixteen(block, out + i);
  }
  while (i + 4 <= length && WidenFour(bytes + i, out + i)) i += 4;
  if (i < length && length - i < 4 && length >= 4 && WidenFour(bytes + length - 4, out + length - 4)) return length;
  for (; i < length && IsAscii(bytes[i]); ++i) out[i] = static_cast<wchar_t>(bytes[i]);
  return i;
}

}  // namespace Ascii
}  // namespace RkXmlLib16

#endif

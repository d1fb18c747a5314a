#ifndef RKXMLLIB16_BASE_INTERNAL_WIDETEXT_H
#define RKXMLLIB16_BASE_INTERNAL_WIDETEXT_H

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <string>
#include <string_view>

// What is done to short wide texts everywhere, without a call and without a loop over characters: four of them at a
// time, the last four where the text ends, and of up to three the first, the middle and the last.
namespace RkXmlLib16::WideText {

constexpr std::size_t kShort = 16;

inline __m128i LoadFour(const wchar_t* text) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text)); }
inline void StoreFour(wchar_t* to, __m128i four) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), four); }

inline void CopyEight(wchar_t* to, const wchar_t* text) {
  const __m128i first = LoadFour(text), second = LoadFour(text + 4);
  StoreFour(to, first);
  StoreFour(to + 4, second);
}
inline void CopySixteen(wchar_t* to, const wchar_t* text) {
  CopyEight(to, text);
  CopyEight(to + 8, text + 8);
}

// Four times four characters as octets with sign, of which the greatest stands for all beyond.
inline __m128i Pack(__m128i a, __m128i b, __m128i c, __m128i d) {
  return _mm_packs_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d));
}
// Eight from each.
inline __m128i PackSixteen(const wchar_t* first, const wchar_t* last) {
  return Pack(LoadFour(first), LoadFour(first + 4), LoadFour(last), LoadFour(last + 4));
}

inline bool IsEqualFour(const wchar_t* a, const wchar_t* b) {
  return _mm_movemask_epi8(_mm_cmpeq_epi32(LoadFour(a), LoadFour(b))) == 0xFFFF;
}

inline bool IsEqual(std::wstring_view a, std::wstring_view b) {
  const std::size_t length = a.size();
  if (length != b.size()) return false;
  if (a.data() == b.data()) return true;
  if (length > kShort) return std::wmemcmp(a.data(), b.data(), length) == 0;
  if (length == 0) return true;
  if (length < 4) return a.front() == b.front() && a[length / 2] == b[length / 2] && a.back() == b.back();
  for (std::size_t i = 0; i + 4 < length; i += 4)
    if (!IsEqualFour(a.data() + i, b.data() + i)) return false;
  return IsEqualFour(a.data() + length - 4, b.data() + length - 4);
}

// Up to eight characters below U+0100 as octets, the first one lowest, with zeros behind the last; false for other
// texts. One by one, because they were often written a moment ago, and wider loads would wait until those stores are
// done.
inline bool PackEight(std::wstring_view text, std::uint64_t& octets) {
  const std::size_t length = text.size();
  if (length > 8) return false;
  octets = 0;
  std::uint32_t seen = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const auto c = static_cast<std::uint32_t>(text[i]);
    seen |= c;
    octets |= std::uint64_t{c} << 8 * i;
  }
  return seen < 0x100;
}

// These write to `to`, which does not overlap with the text, and return the end.

inline wchar_t* Copy(wchar_t* to, std::wstring_view text) {
  const std::size_t length = text.size();
  if (length > kShort) return std::wmemcpy(to, text.data(), length) + length;
  if (length == 0) return to;
  if (length < 4) {
    to[0] = text.front();
    to[length / 2] = text[length / 2];
    to[length - 1] = text.back();
    return to + length;
  }
  for (std::size_t i = 0; i + 4 < length; i += 4) StoreFour(to + i, LoadFour(text.data() + i));
  StoreFour(to + length - 4, LoadFour(text.data() + length - 4));
  return to + length;
}

// The text up to its first NUL; there is space for all of it.
inline wchar_t* CopyUpToNul(wchar_t* to, std::wstring_view text) {
  const std::size_t length = text.size();
  const wchar_t* const from = text.data();
  bool hasNul = false;
  if (length < 4) {
    if (length == 0) return to;
    to[0] = from[0];
    to[length / 2] = from[length / 2];
    to[length - 1] = from[length - 1];
    hasNul = to[0] == 0 || to[length / 2] == 0 || to[length - 1] == 0;
  } else {
    const __m128i last = LoadFour(from + length - 4);
    __m128i zeros = _mm_cmpeq_epi32(last, _mm_setzero_si128());
    for (std::size_t i = 0; i + 4 < length; i += 4) {
      const __m128i four = LoadFour(from + i);
      zeros = _mm_or_si128(zeros, _mm_cmpeq_epi32(four, _mm_setzero_si128()));
      StoreFour(to + i, four);
    }
    StoreFour(to + length - 4, last);
    hasNul = _mm_movemask_epi8(zeros) != 0;
  }
  return to + (hasNul ? text.find(L'\0') : length);
}

// The text up to its first NUL, escaped where it must be; there is space for all of it. `mayBeSpecial` tells of sixteen
// characters, as PackSixteen gives them, whether `put` must see each. NUL is special.
template <class MayBeSpecial, class PutOne>
inline wchar_t* CopyEscaped(wchar_t* to, std::wstring_view text, MayBeSpecial mayBeSpecial, PutOne put) {
  const wchar_t* at = text.data();
  const std::size_t length = text.size();
  const wchar_t* const end = at + length;
  // Most texts are clean. Two pieces that overlap are all of it.
  if (length >= 16) {
    for (; end - at > 16 && !mayBeSpecial(PackSixteen(at, at + 8)); at += 16, to += 16) CopySixteen(to, at);
    if (end - at <= 16 && !mayBeSpecial(PackSixteen(end - 16, end - 8))) {
      to += end - at;
      CopySixteen(to - 16, end - 16);
      return to;
    }
  } else if (length >= 8) {
    if (!mayBeSpecial(PackSixteen(at, end - 8))) {
      CopyEight(to, at);
      CopyEight(to + length - 8, end - 8);
      return to + length;
    }
  } else if (length >= 4) {
    const __m128i first = LoadFour(at), last = LoadFour(end - 4);
    if (!mayBeSpecial(Pack(first, last, first, last))) {
      StoreFour(to, first);
      StoreFour(to + length - 4, last);
      return to + length;
    }
  }
  while (at != end) {
    if (end - at >= 8 && !mayBeSpecial(PackSixteen(at, at))) {
      CopyEight(to, at);
      at += 8;
      to += 8;
      continue;
    }
    if (end - at < 8 && length >= 8 && !mayBeSpecial(PackSixteen(end - 8, end - 8))) {
      // What lies before the rest and is not special has been written as it is.
      to += end - at;
      CopyEight(to - 8, end - 8);
      return to;
    }
    for (const wchar_t* const stop = end - at >= 8 ? at + 8 : end; at != stop; ++at) {
      if (*at == L'\0') return to;
      to = put(to, *at);
    }
  }
  return to;
}

// The text `count` times.
inline wchar_t* Repeat(wchar_t* to, std::wstring_view text, std::size_t count) {
  if (text.size() != 1) {
    while (count-- > 0) to = Copy(to, text);
    return to;
  }
  const wchar_t c = text.front();
  if (count == 0) return to;
  if (count < 4) {
    to[0] = to[count / 2] = to[count - 1] = c;
    return to + count;
  }
  const __m128i four = _mm_set1_epi32(c);
  for (std::size_t i = 0; i + 4 < count; i += 4) StoreFour(to + i, four);
  StoreFour(to + count - 4, four);
  return to + count;
}

}  // namespace RkXmlLib16::WideText

#endif

#ifndef RKXMLLIB16_BASE_INTERNAL_BYTESCAN_H
#define RKXMLLIB16_BASE_INTERNAL_BYTESCAN_H

#include <emmintrin.h>

#include <cstddef>

#include "RkXmlLib16/base/internal/CodePoints.h"

// Searches through the bytes of documents in UTF-8, sixteen at once.
namespace RkXmlLib16::ByteScan {

using Byte = unsigned char;

constexpr std::size_t kStep = sizeof(__m128i);

inline __m128i Load(const Byte* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }

inline __m128i IsByte(__m128i bytes, char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); }

// Control characters and what is not ASCII.
inline __m128i IsBelowBlank(__m128i bytes) { return _mm_cmplt_epi8(bytes, _mm_set1_epi8(' ')); }

inline unsigned MaskOf(__m128i flags) { return static_cast<unsigned>(_mm_movemask_epi8(flags)); }

inline std::size_t FirstOf(unsigned mask) { return static_cast<std::size_t>(__builtin_ctz(mask)); }

// The first byte of a kind, or `end`. The kind tells of one byte whether it is one (Is), and of sixteen which are (Of).
template <class Kind>
[[gnu::noinline]] const Byte* FindFar(const Byte* at, const Byte* end) {
  for (; static_cast<std::size_t>(end - at) >= kStep; at += kStep)
    if (const unsigned mask = Kind::Of(Load(at))) return at + FirstOf(mask);
  while (at != end && !Kind::Is(*at)) ++at;
  return at;
}

// The same, inline where it is near.
template <class Kind>
[[gnu::always_inline]] inline const Byte* Find(const Byte* at, const Byte* end) {
  if (static_cast<std::size_t>(end - at) < kStep) return FindFar<Kind>(at, end);
  const unsigned mask = Kind::Of(Load(at));
  return mask != 0 ? at + FirstOf(mask) : FindFar<Kind>(at + kStep, end);
}

// The white space of XML and JSON.
constexpr bool IsBlank(Byte c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

// The characters of XML 1.0.
constexpr bool IsXmlCharacter(char32_t c) {
  return c >= ' ' ? c < 0xFFFE || c > 0xFFFF : c == '\n' || c == '\t' || c == '\r';
}

// Takes a character above ASCII; false for what is ill-formed or no character of XML.
inline bool TakeCharacter(const Byte*& at, const Byte* end, char32_t& c) {
  const auto isTrail = [](Byte b) { return (b & 0xC0) == 0x80; };
  if (*at >= 0xC2 && *at < 0xE0 && end - at >= 2 && isTrail(at[1])) {
    c = (*at & 0x1Fu) << 6 | (at[1] & 0x3Fu);
    at += 2;
    return true;
  }
  if (*at > 0xE0 && *at < 0xED && end - at >= 3 && isTrail(at[1]) && isTrail(at[2])) {
    c = (*at & 0x0Fu) << 12 | (at[1] & 0x3Fu) << 6 | (at[2] & 0x3Fu);
    at += 3;
    return true;
  }
  return Utf8Form::Next(at, end, c) == Decoded::Good && IsXmlCharacter(c);
}

}  // namespace RkXmlLib16::ByteScan

#endif

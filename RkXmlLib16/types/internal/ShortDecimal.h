#ifndef RKXMLLIB16_TYPES_INTERNAL_SHORTDECIMAL_H
#define RKXMLLIB16_TYPES_INTERNAL_SHORTDECIMAL_H

#include <emmintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/types/Decimal.h"

namespace RkXmlLib16 {

// The digits of a text of up to sixteen characters, one in each byte, with zeros behind them.
struct TextBytes {
  static constexpr std::size_t kMost = 16;
  static constexpr unsigned char kPoint = static_cast<unsigned char>('.' - '0');

  TextBytes(const wchar_t* text, std::size_t length) {
    // An initializer becomes an instruction that repeats, which takes longer for so few bytes.
    for (unsigned char* at : {bytes, bytes + kMost})
      _mm_store_si128(reinterpret_cast<__m128i*>(at), _mm_setzero_si128());
    if (RKXML_UNLIKELY(length < 4)) {
      for (std::size_t i = 0; i < length; ++i)
        bytes[i] = static_cast<unsigned char>(std::min(static_cast<char32_t>(text[i]), char32_t{0xFF}) - '0');
      return;
    }
    for (std::size_t i = 0; i + 4 < length; i += 4) PutFour(text + i, bytes + i);
    PutFour(text + length - 4, bytes + length - 4);
  }
  // Which of them are no digits, a bit for each.
  unsigned FindOthers() const {
    const __m128i all = _mm_load_si128(reinterpret_cast<const __m128i*>(bytes));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(all, _mm_set1_epi8(10)), all)));
  }
  // Up to eight digits, the least significant in the lowest byte.
  std::uint64_t Pack(std::size_t first, std::size_t count) const {
    if (count == 0) return 0;
    std::uint64_t packed = 0;
    std::memcpy(&packed, bytes + first, sizeof packed);
    return __builtin_bswap64(packed) >> (64 - 8 * count);
  }

  alignas(16) unsigned char bytes[2 * kMost];

 private:
  // What does not fit a byte becomes no digit and no point.
  static void PutFour(const wchar_t* text, unsigned char* out) {
    const __m128i wide = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
    const __m128i narrow = _mm_packus_epi16(_mm_packs_epi32(wide, wide), wide);
    const int four = _mm_cvtsi128_si32(_mm_sub_epi8(narrow, _mm_set1_epi8('0')));
    std::memcpy(out, &four, sizeof four);
  }
};

// Most decimals have few digits on each side of the point, which fit a word as they are stored: one in each byte, the
// least significant in the lowest.
struct ShortDecimal {
  static constexpr std::size_t kPackedDigits = sizeof(std::uint64_t);

  // Such digits, with a sign and a point at most; false, and nothing changed, for any other text.
  [[gnu::always_inline]] static bool Parse(CDecimal& value, std::wstring_view text) noexcept {
    const bool negative = !text.empty() && text[0] == L'-';
    const std::size_t signs = negative || (!text.empty() && text[0] == L'+') ? 1 : 0;
    const std::size_t length = text.size() - signs;
    if (RKXML_UNLIKELY(length > TextBytes::kMost)) return false;
    const TextBytes digits(text.data() + signs, length);
    const unsigned others = digits.FindOthers();
    const std::size_t point = others != 0 ? static_cast<std::size_t>(__builtin_ctz(others)) : length;
    const bool isPlain = others == 0 || ((others & (others - 1)) == 0 && digits.bytes[point] == TextBytes::kPoint);
    if (RKXML_UNLIKELY(!isPlain)) return false;
    const std::size_t fractionLength = others != 0 ? length - point - 1 : 0;
    if (RKXML_UNLIKELY(point > kPackedDigits || fractionLength > kPackedDigits)) return false;
    const std::uint64_t integer = digits.Pack(0, point);
    std::uint64_t fraction = digits.Pack(point + 1, fractionLength);
    std::int32_t divider = 1;
    if (fraction != 0) {
      const int zeros = __builtin_ctzll(fraction) / 8;
      divider = static_cast<std::int32_t>(fractionLength) - zeros;
      fraction >>= 8 * zeros;
    }
    const std::int32_t sign = negative && (integer | fraction) != 0 ? -1 : 1;
    value.m_integer.AssignPacked(sign, integer);
    value.m_fraction.AssignPacked(sign, fraction);
    value.m_divider = divider;
    return true;
  }
};

}  // namespace RkXmlLib16

#endif

#include "RkXmlLib16/types/Decimal.h"

#include <emmintrin.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/types/Whitespace.h"
#include "RkXmlLib16/types/internal/ReadyText.h"
#include "RkXmlLib16/types/internal/ShortDecimal.h"

namespace RkXmlLib16 {

namespace {

constexpr long long kMaxExponent = 10000;

using Ascii::IsDigit;

bool IsHalfOrLess(const CDigitVector& digits, std::size_t count) {  // of the lowest `count` digits, as a fraction
  if (digits.data()[count - 1] != 5) return digits.data()[count - 1] < 5;
  return std::all_of(digits.begin(), digits.begin() + count - 1, [](auto d) { return d == 0; });
}

// The value times 10^divider, as a magnitude; `divider` is not below the value's own.
CDigitVector Scaled(const CDecimal& value, std::int32_t divider) {
  const std::size_t own = static_cast<std::size_t>(value.GetFractionalDivider());
  CDigitVector digits(value.GetFractionPart().GetDigits());
  digits.resize(own);
  for (const unsigned char digit : value.GetIntegerPart().GetDigits()) digits.push_back(digit);
  digits.insert_zeros(static_cast<std::size_t>(divider) - own);
  CBigInteger::Clean(digits);
  return digits;
}

CBigInteger ScaledInteger(const CDecimal& value, std::int32_t divider) {
  return CBigInteger(value.IsNegative() ? -1 : 1, Scaled(value, divider));
}

// The decimal scaled / 10^divider, rationalised.
CDecimal FromScaled(const CBigInteger& scaled, std::int32_t divider) {
  return CDecimal(CBigInteger(0), scaled, divider);
}

// The k-th fraction digit, from 1.
wchar_t FractionDigit(const CDecimal& value, std::int32_t k) {
  const CDigitVector& digits = value.GetFractionPart().GetDigits();
  const std::int32_t at = value.GetFractionalDivider() - k;
  return at >= 0 && static_cast<std::size_t>(at) < digits.size() ? digits[static_cast<std::size_t>(at)] : L'\0';
}

int CompareMagnitudes(const CDecimal& a, const CDecimal& b) {
  const int order = CBigInteger::Compare(a.GetIntegerPart().GetDigits(), b.GetIntegerPart().GetDigits());
  if (order != 0) return order;
  const std::int32_t longest = std::max(a.GetFractionalDivider(), b.GetFractionalDivider());
  for (std::int32_t k = 1; k <= longest; ++k) {
    const wchar_t x = FractionDigit(a, k), y = FractionDigit(b, k);
    if (x != y) return x < y ? -1 : 1;
  }
  return 0;
}

}  // namespace

CDecimal::CDecimal(int value) : CDecimal(CBigInteger(value)) {}
CDecimal::CDecimal(long value) : CDecimal(CBigInteger(value)) {}
CDecimal::CDecimal(long long value) : CDecimal(CBigInteger(value)) {}
CDecimal::CDecimal(double value) {
  if (!std::isfinite(value)) throw CRkInvalidValueException(L"The double is not a finite number");
  char buffer[32];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 16).ptr;
  Parse(std::wstring(buffer, end));
}
CDecimal::CDecimal(const wchar_t* text) { Parse(text); }
CDecimal::CDecimal(std::wstring_view text) { Parse(text); }
CDecimal::CDecimal(const CBigInteger& value)
    : m_integer(value), m_fraction(value.GetSign(), CDigitVector(1, 0)), m_divider(1) {}

CDecimal::CDecimal(const CBigInteger& integerPart, const CBigInteger& fractionPart, std::int32_t divider)
    : m_integer(integerPart), m_fraction(fractionPart), m_divider(std::max(divider, 0)) {
  const std::size_t width = static_cast<std::size_t>(m_divider);
  if (m_fraction.GetDigits().size() > width || m_integer.GetSign() != m_fraction.GetSign()) {
    // Bring both parts to one sign and the fraction below 1.
    CDigitVector scaled(m_integer.GetDigits());
    scaled.insert_zeros(width);
    const CBigInteger sum = CBigInteger(m_integer.GetSign(), std::move(scaled)) + m_fraction;
    CDigitVector fraction(sum.GetDigits());
    fraction.resize(std::max(fraction.size(), width + 1));
    CDigitVector integer(fraction);
    integer.erase_front(width);
    fraction.resize(width);
    m_integer = CBigInteger(sum.GetSign(), std::move(integer));
    m_fraction = CBigInteger(sum.GetSign(), std::move(fraction));
  }
  if (m_divider == 0) m_divider = 1;
  Rationalise();
}

CDecimal::~CDecimal() = default;

void CDecimal::Parse(const wchar_t* text) { Parse(std::wstring_view(text == nullptr ? L"" : text)); }

namespace {

// Writes eight digits, one in each byte, as characters that end before `end`, the lowest one last.
void PutDigitsBackwards(std::uint64_t packed, wchar_t* end) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i forwards = _mm_cvtsi64_si128(static_cast<long long>(__builtin_bswap64(packed)));
  const __m128i pairs = _mm_unpacklo_epi8(_mm_add_epi8(forwards, _mm_set1_epi8('0')), zero);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(end - 8), _mm_unpacklo_epi16(pairs, zero));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(end - 4), _mm_unpackhi_epi16(pairs, zero));
}

}  // namespace

bool CDecimal::ParsePlain(std::wstring_view text) { return ShortDecimal::Parse(*this, text) || ParsePlainLong(text); }

// For any number of digits.
bool CDecimal::ParsePlainLong(std::wstring_view text) {
  const bool negative = !text.empty() && text[0] == L'-';
  if (negative || (!text.empty() && text[0] == L'+')) text.remove_prefix(1);
  std::size_t point = 0;
  while (point < text.size() && IsDigit(text[point])) ++point;
  const std::wstring_view integer = text.substr(0, point);
  std::wstring_view fraction;
  if (point < text.size()) {
    fraction = text.substr(point + 1);
    if (text[point] != L'.' || fraction.size() > m_maxDivider ||
        !std::all_of(fraction.begin(), fraction.end(), IsDigit))
      return false;
    while (!fraction.empty() && fraction.back() == L'0') fraction.remove_suffix(1);
  }
  m_integer.AssignDigits(negative ? -1 : 1, integer);
  m_fraction.AssignDigits(negative ? -1 : 1, fraction);
  m_divider = std::max(1, static_cast<std::int32_t>(fraction.size()));
  if (IsZero()) *this = CDecimal();  // without a sign
  return true;
}

namespace {

// The parts of the text of a decimal: 0.digits times 10 to the power of pointAt + exponent.
struct DecimalText {
  bool negative = false;
  CDigitVector digits;    // integer and fraction, most significant first, without zeros in front of the integer
  long long pointAt = 0;  // how many of them stand before the point
  long long exponent = 0;
};

[[noreturn]] void ThrowInvalidChar(std::wstring_view text, std::size_t position) {
  throw CRkInvalidValueException(
      FormatString(L"The string representing a Decimal, contained an invalid char at position %zu [%ls].", position,
                   std::wstring(text).c_str()));
}

// What follows the letter at `i`: white space and signs, digits, white space.
long long ParseExponent(std::wstring_view text, std::size_t i) {
  bool negative = false;
  for (++i; i < text.size() && !IsDigit(text[i]); ++i) {
    if (text[i] == L'-' || text[i] == L'+')
      negative = text[i] == L'-';
    else if (!CWhitespaceUtils::IsWhiteSpace(text[i]))
      ThrowInvalidChar(text, i);
  }
  // Larger exponents than any text has digits need no exact value.
  long long exponent = 0;
  for (; i < text.size() && IsDigit(text[i]); ++i)
    exponent = std::min<long long>(exponent * 10 + (text[i] - L'0'), std::numeric_limits<long long>::max() / 100);
  for (; i < text.size(); ++i)
    if (!CWhitespaceUtils::IsWhiteSpace(text[i])) ThrowInvalidChar(text, i);
  return negative ? -exponent : exponent;
}

DecimalText ParseParts(std::wstring_view text) {
  DecimalText parts;
  bool hasPoint = false;
  std::size_t i = 0;
  for (; i < text.size() && text[i] != L'e' && text[i] != L'E'; ++i) {
    const wchar_t c = text[i];
    if (IsDigit(c)) {
      if (c != L'0' || !parts.digits.empty() || hasPoint) parts.digits.push_back(c - L'0');
    } else if (c == L'.' && !hasPoint) {
      hasPoint = true;
      parts.pointAt = static_cast<long long>(parts.digits.size());
    } else if ((c == L'-' || c == L'+') && !hasPoint) {
      parts.negative = c == L'-';
    } else if (!CWhitespaceUtils::IsWhiteSpace(c)) {
      ThrowInvalidChar(text, i);
    }
  }
  if (!hasPoint) parts.pointAt = static_cast<long long>(parts.digits.size());
  if (i < text.size()) parts.exponent = ParseExponent(text, i);
  while (static_cast<long long>(parts.digits.size()) > parts.pointAt && parts.digits.back() == 0)
    parts.digits.pop_back();
  return parts;
}

// Digits as CBigInteger keeps them: the least significant first, at least one.
template <class Digit>
CDigitVector Reversed(Digit first, Digit last) {
  CDigitVector digits;
  digits.reserve(static_cast<std::size_t>(last - first));
  while (last != first) digits.push_back(*--last);
  if (digits.empty()) digits.push_back(0);
  return digits;
}

}  // namespace

void CDecimal::Parse(std::wstring_view text) {
  if (ParsePlain(text)) return;
  *this = CDecimal();
  DecimalText parts = ParseParts(text);
  CDigitVector& digits = parts.digits;
  if (std::all_of(digits.begin(), digits.end(), [](auto d) { return d == 0; })) return;
  if (parts.exponent > kMaxExponent)
    throw CRkInvalidValueException(FormatString(L"The exponent of the Decimal [%ls] is to large, the largest is %lld.",
                                                std::wstring(text).c_str(), kMaxExponent));
  const long long pointAt = parts.pointAt + parts.exponent;
  if (pointAt < -m_maxDivider) return;  // nothing of it reaches the digits that are kept

  // Digits beyond the point, where a division by a power of ten stops after the kept ones.
  long long fractionDigits = std::max(0LL, static_cast<long long>(digits.size()) - pointAt);
  if (parts.exponent < 0 && fractionDigits > m_maxDivider) {
    digits.resize(static_cast<std::size_t>(std::max(0LL, pointAt + m_maxDivider)));
    fractionDigits = m_maxDivider;
  }
  if (static_cast<long long>(digits.size()) < pointAt) digits.resize(static_cast<std::size_t>(pointAt));
  const auto point = digits.begin() + std::max(0LL, pointAt);
  const std::int32_t sign = parts.negative ? -1 : 1;
  m_integer = CBigInteger(sign, Reversed(digits.begin(), point));
  m_fraction = CBigInteger(sign, Reversed(point, digits.end()));
  m_divider = static_cast<std::int32_t>(std::max(1LL, fractionDigits));
  Rationalise();
  if (m_divider > m_maxDivider) {
    ChangeFractionalDivider(m_maxDivider);
    Rationalise();
  }
}

std::wstring CDecimal::ToString() const {
  std::wstring text;
  AppendTo(text);
  return text;
}

std::wstring CDecimal::ToString(int fractionDigits) const {
  fractionDigits = std::max(fractionDigits, 0);
  CDecimal rounded(*this);
  rounded.ChangeFractionalDivider(fractionDigits);
  std::wstring text;
  if (rounded.IsNegative()) text += L'-';
  rounded.m_integer.GetAbs().AppendTo(text);
  if (fractionDigits > 0) text += L'.';
  for (std::int32_t k = 1; k <= fractionDigits; ++k) text += L'0' + FractionDigit(rounded, k);
  return text;
}

namespace {

// Writes the text so that it ends before `end`, and returns its start; null, and nothing written, when it is longer.
inline const wchar_t* WriteFew(const CDecimal& value, wchar_t* end) {
  const CBigInteger& integer = value.GetIntegerPart();
  const CBigInteger& fraction = value.GetFractionPart();
  const int divider = value.GetFractionalDivider();
  if (!integer.GetDigits().FitsPacked() || !fraction.GetDigits().FitsPacked() ||
      divider > static_cast<int>(ShortDecimal::kPackedDigits))
    return nullptr;
  const std::uint64_t whole = integer.GetDigits().GetPacked();
  const std::uint64_t part = fraction.GetDigits().GetPacked();
  const std::size_t length = std::max<std::size_t>(1, integer.GetDigits().size());
  if (part != 0) {
    PutDigitsBackwards(part, end);
    end -= divider + 1;
    *end = L'.';
  }
  PutDigitsBackwards(whole, end);
  end -= length;
  if ((whole != 0 ? integer : fraction).GetSign() < 0 && (whole | part) != 0) *--end = L'-';
  return end;
}

}  // namespace

std::wstring_view CDecimal::GetText(wchar_t* end, std::wstring& longer) const {
  return ReadyText(*this, WriteFew(*this, end), end, longer);
}

void CDecimal::AppendTo(std::wstring& out) const {
  wchar_t few[kFewCharacters];
  if (const wchar_t* const first = WriteFew(*this, std::end(few))) {
    out.append(first, static_cast<std::size_t>(std::end(few) - first));
    return;
  }
  const auto put = [&out](const CDigitVector& digits) {
    for (auto digit = digits.end(); digit != digits.begin();) out += static_cast<wchar_t>(L'0' + *--digit);
  };
  if (IsNegative()) out += L'-';
  put(m_integer.GetDigits());
  if (m_integer.GetDigits().empty()) out += L'0';
  if (m_fraction.IsZero()) return;
  out += L'.';
  out.append(static_cast<std::size_t>(m_divider) - m_fraction.GetDigits().size(), L'0');
  put(m_fraction.GetDigits());
}

void CDecimal::Rationalise() {
  if (m_divider <= 1) return;
  if (m_fraction.IsZero()) {
    m_divider = 1;
    return;
  }
  const CDigitVector& digits = m_fraction.GetDigits();
  std::size_t zeros = 0;
  while (digits[zeros] == 0) ++zeros;
  zeros = std::min(zeros, static_cast<std::size_t>(m_divider - 1));
  if (zeros == 0) return;
  CDigitVector kept(digits);
  kept.erase_front(zeros);
  m_fraction = CBigInteger(m_fraction.GetSign(), std::move(kept));
  m_divider -= static_cast<std::int32_t>(zeros);
}

void CDecimal::ChangeFractionalDivider(int n) {
  n = std::max(n, 0);
  CDigitVector digits(m_fraction.GetDigits());
  const std::int32_t sign = m_fraction.GetSign();
  if (n >= m_divider) {
    CBigInteger::ShiftLeft(digits, static_cast<unsigned>(n - m_divider));
  } else {
    const std::size_t dropped = static_cast<std::size_t>(m_divider - n);
    digits.resize(std::max(digits.size(), dropped + 1));
    const bool up = !IsHalfOrLess(digits, dropped);
    digits.erase_front(dropped);
    CBigInteger::Clean(digits);
    if (up) {
      CBigInteger::Add(digits, CDigitVector(1, 1), digits);
      // The fraction has reached 1 when it has a digit more than it may have, or is 1 with no digit at all.
      if (digits.size() > static_cast<std::size_t>(n)) {
        digits = CDigitVector(1, 0);
        m_integer = CBigInteger(sign, m_integer.GetDigits()) + CBigInteger(sign);
      }
    }
  }
  m_fraction = CBigInteger(sign, std::move(digits));
  m_divider = n;
}

void CDecimal::Normalize(CDecimal& a, CDecimal& b) {
  const std::int32_t divider = std::max(a.m_divider, b.m_divider);
  a.ChangeFractionalDivider(divider);
  b.ChangeFractionalDivider(divider);
}

double CDecimal::ToDouble() const {
  const std::wstring wide = ToString();
  const std::string text(wide.begin(), wide.end());  // ASCII
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec == std::errc::result_out_of_range && !m_integer.IsZero())
    throw CRkOverFlowException(L"The Decimal value if to large to fit into a Double");  // sic
  return value;
}

long CDecimal::ToLong() const {
  try {
    return static_cast<long>(static_cast<long long>(m_integer));
  } catch (const CRkInvalidValueException&) {
    throw CRkOverFlowException(L"The Decimal value if to large to fit into a LONG");  // sic
  }
}

long long CDecimal::ToLongLong() const {
  try {
    return static_cast<long long>(m_integer);
  } catch (const CRkInvalidValueException&) {
    throw CRkOverFlowException(L"The Decimal value if to large to fit into a LONGLONG");  // sic
  }
}

CBigInteger CDecimal::ToBigInteger() const { return CBigInteger(*this); }

bool CDecimal::IsNegative() const noexcept {
  return m_integer.IsZero() ? !m_fraction.IsZero() && m_fraction.GetSign() < 0 : m_integer.GetSign() < 0;
}

void CDecimal::Negate() noexcept {
  m_integer.Negate();
  m_fraction.Negate();
}

CDecimal CDecimal::GetNegative() const {
  CDecimal result(*this);
  result.Negate();
  return result;
}

bool CDecimal::operator==(const CDecimal& other) const {
  return IsNegative() == other.IsNegative() && CompareMagnitudes(*this, other) == 0;
}

bool CDecimal::operator<(const CDecimal& other) const {
  if (m_integer.HasRank() && other.m_integer.HasRank()) {
    const std::int64_t rank = m_integer.GetRank(), otherRank = other.m_integer.GetRank();
    if (rank != otherRank) return rank < otherRank;
  }
  if (IsNegative() != other.IsNegative()) return IsNegative();
  const int order = CompareMagnitudes(*this, other);
  return IsNegative() ? order > 0 : order < 0;
}

CDecimal CDecimal::operator+(const CDecimal& other) const {
  const std::int32_t divider = std::max(m_divider, other.m_divider);
  return FromScaled(ScaledInteger(*this, divider) + ScaledInteger(other, divider), divider);
}

CDecimal CDecimal::operator-(const CDecimal& other) const { return *this + other.GetNegative(); }

CDecimal CDecimal::operator*(const CDecimal& other) const {
  CDecimal product =
      FromScaled(ScaledInteger(*this, m_divider) * ScaledInteger(other, other.m_divider), m_divider + other.m_divider);
  if (product.m_divider > m_maxDivider) {
    product.ChangeFractionalDivider(m_maxDivider);
    product.Rationalise();
  }
  return product;
}

CDecimal CDecimal::operator/(const CDecimal& other) const {
  const std::int32_t divider = std::max(m_divider, other.m_divider);
  const CBigInteger dividend = ScaledInteger(*this, divider) * CBigInteger::Pow10(m_maxDivider);
  return FromScaled(dividend / ScaledInteger(other, divider), m_maxDivider);
}

CDecimal& CDecimal::operator+=(const CDecimal& other) { return *this = *this + other; }
CDecimal& CDecimal::operator-=(const CDecimal& other) { return *this = *this - other; }
CDecimal& CDecimal::operator*=(const CDecimal& other) { return *this = *this * other; }
CDecimal& CDecimal::operator/=(const CDecimal& other) { return *this = *this / other; }
CDecimal& CDecimal::operator++() { return *this += CDecimal(1); }
CDecimal& CDecimal::operator--() { return *this -= CDecimal(1); }

CDecimal CDecimal::operator++(int) {
  CDecimal old(*this);
  ++*this;
  return old;
}

CDecimal CDecimal::operator--(int) {
  CDecimal old(*this);
  --*this;
  return old;
}

}  // namespace RkXmlLib16

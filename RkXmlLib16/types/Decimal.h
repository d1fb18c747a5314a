#ifndef RKXMLLIB16_TYPES_DECIMAL_H
#define RKXMLLIB16_TYPES_DECIMAL_H

#include <cstdint>
#include <string>
#include <string_view>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/types/BigInteger.h"

namespace RkXmlLib16 {

// An xs:decimal of any size: integer part + fraction part / 10^divider, both parts with the value's sign. At most 30
// fraction digits are kept. A value type: copy freely, no locking.
//
//   CDecimal price(L"19.90");
//   (price * CDecimal(3)).ToString();  // "59.7"
class RKXML_EXPORT CDecimal {
 public:
  // The most fraction digits that a parsed value, a product or a quotient keeps.
  static constexpr std::int32_t m_maxDivider = 30;

  CDecimal() = default;
  CDecimal(int value);
  CDecimal(long value);
  CDecimal(long long value);
  // The value that "%.16g" shows. Throws CRkInvalidValueException when it is not finite.
  CDecimal(double value);
  CDecimal(const wchar_t* text);
  explicit CDecimal(std::wstring_view text);
  CDecimal(const CBigInteger& value);
  // Both parts carry the value's sign; the fraction is below 10^divider, the divider at least 1.
  CDecimal(const CBigInteger& integerPart, const CBigInteger& fractionPart, std::int32_t divider);
  CDecimal(const CDecimal& other) = default;
  CDecimal(CDecimal&& other) noexcept = default;
  CDecimal& operator=(const CDecimal& other) = default;
  CDecimal& operator=(CDecimal&& other) noexcept = default;
  virtual ~CDecimal();

  // Reads digits, a point and leniently an exponent up to 10000; white space is skipped and the last sign among the
  // integer digits wins. The value is rounded to 30 fraction digits, one half toward zero. Throws
  // CRkInvalidValueException "The string representing a Decimal, contained an invalid char at position %d [%ls]."
  // (position from 0); the value is then partly filled.
  void Parse(const wchar_t* text);
  void Parse(std::wstring_view text);
  // Reads digits with a sign and a point at most; false, and nothing changed, for any other text.
  bool ParsePlain(std::wstring_view text);
  // Without trailing fraction zeros; never an exponent.
  std::wstring ToString() const;
  // With exactly `fractionDigits` fraction digits (none and no point for 0), one half toward zero.
  std::wstring ToString(int fractionDigits) const;
  void AppendTo(std::wstring& out) const;
  // The text: of a value of up to eight digits on each side of the point in the space before `end`, where there must be
  // space for kFewCharacters, else in `longer`, which is overwritten.
  static constexpr std::size_t kFewCharacters = 18;
  std::wstring_view GetText(wchar_t* end, std::wstring& longer) const;

  // Strips trailing zeros of the fraction; the divider stays at least 1.
  void Rationalise();
  // Rescales the fraction to n digits (n >= 0), rounding one half toward zero.
  void ChangeFractionalDivider(int n);
  // Brings both values to the larger of their two dividers.
  static void Normalize(CDecimal& a, CDecimal& b);

  // Throw CRkOverFlowException when the integer part does not fit. ToDouble gives the nearest double; a fraction is cut
  // off by ToLong and ToLongLong.
  double ToDouble() const;
  long ToLong() const;
  long long ToLongLong() const;
  // Rounded, one half toward zero.
  CBigInteger ToBigInteger() const;

  const CBigInteger& GetIntegerPart() const noexcept { return m_integer; }
  const CBigInteger& GetFractionPart() const noexcept { return m_fraction; }
  std::int32_t GetFractionalDivider() const noexcept { return m_divider; }
  bool IsZero() const noexcept { return m_integer.IsZero() && m_fraction.IsZero(); }
  bool IsNegative() const noexcept;

  void Negate() noexcept;
  CDecimal GetNegative() const;
  CDecimal operator-() const { return GetNegative(); }

  bool operator==(const CDecimal& other) const;
  bool operator!=(const CDecimal& other) const { return !(*this == other); }
  bool operator<(const CDecimal& other) const;
  bool operator>(const CDecimal& other) const { return other < *this; }
  bool operator<=(const CDecimal& other) const { return !(other < *this); }
  bool operator>=(const CDecimal& other) const { return !(*this < other); }

  // Products are rounded to 30 fraction digits, one half toward zero; quotients are truncated after 30. A zero divisor
  // throws CRkInvalidValueException "ERROR: Overflow in operator/.".
  CDecimal operator+(const CDecimal& other) const;
  CDecimal operator-(const CDecimal& other) const;
  CDecimal operator*(const CDecimal& other) const;
  CDecimal operator/(const CDecimal& other) const;
  CDecimal& operator+=(const CDecimal& other);
  CDecimal& operator-=(const CDecimal& other);
  CDecimal& operator*=(const CDecimal& other);
  CDecimal& operator/=(const CDecimal& other);
  CDecimal& operator++();
  CDecimal operator++(int);
  CDecimal& operator--();
  CDecimal operator--(int);

 private:
  friend struct ShortDecimal;
  bool ParsePlainLong(std::wstring_view text);

  CBigInteger m_integer;
  CBigInteger m_fraction;
  std::int32_t m_divider = 1;
};

}  // namespace RkXmlLib16

#endif

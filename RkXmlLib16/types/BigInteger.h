#ifndef RKXMLLIB16_TYPES_BIGINTEGER_H
#define RKXMLLIB16_TYPES_BIGINTEGER_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/types/DigitVector.h"

namespace RkXmlLib16 {

class CDecimal;

// An xs:integer of any size: a sign and decimal digits. A value type: copy freely, no locking.
// Zero may carry either sign and prints as "0".
//
//   CBigInteger n(L"123456789012345678901234567890");
//   (n * n % 97).ToString();
class RKXML_EXPORT CBigInteger {
 public:
  CBigInteger() { *m_digits.Overwrite(1) = 0; }
  CBigInteger(int value);
  CBigInteger(unsigned int value);
  CBigInteger(long value);
  CBigInteger(unsigned long value);
  CBigInteger(long long value);
  CBigInteger(unsigned long long value);
  // Rounds with ceil(x - 0.5) of the magnitude. Throws CRkInvalidValueException when the value is not finite.
  CBigInteger(double value);
  // Parses lenient text: blanks around it, a leading sign; characters to the left of a non-digit are ignored. Text with
  // any other character is parsed as a CDecimal, whose errors apply, and rounded to an integer, one half toward zero.
  CBigInteger(const wchar_t* text);
  explicit CBigInteger(std::wstring_view text);
  // The decimal rounded to an integer, one half toward zero.
  CBigInteger(const CDecimal& value);
  // `digits` least significant first.
  CBigInteger(std::int32_t sign, CDigitVector digits);
  // `digits` as text, most significant first, nothing but digits; none are 0.
  void AssignDigits(std::int32_t sign, std::wstring_view digits);
  // Up to eight digits, one in each byte of `packed`, least significant first.
  void AssignPacked(std::int32_t sign, std::uint64_t packed) noexcept {
    m_sign = SignOf(sign);
    m_digits.AssignPacked(packed);
  }
  CBigInteger(const CBigInteger& other) = default;
  CBigInteger(CBigInteger&& other) noexcept = default;
  CBigInteger& operator=(const CBigInteger& other) = default;
  CBigInteger& operator=(CBigInteger&& other) noexcept = default;
  virtual ~CBigInteger();

  // Throw CRkInvalidValueException "ERROR: Value out of bound of int." and "... of LONGLONG.".
  explicit operator int() const;
  explicit operator long long() const;
  std::wstring ToString() const;
  void AppendTo(std::wstring& out) const;
  // Writes the text, if it is one of few characters, so that it ends before `end`, and returns its start. Null, and
  // nothing written, for others. There must be space for kFewCharacters.
  static constexpr std::size_t kFewCharacters = 17;
  const wchar_t* WriteFew(wchar_t* end) const noexcept;

  // +1 or -1, also of zero.
  std::int32_t GetSign() const noexcept { return m_sign; }
  // Least significant first; no zeros at the high end, but zero itself may be empty.
  const CDigitVector& GetDigits() const noexcept { return m_digits; }
  bool IsZero() const noexcept { return m_digits.empty() || (m_digits.size() == 1 && m_digits[0] == 0); }

  // Of two values that have a rank, and different ones, the greater has the greater rank. Those of up to eight digits
  // have one.
  bool HasRank() const noexcept { return m_digits.FitsPacked(); }
  std::int64_t GetRank() const noexcept {
    const auto magnitude = static_cast<std::int64_t>(m_digits.GetPacked());
    return m_sign < 0 ? -magnitude : magnitude;
  }

  // Abs and Negate change this value, GetAbs and GetNegative leave it.
  void Abs() noexcept { m_sign = 1; }
  CBigInteger GetAbs() const;
  void Negate() noexcept { m_sign = SignOf(-m_sign); }
  CBigInteger GetNegative() const;
  CBigInteger operator-() const { return GetNegative(); }

  // The sign alone decides across signs in < > <= >=, so a zero with sign -1 is below a zero with sign +1, though
  // == calls them equal.
  bool operator==(const CBigInteger& other) const noexcept;
  bool operator!=(const CBigInteger& other) const noexcept { return !(*this == other); }
  bool operator<(const CBigInteger& other) const noexcept;
  bool operator>(const CBigInteger& other) const noexcept { return other < *this; }
  bool operator<=(const CBigInteger& other) const noexcept { return *this < other || *this == other; }
  bool operator>=(const CBigInteger& other) const noexcept { return other < *this || *this == other; }

  // Quotients are truncated toward zero and the remainder has the dividend's sign. A zero divisor throws
  // CRkInvalidValueException "ERROR: Overflow in operator/." (and so on by operator); the operands stay unchanged.
  CBigInteger operator+(const CBigInteger& other) const;
  CBigInteger operator-(const CBigInteger& other) const;
  CBigInteger operator*(const CBigInteger& other) const;
  CBigInteger operator/(const CBigInteger& other) const;
  CBigInteger operator%(const CBigInteger& other) const;
  CBigInteger& operator+=(const CBigInteger& other);
  CBigInteger& operator-=(const CBigInteger& other);
  CBigInteger& operator*=(const CBigInteger& other);
  CBigInteger& operator/=(const CBigInteger& other);
  CBigInteger& operator%=(const CBigInteger& other);

  // The integer square root, rounded down. Throws CRkInvalidValueException for a negative value.
  CBigInteger SquareRoot() const;
  static CBigInteger Pow10(unsigned n);

  // Magnitudes as digit vectors, least significant first; results may be the same objects as arguments.
  static void Clean(CDigitVector& v) noexcept;
  static int Compare(const CDigitVector& a, const CDigitVector& b) noexcept;  // -1, 0 or 1
  static int Position(const CDigitVector& v) noexcept;                        // number of digits, at least 1
  // Build* replace `v`: by the digits at the end of a text, 0 when there are none, or by a number's magnitude, rounded
  // as in the constructor. BuildDouble throws CRkInvalidValueException when the value is not finite.
  static void Build(const wchar_t* text, CDigitVector& v);
  static void Build(unsigned int value, CDigitVector& v);
  static void BuildDWORDLONG(unsigned long long value, CDigitVector& v);
  static void BuildDouble(double value, CDigitVector& v);
  static void Add(const CDigitVector& a, const CDigitVector& b, CDigitVector& r);
  static void Subtract(const CDigitVector& a, const CDigitVector& b, CDigitVector& r);  // requires a >= b
  static void Multiply(const CDigitVector& a, wchar_t digit, CDigitVector& r);
  static void Multiply(const CDigitVector& a, const CDigitVector& b, CDigitVector& r);
  static void ShiftLeft(CDigitVector& v, unsigned n);  // times 10 to the n
  static void Pow10(unsigned n, CDigitVector& v);
  // Throws CRkInvalidValueException "ERROR: Overflow in operator/." when b is zero.
  static void Divide(const CDigitVector& a, const CDigitVector& b, CDigitVector& q, CDigitVector& r);

  // The same with results in a standard vector; arguments may be one in all of them.
  using Digits = std::vector<wchar_t>;
  static void Clean(Digits& v) {
    Change(v, [](CDigitVector& digits) { Clean(digits); });
  }
  static void Build(const wchar_t* text, Digits& v) {
    Change(v, [&](CDigitVector& digits) { Build(text, digits); });
  }
  static void Build(unsigned int value, Digits& v) {
    Change(v, [&](CDigitVector& digits) { Build(value, digits); });
  }
  static void BuildDWORDLONG(unsigned long long value, Digits& v) {
    Change(v, [&](CDigitVector& digits) { BuildDWORDLONG(value, digits); });
  }
  static void BuildDouble(double value, Digits& v) {
    Change(v, [&](CDigitVector& digits) { BuildDouble(value, digits); });
  }
  static void Add(const CDigitVector& a, const CDigitVector& b, Digits& r) {
    Change(r, [&](CDigitVector& digits) { Add(a, b, digits); });
  }
  static void Subtract(const CDigitVector& a, const CDigitVector& b, Digits& r) {
    Change(r, [&](CDigitVector& digits) { Subtract(a, b, digits); });
  }
  static void Multiply(const CDigitVector& a, wchar_t digit, Digits& r) {
    Change(r, [&](CDigitVector& digits) { Multiply(a, digit, digits); });
  }
  static void Multiply(const CDigitVector& a, const CDigitVector& b, Digits& r) {
    Change(r, [&](CDigitVector& digits) { Multiply(a, b, digits); });
  }
  static void ShiftLeft(Digits& v, unsigned n) {
    Change(v, [&](CDigitVector& digits) { ShiftLeft(digits, n); });
  }
  static void Pow10(unsigned n, Digits& v) {
    Change(v, [&](CDigitVector& digits) { Pow10(n, digits); });
  }
  static void Divide(const CDigitVector& a, const CDigitVector& b, Digits& q, Digits& r) {
    Change(q, [&](CDigitVector& quotient) {
      Change(r, [&](CDigitVector& remainder) { Divide(a, b, quotient, remainder); });
    });
  }

 private:
  template <class Work>
  static void Change(Digits& v, Work&& work) {
    CDigitVector digits(v);
    work(digits);
    v = digits;
  }
  void Parse(std::wstring_view text);
  template <class Value>
  static constexpr std::int8_t SignOf(Value value) noexcept {
    return value < 0 ? -1 : 1;
  }

  std::int8_t m_sign = 1;
  CDigitVector m_digits;
};

}  // namespace RkXmlLib16

#endif

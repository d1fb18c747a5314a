#include "RkXmlLib16/types/BigInteger.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/types/Decimal.h"

namespace RkXmlLib16 {

namespace {

// Long products and quotients take nine digits at a time.
using Limbs = std::vector<std::uint32_t>;
constexpr std::uint32_t kBase = 1000000000;
constexpr std::size_t kLimbDigits = 9;
constexpr std::size_t kWordDigits = 18;  // what surely fits 64 bits

using Ascii::IsDigit;

template <class Value>
constexpr unsigned long long Magnitude(Value value) {
  const unsigned long long bits = static_cast<unsigned long long>(value);
  return value < 0 ? 0 - bits : bits;
}

template <class Value>
Value FoldDigits(const CDigitVector& v, std::size_t first, std::size_t last) {
  Value value = 0;
  for (std::size_t i = last; i-- > first;) value = static_cast<Value>(value * 10 + static_cast<Value>(v[i]));
  return value;
}

Limbs ToLimbs(const CDigitVector& v) {
  Limbs limbs;
  limbs.reserve(v.size() / kLimbDigits + 2);
  for (std::size_t i = 0; i < v.size(); i += kLimbDigits)
    limbs.push_back(FoldDigits<std::uint32_t>(v, i, std::min(i + kLimbDigits, v.size())));
  while (!limbs.empty() && limbs.back() == 0) limbs.pop_back();
  return limbs;
}

void FromLimbs(const Limbs& limbs, CDigitVector& v) {
  v.resize(std::max<std::size_t>(1, limbs.size() * kLimbDigits));
  v[0] = 0;
  unsigned char* digit = v.data();
  for (std::uint32_t limb : limbs) {
    for (std::size_t k = 0; k < kLimbDigits; ++k, limb /= 10) *digit++ = static_cast<unsigned char>(limb % 10);
  }
  CBigInteger::Clean(v);
}

// Divides by one limb in place and returns the remainder.
std::uint32_t DivideByLimb(Limbs& a, std::uint32_t divisor) {
  std::uint64_t rest = 0;
  for (std::size_t i = a.size(); i-- > 0;) {
    rest = rest * kBase + a[i];
    a[i] = static_cast<std::uint32_t>(rest / divisor);
    rest %= divisor;
  }
  return static_cast<std::uint32_t>(rest);
}

void MultiplyByLimb(Limbs& a, std::uint32_t factor) {
  std::uint64_t carry = 0;
  for (std::uint32_t& limb : a) {
    carry += static_cast<std::uint64_t>(limb) * factor;
    limb = static_cast<std::uint32_t>(carry % kBase);
    carry /= kBase;
  }
  a.push_back(static_cast<std::uint32_t>(carry));
}

// Schoolbook division, one estimated quotient digit at a time (Knuth, TAOCP 4.3.1, algorithm D). `a` becomes the
// remainder; `b` has no zero at its high end and at least two limbs.
Limbs DivideLimbs(Limbs& a, Limbs b) {
  const std::uint32_t scale = kBase / (b.back() + 1);
  MultiplyByLimb(a, scale);
  MultiplyByLimb(b, scale);
  b.pop_back();  // the scaled divisor keeps its length
  const std::size_t n = b.size();
  Limbs quotient(a.size() > n ? a.size() - n : 0);
  for (std::size_t j = quotient.size(); j-- > 0;) {
    const std::uint64_t top = static_cast<std::uint64_t>(a[j + n]) * kBase + a[j + n - 1];
    std::uint64_t digit = top / b[n - 1];
    std::uint64_t rest = top % b[n - 1];
    while (digit >= kBase || digit * b[n - 2] > rest * kBase + a[j + n - 2]) {
      --digit;
      rest += b[n - 1];
      if (rest >= kBase) break;
    }
    std::int64_t borrow = 0;
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < n; ++i) {
      carry += digit * b[i];
      borrow += static_cast<std::int64_t>(a[i + j]) - static_cast<std::int64_t>(carry % kBase);
      carry /= kBase;
      a[i + j] = static_cast<std::uint32_t>(borrow < 0 ? borrow + kBase : borrow);
      borrow = borrow < 0 ? -1 : 0;
    }
    borrow += static_cast<std::int64_t>(a[j + n]) - static_cast<std::int64_t>(carry);
    a[j + n] = static_cast<std::uint32_t>(borrow < 0 ? borrow + kBase : borrow);
    if (borrow < 0) {  // the estimate was one too high: add the divisor back
      --digit;
      std::uint32_t up = 0;
      for (std::size_t i = 0; i < n; ++i) {
        const std::uint32_t sum = a[i + j] + b[i] + up;
        up = sum >= kBase ? 1 : 0;
        a[i + j] = sum - up * kBase;
      }
      a[j + n] = (a[j + n] + up) % kBase;
    }
    quotient[j] = static_cast<std::uint32_t>(digit);
  }
  a.resize(n);
  DivideByLimb(a, scale);
  return quotient;
}

bool IsZeroVector(const CDigitVector& v) {
  return std::all_of(v.begin(), v.end(), [](auto d) { return d == 0; });
}

// The digits at the end of the text; what stands to the left of another character does not count.
void BuildFromEnd(std::wstring_view text, CDigitVector& v) {
  const auto digits = std::find_if_not(text.rbegin(), text.rend(), IsDigit);
  v.clear();
  v.reserve(static_cast<std::size_t>(digits - text.rbegin()));
  for (auto c = text.rbegin(); c != digits; ++c) v.push_back(*c - L'0');
  if (v.empty()) v.push_back(0);
  CBigInteger::Clean(v);
}

[[noreturn]] void ThrowOverflow(const wchar_t* operation) {
  throw CRkInvalidValueException(std::wstring(L"ERROR: Overflow in ") + operation + L".");
}

}  // namespace

CBigInteger::CBigInteger(int value) : CBigInteger(static_cast<long long>(value)) {}
CBigInteger::CBigInteger(unsigned int value) : CBigInteger(static_cast<unsigned long long>(value)) {}
CBigInteger::CBigInteger(long value) : CBigInteger(static_cast<long long>(value)) {}
CBigInteger::CBigInteger(unsigned long value) : CBigInteger(static_cast<unsigned long long>(value)) {}
CBigInteger::CBigInteger(long long value) : m_sign(SignOf(value)) { BuildDWORDLONG(Magnitude(value), m_digits); }
CBigInteger::CBigInteger(unsigned long long value) { BuildDWORDLONG(value, m_digits); }
CBigInteger::CBigInteger(double value) : m_sign(SignOf(value)) { BuildDouble(std::fabs(value), m_digits); }
CBigInteger::CBigInteger(const wchar_t* text) : CBigInteger(std::wstring_view(text == nullptr ? L"" : text)) {}
CBigInteger::CBigInteger(std::wstring_view text) { Parse(text); }
CBigInteger::CBigInteger(const CDecimal& value) {
  CDecimal rounded(value);
  rounded.ChangeFractionalDivider(0);
  *this = rounded.GetIntegerPart();
}
CBigInteger::CBigInteger(std::int32_t sign, CDigitVector digits) : m_sign(SignOf(sign)), m_digits(std::move(digits)) {
  Clean(m_digits);
}
CBigInteger::~CBigInteger() = default;

void CBigInteger::AssignDigits(std::int32_t sign, std::wstring_view digits) {
  m_sign = SignOf(sign);
  while (!digits.empty() && digits.front() == L'0') digits.remove_prefix(1);
  unsigned char* to = m_digits.Overwrite(std::max<std::size_t>(1, digits.size()));
  *to = 0;
  for (std::size_t i = digits.size(); i-- > 0;) *to++ = static_cast<unsigned char>(digits[i] - L'0');
}

void CBigInteger::Parse(std::wstring_view text) {
  const bool plain = std::all_of(text.begin(), text.end(), [](wchar_t c) {
    return IsDigit(c) || c == L' ' || c == L'\t' || c == L'\n' || c == L'\r' || c == L'+' || c == L'-';
  });
  if (!plain) {
    *this = CBigInteger(CDecimal(text));
    return;
  }
  while (!text.empty() && text.front() == L' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == L' ') text.remove_suffix(1);
  if (!text.empty() && text.front() == L'-') {
    m_sign = -1;
    text.remove_prefix(1);
  }
  BuildFromEnd(text, m_digits);
}

CBigInteger::operator int() const {
  if (*this < CBigInteger(std::numeric_limits<int>::min()) || *this > CBigInteger(std::numeric_limits<int>::max()))
    throw CRkInvalidValueException(L"ERROR: Value out of bound of int.");
  return static_cast<int>(static_cast<long long>(*this));
}

CBigInteger::operator long long() const {
  if (*this < CBigInteger(std::numeric_limits<long long>::min()) ||
      *this > CBigInteger(std::numeric_limits<long long>::max()))
    throw CRkInvalidValueException(L"ERROR: Value out of bound of LONGLONG.");
  const auto magnitude = FoldDigits<unsigned long long>(m_digits, 0, m_digits.size());
  return static_cast<long long>(m_sign < 0 ? 0 - magnitude : magnitude);
}

std::wstring CBigInteger::ToString() const {
  std::wstring text;
  AppendTo(text);
  return text;
}

void CBigInteger::AppendTo(std::wstring& out) const {
  wchar_t few[kFewCharacters];
  if (const wchar_t* const first = WriteFew(std::end(few))) {
    out.append(first, static_cast<std::size_t>(std::end(few) - first));
    return;
  }
  out.resize(out.size() + (m_sign < 0 ? 1 : 0) + m_digits.size(), L'-');
  wchar_t* to = out.data() + out.size();
  for (const wchar_t digit : m_digits) *--to = L'0' + digit;
}

const wchar_t* CBigInteger::WriteFew(wchar_t* end) const noexcept {
  if (m_digits.size() >= kFewCharacters) return nullptr;
  if (m_digits.empty()) *--end = L'0';
  for (const wchar_t digit : m_digits) *--end = L'0' + digit;
  if (m_sign < 0 && !IsZero()) *--end = L'-';
  return end;
}

CBigInteger CBigInteger::GetAbs() const {
  CBigInteger result(*this);
  result.Abs();
  return result;
}

CBigInteger CBigInteger::GetNegative() const {
  CBigInteger result(*this);
  result.Negate();
  return result;
}

bool CBigInteger::operator==(const CBigInteger& other) const noexcept {
  if (IsZero() || other.IsZero()) return IsZero() && other.IsZero();
  return m_sign == other.m_sign && m_digits == other.m_digits;
}

bool CBigInteger::operator<(const CBigInteger& other) const noexcept {
  if (m_sign != other.m_sign) return m_sign < other.m_sign;
  const int order = Compare(m_digits, other.m_digits);
  return m_sign < 0 ? order > 0 : order < 0;
}

CBigInteger& CBigInteger::operator+=(const CBigInteger& other) {
  if (m_sign == other.m_sign) {
    Add(m_digits, other.m_digits, m_digits);
  } else if (Compare(m_digits, other.m_digits) >= 0) {
    Subtract(m_digits, other.m_digits, m_digits);
  } else {
    Subtract(other.m_digits, m_digits, m_digits);
    m_sign = other.m_sign;
  }
  return *this;
}

CBigInteger& CBigInteger::operator-=(const CBigInteger& other) { return *this += other.GetNegative(); }

CBigInteger& CBigInteger::operator*=(const CBigInteger& other) {
  const std::int8_t sign = m_sign == other.m_sign ? 1 : -1;
  Multiply(m_digits, other.m_digits, m_digits);
  m_sign = sign;
  return *this;
}

CBigInteger& CBigInteger::operator/=(const CBigInteger& other) {
  if (other.IsZero()) ThrowOverflow(L"operator /=");  // sic
  return *this = *this / other;
}

CBigInteger& CBigInteger::operator%=(const CBigInteger& other) {
  if (other.IsZero()) ThrowOverflow(L"operator%=");
  return *this = *this % other;
}

CBigInteger CBigInteger::operator+(const CBigInteger& other) const { return CBigInteger(*this) += other; }
CBigInteger CBigInteger::operator-(const CBigInteger& other) const { return CBigInteger(*this) -= other; }
CBigInteger CBigInteger::operator*(const CBigInteger& other) const { return CBigInteger(*this) *= other; }

CBigInteger CBigInteger::operator/(const CBigInteger& other) const {
  if (other.IsZero()) ThrowOverflow(L"operator/");
  CDigitVector quotient, remainder;
  Divide(m_digits, other.m_digits, quotient, remainder);
  return CBigInteger(m_sign == other.m_sign ? 1 : -1, std::move(quotient));
}

CBigInteger CBigInteger::operator%(const CBigInteger& other) const {
  if (other.IsZero()) ThrowOverflow(L"operator%");
  CDigitVector quotient, remainder;
  Divide(m_digits, other.m_digits, quotient, remainder);
  return CBigInteger(m_sign, std::move(remainder));
}

CBigInteger CBigInteger::SquareRoot() const {
  if (IsZero()) return CBigInteger(0);
  if (m_sign < 0) throw CRkInvalidValueException(L"ERROR: Negative Number in function SquareRoot().");
  const CBigInteger two(2);
  CBigInteger root = Pow10(static_cast<unsigned>((m_digits.size() + 1) / 2));  // at or above the root
  for (;;) {
    CBigInteger next = (root + *this / root) / two;
    if (!(next < root)) return root;
    root = std::move(next);
  }
}

CBigInteger CBigInteger::Pow10(unsigned n) {
  CBigInteger result;
  Pow10(n, result.m_digits);
  return result;
}

void CBigInteger::Clean(CDigitVector& v) noexcept {
  while (v.size() > 1 && v.back() == 0) v.pop_back();
}

int CBigInteger::Compare(const CDigitVector& a, const CDigitVector& b) noexcept {
  const std::size_t sizeA = static_cast<std::size_t>(Position(a)), sizeB = static_cast<std::size_t>(Position(b));
  if (sizeA != sizeB) return sizeA < sizeB ? -1 : 1;
  for (std::size_t i = sizeA; i-- > 0;) {
    const wchar_t digitA = i < a.size() ? a[i] : L'\0', digitB = i < b.size() ? b[i] : L'\0';
    if (digitA != digitB) return digitA < digitB ? -1 : 1;
  }
  return 0;
}

int CBigInteger::Position(const CDigitVector& v) noexcept { return v.empty() ? 1 : static_cast<int>(v.size()); }

void CBigInteger::Build(const wchar_t* text, CDigitVector& v) { BuildFromEnd(text == nullptr ? L"" : text, v); }

void CBigInteger::Build(unsigned int value, CDigitVector& v) { BuildDWORDLONG(value, v); }

void CBigInteger::BuildDWORDLONG(unsigned long long value, CDigitVector& v) {
  v.clear();
  do {
    v.push_back(static_cast<wchar_t>(value % 10));
    value /= 10;
  } while (value != 0);
}

void CBigInteger::BuildDouble(double value, CDigitVector& v) {
  if (!std::isfinite(value)) throw CRkInvalidValueException(L"The double is not a finite number");
  value = std::fabs(value);
  constexpr double kNoFraction = 4503599627370496.0;  // 2^52: from here on doubles are whole
  if (value < kNoFraction) value = std::ceil(value - 0.5);
  v.clear();
  while (value > 0) {
    v.push_back(static_cast<wchar_t>(std::fmod(value, 10)));
    value = std::trunc(value / 10);
  }
  if (v.empty()) v.push_back(0);
}

void CBigInteger::Add(const CDigitVector& a, const CDigitVector& b, CDigitVector& r) {
  const CDigitVector& longer = a.size() >= b.size() ? a : b;
  const CDigitVector& shorter = a.size() >= b.size() ? b : a;
  CDigitVector sum(longer);
  unsigned carry = 0;
  for (std::size_t i = 0; i < sum.size() && (i < shorter.size() || carry != 0); ++i) {
    const unsigned digit = sum.data()[i] + carry + (i < shorter.size() ? static_cast<unsigned>(shorter[i]) : 0U);
    carry = digit > 9 ? 1 : 0;
    sum[i] = static_cast<unsigned char>(digit - carry * 10);
  }
  if (carry != 0) sum.push_back(1);
  r = std::move(sum);
}

void CBigInteger::Subtract(const CDigitVector& a, const CDigitVector& b, CDigitVector& r) {
  CDigitVector difference(a);
  int borrow = 0;
  for (std::size_t i = 0; i < difference.size() && (i < b.size() || borrow != 0); ++i) {
    const int digit = difference.data()[i] - borrow - (i < b.size() ? static_cast<int>(b[i]) : 0);
    borrow = digit < 0 ? 1 : 0;
    difference[i] = static_cast<unsigned char>(digit + borrow * 10);
  }
  Clean(difference);
  r = std::move(difference);
}

void CBigInteger::Multiply(const CDigitVector& a, wchar_t digit, CDigitVector& r) {
  Multiply(a, CDigitVector(1, digit), r);
}

void CBigInteger::Multiply(const CDigitVector& a, const CDigitVector& b, CDigitVector& r) {
  if (a.size() + b.size() <= kWordDigits) {
    BuildDWORDLONG(FoldDigits<std::uint64_t>(a, 0, a.size()) * FoldDigits<std::uint64_t>(b, 0, b.size()), r);
    return;
  }
  const Limbs x = ToLimbs(a), y = ToLimbs(b);
  Limbs product(x.size() + y.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    std::uint64_t carry = 0;
    for (std::size_t j = 0; j < y.size(); ++j) {
      carry += product[i + j] + static_cast<std::uint64_t>(x[i]) * y[j];
      product[i + j] = static_cast<std::uint32_t>(carry % kBase);
      carry /= kBase;
    }
    product[i + y.size()] = static_cast<std::uint32_t>(carry);
  }
  FromLimbs(product, r);
}

void CBigInteger::ShiftLeft(CDigitVector& v, unsigned n) {
  if (!IsZeroVector(v)) v.insert_zeros(n);
}

void CBigInteger::Pow10(unsigned n, CDigitVector& v) {
  v.clear();
  v.resize(n);
  v.push_back(1);
}

void CBigInteger::Divide(const CDigitVector& a, const CDigitVector& b, CDigitVector& q, CDigitVector& r) {
  if (IsZeroVector(b)) ThrowOverflow(L"operator/");
  if (Compare(a, b) < 0) {
    CDigitVector rest(a);
    q = CDigitVector(1, 0);
    r = std::move(rest);
    return;
  }
  if (a.size() <= kWordDigits) {
    const auto x = FoldDigits<std::uint64_t>(a, 0, a.size()), y = FoldDigits<std::uint64_t>(b, 0, b.size());
    BuildDWORDLONG(x / y, q);
    BuildDWORDLONG(x % y, r);
    return;
  }
  Limbs x = ToLimbs(a), y = ToLimbs(b);
  if (y.size() == 1) {
    const std::uint32_t rest = DivideByLimb(x, y[0]);
    FromLimbs(x, q);
    BuildDWORDLONG(rest, r);
  } else {
    FromLimbs(DivideLimbs(x, std::move(y)), q);
    FromLimbs(x, r);
  }
}

}  // namespace RkXmlLib16

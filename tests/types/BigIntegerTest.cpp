#include "RkXmlLib16/types/BigInteger.h"

#include <limits>
#include <random>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/types/Decimal.h"

using namespace RkXmlTest;

namespace {

__extension__ typedef __int128 Int128;

std::wstring Text(Int128 value) {
  if (value == 0) return L"0";
  const bool negative = value < 0;
  std::wstring text;
  for (; value != 0; value /= 10)
    text.insert(text.begin(), static_cast<wchar_t>(L'0' + (negative ? -(value % 10) : value % 10)));
  return negative ? L"-" + text : text;
}

CBigInteger Big(const std::wstring& text) { return CBigInteger(text.c_str()); }

std::wstring Digits(std::mt19937& random, std::size_t count) {
  std::wstring text(count, L'0');
  for (wchar_t& c : text) c = static_cast<wchar_t>(L'0' + random() % 10);
  text[0] = static_cast<wchar_t>(L'1' + random() % 9);
  return text;
}

}  // namespace

TEST(BigInteger, ParsesLenientlyFromTheRight) {
  const Rows<Wide, Wide> cases = {
      {L" -00120 ", L"-120"}, {L"0", L"0"},      {L"-0", L"0"},   {L"+7", L"7"},  {L"+12", L"12"},  {L"", L"0"},
      {L"   ", L"0"},         {L"1-2", L"2"},  // what stands left of a non-digit does not count
      {L"-1-2", L"-2"},       {L"12\t", L"0"},   {L"--5", L"-5"}, {L"1.9", L"2"}, {L"12.7", L"13"}, {L"12.5", L"12"},
      {L"-12.51", L"-13"},    {L"1e3", L"1000"},
  };
  for (const auto& [text, value] : cases) EXPECT_TEXT(value, Big(text).ToString());
  EXPECT_THROWS(CRkInvalidValueException,
                L"The string representing a Decimal, contained an invalid char at position 2 [12a].", Big(L"12a"));
}

TEST(BigInteger, AgreesWithNativeArithmetic) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 3000; ++i) {
    // Of all magnitudes, so that carries, borrows and short divisors are met.
    const auto pick = [&] { return static_cast<Int128>(static_cast<long long>(random()) >> random() % 63); };
    const Int128 a = pick() * (i % 3 == 0 ? 1000000007LL : 1), b = pick();
    const CBigInteger x = Big(Text(a)), y = Big(Text(b));
    ASSERT_EQ(Text(a + b), (x + y).ToString());
    ASSERT_EQ(Text(a - b), (x - y).ToString());
    if (a < (Int128(1) << 62) && a > -(Int128(1) << 62)) {
      ASSERT_EQ(Text(a * b), (x * y).ToString());
    }
    if (b != 0) {
      ASSERT_EQ(Text(a / b), (x / y).ToString());
      ASSERT_EQ(Text(a % b), (x % y).ToString());
    }
    ASSERT_EQ(a < b, x < y);
    ASSERT_EQ(a == b, x == y);
    ASSERT_EQ(a >= b, x >= y);
  }
}

TEST(BigInteger, LongDivisionIsUndoneByMultiplication) {
  std::mt19937 random(2);
  for (const std::size_t size : {19U, 27U, 28U, 90U, 400U}) {
    for (int i = 0; i < 60; ++i) {
      const CBigInteger a = Big(Digits(random, size)), b = Big(Digits(random, 1 + random() % size));
      const CBigInteger q = a / b, r = a % b;
      ASSERT_TRUE(r < b);
      ASSERT_EQ(a.ToString(), (q * b + r).ToString());
    }
  }
  // Quotient digits whose estimate is one too high.
  const CBigInteger a = Big(L"1" + std::wstring(53, L'0')), b = Big(L"500000000" + std::wstring(17, L'0') + L"1");
  EXPECT_EQ(a.ToString(), (a / b * b + a % b).ToString());
  const std::wstring huge = Digits(random, 20000);
  const CBigInteger n = Big(huge), d = Big(huge.substr(0, 10000));
  EXPECT_EQ(huge, (n / d * d + n % d).ToString());
}

TEST(BigInteger, AZeroDivisorThrowsByOperatorAndChangesNothing) {
  CBigInteger n(7);
  const CBigInteger zero;
  EXPECT_THROWS(CRkInvalidValueException, L"ERROR: Overflow in operator/.", n / zero);
  EXPECT_THROWS(CRkInvalidValueException, L"ERROR: Overflow in operator%.", n % zero);
  EXPECT_THROWS(CRkInvalidValueException, L"ERROR: Overflow in operator /=.", n /= zero);
  EXPECT_THROWS(CRkInvalidValueException, L"ERROR: Overflow in operator%=.", n %= zero);
  CDigitVector q, r;
  EXPECT_THROWS(CRkInvalidValueException, L"ERROR: Overflow in operator/.", CBigInteger::Divide({1}, {0}, q, r));
  EXPECT_TEXT(L"7", n.ToString());
  EXPECT_TEXT(L"-3", (n / CBigInteger(-2)).ToString());
  EXPECT_TEXT(L"-1", (CBigInteger(-7) % CBigInteger(2)).ToString());
}

TEST(BigInteger, TheSignAloneOrdersZerosThoughTheyAreEqualIntended) {
  const CBigInteger minusZero(L"-0"), zero(L"0");
  EXPECT_TRUE(minusZero == zero);
  EXPECT_TRUE(minusZero < zero);
  EXPECT_FALSE(zero < minusZero);
}

TEST(BigInteger, ConvertsToAndFromMachineNumbersToTheirBounds) {
  using Limits = std::numeric_limits<long long>;
  EXPECT_TEXT(L"-9223372036854775808", CBigInteger(Limits::min()).ToString());
  EXPECT_TEXT(L"18446744073709551615", CBigInteger(~0ULL).ToString());
  EXPECT_EQ(Limits::min(), static_cast<long long>(Big(L"-9223372036854775808")));
  EXPECT_EQ(Limits::max(), static_cast<long long>(Big(L"9223372036854775807")));
  EXPECT_THROWS(CRkInvalidValueException, L"ERROR: Value out of bound of LONGLONG.",
                static_cast<long long>(Big(L"9223372036854775808")));
  EXPECT_EQ(std::numeric_limits<int>::min(), static_cast<int>(Big(L"-2147483648")));
  EXPECT_THROWS(CRkInvalidValueException, L"ERROR: Value out of bound of int.", static_cast<int>(Big(L"2147483648")));

  EXPECT_TEXT(L"-2", CBigInteger(-2.4).ToString());
  EXPECT_TEXT(L"2", CBigInteger(2.5).ToString());
  EXPECT_TEXT(L"4503599627370497", CBigInteger(4503599627370497.0).ToString());
  EXPECT_TEXT(L"1" + std::wstring(22, L'0'), CBigInteger(1e22).ToString());
  for (const double value : {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
    EXPECT_THROWS(CRkInvalidValueException, L"The double is not a finite number", CBigInteger(value));
}

TEST(BigInteger, SquareRootRoundsDown) {
  for (long long n = 0; n < 2000; ++n) {
    const long long root = static_cast<long long>(CBigInteger(n).SquareRoot());
    ASSERT_TRUE(root * root <= n && n < (root + 1) * (root + 1)) << n;
  }
  const CBigInteger big = CBigInteger::Pow10(301) + CBigInteger(7);
  const CBigInteger root = big.SquareRoot(), next = root + CBigInteger(1);
  EXPECT_TRUE(root * root <= big && big < next * next);
  EXPECT_THROWS(CRkInvalidValueException, L"ERROR: Negative Number in function SquareRoot().",
                CBigInteger(-1).SquareRoot());
}

// The helpers take their own vectors of digits, least significant first, and standard ones.
template <class Digits>
void CheckHelpers() {
  const auto digits = [](const Digits& v) {
    std::wstring text;
    for (const auto digit : v) text.insert(text.begin(), static_cast<wchar_t>(L'0' + digit));
    return text;
  };
  const Digits twelve = {2, 1}, five = {5};
  Digits v{9, 9, 9}, rest;
  CBigInteger::Add(v, v, v);  // in place
  EXPECT_TEXT(L"1998", digits(v));
  CBigInteger::Subtract(v, five, v);
  EXPECT_TEXT(L"1993", digits(v));
  CBigInteger::Multiply(v, twelve, v);
  EXPECT_TEXT(L"23916", digits(v));
  CBigInteger::Divide(v, twelve, v, rest);
  EXPECT_TEXT(L"1993 0", digits(v) + L" " + digits(rest));
  CBigInteger::ShiftLeft(v, 2);
  EXPECT_TEXT(L"199300", digits(v));
  CBigInteger::Multiply(v, 0, v);
  CBigInteger::ShiftLeft(v, 5);
  EXPECT_TEXT(L"0", digits(v));
  for (const auto& [text, value] : Rows<Wide, Wide>{{L"0120", L"120"}, {L"9x12", L"12"}, {nullptr, L"0"}}) {
    CBigInteger::Build(text, v);
    EXPECT_TEXT(value, digits(v));
  }
  CBigInteger::Build(21u, v);
  EXPECT_TEXT(L"21", digits(v));
  CBigInteger::BuildDWORDLONG(30, v);
  EXPECT_TEXT(L"30", digits(v));
  CBigInteger::BuildDouble(41.2, v);
  EXPECT_TEXT(L"41", digits(v));
  CBigInteger::Pow10(2, v);
  EXPECT_TEXT(L"100", digits(v));
  v = {1, 0, 0};
  CBigInteger::Clean(v);
  EXPECT_TEXT(L"1", digits(v));
  EXPECT_EQ(1, CBigInteger::Compare(twelve, five));
  EXPECT_EQ(0, CBigInteger::Compare(Digits(), Digits{0}));
  EXPECT_EQ(2, CBigInteger::Position(twelve));
  EXPECT_EQ(1, CBigInteger::Position(Digits()));
}

TEST(BigInteger, HelpersWorkOnVectorsOfDigits) {
  CheckHelpers<CDigitVector>();
  CheckHelpers<std::vector<wchar_t>>();
}

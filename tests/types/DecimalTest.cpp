#include "RkXmlLib16/types/Decimal.h"

#include <limits>
#include <random>

#include "Expect.h"

using namespace RkXmlTest;

namespace {

std::wstring Parsed(const std::wstring& text) { return CDecimal(text.c_str()).ToString(); }

CDecimal Dec(const wchar_t* text) { return CDecimal(text); }

}  // namespace

TEST(Decimal, ParsesAndPrintsWithoutTrailingZeros) {
  const std::wstring digits30 = L"123456789012345678901234567890";
  const Rows<std::wstring, std::wstring> cases = {
      {L"1.50", L"1.5"},
      {L"0.05", L"0.05"},
      {L"-0.5", L"-0.5"},
      {L"-0", L"0"},
      {L"", L"0"},
      {L"007.100", L"7.1"},
      {L".5", L"0.5"},
      {L"5.", L"5"},
      {L" 1 2 . 5 ", L"12.5"},
      {L"1-2", L"-12"},
      {L"-1+2", L"12"},  // the last sign among the integer digits wins
      {L"1e3", L"1000"},
      {L"1.25e1", L"12.5"},
      {L"12.5E-3", L"0.0125"},
      {L"1e +-2", L"0.01"},
      {L"1e-30", L"0." + std::wstring(29, L'0') + L"1"},
      {L"1e-31", L"0"},
      {L"9e-31", L"0"},  // truncated
      {L"0e999999999", L"0"},
      {L"1e10000", L"1" + std::wstring(10000, L'0')},
      {L"0." + digits30 + L"5", L"0." + digits30.substr(0, 29)},  // exactly one half goes toward zero
      {L"0." + digits30 + L"51", L"0." + digits30.substr(0, 29) + L"1"},
      {L"-0." + std::wstring(30, L'9') + L"6", L"-1"},
      {L"9." + std::wstring(31, L'9'), L"10"},
  };
  for (const auto& [text, value] : cases) EXPECT_TEXT(value, Parsed(text)) << Narrow(text);
  const std::wstring longText(2000, L'7');
  EXPECT_TEXT(longText, Parsed(longText));
}

TEST(Decimal, ReportsTheFirstForeignCharacterWithItsPosition) {
  const Rows<Wide, int> cases = {{L"12a", 2},   {L"1.2-", 3}, {L"1.2.3", 3}, {L"1e5x", 3},
                                 {L"1e5 6", 4}, {L"1e.5", 2}, {L"x", 0}};
  for (const auto& [text, position] : cases)
    EXPECT_THROWS(CRkInvalidValueException,
                  L"The string representing a Decimal, contained an invalid char at position " +
                      std::to_wstring(position) + L" [" + text + L"].",
                  CDecimal(text));
  EXPECT_THROWS(CRkInvalidValueException,
                L"The exponent of the Decimal [1e99999999999999999999] is to large, the largest is 10000.",
                CDecimal(L"1e99999999999999999999"));
}

TEST(Decimal, KeepsBothPartsWithOneSignAndTheShortestDivider) {
  const CDecimal value(L"-0.50");
  EXPECT_EQ(-1, value.GetIntegerPart().GetSign());
  EXPECT_TEXT(L"-5", value.GetFractionPart().ToString());
  EXPECT_EQ(1, value.GetFractionalDivider());
  EXPECT_EQ(1, CDecimal(7).GetFractionalDivider());
  EXPECT_TEXT(L"0.5", CDecimal(CBigInteger(1), CBigInteger(-5), 1).ToString());
  EXPECT_TEXT(L"3.5", CDecimal(CBigInteger(1), CBigInteger(250), 2).ToString());
  EXPECT_TEXT(L"-0.05", CDecimal(CBigInteger(0), CBigInteger(-5), 2).ToString());
}

TEST(Decimal, AgreesWithIntegersScaledByHand) {
  std::mt19937_64 random(3);
  const auto pick = [&](long long& thousandths) {
    thousandths = static_cast<long long>(random() % 2000001) - 1000000;
    const long long magnitude = thousandths < 0 ? -thousandths : thousandths;
    std::wstring fraction = std::to_wstring(1000 + magnitude % 1000).substr(1);
    return CDecimal(((thousandths < 0 ? L"-" : L"") + std::to_wstring(magnitude / 1000) + L"." + fraction).c_str());
  };
  for (int i = 0; i < 2000; ++i) {
    long long a = 0, b = 0;
    const CDecimal x = pick(a), y = pick(b);
    const CDecimal thousand(1000);
    ASSERT_EQ(a + b, ((x + y) * thousand).ToLongLong());
    ASSERT_EQ(a - b, ((x - y) * thousand).ToLongLong());
    ASSERT_EQ(a * b, (x * y * CDecimal(1000000)).ToLongLong());
    if (b != 0) {
      ASSERT_EQ(a / b, (x / y).ToLongLong());
    }
    ASSERT_EQ(a < b, x < y);
    ASSERT_EQ(a <= b, x <= y);
    ASSERT_EQ(a == b, x == y);
    ASSERT_EQ(x.ToString(), Parsed(x.ToString()));
  }
}

TEST(Decimal, ArithmeticKeepsThirtyDigits) {
  EXPECT_TEXT(L"0." + std::wstring(30, L'3'), (Dec(L"1") / Dec(L"3")).ToString());
  EXPECT_TEXT(L"-0." + std::wstring(30, L'6'), (Dec(L"-2") / Dec(L"3")).ToString());  // truncated
  EXPECT_TEXT(L"0", (Dec(L"1e-20") * Dec(L"1e-20")).ToString());
  EXPECT_TEXT(L"2.5", (Dec(L"1.25") * Dec(L"2")).ToString());
  EXPECT_TEXT(L"0", (Dec(L"0.1") - Dec(L"0.1")).ToString());
  CDecimal n(L"-0.5");
  EXPECT_TEXT(L"-0.5", (n++).ToString());
  EXPECT_TEXT(L"0.5", n.ToString());
  EXPECT_TEXT(L"-0.5", (--n).ToString());
  EXPECT_THROWS(CRkInvalidValueException, L"ERROR: Overflow in operator/.", n / CDecimal(0));
}

TEST(Decimal, RescalingRoundsHalfTowardZeroAndCarries) {
  const Rows<Wide, int, Wide> cases = {{L"2.5", 0, L"2"},         {L"2.51", 0, L"3"},      {L"-2.51", 0, L"-3"},
                                       {L"1.5", 3, L"1.500"},     {L"0.995", 2, L"0.99"},  {L"0.996", 2, L"1.00"},
                                       {L"-9.999", 2, L"-10.00"}, {L"-0.001", 2, L"0.00"}, {L"12", 2, L"12.00"},
                                       {L"0.04999", 1, L"0.0"}};
  for (const auto& [text, digits, expected] : cases) EXPECT_TEXT(expected, CDecimal(text).ToString(digits)) << digits;
  EXPECT_TEXT(L"2", Dec(L"2.5").ToBigInteger().ToString());
  EXPECT_TEXT(L"3", Dec(L"2.51").ToBigInteger().ToString());
  CDecimal a(L"1.5"), b(L"2.125");
  CDecimal::Normalize(a, b);
  EXPECT_EQ(3, a.GetFractionalDivider());
  EXPECT_TEXT(L"500", a.GetFractionPart().ToString());
}

TEST(Decimal, ZerosOfBothSignsAreOneValue) {
  EXPECT_TRUE(Dec(L"-0.0") == Dec(L"0"));
  EXPECT_FALSE(Dec(L"-0.0") < Dec(L"0"));
  EXPECT_TRUE(Dec(L"-0.5") < Dec(L"0.5"));
  EXPECT_TRUE(Dec(L"1.10") == Dec(L"1.1"));
}

TEST(Decimal, ConvertsToAndFromMachineNumbers) {
  EXPECT_EQ(0.1, Dec(L"0.1").ToDouble());
  EXPECT_EQ(0, CDecimal(CBigInteger(0), CBigInteger(-1), 400).ToDouble());  // too small is not too large
  EXPECT_EQ(-2, Dec(L"-2.9").ToLong());
  EXPECT_EQ(std::numeric_limits<long long>::min(), Dec(L"-9223372036854775808").ToLongLong());
  EXPECT_THROWS(CRkOverFlowException, L"The Decimal value if to large to fit into a Double", Dec(L"1e309").ToDouble());
  EXPECT_THROWS(CRkOverFlowException, L"The Decimal value if to large to fit into a LONGLONG",
                Dec(L"9223372036854775808").ToLongLong());
  EXPECT_THROWS(CRkOverFlowException, L"The Decimal value if to large to fit into a LONG", Dec(L"1e20").ToLong());
  EXPECT_TEXT(L"0.1", CDecimal(0.1).ToString());
  EXPECT_TEXT(L"9.699999999999999", CDecimal(9.7).ToString());  // sixteen digits
  EXPECT_TEXT(L"-1" + std::wstring(300, L'0'), CDecimal(-1e300).ToString());
  EXPECT_TEXT(L"0", CDecimal(5e-324).ToString());
  EXPECT_THROWS(CRkInvalidValueException, L"The double is not a finite number",
                CDecimal(std::numeric_limits<double>::infinity()));
}

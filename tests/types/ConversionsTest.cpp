#include "RkXmlLib16/types/Conversions.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "Expect.h"

using namespace RkXmlTest;

namespace {

constexpr auto kNone = CWhitespaceUtils::none;
constexpr auto kCollapse = CWhitespaceUtils::collapse;

std::wstring NotA(const std::wstring& text, const std::wstring& type) {
  return L"The value [" + text + L"] can not be converted to a " + type;
}

// Each text reads to what prints so, or fails: "no i4" and "over i4" stand for the messages of numbers.
template <class FromString, class ToString>
void ExpectRows(FromString fromString, ToString toString, const Rows<Wide, std::wstring>& rows,
                CWhitespaceUtils::WhitespaceRule rule = kNone) {
  for (const auto& [text, outcome] : rows) {
    std::wstring expected = outcome, actual;
    if (outcome.compare(0, 3, L"no ") == 0) expected = NotA(text, outcome.substr(3));
    if (outcome.compare(0, 5, L"over ") == 0)
      expected = std::wstring(L"The value [") + text + L"] is to large to fit in a " + outcome.substr(5);
    try {
      actual = toString(fromString(text, rule));
    } catch (const CRkInvalidValueException& e) {
      actual = e.GetMessage();
    }
    EXPECT_TEXT(expected, actual) << Narrow(text);
  }
}

}  // namespace

TEST(Conversions, NarrowIntegersReportTheMessagesOfTheI4Parser) {
  using C = CConversions;
  ExpectRows(C::i1FromString, C::i1ToString,
             {{L"127", L"127"}, {L"-128", L"-128"}, {L"128", L"over i1"}, {L"12x", L"no i4"}, {L"", L"no i4"}});
  ExpectRows(C::i2FromString, C::i2ToString, {{L"-32768", L"-32768"}, {L"32768", L"over i2"}});
  ExpectRows(C::ui1FromString, C::ui1ToString, {{L"255", L"255"}, {L"256", L"over ui1"}, {L"-1", L"over ui1"}});
  ExpectRows(C::ui2FromString, C::ui2ToString, {{L"65535", L"65535"}, {L"-0", L"0"}, {L"65536", L"over ui2"}});
}

TEST(Conversions, WideIntegersReadAsTheCLibraryDoes) {
  using C = CConversions;
  ExpectRows(C::i4FromString, C::i4ToString,
             {{L"3000000000", L"3000000000"},
              {L"\t\v -9223372036854775808", L"-9223372036854775808"},
              {L"9223372036854775808", L"over i4"},
              {L"99999999999999999999x", L"over i4"},
              {L"1 ", L"no i4"},
              {L"+-1", L"no i4"},
              {L"0x10", L"no i4"},
              {L"\x0661", L"no i4"}});
  ExpectRows(C::i4FromString, C::i4ToString, {{L"   ", NotA(L"", L"i4")}, {L" 7 ", L"7"}}, kCollapse);
  ExpectRows(C::i8FromString, C::i8ToString,
             {{L"-9223372036854775809", L"over i8"}, {L"9223372036854775807", L"9223372036854775807"}});
  ExpectRows(C::ui4FromString, C::ui4ToString,
             {{L"-1", L"18446744073709551615"}, {L"18446744073709551616", L"over ui4"}, {L"a", L"no ui4"}});
  ExpectRows(C::ui8FromString, C::ui8ToString,
             {{L"-18446744073709551615", L"1"}, {L"-18446744073709551616", L"over ui8"}});
}

// The program also runs under locales with other numbers and casing rules.
TEST(Conversions, FloatingNumbersReadAsTheCLibraryDoes) {
  using C = CConversions;
  const auto print = [](double value) { return C::r8ToString(value); };
  ExpectRows(
      C::r8FromString, print,
      {{L"INF", L"INF"},        {L"-INF", L"-INF"},    {L"NaN", L"NaN"},    {L"1.#QNAN", L"NaN"},   {L"inf", L"INF"},
       {L"-infinity", L"-INF"}, {L"INFINITY", L"INF"}, {L"nan(7)", L"NaN"}, {L" \n+1.5e2", L"150"}, {L"0x1.8p1", L"3"},
       {L"1e999", L"INF"},      {L"1e-999", L"0"},     {L".5", L"0.5"},     {L"-0", L"-0"},         {L"+-1", L"no r8"},
       {L"1,5", L"no r8"},      {L"", L"no r8"},       {L"1e", L"no r8"},   {L" ", L"no r8"},       {L"+", L"no r8"}});
  EXPECT_THROWS(CRkInvalidValueException, NotA(L"x", L"r4"), C::r4FromString(L"x", kNone));
  const std::wstring zeros(500, L'0');
  EXPECT_EQ(1.25, C::r8FromString(zeros + L"1.25" + zeros, kNone));
  EXPECT_EQ(16777216.0F, C::r4FromString(L"16777217", kNone));
}

TEST(Conversions, FloatingNumbersPrintAsPrintfDoes) {
  EXPECT_TEXT(L"0.1", CConversions::r4ToString(0.1F));
  EXPECT_TEXT(L"3.402823e+38", CConversions::r4ToString(std::numeric_limits<float>::max()));
  EXPECT_TEXT(L"-INF", CConversions::r4ToString(-std::numeric_limits<float>::infinity()));
  EXPECT_TEXT(L"1.797693134862316e+308", CConversions::r8ToString(std::numeric_limits<double>::max()));
  EXPECT_TEXT(L"2.50", CConversions::r8ToString(2.5, L"%.2f"));
  EXPECT_TEXT(L"2.50", CConversions::r8ToString(2.5, L"%.2lf"));
  EXPECT_TEXT(L"50%", CConversions::r8ToString(2.5, L"50%%"));
  EXPECT_TEXT(L"100% of +2.5", CConversions::r4ToString(2.5F, L"100%% of %+g"));
  EXPECT_EQ(101U, CConversions::r8ToString(1e100, L"%.0f").size());  // never cut
  EXPECT_TEXT(L"NaN", CConversions::r8ToString(std::nan(""), L"%.2f"));
  // What is not a format for one double does not reach the C library.
  for (const wchar_t* format : {L"%d", L"%s", L"%n", L"%*f", L"%f %f", L"%", L"%Lf"})
    EXPECT_TEXT(L"2.5", CConversions::r8ToString(2.5, format));
}

TEST(Conversions, BooleansAndCharacters) {
  using C = CConversions;
  const auto boolean = [](const wchar_t* text) {
    return std::wstring(L"A Boolean Value read from an XML document was invalid [") + text +
           L"]. Valid values are 'true', 'false', '1', or '0'";
  };
  ExpectRows(C::booleanFromString, C::booleanToString,
             {{L"true", L"true"},
              {L"1", L"true"},
              {L"FALSE", L"false"},
              {L"0", L"false"},
              {L" TRUE ", boolean(L" TRUE ")},
              {L"yes", boolean(L"yes")},
              {L"", boolean(L"")}});
  ExpectRows(C::booleanFromString, C::booleanToString, {{L" TRUE ", L"true"}}, kCollapse);
  const auto character = [](const wchar_t* text) {
    return std::wstring(L"The value [") + text +
           L"] can not be a char as it is either empty of greater than 1 char long";
  };
  ExpectRows(C::charFromString, C::charToString,
             {{L"x", L"x"},
              {L" ", L" "},
              {L"\U0001F600", L"\U0001F600"},
              {L"\xD83D\xDE00", L"\U0001F600"},  // as it comes from XML text
              {L"\xDE00\xD83D", character(L"\xDE00\xD83D")},
              {L"", character(L"")},
              {L"ab", character(L"ab")}});
  EXPECT_TEXT(L"a b", C::stringFromString(L" a  b ", kCollapse));
}

TEST(Conversions, DatesAreOfTheKindThatIsRead) {
  using C = CConversions;
  const auto kind = [](const wchar_t* is, const wchar_t* expected) {
    return std::wstring(L"Failed to copy CDateTime. Invalid Date Type: ") + is + L", expected: " + expected + L".";
  };
  ExpectRows(
      C::yearFromString, C::yearToString,
      {{L"0999", L"999"}, {L"2024Z", L"2024"}, {L"2024-05", kind(L"gYearMonth", L"gYear")}, {L"-0044", L"over ui2"}});
  ExpectRows(C::monthFromString, C::monthToString, {{L"--05", L"--05"}, {L"---05", kind(L"gDay", L"gMonth")}});
  ExpectRows(C::dayFromString, C::dayToString, {{L"---07", L"---07"}, {L"---45", L"---45"}});
  ExpectRows(C::dateFromString, C::dateToString,
             {{L"2024-02-29Z", L"2024-02-29Z"}, {L"2024", kind(L"gYear", L"date")}});
  ExpectRows(C::yearMonthFromString, C::yearMonthToString,
             {{L"2024-02", L"2024-02"}, {L"--02", kind(L"gMonth", L"gYearMonth")}});
  ExpectRows(C::monthDayFromString, C::monthDayToString,
             {{L"--02-29", L"--02-29"}, {L"2024-02-29", kind(L"date", L"gMonthDay")}});
}

// Most take a fast path; the C++ library tells what "%.16g" and "%.7g" make of them.
TEST(Conversions, RealsPrintTheDigitsOfTheirPrecision) {
  const auto expected = [](double value, int precision) {
    char buffer[40];
    const auto end = std::to_chars(buffer, std::end(buffer), value, std::chars_format::general, precision).ptr;
    return std::wstring(buffer, end);
  };
  std::mt19937_64 random(16);
  std::vector<double> values = {0.0,       -0.0,      1e-4,     9.9999999999999991e-5, 0.00099999999999999995, 8.2,
                                1e15,      1e16,      1e-5,     9999999999999998.0,    999999999999999.94,     0.5,
                                9999999,   1e7,       5e-324,   4503599627370496.5,    9007199254740993.0,     0.1,
                                9999999.5, 999999.95, 99999.995};
  for (int i = 0; i < 20000; ++i) {
    const double digits = static_cast<double>(random() >> random() % 64);
    values.push_back(std::ldexp(digits, -static_cast<int>(random() % 80)));  // among them halves of the last digit
    values.push_back(digits / std::pow(10.0, static_cast<double>(random() % 24)));
    const std::uint64_t bits = random();
    double any = 0;
    std::memcpy(&any, &bits, sizeof any);
    if (std::isfinite(any)) values.push_back(any);
    values.push_back(std::nextafter(std::pow(10.0, static_cast<double>(i % 22) - 5), i % 2 == 0 ? 0.0 : 1e30));
  }
  for (const double value : values) {
    for (const double signedValue : {value, -value}) {
      ASSERT_EQ(expected(signedValue, 16), CConversions::r8ToString(signedValue));
      if (std::fabs(signedValue) > 3e38) continue;
      const float narrow = static_cast<float>(signedValue);
      ASSERT_EQ(expected(static_cast<double>(narrow), 7), CConversions::r4ToString(narrow));
    }
  }
}

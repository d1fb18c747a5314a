#include "RkXmlLib16/types/Conversions.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

#include "Expect.h"

using namespace RkXmlTest;

namespace {

constexpr auto kNone = CWhitespaceUtils::none;
constexpr auto kCollapse = CWhitespaceUtils::collapse;

// One row: what the text reads to, printed, or the message.
struct Row {
  const wchar_t* text;
  const wchar_t* printed;  // null: the message is thrown
  std::wstring message;
};

template <class FromString, class ToString>
void ExpectRows(FromString fromString, ToString toString, std::initializer_list<Row> rows,
                CWhitespaceUtils::WhitespaceRule rule = kNone) {
  for (const Row& row : rows) {
    if (row.printed == nullptr)
      EXPECT_RK_THROWS(CRkInvalidValueException, row.message, fromString(row.text, rule));
    else
      EXPECT_WIDE_EQ(row.printed, toString(fromString(row.text, rule))) << Narrow(row.text);
  }
}

std::wstring NotA(const wchar_t* text, const wchar_t* type) {
  return std::wstring(L"The value [") + text + L"] can not be converted to a " + type;
}
std::wstring TooLarge(const wchar_t* text, const wchar_t* type) {
  return std::wstring(L"The value [") + text + L"] is to large to fit in a " + type;
}

}  // namespace

TEST(Conversions, NarrowIntegersSpeakThroughTheI4Parser) {
  using C = CConversions;
  ExpectRows(C::i1FromString, C::i1ToString,
             {{L"127", L"127", L""},
              {L"-128", L"-128", L""},
              {L"128", nullptr, TooLarge(L"128", L"i1")},
              {L"12x", nullptr, NotA(L"12x", L"i4")},
              {L"", nullptr, NotA(L"", L"i4")}});
  ExpectRows(C::i2FromString, C::i2ToString,
             {{L"-32768", L"-32768", L""}, {L"32768", nullptr, TooLarge(L"32768", L"i2")}});
  ExpectRows(
      C::ui1FromString, C::ui1ToString,
      {{L"255", L"255", L""}, {L"256", nullptr, TooLarge(L"256", L"ui1")}, {L"-1", nullptr, TooLarge(L"-1", L"ui1")}});
  ExpectRows(C::ui2FromString, C::ui2ToString,
             {{L"65535", L"65535", L""}, {L"-0", L"0", L""}, {L"65536", nullptr, TooLarge(L"65536", L"ui2")}});
}

TEST(Conversions, WideIntegersReadAsTheCLibraryDoes) {
  using C = CConversions;
  ExpectRows(C::i4FromString, C::i4ToString,
             {{L"3000000000", L"3000000000", L""},
              {L"\t\v -9223372036854775808", L"-9223372036854775808", L""},
              {L"9223372036854775808", nullptr, TooLarge(L"9223372036854775808", L"i4")},
              {L"99999999999999999999x", nullptr, TooLarge(L"99999999999999999999x", L"i4")},
              {L"1 ", nullptr, NotA(L"1 ", L"i4")},
              {L"+-1", nullptr, NotA(L"+-1", L"i4")},
              {L"0x10", nullptr, NotA(L"0x10", L"i4")},
              {L"\x0661", nullptr, NotA(L"\x0661", L"i4")}});
  ExpectRows(C::i4FromString, C::i4ToString, {{L"   ", nullptr, NotA(L"", L"i4")}, {L" 7 ", L"7", L""}}, kCollapse);
  ExpectRows(C::i8FromString, C::i8ToString,
             {{L"-9223372036854775809", nullptr, TooLarge(L"-9223372036854775809", L"i8")},
              {L"9223372036854775807", L"9223372036854775807", L""}});
  ExpectRows(C::ui4FromString, C::ui4ToString,
             {{L"-1", L"18446744073709551615", L""},
              {L"18446744073709551616", nullptr, TooLarge(L"18446744073709551616", L"ui4")},
              {L"a", nullptr, NotA(L"a", L"ui4")}});
  ExpectRows(C::ui8FromString, C::ui8ToString,
             {{L"-18446744073709551615", L"1", L""},
              {L"-18446744073709551616", nullptr, TooLarge(L"-18446744073709551616", L"ui8")}});
}

// The program also runs under locales with other numbers and casing rules.
TEST(Conversions, FloatingNumbersReadAsTheCLibraryDoes) {
  using C = CConversions;
  const auto print = [](double value) { return C::r8ToString(value); };
  ExpectRows(C::r8FromString, print,
             {{L"INF", L"INF", L""},
              {L"-INF", L"-INF", L""},
              {L"NaN", L"NaN", L""},
              {L"1.#QNAN", L"NaN", L""},
              {L"inf", L"INF", L""},
              {L"-infinity", L"-INF", L""},
              {L"INFINITY", L"INF", L""},
              {L"nan(7)", L"NaN", L""},
              {L" \n+1.5e2", L"150", L""},
              {L"0x1.8p1", L"3", L""},
              {L"1e999", L"INF", L""},
              {L"1e-999", L"0", L""},
              {L".5", L"0.5", L""},
              {L"-0", L"-0", L""},
              {L"+-1", nullptr, NotA(L"+-1", L"r8")},
              {L"1,5", nullptr, NotA(L"1,5", L"r8")},
              {L"", nullptr, NotA(L"", L"r8")},
              {L"1e", nullptr, NotA(L"1e", L"r8")},
              {L" ", nullptr, NotA(L" ", L"r8")},
              {L"+", nullptr, NotA(L"+", L"r8")}});
  EXPECT_RK_THROWS(CRkInvalidValueException, NotA(L"x", L"r4"), C::r4FromString(L"x", kNone));
  const std::wstring zeros(500, L'0');
  EXPECT_EQ(1.25, C::r8FromString(zeros + L"1.25" + zeros, kNone));
  EXPECT_EQ(16777216.0F, C::r4FromString(L"16777217", kNone));
}

TEST(Conversions, FloatingNumbersPrintAsPrintfDoes) {
  EXPECT_WIDE_EQ(L"0.1", CConversions::r4ToString(0.1F));
  EXPECT_WIDE_EQ(L"3.402823e+38", CConversions::r4ToString(std::numeric_limits<float>::max()));
  EXPECT_WIDE_EQ(L"-INF", CConversions::r4ToString(-std::numeric_limits<float>::infinity()));
  EXPECT_WIDE_EQ(L"1.797693134862316e+308", CConversions::r8ToString(std::numeric_limits<double>::max()));
  EXPECT_WIDE_EQ(L"2.50", CConversions::r8ToString(2.5, L"%.2f"));
  EXPECT_WIDE_EQ(L"50%", CConversions::r8ToString(2.5, L"50%%"));
  EXPECT_WIDE_EQ(L"100% of +2.5", CConversions::r4ToString(2.5F, L"100%% of %+g"));
  EXPECT_EQ(101U, CConversions::r8ToString(1e100, L"%.0f").size());  // never cut
  EXPECT_WIDE_EQ(L"NaN", CConversions::r8ToString(std::nan(""), L"%.2f"));
  // What is not a format for one double does not reach the C library.
  for (const wchar_t* format : {L"%d", L"%s", L"%n", L"%*f", L"%f %f", L"%", L"%Lf"})
    EXPECT_WIDE_EQ(L"2.5", CConversions::r8ToString(2.5, format));
  std::mt19937_64 random(5);
  for (int i = 0; i < 20000; ++i) {
    const std::uint64_t bits = random();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    if (i % 2 == 0) value = static_cast<double>(random() % 2000000) / 1000.0;
    if (!std::isfinite(value)) continue;
    char expected[64] = {};
    snprintf(expected, sizeof expected, "%.16g", value);
    std::replace(expected, expected + sizeof expected, ',', '.');  // the locale's, which the library does not follow
    ASSERT_EQ(expected, Narrow(CConversions::r8ToString(value)));
    snprintf(expected, sizeof expected, "%.7g", static_cast<double>(static_cast<float>(i)));
    ASSERT_EQ(expected, Narrow(CConversions::r4ToString(static_cast<float>(i))));
  }
}

TEST(Conversions, BooleansAndCharacters) {
  using C = CConversions;
  const auto boolean = [](const wchar_t* text) {
    return std::wstring(L"A Boolean Value read from an XML document was invalid [") + text +
           L"]. Valid values are 'true', 'false', '1', or '0'";
  };
  ExpectRows(C::booleanFromString, C::booleanToString,
             {{L"true", L"true", L""},
              {L"1", L"true", L""},
              {L"FALSE", L"false", L""},
              {L"0", L"false", L""},
              {L" TRUE ", nullptr, boolean(L" TRUE ")},
              {L"yes", nullptr, boolean(L"yes")},
              {L"", nullptr, boolean(L"")}});
  ExpectRows(C::booleanFromString, C::booleanToString, {{L" TRUE ", L"true", L""}}, kCollapse);
  const auto character = [](const wchar_t* text) {
    return std::wstring(L"The value [") + text +
           L"] can not be a char as it is either empty of greater than 1 char long";
  };
  ExpectRows(C::charFromString, C::charToString,
             {{L"x", L"x", L""},
              {L" ", L" ", L""},
              {L"\U0001F600", L"\U0001F600", L""},
              {L"\xD83D\xDE00", L"\U0001F600", L""},  // as it comes from XML text
              {L"\xDE00\xD83D", nullptr, character(L"\xDE00\xD83D")},
              {L"", nullptr, character(L"")},
              {L"ab", nullptr, character(L"ab")}});
  EXPECT_WIDE_EQ(L"a b", C::stringFromString(L" a  b ", kCollapse));
}

TEST(Conversions, DatesAreOfTheKindThatIsRead) {
  using C = CConversions;
  const auto kind = [](const wchar_t* is, const wchar_t* expected) {
    return std::wstring(L"Failed to copy CDateTime. Invalid Date Type: ") + is + L", expected: " + expected + L".";
  };
  ExpectRows(C::yearFromString, C::yearToString,
             {{L"0999", L"999", L""},
              {L"2024Z", L"2024", L""},
              {L"2024-05", nullptr, kind(L"gYearMonth", L"gYear")},
              {L"-0044", nullptr, TooLarge(L"-0044", L"ui2")}});
  ExpectRows(C::monthFromString, C::monthToString,
             {{L"--05", L"--05", L""}, {L"---05", nullptr, kind(L"gDay", L"gMonth")}});
  ExpectRows(C::dayFromString, C::dayToString, {{L"---07", L"---07", L""}, {L"---45", L"---45", L""}});
  ExpectRows(C::dateFromString, C::dateToString,
             {{L"2024-02-29Z", L"2024-02-29Z", L""}, {L"2024", nullptr, kind(L"gYear", L"date")}});
  ExpectRows(C::yearMonthFromString, C::yearMonthToString,
             {{L"2024-02", L"2024-02", L""}, {L"--02", nullptr, kind(L"gMonth", L"gYearMonth")}});
  ExpectRows(C::monthDayFromString, C::monthDayToString,
             {{L"--02-29", L"--02-29", L""}, {L"2024-02-29", nullptr, kind(L"date", L"gMonthDay")}});
}

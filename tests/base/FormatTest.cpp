#include "RkXmlLib16/base/Format.h"

#include <climits>

#include "Expect.h"
#include "support/HostLocale.h"

using namespace RkXmlTest;

TEST(Format, FormatsTextNumbersAndTheSixtyFourBitPrefix) {
  EXPECT_TEXT(L"Invalid Element [a\u00E9\U0001F600] found.",
              FormatString(L"Invalid Element [%ls] found.", L"a\u00E9\U0001F600"));
  EXPECT_TEXT(L"-9223372036854775808|18446744073709551615|100%|ffffffffffffffff",
              FormatString(L"%I64d|%I64u|%d%%|%I64x", LLONG_MIN, ULLONG_MAX, 100, ULLONG_MAX));
  EXPECT_TEXT(L"[   ab][ab   ][00042][+7][ 3.50]",
              FormatString(L"[%5ls][%-*.2ls][%05d][%+d][%5.2f]", L"ab", 5, L"abc", 42, 7, 3.5));
  EXPECT_TEXT(L"I64 100%", FormatString(L"I64 %d%%", 100));
  EXPECT_TEXT(L"Error [2]", FormatString(L"Error [%n]", 2));
  EXPECT_TEXT(L"[-3][4]", FormatString(L"[%ln][%I64n]", -3L, 4LL));
  EXPECT_TEXT(L"", FormatString(L""));
}

TEST(Format, NeverCutsALongText) {
  const std::wstring value(1'000'000, L'x');
  EXPECT_EQ(L"[" + value + L"]", FormatString(L"[%ls]", value.c_str()));
  EXPECT_EQ(500'002u, FormatString(L"[%500000d]", 1).size());
}

TEST(Format, PrintsAnyCharacterAsItselfInAnyLocale) {
  for (const char* name : {"C", "C.UTF-8", "de_DE.UTF-8"}) {
    const HostLocale locale(name);
    const wchar_t loneSurrogate[] = {0xD83D, L'!', 0x110000, 0};
    EXPECT_TEXT(std::wstring(L"[\u00E9][\U0001F600][") + loneSurrogate[0] + L"][" + loneSurrogate + L"]",
                FormatString(L"[%c][%c][%c][%ls]", L'\u00E9', L'\U0001F600', loneSurrogate[0], loneSurrogate));
  }
}

TEST(Format, NumbersDoNotFollowTheHostsLocale) {
  const HostLocale locale("de_DE.UTF-8");
  if (!locale.IsSet()) GTEST_SKIP() << "de_DE.UTF-8 is not installed";
  EXPECT_TEXT(L"1.5 1000000", FormatString(L"%g %d", 1.5, 1000000));
  EXPECT_STREQ("de_DE.UTF-8", std::setlocale(LC_NUMERIC, nullptr));
}

TEST(Format, WritesTheFractionOfASecond) {
  const Rows<unsigned short, unsigned short, unsigned short, Wide> kCases = {{0, 0, 0, L""},
                                                                             {500, 0, 0, L".5"},
                                                                             {1, 0, 0, L".001"},
                                                                             {0, 250, 0, L".00025"},
                                                                             {120, 0, 0, L".12"},
                                                                             {0, 0, 1, L".000000001"},
                                                                             {120, 0, 50, L".12000005"},
                                                                             {100, 200, 0, L".1002"},
                                                                             {123, 456, 789, L".123456789"}};
  for (const auto& [milli, micro, nano, text] : kCases) EXPECT_TEXT(text, ToFracString(milli, micro, nano));
}

TEST(Format, FindReplaceDoesNotRescanWhatItPutIn) {
  std::wstring wide = L"a.b.c";
  FindReplace(wide, L".", L"..");
  EXPECT_TEXT(L"a..b..c", wide);
  FindReplace(wide, L"", L"x");
  EXPECT_TEXT(L"a..b..c", wide);
  std::string narrow = "aaa";
  FindReplace(narrow, "aa", "");
  EXPECT_EQ("a", narrow);
}

TEST(Format, PadsWithZeros) {
  EXPECT_TEXT(L"007", PadZero(7, 3));
  EXPECT_TEXT(L"1234", PadZero(1234, 3));
  EXPECT_TEXT(L"-07", PadZero(-7, 3));
  EXPECT_TEXT(L"-2147483648", PadZero(INT_MIN, 3));
  EXPECT_TEXT(L"5", PadZero(5, 0));
}

TEST(Format, UpperCasesAsciiInPlace) {
  char text[] = "az\xE9-Z";
  EXPECT_STREQ("AZ\xE9-Z", strupr(text));
}

#include "RkXmlLib16/facets/RegEx.h"

#include <random>
#include <string>

#include "Expect.h"
#include "support/SmallStack.h"

using namespace RkXmlTest;

TEST(RegEx, RewritesXsdEscapesAndMatchesTheWholeValue) {
  const Rows<const char*, std::wstring, bool> cases = {
      {"\\c+", L"a.b-c:d", true},
      {"\\c+", L"a b", false},
      {"\\i\\c*", L"_x1", true},
      {"\\i\\c*", L"1x", false},
      {"\\I", L"1", true},
      {"\\I", L"a", false},
      {"\\C", L" ", true},
      {"a\\\\b", L"a\\b", true},
      {"\\\\i", L"\\i", true},  // an escaped backslash protects what follows
      {"ab", L"abc", false},
      {"b", L"ab", false},
      {"a|ab", L"ab", true},
      {"", L"", true},
      {"a", L"a\n", false},
      {"a", std::wstring(L"a\0b", 3), false},
      {".", L"\n", false},
      {".", L"\r", true},  // only a line feed ends a line
      {".", L"\U0001F600", true},
      {"\\p{IsBasicLatin}+", L"az\x7F", true},
      {"\\p{IsBasicLatin}", L"\x80", false},
      {"\\p{IsLatin-1Supplement}", L"\xE9", true},
      {"\\p{IsLatinExtended-A}", L"\x180", false},
      {"\\p{Lu}\\d{2}",
       L"\x00C9"
       L"12",
       true},
      {"\\w+", L"\xE9", false},  // words are ASCII
  };
  for (const auto& [pattern, value, matches] : cases)
    EXPECT_EQ(matches, TestRegEx(pattern, value)) << pattern << " " << Narrow(value);
}

TEST(RegEx, ValuesOfAnyLengthMatchWhole) {
  for (const std::size_t length : {0u, 1u, 63u, 64u, 65u, 255u, 256u, 257u}) {
    for (const wchar_t c : {L'a', L'\xE9', L'\x4E2D', L'\U0001F600', L'\xD800'}) {
      const std::wstring value(length, c);
      EXPECT_TRUE(TestRegEx(".{" + std::to_string(length) + "}", value)) << length;
      EXPECT_FALSE(TestRegEx(".{" + std::to_string(length + 1) + "}", value)) << length;
    }
  }
}

// Common expressions are matched without the engine; a group behind them calls for it.
TEST(RegEx, PlainExpressionsMeanWhatTheEngineSays) {
  const auto answer = [](const std::string& pattern, const std::wstring& value) {
    try {
      return TestRegEx(pattern, value) ? "matches" : "does not match";
    } catch (const CRkException&) {
      return "refused";
    }
  };
  const std::string parts[] = {"a",    "b",     "1",    "-",     "\\d",   "[ab]",    "[a-b1]",    "[",
                               "]",    "[^a]",  "{2}",  "{1,3}", "{0}",   "{2,1}",   "{,2}",      "{1,}",
                               "?",    "*",     "+",    "^",     "$",     ".",       " ",         "[\\d-a]",
                               "[-a]", "[b-a]", "[::]", "[=1=]", "[a:=]", "\\p{Nd}", "[\\p{Nd}a]"};
  const std::wstring characters[] = {L"a",    L"b",     L"1",   L"-",  L"\n",   std::wstring(1, L'\0'),
                                     L"\xE9", L"\x161", L"aab", L"11", L"\x663"};
  std::mt19937 random(16);
  int matched = 0;
  for (int i = 0; i < 40000; ++i) {
    std::string pattern;
    for (auto n = 1 + random() % 5; n > 0; --n) pattern += parts[random() % (n % 2 == 0 ? std::size(parts) : 7)];
    if (pattern.substr(0, 1) == "?") continue;  // which makes the engine take what follows for options
    std::wstring value;
    for (auto n = random() % 4; n > 0; --n) value += characters[random() % (n % 2 == 0 ? std::size(characters) : 3)];
    const char* const expected = answer(pattern + "(?:)", value);
    EXPECT_STREQ(expected, answer(pattern, value)) << pattern << " " << Narrow(value);
    if (expected == std::string("matches")) ++matched;
  }
  EXPECT_LT(1000, matched);  // which tells that the cases are worth something
}

TEST(RegEx, TheFirstAlternativeThatEndsBeforeAFinalLineFeedSpoilsTheMatchIntended) {
  EXPECT_FALSE(TestRegEx("a|a\\n", L"a\n"));
  EXPECT_TRUE(TestRegEx("a\\n|a", L"a\n"));
}

TEST(RegEx, TheBlockLatinExtendedBNeverCompilesIntended) {
  EXPECT_THROWS(CRkException, L"Invalid Regular Expression: x Error: 'range out of order in character class'",
                TestRegEx("\\p{IsLatinExtended-B}", L"x"));
}

TEST(RegEx, HardPatternsEndCleanlyOnASmallStack) {
  const std::wstring many(100000, L'a');
  const Rows<const char*, std::wstring, const char*> cases = {
      // Longer than any stack that goes a level deeper by the character.
      {"\\c+", std::wstring(1000000, L'a'), "matches"},
      {"\\c+", std::wstring(1000000, L'a') + L" ", "does not match"},
      // Exponential to a matcher that goes back.
      {"(a|aa)+", many + L"b", "does not match"},
      {"(a|aa)+", many, "matches"},
      {"(\\i\\c*\\s?)+", many + L"!", "does not match"},
      // Too much for both matchers.
      {"(a+)+b", many, nullptr},
      {"((a+)+)\\2b", many, nullptr},
  };
  RunInSmallStack([&] {
    for (const auto& [pattern, value, answer] : cases) {
      try {
        EXPECT_STREQ(answer != nullptr ? answer : "does not match",
                     TestRegEx(pattern, value) ? "matches" : "does not match")
            << pattern;
      } catch (const CRkException& e) {
        const std::wstring limit = L" Error: 'match limit exceeded'";
        EXPECT_EQ(nullptr, answer) << pattern;
        EXPECT_TRUE(L"Invalid Regular Expression: " + value + limit == e.GetMessage()) << pattern;
      }
    }
  });
}

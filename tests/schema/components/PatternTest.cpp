#include "schema/components/Pattern.h"

#include <gtest/gtest.h>

namespace RkXmlSchema {
namespace {

TEST(Pattern, MeansWhatXmlSchemaSays) {
  const struct {
    const wchar_t* pattern;
    const wchar_t* value;
    bool matches;
  } rows[] = {
      {L"", L"", true},
      {L"", L"a", false},
      {L"a|", L"", true},
      {L"ab|cd", L"abd", false},
      {L"a{2}", L"aa", true},
      {L"a{2,}", L"aaaa", true},
      {L"a{0,1}b", L"aab", false},
      {L"^$", L"^$", true},  // no anchors
      {L"\\^\\-\\.\\\\i", L"^-.\\i", true},
      {L"a.c", L"a\nc", false},
      {L"a.c", L"a c", true},
      {L"[a-z-[aeiou]]+", L"xyz", true},
      {L"[a-z-[aeiou]]+", L"xaz", false},
      {L"[^a-z-[A-Z]]+", L"12", true},
      {L"[^a-z-[A-Z]]+", L"1A", false},
      {L"[a-z-[a-m-[f]]]+", L"fz", true},
      {L"[a-z-[a-m-[f]]]+", L"g", false},
      {L"[-a]+", L"-a", true},
      {L"[a-]+", L"-a", true},
      {L"[\\i-[:]][\\c-[:]]*", L"_x-1.y", true},
      {L"[\\i-[:]][\\c-[:]]*", L"a:b", false},
      {L"\\i\\c*", L"1a", false},
      {L"\\i\\c*", L"\x00E9t\x00E9", true},
      {L"\\I\\C", L"1 ", true},
      {L"\\C", L"-", false},
      {L"\\d+", L"12\x0663", true},
      {L"\\D", L"\x0663", false},
      {L"\\w+", L"a\x00E9_", false},  // "_" is punctuation
      {L"\\w+", L"a\x00E9$1", true},
      {L"\\W", L"_", true},
      {L"[\\W]", L"a", false},
      {L"\\s\\S", L"\tx", true},
      {L"[^\\s]", L"\x00A0", true},
      {L"[\\S]+", L"a b", false},
      {L"\\p{Lu}\\p{Ll}", L"\x00C9\x00E9", true},
      {L"\\P{L}", L"a", false},
      {L"[\\P{L}x]+", L"x1", true},
      {L"\\p{IsBasicLatin}+", L"a~", true},
      {L"\\p{IsBasicLatin}", L"\x00E9", false},
      {L"\\p{IsLatinExtended-B}", L"\x0180", true},
      {L"\\P{IsGreek}", L"\x03B1", false},
      {L"[\\p{IsGreek}\\p{Nd}]+",
       L"\x03B1"
       L"1",
       true},
      {L"\\p{IsPrivateUse}", L"\xE000", true},
      {L"[\\^\\]\\[]+", L"^][", true},
      {L"[a-c\\-e]+", L"a-e", true},
      {L"[\\n\\t]", L"\t", true},
      {L"(a(b|c))*", L"abac", true},
      {L"\xD83D\xDE00", L"\x1F600", true},  // a surrogate pair is one character
      {L"[\x1F600-\x1F64F]", L"\xD83D\xDE00", true},
      {L".", L"\xD83D\xDE00", true},
  };
  for (const auto& row : rows) {
    try {
      EXPECT_EQ(CPatternMatcher(TranslatePattern(row.pattern)).Matches(row.value), row.matches)
          << std::string(row.pattern, row.pattern + std::wcslen(row.pattern));
    } catch (const CPatternError& e) {
      ADD_FAILURE() << e.what();
    }
  }
}

TEST(Pattern, RefusesWhatIsNoExpression) {
  for (const wchar_t* pattern :
       {L"(",     L")",   L"a)",  L"[",     L"[]",      L"[^]",      L"[a",      L"[b-a]",          L"[a-\\d]",
        L"*",     L"a**", L"a+?", L"{2}",   L"a{",      L"a{,2}",    L"a{2,1}",  L"a{x}",           L"\\",
        L"\\q",   L"\\b", L"\\1", L"\\x41", L"\\p",     L"\\p{",     L"\\p{Xx}", L"\\p{IsNowhere}", L"[a-z-[b]c]",
        L"[[a]]", L"a]",  L"}",   L"(?:a)", L"[a-c-e]", L"a{65536}", L"[a--b]"}) {
    EXPECT_THROW(TranslatePattern(pattern), CPatternError) << std::string(pattern, pattern + std::wcslen(pattern));
  }
  EXPECT_THROW(TranslatePattern(std::wstring(1000, L'(')), CPatternError);
  std::wstring large;
  for (int i = 0; i < 20000; ++i) large += L"[\\c]";
  EXPECT_THROW(TranslatePattern(large), CPatternError);
  EXPECT_THROW(CPatternMatcher(TranslatePattern(L"((a{1000}){1000}){1000}")), CPatternError);
}

}  // namespace
}  // namespace RkXmlSchema

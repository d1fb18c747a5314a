#include "schema/components/Pattern.h"

#include "Expect.h"
#include "RkXmlLib16/io/Encoder.h"
#include "support/Cases.h"

namespace RkXmlSchema {
namespace {

bool Matches(const std::wstring& pattern, const std::wstring& value) {
  return CPatternMatcher(TranslatePattern(pattern)).Matches(value);
}

// The lines of the file are "+ PATTERN VALUE", "- PATTERN VALUE" where it does not match, and "! PATTERN" where it is
// none.
TEST(Pattern, MeansWhatXmlSchemaSays) {
  for (const std::string& line : RkXmlTest::ReadLines(RKXML_TEST_DATA "/patterns.txt")) {
    SCOPED_TRACE(line);
    const std::wstring rest = RkXmlLib16::FromUtf8(line.substr(2));
    if (line[0] == '!') {
      EXPECT_THROW(TranslatePattern(rest), CPatternError);
      continue;
    }
    const std::size_t blank = rest.find(L' ');
    EXPECT_EQ(Matches(rest.substr(0, blank), rest.substr(blank + 1)), line[0] == '+');
  }
  const struct {
    const wchar_t* pattern;
    const wchar_t* value;
    bool matches;
  } rows[] = {
      {L"", L"", true},
      {L"", L"a", false},
      {L"a|", L"", true},
      {L"a.c", L"a\nc", false},
      {L"a.c", L"a c", true},
      {L"\\I\\C", L"1 ", true},
      {L"\\s\\S", L"\tx", true},
      {L"[^\\s]", L"\x00A0", true},
      {L"[\\S]+", L"a b", false},
      {L"\\p{IsPrivateUse}", L"\xE000", true},
      {L"[\\n\\t]", L"\t", true},
      {L"\xD83D\xDE00", L"\x1F600", true},  // a surrogate pair is one character
      {L"[\x1F600-\x1F64F]", L"\xD83D\xDE00", true},
      {L".", L"\xD83D\xDE00", true},
  };
  for (const auto& row : rows)
    EXPECT_EQ(Matches(row.pattern, row.value), row.matches) << RkXmlTest::Narrow(row.pattern);
}

TEST(Pattern, RefusesWhatIsTooMuch) {
  EXPECT_THROW(TranslatePattern(std::wstring(1000, L'(')), CPatternError);
  std::wstring large;
  for (int i = 0; i < 20000; ++i) large += L"[\\c]";
  EXPECT_THROW(TranslatePattern(large), CPatternError);
  EXPECT_THROW(CPatternMatcher(TranslatePattern(L"((a{1000}){1000}){1000}")), CPatternError);
}

}  // namespace
}  // namespace RkXmlSchema

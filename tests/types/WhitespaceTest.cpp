#include "RkXmlLib16/types/Whitespace.h"

#include "Expect.h"

using namespace RkXmlTest;

TEST(Whitespace, RulesChangeOnlyTheFourXmlCharacters) {
  const Rows<CWhitespaceUtils::WhitespaceRule, Wide, Wide> cases = {
      {CWhitespaceUtils::none, L" a\t\nb ", L" a\t\nb "},
      {CWhitespaceUtils::preserve, L" a\t\nb ", L" a\t\nb "},
      {CWhitespaceUtils::replace, L"\ra\t\nb c", L" a  b c"},
      {CWhitespaceUtils::collapse, L"  a \t b  ", L"a b"},
      {CWhitespaceUtils::collapse, L"a b c", L"a b c"},
      {CWhitespaceUtils::collapse, L"a\tb", L"a b"},
      {CWhitespaceUtils::collapse, L" \t\r\n", L""},
      {CWhitespaceUtils::collapse, L"", L""},
      {CWhitespaceUtils::collapse, L"\x00A0 a\v", L"\x00A0 a\v"},
  };
  for (const auto& [rule, text, expected] : cases)
    EXPECT_TEXT(expected, CWhitespaceUtils::ApplyRule(rule, std::wstring(text)));
}

TEST(Whitespace, AnUnknownRuleThrows) {
  EXPECT_THROWS(CRkException, L"Unknown WhitespaceRule",
                CWhitespaceUtils::ApplyRule(static_cast<CWhitespaceUtils::WhitespaceRule>(7), std::wstring(L"a")));
}

#include "RkXmlLib16/facets/FacetChecks.h"

#include <vector>

#include "Expect.h"
#include "RkXmlLib16/object/Variant.h"
#include "RkXmlLib16/types/Conversions.h"

using namespace RkXmlTest;

namespace {

struct Bounds {
  const wchar_t *minInclusive = nullptr, *maxInclusive = nullptr, *minExclusive = nullptr, *maxExclusive = nullptr;
};

CPrimitiveRestrictions With(const Bounds& b) {
  return {nullptr, -1, -1, b.minInclusive, b.maxInclusive, b.minExclusive, b.maxExclusive, -1, -1, -1};
}
CPrimitiveRestrictions WithDigits(long totalDigits, long fractionDigits) {
  return {nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1, totalDigits, fractionDigits};
}
CPrimitiveRestrictions WithLengths(long minLength, long maxLength, long length) {
  return {nullptr, minLength, maxLength, nullptr, nullptr, nullptr, nullptr, length, -1, -1};
}
CPrimitiveRestrictions WithPattern(const wchar_t* pattern) {
  return {pattern, -1, -1, nullptr, nullptr, nullptr, nullptr, -1, -1, -1};
}

RkVariant Value(ItemType type, const wchar_t* text) {
  RkVariant value;
  value.FromString(text, type);
  return value;
}

bool Passes(ItemType type, const RkVariant& value, const CPrimitiveRestrictions& facets) {
  try {
    CXmlObjectHelper::CheckRestriction(L"e", value, type, facets);
    return true;
  } catch (const CRkException&) {
    return false;
  }
}

}  // namespace

// The same body for every kind that has an order.
TEST(FacetChecks, BoundsAreReadAsTheKindOfTheValue) {
  // The kind, three values, and how the middle one is shown with what follows the name.
  const Rows<ItemType, Wide, Wide, Wide, std::wstring> kinds = {
      {ItemType_byte, L"-2", L"9", L"10", L"[9]"},
      {ItemType_short, L"-2", L"9", L"10", L"[9]"},
      {ItemType_int, L"9", L"3000000000", L"3000000001", L"[3000000000]"},
      {ItemType_long, L"-2", L"9", L"10", L"[9]."},
      {ItemType_unsignedByte, L"1", L"9", L"10", L"[9]"},
      {ItemType_unsignedShort, L"1", L"9", L"10", L"[9]"},
      {ItemType_unsignedInt, L"9", L"18446744073709551614", L"18446744073709551615", L"[18446744073709551614]"},
      {ItemType_unsignedLong, L"1", L"9", L"10", L"[9]."},
      {ItemType_float, L"-1", L"0.5", L"1e1", L"[0.500000]"},
      {ItemType_double, L"-1", L"0.5", L"INF", L"[0.500000]"},
      {ItemType_gYear, L"0999", L"2000", L"2001", L"[2000]"},
      {ItemType_gMonth, L"--01", L"--02", L"--12", L"[2]"},
      {ItemType_gDay, L"---01", L"---02", L"---31", L"[2]"},
      {ItemType_decimal, L"-1", L"9.5", L"10", L"[9.5]."},
      {ItemType_integer, L"-1", L"9", L"100000000000000000000", L"[9]."},
      {ItemType_duration, L"P1D", L"P1M", L"P32D", L"[P1M]."},
      {ItemType_date, L"1999-12-31", L"2000-01-01", L"2000-01-02", L"[2000-01-01]."},
      {ItemType_dateTime, L"2000-01-01T00:00:00", L"2000-01-01T00:00:01", L"2000-01-01T00:00:02",
       L"[2000-01-01T00:00:01]."},
      {ItemType_time, L"00:00:00", L"12:00:00", L"23:00:00", L"[12:00:00]."},
      {ItemType_gMonthDay, L"--01-31", L"--02-01", L"--03-01", L"[--02-01]."},
  };
  for (const auto& [type, lowText, text, highText, shown] : kinds) {
    const RkVariant low = Value(type, lowText), value = Value(type, text), high = Value(type, highText);
    const auto passes = [kind = type](const RkVariant& tested, const Bounds& bounds) {
      return Passes(kind, tested, With(bounds));
    };
    EXPECT_TRUE(passes(value, {lowText, highText, lowText, highText})) << type;
    EXPECT_TRUE(passes(value, {text, text}));
    EXPECT_FALSE(passes(value, {nullptr, nullptr, text}));
    EXPECT_FALSE(passes(value, {nullptr, nullptr, nullptr, text}));
    EXPECT_FALSE(passes(low, {text}));
    EXPECT_FALSE(passes(high, {nullptr, text}));
    EXPECT_FALSE(passes(low, {nullptr, nullptr, text}));
    EXPECT_FALSE(passes(high, {nullptr, nullptr, nullptr, text}));
    EXPECT_THROWS(CRkException, L"Invalid Value for e " + shown,
                  CXmlObjectHelper::CheckRestriction(L"e", value, type, With({highText})));
  }
  EXPECT_THROWS(CRkInvalidValueException, L"The value [x] can not be converted to a i4",
                CXmlObjectHelper::CheckRestrictionFori4(L"e", 1, With({L"x"})));
}

// Numbers of any length on either side of a bound, by the facets as they are and by what the first check keeps of them.
TEST(FacetChecks, BoundsHoldNextToEachNumber) {
  std::vector<long long> thousandths;
  for (const long long near : {0LL, 1000LL, 180000LL, 99999999000LL, 100000000000LL, 123456789012345LL})
    for (const long long number : {near - 1, near, near + 1}) thousandths.insert(thousandths.end(), {number, -number});
  const auto text = [](ItemType type, long long number) {
    const CDecimal value = CDecimal(number) / CDecimal(1000);
    return type == ItemType_decimal ? value.ToString() : CBigInteger(number).ToString();
  };
  for (const ItemType type : {ItemType_decimal, ItemType_integer}) {
    for (const long long bound : thousandths) {
      const std::wstring boundText = text(type, bound);
      const wchar_t* const b = boundText.c_str();
      const CPrimitiveRestrictions facets[] = {With({b}), With({nullptr, b}), With({nullptr, nullptr, b}),
                                               With({nullptr, nullptr, nullptr, b}),
                                               With({b, L"123456789012346", L"-123456789012347"})};
      for (int round = 0; round < 2; ++round) {
        for (const long long number : thousandths) {
          const RkVariant value = Value(type, text(type, number).c_str());
          const bool expected[] = {number >= bound, number <= bound, number > bound, number < bound, number >= bound};
          for (std::size_t i = 0; i < std::size(facets); ++i)
            ASSERT_EQ(expected[i], Passes(type, value, facets[i])) << type << ' ' << number << ' ' << bound << ' ' << i;
        }
      }
    }
  }
}

TEST(FacetChecks, IndeterminateComparisonsPass) {
  EXPECT_TRUE(Passes(ItemType_duration, Value(ItemType_duration, L"P30D"), With({L"P1M", L"P1M", L"P1M", L"P1M"})));
  EXPECT_TRUE(Passes(ItemType_double, Value(ItemType_double, L"NaN"), With({L"1", L"0", L"1", L"0"})));
  CXmlObjectHelper::CheckRestrictionFormonthYear(
      L"e", CConversions::yearMonthFromString(L"2000-01", CWhitespaceUtils::none), With({L"2000-01"}));
}

TEST(FacetChecks, SomeKindsKnowNoFacets) {
  const CPrimitiveRestrictions all(L"x", 9, 0, L"x", L"x", L"x", L"x", 9, 0, 0);
  EXPECT_TRUE(Passes(ItemType_gYearMonth, Value(ItemType_gYearMonth, L"2000-01"), all));
  EXPECT_TRUE(Passes(ItemType_boolean, Value(ItemType_boolean, L"true"), all));
  EXPECT_THROWS(CRkException, L"Invalid Value for e [2000-01].",
                CXmlObjectHelper::CheckRestrictionFormonthYear(
                    L"e", CConversions::yearMonthFromString(L"2000-01", CWhitespaceUtils::none), With({L"2000-02"})));
}

TEST(FacetChecks, TotalDigitsCountTheSignOfIntegersIntended) {
  for (const ItemType type : {ItemType_byte, ItemType_short, ItemType_int, ItemType_long, ItemType_integer}) {
    EXPECT_TRUE(Passes(type, Value(type, L"12"), WithDigits(2, -1)));
    EXPECT_FALSE(Passes(type, Value(type, L"-12"), WithDigits(2, -1)));
    EXPECT_TRUE(Passes(type, Value(type, L"-12"), WithDigits(3, -1)));
  }
  EXPECT_FALSE(Passes(ItemType_unsignedLong, Value(ItemType_unsignedLong, L"123"), WithDigits(2, -1)));
  const RkVariant least = Value(ItemType_long, L"-9223372036854775808");
  EXPECT_TRUE(Passes(ItemType_long, least, WithDigits(20, -1)));
  EXPECT_FALSE(Passes(ItemType_long, least, WithDigits(19, -1)));
  EXPECT_TRUE(Passes(ItemType_integer, Value(ItemType_integer, L"-0"), WithDigits(1, -1)));
  EXPECT_TRUE(Passes(ItemType_gYear, Value(ItemType_gYear, L"2000"), WithDigits(2, -1)));
}

TEST(FacetChecks, DecimalDigitsAreThoseItStores) {
  const Rows<Wide, int, int> cases = {{L"123.45", 3, 2},   {L"0.05", 1, 2}, {L"7", 1, 0},
                                      {L"-100.050", 3, 2}, {L"1.0", 1, 0},  {L"0", 1, 0}};
  for (const auto& [text, integerDigits, fractionDigits] : cases) {
    const CDecimal value(text);
    EXPECT_EQ(integerDigits, CXmlObjectHelper::GetDecimalIntegerPartLen(value));
    EXPECT_EQ(fractionDigits, CXmlObjectHelper::GetDecimalFractionPartLen(value));
  }
  const RkVariant value = Value(ItemType_decimal, L"123.45");
  EXPECT_TRUE(Passes(ItemType_decimal, value, WithDigits(5, 2)));
  EXPECT_FALSE(Passes(ItemType_decimal, value, WithDigits(4, -1)));
  EXPECT_FALSE(Passes(ItemType_decimal, value, WithDigits(-1, 1)));
}

TEST(FacetChecks, LengthsCountCharactersAndBytes) {
  const Rows<ItemType, Wide> kinds = {{ItemType_string,
                                       L"a\U0001F600"
                                       L"b"},
                                      {ItemType_string, L"a\xD83D\xDE00\xDE00"},
                                      {ItemType_hexBinary, L"0102AB"},
                                      {ItemType_base64Binary, L"TWFu"}};
  for (const auto& [type, text] : kinds) {
    const RkVariant value = Value(type, text);
    EXPECT_TRUE(Passes(type, value, WithLengths(3, 3, 3)));
    EXPECT_FALSE(Passes(type, value, WithLengths(4, -1, -1)));
    EXPECT_FALSE(Passes(type, value, WithLengths(-1, 2, -1)));
    EXPECT_FALSE(Passes(type, value, WithLengths(-1, -1, 2)));
    EXPECT_FALSE(Passes(type, value, WithLengths(-1, -1, 4)));
    EXPECT_THROWS(CRkException, std::wstring(L"Invalid Value for e [") + text + L"].",
                  CXmlObjectHelper::CheckRestriction(L"e", value, type, WithLengths(-1, -1, 0)));
  }
}

TEST(FacetChecks, PatternsAreTestedAfterLengths) {
  CXmlObjectHelper::CheckRestrictionForstring(L"e", L"a.b-c:d", WithPattern(L"\\c+"));
  EXPECT_THROWS(CRkException, L"Invalid Value for e [a b].",
                CXmlObjectHelper::CheckRestrictionForstring(L"e", L"a b", WithPattern(L"\\c+")));
  EXPECT_THROWS(CRkException,
                L"Invalid Regular Expression: v Error: 'missing closing parenthesis'\nInvalid Value for e [v].",
                CXmlObjectHelper::CheckRestrictionForstring(L"e", L"v", WithPattern(L"(")));
  CXmlObjectHelper::CheckRestrictionForstring(L"e", L"\x4E2D", WithPattern(L"[\x4E00-\x9FFF]"));
}

TEST(FacetChecks, TheDispatcherWantsAValueOfItsKind) {
  EXPECT_THROWS(
      CRkException, L"Invalid Type 23",
      CXmlObjectHelper::CheckRestriction(L"e", Value(ItemType_string, L"1"), ItemType_int, CPrimitiveRestrictions()));
  EXPECT_THROWS(CRkException, L"Invalid Type 0",
                CXmlObjectHelper::CheckRestriction(L"e", RkVariant(), ItemType_none, CPrimitiveRestrictions()));
}

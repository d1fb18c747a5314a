#include "RkXmlLib16/types/DateTimeSpan.h"

#include <climits>

#include "Expect.h"
#include "RkXmlLib16/types/DateTime.h"

using namespace RkXmlTest;

namespace {

CDateTimeSpan Span(const std::wstring& text) {
  CDateTimeSpan span;
  span.ParseXSDDuration(text);
  return span;
}

}  // namespace

TEST(DateTimeSpan, ParsesAndPrintsTheXsdForm) {
  const Rows<Wide, Wide> cases = {
      {L"P1Y2M3DT4H5M6.5S", nullptr},
      {L"-P1Y2M3DT4H5M6.5S", nullptr},
      {L"PT36H", nullptr},
      {L"PT0.001S", nullptr},
      {L"P0Y", L"PT0S"},
      {L"PY", L"PT0S"},
      {L"PT5.", L"PT5S"},
      {L"PT5.S", L"PT5S"},
      {L"PT.5S", L"PT0.5S"},
      {L"P65535Y18446744073709551615M", nullptr},
      {L"PT0.123456789S", L"PT0.123456009S"},  // of the last three digits only the last one counts, as it is
  };
  for (const auto& [text, printed] : cases) EXPECT_TEXT(printed == nullptr ? text : printed, Span(text).ToString());
  const CDateTimeSpan span = Span(L"-P1Y2M3DT4H5M6.5S");
  EXPECT_TRUE(span.IsNegative());
  EXPECT_EQ(500, span.GetMilliSeconds());
  EXPECT_EQ(9, Span(L"PT0.123456789S").GetNanoSeconds());
}

TEST(DateTimeSpan, EveryOtherTextThrows) {
  const wchar_t* const texts =
      L"P,-P,PT,P1DT,1Y,+P1Y,P1,P1Y2,P1D1Y,P1M1Y,P1D1M,P1Y1Y,PT1M1H,PT1S1M,PT1S1S,P1H,PT1D,P1.5Y,P1T1H,PTT1H,PT1.5,"
      L"PT1.5M,P-1Y, P1Y,P65536Y,P18446744073709551616M,-,PT1H.5";
  for (const std::wstring& text : Split(texts, L","))
    EXPECT_THROWS(CRkInvalidValueException,
                  L"Invalid XSD Duration [" + text + L"] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]", Span(text));
  EXPECT_THROWS(CRkInvalidValueException, L"Invalid XSD Duration [PT0.1234567891S] Fraction part too long",
                Span(L"PT0.1234567891S"));
  EXPECT_THROWS(CRkInvalidValueException, L"Invalid XSD Duration (Empty String)", Span(L""));
  CDateTimeSpan span;
  EXPECT_THROWS(CRkInvalidValueException, L"Invalid XSD Duration (Null String)", span.ParseXSDDuration(nullptr));
}

TEST(DateTimeSpan, WhatLeavesTheCalendarOrChangesTheEraHasNoOrderIntended) {
  const Rows<Wide, Wide> cases = {
      {L"P8097Y", L"P1Y"},
      {L"P8097Y", L"P8097Y"},
      {L"-P3000Y", L"P1D"},
      {L"-P12000Y", L"-P3000Y"},
      {L"P18446744073709551615M", L"P1M"},
      {L"-PT18446744073709551615M", L"PT0S"},
      {L"P65535Y18446744073709551615M18446744073709551615DT18446744073709551615H18446744073709551615M", L"P1D"},
  };
  for (const auto& [a, b] : cases) {
    EXPECT_EQ(CompareResult_Indeterminate, Span(a).CompareTo(Span(b))) << Narrow(a);
    EXPECT_EQ(CompareResult_Indeterminate, Span(b).CompareTo(Span(a))) << Narrow(a);
  }
}

TEST(DateTimeSpan, OrderIsThatOfTheDatesReached) {
  const wchar_t* const spans[] = {L"P1M",    L"P2M",   L"P11M",         L"P1Y",     L"P12M",    L"PT24H",   L"P1D",
                                  L"-P1M",   L"P28D",  L"P29D",         L"P31D",    L"P59D",    L"P62D",    L"P366D",
                                  L"P1M30D", L"-P31D", L"PT743H59M59S", L"-P1695Y", L"-P1696Y", L"-P1903Y", L"P8096Y"};
  for (const wchar_t* a : spans) {
    for (const wchar_t* b : spans) {
      int expected = -1;
      for (const wchar_t* reference :
           {L"1696-09-01T00:00:00Z", L"1697-02-01T00:00:00Z", L"1903-03-01T00:00:00Z", L"1903-07-01T00:00:00Z"}) {
        const CDateTime from(reference);
        const int result = (from + Span(a)).CompareTo(from + Span(b));
        expected = expected < 0 || expected == result ? result : 3;
      }
      EXPECT_EQ(expected, Span(a).CompareTo(Span(b))) << Narrow(a) << " " << Narrow(b);
    }
  }
}

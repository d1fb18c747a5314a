#include "RkXmlLib16/types/DateTime.h"

#include <algorithm>
#include <climits>
#include <ctime>
#include <random>

#include "Expect.h"
#include "RkXmlLib16/io/Encoder.h"
#include "support/Cases.h"

using namespace RkXmlTest;

namespace {

CDateTime DateTime(const std::wstring& text) { return CDateTime(text.c_str()); }

template <class Value, void (Value::*kParse)(std::wstring_view)>
Value Parsed(const std::wstring& text) {
  Value value;
  (value.*kParse)(text);
  return value;
}
constexpr auto Date = Parsed<CDateTime, &CDateTime::ParseXSDDate>;
constexpr auto Time = Parsed<CDateTime, &CDateTime::ParseXSDTime>;
constexpr auto Span = Parsed<CDateTimeSpan, &CDateTimeSpan::ParseXSDDuration>;

CDateTime Any(const std::wstring& text) {
  return text.find(L'T') != std::wstring::npos ? DateTime(text) : text.find(L':') == 2 ? Time(text) : Date(text);
}

}  // namespace

TEST(DateTime, ParseSetsTheTypeByShapeAndPrintsTheSame) {
  const Rows<Wide, DTType, Wide> cases = {
      {L"2024-02-29", dt_date, nullptr},
      {L"-0044-03-15", dt_date, nullptr},
      {L"2024-02", dt_gYearMonth, nullptr},
      {L"-0001Z", dt_gYear, nullptr},
      {L"1999+14:00", dt_gYear, nullptr},
      {L"--05", dt_gMonth, nullptr},
      {L"--05--", dt_gMonth, L"--05"},
      {L"--05xx", dt_gMonth, L"--05"},  // the last two characters are not examined
      {L"---45", dt_gDay, nullptr},     // a day up to 99 passes
      {L"---31-05:30", dt_gDay, nullptr},
      {L"--02-29", dt_gMonthDay, nullptr},
      {L"2000-01-01-00:30", dt_date, L"2000-01-01+00:30"},  // the sign travels on the hour
      {L"00:00:00Z", dt_time, nullptr},
      {L"12:00:00.000001-05:30", dt_time, nullptr},
      {L"01:02:03.123456789", dt_time, nullptr},
      {L"12:00:00.", dt_time, L"12:00:00"},
      {L"12:00:00.Z", dt_time, L"12:00:00Z"},
      {L"2001-01-01T00:00:00+24:00", dt_dateTime, L"2001-01-01T00:00:00+00:00"},
  };
  for (const auto& [text, type, printed] : cases) {
    const CDateTime value = Any(text);
    EXPECT_EQ(type, value.GetType());
    EXPECT_TEXT(printed == nullptr ? text : printed, value.ToString());
  }
  CDateTime again = DateTime(L"2001-02-03T04:05:06.789Z");
  again.ParseXSDDate(L"1999");
  EXPECT_TEXT(L"1999", again.ToString());
  EXPECT_FALSE(again.IsUTC());
}

// Each case of the file is a kind and a text, and what is wrong with it.
TEST(DateTime, EveryMalformedTextHasItsMessage) {
  for (const auto& [given, message] : ReadCases(RKXML_TEST_DATA "/date_errors.txt")) {
    const std::wstring wide = FromUtf8(given), kind = wide.substr(0, wide.find(L' '));
    const std::wstring text = wide.substr(std::min(kind.size() + 1, wide.size()));
    const auto parse = kind == L"Date" ? Date : kind == L"Time" ? Time : DateTime;
    EXPECT_THROWS(CRkInvalidValueException, FromUtf8(message), parse(text));
  }
  CDateTime value;
  EXPECT_THROWS(CRkInvalidValueException, L"Invalid Date (Null String)", value.ParseXSDDate(nullptr));
  EXPECT_THROWS(CRkInvalidValueException, L"Invalid Time (Null String)", value.ParseXSDTime(nullptr));
  EXPECT_THROWS(CRkInvalidValueException, L"Invalid DateTime (Null String)", value.ParseXSDDateTime(nullptr));
}

TEST(DateTime, SettersValidateTheFieldsOfTheirType) {
  CDateTime value;
  EXPECT_THROWS(CRkInvalidValueException, L"Invalid Year Zero", value.Validate());
  const Rows<DTType, short, unsigned char, unsigned char, unsigned char, unsigned short, Wide> foreign = {
      {dt_date, 2000, 1, 1, 1, 0, L"Invalid Hour [1] for type date"},
      {dt_gYear, 2000, 0, 0, 0, 7, L"Invalid Nano-Second [7] for type gYear"},
      {dt_time, 1, 0, 0, 1, 0, L"Invalid Year [1] for type time"},
      {dt_gYear, 1, 2, 0, 0, 0, L"Invalid Month [2] for type gYear"},
      {dt_gYearMonth, 1, 2, 3, 0, 0, L"Invalid Day [3] for type gYearMonth"},
  };
  for (const auto& [type, year, month, day, hour, nano, message] : foreign)
    EXPECT_THROWS(CRkInvalidValueException, message, value.SetDateTime(type, year, month, day, hour, 0, 0, 0, 0, nano));
  EXPECT_THROWS(CRkInvalidValueException, L"Invalid Micro-Second [1000] (0 <= micro <= 999)",
                value.SetTime(0, 0, 0, 0, 1000, 0));
  EXPECT_THROWS(CRkInvalidValueException, L"Invalid Hour [24] (0 <= hour <= 23)", value.SetTime(24, 0, 0));
  value.SetTime(1, 2, 3);
  value.SetFracTime(0, 20, 0);
  EXPECT_TEXT(L"01:02:03.00002", value.ToString());
  EXPECT_TEXT(L"01:02:03.00002", value.ToString(L"s"));
  EXPECT_TEXT(L"Unknown Format: yyyy", value.ToString(L"yyyy"));
  EXPECT_TEXT(L"Error: Date Not Set", CDateTime().ToString());
  EXPECT_TEXT(L"Error: Date Not Set", CDateTime(dt_date).ToString());
  EXPECT_TEXT(L"00:00:00", CDateTime(dt_time).ToString());
  // Field by field nothing is validated, and every number prints whole.
  value = DateTime(L"2000-01-01T00:00:00");
  value.SetYear(-32768);
  value.SetMonth(200);
  value.SetDay(99);
  value.SetSecond(255);
  value.SetMilliSecond(1234);
  EXPECT_TEXT(L"-32768-200-99T00:00:255.1234", value.ToString());
  EXPECT_EQ(0, value.GetDayOfYear());
}

TEST(DateTime, FieldsThatTheTypeLacksThrow) {
  const CDateTime time = Time(L"10:11:12.5");
  EXPECT_EQ(12.5, time.GetRealSecond());
  const auto lacks = [](const wchar_t* message, const auto& call) {
    EXPECT_THROWS(CRkInvalidStateException, std::wstring(L"Failed to ") + message, call());
  };
  lacks(L"GetYear. Invalid Date Type: time.", [&] { time.GetYear(); });
  lacks(L"GetNanoSecond. Invalid Date Type: gDay.", [] { Date(L"---05").GetNanoSecond(); });
  lacks(L"GetMonth. Invalid Date Type: yearZero.", [] { CDateTime().SetMonth(1); });
  lacks(L"GetDayOfYear. Invalid Date Type: gMonthDay.", [] { Date(L"--02-29").GetDayOfYear(); });
  lacks(L"GetDayOfWeek. Invalid Date Type: gYear.", [] { Date(L"2000").GetDayOfWeek(); });
  lacks(L"GetTime, Date Status must be dateTime or date. Invalid Date Type: time.", [&] { time.GetTime(); });
  EXPECT_THROWS(CRkInvalidValueException, L"TimeZone is not been used", time.GetZoneHour());
  EXPECT_TEXT(L"", CDateTime::GetTypeAsString(static_cast<DTType>(9)));
}

TEST(DateTime, ConvertsToEveryTypeWhoseFieldsItHas) {
  const char* const allowed[] = {// by source, a column a target
                                 "100000000", "111111111", "101110111", "100110010", "100010000",
                                 "100001000", "100000100", "100000010", "100000111"};
  for (int from = 0; from <= 8; ++from)
    for (int to = 0; to <= 8; ++to)
      EXPECT_EQ(allowed[from][to] == '1',
                CDateTime::CheckConversion(static_cast<DTType>(from), static_cast<DTType>(to)))
          << from << " to " << to;
  CDateTime value;
  value.SetDateTime(DateTime(L"2001-02-03T04:05:06+01:00"), dt_gMonthDay);
  EXPECT_TEXT(L"--02-03+01:00", value.ToString());
  EXPECT_THROWS(CRkInvalidValueException,
                L"Attempting to set a CDateTime of type date using an XmlDateTime of type gYear. "
                L"The source CDateTime does not contian enough data to allow the conversion.",
                value.SetDateTime(Date(L"2001"), dt_date));
  EXPECT_THROWS(CRkInvalidValueException, L"Unknown date type 9.",
                CDateTime::CheckConversion(static_cast<DTType>(9), dt_date));
}

TEST(DateTime, OrderIsPartialAcrossZones) {
  constexpr int kEqual = 0, kLess = 1, kGreater = 2, kIndeterminate = 3;
  const Rows<Wide, Wide, int> cases = {
      {L"2000-01-01T00:00:00", L"2000-01-01T00:00:00.000000001", kLess},
      {L"2000-01-01T12:00:00Z", L"2000-01-01T14:00:00+02:00", kEqual},
      {L"2000-01-01T00:00:00+14:00", L"2000-01-01T00:00:00+13:59", kLess},
      {L"2000-01-01T00:00:00", L"2000-01-01T00:10:00Z", kIndeterminate},
      {L"2000-01-01T00:00:00", L"2000-01-01T10:00:00Z", kIndeterminate},
      {L"2000-01-01T00:00:00", L"2000-01-01T14:00:00Z", kIndeterminate},
      {L"2000-01-01T00:00:00", L"2000-01-01T14:00:01Z", kLess},
      {L"2000-01-02T00:00:01", L"2000-01-01T10:00:00Z", kGreater},
      // At the ends of the calendar.
      {L"9999-12-31T23:30:00-10:00", L"9999-12-31T23:00:00Z", kGreater},
      {L"-9999-01-01T00:00:00+10:00", L"-9999-01-01T00:00:00Z", kLess},
      {L"-0001-12-31T23:00:00", L"0001-01-01T00:00:00", kIndeterminate},
      // Of other types, and of two.
      {L"2000-01-01+06:00", L"2000-01-01+05:00", kLess},
      {L"--01+05:00", L"--01Z", kLess},
      {L"00:30:00+01:00", L"23:30:00Z", kEqual},
      {L"12:00:00", L"12:00:00Z", kIndeterminate},
      {L"22:00:00Z", L"08:00:00", kIndeterminate},
      {L"22:00:00Z", L"07:59:59", kGreater},
      {L"07:00:00", L"01:30:00+04:00", kLess},
      {L"2000-01-01T00:00:00", L"2000-01-01", kEqual},
      {L"2000-01-01T01:00:00", L"2000-01-01", kIndeterminate},
      {L"1999", L"2000-01-01", kLess},
  };
  for (const auto& [left, right, result] : cases) {
    const CDateTime a = Any(left), b = Any(right);
    EXPECT_EQ(result, a.CompareTo(b)) << Narrow(left) << " " << Narrow(right);
    const int reversed = result == kLess ? kGreater : result == kGreater ? kLess : result;
    EXPECT_EQ(reversed, b.CompareTo(a)) << Narrow(right) << " " << Narrow(left);
  }
  const CDateTime a = DateTime(L"2000-01-01T00:00:00"), b = DateTime(L"2000-01-01T00:10:00Z");
  EXPECT_FALSE(a == b || a < b || a > b || a <= b || a >= b);
  EXPECT_TRUE(a != b && a <= a && a >= a);
}

TEST(DateTime, NormalisesToUtc) {
  EXPECT_TEXT(L"2001-03-01T04:30:00+00:00", DateTime(L"2001-02-28T23:00:00-05:30").GetNormalized().ToString());
  EXPECT_TEXT(L"1999-12-31+00:00", Date(L"2000-01-01+05:00").GetNormalized().ToString());
  EXPECT_TEXT(L"2000-01-01T00:00:00Z", DateTime(L"2000-01-01T00:00:00Z").GetNormalized().ToString());
  EXPECT_TEXT(L"9999-12-31T23:00:00-05:00", DateTime(L"9999-12-31T23:00:00-05:00").GetNormalized().ToString());
}

TEST(DateTime, AddsDurations) {
  const Rows<Wide, Wide, Wide> cases = {
      {L"2000-01-12T12:13:14Z", L"P1Y3M5DT7H10M3.3S", L"2001-04-17T19:23:17.3Z"},  // the example of the standard
      {L"2000-01-31T00:00:00", L"P1M", L"2000-02-29T00:00:00"},
      {L"2000-03-31T00:00:00", L"-P1M", L"2000-02-29T00:00:00"},
      {L"2000-02-29T00:00:00", L"P1Y", L"2001-02-28T00:00:00"},
      {L"2000-01-01T00:00:00", L"-PT0.001S", L"1999-12-31T23:59:59.999"},
      {L"-0001-12-31T23:59:59", L"PT1S", L"0001-01-01T00:00:00"},  // no year 0
      {L"0001-06-01T00:00:00", L"-P1Y", L"-0001-06-01T00:00:00"},
      {L"2000-01-01T00:00:00", L"PT16777217S", L"2000-07-13T04:20:17"},  // beyond single precision
      {L"0001-01-01T00:00:00", L"P3652058D", L"9999-12-31T00:00:00"},
  };
  for (const auto& [date, span, sum] : cases) {
    EXPECT_TEXT(sum, (DateTime(date) + Span(span)).ToString()) << Narrow(span);
    EXPECT_TEXT(sum, (DateTime(date) - Span(span).GetAsNegative()).ToString());
  }
  EXPECT_TEXT(L"01:30:00", (Time(L"23:30:00") + Span(L"P400DT2H")).ToString());
  EXPECT_TEXT(L"--01", (Date(L"--12") + Span(L"P1M")).ToString());

  CDateTime value = DateTime(L"2000-01-01T00:00:00");
  EXPECT_THROWS(CRkInvalidValueException, L"Invalid Year [10000] (9999 <= year <= -9999 && year != 0)",
                value += Span(L"P8000Y"));
  EXPECT_THROWS(CRkInvalidValueException, L"Invalid Year [1537228672809131301] (9999 <= year <= -9999 && year != 0)",
                value += CDateTimeSpan(0, ULONG_MAX, 0, 0, 0, 0));
  EXPECT_TEXT(L"2000-01-01T00:00:00", value.ToString());
}

TEST(DateTime, DayArithmeticAgreesWithTheCalendarOfTheMachine) {
  CDateTime counted(2000, 1, 1);
  const CDateTime start = counted;
  for (unsigned long n = 0; n < 1500; ++n) {
    const std::time_t seconds = 946684800 + static_cast<std::time_t>(n) * 86400;
    const std::tm& truth = *std::gmtime(&seconds);
    ASSERT_EQ(truth.tm_mday, counted.GetDay());
    ASSERT_EQ(truth.tm_mon + 1, counted.GetMonth());
    ASSERT_EQ(truth.tm_year + 1900, counted.GetYear());
    ASSERT_EQ(truth.tm_yday + 1, counted.GetDayOfYear());
    ASSERT_EQ(truth.tm_wday, counted.GetDayOfWeek());
    ASSERT_EQ(n, (counted - start).GetDays());
    ASSERT_TRUE(counted == start + CDateTimeSpan(0, 0, n, 0, 0, 0));
    ASSERT_TRUE(start == counted - CDateTimeSpan(0, 0, n, 0, 0, 0));
    counted += CDateTimeSpan(0, 0, 1, 0, 0, 0);
  }
}

TEST(DateTime, DifferencesCountFromUtcAndUndoAdditions) {
  const CDateTimeSpan span = DateTime(L"2000-03-01T00:00:00+01:00") - DateTime(L"2000-02-28T12:00:00.25");
  EXPECT_TEXT(L"P1DT10H59M59.75S", span.ToString());
  std::mt19937_64 random(4);
  for (int i = 0; i < 2000; ++i) {
    CDateTime a(static_cast<short>(1 + random() % 5000), static_cast<unsigned char>(1 + random() % 12),
                static_cast<unsigned char>(1 + random() % 28), static_cast<unsigned char>(random() % 24),
                static_cast<unsigned char>(random() % 60), static_cast<unsigned char>(random() % 60),
                static_cast<unsigned short>(random() % 1000), static_cast<unsigned short>(random() % 1000),
                static_cast<unsigned short>(random() % 1000));
    if (i % 3 == 0) a.SetYear(static_cast<short>(-a.GetYear()));
    if (a.GetMonth() == 2 && a.GetDay() == 28 && IsLeapYear(a.GetYear())) a.SetDay(29);
    const CDateTimeSpan s(0, 0, random() % 1000000, random() % 100, random() % 10000, random() % 10000000, 1, 2,
                          static_cast<unsigned short>(random() % 1000));
    const CDateTime b = a + s;
    ASSERT_EQ(a.ToString(), (b - s).ToString());
    ASSERT_EQ(b.ToString(), (a + (b - a)).ToString());
    ASSERT_EQ(a.ToString(), (b + (a - b)).ToString());
  }
}

TEST(DateTime, TimesOfTheSystemClockRoundTripInEveryZoneOfTheProcess) {
  for (const long t : {0L, 951782400L, -62135596800L, 253402300799L, 1L << 31}) EXPECT_EQ(t, CDateTime(t).GetTime());
  EXPECT_TEXT(L"2000-02-29T00:00:00", CDateTime(951782400L).ToString());
  EXPECT_EQ(951782400L - 3600, DateTime(L"2000-02-29T00:00:00+01:00").GetTime());
  CDateTime value(2000, 1, 1);
  EXPECT_THROWS(CRkInvalidValueException, L"Invalid Year [10000] (9999 <= year <= -9999 && year != 0)",
                value = 253402300800L);
  EXPECT_EQ(dt_none, CDateTime(LONG_MAX).GetType());
  const CDateTime now = CDateTime::GetCurrentTime();
  EXPECT_EQ(dt_dateTime, now.GetType());
  EXPECT_FALSE(now.IsUTC());
  EXPECT_LE(now.GetTime(), std::time(nullptr));
}

TEST(DateTime, QuotientsAreSinglePrecisionIntended) {
  EXPECT_EQ(-1, GetQuotient(-1, 60));
  EXPECT_EQ(59, GetModulo(-1, 60));
  EXPECT_EQ(16777216, GetQuotient(16777217, 1));
  EXPECT_EQ(1, GetModulo(16777217, 1));
  EXPECT_EQ(LLONG_MAX, GetQuotient(LLONG_MAX, 1));
  EXPECT_EQ(0, GetQuotient(0, 0));
}

#ifndef RKXMLLIB16_TYPES_INTERNAL_CALENDAR_H
#define RKXMLLIB16_TYPES_INTERNAL_CALENDAR_H

#include <algorithm>

// The Gregorian calendar by counting days, for any size of number. There is no year 0: year -1 stands before year 1.
// A negative year is a leap year by its number.
namespace RkXmlLib16::Calendar {

__extension__ typedef __int128 Wide;

constexpr long long kSecondsPerDay = 86400;
constexpr long long kNanosPerSecond = 1000000000;

constexpr Wide FloorDiv(Wide a, Wide b) noexcept { return a / b - (a % b < 0 ? 1 : 0); }

constexpr bool IsLeap(long long year) noexcept { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

constexpr int DaysInMonth(long long year, int month) noexcept {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

// Years counted without the gap: year 1 is 0, year -1 is -1.
constexpr Wide YearIndex(Wide year) noexcept { return year > 0 ? year - 1 : year; }
constexpr Wide YearFromIndex(Wide index) noexcept { return index >= 0 ? index + 1 : index; }

// The days of `count` years next to the gap, on either side of it.
constexpr Wide DaysOfYears(Wide count) noexcept { return 365 * count + count / 4 - count / 100 + count / 400; }

// How many whole years, counted from the gap, fit in `days`.
constexpr Wide YearsInDays(Wide days) noexcept {
  Wide years = days / 146097 * 400;
  long long rest = static_cast<long long>(days % 146097);
  const long long centuries = std::min(rest / 36524, 3LL);
  rest -= centuries * 36524;
  const long long leaps = rest / 1461;
  rest -= leaps * 1461;
  return years + centuries * 100 + leaps * 4 + std::min(rest / 365, 3LL);
}

// Days since 1 January of the year 1.
constexpr Wide DayNumber(Wide year, int month, int day) noexcept {
  Wide number = year > 0 ? DaysOfYears(year - 1) : -DaysOfYears(-year);
  for (int m = 1; m < month; ++m) number += DaysInMonth(static_cast<long long>(year), m);
  return number + day - 1;
}

struct Date {
  long long year;
  int month;
  int day;
};

constexpr Date DateOf(Wide dayNumber) noexcept {
  const Wide year = dayNumber >= 0 ? YearsInDays(dayNumber) + 1 : -YearsInDays(-dayNumber - 1) - 1;
  Date date{static_cast<long long>(year), 1, static_cast<int>(dayNumber - DayNumber(year, 1, 1)) + 1};
  for (; date.day > DaysInMonth(date.year, date.month); ++date.month) date.day -= DaysInMonth(date.year, date.month);
  return date;
}

}  // namespace RkXmlLib16::Calendar

#endif

#include "RkXmlLib16/types/DateTimeSpan.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/types/DateTime.h"
#include "RkXmlLib16/types/internal/Calendar.h"

namespace RkXmlLib16 {

namespace {

using Calendar::Wide;

using Ascii::IsDigit;

// What may still follow in the text of a duration, in the order of its parts.
enum class Part { Start, Years, Months, Days, Time, Hours, Minutes, Seconds };

constexpr std::size_t kMostDigits = std::numeric_limits<unsigned long long>::digits10 + 1;

// These write to `to` and return the end.
wchar_t* PutCount(wchar_t* to, unsigned long long count) {
  char digits[kMostDigits];
  return std::copy(digits, std::to_chars(digits, digits + kMostDigits, count).ptr, to);
}

wchar_t* PutPart(wchar_t* to, unsigned long long count, wchar_t designator) {
  if (count == 0) return to;
  to = PutCount(to, count);
  *to++ = designator;
  return to;
}

// A duration as the XSD value space sees it.
struct Length {
  Wide months;
  Wide seconds;
  long long nanos;  // with the sign of the seconds
};

Length LengthOf(const CDateTimeSpan& span) {
  const Wide sign = span.IsNegative() ? -1 : 1;
  const Wide hours = static_cast<Wide>(span.GetDays()) * 24 + span.GetHours();
  return {sign * (static_cast<Wide>(span.GetYears()) * 12 + span.GetMonths()),
          sign * ((hours * 60 + span.GetMinutes()) * 60 + span.GetSeconds()),
          static_cast<long long>(sign) *
              (span.GetMilliSeconds() * 1000000LL + span.GetMicroSeconds() * 1000LL + span.GetNanoSeconds())};
}

// The order of the instants that both lengths reach from the first of a month. Like any two dates they have none when
// one lies outside the calendar, or when their years differ in sign.
CompareResult CompareFrom(long long year, int month, const Length& a, const Length& b) {
  // In nanoseconds since the beginning of the year 1.
  const auto reached = [&](const Length& length) {
    const Wide index = Calendar::YearIndex(year) * 12 + month - 1 + length.months;
    const Wide reachedYear = Calendar::YearFromIndex(Calendar::FloorDiv(index, 12));
    const int reachedMonth = static_cast<int>(index - Calendar::FloorDiv(index, 12) * 12) + 1;
    const Wide seconds = Calendar::DayNumber(reachedYear, reachedMonth, 1) * Calendar::kSecondsPerDay + length.seconds;
    return seconds * Calendar::kNanosPerSecond + length.nanos;
  };
  constexpr Wide kNanosPerDay = static_cast<Wide>(Calendar::kSecondsPerDay) * Calendar::kNanosPerSecond;
  constexpr Wide kBegin = Calendar::DayNumber(MIN_YEAR, 1, 1) * kNanosPerDay;
  constexpr Wide kEnd = Calendar::DayNumber(MAX_YEAR + 1, 1, 1) * kNanosPerDay;
  const Wide instantA = reached(a), instantB = reached(b);
  if (instantA < kBegin || instantB < kBegin || instantA >= kEnd || instantB >= kEnd ||
      (instantA < 0) != (instantB < 0))
    return CompareResult_Indeterminate;
  if (instantA == instantB) return CompareResult_Equal;
  return instantA < instantB ? CompareResult_Less : CompareResult_Greater;
}

}  // namespace

CDateTimeSpan::CDateTimeSpan() = default;
CDateTimeSpan::CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                             unsigned long long minutes, unsigned long long seconds)
    : m_years(years), m_months(months), m_days(days), m_hours(hours), m_minutes(minutes), m_seconds(seconds) {}
CDateTimeSpan::CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                             unsigned long long minutes, unsigned long long seconds, unsigned short milliSeconds,
                             unsigned short microSeconds, unsigned short nanoSeconds)
    : CDateTimeSpan(years, months, days, hours, minutes, seconds) {
  m_milliSeconds = milliSeconds;
  m_microSeconds = microSeconds;
  m_nanoSeconds = nanoSeconds;
}
CDateTimeSpan::CDateTimeSpan(unsigned long hours, unsigned long long minutes, unsigned long long seconds)
    : CDateTimeSpan(0, 0, 0, hours, minutes, seconds) {}
CDateTimeSpan::CDateTimeSpan(const CDateTimeSpan& other) = default;
CDateTimeSpan& CDateTimeSpan::operator=(const CDateTimeSpan& other) = default;
CDateTimeSpan::~CDateTimeSpan() = default;

void CDateTimeSpan::SetDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                                    unsigned long long minutes, unsigned long long seconds) {
  *this = CDateTimeSpan(years, months, days, hours, minutes, seconds);
}

void CDateTimeSpan::SetDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                                    unsigned long long minutes, unsigned long long seconds, unsigned short milliSeconds,
                                    unsigned short microSeconds, unsigned short nanoSeconds) {
  *this = CDateTimeSpan(years, months, days, hours, minutes, seconds, milliSeconds, microSeconds, nanoSeconds);
}

void CDateTimeSpan::SetDateTimeSpan(unsigned long hours, unsigned long long minutes, unsigned long long seconds) {
  *this = CDateTimeSpan(hours, minutes, seconds);
}

void CDateTimeSpan::Clear() { *this = CDateTimeSpan(); }

CDateTimeSpan CDateTimeSpan::GetAsNegative() const {
  CDateTimeSpan result(*this);
  result.Negate();
  return result;
}

void CDateTimeSpan::ParseXSDDuration(const wchar_t* text) {
  Clear();
  if (text == nullptr) throw CRkInvalidValueException(L"Invalid XSD Duration (Null String)");
  ParseXSDDuration(std::wstring_view(text));
}

namespace {

// Reads the text of a duration from left to right.
class CDurationScanner {
 public:
  explicit CDurationScanner(std::wstring_view text) : m_text(text) {}

  bool IsAtEnd() const { return m_next == m_text.size(); }
  bool IsAtDigit() const { return !IsAtEnd() && IsDigit(m_text[m_next]); }
  bool Skip(wchar_t expected) {
    if (IsAtEnd() || m_text[m_next] != expected) return false;
    ++m_next;
    return true;
  }
  wchar_t TakeDesignator() {
    Require(!IsAtEnd());
    return m_text[m_next++];
  }
  // Zero where no digit stands.
  unsigned long long TakeCount() {
    unsigned long long count = 0;
    while (IsAtDigit()) {
      const unsigned digit = TakeDigit();
      Require(count <= (std::numeric_limits<unsigned long long>::max() - digit) / 10);
      count = count * 10 + digit;
    }
    return count;
  }
  // Of the digits from the seventh on, the last one is taken for the nanoseconds (sic).
  void TakeFraction(unsigned short& milliSeconds, unsigned short& microSeconds, unsigned short& nanoSeconds) {
    static constexpr unsigned short kWeights[] = {100, 10, 1};
    for (std::size_t at = 0; IsAtDigit(); ++at) {
      if (at >= 9)
        throw CRkInvalidValueException(
            FormatString(L"Invalid XSD Duration [%ls] Fraction part too long", std::wstring(m_text).c_str()));
      const auto digit = static_cast<unsigned short>(TakeDigit());
      unsigned short& field = at < 3 ? milliSeconds : microSeconds;
      if (at < 6)
        field = static_cast<unsigned short>(field + digit * kWeights[at % 3]);
      else
        nanoSeconds = digit;
    }
  }
  void Require(bool met) const {
    if (!met)
      throw CRkInvalidValueException(FormatString(
          L"Invalid XSD Duration [%ls] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]", std::wstring(m_text).c_str()));
  }

 private:
  unsigned TakeDigit() { return static_cast<unsigned>(m_text[m_next++] - L'0'); }

  std::wstring_view m_text;
  std::size_t m_next = 0;
};

}  // namespace

void CDateTimeSpan::ParseXSDDuration(std::wstring_view text) {
  Clear();
  if (text.empty()) throw CRkInvalidValueException(L"Invalid XSD Duration (Empty String)");
  CDurationScanner scanner(text);
  m_negative = scanner.Skip(L'-');
  scanner.Require(scanner.Skip(L'P'));

  Part last = Part::Start;
  while (!scanner.IsAtEnd()) {
    const bool hasDigits = scanner.IsAtDigit();
    const unsigned long long count = scanner.TakeCount();
    const auto take = [&](bool inPlace, Part part) {
      scanner.Require(inPlace);
      last = part;
      return count;
    };
    switch (scanner.TakeDesignator()) {
      case L'Y':
        scanner.Require(count <= std::numeric_limits<unsigned short>::max());
        m_years = static_cast<unsigned short>(take(last < Part::Years, Part::Years));
        break;
      case L'M':
        if (last < Part::Months)
          m_months = take(true, Part::Months);
        else
          m_minutes = take(last == Part::Time || last == Part::Hours, Part::Minutes);
        break;
      case L'D':
        m_days = take(last < Part::Days, Part::Days);
        break;
      case L'T':
        take(last < Part::Time && !hasDigits, Part::Time);
        break;
      case L'H':
        m_hours = take(last == Part::Time, Part::Hours);
        break;
      case L'S':
        m_seconds = take(last >= Part::Time && last < Part::Seconds, Part::Seconds);
        break;
      case L'.':
        m_seconds = take(last >= Part::Time && last < Part::Seconds, Part::Seconds);
        if (scanner.IsAtEnd()) break;  // sic
        scanner.TakeFraction(m_milliSeconds, m_microSeconds, m_nanoSeconds);
        scanner.Require(scanner.Skip(L'S'));
        break;
      default:
        scanner.Require(false);
    }
  }
  scanner.Require(last != Part::Start && last != Part::Time);
}

std::wstring CDateTimeSpan::ToString() const {
  std::wstring text;
  AppendTo(text);
  return text;
}

void CDateTimeSpan::AppendTo(std::wstring& out) const {
  const std::wstring fraction = ToFracString(m_milliSeconds, m_microSeconds, m_nanoSeconds);
  const bool hasDate = m_years != 0 || m_months != 0 || m_days != 0;
  const bool hasTime = m_hours != 0 || m_minutes != 0 || m_seconds != 0 || !fraction.empty();
  if (!hasDate && !hasTime) {
    out += L"PT0S";
    return;
  }
  constexpr std::size_t kParts = 6;
  wchar_t text[3 + kParts * (kMostDigits + 1)];
  wchar_t* to = text;
  if (m_negative) *to++ = L'-';
  *to++ = L'P';
  to = PutPart(to, m_years, L'Y');
  to = PutPart(to, m_months, L'M');
  to = PutPart(to, m_days, L'D');
  if (hasTime) {
    *to++ = L'T';
    to = PutPart(to, m_hours, L'H');
    to = PutPart(to, m_minutes, L'M');
    to = fraction.empty() ? PutPart(to, m_seconds, L'S') : PutCount(to, m_seconds);
  }
  out.append(text, static_cast<std::size_t>(to - text));
  if (fraction.empty()) return;
  out += fraction;
  out += L'S';
}

CompareResult CDateTimeSpan::CompareTo(const CDateTimeSpan& other) const {
  const Length a = LengthOf(*this), b = LengthOf(other);
  const CompareResult result = CompareFrom(1696, 9, a, b);
  if (CompareFrom(1697, 2, a, b) != result || CompareFrom(1903, 3, a, b) != result ||
      CompareFrom(1903, 7, a, b) != result)
    return CompareResult_Indeterminate;
  return result;
}

}  // namespace RkXmlLib16

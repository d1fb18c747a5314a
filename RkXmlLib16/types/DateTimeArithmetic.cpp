#include "RkXmlLib16/types/DateTime.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <tuple>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/types/internal/Calendar.h"
#include "RkXmlLib16/types/internal/DateTimeKind.h"

// Dates and times along the calendar: their order, sums and differences.
namespace RkXmlLib16 {

using Calendar::Wide;
using namespace DateTimeKind;

// The fields of a value, unbounded, while it is moved and compared.
class CDateTimeFields {
 public:
  explicit CDateTimeFields(const CDateTime& value)
      : m_owned(OwnedBy(value.m_type)),
        m_date{value.m_year, value.m_month, value.m_day},
        m_second(value.m_hour * 3600LL + value.m_minute * 60LL + value.m_second),
        m_nano(value.m_milliSecond * 1000000LL + value.m_microSecond * 1000LL + value.m_nanoSecond) {}

  // The first instant of the value, moved from the given offset to UTC. Fields that the type does not have count as the
  // first month, day or second, in a year that stands for any.
  static CDateTimeFields Instant(const CDateTime& value, long long offsetSeconds) {
    CDateTimeFields fields(value);
    fields.FillIn();
    const bool stays = offsetSeconds == 0 && fields.m_second < Calendar::kSecondsPerDay &&
                       fields.m_date.day <= Calendar::DaysInMonth(fields.m_date.year, fields.m_date.month);
    if (!stays) fields.MoveTo(fields.DayNumber(), fields.m_second - offsetSeconds);
    return fields;
  }

  static long long OffsetSeconds(const CDateTime& value) {
    const long long minutes = value.m_zoneMinute;
    return value.m_zoneHour * 3600LL + (value.m_zoneHour < 0 ? -minutes : minutes) * 60;
  }

  static CDateTimeFields Utc(const CDateTime& value) {
    CDateTimeFields fields = Instant(value, OffsetSeconds(value));
    if (fields.m_owned == kTime) fields.m_date = kAnyDate;  // a time of day has no day to carry into
    return fields;
  }

  // Appendix E of XML Schema: Datatypes. The carries are exact, whatever the size of the counts.
  void Add(const CDateTimeSpan& span) {
    FillIn();
    const Wide sign = span.IsNegative() ? -1 : 1;
    const Wide months = Calendar::YearIndex(m_date.year) * 12 + m_date.month - 1 +
                        sign * (static_cast<Wide>(span.GetYears()) * 12 + span.GetMonths());
    const Wide yearIndex = Calendar::FloorDiv(months, 12);
    m_date.year = static_cast<long long>(Calendar::YearFromIndex(yearIndex));
    m_date.month = static_cast<int>(months - yearIndex * 12) + 1;
    m_date.day = std::min(m_date.day, Calendar::DaysInMonth(m_date.year, m_date.month));

    const Wide nanos =
        m_nano + sign * (span.GetMilliSeconds() * 1000000LL + span.GetMicroSeconds() * 1000LL + span.GetNanoSeconds());
    const Wide carry = Calendar::FloorDiv(nanos, Calendar::kNanosPerSecond);
    m_nano = static_cast<long long>(nanos - carry * Calendar::kNanosPerSecond);
    const Wide seconds =
        sign * ((static_cast<Wide>(span.GetHours()) * 60 + span.GetMinutes()) * 60 + span.GetSeconds());
    MoveTo(DayNumber() + sign * static_cast<Wide>(span.GetDays()), m_second + seconds + carry);
  }

  // Writes back the fields that the value has.
  void Store(CDateTime& value) const {
    if ((m_owned & kYear) != 0) {
      if (m_date.year > MAX_YEAR || m_date.year < MIN_YEAR) ThrowInvalidYear(m_date.year);
      value.m_year = static_cast<short>(m_date.year);
    }
    if ((m_owned & kMonth) != 0) value.m_month = static_cast<unsigned char>(m_date.month);
    if ((m_owned & kDay) != 0) value.m_day = static_cast<unsigned char>(m_date.day);
    if ((m_owned & kTime) == 0) return;
    value.m_hour = static_cast<unsigned char>(m_second / 3600);
    value.m_minute = static_cast<unsigned char>(m_second / 60 % 60);
    value.m_second = static_cast<unsigned char>(m_second % 60);
    value.m_milliSecond = static_cast<unsigned short>(m_nano / 1000000);
    value.m_microSecond = static_cast<unsigned short>(m_nano / 1000 % 1000);
    value.m_nanoSecond = static_cast<unsigned short>(m_nano % 1000);
  }

  Wide DayNumber() const { return Calendar::DayNumber(m_date.year, m_date.month, m_date.day); }
  Wide Seconds() const { return DayNumber() * Calendar::kSecondsPerDay + m_second; }
  long long Nanos() const { return m_nano; }

  friend CompareResult CompareFields(const CDateTimeFields& a, const CDateTimeFields& b) {
    if ((a.m_date.year < 0 && b.m_date.year > 0) || (a.m_date.year > 0 && b.m_date.year < 0))
      return CompareResult_Indeterminate;
    if (a.m_owned == b.m_owned) {
      const auto key = [](const CDateTimeFields& of) {
        return std::tie(of.m_date.year, of.m_date.month, of.m_date.day, of.m_second, of.m_nano);
      };
      if (key(a) == key(b)) return CompareResult_Equal;
      return key(a) < key(b) ? CompareResult_Less : CompareResult_Greater;
    }
    const struct {
      unsigned owned;
      long long a, b;
    } fields[] = {
        {kYear, a.m_date.year, b.m_date.year},
        {kMonth, a.m_date.month, b.m_date.month},
        {kDay, a.m_date.day, b.m_date.day},
        {kTime, a.m_second / 3600, b.m_second / 3600},
        {kTime, a.m_second / 60 % 60, b.m_second / 60 % 60},
        {kTime, a.m_second % 60, b.m_second % 60},
        {kTime, a.m_nano, b.m_nano},
    };
    for (const auto& field : fields) {
      const bool inA = (a.m_owned & field.owned) != 0, inB = (b.m_owned & field.owned) != 0;
      if (inA != inB) {
        if ((inA ? field.a : field.b) != 0) return CompareResult_Indeterminate;
      } else if (field.a != field.b) {
        return field.a < field.b ? CompareResult_Less : CompareResult_Greater;
      }
    }
    return CompareResult_Equal;
  }

 private:
  static constexpr Calendar::Date kAnyDate{2000, 1, 1};

  void FillIn() {
    if (m_date.year == 0) m_date.year = kAnyDate.year;
    m_date.month = std::clamp(m_date.month, 1, 12);
    m_date.day = std::max(m_date.day, 1);
  }

  void MoveTo(Wide dayNumber, Wide second) {
    const Wide days = Calendar::FloorDiv(second, Calendar::kSecondsPerDay);
    m_date = Calendar::DateOf(dayNumber + days);
    m_second = static_cast<long long>(second - days * Calendar::kSecondsPerDay);
  }

  unsigned m_owned;
  Calendar::Date m_date;
  long long m_second;  // of the day
  long long m_nano;
};

int CDateTime::GetDayOfYear() const {
  if (m_type != dt_dateTime && m_type != dt_date) ThrowNoField(L"GetDayOfYear", GetTypeAsString());
  if (m_month < 1 || m_month > 12) return 0;
  return g_monthDayInYear[m_month - 1] + m_day + (m_month > 2 && IsLeapYear(m_year) ? 1 : 0);
}

int CDateTime::GetDayOfWeek() const {
  if (m_type != dt_dateTime && m_type != dt_date) ThrowNoField(L"GetDayOfWeek", GetTypeAsString());
  const Wide day = CDateTimeFields::Instant(*this, 0).DayNumber() + 1;  // the year 1 began on a Monday
  return static_cast<int>(day - Calendar::FloorDiv(day, 7) * 7);
}

long CDateTime::GetTime() const {
  if (m_type != dt_dateTime && m_type != dt_date)
    ThrowNoField(L"GetTime, Date Status must be dateTime or date", GetTypeAsString());
  constexpr Wide kEpoch = Calendar::DayNumber(1970, 1, 1) * Calendar::kSecondsPerDay;
  return static_cast<long>(CDateTimeFields::Utc(*this).Seconds() - kEpoch);
}

CompareResult CDateTime::CompareTo(const CDateTime& other) const {
  if (!m_isUTC && !other.m_isUTC) return Compare(*this, other);
  if (m_isUTC && other.m_isUTC) return CompareFields(CDateTimeFields::Utc(*this), CDateTimeFields::Utc(other));
  // One side may lie anywhere between 14 hours before and 14 hours after UTC.
  constexpr long long kFarthest = 14 * 3600;
  if (m_isUTC) {
    const CDateTimeFields left = CDateTimeFields::Utc(*this);
    if (CompareFields(left, CDateTimeFields::Instant(other, kFarthest)) == CompareResult_Less)
      return CompareResult_Less;
    const bool greater = CompareFields(left, CDateTimeFields::Instant(other, -kFarthest)) == CompareResult_Greater;
    return greater ? CompareResult_Greater : CompareResult_Indeterminate;
  }
  const CDateTimeFields right = CDateTimeFields::Utc(other);
  if (CompareFields(CDateTimeFields::Instant(*this, kFarthest), right) == CompareResult_Greater)
    return CompareResult_Greater;
  const bool less = CompareFields(CDateTimeFields::Instant(*this, -kFarthest), right) == CompareResult_Less;
  return less ? CompareResult_Less : CompareResult_Indeterminate;
}

void CDateTime::AddDateTimeSpan(const CDateTimeSpan& span) {
  CDateTimeFields fields(*this);
  fields.Add(span);
  fields.Store(*this);
}

CDateTime CDateTime::operator+(const CDateTimeSpan& span) const {
  CDateTime result(*this);
  result.AddDateTimeSpan(span);
  return result;
}

CDateTime& CDateTime::operator+=(const CDateTimeSpan& span) {
  AddDateTimeSpan(span);
  return *this;
}

CDateTime CDateTime::operator-(const CDateTimeSpan& span) const { return *this + span.GetAsNegative(); }

CDateTime& CDateTime::operator-=(const CDateTimeSpan& span) { return *this += span.GetAsNegative(); }

CDateTimeSpan CDateTime::operator-(const CDateTime& other) const {
  const CDateTimeFields to = CDateTimeFields::Utc(*this), from = CDateTimeFields::Utc(other);
  Wide nanos = (to.Seconds() - from.Seconds()) * Calendar::kNanosPerSecond + (to.Nanos() - from.Nanos());
  const bool negative = nanos < 0;
  if (negative) nanos = -nanos;
  const long long seconds = static_cast<long long>(nanos / Calendar::kNanosPerSecond);
  const long long fraction = static_cast<long long>(nanos % Calendar::kNanosPerSecond);
  CDateTimeSpan span(0, 0, static_cast<unsigned long>(seconds / Calendar::kSecondsPerDay),
                     static_cast<unsigned long>(seconds / 3600 % 24),
                     static_cast<unsigned long long>(seconds / 60 % 60), static_cast<unsigned long long>(seconds % 60),
                     static_cast<unsigned short>(fraction / 1000000),
                     static_cast<unsigned short>(fraction / 1000 % 1000), static_cast<unsigned short>(fraction % 1000));
  if (negative) span.Negate();
  return span;
}

CDateTime CDateTime::GetNormalized() const {
  CDateTime result(*this);
  if (!m_hasTimeZone) return result;
  CDateTimeSpan offset(static_cast<unsigned long>(std::abs(m_zoneHour)), m_zoneMinute, 0);
  if (m_zoneHour >= 0) offset.Negate();
  try {
    result.AddDateTimeSpan(offset);
    result.SetTimeZone(0, 0);
  } catch (const CRkInvalidValueException&) {
    // Beyond the calendar: the value stays where it is.
  }
  return result;
}

CompareResult Compare(const CDateTime& a, const CDateTime& b) noexcept {
  return CompareFields(CDateTimeFields(a), CDateTimeFields(b));
}

bool IsLeapYear(int year) noexcept { return Calendar::IsLeap(year); }

long long GetQuotient(long long a, int b) noexcept {
  const float quotient = std::floor(static_cast<float>(a) / static_cast<float>(b));
  if (std::isnan(quotient)) return 0;
  constexpr float kTooLarge = 9223372036854775808.0F;  // 2^63
  if (quotient >= kTooLarge) return std::numeric_limits<long long>::max();
  if (quotient < -kTooLarge) return std::numeric_limits<long long>::min();
  return static_cast<long long>(quotient);
}

long long GetModulo(long long a, int b) noexcept {
  const auto product = static_cast<unsigned long long>(b) * static_cast<unsigned long long>(GetQuotient(a, b));
  return static_cast<long long>(static_cast<unsigned long long>(a) - product);
}

}  // namespace RkXmlLib16

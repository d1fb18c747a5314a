#ifndef RKXMLLIB16_TYPES_DATETIMESPAN_H
#define RKXMLLIB16_TYPES_DATETIMESPAN_H

#include <cstdint>
#include <string>
#include <string_view>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// Result of comparing two dates or two durations, which are only partially ordered.
enum CompareResult : std::int32_t {
  CompareResult_Equal = 0,
  CompareResult_Less = 1,
  CompareResult_Greater = 2,
  CompareResult_Indeterminate = 3
};

// An xs:duration: counts of years to seconds and a fraction, kept as they were given (90 minutes stay 90 minutes), with
// one sign for the whole. A value type: copy freely, no locking.
//
//   CDateTimeSpan s;
//   s.ParseXSDDuration(L"-P1Y2M3DT4H5M6.5S");
//   s.GetMilliSeconds();  // 500
class RKXML_EXPORT CDateTimeSpan {
 public:
  CDateTimeSpan();
  CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                unsigned long long minutes, unsigned long long seconds);
  CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                unsigned long long minutes, unsigned long long seconds, unsigned short milliSeconds,
                unsigned short microSeconds, unsigned short nanoSeconds);
  CDateTimeSpan(unsigned long hours, unsigned long long minutes, unsigned long long seconds);
  CDateTimeSpan(const CDateTimeSpan& other);
  CDateTimeSpan& operator=(const CDateTimeSpan& other);
  virtual ~CDateTimeSpan();

  // Set every field; the sign becomes positive.
  void SetDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                       unsigned long long minutes, unsigned long long seconds);
  void SetDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                       unsigned long long minutes, unsigned long long seconds, unsigned short milliSeconds,
                       unsigned short microSeconds, unsigned short nanoSeconds);
  void SetDateTimeSpan(unsigned long hours, unsigned long long minutes, unsigned long long seconds);
  void Clear();

  unsigned short GetYears() const noexcept { return m_years; }
  void SetYears(unsigned short years) noexcept { m_years = years; }
  unsigned long GetMonths() const noexcept { return m_months; }
  void SetMonths(unsigned long months) noexcept { m_months = months; }
  unsigned long GetDays() const noexcept { return m_days; }
  void SetDays(unsigned long days) noexcept { m_days = days; }
  unsigned long GetHours() const noexcept { return m_hours; }
  void SetHours(unsigned long hours) noexcept { m_hours = hours; }
  unsigned long long GetMinutes() const noexcept { return m_minutes; }
  void SetMinutes(unsigned long long minutes) noexcept { m_minutes = minutes; }
  unsigned long long GetSeconds() const noexcept { return m_seconds; }
  void SetSeconds(unsigned long long seconds) noexcept { m_seconds = seconds; }
  // Fractions of a second, 0 to 999 each.
  unsigned short GetMilliSeconds() const noexcept { return m_milliSeconds; }
  void SetMilliSeconds(unsigned short milliSeconds) noexcept { m_milliSeconds = milliSeconds; }
  unsigned short GetMicroSeconds() const noexcept { return m_microSeconds; }
  void SetMicroSeconds(unsigned short microSeconds) noexcept { m_microSeconds = microSeconds; }
  unsigned short GetNanoSeconds() const noexcept { return m_nanoSeconds; }
  void SetNanoSeconds(unsigned short nanoSeconds) noexcept { m_nanoSeconds = nanoSeconds; }

  bool IsNegative() const noexcept { return m_negative; }
  void Negate() noexcept { m_negative = !m_negative; }
  CDateTimeSpan GetAsNegative() const;

  // Reads the XSD lexical form. Of the fraction digits 7 to 9 only the last one read counts and gives the nanoseconds
  // as they are: "PT0.123456789S" has 9. Throws CRkInvalidValueException; the value then holds what was parsed before
  // the error.
  void ParseXSDDuration(const wchar_t* text);
  void ParseXSDDuration(std::wstring_view text);
  // The non-zero fields in the XSD lexical form; "PT0S" when there is none.
  std::wstring ToString() const;
  void AppendTo(std::wstring& out) const;

  // The partial order of XML Schema: Datatypes: by the instants reached from 1696-09-01, 1697-02-01, 1903-03-01 and
  // 1903-07-01. Never throws: from where a duration leads out of the years -9999 to 9999, or the two lead to years of
  // different sign, the result is indeterminate, even of a duration and itself.
  CompareResult CompareTo(const CDateTimeSpan& other) const;
  bool operator==(const CDateTimeSpan& other) const { return CompareTo(other) == CompareResult_Equal; }
  bool operator!=(const CDateTimeSpan& other) const { return CompareTo(other) != CompareResult_Equal; }
  bool operator<(const CDateTimeSpan& other) const { return CompareTo(other) == CompareResult_Less; }
  bool operator>(const CDateTimeSpan& other) const { return CompareTo(other) == CompareResult_Greater; }

 private:
  unsigned short m_years = 0;
  unsigned long m_months = 0;
  unsigned long m_days = 0;
  unsigned long m_hours = 0;
  unsigned long long m_minutes = 0;
  unsigned long long m_seconds = 0;
  unsigned short m_milliSeconds = 0;
  unsigned short m_microSeconds = 0;
  unsigned short m_nanoSeconds = 0;
  bool m_negative = false;
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_TYPES_DATETIME_H
#define RKXMLLIB16_TYPES_DATETIME_H

#include <cstdint>
#include <string>
#include <string_view>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/types/DateTimeSpan.h"

namespace RkXmlLib16 {

// The kind of a CDateTime.
enum DTType : std::int32_t {
  dt_none = 0,
  dt_dateTime = 1,
  dt_date = 2,
  dt_gYearMonth = 3,
  dt_gYear = 4,
  dt_time = 5,
  dt_gDay = 6,
  dt_gMonth = 7,
  dt_gMonthDay = 8
};

constexpr short MAX_YEAR = 9999;
constexpr short MIN_YEAR = -9999;
// Days of each month, February with 29, and the days of a common year before each month.
constexpr unsigned char g_monthMax[12] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
constexpr short g_monthDayInYear[12] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};

// One value of any of the eight XSD date and time types; GetType() tells which. Years are -9999 to 9999 without a year
// 0, seconds go to 59, fractions to nanoseconds. A value type: copy freely, no locking.
//
//   CDateTime d(L"2024-02-29T08:30:00-05:30");
//   d.GetZoneHour();    // -5
//   d.GetZoneMinute();  // 30
//   (d + CDateTimeSpan(1, 0, 0, 0, 0, 0)).ToString();  // "2025-02-28T08:30:00-05:30"
//
// Unless said otherwise failures are CRkInvalidValueException; a failed parse leaves the fields read so far.
//
// Implemented in types/DateTime.cpp; arithmetic and comparison in types/DateTimeArithmetic.cpp.
class RKXML_EXPORT CDateTime {
 public:
  CDateTime();
  CDateTime(DTType type);
  // Parses a dateTime.
  CDateTime(const wchar_t* text);
  CDateTime(short year, unsigned char month, unsigned char day);
  CDateTime(short year, unsigned char month, unsigned char day, unsigned char hour, unsigned char minute,
            unsigned char second);
  CDateTime(short year, unsigned char month, unsigned char day, unsigned char hour, unsigned char minute,
            unsigned char second, unsigned short milliSecond, unsigned short microSecond, unsigned short nanoSecond);
  // The UTC dateTime, without zone, of a time_t; cleared when that lies outside the calendar.
  CDateTime(const long& t);
  CDateTime(const CDateTime& other);
  CDateTime& operator=(const CDateTime& other);
  // As the constructor, but throws the year message when the time lies outside the calendar.
  CDateTime& operator=(const long& t);
  virtual ~CDateTime();

  // Set the type and the fields, drop the zone and validate.
  void SetDateTime(DTType type, short year, unsigned char month, unsigned char day, unsigned char hour,
                   unsigned char minute, unsigned char second, unsigned short milliSecond, unsigned short microSecond,
                   unsigned short nanoSecond);
  void SetDateTime(short year, unsigned char month, unsigned char day, unsigned char hour, unsigned char minute,
                   unsigned char second);
  void SetDateTime(short year, unsigned char month, unsigned char day, unsigned char hour, unsigned char minute,
                   unsigned char second, unsigned short milliSecond, unsigned short microSecond,
                   unsigned short nanoSecond);
  void SetDate(short year, unsigned char month, unsigned char day);
  void SetTime(unsigned char hour, unsigned char minute, unsigned char second);
  void SetTime(unsigned char hour, unsigned char minute, unsigned char second, unsigned short milliSecond,
               unsigned short microSecond, unsigned short nanoSecond);
  void SetGYear(short year);
  void SetGYearMonth(short year, unsigned char month);
  void SetGMonth(unsigned char month);
  void SetGMonthDay(unsigned char month, unsigned char day);
  void SetGDay(unsigned char day);
  // Sets the fraction of a dateTime or time and validates.
  void SetFracTime(unsigned short milliSecond, unsigned short microSecond, unsigned short nanoSecond);
  // Converts: takes the fields that `target` owns, and the zone, from `source`. See CheckConversion.
  void SetDateTime(const CDateTime& source, DTType target);

  // The fields. Getters and setters throw CRkInvalidStateException "Failed to GetYear. Invalid Date Type: %ls." (and so
  // on by field) when the type does not have the field. Setters do not validate.
  short GetYear() const;
  void SetYear(short year);
  unsigned char GetMonth() const;
  void SetMonth(unsigned char month);
  unsigned char GetDay() const;
  void SetDay(unsigned char day);
  unsigned char GetHour() const;
  void SetHour(unsigned char hour);
  unsigned char GetMinute() const;
  void SetMinute(unsigned char minute);
  unsigned char GetSecond() const;
  void SetSecond(unsigned char second);
  unsigned short GetMilliSecond() const;
  void SetMilliSecond(unsigned short milliSecond);
  unsigned short GetMicroSecond() const;
  void SetMicroSecond(unsigned short microSecond);
  unsigned short GetNanoSecond() const;
  void SetNanoSecond(unsigned short nanoSecond);
  // Seconds with the fraction. Throws like the getters.
  double GetRealSecond() const;
  // Of a dateTime or date: the day of the year from 1, the day of the week from 0 = Sunday, and the time_t of the
  // instant (a value without zone is taken as UTC; fractions are cut off). Throw CRkInvalidStateException
  // "Failed to GetDayOfYear. Invalid Date Type: %ls." (and so on) for the other types.
  int GetDayOfYear() const;
  int GetDayOfWeek() const;
  long GetTime() const;

  // IsUTC: the value carries a zone of any kind. HasTimeZone: that zone is a numeric offset.
  bool IsUTC() const noexcept { return m_isUTC; }
  bool HasTimeZone() const noexcept { return m_hasTimeZone; }
  // Offset from UTC as written: hours -23..23 with the sign of the whole offset, minutes 0..59, never negative. The
  // getters throw CRkInvalidValueException unless HasTimeZone().
  short GetZoneHour() const;
  unsigned char GetZoneMinute() const;
  void SetTimeZone(short hour, unsigned char minute);
  // Makes the zone "Z" without moving the fields.
  void SetUTC() noexcept;

  // Read the XSD lexical forms and validate. ParseXSDDate reads every date form but time and dateTime and sets the type
  // by the shape of the text.
  void ParseXSDDateTime(const wchar_t* text);
  void ParseXSDDateTime(std::wstring_view text);
  void ParseXSDDate(const wchar_t* text);
  void ParseXSDDate(std::wstring_view text);
  void ParseXSDTime(const wchar_t* text);
  void ParseXSDTime(std::wstring_view text);
  // Reads a dateTime of the plain shape 2024-02-29T08:30:00, at most with a Z behind it; false, and nothing changed,
  // for any other text.
  bool ParsePlain(std::wstring_view text) noexcept;
  // The XSD lexical form for the formats null, "", "G" and "s"; otherwise the text "Unknown Format: " and the format.
  // "Error: Date Not Set" for a value without content.
  std::wstring ToString() const;
  std::wstring ToString(const wchar_t* format) const;
  void AppendTo(std::wstring& out) const;
  // The text: of a valid dateTime without fraction and offset in the space before `end`, where there must be space for
  // kPlainCharacters, else in `longer`, which is overwritten.
  static constexpr std::size_t kPlainCharacters = 20;
  std::wstring_view GetText(wchar_t* end, std::wstring& longer) const;

  // The order relation of XML Schema: Datatypes: a value with a zone and one without are ordered when they are more
  // than 14 hours apart. A time of day that is moved to UTC stays on its day: 00:30:00+01:00 equals 23:30:00Z.
  CompareResult CompareTo(const CDateTime& other) const;
  bool operator==(const CDateTime& other) const { return CompareTo(other) == CompareResult_Equal; }
  bool operator!=(const CDateTime& other) const { return CompareTo(other) != CompareResult_Equal; }
  bool operator<(const CDateTime& other) const { return CompareTo(other) == CompareResult_Less; }
  bool operator>(const CDateTime& other) const { return CompareTo(other) == CompareResult_Greater; }
  bool operator<=(const CDateTime& other) const { return CompareTo(other) <= CompareResult_Less; }
  bool operator>=(const CDateTime& other) const {
    const CompareResult result = CompareTo(other);
    return result == CompareResult_Equal || result == CompareResult_Greater;
  }

  // Adds a duration as XML Schema: Datatypes, Appendix E says. A year outside the calendar throws the year message with
  // the year that was reached and leaves the value unchanged.
  void AddDateTimeSpan(const CDateTimeSpan& span);
  CDateTime operator+(const CDateTimeSpan& span) const;
  CDateTime& operator+=(const CDateTimeSpan& span);
  CDateTime operator-(const CDateTimeSpan& span) const;
  CDateTime& operator-=(const CDateTimeSpan& span);
  // Days, hours, minutes, seconds and fraction from `other` to this value; without zone means UTC.
  CDateTimeSpan operator-(const CDateTime& other) const;
  // A copy moved to UTC, with the zone +00:00, when the value has a numeric offset; else a plain copy. What would leave
  // the calendar is returned unmoved.
  CDateTime GetNormalized() const;

  void Validate() const;
  // Every field 0, type dt_none.
  void Clear() noexcept;
  DTType GetType() const noexcept { return m_type; }
  const wchar_t* GetTypeAsString() const noexcept { return GetTypeAsString(m_type); }
  // "dateTime", "gMonthDay" and so on; "yearZero" for dt_none, "" for an unknown type.
  static const wchar_t* GetTypeAsString(DTType type) noexcept;
  // Whether a value of type `from` has the fields of `to`. Throws "Unknown date type %d." for an unknown `from`.
  static bool CheckConversion(DTType from, DTType to);
  // The current UTC time as a dateTime without zone.
  static CDateTime GetCurrentTime();

 private:
  void ReadDate(std::wstring_view text);
  void ReadTime(std::wstring_view text);
  void ReadZone(std::wstring_view text);
  inline const wchar_t* WritePlain(wchar_t* end) const noexcept;

  DTType m_type = dt_none;
  short m_year = 0;
  unsigned char m_month = 0;
  unsigned char m_day = 0;
  unsigned char m_hour = 0;
  unsigned char m_minute = 0;
  unsigned char m_second = 0;
  unsigned short m_milliSecond = 0;
  unsigned short m_microSecond = 0;
  unsigned short m_nanoSecond = 0;
  bool m_isUTC = false;
  bool m_hasTimeZone = false;
  short m_zoneHour = 0;
  unsigned char m_zoneMinute = 0;

  friend CompareResult Compare(const CDateTime& a, const CDateTime& b) noexcept;
  friend class CDateTimeFields;
};

// Compares field by field from the year to the fraction, zones left aside. Years of opposite sign are indeterminate,
// and so is a field that only one side has, unless it is 0.
RKXML_EXPORT CompareResult Compare(const CDateTime& a, const CDateTime& b) noexcept;

// The Gregorian rule, followed by negative years by their number.
RKXML_EXPORT bool IsLeapYear(int year) noexcept;

// Floor of a / b in single precision, and a - b * GetQuotient(a, b).
RKXML_EXPORT long long GetQuotient(long long a, int b) noexcept;
RKXML_EXPORT long long GetModulo(long long a, int b) noexcept;

}  // namespace RkXmlLib16

#endif

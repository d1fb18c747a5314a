#include "RkXmlLib16/types/DateTime.h"

#include <time.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/types/internal/Calendar.h"
#include "RkXmlLib16/types/internal/DateTimeKind.h"
#include "RkXmlLib16/types/internal/ReadyText.h"

// The fields of dates and times, their validation and their text forms.
namespace RkXmlLib16 {

using namespace DateTimeKind;

namespace {

using Ascii::IsDigit;

template <class... Args>
[[noreturn]] void ThrowInvalid(const wchar_t* format, Args... args) {
  throw CRkInvalidValueException(FormatString(format, args...));
}

[[noreturn]] void ThrowInvalidText(const wchar_t* format, std::wstring_view text) {
  ThrowInvalid(format, std::wstring(text).c_str());
}

// Whether `text` has the shape of `mask`, where 9 stands for a digit and everything else for itself.
template <std::size_t kSize>
bool HasShape(std::wstring_view text, const wchar_t (&mask)[kSize]) {
  if (text.size() != kSize - 1) return false;
  for (std::size_t i = 0; i < kSize - 1; ++i)
    if (mask[i] == L'9' ? !IsDigit(text[i]) : text[i] != mask[i]) return false;
  return true;
}

int TwoDigits(std::wstring_view text, std::size_t at) { return (text[at] - L'0') * 10 + (text[at + 1] - L'0'); }

// A value without its fraction takes fewer characters than this.
constexpr std::size_t kMostCharacters = 40;

inline wchar_t* PutTwoDigits(wchar_t* to, unsigned value) {
  const unsigned tens = value / 10;
  to[0] = static_cast<wchar_t>(L'0' + tens);
  to[1] = static_cast<wchar_t>(L'0' + value - tens * 10);
  return to + 2;
}

// Setters do not validate, so that a field may have three.
wchar_t* PutDigits(wchar_t* to, unsigned value) {
  if (value >= 100) *to++ = static_cast<wchar_t>(L'0' + value / 100);
  return PutTwoDigits(to, value % 100);
}

// At least four digits.
wchar_t* PutYear(wchar_t* to, unsigned year) { return PutTwoDigits(PutDigits(to, year / 100), year % 100); }

}  // namespace

void DateTimeKind::ThrowInvalidYear(long long year) {
  // sic: the bounds stand the wrong way round
  ThrowInvalid(L"Invalid Year [%lld] (%d <= year <= %d && year != 0)", year, int{MAX_YEAR}, int{MIN_YEAR});
}

void DateTimeKind::ThrowNoField(const wchar_t* operation, const wchar_t* typeName) {
  throw CRkInvalidStateException(std::wstring(L"Failed to ") + operation + L". Invalid Date Type: " + typeName + L".");
}

CDateTime::CDateTime() = default;
CDateTime::CDateTime(DTType type) : m_type(type) {}
CDateTime::CDateTime(const wchar_t* text) { ParseXSDDateTime(text); }
CDateTime::CDateTime(short year, unsigned char month, unsigned char day) { SetDate(year, month, day); }
CDateTime::CDateTime(short year, unsigned char month, unsigned char day, unsigned char hour, unsigned char minute,
                     unsigned char second) {
  SetDateTime(year, month, day, hour, minute, second);
}
CDateTime::CDateTime(short year, unsigned char month, unsigned char day, unsigned char hour, unsigned char minute,
                     unsigned char second, unsigned short milliSecond, unsigned short microSecond,
                     unsigned short nanoSecond) {
  SetDateTime(year, month, day, hour, minute, second, milliSecond, microSecond, nanoSecond);
}
CDateTime::CDateTime(const long& t) {
  try {
    *this = t;
  } catch (const CRkInvalidValueException&) {
    Clear();
  }
}
CDateTime::CDateTime(const CDateTime& other) = default;
CDateTime& CDateTime::operator=(const CDateTime& other) = default;
CDateTime::~CDateTime() = default;

CDateTime& CDateTime::operator=(const long& t) {
  struct tm parts {};
  const time_t time = t;
  constexpr long kSecondsPerYear = 31556952;
  if (gmtime_r(&time, &parts) == nullptr) ThrowInvalidYear(1970 + t / kSecondsPerYear);
  const long long year = 1900LL + parts.tm_year;
  if (year < MIN_YEAR || year > MAX_YEAR) ThrowInvalidYear(year);
  SetDateTime(static_cast<short>(year), static_cast<unsigned char>(parts.tm_mon + 1),
              static_cast<unsigned char>(parts.tm_mday), static_cast<unsigned char>(parts.tm_hour),
              static_cast<unsigned char>(parts.tm_min), static_cast<unsigned char>(parts.tm_sec));
  return *this;
}

void CDateTime::SetDateTime(DTType type, short year, unsigned char month, unsigned char day, unsigned char hour,
                            unsigned char minute, unsigned char second, unsigned short milliSecond,
                            unsigned short microSecond, unsigned short nanoSecond) {
  Clear();
  m_type = type;
  m_year = year;
  m_month = month;
  m_day = day;
  m_hour = hour;
  m_minute = minute;
  m_second = second;
  m_milliSecond = milliSecond;
  m_microSecond = microSecond;
  m_nanoSecond = nanoSecond;
  Validate();
}

void CDateTime::SetDateTime(short year, unsigned char month, unsigned char day, unsigned char hour,
                            unsigned char minute, unsigned char second) {
  SetDateTime(dt_dateTime, year, month, day, hour, minute, second, 0, 0, 0);
}

void CDateTime::SetDateTime(short year, unsigned char month, unsigned char day, unsigned char hour,
                            unsigned char minute, unsigned char second, unsigned short milliSecond,
                            unsigned short microSecond, unsigned short nanoSecond) {
  SetDateTime(dt_dateTime, year, month, day, hour, minute, second, milliSecond, microSecond, nanoSecond);
}

void CDateTime::SetDate(short year, unsigned char month, unsigned char day) {
  SetDateTime(dt_date, year, month, day, 0, 0, 0, 0, 0, 0);
}

void CDateTime::SetTime(unsigned char hour, unsigned char minute, unsigned char second) {
  SetDateTime(dt_time, 0, 0, 0, hour, minute, second, 0, 0, 0);
}

void CDateTime::SetTime(unsigned char hour, unsigned char minute, unsigned char second, unsigned short milliSecond,
                        unsigned short microSecond, unsigned short nanoSecond) {
  SetDateTime(dt_time, 0, 0, 0, hour, minute, second, milliSecond, microSecond, nanoSecond);
}

void CDateTime::SetGYear(short year) { SetDateTime(dt_gYear, year, 0, 0, 0, 0, 0, 0, 0, 0); }
void CDateTime::SetGYearMonth(short year, unsigned char month) {
  SetDateTime(dt_gYearMonth, year, month, 0, 0, 0, 0, 0, 0, 0);
}
void CDateTime::SetGMonth(unsigned char month) { SetDateTime(dt_gMonth, 0, month, 0, 0, 0, 0, 0, 0, 0); }
void CDateTime::SetGMonthDay(unsigned char month, unsigned char day) {
  SetDateTime(dt_gMonthDay, 0, month, day, 0, 0, 0, 0, 0, 0);
}
void CDateTime::SetGDay(unsigned char day) { SetDateTime(dt_gDay, 0, 0, day, 0, 0, 0, 0, 0, 0); }

void CDateTime::SetFracTime(unsigned short milliSecond, unsigned short microSecond, unsigned short nanoSecond) {
  m_milliSecond = milliSecond;
  m_microSecond = microSecond;
  m_nanoSecond = nanoSecond;
  Validate();
}

void CDateTime::SetDateTime(const CDateTime& source, DTType target) {
  if (!CheckConversion(source.m_type, target))
    ThrowInvalid(
        L"Attempting to set a CDateTime of type %ls using an XmlDateTime of type %ls. "
        L"The source CDateTime does not contian enough data to allow the conversion.",  // sic
        GetTypeAsString(target), source.GetTypeAsString());
  CDateTime result(source);
  const unsigned owned = OwnedBy(target);
  result.m_type = target;
  if ((owned & kYear) == 0) result.m_year = 0;
  if ((owned & kMonth) == 0) result.m_month = 0;
  if ((owned & kDay) == 0) result.m_day = 0;
  if ((owned & kTime) == 0) {
    result.m_hour = result.m_minute = result.m_second = 0;
    result.m_milliSecond = result.m_microSecond = result.m_nanoSecond = 0;
  }
  *this = result;
}

bool CDateTime::CheckConversion(DTType from, DTType to) {
  if (!IsKnown(from)) ThrowInvalid(L"Unknown date type %d.", static_cast<int>(from));
  if (from == to || to == dt_none) return true;
  // A value converts to every type whose fields it has.
  return from != dt_none && IsKnown(to) && (OwnedBy(to) & ~OwnedBy(from)) == 0;
}

#define RKXML_FIELD(Type, Name, member, bit)                                         \
  Type CDateTime::Get##Name() const {                                                \
    if ((OwnedBy(m_type) & bit) == 0) ThrowNoField(L"Get" #Name, GetTypeAsString()); \
    return member;                                                                   \
  }                                                                                  \
  void CDateTime::Set##Name(Type value) {                                            \
    if ((OwnedBy(m_type) & bit) == 0) ThrowNoField(L"Get" #Name, GetTypeAsString()); \
    member = value;                                                                  \
  }
RKXML_FIELD(short, Year, m_year, kYear)
RKXML_FIELD(unsigned char, Month, m_month, kMonth)
RKXML_FIELD(unsigned char, Day, m_day, kDay)
RKXML_FIELD(unsigned char, Hour, m_hour, kTime)
RKXML_FIELD(unsigned char, Minute, m_minute, kTime)
RKXML_FIELD(unsigned char, Second, m_second, kTime)
RKXML_FIELD(unsigned short, MilliSecond, m_milliSecond, kTime)
RKXML_FIELD(unsigned short, MicroSecond, m_microSecond, kTime)
RKXML_FIELD(unsigned short, NanoSecond, m_nanoSecond, kTime)
#undef RKXML_FIELD

double CDateTime::GetRealSecond() const {
  if ((OwnedBy(m_type) & kTime) == 0) ThrowNoField(L"GetRealSecond", GetTypeAsString());
  return m_second + m_milliSecond / 1e3 + m_microSecond / 1e6 + m_nanoSecond / 1e9;
}

short CDateTime::GetZoneHour() const {
  if (!m_hasTimeZone) throw CRkInvalidValueException(L"TimeZone is not been used");  // sic
  return m_zoneHour;
}

unsigned char CDateTime::GetZoneMinute() const {
  if (!m_hasTimeZone) throw CRkInvalidValueException(L"TimeZone is not been used");  // sic
  return m_zoneMinute;
}

void CDateTime::SetTimeZone(short hour, unsigned char minute) {
  if (hour < -23 || hour > 23 || minute > 59) ThrowInvalid(L"Invalid TimeZone [%d:%d]", int{hour}, int{minute});
  m_isUTC = true;
  m_hasTimeZone = true;
  m_zoneHour = hour;
  m_zoneMinute = minute;
}

void CDateTime::SetUTC() noexcept {
  m_isUTC = true;
  m_hasTimeZone = false;
  m_zoneHour = 0;
  m_zoneMinute = 0;
}

void CDateTime::ParseXSDDateTime(const wchar_t* text) {
  Clear();
  if (text == nullptr) throw CRkInvalidValueException(L"Invalid DateTime (Null String)");
  ParseXSDDateTime(std::wstring_view(text));
}

bool CDateTime::ParsePlain(std::wstring_view text) noexcept {
  constexpr std::size_t kSize = 19;
  const bool isUtc = text.size() == kSize + 1 && text[kSize] == L'Z';
  if (RKXML_UNLIKELY(!isUtc && text.size() != kSize)) return false;
  constexpr char kFrom[16] = {'0', '0', '0', '0', '-', '0', '0', '-', '0', '0', 'T', '0', '0', ':', '0', '0'};
  constexpr unsigned char kMost[16] = {9, 9, 9, 9, 0, 1, 9, 0, 3, 9, 0, 2, 9, 0, 5, 9};
  unsigned char digits[16];
  if (RKXML_UNLIKELY(!Ascii::Distances(text.data(), kFrom, kMost, digits))) return false;
  if (RKXML_UNLIKELY(text[16] != L':' || !IsDigit(text[17]) || text[17] > L'5' || !IsDigit(text[18]))) return false;
  const auto number = [&digits](std::size_t at) { return digits[at] * 10 + digits[at + 1]; };
  const int year = number(0) * 100 + number(2), month = number(5), day = number(8), hour = number(11);
  constexpr int kDaysOfEveryMonth = 28;
  if (RKXML_UNLIKELY(year == 0 || month < 1 || month > 12 || day < 1 || hour > 23 ||
                     (day > kDaysOfEveryMonth && day > Calendar::DaysInMonth(year, month))))
    return false;
  Clear();
  m_type = dt_dateTime;
  m_year = static_cast<short>(year);
  m_month = static_cast<unsigned char>(month);
  m_day = static_cast<unsigned char>(day);
  m_hour = static_cast<unsigned char>(hour);
  m_minute = static_cast<unsigned char>(number(14));
  m_second = static_cast<unsigned char>(TwoDigits(text, 17));
  m_isUTC = isUtc;
  return true;
}

void CDateTime::ParseXSDDateTime(std::wstring_view text) {
  if (ParsePlain(text)) return;
  Clear();
  const std::size_t t = text.find(L'T');
  if (t == std::wstring_view::npos) ThrowInvalidText(L"Invalid XSD DateTime [%ls].", text);
  ReadDate(text.substr(0, t));
  if (m_type != dt_date || m_isUTC)
    ThrowInvalidText(L"Invalid XSD DateTime [%ls] expected CCYY-MM-DDThh:mm:ss[.ff]", text);
  ReadTime(text.substr(t + 1));
  m_type = dt_dateTime;
  Validate();
}

void CDateTime::ParseXSDDate(const wchar_t* text) {
  Clear();
  if (text == nullptr) throw CRkInvalidValueException(L"Invalid Date (Null String)");
  ParseXSDDate(std::wstring_view(text));
}

void CDateTime::ParseXSDDate(std::wstring_view text) {
  Clear();
  ReadDate(text);
  Validate();
}

void CDateTime::ParseXSDTime(const wchar_t* text) {
  Clear();
  if (text == nullptr) throw CRkInvalidValueException(L"Invalid Time (Null String)");
  ParseXSDTime(std::wstring_view(text));
}

void CDateTime::ParseXSDTime(std::wstring_view text) {
  Clear();
  ReadTime(text);
  Validate();
}

void CDateTime::ReadDate(std::wstring_view text) {
  if (text.empty()) throw CRkInvalidValueException(L"Invalid Date (Empty String)");
  const auto readYear = [this](std::wstring_view date, bool negative) {
    const int year = TwoDigits(date, 0) * 100 + TwoDigits(date, 2);
    m_year = static_cast<short>(negative ? -year : year);
  };
  const auto readMonthAndDay = [this](std::wstring_view date) {
    m_month = static_cast<unsigned char>(TwoDigits(date, 5));
    if (m_type == dt_date) m_day = static_cast<unsigned char>(TwoDigits(date, 8));
  };
  if (HasShape(text, L"9999-99-99")) {  // which most dates have
    m_type = dt_date;
    readYear(text, /*negative=*/false);
    return readMonthAndDay(text);
  }
  if (text.find(L'T') != std::wstring_view::npos) throw CRkInvalidValueException(L"Invalid Date ('T' not allowed)");
  const bool isUtc = text.back() == L'Z';
  const bool hasOffset = text.find(L':') != std::wstring_view::npos;
  if (isUtc && hasOffset) throw CRkInvalidValueException(L"Invalid Date (Bad Zone value)");
  const std::size_t zoneSize = isUtc ? 1 : hasOffset ? 6 : 0;
  const std::wstring_view body = text.substr(0, text.size() - std::min(zoneSize, text.size()));

  if (HasShape(body, L"--99") || (body.size() == 6 && HasShape(body.substr(0, 4), L"--99"))) {
    m_type = dt_gMonth;
    m_month = static_cast<unsigned char>(TwoDigits(body, 2));
  } else if (HasShape(body, L"---99")) {
    m_type = dt_gDay;
    m_day = static_cast<unsigned char>(TwoDigits(body, 3));
  } else if (HasShape(body, L"--99-99")) {
    m_type = dt_gMonthDay;
    m_month = static_cast<unsigned char>(TwoDigits(body, 2));
    m_day = static_cast<unsigned char>(TwoDigits(body, 5));
  } else {
    const bool negative = !body.empty() && body.front() == L'-';
    const std::wstring_view date = body.substr(negative ? 1 : 0);
    if (HasShape(date, L"9999-99-99"))
      m_type = dt_date;
    else if (HasShape(date, L"9999-99"))
      m_type = dt_gYearMonth;
    else if (HasShape(date, L"9999"))
      m_type = dt_gYear;
    else
      ThrowInvalidText(L"Invalid XSD Date [%ls] expected CCYY-MM-DD[Z|[+|-]hh:mm]", text);
    readYear(date, negative);
    if (m_type != dt_gYear) readMonthAndDay(date);
  }
  if (zoneSize != 0) ReadZone(text.substr(body.size()));
}

void CDateTime::ReadTime(std::wstring_view text) {
  if (text.empty()) throw CRkInvalidValueException(L"Invalid XSD Time (Empty String)");
  constexpr std::size_t kTimeSize = 8;
  const bool shaped = HasShape(text.substr(0, kTimeSize), L"99:99:99");
  if (!shaped || TwoDigits(text, 0) > 23 || TwoDigits(text, 3) > 59 || TwoDigits(text, 6) > 59)
    ThrowInvalidText(L"Invalid XSD Time [%ls] expected hh:mm:ss[.ff]", text);
  m_hour = static_cast<unsigned char>(TwoDigits(text, 0));
  m_minute = static_cast<unsigned char>(TwoDigits(text, 3));
  m_second = static_cast<unsigned char>(TwoDigits(text, 6));
  std::size_t i = kTimeSize;
  if (i < text.size() && text[i] == L'.') {
    unsigned short* const fields[] = {&m_milliSecond, &m_microSecond, &m_nanoSecond};
    constexpr int kWeights[] = {100, 10, 1};
    std::size_t digits = 0;
    for (++i; i < text.size() && IsDigit(text[i]); ++i, ++digits) {
      if (digits == 9) ThrowInvalidText(L"Invalid XSD Time [%ls] Fraction part too long", text);
      unsigned short& field = *fields[digits / 3];
      field = static_cast<unsigned short>(field + (text[i] - L'0') * kWeights[digits % 3]);
    }
  }
  if (i < text.size()) ReadZone(text.substr(i));
  m_type = dt_time;
}

void CDateTime::ReadZone(std::wstring_view text) {
  if (text == L"Z") {
    SetUTC();
    return;
  }
  if (!HasShape(text, L"+99:99") && !HasShape(text, L"-99:99")) ThrowInvalidText(L"Invalid XSD Time Zone [%ls].", text);
  int hour = TwoDigits(text, 1);
  if (hour == 24) hour = 0;
  SetTimeZone(static_cast<short>(text[0] == L'-' ? -hour : hour), static_cast<unsigned char>(TwoDigits(text, 4)));
}

void CDateTime::Validate() const {
  if (m_type == dt_none) throw CRkInvalidValueException(L"Invalid Year Zero");
  const unsigned owned = OwnedBy(m_type);
  const wchar_t* const type = GetTypeAsString();

  if ((owned & kMonth) != 0) {
    if (m_month < 1 || m_month > 12) ThrowInvalid(L"Invalid Month [%d] (1 <= month <= 12)", int{m_month});
  } else if (m_month != 0) {
    ThrowInvalid(L"Invalid Month [%d] for type %ls", int{m_month}, type);
  }

  if ((owned & kYear) != 0) {
    if (m_year == 0 || m_year < MIN_YEAR || m_year > MAX_YEAR) ThrowInvalidYear(m_year);
  } else if (m_year != 0) {
    ThrowInvalid(L"Invalid Year [%d] for type %ls", int{m_year}, type);
  }

  switch (m_type) {
    case dt_dateTime:
    case dt_date:
      if (m_day < 1 || m_day > Calendar::DaysInMonth(m_year, m_month))
        ThrowInvalid(L"Invalid Day [%d] (1 <= day <= days in month", int{m_day});  // sic
      break;
    case dt_gMonthDay:
      // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): the month has passed above
      if (m_day < 1 || m_day > g_monthMax[m_month - 1])
        ThrowInvalid(L"Invalid Day [%d] (1 <= day <= days in month)", int{m_day});
      break;
    case dt_gDay:
      // The upper bound of the message is deliberately not applied: 32 to 99 pass.
      if (m_day == 0) ThrowInvalid(L"Invalid Day [%d] (1 <= day <= 31)", int{m_day});
      break;
    default:
      if (m_day != 0) ThrowInvalid(L"Invalid Day [%d] for type %ls", int{m_day}, type);
  }

  const bool hasTime = (owned & kTime) != 0;
  const auto checkTime = [hasTime, type](int value, int most, const wchar_t* name, const wchar_t* word) {
    if (value <= (hasTime ? most : 0)) return;
    if (!hasTime) ThrowInvalid(L"Invalid %ls [%d] for type %ls", name, value, type);
    ThrowInvalid(L"Invalid %ls [%d] (0 <= %ls <= %d)", name, value, word, most);
  };
  checkTime(m_hour, 23, L"Hour", L"hour");
  checkTime(m_minute, 59, L"Minute", L"minute");
  checkTime(m_second, 59, L"Second", L"second");
  checkTime(m_milliSecond, 999, L"Milli-Second", L"milli");
  checkTime(m_microSecond, 999, L"Micro-Second", L"micro");
  checkTime(m_nanoSecond, 999, L"Nano-Second", L"nano");
}

std::wstring CDateTime::ToString() const {
  std::wstring text;
  AppendTo(text);
  return text;
}

std::wstring CDateTime::ToString(const wchar_t* format) const {
  const std::wstring_view name(format == nullptr ? L"" : format);
  if (name.empty() || name == L"G" || name == L"s") return ToString();
  return std::wstring(L"Unknown Format: ").append(name);
}

// Writes the text of a valid dateTime without fraction and offset so that it ends before `end`, two digits in each
// place, and returns its start; null, and nothing written, for others.
inline const wchar_t* CDateTime::WritePlain(wchar_t* end) const noexcept {
  constexpr int kTwoDigits = 64;  // the fields of a valid value stay below it, together too
  if (m_type != dt_dateTime || m_year <= 0 || m_year > MAX_YEAR || m_hasTimeZone ||
      (m_month | m_day | m_hour | m_minute | m_second) >= kTwoDigits ||
      (m_milliSecond | m_microSecond | m_nanoSecond) != 0)
    return nullptr;
  static constexpr wchar_t kShape[] = L"CCYY-MM-DDThh:mm:ss";
  constexpr std::size_t kSize = std::size(kShape) - 1;
  static_assert(kSize + 1 == kPlainCharacters);
  wchar_t* const text = end - (m_isUTC ? kSize + 1 : kSize);
  std::copy_n(kShape, kSize, text);
  if (m_isUTC) text[kSize] = L'Z';
  const auto put = [text](std::size_t at, unsigned value) { PutTwoDigits(text + at, value); };
  const unsigned year = static_cast<unsigned>(m_year);
  put(0, year / 100);
  put(2, year % 100);
  put(5, m_month);
  put(8, m_day);
  put(11, m_hour);
  put(14, m_minute);
  put(17, m_second);
  return text;
}

std::wstring_view CDateTime::GetText(wchar_t* end, std::wstring& longer) const {
  return ReadyText(*this, WritePlain(end), end, longer);
}

void CDateTime::AppendTo(std::wstring& out) const {
  wchar_t plain[kPlainCharacters];
  if (const wchar_t* const first = WritePlain(std::end(plain))) {
    out.append(first, static_cast<std::size_t>(std::end(plain) - first));
    return;
  }
  const bool empty = m_year == 0 && m_month == 0 && m_day == 0 && m_hour == 0 && m_minute == 0 && m_second == 0 &&
                     m_milliSecond == 0 && m_microSecond == 0 && m_nanoSecond == 0;
  const unsigned owned = OwnedBy(m_type);
  if (owned == 0 || (empty && m_type != dt_time)) {
    out += L"Error: Date Not Set";
    return;
  }
  wchar_t buffer[kMostCharacters];
  wchar_t* to = buffer;
  if ((owned & kYear) != 0) {
    if (m_year < 0) *to++ = L'-';
    to = PutYear(to, static_cast<unsigned>(std::abs(m_year)));
  } else if (m_type != dt_time) {
    *to++ = L'-';
  }
  if ((owned & (kMonth | kDay)) != 0) *to++ = L'-';
  if ((owned & kMonth) != 0) to = PutDigits(to, m_month);
  if ((owned & kDay) != 0) {
    *to++ = L'-';
    to = PutDigits(to, m_day);
  }
  if ((owned & kTime) != 0) {
    if (m_type == dt_dateTime) *to++ = L'T';
    to = PutDigits(to, m_hour);
    *to++ = L':';
    to = PutDigits(to, m_minute);
    *to++ = L':';
    to = PutDigits(to, m_second);
    if (m_milliSecond != 0 || m_microSecond != 0 || m_nanoSecond != 0) {
      out.append(buffer, static_cast<std::size_t>(to - buffer));
      to = buffer;
      out += ToFracString(m_milliSecond, m_microSecond, m_nanoSecond);
    }
  }
  if (m_isUTC && !m_hasTimeZone) *to++ = L'Z';
  if (m_isUTC && m_hasTimeZone) {
    *to++ = m_zoneHour < 0 ? L'-' : L'+';
    to = PutDigits(to, static_cast<unsigned>(std::abs(m_zoneHour)));
    *to++ = L':';
    to = PutDigits(to, m_zoneMinute);
  }
  out.append(buffer, static_cast<std::size_t>(to - buffer));
}

void CDateTime::Clear() noexcept {
  m_type = dt_none;
  m_year = 0;
  m_month = m_day = m_hour = m_minute = m_second = 0;
  m_milliSecond = m_microSecond = m_nanoSecond = 0;
  m_isUTC = m_hasTimeZone = false;
  m_zoneHour = 0;
  m_zoneMinute = 0;
}

const wchar_t* CDateTime::GetTypeAsString(DTType type) noexcept { return IsKnown(type) ? kTypes[type].name : L""; }

CDateTime CDateTime::GetCurrentTime() { return CDateTime(static_cast<long>(time(nullptr))); }

}  // namespace RkXmlLib16

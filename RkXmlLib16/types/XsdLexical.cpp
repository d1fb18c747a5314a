#include "RkXmlLib16/types/XsdLexical.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

namespace RkXmlLib16::Xsd {

namespace {

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool IsHexDigit(wchar_t c) { return IsDigit(c) || (c >= L'a' && c <= L'f') || (c >= L'A' && c <= L'F'); }

Order OrderOf(int sign) { return sign < 0 ? Order::Less : sign > 0 ? Order::Greater : Order::Equal; }

template <class T>
Order OrderOf(const T& a, const T& b) {
  return a < b ? Order::Less : b < a ? Order::Greater : Order::Equal;
}

// ---- decimal
// ---------------------------------------------------------------------------------------------------------

struct Decimal {
  bool negative = false;
  std::wstring_view integer;   // without leading zeros
  std::wstring_view fraction;  // without trailing zeros

  bool IsZero() const { return integer.empty() && fraction.empty(); }
};

std::optional<Decimal> ParseDecimal(std::wstring_view text) {
  Decimal d;
  if (!text.empty() && (text[0] == L'-' || text[0] == L'+')) {
    d.negative = text[0] == L'-';
    text.remove_prefix(1);
  }
  const std::size_t point = std::min(text.find(L'.'), text.size());
  d.integer = text.substr(0, point);
  if (point < text.size()) d.fraction = text.substr(point + 1);
  if (d.integer.empty() && d.fraction.empty()) return std::nullopt;
  if (!std::all_of(d.integer.begin(), d.integer.end(), IsDigit) ||
      !std::all_of(d.fraction.begin(), d.fraction.end(), IsDigit))
    return std::nullopt;
  d.integer.remove_prefix(std::min(d.integer.find_first_not_of(L'0'), d.integer.size()));
  const std::size_t last = d.fraction.find_last_not_of(L'0');
  d.fraction = d.fraction.substr(0, last == std::wstring_view::npos ? 0 : last + 1);
  if (d.IsZero()) d.negative = false;
  return d;
}

int CompareMagnitude(const Decimal& a, const Decimal& b) {
  if (a.integer.size() != b.integer.size()) return a.integer.size() < b.integer.size() ? -1 : 1;
  const int integer = a.integer.compare(b.integer);
  return integer != 0 ? integer : a.fraction.compare(b.fraction);
}

Order CompareDecimals(std::wstring_view a, std::wstring_view b) {
  const auto x = ParseDecimal(a);
  const auto y = ParseDecimal(b);
  if (!x || !y) return Order::None;
  if (x->negative != y->negative) return x->negative ? Order::Less : Order::Greater;
  const int magnitude = CompareMagnitude(*x, *y);
  return OrderOf(x->negative ? -magnitude : magnitude);
}

std::wstring DecimalKey(std::wstring_view text) {
  const auto d = ParseDecimal(text);
  if (!d) return std::wstring(text);
  std::wstring key = d->negative ? L"-" : L"";
  key += d->integer;
  key += L'.';
  key += d->fraction;
  return key;
}

// ---- float and double
// ------------------------------------------------------------------------------------------------

bool IsFloatingText(std::wstring_view text) {
  if (text == L"INF" || text == L"-INF" || text == L"NaN") return true;
  const std::size_t exponent = text.find_first_of(L"eE");
  if (exponent != std::wstring_view::npos) {
    std::wstring_view power = text.substr(exponent + 1);
    if (!power.empty() && (power[0] == L'-' || power[0] == L'+')) power.remove_prefix(1);
    if (power.empty() || !std::all_of(power.begin(), power.end(), IsDigit)) return false;
  }
  return ParseDecimal(text.substr(0, exponent)).has_value();
}

template <class T>
T ParseFloating(std::wstring_view text) {
  if (text == L"INF") return std::numeric_limits<T>::infinity();
  if (text == L"-INF") return -std::numeric_limits<T>::infinity();
  if (text == L"NaN") return std::numeric_limits<T>::quiet_NaN();
  std::string narrow;
  for (const wchar_t c : text) narrow += static_cast<char>(c);
  const char* first = narrow.data();
  if (*first == '+') ++first;
  T value = 0;
  const auto result = std::from_chars(first, narrow.data() + narrow.size(), value);
  if (result.ec != std::errc::result_out_of_range) return value;
  // Beyond the range on one side or the other.
  const std::size_t exponent = narrow.find_first_of("eE");
  const bool tiny = exponent != std::string::npos && narrow.find('-', exponent) != std::string::npos;
  const T magnitude = tiny ? T{0} : std::numeric_limits<T>::infinity();
  return narrow[0] == '-' ? -magnitude : magnitude;
}

template <class T>
Order CompareFloating(std::wstring_view a, std::wstring_view b) {
  const T x = ParseFloating<T>(a);
  const T y = ParseFloating<T>(b);
  if (std::isnan(x) || std::isnan(y)) return std::isnan(x) && std::isnan(y) ? Order::Equal : Order::None;
  return OrderOf(x, y);
}

template <class T>
std::wstring FloatingKey(std::wstring_view text) {
  const T value = ParseFloating<T>(text);
  if (std::isnan(value)) return L"NaN";
  if (value == 0) return L"0";
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::wstring(buffer, result.ptr);
}

// ---- dates and times
// -------------------------------------------------------------------------------------------------

constexpr std::int64_t kMostYears = 1000000000000000;  // larger ones are compared as if they were this
constexpr std::int64_t kSecondsPerDay = 86400;

// A point on the time line: days since 1970-01-01, seconds of the day, digits of the fraction.
struct Moment {
  std::int64_t days = 0;
  std::int64_t seconds = 0;
  std::wstring fraction;
  bool hasZone = false;

  void AddSeconds(std::int64_t more) {
    seconds += more;
    std::int64_t carry = seconds / kSecondsPerDay;
    seconds %= kSecondsPerDay;
    if (seconds < 0) {
      seconds += kSecondsPerDay;
      --carry;
    }
    days += carry;
  }
};

Order CompareOnLine(const Moment& a, const Moment& b) {
  if (a.days != b.days) return OrderOf(a.days, b.days);
  if (a.seconds != b.seconds) return OrderOf(a.seconds, b.seconds);
  return OrderOf(a.fraction, b.fraction);
}

std::int64_t DaysFromCivil(std::int64_t year, int month, int day) {
  year -= month <= 2 ? 1 : 0;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const std::int64_t yearOfEra = year - era * 400;
  const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

int DaysInMonth(std::int64_t year, int month) {
  if (month == 2) return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0 ? 29 : 28;
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

class CDateParser {
 public:
  explicit CDateParser(std::wstring_view text) : m_rest(text) {}

  std::optional<Moment> Parse(BuiltInType type) {
    const bool ok = Fields(type) && Zone() && m_rest.empty();
    if (!ok) return std::nullopt;
    Moment moment;
    moment.days = DaysFromCivil(m_year, m_month, m_day);
    moment.fraction = m_fraction;
    moment.hasZone = m_hasZone;
    moment.seconds = m_seconds;
    moment.AddSeconds(-m_zoneMinutes * 60);
    return moment;
  }

 private:
  bool Literal(wchar_t c) {
    if (m_rest.empty() || m_rest[0] != c) return false;
    m_rest.remove_prefix(1);
    return true;
  }

  bool TwoDigits(int least, int most, int& value) {
    if (m_rest.size() < 2 || !IsDigit(m_rest[0]) || !IsDigit(m_rest[1])) return false;
    value = (m_rest[0] - L'0') * 10 + (m_rest[1] - L'0');
    m_rest.remove_prefix(2);
    return value >= least && value <= most;
  }

  bool Year() {
    const bool negative = Literal(L'-');
    std::size_t count = 0;
    while (count < m_rest.size() && IsDigit(m_rest[count])) ++count;
    if (count < 4 || (count > 4 && m_rest[0] == L'0')) return false;
    std::int64_t year = 0;
    for (const wchar_t c : m_rest.substr(0, count)) year = std::min<std::int64_t>(year * 10 + (c - L'0'), kMostYears);
    m_rest.remove_prefix(count);
    if (year == 0) return false;
    m_year = negative ? 1 - year : year;  // the year before 1 is -1
    return true;
  }

  bool Month() { return TwoDigits(1, 12, m_month); }
  bool Day() { return TwoDigits(1, DaysInMonth(m_year, m_month), m_day); }

  bool Time() {
    int hour = 0;
    int minute = 0;
    int second = 0;
    if (!TwoDigits(0, 24, hour) || !Literal(L':') || !TwoDigits(0, 59, minute) || !Literal(L':') ||
        !TwoDigits(0, 59, second))
      return false;
    if (Literal(L'.')) {
      std::size_t count = 0;
      while (count < m_rest.size() && IsDigit(m_rest[count])) ++count;
      if (count == 0) return false;
      const std::wstring_view digits = m_rest.substr(0, count);
      const std::size_t last = digits.find_last_not_of(L'0');
      m_fraction = digits.substr(0, last == std::wstring_view::npos ? 0 : last + 1);
      m_rest.remove_prefix(count);
    }
    if (hour == 24 && (minute != 0 || second != 0 || !m_fraction.empty())) return false;
    m_seconds = hour * 3600 + minute * 60 + second;
    return true;
  }

  bool Zone() {
    if (m_rest.empty()) return true;
    m_hasZone = true;
    if (Literal(L'Z')) return true;
    const bool negative = m_rest[0] == L'-';
    if (!Literal(L'-') && !Literal(L'+')) return false;
    int hour = 0;
    int minute = 0;
    if (!TwoDigits(0, 14, hour) || !Literal(L':') || !TwoDigits(0, hour == 14 ? 0 : 59, minute)) return false;
    m_zoneMinutes = (hour * 60 + minute) * (negative ? -1 : 1);
    return true;
  }

  bool Fields(BuiltInType type) {
    switch (type) {
      case BuiltInType::DateTime:
        return Year() && Literal(L'-') && Month() && Literal(L'-') && Day() && Literal(L'T') && Time();
      case BuiltInType::Date:
        return Year() && Literal(L'-') && Month() && Literal(L'-') && Day();
      case BuiltInType::Time: {
        // 24:00:00 is the same time as 00:00:00.
        const bool ok = Time();
        m_seconds %= kSecondsPerDay;
        return ok;
      }
      case BuiltInType::GYearMonth:
        return Year() && Literal(L'-') && Month();
      case BuiltInType::GYear:
        return Year();
      case BuiltInType::GMonthDay:
        return Literal(L'-') && Literal(L'-') && Month() && Literal(L'-') && Day();
      case BuiltInType::GDay:
        return Literal(L'-') && Literal(L'-') && Literal(L'-') && Day();
      case BuiltInType::GMonth:
        return Literal(L'-') && Literal(L'-') && Month();
      default:
        return false;
    }
  }

  std::wstring_view m_rest;
  // What a type lacks is taken from a leap year and a month of 31 days.
  std::int64_t m_year = 1972;
  int m_month = 1;
  int m_day = 1;
  std::int64_t m_seconds = 0;
  std::wstring m_fraction;
  bool m_hasZone = false;
  int m_zoneMinutes = 0;
};

constexpr std::int64_t kFourteenHours = 14 * 3600;

Order CompareMoments(Moment a, Moment b) {
  if (a.hasZone == b.hasZone) return CompareOnLine(a, b);
  if (b.hasZone) {
    const Order reversed = CompareMoments(std::move(b), std::move(a));
    return reversed == Order::Less ? Order::Greater : reversed == Order::Greater ? Order::Less : reversed;
  }
  Moment earliest = b;
  earliest.AddSeconds(-kFourteenHours);
  if (CompareOnLine(a, earliest) == Order::Less) return Order::Less;
  b.AddSeconds(kFourteenHours);
  return CompareOnLine(a, b) == Order::Greater ? Order::Greater : Order::None;
}

std::wstring MomentKey(const Moment& m) {
  return std::to_wstring(m.days) + L'/' + std::to_wstring(m.seconds) + L'.' + m.fraction + (m.hasZone ? L"Z" : L"");
}

// ---- duration
// --------------------------------------------------------------------------------------------------------

struct Span {
  bool negative = false;
  std::int64_t months = 0;
  std::int64_t seconds = 0;
  std::wstring fraction;
};

std::optional<Span> ParseSpan(std::wstring_view text) {
  constexpr std::int64_t kMost = 1000000000000;  // larger numbers are compared as if they were this
  Span span;
  const auto skip = [&](wchar_t c) {
    if (text.empty() || text[0] != c) return false;
    text.remove_prefix(1);
    return true;
  };
  span.negative = skip(L'-');
  if (!skip(L'P') || text.empty()) return std::nullopt;
  const std::wstring_view dateUnits = L"YMD";
  const std::wstring_view timeUnits = L"HMS";
  std::wstring_view units = dateUnits;
  bool inTime = false;
  while (!text.empty()) {
    if (!inTime && skip(L'T')) {
      inTime = true;
      units = timeUnits;
      if (text.empty()) return std::nullopt;
    }
    std::int64_t number = 0;
    std::size_t count = 0;
    for (; count < text.size() && IsDigit(text[count]); ++count)
      number = std::min<std::int64_t>(number * 10 + (text[count] - L'0'), kMost);
    if (count == 0) return std::nullopt;
    text.remove_prefix(count);
    bool hasFraction = false;
    if (inTime && skip(L'.')) {
      hasFraction = true;
      count = 0;
      while (count < text.size() && IsDigit(text[count])) ++count;
      if (count == 0) return std::nullopt;
      const std::wstring_view digits = text.substr(0, count);
      const std::size_t last = digits.find_last_not_of(L'0');
      span.fraction = digits.substr(0, last == std::wstring_view::npos ? 0 : last + 1);
      text.remove_prefix(count);
    }
    const std::size_t unit = text.empty() ? std::wstring_view::npos : units.find(text[0]);
    if (unit == std::wstring_view::npos || (hasFraction && text[0] != L'S')) return std::nullopt;
    static constexpr std::array<std::int64_t, 3> kDate = {12, 1, kSecondsPerDay};
    static constexpr std::array<std::int64_t, 3> kTime = {3600, 60, 1};
    const bool isDay = !inTime && text[0] == L'D';
    (inTime || isDay ? span.seconds : span.months) += number * (inTime ? kTime : kDate)[3 - units.size() + unit];
    units.remove_prefix(unit + 1);
    text.remove_prefix(1);
    if (units.empty() && inTime && !text.empty()) return std::nullopt;
  }
  if (span.months == 0 && span.seconds == 0 && span.fraction.empty()) span.negative = false;
  return span;
}

// The span from a day of reference. The fraction of a negative span is subtracted from a whole second.
Moment AddSpan(std::int64_t year, int month, const Span& span) {
  const std::int64_t sign = span.negative ? -1 : 1;
  const std::int64_t months = year * 12 + (month - 1) + sign * span.months;
  const std::int64_t newYear = (months >= 0 ? months : months - 11) / 12;
  Moment moment;
  moment.days = DaysFromCivil(newYear, static_cast<int>(months - newYear * 12) + 1, 1);
  moment.AddSeconds(sign * span.seconds);
  moment.fraction = span.fraction;
  if (span.negative && !moment.fraction.empty()) {
    moment.AddSeconds(-1);
    for (wchar_t& c : moment.fraction) c = static_cast<wchar_t>(L'9' - (c - L'0'));
    ++moment.fraction.back();  // no trailing zero, so no carry
  }
  return moment;
}

Order CompareSpans(std::wstring_view a, std::wstring_view b) {
  const auto x = ParseSpan(a);
  const auto y = ParseSpan(b);
  if (!x || !y) return Order::None;
  static constexpr std::pair<int, int> kReferences[] = {{1696, 9}, {1697, 2}, {1903, 3}, {1903, 7}};
  std::optional<Order> order;
  for (const auto& [year, month] : kReferences) {
    const Order here = CompareOnLine(AddSpan(year, month, *x), AddSpan(year, month, *y));
    if (order && *order != here) return Order::None;
    order = here;
  }
  return *order;
}

std::wstring SpanKey(std::wstring_view text) {
  const auto span = ParseSpan(text);
  if (!span) return std::wstring(text);
  return (span->negative ? L"-" : L"") + std::to_wstring(span->months) + L'/' + std::to_wstring(span->seconds) + L'.' +
         span->fraction;
}

// ---- binary
// ----------------------------------------------------------------------------------------------------------

std::optional<std::size_t> Base64Length(std::wstring_view text) {
  std::size_t characters = 0;
  std::size_t padding = 0;
  wchar_t last = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const wchar_t c = text[i];
    if (c == L' ') {
      if (i == 0 || i + 1 == text.size() || text[i + 1] == L' ') return std::nullopt;
      continue;
    }
    if (c == L'=') {
      ++padding;
      continue;
    }
    const bool isDigit = IsDigit(c) || (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'+' || c == L'/';
    if (!isDigit || padding != 0) return std::nullopt;
    ++characters;
    last = c;
  }
  if ((characters + padding) % 4 != 0 || padding > 2) return std::nullopt;
  if (padding == 1 && std::wstring_view(L"AEIMQUYcgkosw048").find(last) == std::wstring_view::npos) return std::nullopt;
  if (padding == 2 && std::wstring_view(L"AQgw").find(last) == std::wstring_view::npos) return std::nullopt;
  return (characters + padding) / 4 * 3 - padding;
}

bool IsUri(std::wstring_view text) {
  const std::size_t first = text.find(L'#');
  if (first != std::wstring_view::npos && text.find(L'#', first + 1) != std::wstring_view::npos) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == L'%' && (i + 2 >= text.size() || !IsHexDigit(text[i + 1]) || !IsHexDigit(text[i + 2]))) return false;
  }
  // What stands before a colon in the first step is a scheme.
  const std::size_t end = std::min(text.find_first_of(L":/?#"), text.size());
  if (end == text.size() || text[end] != L':') return true;
  const auto isLetter = [](wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z'); };
  return end > 0 && isLetter(text[0]) &&
         std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end),
                     [&](wchar_t c) { return isLetter(c) || IsDigit(c) || c == L'+' || c == L'-' || c == L'.'; });
}

// Whether the values are moments in time: those between dateTime and gMonth.
constexpr bool IsDateOrTime(BuiltInType type) { return type >= BuiltInType::DateTime && type <= BuiltInType::GMonth; }

}  // namespace

bool IsLexical(BuiltInType type, std::wstring_view text) {
  if (IsDateOrTime(type)) return CDateParser(text).Parse(type).has_value();
  switch (type) {
    case BuiltInType::Boolean:
      return text == L"true" || text == L"false" || text == L"1" || text == L"0";
    case BuiltInType::Decimal:
      return ParseDecimal(text).has_value();
    case BuiltInType::Float:
    case BuiltInType::Double:
      return IsFloatingText(text);
    case BuiltInType::Duration:
      return ParseSpan(text).has_value();
    case BuiltInType::HexBinary:
      return text.size() % 2 == 0 && std::all_of(text.begin(), text.end(), IsHexDigit);
    case BuiltInType::Base64Binary:
      return Base64Length(text).has_value();
    case BuiltInType::AnyURI:
      return IsUri(text);
    case BuiltInType::QName:
    case BuiltInType::Notation:
      return IsQName(text);
    case BuiltInType::Language:
      return IsLanguage(text);
    case BuiltInType::NMToken:
      return IsNMToken(text);
    case BuiltInType::Name:
      return IsName(text);
    case BuiltInType::NCName:
    case BuiltInType::ID:
    case BuiltInType::IDRef:
    case BuiltInType::Entity:
      return IsNCName(text);
    default:
      return type < BuiltInType::Integer || (text.find(L'.') == std::wstring_view::npos && ParseDecimal(text));
  }
}

std::wstring CanonicalKey(BuiltInType primitive, std::wstring_view text) {
  if (IsDateOrTime(primitive)) {
    const auto moment = CDateParser(text).Parse(primitive);
    return moment ? MomentKey(*moment) : std::wstring(text);
  }
  switch (primitive) {
    case BuiltInType::Boolean:
      return text == L"true" || text == L"1" ? L"true" : L"false";
    case BuiltInType::Decimal:
      return DecimalKey(text);
    case BuiltInType::Float:
      return FloatingKey<float>(text);
    case BuiltInType::Double:
      return FloatingKey<double>(text);
    case BuiltInType::Duration:
      return SpanKey(text);
    case BuiltInType::HexBinary: {
      std::wstring key(text);
      for (wchar_t& c : key) {
        if (c >= L'a' && c <= L'f') c = static_cast<wchar_t>(c - L'a' + L'A');
      }
      return key;
    }
    case BuiltInType::Base64Binary: {
      std::wstring key(text);
      key.erase(std::remove(key.begin(), key.end(), L' '), key.end());
      return key;
    }
    default:
      return std::wstring(text);
  }
}

Order CompareValues(BuiltInType primitive, std::wstring_view a, std::wstring_view b) {
  if (IsDateOrTime(primitive)) {
    const auto x = CDateParser(a).Parse(primitive);
    const auto y = CDateParser(b).Parse(primitive);
    return x && y ? CompareMoments(*x, *y) : Order::None;
  }
  switch (primitive) {
    case BuiltInType::Decimal:
      return CompareDecimals(a, b);
    case BuiltInType::Float:
      return CompareFloating<float>(a, b);
    case BuiltInType::Double:
      return CompareFloating<double>(a, b);
    case BuiltInType::Duration:
      return CompareSpans(a, b);
    default:
      return CanonicalKey(primitive, a) == CanonicalKey(primitive, b) ? Order::Equal : Order::None;
  }
}

DigitCount CountDigits(std::wstring_view decimal) {
  const auto d = ParseDecimal(decimal);
  if (!d) return {0, 0};
  // 0.01 is 1 divided by 100, for which two digits are needed.
  const std::size_t zeros = d->integer.empty() ? std::min(d->fraction.find_first_not_of(L'0'), d->fraction.size()) : 0;
  const std::size_t digits = d->integer.size() + d->fraction.size() - zeros;
  return {std::max(digits, d->fraction.size()), d->fraction.size()};
}

std::size_t LengthOf(BuiltInType primitive, std::wstring_view text) {
  if (primitive == BuiltInType::HexBinary) return text.size() / 2;
  if (primitive == BuiltInType::Base64Binary) return Base64Length(text).value_or(0);
  // A surrogate pair is one character.
  const auto isLow = [](wchar_t c) { return (static_cast<char32_t>(c) & ~0x3FFu) == 0xDC00; };
  return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isLow));
}

const wchar_t* GetBuiltInName(BuiltInType type) noexcept { return kBuiltInNames[static_cast<std::size_t>(type)]; }

}  // namespace RkXmlLib16::Xsd

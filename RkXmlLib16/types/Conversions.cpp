#include "RkXmlLib16/types/Conversions.h"

#include <locale.h>
#include <wchar.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/base/internal/CodePoints.h"

namespace RkXmlLib16 {

namespace {

using std::wstring;
using std::wstring_view;

const locale_t kCLocale = newlocale(LC_ALL_MASK, "C", locale_t{});  // takes no memory

using Ascii::IsDigit;
// White space to the number parsers of the C locale.
constexpr bool IsCSpace(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }
constexpr wchar_t LowerAscii(wchar_t c) { return c >= L'A' && c <= L'Z' ? c - L'A' + L'a' : c; }

[[noreturn]] void ThrowNotA(wstring_view text, const wchar_t* type) {
  throw CRkInvalidValueException(
      FormatString(L"The value [%ls] can not be converted to a %ls", wstring(text).c_str(), type));
}

[[noreturn]] void ThrowTooLarge(wstring_view text, const wchar_t* type) {
  throw CRkInvalidValueException(
      FormatString(L"The value [%ls] is to large to fit in a %ls", wstring(text).c_str(), type));  // sic
}

// Base 10 as wcstol, wcstoll, wcstoul and wcstoull read it: white space, a sign, digits, nothing behind them. A
// negative sign negates an unsigned value, and it is the magnitude that must fit.
template <class Value>
Value ParseInteger(wstring_view text, const wchar_t* type) {
  using Unsigned = std::make_unsigned_t<Value>;
  std::size_t i = 0;
  while (i < text.size() && IsCSpace(text[i])) ++i;
  const bool negative = i < text.size() && text[i] == L'-';
  if (i < text.size() && (text[i] == L'-' || text[i] == L'+')) ++i;
  const Unsigned most = std::is_unsigned_v<Value> ? std::numeric_limits<Unsigned>::max()
                                                  : static_cast<Unsigned>(std::numeric_limits<Value>::max()) + negative;
  const std::size_t firstDigit = i;
  Unsigned magnitude = 0;
  bool tooLarge = false;
  for (; i < text.size() && IsDigit(text[i]); ++i) {
    const auto digit = static_cast<Unsigned>(text[i] - L'0');
    if (magnitude > most / 10 || magnitude * 10 > most - digit) tooLarge = true;
    magnitude = magnitude * 10 + digit;
  }
  if (tooLarge) ThrowTooLarge(text, type);
  if (i == firstDigit || i != text.size()) ThrowNotA(text, type);
  return static_cast<Value>(negative ? 0 - magnitude : magnitude);
}

// The narrow types are parsed as i4, whose messages they report.
template <class Value>
Value ParseNarrow(wstring_view text, const wchar_t* type) {
  const long value = ParseInteger<long>(text, L"i4");
  if (value < std::numeric_limits<Value>::min() || value > std::numeric_limits<Value>::max()) ThrowTooLarge(text, type);
  return static_cast<Value>(value);
}

// What wcstod reads in the C locale.
bool ParseDouble(wstring_view text, double& value) {
  char narrow[128];
  if (text.size() < sizeof narrow) {
    // Plain decimal numbers, but for the sign that from_chars does not know.
    const std::size_t skip = text[0] == L'+' && text.size() > 1 && text[1] != L'-' ? 1 : 0;
    char* end = narrow;
    for (const wchar_t c : text.substr(skip)) {
      if (!IsDigit(c) && c != L'.' && c != L'-' && c != L'+' && c != L'e' && c != L'E') break;
      *end++ = static_cast<char>(c);
    }
    if (static_cast<std::size_t>(end - narrow) == text.size() - skip) {
      const auto result = std::from_chars(narrow, end, value);
      if (result.ec == std::errc() && result.ptr == end) return true;
    }
  }
  const wstring terminated(text);
  wchar_t* end = nullptr;
  value = wcstod_l(terminated.c_str(), &end, kCLocale);
  return end == terminated.c_str() + terminated.size();
}

template <class Value>
Value ParseFloating(wstring_view text, const wchar_t* type) {
  if (text.empty()) ThrowNotA(text, type);
  if (text == L"NaN" || text == L"1.#QNAN" || text == L"-NAN") return std::numeric_limits<Value>::quiet_NaN();
  if (text == L"-INF") return -std::numeric_limits<Value>::infinity();
  if (text == L"INF") return std::numeric_limits<Value>::infinity();
  double value = 0;
  if (!ParseDouble(text, value)) ThrowNotA(text, type);
  return static_cast<Value>(value);
}

bool ParseBoolean(wstring_view text) {
  const auto is = [text](wstring_view word) {
    return text.size() == word.size() &&
           std::equal(text.begin(), text.end(), word.begin(), [](wchar_t a, wchar_t b) { return LowerAscii(a) == b; });
  };
  if (text == L"1" || is(L"true")) return true;
  if (text == L"0" || is(L"false")) return false;
  throw CRkInvalidValueException(FormatString(
      L"A Boolean Value read from an XML document was invalid [%ls]. Valid values are 'true', 'false', '1', or '0'",
      wstring(text).c_str()));
}

wchar_t ParseChar(wstring_view text) {
  if (text.size() == 2) {
    const auto high = static_cast<char32_t>(text[0]), low = static_cast<char32_t>(text[1]);
    if (IsHighSurrogate(high) && IsLowSurrogate(low)) return static_cast<wchar_t>(JoinSurrogates(high, low));
  }
  if (text.size() != 1)
    throw CRkInvalidValueException(
        FormatString(L"The value [%ls] can not be a char as it is either empty of greater than 1 char long",  // sic
                     wstring(text).c_str()));
  return text[0];
}

CDateTime ParseDate(wstring_view text, DTType type) {
  CDateTime value;
  value.ParseXSDDate(text);
  if (value.GetType() != type)
    throw CRkInvalidValueException(FormatString(L"Failed to copy CDateTime. Invalid Date Type: %ls, expected: %ls.",
                                                value.GetTypeAsString(), CDateTime::GetTypeAsString(type)));
  return value;
}

unsigned short ParseYear(wstring_view text) {
  const short year = ParseDate(text, dt_gYear).GetYear();
  if (year < 0) ThrowTooLarge(text, L"ui2");
  return static_cast<unsigned short>(year);
}

// What most texts of a kind look like is read at once, without the whitespace rule, which has nothing to do there. Each
// of these is false for any other text, valid or not.

// Digits that surely fit 64 bits, with a minus sign at most.
template <class Value>
bool ReadPlain(wstring_view text, Value& value) {
  constexpr std::size_t kMostDigits = 18;
  const bool negative = !text.empty() && text.front() == L'-';
  if (negative) text.remove_prefix(1);
  if (text.empty() || text.size() > kMostDigits) return false;
  long long number = 0;
  for (const wchar_t c : text) {
    if (!IsDigit(c)) return false;
    number = number * 10 + (c - L'0');
  }
  if (negative) number = -number;
  value = static_cast<Value>(number);
  return static_cast<long long>(value) == number && (number >= 0 || std::is_signed_v<Value>);
}

// Digits and a power of ten that a double holds exactly, so that it is their quotient that is rounded.
bool ReadPlain(wstring_view text, double& value) {
  constexpr double kPowers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  constexpr std::size_t kMostDigits = 15;
  const bool negative = !text.empty() && text.front() == L'-';
  if (negative) text.remove_prefix(1);
  if (text.size() > kMostDigits || text.empty() || text.back() == L'.') return false;
  long long digits = 0;
  std::size_t fraction = 0;  // with the point
  for (const wchar_t c : text) {
    if (c == L'.' && fraction == 0) {
      fraction = 1;
      continue;
    }
    if (!IsDigit(c)) return false;
    digits = digits * 10 + (c - L'0');
    if (fraction != 0) ++fraction;
  }
  value = static_cast<double>(digits) / kPowers[fraction == 0 ? 0 : fraction - 1];
  if (negative) value = -value;
  return true;
}

bool ReadPlain(wstring_view text, float& value) {
  double wide = 0;
  if (!ReadPlain(text, wide)) return false;
  value = static_cast<float>(wide);
  return true;
}

bool ReadPlain(wstring_view text, bool& value) {
  const auto is = [text](const wchar_t* word, std::size_t length) {
    return text.size() == length && std::memcmp(text.data(), word, length * sizeof *word) == 0;
  };
  value = is(L"true", 4) || is(L"1", 1);
  return value || is(L"false", 5) || is(L"0", 1);
}

bool ReadPlain(wstring_view text, CDecimal& value) { return value.ParsePlain(text); }
bool ReadPlain(wstring_view text, CDateTime& value) { return value.ParsePlain(text); }

template <ItemType kItem>
constexpr bool kHasPlain = (kItem >= ItemType_byte && kItem <= ItemType_double) || kItem == ItemType_boolean
                           || kItem == ItemType_decimal || kItem == ItemType_dateTime;

template <ItemType kItem>
XsdValue<kItem> Parse(wstring_view text) {
  XsdValue<kItem> value;
  if constexpr (kItem == ItemType_byte) {
    value = ParseNarrow<signed char>(text, L"i1");
  } else if constexpr (kItem == ItemType_short) {
    value = ParseNarrow<short>(text, L"i2");
  } else if constexpr (kItem == ItemType_int) {
    value = ParseInteger<long>(text, L"i4");
  } else if constexpr (kItem == ItemType_long) {
    value = ParseInteger<long long>(text, L"i8");
  } else if constexpr (kItem == ItemType_unsignedByte) {
    value = ParseNarrow<unsigned char>(text, L"ui1");
  } else if constexpr (kItem == ItemType_unsignedShort) {
    value = ParseNarrow<unsigned short>(text, L"ui2");
  } else if constexpr (kItem == ItemType_unsignedInt) {
    value = ParseInteger<unsigned long>(text, L"ui4");
  } else if constexpr (kItem == ItemType_unsignedLong) {
    value = ParseInteger<unsigned long long>(text, L"ui8");
  } else if constexpr (kItem == ItemType_float) {
    value = ParseFloating<float>(text, L"r4");
  } else if constexpr (kItem == ItemType_double) {
    value = ParseFloating<double>(text, L"r8");
  } else if constexpr (kItem == ItemType_duration) {
    value.ParseXSDDuration(text);
  } else if constexpr (kItem == ItemType_gYearMonth) {
    return ParseDate(text, dt_gYearMonth);
  } else if constexpr (kItem == ItemType_gMonthDay) {
    return ParseDate(text, dt_gMonthDay);
  } else if constexpr (kItem == ItemType_gYear) {
    value = ParseYear(text);
  } else if constexpr (kItem == ItemType_gMonth) {
    value = ParseDate(text, dt_gMonth).GetMonth();
  } else if constexpr (kItem == ItemType_gDay) {
    value = ParseDate(text, dt_gDay).GetDay();
  } else if constexpr (kItem == ItemType_date) {
    return ParseDate(text, dt_date);
  } else if constexpr (kItem == ItemType_dateTime) {
    value.ParseXSDDateTime(text);
  } else if constexpr (kItem == ItemType_time) {
    value.ParseXSDTime(text);
  } else if constexpr (kItem == ItemType_char) {
    value = ParseChar(text);
  } else if constexpr (kItem == ItemType_string) {
    value.assign(text);
  } else if constexpr (kItem == ItemType_boolean) {
    value = ParseBoolean(text);
  } else if constexpr (kItem == ItemType_decimal) {
    value.Parse(text);
  } else if constexpr (kItem == ItemType_integer) {
    return CBigInteger(text);
  } else if constexpr (kItem == ItemType_hexBinary) {
    value.SetAsHexString(wstring(text).c_str());
  } else {
    static_assert(kItem == ItemType_base64Binary);
    value.SetAsBase64(wstring(text).c_str());
  }
  return value;
}

template <ItemType kItem>
void AppendFew(wstring& out, XsdValue<kItem> value) {
  wchar_t buffer[TextSpace::kFewCharacters];
  const wchar_t* const first = CConversions::WriteFew<kItem>(value, std::end(buffer));
  out.append(first, static_cast<std::size_t>(std::end(buffer) - first));
}

void AppendTwoDigits(wstring& out, const wchar_t* prefix, unsigned value) {
  out += prefix;
  if (value < 10) out += L'0';
  out += std::to_wstring(value);
}

// What printf makes of one double with a format.
struct FloatFormat {
  bool usable = false;  // at most one conversion, of a double
  bool fixed = false;   // by %f
  int precision = 6;
};

FloatFormat Examine(wstring_view format) {
  FloatFormat result;
  bool converts = false;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != L'%') continue;
    if (format.substr(i, 2) == L"%%") {
      ++i;
      continue;
    }
    if (std::exchange(converts, true)) return FloatFormat();
    i = std::min(format.find_first_not_of(L"#0- +'", i + 1), format.size());
    long long number = 0;
    const auto readNumber = [&] {
      for (number = 0; i < format.size() && IsDigit(format[i]); ++i)
        number = std::min(number * 10 + (format[i] - L'0'), 1000000LL);
    };
    readNumber();
    if (i < format.size() && format[i] == L'.') {
      ++i;
      readNumber();
      result.precision = static_cast<int>(number);
    }
    if (i < format.size() && format[i] == L'l') ++i;
    if (i == format.size() || wstring_view(L"aAeEfFgG").find(format[i]) == wstring_view::npos) return FloatFormat();
    result.fixed = format[i] == L'f' || format[i] == L'F';
  }
  result.usable = true;
  return result;
}

// What "%.<precision>g" makes of most numbers: of those that it writes without an exponent, from 0.0001 on. False, and
// nothing appended, for the others. The precision is 16 at most, so that all is exact in integers of 128 bits.
bool AppendFixed(wstring& out, double value, int precision) {
  __extension__ typedef unsigned __int128 Wide;
  static constexpr auto kPowers = [] {
    std::array<std::uint64_t, 20> powers{};
    std::uint64_t power = 1;
    for (std::uint64_t& p : powers) {
      p = power;
      power *= 10;
    }
    return powers;
  }();
  const double magnitude = std::fabs(value);
  const auto at = [](int exponent) { return kPowers[static_cast<std::size_t>(exponent)]; };
  if (!(magnitude >= 1e-4 && magnitude < static_cast<double>(at(precision)))) return false;

  std::uint64_t bits = 0;
  std::memcpy(&bits, &magnitude, sizeof bits);
  const std::uint64_t mantissa = (bits & ((std::uint64_t{1} << 52) - 1)) | std::uint64_t{1} << 52;
  const int shift = 1075 - static_cast<int>(bits >> 52);  // the value is mantissa / 2^shift
  // The digits before the point, or, below 1, less the zeros behind it.
  int integerDigits = 0;
  while (integerDigits < precision && magnitude >= static_cast<double>(at(integerDigits))) ++integerDigits;
  Wide scaled = 0;
  const auto scale = [&] { scaled = Wide{mantissa} * at(precision - integerDigits); };
  scale();
  if (shift <= 0) {
    scaled <<= -shift;
  } else {
    for (; scaled >> shift < at(precision - 1); scale()) --integerDigits;
    const Wide rest = scaled & ((Wide{1} << shift) - 1), half = Wide{1} << (shift - 1);
    scaled >>= shift;
    if (rest > half || (rest == half && (scaled & 1) != 0)) ++scaled;
  }
  auto digits = static_cast<std::uint64_t>(scaled);
  if (digits == at(precision)) {
    digits /= 10;
    if (++integerDigits > precision) return false;
  }

  // From the last digit on, without zeros behind the point.
  wchar_t text[32];
  wchar_t* to = std::end(text);
  int fractionDigits = precision - integerDigits;
  for (; fractionDigits > 0 && digits % 10 == 0; --fractionDigits) digits /= 10;
  const auto put = [&] {
    *--to = static_cast<wchar_t>(L'0' + digits % 10);
    digits /= 10;
  };
  if (fractionDigits > 0) {
    for (; fractionDigits > 0; --fractionDigits) put();
    *--to = L'.';
  }
  do put();
  while (digits != 0);
  if (value < 0) *--to = L'-';
  out.append(to, static_cast<std::size_t>(std::end(text) - to));
  return true;
}

void AppendFloating(wstring& out, double value, double limit, int precision, const wchar_t* format) {
  if (value != value) {
    out += L"NaN";
  } else if (value < -limit) {
    out += L"-INF";
  } else if (value > limit) {
    out += L"INF";
  } else if (format != nullptr && *format != L'\0' && Examine(format).usable) {
    out += FormatString(format, value);
  } else if (!AppendFixed(out, value, precision)) {
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, precision).ptr;
    out.append(buffer, end);
  }
}

void AppendDecimal(wstring& out, const CDecimal& value, const wchar_t* format) {
  if (format != nullptr && *format != L'\0') {
    const FloatFormat shape = Examine(format);
    if (shape.usable && shape.fixed) {
      out += value.ToString(shape.precision);
      return;
    }
  }
  value.AppendTo(out);
}

}  // namespace

template <ItemType kItem>
XsdValue<kItem> CConversions::FromText(wstring_view text, Rule rule) {
  if constexpr (kHasPlain<kItem>) {
    XsdValue<kItem> value{};
    if (CWhitespaceUtils::IsRule(rule) && ReadPlain(text, value)) return value;
  }
  wstring scratch;
  return Parse<kItem>(CWhitespaceUtils::ApplyRule(rule, text, scratch));
}

template <ItemType kItem>
void CConversions::AppendTo(wstring& out, const XsdValue<kItem>& value, const wchar_t* format) {
  if constexpr (kItem == ItemType_float)
    AppendFloating(out, static_cast<double>(value), 3.4028235e38, 7, format);
  else if constexpr (kItem == ItemType_double)
    AppendFloating(out, value, 1.7976931348623157e308, 16, format);
  else if constexpr (kItem == ItemType_boolean)
    out += value ? wstring_view(L"true") : wstring_view(L"false");
  else if constexpr (kItem == ItemType_char || kItem == ItemType_string)
    out += value;
  else if constexpr (kItem == ItemType_gMonth)
    AppendTwoDigits(out, L"--", value);
  else if constexpr (kItem == ItemType_gDay)
    AppendTwoDigits(out, L"---", value);
  else if constexpr (kItem == ItemType_decimal)
    AppendDecimal(out, value, format);
  else if constexpr (kItem == ItemType_hexBinary)
    out += value.GetAsHexString();
  else if constexpr (kItem == ItemType_base64Binary)
    out += value.GetAsBase64();
  else if constexpr (std::is_integral_v<XsdValue<kItem>>)
    AppendFew<kItem>(out, value);
  else
    value.AppendTo(out);
}

namespace {

template <ItemType kItem>
wstring Print(const XsdValue<kItem>& value, const wchar_t* format = nullptr) {
  wstring text;
  CConversions::AppendTo<kItem>(text, value, format);
  return text;
}

}  // namespace

// The named conversions, and with them the instances of the templates.
#define RKXML_CONVERSION(Kind, Name, Property, Value)                                                         \
  template RKXML_EXPORT Value CConversions::FromText<ItemType_##Kind>(wstring_view, Rule);                    \
  template RKXML_EXPORT void CConversions::AppendTo<ItemType_##Kind>(wstring&, const Value&, const wchar_t*); \
  Value CConversions::Name##FromString(const wstring& text, Rule rule) {                                      \
    return FromText<ItemType_##Kind>(text, rule);                                                             \
  }                                                                                                           \
  wstring CConversions::Name##ToString(XsdArgument<Value> value) { return Print<ItemType_##Kind>(value); }
RKXML_XSD_TYPES(RKXML_CONVERSION, RKXML_CONVERSION, RKXML_CONVERSION)
#undef RKXML_CONVERSION

wstring CConversions::r4ToString(float value, const wstring& format) {
  return Print<ItemType_float>(value, format.c_str());
}
wstring CConversions::r8ToString(double value, const wstring& format) {
  return Print<ItemType_double>(value, format.c_str());
}
wstring CConversions::decimalToString(const CDecimal& value, const wstring& format) {
  return Print<ItemType_decimal>(value, format.c_str());
}

}  // namespace RkXmlLib16

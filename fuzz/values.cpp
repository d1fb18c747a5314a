// Texts as XSD values: a value survives its own text, and arithmetic keeps its laws.
#include <map>

#include "Check.h"

using namespace Fuzz;

namespace {

template <class Value>
Value Reparsed(const Value& value, const std::wstring& text) {
  static_cast<void>(value);
  return Value(text.c_str());
}

CDateTimeSpan Reparsed(const CDateTimeSpan& value, const std::wstring& text) {
  CDateTimeSpan again = value;
  again.ParseXSDDuration(text.c_str());
  return again;
}

CDateTime Reparsed(const CDateTime& value, const std::wstring& text) {
  CDateTime again;
  if (value.GetType() == dt_dateTime) {
    again.ParseXSDDateTime(text.c_str());
  } else if (value.GetType() == dt_time) {
    again.ParseXSDTime(text.c_str());
  } else {
    again.ParseXSDDate(text.c_str());
  }
  return again;
}

// The text of the value, which is the text of what is read from it too.
template <class Value>
std::wstring RequireStable(const Value& value) {
  std::wstring text = value.ToString();
  try {
    const std::wstring again = Reparsed(value, text).ToString();
    Require(again == text, "a value survives its text", text + L"\n" + again);
  } catch (const CRkException& e) {
    Fail("a value reads its own text", text + L"\n" + e.GetMessage());
  }
  return text;
}

void TryIntegers(const std::wstring& left, const std::wstring& right) {
  const CBigInteger a(left.c_str());
  const std::wstring text = RequireStable(a);
  const CBigInteger b(right.c_str());
  Require(a + b - b == a, "a + b - b is a", text);
  // Zeros of both signs are equal and yet in an order.
  Require(a.IsZero() || (a < b) + (b < a) + (a == b) == 1, "two integers are in one order", text);
  if (b.IsZero()) return;
  const CBigInteger quotient = a / b;
  const CBigInteger remainder = a % b;
  Require(quotient * b + remainder == a, "a / b * b + a % b is a", text + L" " + b.ToString());
  Require(remainder.GetAbs() < b.GetAbs(), "a remainder is smaller than its divisor", text + L" " + b.ToString());
}

void TryDecimals(const std::wstring& left, const std::wstring& right) {
  const CDecimal a(left.c_str());
  const std::wstring text = RequireStable(a);
  const CDecimal b(right.c_str());
  Require(a.IsZero() || (a < b) + (b < a) + (a == b) == 1, "two decimals are in one order", text + L" " + b.ToString());
  RequireStable(a + b);
  RequireStable(a - b);
  RequireStable(a * b);
  if (!b.IsZero()) RequireStable(a / b);
}

void TryDurations(const std::wstring& left, const std::wstring& right) {
  CDateTimeSpan a;
  a.ParseXSDDuration(left.c_str());
  RequireStable(a);
  CDateTimeSpan b;
  b.ParseXSDDuration(right.c_str());
  Require((a < b) == (b > a), "two durations are in one order");
}

void TryDates(const std::wstring& left, const std::wstring& right) {
  CDateTime a;
  if (!Succeeds([&] { a.ParseXSDDateTime(left.c_str()); }) && !Succeeds([&] { a.ParseXSDDate(left.c_str()); }))
    a.ParseXSDTime(left.c_str());
  RequireStable(a);
  RequireStable(a.GetNormalized());
  Succeeds([&] {
    CDateTimeSpan span;
    span.ParseXSDDuration(right.c_str());
    RequireStable(a + span);
    RequireStable(a - span);
  });
  CDateTime b;
  if (!Succeeds([&] { b.ParseXSDDateTime(right.c_str()); })) b.ParseXSDDate(right.c_str());
  Require((a < b) == (b > a), "two dates are in one order");
  // The text of a duration keeps one digit of its nanoseconds.
  const CDateTimeSpan difference = a - b;
  if (difference.GetNanoSeconds() < 10) RequireStable(difference);
}

}  // namespace

// The first byte chooses the type; a line feed stands between two values.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::wstring texts = TextOf({reinterpret_cast<const char*>(data + 1), size - 1});
  const std::size_t middle = std::min(texts.find(L'\n'), texts.size());
  const std::wstring left = texts.substr(0, middle);
  const std::wstring right = texts.substr(std::min(middle + 1, texts.size()));
  Succeeds([&] {
    if (data[0] % 4 == 0) TryIntegers(left, right);
    if (data[0] % 4 == 1) TryDecimals(left, right);
    if (data[0] % 4 == 2) TryDurations(left, right);
    if (data[0] % 4 == 3) TryDates(left, right);
  });
  return 0;
}

#ifndef RKXMLLIB16_TYPES_INTERNAL_DATETIMEKIND_H
#define RKXMLLIB16_TYPES_INTERNAL_DATETIMEKIND_H

#include <cstddef>
#include <iterator>

#include "RkXmlLib16/types/DateTime.h"

// The kinds of CDateTime: their names, their fields, and what is thrown for the lack of one.
namespace RkXmlLib16::DateTimeKind {

enum Owned : unsigned { kYear = 1, kMonth = 2, kDay = 4, kTime = 8 };

// By DTType: the name and the fields.
inline constexpr struct {
  const wchar_t* name;
  unsigned owned;
} kTypes[] = {
    {L"yearZero", 0},
    {L"dateTime", kYear | kMonth | kDay | kTime},
    {L"date", kYear | kMonth | kDay},
    {L"gYearMonth", kYear | kMonth},
    {L"gYear", kYear},
    {L"time", kTime},
    {L"gDay", kDay},
    {L"gMonth", kMonth},
    {L"gMonthDay", kMonth | kDay},
};

constexpr bool IsKnown(DTType type) { return type >= 0 && static_cast<std::size_t>(type) < std::size(kTypes); }
constexpr unsigned OwnedBy(DTType type) { return IsKnown(type) ? kTypes[type].owned : 0; }

// "Invalid Year ..." of a year outside the calendar, however large.
[[noreturn]] void ThrowInvalidYear(long long year);
// "Failed to <operation>. Invalid Date Type: ...".
[[noreturn]] void ThrowNoField(const wchar_t* operation, const wchar_t* typeName);

}  // namespace RkXmlLib16::DateTimeKind

#endif

#ifndef RKXMLLIB16_TYPES_XSDVALUE_H
#define RKXMLLIB16_TYPES_XSDVALUE_H

#include <string>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/types/BigInteger.h"
#include "RkXmlLib16/types/BinaryData.h"
#include "RkXmlLib16/types/DateTime.h"
#include "RkXmlLib16/types/DateTimeSpan.h"
#include "RkXmlLib16/types/Decimal.h"

namespace RkXmlLib16 {

// The type that holds a value of each XSD primitive kind: XsdValue<ItemType_int> is long.
template <ItemType kItem>
struct XsdValueOf;
template <ItemType kItem>
using XsdValue = typename XsdValueOf<kItem>::Type;

// clang-format off
template <> struct XsdValueOf<ItemType_hexBinary> { using Type = CBinaryData; };
template <> struct XsdValueOf<ItemType_base64Binary> { using Type = CBinaryData; };
template <> struct XsdValueOf<ItemType_byte> { using Type = char; };
template <> struct XsdValueOf<ItemType_short> { using Type = short; };
template <> struct XsdValueOf<ItemType_int> { using Type = long; };
template <> struct XsdValueOf<ItemType_long> { using Type = long long; };
template <> struct XsdValueOf<ItemType_unsignedByte> { using Type = unsigned char; };
template <> struct XsdValueOf<ItemType_unsignedShort> { using Type = unsigned short; };
template <> struct XsdValueOf<ItemType_unsignedInt> { using Type = unsigned long; };
template <> struct XsdValueOf<ItemType_unsignedLong> { using Type = unsigned long long; };
template <> struct XsdValueOf<ItemType_float> { using Type = float; };
template <> struct XsdValueOf<ItemType_double> { using Type = double; };
template <> struct XsdValueOf<ItemType_duration> { using Type = CDateTimeSpan; };
template <> struct XsdValueOf<ItemType_gYearMonth> { using Type = CDateTime; };
template <> struct XsdValueOf<ItemType_gMonthDay> { using Type = CDateTime; };
template <> struct XsdValueOf<ItemType_gYear> { using Type = unsigned short; };
template <> struct XsdValueOf<ItemType_gMonth> { using Type = unsigned char; };
template <> struct XsdValueOf<ItemType_gDay> { using Type = unsigned char; };
template <> struct XsdValueOf<ItemType_date> { using Type = CDateTime; };
template <> struct XsdValueOf<ItemType_dateTime> { using Type = CDateTime; };
template <> struct XsdValueOf<ItemType_time> { using Type = CDateTime; };
template <> struct XsdValueOf<ItemType_char> { using Type = wchar_t; };
template <> struct XsdValueOf<ItemType_string> { using Type = std::wstring; };
template <> struct XsdValueOf<ItemType_boolean> { using Type = bool; };
template <> struct XsdValueOf<ItemType_decimal> { using Type = CDecimal; };
template <> struct XsdValueOf<ItemType_integer> { using Type = CBigInteger; };
// clang-format on

}  // namespace RkXmlLib16

#endif

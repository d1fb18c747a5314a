#ifndef RKXMLLIB16_TYPES_XSDVALUE_H
#define RKXMLLIB16_TYPES_XSDVALUE_H

#include <string>
#include <type_traits>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/XsdTypes.h"
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
// How such a value is passed: numbers by value.
template <class Value>
using XsdArgument = std::conditional_t<std::is_arithmetic_v<Value>, Value, const Value&>;

#define RKXML_VALUE(Kind, Name, Property, Value) \
  template <>                                    \
  struct XsdValueOf<ItemType_##Kind> {           \
    using Type = Value;                          \
  };
RKXML_XSD_TYPES(RKXML_VALUE, RKXML_VALUE, RKXML_VALUE)
#undef RKXML_VALUE

}  // namespace RkXmlLib16

#endif

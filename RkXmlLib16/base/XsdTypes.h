#ifndef RKXMLLIB16_BASE_XSDTYPES_H
#define RKXMLLIB16_BASE_XSDTYPES_H

// The list of XSD primitive types, in the order of ItemType, from which the lists of conversions, facet checks,
// collections and variant accessors are made. A row gives the type's
//   Kind      "int" of ItemType_int, which is its name in XSD, except of char
//   Name      "i4" of CConversions::i4ToString, of Ci4Col and of RkVariant::GetType
//   Property  "I4" of RkVariant::GetI4
//   Value     the C++ type of its values
// Of these, dates and times (CDateTime) are given to DATE, and characters, which have neither facets nor a collection,
// to CHARACTER.
// clang-format off
#define RKXML_XSD_TYPES(TYPE, DATE, CHARACTER)                         \
  TYPE(hexBinary,     hexBinary,    HexBinary,    CBinaryData)         \
  TYPE(base64Binary,  base64Binary, Base64Binary, CBinaryData)         \
  TYPE(byte,          i1,           I1,           char)                \
  TYPE(short,         i2,           I2,           short)               \
  TYPE(int,           i4,           I4,           long)                \
  TYPE(long,          i8,           I8,           long long)           \
  TYPE(unsignedByte,  ui1,          UI1,          unsigned char)       \
  TYPE(unsignedShort, ui2,          UI2,          unsigned short)      \
  TYPE(unsignedInt,   ui4,          UI4,          unsigned long)       \
  TYPE(unsignedLong,  ui8,          UI8,          unsigned long long)  \
  TYPE(float,         r4,           R4,           float)               \
  TYPE(double,        r8,           R8,           double)              \
  TYPE(duration,      duration,     Duration,     CDateTimeSpan)       \
  DATE(gYearMonth,    yearMonth,    YearMonth,    CDateTime)           \
  DATE(gMonthDay,     monthDay,     MonthDay,     CDateTime)           \
  TYPE(gYear,         year,         Year,         unsigned short)      \
  TYPE(gMonth,        month,        Month,        unsigned char)       \
  TYPE(gDay,          day,          Day,          unsigned char)       \
  DATE(date,          date,         Date,         CDateTime)           \
  DATE(dateTime,      datetime,     DateTime,     CDateTime)           \
  DATE(time,          time,         Time,         CDateTime)           \
  CHARACTER(char,     char,         Char,         wchar_t)             \
  TYPE(string,        string,       String,       std::wstring)        \
  TYPE(boolean,       boolean,      Boolean,      bool)                \
  TYPE(decimal,       decimal,      Decimal,      CDecimal)            \
  TYPE(integer,       integer,      Integer,      CBigInteger)
// clang-format on

#endif

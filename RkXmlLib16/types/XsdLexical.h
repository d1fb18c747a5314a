#ifndef RKXMLLIB16_TYPES_XSDLEXICAL_H
#define RKXMLLIB16_TYPES_XSDLEXICAL_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/base/Export.h"

// The built-in types of XML Schema: Datatypes (second edition) as they stand in documents: their names, lexical
// and value spaces. White space has been normalized.
namespace RkXmlLib16::Xsd {

// xs:anySimpleType, the 19 primitive types, the 25 derived types.
enum class BuiltInType {
  AnySimpleType,
  String,
  Boolean,
  Decimal,
  Float,
  Double,
  Duration,
  DateTime,
  Time,
  Date,
  GYearMonth,
  GYear,
  GMonthDay,
  GDay,
  GMonth,
  HexBinary,
  Base64Binary,
  AnyURI,
  QName,
  Notation,
  NormalizedString,
  Token,
  Language,
  NMToken,
  NMTokens,
  Name,
  NCName,
  ID,
  IDRef,
  IDRefs,
  Entity,
  Entities,
  Integer,
  NonPositiveInteger,
  NegativeInteger,
  Long,
  Int,
  Short,
  Byte,
  NonNegativeInteger,
  UnsignedLong,
  UnsignedInt,
  UnsignedShort,
  UnsignedByte,
  PositiveInteger,
};
inline constexpr std::size_t kBuiltInTypeCount = 45;

inline constexpr const wchar_t* kBuiltInNames[kBuiltInTypeCount] = {
    L"anySimpleType",
    L"string",
    L"boolean",
    L"decimal",
    L"float",
    L"double",
    L"duration",
    L"dateTime",
    L"time",
    L"date",
    L"gYearMonth",
    L"gYear",
    L"gMonthDay",
    L"gDay",
    L"gMonth",
    L"hexBinary",
    L"base64Binary",
    L"anyURI",
    L"QName",
    L"NOTATION",
    L"normalizedString",
    L"token",
    L"language",
    L"NMTOKEN",
    L"NMTOKENS",
    L"Name",
    L"NCName",
    L"ID",
    L"IDREF",
    L"IDREFS",
    L"ENTITY",
    L"ENTITIES",
    L"integer",
    L"nonPositiveInteger",
    L"negativeInteger",
    L"long",
    L"int",
    L"short",
    L"byte",
    L"nonNegativeInteger",
    L"unsignedLong",
    L"unsignedInt",
    L"unsignedShort",
    L"unsignedByte",
    L"positiveInteger",
};
// The local name of the type: L"nonNegativeInteger".
RKXML_EXPORT const wchar_t* GetBuiltInName(BuiltInType type) noexcept;

// Names of XML 1.0 (fifth edition) and Namespaces in XML, and the other lexical forms of the string types.

struct CodeRange {
  char32_t first, last;
};

// NameStartChar and NameChar, in ascending order; what \i and \c stand for.
RKXML_EXPORT const std::vector<CodeRange>& NameStartRanges();
RKXML_EXPORT const std::vector<CodeRange>& NameRanges();

RKXML_EXPORT bool IsName(std::wstring_view text);
RKXML_EXPORT bool IsNCName(std::wstring_view text);
RKXML_EXPORT bool IsNMToken(std::wstring_view text);
RKXML_EXPORT bool IsQName(std::wstring_view text);
RKXML_EXPORT bool IsLanguage(std::wstring_view text);

constexpr bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r'; }

// Calls `visit` with each token of the text.
template <class Visit>
void ForEachToken(std::wstring_view text, Visit&& visit) {
  for (std::size_t at = 0; at < text.size();) {
    if (IsBlank(text[at])) {
      ++at;
      continue;
    }
    std::size_t end = at;
    while (end < text.size() && !IsBlank(text[end])) ++end;
    visit(text.substr(at, end - at));
    at = end;
  }
}

enum class Order { Less, Equal, Greater, None };

// Whether the text is in the lexical space of the built-in atomic type, bounds and other facets aside.
RKXML_EXPORT bool IsLexical(BuiltInType type, std::wstring_view text);

// The text of a value that is the same for all its lexical forms; the text is valid. For QName and NOTATION the text
// itself.
RKXML_EXPORT std::wstring CanonicalKey(BuiltInType primitive, std::wstring_view text);

// The order of two valid values; None where the type has none for them.
RKXML_EXPORT Order CompareValues(BuiltInType primitive, std::wstring_view a, std::wstring_view b);

struct DigitCount {
  std::size_t total;
  std::size_t fraction;
};
RKXML_EXPORT DigitCount CountDigits(std::wstring_view decimal);

// In the unit of the length facets: characters, octets.
RKXML_EXPORT std::size_t LengthOf(BuiltInType primitive, std::wstring_view text);

}  // namespace RkXmlLib16::Xsd

#endif

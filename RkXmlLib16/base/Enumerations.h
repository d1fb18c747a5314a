#ifndef RKXMLLIB16_BASE_ENUMERATIONS_H
#define RKXMLLIB16_BASE_ENUMERATIONS_H

#include <cstdint>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// Byte form of text output.
enum XmlEncoding : std::int32_t {
  XmlEncoding_None = 0,   // in-memory wide text only; not valid for byte output
  XmlEncoding_UTF8 = 1,   // recommended
  XmlEncoding_UTF16 = 2,  // 16-bit units made of the bytes of the wide text; see docs/xml.md before using it
  XmlEncoding_Wide = 3    // the raw wide characters, four bytes each
};

// Line end that the text writers put after each line.
enum EOLType : std::int32_t { EOLType_CRLF = 0, EOLType_LF = 1 };

// Wrapper around finished bytes (RFC 1952 and RFC 1950), compression level 1.
enum CompressionType : std::int32_t { CompressionType_None = 0, CompressionType_GZip = 1, CompressionType_ZLib = 2 };

// XML declaration in front of a Fast Infoset document (ITU-T X.891 clause 12.3).
enum FInfoDecl : std::int32_t {
  FInfoDecl_None = 0,
  FInfoDecl_Encoding = 1,                // <?xml encoding='finf'?>
  FInfoDecl_EncodingStandaloneYes = 2,   // <?xml encoding='finf' standalone='yes'?>
  FInfoDecl_EncodingStandaloneNo = 3,    // <?xml encoding='finf' standalone='no'?>
  FInfoDecl_Version10 = 4,               // <?xml version='1.0' encoding='finf'?>
  FInfoDecl_Version10StandaloneYes = 5,  // <?xml version='1.0' encoding='finf' standalone='yes'?>
  FInfoDecl_Version10StandaloneNo = 6,   // <?xml version='1.0' encoding='finf' standalone='no'?>
  FInfoDecl_Version11 = 7,               // <?xml version='1.1' encoding='finf'?>
  FInfoDecl_Version11StandaloneYes = 8,  // <?xml version='1.1' encoding='finf' standalone='yes'?>
  FInfoDecl_Version11StandaloneNo = 9    // <?xml version='1.1' encoding='finf' standalone='no'?>
};

// XSD primitive kind, as passed to writers, conversions and collections. Exported, because it is an argument of
// exported templates.
enum RKXML_EXPORT ItemType : std::int32_t {
  ItemType_none = 0,
  ItemType_hexBinary = 1,
  ItemType_base64Binary = 2,
  ItemType_byte = 3,
  ItemType_short = 4,
  ItemType_int = 5,
  ItemType_long = 6,
  ItemType_unsignedByte = 7,
  ItemType_unsignedShort = 8,
  ItemType_unsignedInt = 9,
  ItemType_unsignedLong = 10,
  ItemType_float = 11,
  ItemType_double = 12,
  ItemType_duration = 13,
  ItemType_gYearMonth = 14,
  ItemType_gMonthDay = 15,
  ItemType_gYear = 16,
  ItemType_gMonth = 17,
  ItemType_gDay = 18,
  ItemType_date = 19,
  ItemType_dateTime = 20,  // also written by the collections of every date and time kind
  ItemType_time = 21,
  ItemType_char = 22,
  ItemType_string = 23,  // also the text of enumerations
  ItemType_boolean = 24,
  ItemType_decimal = 25,
  ItemType_integer = 26
};

// Where the content of a generated class or member stands.
enum XmlElementType : std::int32_t {
  XmlElementType_Element = 0,     // in an element of its own
  XmlElementType_InlineGroup = 1  // directly in the parent's element, attributes included
};

// Content model of a generated class.
enum XmlElementGroupType : std::int32_t {
  XmlElementGroupType_Sequence = 0,
  XmlElementGroupType_Choice = 1,
  XmlElementGroupType_All = 2
};

// Kind of schema that the generated classes came from.
enum SchemaType : std::int32_t {
  SchemaType_Xsd = 0,
  SchemaType_NoNamespaces = 2  // names are matched without namespaces and prefixes stay part of the name
};

// How much of the XML structure JSON text keeps.
enum JsonRoundTrip : std::int32_t {
  JsonRoundTrip_Plain = 0,      // no markers
  JsonRoundTrip_Markers = 1,    // "@" attributes and "#text"
  JsonRoundTrip_Namespaces = 2  // markers, prefixes and "@xmlns" declarations
};

}  // namespace RkXmlLib16

#endif

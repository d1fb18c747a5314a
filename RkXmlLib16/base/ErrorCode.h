#ifndef RKXMLLIB16_BASE_ERRORCODE_H
#define RKXMLLIB16_BASE_ERRORCODE_H

#include <string>
#include <string_view>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// The kinds of failure, as ErrorTable.h lists them: RkErrorCode_MissingElement = 501 and so on. A number never changes
// its meaning.
enum RkErrorCode : int {
  RkErrorCode_None = 0,  // of no kind that the library knows; the application's own
#define RKXML_ERROR(number, name, ...) RkErrorCode_##name = number,
#include "RkXmlLib16/base/ErrorTable.h"
};

// "MissingElement"; "None" for what is no code.
RKXML_EXPORT const char* NameOfErrorCode(RkErrorCode code) noexcept;

// The constraining facets of XML Schema: Datatypes, in the order of their codes.
enum RkFacet : int {
  RkFacet_None,
  RkFacet_Length,
  RkFacet_MinLength,
  RkFacet_MaxLength,
  RkFacet_Pattern,
  RkFacet_Enumeration,
  RkFacet_MinInclusive,
  RkFacet_MaxInclusive,
  RkFacet_MinExclusive,
  RkFacet_MaxExclusive,
  RkFacet_TotalDigits,
  RkFacet_FractionDigits
};

// "minInclusive"; empty for RkFacet_None.
RKXML_EXPORT const wchar_t* NameOfFacet(RkFacet facet) noexcept;

// "unsignedByte": the name in XML Schema: Datatypes; "string" for characters, empty for ItemType_none.
RKXML_EXPORT const wchar_t* NameOfXsdType(ItemType type) noexcept;

// A value that was refused: it is no value of its type, or it breaks a facet.
struct CRkRefusedValue {
  std::wstring name;             // of the element or attribute
  std::wstring value;            // as it was read, or its lexical form
  std::wstring typeName;         // of XML Schema: Datatypes without a prefix, "decimal"; empty when not known
  RkFacet facet = RkFacet_None;  // the first one that the value breaks; none when it cannot be converted
  std::wstring bound;            // the facet's value as declared, "0" or "[A-Z]+"; empty for an enumeration
};

}  // namespace RkXmlLib16

#endif

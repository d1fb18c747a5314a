#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_PRIMITIVES_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_PRIMITIVES_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "schema/components/Facets.h"

// Lexical and value spaces of the primitive types. White space has been normalized.
namespace RkXmlSchema {

enum class Order { Less, Equal, Greater, None };

// Whether the text is in the lexical space of the built-in atomic type, bounds and other facets aside.
bool IsLexical(BuiltInType type, std::wstring_view text);

// The text of a value that is the same for all its lexical forms; the text is valid. For QName and NOTATION the text
// itself.
std::wstring CanonicalKey(BuiltInType primitive, std::wstring_view text);

// The order of two valid values; None where the type has none for them.
Order CompareValues(BuiltInType primitive, std::wstring_view a, std::wstring_view b);

struct DigitCount {
  std::size_t total;
  std::size_t fraction;
};
DigitCount CountDigits(std::wstring_view decimal);

// In the unit of the length facets: characters, octets.
std::size_t LengthOf(BuiltInType primitive, std::wstring_view text);

}  // namespace RkXmlSchema

#endif

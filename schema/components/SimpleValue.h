// Values of simple types exactly as XML Schema: Datatypes defines them: lexical space, value space, facets.
#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_SIMPLEVALUE_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_SIMPLEVALUE_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "RkXmlLib16/facets/XsdValueCheck.h"
#include "schema/components/Components.h"

namespace RkXmlSchema {

using RkXmlLib16::Xsd::NamespaceResolver;

NamespaceResolver ResolverOf(const NamespaceBindings* bindings);

// The text as the white space facet of the type leaves it; of a union it is left as it is.
std::wstring NormalizeWhiteSpace(const SimpleTypeDefinition& type, std::wstring_view text);

// What is wrong with the text as a value of the type, in one sentence; nullopt when it is valid. White space is
// normalized first. Without a resolver prefixes of QName and NOTATION values are not looked up.
std::optional<std::wstring> CheckValue(const SimpleTypeDefinition& type, std::wstring_view text,
                                       const NamespaceResolver& resolver = nullptr);

// Whether both texts are valid and denote the same value of the type. The resolvers serve the one and the other text.
bool AreEqualValues(const SimpleTypeDefinition& type, std::wstring_view a, std::wstring_view b,
                    const NamespaceResolver& resolverA = nullptr, const NamespaceResolver& resolverB = nullptr);

// A text that is the same for equal values of the type and differs for others; nullopt for an invalid value.
std::optional<std::wstring> GetValueKey(const SimpleTypeDefinition& type, std::wstring_view text,
                                        const NamespaceResolver& resolver = nullptr);

// The member type of a union (in any depth) that the text is a value of: the first that accepts it; the type itself
// when it is no union; null when the text is invalid.
const SimpleTypeDefinition* FindMemberType(const SimpleTypeDefinition& type, std::wstring_view text,
                                           const NamespaceResolver& resolver = nullptr);

}  // namespace RkXmlSchema

#endif

#ifndef RKXMLLIB16_FACETS_INTERNAL_NAMESPACECONSTRAINT_H
#define RKXMLLIB16_FACETS_INTERNAL_NAMESPACECONSTRAINT_H

#include <string_view>

namespace RkXmlLib16 {

// What CXmlObjectHelper::IsNamespaceValid answers, without copies: whether one of the tokens of `constraint`, parted by
// single blanks, admits the URI. Two blanks in a row part an empty token, which admits the empty URI; so does an empty
// constraint.
bool IsNamespaceAdmitted(std::wstring_view uri, std::wstring_view constraint, std::wstring_view targetNamespace);

}  // namespace RkXmlLib16

#endif

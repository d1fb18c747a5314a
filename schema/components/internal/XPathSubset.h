#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_XPATHSUBSET_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_XPATHSUBSET_H

#include <functional>
#include <string_view>

namespace RkXmlSchema {

// Whether the text is a path as selectors and fields of identity constraints may have it (XML Schema, section 3.11.6),
// with no prefix that `isDeclared` does not know.
bool IsXPathSubset(std::wstring_view text, bool isField, const std::function<bool(std::wstring_view)>& isDeclared);

}  // namespace RkXmlSchema

#endif

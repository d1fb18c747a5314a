#ifndef RKXMLLIB16_METADATA_REGEX_H
#define RKXMLLIB16_METADATA_REGEX_H

#include <string>

#include "RkXmlLib16/core/Export.h"

namespace RkXmlLib16 {

// Whether the whole value matches an XSD regular expression (in UTF-8). The expression is rewritten for PCRE2 by plain
// text replacement, compiled and run on each call. Throws CRkException
// "Invalid Regular Expression: %ls Error: '%ls'" (the value and the engine's text) when the expression does not compile
// or when the match would need more than the engine's limits allow.
RKXML_EXPORT bool TestRegEx(std::string utf8Pattern, std::wstring value);

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_NAMES_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_NAMES_H

#include <string_view>

namespace RkXmlLib16 {

// The names of XML 1.0 (fifth edition) and Namespaces in XML 1.0: any, without a colon, with an optional prefix.
bool IsName(std::wstring_view text);
bool IsNCName(std::wstring_view text);
bool IsQName(std::wstring_view text);
// Whether the text can name a namespace in every form: no control characters, and no '|', which the XML reader refuses.
bool IsNamespaceName(std::wstring_view text);
// Whether XML text can hold all characters. What the encoder repairs may pass.
bool IsXmlText(std::wstring_view text);

}  // namespace RkXmlLib16

#endif

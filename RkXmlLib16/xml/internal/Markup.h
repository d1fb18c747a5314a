#ifndef RKXMLLIB16_XML_INTERNAL_MARKUP_H
#define RKXMLLIB16_XML_INTERNAL_MARKUP_H

#include <string_view>

namespace RkXmlLib16 {

// Whether the text is well-formed where it stands: before the root element, or as content of an element.
// Implemented in ExpatReader.cpp.
bool IsWellFormedProlog(std::wstring_view text);
bool IsWellFormedContent(std::wstring_view text);

}  // namespace RkXmlLib16

#endif

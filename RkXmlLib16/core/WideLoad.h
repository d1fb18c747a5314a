#ifndef RKXMLLIB16_CORE_WIDELOAD_H
#define RKXMLLIB16_CORE_WIDELOAD_H

#include <string>
#include <string_view>

namespace RkXmlLib16 {

// The text as the load of wide text wants it, which takes 16 bits of each character: characters above U+FFFF as
// surrogate pairs, values that are no characters as U+FFFD.
std::wstring ForWideLoad(std::wstring_view text);

}  // namespace RkXmlLib16

#endif

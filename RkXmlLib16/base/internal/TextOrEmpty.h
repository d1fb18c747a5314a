#ifndef RKXMLLIB16_BASE_INTERNAL_TEXTOREMPTY_H
#define RKXMLLIB16_BASE_INTERNAL_TEXTOREMPTY_H

namespace RkXmlLib16 {

// A null text from the application is an empty one.
inline const wchar_t* TextOrEmpty(const wchar_t* text) noexcept { return text != nullptr ? text : L""; }

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_BASE_INTERNAL_SANITIZER_H
#define RKXMLLIB16_BASE_INTERNAL_SANITIZER_H

namespace RkXmlLib16 {

// The address sanitizer sees the misuse only of what is allocated and freed by itself.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
constexpr bool kIsSanitized = __has_feature(address_sanitizer);
#else
constexpr bool kIsSanitized = false;
#endif

}  // namespace RkXmlLib16

#endif

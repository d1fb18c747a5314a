#ifndef RKXMLLIB16_BINDING_INTERNAL_NILVALUE_H
#define RKXMLLIB16_BINDING_INTERNAL_NILVALUE_H

#include <cstddef>
#include <string_view>

namespace RkXmlLib16 {

enum class NilValue { False, True, Invalid };

// The value of an xsi:nil attribute, without regard to the case of its letters.
inline NilValue ParseNilValue(std::wstring_view text) noexcept {
  const auto equals = [text](std::wstring_view word) {
    if (text.size() != word.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
      const wchar_t c = text[i];
      if ((c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c) != word[i]) return false;
    }
    return true;
  };
  if (equals(L"true") || equals(L"1")) return NilValue::True;
  if (equals(L"false") || equals(L"0")) return NilValue::False;
  return NilValue::Invalid;
}

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_TYPES_INTERNAL_READYTEXT_H
#define RKXMLLIB16_TYPES_INTERNAL_READYTEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace RkXmlLib16 {

// Apart, so that the usual case needs no stack frame.
template <class Value>
[[gnu::noinline]] std::wstring_view LongerText(const Value& value, std::wstring& longer) {
  longer.clear();
  value.AppendTo(longer);
  return longer;
}

// The text of a value: what was written from `first` to `end`, or in `longer` where `first` is null.
template <class Value>
std::wstring_view ReadyText(const Value& value, const wchar_t* first, const wchar_t* end, std::wstring& longer) {
  return first != nullptr ? std::wstring_view(first, static_cast<std::size_t>(end - first)) : LongerText(value, longer);
}

}  // namespace RkXmlLib16

#endif

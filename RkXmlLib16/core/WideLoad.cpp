#include "RkXmlLib16/core/WideLoad.h"

#include "RkXmlLib16/support/CodePoints.h"

namespace RkXmlLib16 {

std::wstring ForWideLoad(std::wstring_view text) {
  std::wstring out;
  out.reserve(text.size());
  for (const wchar_t character : text) {
    const auto value = static_cast<char32_t>(character);
    if (value <= 0xFFFF) {
      out += character;
    } else if (IsScalarValue(value)) {
      out += static_cast<wchar_t>(HighSurrogateOf(value));
      out += static_cast<wchar_t>(LowSurrogateOf(value));
    } else {
      out += static_cast<wchar_t>(kReplacementCharacter);
    }
  }
  return out;
}

}  // namespace RkXmlLib16

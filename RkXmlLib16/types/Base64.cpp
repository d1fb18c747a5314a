#include "RkXmlLib16/types/Base64.h"

#include <array>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"

namespace RkXmlLib16 {

std::wstring CBase64::Encode(const unsigned char* data, unsigned long length) {
  std::wstring text((length / 3 + (length % 3 != 0 ? 1 : 0)) * 4, L'=');
  wchar_t* out = text.data();
  unsigned long i = 0;
  for (; i + 3 <= length; i += 3) {
    const unsigned quantum = unsigned{data[i]} << 16 | unsigned{data[i + 1]} << 8 | data[i + 2];
    for (int group = 0; group < 4; ++group) *out++ = m_sBase64Alphabet[Read(quantum, group)];
  }
  const unsigned long rest = length - i;
  if (rest > 0) {
    const unsigned quantum = unsigned{data[i]} << 16 | (rest == 2 ? unsigned{data[i + 1]} << 8 : 0);
    for (int group = 0; group <= static_cast<int>(rest); ++group) *out++ = m_sBase64Alphabet[Read(quantum, group)];
  }
  return text;
}

unsigned long CBase64::Decode(const wchar_t* text, unsigned char* data) {
  enum : signed char { kForeign = -1, kSpace = -2, kPad = -3 };
  static constexpr std::array<signed char, 128> kValues = [] {
    std::array<signed char, 128> values{};
    for (signed char& value : values) value = kForeign;
    for (signed char i = 0; i < 64; ++i) values[static_cast<std::size_t>(m_sBase64Alphabet[i])] = i;
    for (const wchar_t space : {L' ', L'\t', L'\r', L'\n'}) values[static_cast<std::size_t>(space)] = kSpace;
    values['='] = kPad;
    return values;
  }();

  unsigned long length = 0;
  unsigned quantum = 0;
  int groups = 0;
  int padding = 0;
  for (; text != nullptr && *text != L'\0'; ++text) {
    const auto c = static_cast<unsigned>(*text);
    const signed char value = c < kValues.size() ? kValues[c] : signed{kForeign};
    if (value == kSpace) continue;
    const bool fits = value == kPad ? groups == 2 || groups == 3 : value >= 0 && padding == 0;
    if (!fits) throw CRkException(FormatString(L"Invalid char in base64 string [%c]", *text));
    if (value == kPad)
      ++padding;
    else
      quantum = Write(quantum, groups, static_cast<unsigned>(value));
    if (++groups < 4) continue;
    for (int byte = 0; byte < 3 - padding; ++byte, ++length)
      if (data != nullptr) data[length] = static_cast<unsigned char>(quantum >> (16 - 8 * byte));
    quantum = 0;
    // After padding the count stays at 4, so that more padding is one group too many.
    if (padding == 0) groups = 0;
  }
  if (groups != 0 && !(padding != 0 && groups == 4)) throw CRkException(L"Invalid length in base64 string");
  return length;
}

}  // namespace RkXmlLib16

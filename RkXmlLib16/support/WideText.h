#ifndef RKXMLLIB16_SUPPORT_WIDETEXT_H
#define RKXMLLIB16_SUPPORT_WIDETEXT_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <string_view>

// What is done to a short wide text everywhere, without a call.
namespace RkXmlLib16::WideText {

constexpr std::size_t kShort = 16;

inline bool IsEqualFour(const wchar_t* a, const wchar_t* b) {
  std::uint64_t left[2];
  std::uint64_t right[2];
  std::memcpy(left, a, sizeof left);
  std::memcpy(right, b, sizeof right);
  return ((left[0] ^ right[0]) | (left[1] ^ right[1])) == 0;
}

inline bool IsEqual(std::wstring_view a, std::wstring_view b) {
  const std::size_t length = a.size();
  if (length != b.size()) return false;
  if (length > kShort) return std::wmemcmp(a.data(), b.data(), length) == 0;
  if (length < 4) {
    for (std::size_t i = 0; i < length; ++i)
      if (a[i] != b[i]) return false;
    return true;
  }
  for (std::size_t i = 0; i + 4 < length; i += 4)
    if (!IsEqualFour(a.data() + i, b.data() + i)) return false;
  return IsEqualFour(a.data() + length - 4, b.data() + length - 4);
}

// Copies the text, which does not overlap with the room, and returns the end of the copy.
inline wchar_t* Copy(wchar_t* to, std::wstring_view text) {
  const std::size_t length = text.size();
  if (length > kShort) return std::wmemcpy(to, text.data(), length) + length;
  if (length < 4) {
    for (const wchar_t c : text) *to++ = c;
    return to;
  }
  for (std::size_t i = 0; i + 4 < length; i += 4) std::memcpy(to + i, text.data() + i, 4 * sizeof(wchar_t));
  std::memcpy(to + length - 4, text.data() + length - 4, 4 * sizeof(wchar_t));
  return to + length;
}

}  // namespace RkXmlLib16::WideText

#endif

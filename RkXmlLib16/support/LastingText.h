#ifndef RKXMLLIB16_SUPPORT_LASTINGTEXT_H
#define RKXMLLIB16_SUPPORT_LASTINGTEXT_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The names and namespaces of records. Equal ones are one string, which neither moves nor changes until the process
// ends, so that whoever has seen it knows it again by its address.
namespace RkXmlLib16::LastingText {

// The string of this text. Safe to call from several threads.
const std::wstring& Get(std::wstring_view text);

constexpr std::size_t kMostKnown = 8192;
extern std::atomic<const std::wstring*> g_first;  // of so many, the ones that Is knows

// Whether Get returned the string; false for those after the first thousands.
inline bool Is(const std::wstring& text) noexcept {
  const auto distance = reinterpret_cast<std::uintptr_t>(&text) -
                        reinterpret_cast<std::uintptr_t>(g_first.load(std::memory_order_acquire));
  return distance < kMostKnown * sizeof(std::wstring);
}

}  // namespace RkXmlLib16::LastingText

#endif

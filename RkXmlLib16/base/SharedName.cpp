#include "RkXmlLib16/base/SharedName.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "RkXmlLib16/base/internal/ThreadObject.h"
#include "RkXmlLib16/base/internal/WideText.h"

namespace RkXmlLib16 {

// The names that a thread set last, each in the place that its characters give.
class CSharedName::Recent {
 public:
  // Null for long names, which are not kept, and when the thread has ended its names.
  static CSharedName* Find(std::wstring_view name) {
    Recent* const recent = name.size() <= kLongest ? CThreadObject<Recent>::Get() : nullptr;
    if (recent == nullptr) return nullptr;
    return &recent->m_names[HashOf(name) % kCount];
  }

 private:
  // By the length and some characters, so that long names take no longer.
  static std::uint64_t HashOf(std::wstring_view name) {
    std::uint64_t hash = name.size();
    if (name.size() >= 2) {
      hash ^= PairAt(name.data()) ^ PairAt(name.data() + name.size() / 2 - 1) << 12;
      hash ^= PairAt(name.data() + name.size() - 2) << 24;
    } else if (!name.empty()) {
      hash ^= static_cast<std::uint64_t>(name.front());
    }
    return hash * 0x9E3779B97F4A7C15u >> 48;
  }
  static std::uint64_t PairAt(const wchar_t* text) {
    std::uint64_t pair = 0;
    std::memcpy(&pair, text, sizeof pair);
    return pair;
  }

  static constexpr std::size_t kCount = 256;
  static constexpr std::size_t kLongest = 256;  // characters

  std::array<CSharedName, kCount> m_names;
};

// Before the other objects of the library, some of which have names.
[[gnu::init_priority(101)]] CSharedName::Shared CSharedName::kEmpty{std::wstring_view()};

void CSharedName::SetOther(std::wstring_view name) {
  if (!WideText::IsEqual(m_shared->text, name)) Replace(name);
}

[[gnu::noinline]] void CSharedName::Replace(std::wstring_view name) {
  CSharedName changed;
  if (!name.empty()) {
    CSharedName* const recent = Recent::Find(name);
    if (recent != nullptr && WideText::IsEqual(recent->Get(), name)) {
      changed = *recent;
    } else {
      changed.m_shared = new Shared(name);
      if (recent != nullptr) *recent = changed;
    }
  }
  std::swap(m_shared, changed.m_shared);
}

}  // namespace RkXmlLib16

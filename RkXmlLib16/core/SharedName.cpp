#include "RkXmlLib16/core/SharedName.h"

#include <array>
#include <cstddef>

#include "RkXmlLib16/support/WideText.h"
#include "RkXmlLib16/support/internal/ThreadObject.h"

namespace RkXmlLib16 {

// The names that a thread set last, each in the place that its ends and its length give.
class CSharedName::Recent {
 public:
  // Null for long names, which are not kept, and when the thread has ended its names.
  static CSharedName* Find(std::wstring_view name) {
    Recent* const recent = name.size() <= kLongest ? CThreadObject<Recent>::Get() : nullptr;
    if (recent == nullptr) return nullptr;
    const std::size_t mix = static_cast<std::size_t>(name.front()) * 5 + static_cast<std::size_t>(name.back()) * 3;
    return &recent->m_names[(mix + name.size()) % kCount];
  }

 private:
  static constexpr std::size_t kCount = 64;
  static constexpr std::size_t kLongest = 64;

  std::array<CSharedName, kCount> m_names;
};

const std::wstring& CSharedName::Empty() noexcept {
  static const std::wstring empty;
  return empty;
}

void CSharedName::Set(std::wstring_view name) {
  if (m_shared != nullptr ? WideText::IsEqual(m_shared->text, name) : name.empty()) return;
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

#include "RkXmlLib16/core/ElementName.h"

#include <array>
#include <cstddef>

namespace RkXmlLib16 {

// The names that a thread set last, each in the place that its ends and its length give.
class CElementName::Recent {
 public:
  // Null when the thread has ended its variables; static objects outlive those.
  static CElementName* Find(std::wstring_view name) {
    if (name.size() > kLongest) return nullptr;
    if (t_names == nullptr && !t_isGone) Make();
    if (t_names == nullptr) return nullptr;
    const std::size_t mix = static_cast<std::size_t>(name.front()) * 5 + static_cast<std::size_t>(name.back()) * 3;
    return &t_names->m_names[(mix + name.size()) % kCount];
  }

 private:
  static constexpr std::size_t kCount = 64;
  static constexpr std::size_t kLongest = 64;  // longer names are not kept

  Recent() { t_names = this; }
  ~Recent() {
    t_names = nullptr;
    t_isGone = true;
  }
  static void Make() { static thread_local Recent recent; }

  // In the memory that a thread has from its start: a few bytes, found without a call.
  [[gnu::tls_model("initial-exec")]] static thread_local Recent* t_names;
  [[gnu::tls_model("initial-exec")]] static thread_local bool t_isGone;
  std::array<CElementName, kCount> m_names;
};

thread_local CElementName::Recent* CElementName::Recent::t_names = nullptr;
thread_local bool CElementName::Recent::t_isGone = false;

const std::wstring& CElementName::Empty() noexcept {
  static const std::wstring empty;
  return empty;
}

void CElementName::Change(std::wstring_view name) {
  CElementName changed;
  if (!name.empty()) {
    CElementName* const recent = Recent::Find(name);
    if (recent != nullptr && recent->Get() == name) {
      changed = *recent;
    } else {
      changed.m_shared = new Shared(name);
      if (recent != nullptr) *recent = changed;
    }
  }
  std::swap(m_shared, changed.m_shared);
}

}  // namespace RkXmlLib16

#ifndef RKXMLLIB16_CORE_SHAREDNAME_H
#define RKXMLLIB16_CORE_SHAREDNAME_H

#include <string>
#include <string_view>
#include <utility>

#include "RkXmlLib16/core/Export.h"
#include "RkXmlLib16/core/ReferenceCount.h"

namespace RkXmlLib16 {

// A name or namespace that many objects have: those that a thread uses again and again are held once for all of them. A
// value type; copies share the text.
class RKXML_EXPORT CSharedName {
 public:
  CSharedName() noexcept = default;
  CSharedName(const CSharedName& other) noexcept : m_shared(other.m_shared) {
    if (m_shared != nullptr) m_shared->references.Increment();
  }
  CSharedName& operator=(CSharedName other) noexcept {
    std::swap(m_shared, other.m_shared);
    return *this;
  }
  ~CSharedName() {
    if (m_shared != nullptr && m_shared->references.Decrement() == 0) delete m_shared;
  }

  // Holds until the name is set again.
  const std::wstring& Get() const noexcept { return m_shared != nullptr ? m_shared->text : Empty(); }
  void Set(std::wstring_view name);

 private:
  struct Shared {
    explicit Shared(std::wstring_view name) : text(name) {}
    const std::wstring text;
    CReferenceCount references{1};
  };
  class Recent;

  static const std::wstring& Empty() noexcept;

  Shared* m_shared = nullptr;  // null for the empty name
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_BASE_SHAREDNAME_H
#define RKXMLLIB16_BASE_SHAREDNAME_H

#include <string>
#include <string_view>
#include <utility>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/base/ReferenceCount.h"

namespace RkXmlLib16 {

// A name or namespace that many objects and records have: those that a thread uses again and again are held once for
// all of them. A value type; copies share the text. Names that are alike mostly are the same text in the same place.
class RKXML_EXPORT CSharedName {
 public:
  CSharedName() noexcept = default;
  explicit CSharedName(std::wstring_view name) { Set(name); }
  CSharedName(const CSharedName& other) noexcept : m_shared(other.m_shared) {
    if (RKXML_LIKELY(m_shared != &kEmpty)) m_shared->references.Increment();
  }
  CSharedName(CSharedName&& other) noexcept : m_shared(std::exchange(other.m_shared, &kEmpty)) {}
  CSharedName& operator=(CSharedName other) noexcept {
    std::swap(m_shared, other.m_shared);
    return *this;
  }
  ~CSharedName() {
    if (RKXML_LIKELY(m_shared != &kEmpty) && RKXML_UNLIKELY(m_shared->references.Decrement() == 0)) delete m_shared;
  }

  // Holds until the name is set again.
  const std::wstring& Get() const noexcept { return m_shared->text; }
  void Set(std::wstring_view name) {
    if (RKXML_UNLIKELY(name.data() != Get().data() || name.size() != Get().size())) SetOther(name);
  }
  // Null is the empty name.
  void Set(const wchar_t* name) { Set(name != nullptr ? std::wstring_view(name) : std::wstring_view()); }

 private:
  struct Shared {
    explicit Shared(std::wstring_view name) : text(name) {}
    const std::wstring text;
    CReferenceCount references{1};
  };
  class Recent;

  void SetOther(std::wstring_view name);  // unless it is the same text in another place
  void Replace(std::wstring_view name);

  static Shared kEmpty;  // never counted

  Shared* m_shared = &kEmpty;
};

}  // namespace RkXmlLib16

#endif

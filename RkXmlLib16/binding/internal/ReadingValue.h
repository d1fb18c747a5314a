#ifndef RKXMLLIB16_BINDING_INTERNAL_READINGVALUE_H
#define RKXMLLIB16_BINDING_INTERNAL_READINGVALUE_H

#include <cstddef>
#include <optional>

#include "RkXmlLib16/base/internal/ThreadObject.h"
#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16Data {

// A value on its way from the document into a member, invalid at first. Short ones share a variant for each thread, so
// that its storage is used again; a value that is read while the setter of another one runs has a variant of its own.
class ReadingValue {
 public:
  // `charCount` is the length of the text that will be read.
  explicit ReadingValue(std::size_t charCount) : m_shared(charCount <= kLongestKept ? TakeShared() : nullptr) {
    if (m_shared == nullptr) m_own.emplace();
  }
  ReadingValue(const ReadingValue&) = delete;
  ReadingValue& operator=(const ReadingValue&) = delete;
  ~ReadingValue() {
    if (m_shared == nullptr) return;
    m_shared->value.SetUnused();
    m_shared->isTaken = false;
  }

  RkXmlLib16::RkVariant& Get() noexcept { return m_shared != nullptr ? m_shared->value : *m_own; }

 private:
  static constexpr std::size_t kLongestKept = 1024;

  struct Shared {
    RkXmlLib16::RkVariant value;
    bool isTaken = false;
  };

  static Shared* TakeShared() {
    Shared* const shared = RkXmlLib16::CThreadObject<Shared>::Get();
    if (shared == nullptr || shared->isTaken) return nullptr;
    shared->isTaken = true;
    return shared;
  }

  Shared* m_shared;
  std::optional<RkXmlLib16::RkVariant> m_own;
};

}  // namespace RkXmlLib16Data

#endif

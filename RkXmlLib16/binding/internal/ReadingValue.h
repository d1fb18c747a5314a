#ifndef RKXMLLIB16_BINDING_INTERNAL_READINGVALUE_H
#define RKXMLLIB16_BINDING_INTERNAL_READINGVALUE_H

#include <cstddef>
#include <optional>

#include "RkXmlLib16/binding/internal/ReadSession.h"
#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16Data {

// A value on its way from the document into a member, invalid at first. Short ones share the variant of the session, so
// that its storage is used again; a value that is read while the setter of another one runs has a variant of its own.
class ReadingValue {
 public:
  // `charCount` is the length of the text that will be read.
  explicit ReadingValue(std::size_t charCount)
      : m_session(charCount <= kLongestKept ? ReadSession::Current() : nullptr) {
    if (m_session != nullptr && m_session->isValueTaken) m_session = nullptr;
    if (m_session != nullptr)
      m_session->isValueTaken = true;
    else
      m_own.emplace();
  }
  ReadingValue(const ReadingValue&) = delete;
  ReadingValue& operator=(const ReadingValue&) = delete;
  ~ReadingValue() {
    if (m_session == nullptr) return;
    m_session->value.SetUnused();
    m_session->isValueTaken = false;
  }

  RkXmlLib16::RkVariant& Get() noexcept { return m_session != nullptr ? m_session->value : *m_own; }

 private:
  static constexpr std::size_t kLongestKept = 1024;

  ReadSession* m_session;
  std::optional<RkXmlLib16::RkVariant> m_own;
};

}  // namespace RkXmlLib16Data

#endif

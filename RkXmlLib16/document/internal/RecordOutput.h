#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_RECORDOUTPUT_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_RECORDOUTPUT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/NameToken.h"
#include "RkXmlLib16/base/internal/WideText.h"
#include "RkXmlLib16/document/internal/NamespacePool.h"

namespace RkXmlLib16 {

// What a writer of the library does with the names of records, in place of WriteStartElement, WriteTextElement and
// WriteAttributeString. It writes what those write; its output is not checked.
class CRecordOutput {
 public:
  CRecordOutput() = default;
  CRecordOutput(const CRecordOutput&) = delete;
  CRecordOutput& operator=(const CRecordOutput&) = delete;
  virtual ~CRecordOutput() = default;

  virtual void StartElement(const CNameToken& name) = 0;
  virtual void TextElement(const CNameToken& name, std::wstring_view text, ItemType type, bool isCanonical) = 0;
  virtual void Attribute(const CNameToken& name, std::wstring_view value, ItemType type, bool isCanonical) = 0;
};

// Characters that a writer has ready, of which sixteen at a time are copied; there must be space for all of `text`.
template <std::size_t kLongest>
struct CReadyText {
  static_assert(kLongest % 16 == 0);

  wchar_t* CopyTo(wchar_t* to) const noexcept {
    const std::size_t count = length;
    for (std::size_t i = 0; i < count; i += 16)
      for (std::size_t j = i; j < i + 16; j += 4) WideText::StoreFour(to + j, WideText::LoadFour(text + j));
    return to + count;
  }

  std::size_t length;
  wchar_t text[kLongest];
};

// What a form made of the names of records, `Made`, by the number of the name: one entry for each element and each
// attribute, of those that share a place the last one. Invariant: an entry holds in the scope of its number.
template <class Made>
class CKnownNames {
 public:
  struct Entry {
    std::uint32_t number = CNameToken::kNoNumber;
    std::uint64_t scope = CNamespacePool::kNoScope;
    const CNamespaceName* namespaceName;
    Made made;

    bool Holds(const CNameToken& name, std::uint64_t current) const noexcept {
      return number == name.GetNumber() && scope == current;
    }
    // From here on it is about this name; with `current` as kNoScope, or a name without number, it is never found.
    void Begin(const CNameToken& name, const CNamespaceName& ofName, std::uint64_t current) noexcept {
      number = current != CNamespacePool::kNoScope ? name.GetNumber() : CNameToken::kNoNumber;
      scope = number != CNameToken::kNoNumber ? current : CNamespacePool::kNoScope;
      namespaceName = &ofName;
    }
  };

  Entry& Element(const CNameToken& name) noexcept { return m_elements[name.GetNumber() % kCount]; }
  Entry& Attribute(const CNameToken& name) noexcept { return m_attributes[name.GetNumber() % (kCount / 4)]; }

 private:
  static constexpr std::size_t kCount = 64;

  Entry m_elements[kCount];
  Entry m_attributes[kCount / 4];
};

}  // namespace RkXmlLib16

#endif

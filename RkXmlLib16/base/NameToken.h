#ifndef RKXMLLIB16_BASE_NAMETOKEN_H
#define RKXMLLIB16_BASE_NAMETOKEN_H

#include <cstdint>
#include <string>
#include <string_view>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/SharedName.h"

namespace RkXmlLib16 {

// The expanded name (W3C Namespaces in XML 1.0) of a metadata record: a local name, a namespace, and a number that all
// tokens of this name have while one of them lives. Other names never have that number, so that whoever has worked out
// something about a name can find it again by the number alone. Any thread may make and destroy tokens; what they hold
// does not change. Names of documents, which would fill the table of the process, have tokens for one writer only.
class RKXML_EXPORT CNameToken {
 public:
  // When there are no more numbers, tokens have this one, by which nothing can be found again.
  static constexpr std::uint32_t kNoNumber = UINT32_MAX;
  // From here on the numbers are those that a writer gives to names of documents.
  static constexpr std::uint32_t kFirstOfWriter = UINT32_MAX / 2;

  CNameToken(std::wstring_view localName, std::wstring_view namespaceUri);
  // Of a writer, with a number that no other of its tokens had.
  CNameToken(const CSharedName& localName, const CSharedName& namespaceUri, std::uint32_t number) noexcept;
  CNameToken(const CNameToken&) = delete;
  CNameToken& operator=(const CNameToken&) = delete;
  ~CNameToken();

  // Both stay where they are while the token lives.
  const std::wstring& GetLocalName() const noexcept { return m_localName.Get(); }
  const std::wstring& GetNamespace() const noexcept { return m_namespace.Get(); }
  const CSharedName& GetSharedLocalName() const noexcept { return m_localName; }
  std::uint32_t GetNumber() const noexcept { return m_number; }

 private:
  friend class CNameTable;

  CSharedName m_localName;
  CSharedName m_namespace;
  std::uint32_t m_number = kNoNumber;
  bool m_isEntered = false;  // in the table of the process
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_WILDCARDS_INTERNAL_NAMETEST_H
#define RKXMLLIB16_WILDCARDS_INTERNAL_NAMETEST_H

#include <memory>
#include <string>
#include <string_view>

#include "RkXmlLib16/base/internal/TextOrEmpty.h"

namespace RkXmlLib16 {

// Looks for a name among others; a namespace that several of them share is compared once in a row.
class CNameTest {
 public:
  CNameTest(const wchar_t* localName, const wchar_t* namespaceUri)
      : m_localName(TextOrEmpty(localName)),
        m_namespaceUri(TextOrEmpty(namespaceUri)),
        m_isLastWanted(m_namespaceUri.empty()) {}

  // `namespaceUri` is null for no namespace.
  bool operator()(const std::wstring& localName, const std::shared_ptr<const std::wstring>& namespaceUri) {
    if (localName != m_localName) return false;
    if (namespaceUri.get() != m_last) {
      m_last = namespaceUri.get();
      m_isLastWanted = (m_last != nullptr ? std::wstring_view(*m_last) : std::wstring_view()) == m_namespaceUri;
    }
    return m_isLastWanted;
  }

 private:
  std::wstring_view m_localName;
  std::wstring_view m_namespaceUri;
  const std::wstring* m_last = nullptr;
  bool m_isLastWanted;
};

}  // namespace RkXmlLib16

#endif

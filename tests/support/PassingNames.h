#ifndef RKXMLLIB16_TESTS_SUPPORT_PASSINGNAMES_H
#define RKXMLLIB16_TESTS_SUPPORT_PASSINGNAMES_H

#include <string>

#include "RkXmlLib16/support/LastingText.h"

namespace RkXmlTest {

// Names and namespaces for writers: either those of records, or all at the same two addresses.
class Names {
 public:
  explicit Names(bool lasting) : m_lasting(lasting) {}
  const std::wstring& Name(const wchar_t* text) { return Hold(m_name, text); }
  const std::wstring& Uri(const wchar_t* text) { return Hold(m_uri, text); }

 private:
  const std::wstring& Hold(std::wstring& passing, const wchar_t* text) const {
    return m_lasting ? RkXmlLib16::LastingText::Get(text) : passing = text;
  }

  bool m_lasting;
  std::wstring m_name;
  std::wstring m_uri;
};

}  // namespace RkXmlTest

#endif

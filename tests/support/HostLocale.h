#ifndef RKXMLLIB16_TESTS_SUPPORT_HOSTLOCALE_H
#define RKXMLLIB16_TESTS_SUPPORT_HOSTLOCALE_H

#include <clocale>
#include <string>

namespace RkXmlTest {

// The locale of the host program, put back at the end of the test. IsSet() is false where it is not installed.
class HostLocale {
 public:
  explicit HostLocale(const char* name)
      : m_previous(std::setlocale(LC_ALL, nullptr)), m_isSet(std::setlocale(LC_ALL, name) != nullptr) {}
  HostLocale(const HostLocale&) = delete;
  HostLocale& operator=(const HostLocale&) = delete;
  ~HostLocale() { std::setlocale(LC_ALL, m_previous.c_str()); }
  bool IsSet() const { return m_isSet; }

 private:
  std::string m_previous;
  bool m_isSet;
};

}  // namespace RkXmlTest

#endif

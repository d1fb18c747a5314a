#ifndef RKXMLLIB16_TESTS_EXPECT_H
#define RKXMLLIB16_TESTS_EXPECT_H

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>
#include <vector>

#include "RkXmlLib16/core/Exception.h"

// The words of the tests.
namespace RkXmlTest {

inline std::string Narrow(const std::wstring& text) {
  std::string out;
  for (const wchar_t c : text) {
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else {
      char buffer[16];
      snprintf(buffer, sizeof buffer, "\\x%X", static_cast<unsigned>(c));
      out += buffer;
    }
  }
  return out;
}

inline std::wstring Repeat(int count, const wchar_t* text) {
  std::wstring all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

inline std::vector<std::wstring> Split(const std::wstring& text, const std::wstring& separator) {
  std::vector<std::wstring> parts;
  for (std::size_t at = 0, end = 0; end != std::wstring::npos; at = end + separator.size()) {
    end = text.find(separator, at);
    parts.push_back(text.substr(at, end == std::wstring::npos ? end : end - at));
  }
  return parts;
}

// Tells unless `call` throws exactly this class and message.
template <class Call>
void ExpectThrows(const std::type_info& type, const std::wstring& message, Call&& call, const char* file, int line) {
  try {
    call();
  } catch (const RkXmlLib16::CRkException& e) {
    if (typeid(e) != type)
      ADD_FAILURE_AT(file, line) << "thrown class " << typeid(e).name() << ", expected " << type.name();
    if (e.GetMessage() != message)
      ADD_FAILURE_AT(file, line) << "thrown message [" << Narrow(e.GetMessage()) << "], expected [" << Narrow(message)
                                 << "]";
    return;
  }
  ADD_FAILURE_AT(file, line) << "nothing thrown, expected " << type.name() << " [" << Narrow(message) << "]";
}

}  // namespace RkXmlTest

// The expression throws exactly this class with exactly this message (GetMessage()).
#define EXPECT_RK_THROWS(Class, message, expression) \
  ::RkXmlTest::ExpectThrows(                         \
      typeid(::RkXmlLib16::Class), message, [&] { static_cast<void>(expression); }, __FILE__, __LINE__)

// Two wide texts are equal; shows them narrow when they are not.
#define EXPECT_WIDE_EQ(expected, actual) \
  EXPECT_EQ(::RkXmlTest::Narrow(std::wstring(expected)), ::RkXmlTest::Narrow(std::wstring(actual)))

#endif

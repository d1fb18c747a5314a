#ifndef RKXMLLIB16_TESTS_EXPECT_H
#define RKXMLLIB16_TESTS_EXPECT_H

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <typeinfo>
#include <vector>

#include "RkXmlLib16/base/Exception.h"

// What all tests use.
namespace RkXmlTest {

using namespace RkXmlLib16;

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

using Wide = const wchar_t*;

// A table: for (const auto& [text, value] : rows).
template <class... Columns>
using Rows = std::vector<std::tuple<Columns...>>;

// What `call` throws as "class: message, one line for each link of the chain"; "nothing" when it returns.
template <class Call>
std::wstring Thrown(Call&& call) {
  try {
    call();
  } catch (const CRkException& e) {
    const std::string name = typeid(e).name();  // as compilers write it: "N10RkXmlLib1612CRkExceptionE"
    const std::wstring wide(name.begin(), name.end() - 1);
    return wide.substr(wide.find(L"CRk")) + L": " + e.GetFullMessage();
  }
  return L"nothing";
}

// Tells unless this class and message were thrown.
inline void ExpectThrown(const std::type_info& type, const std::wstring& message, const CRkException& thrown,
                         const char* file, int line) {
  if (typeid(thrown) != type || thrown.GetMessage() != message)
    ADD_FAILURE_AT(file, line) << "thrown " << typeid(thrown).name() << " [" << Narrow(thrown.GetMessage())
                               << "], expected " << type.name() << " [" << Narrow(message) << "]";
}

}  // namespace RkXmlTest

// The expression throws exactly this class with exactly this message (GetMessage()).
#define EXPECT_THROWS(Class, message, expression)                                                      \
  do {                                                                                                 \
    try {                                                                                              \
      static_cast<void>(expression);                                                                   \
      ADD_FAILURE() << "nothing thrown, expected " #Class " [" << ::RkXmlTest::Narrow(message) << "]"; \
    } catch (const ::RkXmlLib16::CRkException& thrownHere) {                                           \
      ::RkXmlTest::ExpectThrown(typeid(::RkXmlLib16::Class), message, thrownHere, __FILE__, __LINE__); \
    }                                                                                                  \
  } while (false)

// Two wide texts are equal; shows them narrow when they are not.
#define EXPECT_TEXT(expected, actual) \
  EXPECT_EQ(::RkXmlTest::Narrow(std::wstring(expected)), ::RkXmlTest::Narrow(std::wstring(actual)))

#endif

#ifndef RKXMLLIB16_TESTS_DOCS_BLOCKS_H
#define RKXMLLIB16_TESTS_DOCS_BLOCKS_H

// What stands before the blocks of the pages: the library, the classes of schemas, and the words by which the
// generated source checks what a block says about itself.

#include <RkXmlLib16/Generated.h>
#include <RkXmlLib16/RkXmlLib16.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <exception>
#include <sstream>
#include <string>
#include <type_traits>
#include <typeinfo>

#include "gpx.h"
#include "shelf.h"

using namespace RkXmlLib16;

namespace {

int failures = 0;

void Fail(const std::string& text) {
  ++failures;
  std::fprintf(stderr, "%s\n", text.c_str());
}

std::string OneLine(std::string text) {
  FindReplace(text, "\n", "\\n");
  FindReplace(text, "\r", "\\r");
  FindReplace(text, "\t", "\\t");
  return text;
}

std::string Utf8(const std::wstring& text) {
  const CBinaryData bytes = CEncoder::UnicodeToUtf8Binary(text.c_str());
  return std::string(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength());
}

std::string Show(const std::wstring& value) { return OneLine(Utf8(value)); }
std::string Show(const wchar_t* value) { return Show(std::wstring(value)); }
std::string Show(std::wstring_view value) { return Show(std::wstring(value)); }
std::string Show(const CXmlText& value) { return Show(value.ToString()); }
std::string Show(wchar_t value) { return Show(std::wstring(1, value)); }
std::string Show(bool value) { return value ? "true" : "false"; }
// Bytes that are text show as text.
std::string Show(const CBinaryData& value) {
  const std::string bytes(reinterpret_cast<const char*>(value.GetData()), value.GetLength());
  return OneLine(bytes);
}
template <class T, std::enable_if_t<std::is_integral_v<T> || std::is_enum_v<T>, int> = 0>
std::string Show(T value) {
  return std::to_string(static_cast<long long>(value));
}
std::string Show(double value) {
  char text[48];
  std::snprintf(text, sizeof text, "%.16g", value);
  return text;
}
template <class T>
auto Show(const T& value) -> decltype(Show(value.ToString())) {
  return Show(value.ToString());
}

void Compare(const char* file, int line, const std::string& expected, const std::string& shown) {
  if (shown != expected)
    Fail(std::string(file) + ":" + std::to_string(line) + ": the page says\n  " + expected + "\nit is\n  " + shown);
}

template <class Expected, class Call>
void CheckThrows(const char* file, int line, const std::string& expected, Call&& call) {
  const std::string where = std::string(file) + ":" + std::to_string(line);
  try {
    call();
  } catch (const CRkException& e) {
    if (typeid(e) != typeid(Expected)) Fail(where + ": thrown is a " + typeid(e).name());
    Compare(file, line, expected, Show(e.GetMessage()));
    return;
  }
  Fail(where + ": nothing is thrown");
}

#define SHOWS(expected, ...) Compare(__FILE__, __LINE__, expected, Show(__VA_ARGS__))
#define THROWS(type, expected, ...) CheckThrows<type>(__FILE__, __LINE__, expected, [&] { __VA_ARGS__; })

// Runs a block; `expected`, when not null, is what it prints.
void Run(const char* where, void (*block)(), const char* expected) {
  std::FILE* file = std::tmpfile();
  std::fflush(stdout);
  const int terminal = dup(STDOUT_FILENO);
  dup2(fileno(file), STDOUT_FILENO);
  try {
    block();
  } catch (const CRkException& e) {
    Fail(std::string(where) + ": " + Utf8(e.GetFullMessage()));
  } catch (const std::exception& e) {
    Fail(std::string(where) + ": " + e.what());
  }
  std::fflush(stdout);
  dup2(terminal, STDOUT_FILENO);
  close(terminal);
  std::string printed;
  std::rewind(file);
  for (int c; (c = std::fgetc(file)) != EOF;) printed += static_cast<char>(c);
  std::fclose(file);
  if (expected != nullptr && printed != expected)
    Fail(std::string(where) + ": the page says it prints\n" + expected + "it prints\n" + printed);
}

void Begin() { std::setlocale(LC_CTYPE, "C.UTF-8"); }

int Finish() {
  if (failures != 0) std::fprintf(stderr, "%d failures\n", failures);
  return failures != 0;
}

}  // namespace

#endif

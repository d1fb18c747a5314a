// A pattern and a value on the next line: an answer or a clean exception, and a branch beside a match keeps it.
#include "Check.h"

using namespace Fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::size_t middle = std::min(bytes.find('\n'), bytes.size());
  const std::string pattern(bytes.substr(0, middle));
  const std::wstring value = TextOf(bytes.substr(std::min(middle + 1, bytes.size())));
  bool matches = false;
  if (!Succeeds([&] { matches = TestRegEx(pattern, value); })) return 0;
  bool again = false;
  Succeeds([&] { again = TestRegEx(pattern, value); });
  Require(again == matches, "the same answer twice", value);

  // An empty group changes nothing, but keeps the expression from being a plain one.
  if (pattern.find_first_of("()?\\") == std::string::npos && pattern.find('*') != 0)
    Require(TestRegEx(pattern + "(?:)", value) == matches, "the same answer beside an empty group", value);

  // A value matches itself when all its characters that mean something are escaped.
  std::string itself;
  for (const wchar_t c : value) {
    if (c < 0x20 || c >= 0x7F) return 0;
    if (!std::isalnum(static_cast<int>(c))) itself += '\\';
    itself += static_cast<char>(c);
  }
  Require(TestRegEx(itself, value), "a value matches itself", value);
  return 0;
}

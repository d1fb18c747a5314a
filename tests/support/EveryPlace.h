#ifndef RKXMLLIB16_TESTS_SUPPORT_EVERYPLACE_H
#define RKXMLLIB16_TESTS_SUPPORT_EVERYPLACE_H

#include <string>

namespace RkXmlTest {

// Calls check(before, after) for letters that could stand around a character at each place of short and long texts.
template <class Check>
void AtEveryPlace(Check&& check) {
  std::wstring letters;
  for (std::size_t length = 0; length < 140; letters += static_cast<wchar_t>(L'a' + length++ % 26))
    for (std::size_t place = 0; place <= length && (length < 40 || length > 125); ++place)
      check(letters.substr(0, place), letters.substr(place));
}

}  // namespace RkXmlTest

#endif

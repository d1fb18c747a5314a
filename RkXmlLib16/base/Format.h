#ifndef RKXMLLIB16_BASE_FORMAT_H
#define RKXMLLIB16_BASE_FORMAT_H

#include <cstdarg>
#include <string>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// printf-style wide formatting into a wide string of any length. `%ls` takes a NUL-terminated wide text, `%c` prints
// any character as itself, the size prefix "I64" means 64 bits ("%I64d"), and `%n` prints an integer in decimal.
// Numbers never follow the host's locale. The format is always a literal of the program, never text of a document.
//
//   FormatString(L"Invalid Element [%ls] found.", name.c_str());
[[gnu::cold]] RKXML_EXPORT std::wstring FormatString(const wchar_t* format, ...);
RKXML_EXPORT std::wstring FormatV(const wchar_t* format, va_list args);

// The decimal value, left-padded with zeros to `digits` characters: PadZero(7, 3) is "007".
RKXML_EXPORT std::wstring PadZero(int value, unsigned char digits);

// The text without its trailing "0" characters, but never shorter than one character; empty for an empty text.
RKXML_EXPORT std::wstring TrimTrainingZeros(std::wstring text);

// The suffix of a time value for its fraction, each argument 0 to 999: empty, ".5", ".000001", ".123456789".
RKXML_EXPORT std::wstring ToFracString(unsigned short milliSeconds, unsigned short microSeconds,
                                       unsigned short nanoSeconds);

// Replaces every occurrence of `find` in `text`, from left to right, without looking again at what it put in.
// An empty `find` changes nothing.
RKXML_EXPORT void FindReplace(std::string& text, const std::string& find, const std::string& replace);
RKXML_EXPORT void FindReplace(std::wstring& text, const std::wstring& find, const std::wstring& replace);

// Upper-cases the ASCII letters of a narrow text in place and returns it.
RKXML_EXPORT char* strupr(char* text);

}  // namespace RkXmlLib16

#endif

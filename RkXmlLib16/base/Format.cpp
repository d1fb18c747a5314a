#include "RkXmlLib16/base/Format.h"

#include <locale.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

namespace RkXmlLib16 {

namespace {

const locale_t kCLocale = newlocale(LC_ALL_MASK, "C", locale_t{});  // takes no memory

// Numbers print as in the C locale in this thread while it lives, whatever the host program set.
class ScopedCLocale {
 public:
  ScopedCLocale() : m_previous(uselocale(kCLocale)) {}
  ScopedCLocale(const ScopedCLocale&) = delete;
  ScopedCLocale& operator=(const ScopedCLocale&) = delete;
  ~ScopedCLocale() { uselocale(m_previous); }

 private:
  locale_t m_previous;
};

// The format as the runtime understands it: "I64" becomes "ll", %c becomes %lc, which takes the character as it is
// where %c would send it through the locale, and %n becomes %d, so that nothing ever writes through an argument.
std::wstring NativeFormat(std::wstring_view format) {
  std::wstring native;
  native.reserve(format.size() + 8);
  while (!format.empty()) {
    const std::size_t percent = std::min(format.find(L'%'), format.size());
    native.append(format.substr(0, percent));
    format.remove_prefix(percent);
    if (format.empty()) break;
    const std::size_t flags = std::min(format.find_first_not_of(L"#0- +'.*123456789", 1), format.size());
    native.append(format.substr(0, flags));
    format.remove_prefix(flags);
    if (format.substr(0, 3) == L"I64") {
      native += L"ll";
      format.remove_prefix(3);
    } else if (format.substr(0, 1) == L"c") {
      native += L'l';
    } else {
      const std::size_t size = std::min(format.find_first_not_of(L"hlqjztL"), format.size());
      native.append(format.substr(0, size));
      format.remove_prefix(size);
    }
    if (format.empty()) break;
    // The conversion itself, or the second character of "%%".
    native += format.front() == L'n' ? L'd' : format.front();
    format.remove_prefix(1);
  }
  return native;
}

std::wstring& AppendDecimal(std::wstring& text, int value, std::size_t digits) {
  char buffer[16];
  const char* const end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  const char* begin = buffer;
  if (value < 0) text += static_cast<wchar_t>(*begin++);
  const std::size_t printed = static_cast<std::size_t>(end - buffer);
  if (printed < digits) text.append(digits - printed, L'0');
  return text.append(begin, end);
}

template <class String>
void ReplaceAll(String& text, const String& find, const String& replace) {
  if (find.empty()) return;
  std::size_t at = text.find(find);
  if (at == String::npos) return;
  String result;
  std::size_t copied = 0;
  for (; at != String::npos; at = text.find(find, copied)) {
    result.append(text, copied, at - copied).append(replace);
    copied = at + find.size();
  }
  result.append(text, copied, String::npos);
  text = std::move(result);
}

}  // namespace

std::wstring FormatString(const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  struct End {
    va_list& list;
    ~End() { va_end(list); }
  } const end{args};
  return FormatV(format, args);
}

std::wstring FormatV(const wchar_t* format, va_list args) {
  if (format == nullptr) return std::wstring();
  const std::wstring native = NativeFormat(format);
  wchar_t* text = nullptr;
  std::size_t length = 0;
  FILE* const stream = open_wmemstream(&text, &length);
  if (stream == nullptr) throw std::bad_alloc();
  bool complete;
  {
    const ScopedCLocale numbers;
    complete = std::vfwprintf(stream, native.c_str(), args) >= 0 || errno != ENOMEM;
  }
  complete = std::fclose(stream) == 0 && complete;
  const std::unique_ptr<wchar_t, decltype(&std::free)> owned(text, &std::free);
  if (!complete || text == nullptr) throw std::bad_alloc();
  return std::wstring(text, length);
}

std::wstring PadZero(int value, unsigned char digits) {
  std::wstring text;
  return AppendDecimal(text, value, digits);
}

std::wstring TrimTrainingZeros(std::wstring text) {
  const std::size_t last = text.find_last_not_of(L'0');
  if (!text.empty()) text.resize(last == std::wstring::npos ? 1 : last + 1);
  return text;
}

std::wstring ToFracString(unsigned short milliSeconds, unsigned short microSeconds, unsigned short nanoSeconds) {
  if (milliSeconds == 0 && microSeconds == 0 && nanoSeconds == 0) return std::wstring();
  std::wstring text(1, L'.');
  AppendDecimal(text, milliSeconds, 3);
  if (microSeconds != 0 || nanoSeconds != 0) AppendDecimal(text, microSeconds, 3);
  if (nanoSeconds != 0) AppendDecimal(text, nanoSeconds, 3);
  return TrimTrainingZeros(std::move(text));
}

void FindReplace(std::string& text, const std::string& find, const std::string& replace) {
  ReplaceAll(text, find, replace);
}

void FindReplace(std::wstring& text, const std::wstring& find, const std::wstring& replace) {
  ReplaceAll(text, find, replace);
}

char* strupr(char* text) {
  if (text == nullptr) return nullptr;
  for (char* c = text; *c != '\0'; ++c)
    if (*c >= 'a' && *c <= 'z') *c = static_cast<char>(*c - 'a' + 'A');
  return text;
}

}  // namespace RkXmlLib16

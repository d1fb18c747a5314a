#include "schema/emit/internal/Names.h"

#include <algorithm>

#include "RkXmlLib16/io/Encoder.h"

namespace RkXmlSchema {

namespace {

bool IsLetter(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z'); }
bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

char ToUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::string ToHex(wchar_t c, int digits) {
  std::string text;
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
    text += "0123456789abcdef"[(static_cast<unsigned long>(c) >> shift) & 15];
  return text;
}

const std::unordered_set<std::string>& Keywords() {
  static const std::unordered_set<std::string> words = {
      "alignas", "alignof", "and", "and_eq", "asm", "auto", "bitand", "bitor", "bool", "break", "case", "catch", "char",
      "char8_t", "char16_t", "char32_t", "class", "compl", "concept", "const", "consteval", "constexpr", "constinit",
      "const_cast", "continue", "co_await", "co_return", "co_yield", "decltype", "default", "delete", "do", "double",
      "dynamic_cast", "else", "enum", "explicit", "export", "extern", "false", "float", "for", "friend", "goto", "if",
      "inline", "int", "long", "mutable", "namespace", "new", "noexcept", "not", "not_eq", "nullptr", "operator", "or",
      "or_eq", "private", "protected", "public", "register", "reinterpret_cast", "requires", "return", "short",
      "signed", "sizeof", "static", "static_assert", "static_cast", "struct", "switch", "template", "this",
      "thread_local", "throw", "true", "try", "typedef", "typeid", "typename", "union", "unsigned", "using", "virtual",
      "void", "volatile", "wchar_t", "while", "xor", "xor_eq",
      // macros of the C library and of compilers
      "assert", "BUFSIZ", "CHAR_BIT", "CHAR_MAX", "CHAR_MIN", "DOMAIN", "EDOM", "EILSEQ", "EOF", "ERANGE", "errno",
      "EXIT_FAILURE", "EXIT_SUCCESS", "FILENAME_MAX", "HUGE_VAL", "I", "INFINITY", "INT_MAX", "INT_MIN", "linux",
      "LONG_MAX", "LONG_MIN", "major", "makedev", "minor", "NAN", "NDEBUG", "NULL", "offsetof", "OVERFLOW", "PLOSS",
      "RAND_MAX", "SEEK_CUR", "SEEK_END", "SEEK_SET", "setjmp", "SHRT_MAX", "SHRT_MIN", "SIGABRT", "SIGFPE", "SIGILL",
      "SIGINT", "signal", "SIGSEGV", "SIGTERM", "SING", "stderr", "stdin", "stdout", "TLOSS", "TMP_MAX", "UCHAR_MAX",
      "UINT_MAX", "ULONG_MAX", "UNDERFLOW", "unix", "USHRT_MAX", "va_arg", "va_end", "va_start", "WCHAR_MAX",
      "WCHAR_MIN", "WEOF"};
  return words;
}

std::string Escape(std::string name) {
  if (name.empty()) return "empty";
  if (IsDigit(static_cast<wchar_t>(name[0]))) name.insert(0, "v");
  return Keywords().count(name) != 0 ? name + '_' : name;
}

// Names with "__", or with "_" and a capital in front, belong to the compiler.
std::string DropReserved(const std::string& name) {
  std::string result;
  for (const char c : name)
    if (c != '_' || (!result.empty() && result.back() != '_')) result += c;
  return result;
}

}  // namespace

std::string ToIdentifier(std::wstring_view name) {
  std::string result;
  bool isBreak = false;
  for (const wchar_t c : name) {
    if (IsLetter(c) || IsDigit(c) || c == L'_') {
      // Digits that were apart stay apart: 1.0 is 1_0.
      if (isBreak && !result.empty() && IsDigit(c) && IsDigit(static_cast<wchar_t>(result.back()))) result += '_';
      result += isBreak && !result.empty() ? ToUpper(static_cast<char>(c)) : static_cast<char>(c);
      isBreak = false;
    } else if (c < 0x80) {
      isBreak = true;
    } else {
      result += "u" + ToHex(c, c > 0xFFFF ? 6 : 4);
    }
  }
  return DropReserved(result);
}

std::string ToPascal(std::wstring_view name) {
  std::string result = ToIdentifier(name);
  if (!result.empty()) result[0] = ToUpper(result[0]);
  return result;
}

std::string ToEnumerator(std::wstring_view text) {
  std::string result = ToIdentifier(text);
  if (result.empty() && !text.empty())
    for (const wchar_t c : text) result += "u" + ToHex(c, c > 0xFFFF ? 6 : 4);
  return Escape(result);
}

std::string ToNamespace(std::wstring_view uri) {
  // The words between '/', ':' and '#'; versions stay behind the word that they belong to.
  std::vector<std::wstring> words(1);
  for (const wchar_t c : uri) {
    if (c == L'/' || c == L':' || c == L'#') {
      if (!words.back().empty()) words.emplace_back();
    } else {
      words.back() += c == L'.' || c == L'-' ? L'_' : c;
    }
  }
  if (words.back().empty() && words.size() > 1) words.pop_back();
  std::size_t first = words.size() - 1;
  while (first > 0 && !IsLetter(words[first].empty() ? L'0' : words[first][0])) --first;
  std::wstring joined;
  for (std::size_t i = first; i < words.size(); ++i) joined += (joined.empty() ? L"" : L"_") + words[i];
  std::string result = ToIdentifier(joined);
  while (!result.empty() && result.back() == '_') result.pop_back();
  return result.empty() ? "Schema" : Escape(result);
}

std::string ToLiteral(std::wstring_view text) {
  std::string result = "L\"";
  for (const wchar_t c : text) {
    if (c == L'"' || c == L'\\') {
      result += '\\';
      result += static_cast<char>(c);
    } else if (c == L'\n') {
      result += "\\n";
    } else if (c == L'\t') {
      result += "\\t";
    } else if (c == L'?' && !result.empty() && result.back() == '?') {
      result += "\\?";  // no trigraph
    } else if (c < 0x20 || (c >= 0x7F && c < 0xA0)) {
      for (int shift = 6; shift >= 0; shift -= 3) {
        if (shift == 6) result += '\\';
        result += static_cast<char>('0' + ((c >> shift) & 7));
      }
    } else if (c < 0x7F) {
      result += static_cast<char>(c);
    } else if (c <= 0xFFFF) {
      result += "\\u" + ToHex(c, 4);
    } else {
      result += "\\U" + ToHex(c, 8);
    }
  }
  return result + '"';
}

std::vector<std::string> ToComment(std::wstring_view text, std::size_t indent, std::size_t most) {
  constexpr std::size_t kWidth = 116;
  std::vector<std::string> lines;
  std::wstring line;
  const auto flush = [&] {
    if (line.empty()) return;
    while (!line.empty() && (line.back() == L'\\' || line.back() == L'/')) line.pop_back();
    lines.push_back(std::string(indent, ' ') + "// " + RkXmlLib16::ToUtf8(line));
    line.clear();
  };
  std::size_t at = 0;
  while (at < text.size() && lines.size() < most) {
    std::size_t end = at;
    while (end < text.size() && text[end] > 0x20) ++end;
    const std::wstring_view word = text.substr(at, std::min<std::size_t>(end - at, 200));
    if (!word.empty()) {
      if (!line.empty() && line.size() + 1 + word.size() + indent > kWidth) flush();
      if (!line.empty()) line += L' ';
      for (const wchar_t c : word) {
        if (c == L'?' && !line.empty() && line.back() == L'?') line += L' ';
        if (c < 0x7F || c >= 0xA0) line += c;
      }
    }
    at = end + 1;
  }
  if (lines.size() < most) {
    flush();
  } else {
    lines.back() += " ...";
  }
  return lines;
}

std::string CScope::Add(const std::string& name) {
  std::string free = name;
  for (int number = 2; !m_taken.insert(free).second; ++number) free = name + std::to_string(number);
  return free;
}

const std::unordered_set<std::string>& LibraryNames() {
  static const std::unordered_set<std::string> names = {"CAttributeCol",
                                                        "CAttributeInfo",
                                                        "CBigInteger",
                                                        "CBinaryData",
                                                        "CClassfactoryBase",
                                                        "CDateTime",
                                                        "CDateTimeSpan",
                                                        "CDecimal",
                                                        "CElement",
                                                        "CElementCol",
                                                        "CElementInfo",
                                                        "CEncoder",
                                                        "CFile",
                                                        "CFileName",
                                                        "CJsonContext",
                                                        "CModelClass",
                                                        "CModelCollection",
                                                        "CModelCollectionBase",
                                                        "CModelObject",
                                                        "CParentElementInfo",
                                                        "CPrimitiveRestrictions",
                                                        "CPropertySet",
                                                        "CRareValue",
                                                        "CReadLimits",
                                                        "CRegEx",
                                                        "CRkException",
                                                        "CSerializationContext",
                                                        "CSharedName",
                                                        "CSimpleType",
                                                        "CSmartPtr",
                                                        "CStringBuffer",
                                                        "CTextStream",
                                                        "CValueCollection",
                                                        "CVocabulary",
                                                        "CWhitespaceUtils",
                                                        "CXmlAttribute",
                                                        "CXmlCollection",
                                                        "CXmlCollectionBase",
                                                        "CXmlDocument",
                                                        "CXmlElement",
                                                        "CXmlGeneratedClass",
                                                        "CXmlName",
                                                        "CXmlObjectBase",
                                                        "CXmlObjectCollection",
                                                        "CXmlObjectHelper",
                                                        "CXmlText",
                                                        "CXmlTypeCollection",
                                                        "CXmlWriter",
                                                        "ChexBinaryCol",
                                                        "Cbase64BinaryCol",
                                                        "Ci1Col",
                                                        "Ci2Col",
                                                        "Ci4Col",
                                                        "Ci8Col",
                                                        "Cui1Col",
                                                        "Cui2Col",
                                                        "Cui4Col",
                                                        "Cui8Col",
                                                        "Cr4Col",
                                                        "Cr8Col",
                                                        "CdurationCol",
                                                        "CyearMonthCol",
                                                        "CmonthDayCol",
                                                        "CyearCol",
                                                        "CmonthCol",
                                                        "CdayCol",
                                                        "CdateCol",
                                                        "CtimeCol",
                                                        "CdatetimeCol",
                                                        "CstringCol",
                                                        "CbooleanCol",
                                                        "CdecimalCol",
                                                        "CintegerCol",
                                                        "EOLType",
                                                        "NewFor",
                                                        "kNs",
                                                        "kSchema",
                                                        "ReadDocument",
                                                        "ReadFile",
                                                        "ToText"};
  return names;
}

const std::unordered_set<std::string>& LibraryProperties() {
  static const std::unordered_set<std::string> names = {"",
                                                        "Base",
                                                        "ClassAttributeInfo",
                                                        "ClassElementInfo",
                                                        "ClassElementInfoCount",
                                                        "ClassInfo",
                                                        "Declaration",
                                                        "ElementName",
                                                        "ElementNameRef",
                                                        "Model",
                                                        "Namespace",
                                                        "Nil",
                                                        "NilFlag",
                                                        "RefCount",
                                                        "Selected",
                                                        "TargetNamespace"};
  return names;
}

}  // namespace RkXmlSchema

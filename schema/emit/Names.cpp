#include "schema/emit/internal/Names.h"

#include <algorithm>
#include <cctype>

#include "RkXmlLib16/io/Encoder.h"
#include "schema/emit/Emitter.h"

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

bool IsHighSurrogate(wchar_t c) { return c >= 0xD800 && c < 0xDC00; }
bool IsLowSurrogate(wchar_t c) { return c >= 0xDC00 && c < 0xE000; }

// "u" and the number of the character, four digits at least.
std::string ToCode(wchar_t c) { return "u" + ToHex(c, c > 0xFFFF ? 6 : 4); }

// Wide text may hold characters beyond U+FFFF as pairs of surrogates, literals of this length do not.
std::wstring JoinPairs(std::wstring_view text) {
  std::wstring joined(text);
  joined.resize(RkXmlLib16::JoinSurrogatePairs(joined.data(), joined.size()));
  return joined;
}

// Marks of the writing direction, of which compilers warn.
bool IsDirection(wchar_t c) { return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069); }

std::string Escape(std::string name) {
  if (name.empty()) return "empty";
  if (IsDigit(static_cast<wchar_t>(name[0]))) name.insert(0, "v");
  return Keywords().count(name) != 0 || IsMacro(name) ? name + '_' : name;
}

std::string EscapeNamespace(const std::string& name) {
  if (name.empty()) return "Schema";
  const std::string escaped = Escape(name);
  return GlobalNames().count(escaped) != 0 ? escaped + '_' : escaped;
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
  for (const wchar_t c : JoinPairs(name)) {
    if (IsLetter(c) || IsDigit(c) || c == L'_') {
      // Digits that were apart stay apart: 1.0 is 1_0.
      if (isBreak && !result.empty() && IsDigit(c) && IsDigit(static_cast<wchar_t>(result.back()))) result += '_';
      result += isBreak && !result.empty() ? ToUpper(static_cast<char>(c)) : static_cast<char>(c);
      isBreak = false;
    } else if (c < 0x80) {
      isBreak = true;
    } else {
      result += ToCode(c);
    }
  }
  return DropReserved(result);
}

std::string ToPascal(std::wstring_view name) {
  std::string result = ToIdentifier(name);
  if (result.empty()) return "Unnamed";
  result[0] = ToUpper(result[0]);
  return result;
}

std::string ToEnumerator(std::wstring_view text) {
  std::string result = ToIdentifier(text);
  if (result.empty())
    for (const wchar_t c : text) result += ToCode(c);
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
  return EscapeNamespace(result);
}

std::string ToNamespaceOfFile(std::wstring_view stem) { return EscapeNamespace(ToPascal(stem)); }

bool IsNamespaceName(std::string_view name) {
  while (true) {
    const std::size_t end = std::min(name.find("::"), name.size());
    const std::string part(name.substr(0, end));
    const bool isIdentifier =
        !part.empty() && !IsDigit(static_cast<wchar_t>(part[0])) && std::all_of(part.begin(), part.end(), [](char c) {
          return IsLetter(static_cast<wchar_t>(c)) || IsDigit(static_cast<wchar_t>(c)) || c == '_';
        });
    if (!isIdentifier || EscapeNamespace(part) != part || DropReserved(part) != part) return false;
    if (end == name.size()) return true;
    name.remove_prefix(end + 2);
  }
}

std::string ToLiteral(std::wstring_view text) {
  std::string result = "L\"";
  bool isAfterHex = false;  // which takes all digits that follow it
  for (const wchar_t c : text) {
    if (isAfterHex && c < 0x80 && std::isxdigit(static_cast<unsigned char>(c)) != 0) result += "\" L\"";
    isAfterHex = IsHighSurrogate(c) || IsLowSurrogate(c);
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
    } else if (isAfterHex) {
      result += "\\x" + ToHex(c, 4);
    } else if (c <= 0xFFFF) {
      result += "\\u" + ToHex(c, 4);
    } else {
      result += "\\U" + ToHex(c, 8);
    }
  }
  return result + '"';
}

std::vector<std::string> ToComment(std::wstring_view given, std::size_t indent, std::size_t most) {
  const std::wstring text = JoinPairs(given);
  constexpr std::size_t kWidth = 116;
  std::vector<std::string> lines;
  std::wstring line;
  const auto flush = [&] {
    if (line.empty()) return;
    while (!line.empty() && line.back() == L'\\') line.pop_back();
    lines.push_back(std::string(indent, ' ') + "// " + RkXmlLib16::ToUtf8(line));
    line.clear();
  };
  std::size_t at = 0;
  while (at < text.size() && lines.size() < most) {
    std::size_t end = at;
    while (end < text.size() && text[end] > 0x20) ++end;
    const std::wstring_view word = std::wstring_view(text).substr(at, std::min<std::size_t>(end - at, 200));
    if (!word.empty()) {
      if (!line.empty() && line.size() + 1 + word.size() + indent > kWidth) flush();
      if (!line.empty()) line += L' ';
      for (const wchar_t c : word) {
        if (c == L'?' && !line.empty() && line.back() == L'?') line += L' ';
        if ((c < 0x7F || c >= 0xA0) && !IsDirection(c)) line += c;
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

std::string CScope::Add(const std::string& name, std::initializer_list<NameForm> forms) {
  const auto isFree = [&](const std::string& wanted) {
    return std::none_of(forms.begin(), forms.end(),
                        [&](const NameForm& form) { return m_taken.count(form.before + wanted + form.behind) != 0; });
  };
  std::string free = name;
  for (int& number = m_numbers[name]; !isFree(free);) free = name + std::to_string(number = std::max(number, 1) + 1);
  for (const NameForm& form : forms) m_taken.insert(form.before + free + form.behind);
  return free;
}

}  // namespace RkXmlSchema

#include "RkXmlLib16/facets/internal/PlainPattern.h"

#include <algorithm>

#include "RkXmlLib16/base/internal/Ascii.h"

namespace RkXmlLib16 {

namespace {

constexpr std::size_t kMostCount = 1000;  // well below what the engine refuses
constexpr std::size_t kMostItems = 100;
constexpr std::uint32_t kAsciiEnd = 128;
// Characters that mean themselves, inside brackets and outside.
constexpr std::string_view kLiterals = " _/:,;@#%&=<>~!'\"";

using Ascii::IsDigit;

bool IsWord(char c) { return IsDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool IsLiteral(char c) { return IsWord(c) || kLiterals.find(c) != std::string_view::npos; }

bool Take(std::string_view& rest, std::string_view what) {
  if (rest.substr(0, what.size()) != what) return false;
  rest.remove_prefix(what.size());
  return true;
}

bool TakeNumber(std::string_view& rest, std::size_t& number) {
  if (rest.empty() || !IsDigit(rest.front())) return false;
  number = 0;
  for (; !rest.empty() && IsDigit(rest.front()); rest.remove_prefix(1)) {
    number = number * 10 + static_cast<std::size_t>(rest.front() - '0');
    if (number > kMostCount) return false;
  }
  return true;
}

template <class Set>
void AddRange(Set& set, char first, char last) {
  for (auto c = static_cast<std::size_t>(first); c <= static_cast<std::size_t>(last); ++c) set.set(c);
}

}  // namespace

CPlainPattern::CPlainPattern(std::string_view expression) {
  if (!Parse(expression)) m_items.clear();
}

bool CPlainPattern::Parse(std::string_view rest) {
  while (!rest.empty()) {
    Item item{{}, 1, 1};
    const bool mayFollow = m_items.empty() || m_items.back().least == m_items.back().most;
    if (!mayFollow || m_items.size() == kMostItems || !ParseSet(rest, item.set) || !ParseCount(rest, item))
      return false;
    m_items.push_back(item);
  }
  return true;
}

bool CPlainPattern::ParseSet(std::string_view& rest, Set& set) {
  if (Take(rest, "[")) return ParseBrackets(rest, set);
  if (TakeDigits(rest, set)) return true;
  const char c = rest.front();
  if (!IsLiteral(c) && c != '-') return false;
  set.set(static_cast<std::size_t>(c));
  rest.remove_prefix(1);
  return true;
}

bool CPlainPattern::TakeDigits(std::string_view& rest, Set& set) {
  const bool hasOthers = Take(rest, "\\p{Nd}");
  if (!hasOthers && !Take(rest, "\\d")) return false;
  AddRange(set, '0', '9');
  m_isWhole = m_isWhole && !hasOthers;
  return true;
}

bool CPlainPattern::ParseBrackets(std::string_view& rest, Set& set) {
  if (rest.substr(0, 1) == ":" || rest.substr(0, 1) == "=") return false;  // may be taken for the name of a class
  while (!Take(rest, "]")) {
    if (rest.empty()) return false;
    if (TakeDigits(rest, set)) {
      if (rest.substr(0, 1) == "-") return false;
      continue;
    }
    const char first = rest.front();
    if (!IsLiteral(first)) return false;
    rest.remove_prefix(1);
    char last = first;
    if (Take(rest, "-")) {
      if (rest.empty() || !IsWord(first) || !IsWord(rest.front()) || rest.front() < first) return false;
      last = rest.front();
      rest.remove_prefix(1);
      if (rest.substr(0, 1) == "-") return false;
    }
    AddRange(set, first, last);
  }
  return set.any();
}

bool CPlainPattern::ParseCount(std::string_view& rest, Item& item) {
  if (Take(rest, "{")) {
    if (!TakeNumber(rest, item.least)) return false;
    item.most = item.least;
    if (Take(rest, ",") && (!TakeNumber(rest, item.most) || item.most < item.least)) return false;
    if (!Take(rest, "}")) return false;
  } else if (Take(rest, "?")) {
    item.least = 0;
  } else if (Take(rest, "*")) {
    item.least = 0;
    item.most = SIZE_MAX;
  } else if (Take(rest, "+")) {
    item.most = SIZE_MAX;
  }
  return rest.empty() || std::string_view("?*+{").find(rest.front()) == std::string_view::npos;
}

bool CPlainPattern::Decides(std::wstring_view value) const noexcept {
  if (IsEmpty() || m_isWhole) return !IsEmpty();
  return std::all_of(value.begin(), value.end(), [](wchar_t c) { return static_cast<std::uint32_t>(c) < kAsciiEnd; });
}

bool CPlainPattern::Matches(std::wstring_view value) const noexcept {
  if (IsEmpty()) return false;
  for (const Item& item : m_items) {
    const std::size_t count = std::min(value.size(), item.most);
    if (count < item.least) return false;
    for (std::size_t i = 0; i < count; ++i) {
      const auto c = static_cast<std::uint32_t>(value[i]);
      if (c >= item.set.size() || !item.set[c]) return false;
    }
    value.remove_prefix(count);
  }
  return value.empty();
}

}  // namespace RkXmlLib16

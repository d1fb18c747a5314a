#ifndef RKXMLLIB16_FACETS_INTERNAL_PLAINPATTERN_H
#define RKXMLLIB16_FACETS_INTERNAL_PLAINPATTERN_H

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace RkXmlLib16 {

// A regular expression of the most common form, such as "[A-Z]{2}-\d{1,8}": sets of ASCII characters, each with a
// count, of which only the last may vary. Whether a value matches is decided character by character, without an engine;
// with "\p{Nd}", which has digits beyond ASCII, only for values of ASCII characters.
class CPlainPattern {
 public:
  // Empty when the expression has any other form.
  explicit CPlainPattern(std::string_view expression);

  bool IsEmpty() const noexcept { return m_items.empty(); }
  // Whether it decides on every value.
  bool IsWhole() const noexcept { return m_isWhole; }
  // Whether a value that does not match here does not match at all.
  bool Decides(std::wstring_view value) const noexcept;
  // Whether the whole value matches.
  bool Matches(std::wstring_view value) const noexcept;

 private:
  using Set = std::bitset<128>;
  struct Item {
    Set set;
    std::size_t least;
    std::size_t most;
  };

  bool Parse(std::string_view rest);
  // Each takes what it reads from the front of the rest; false for what it does not know.
  bool ParseSet(std::string_view& rest, Set& set);
  bool ParseBrackets(std::string_view& rest, Set& set);
  bool TakeDigits(std::string_view& rest, Set& set);
  static bool ParseCount(std::string_view& rest, Item& item);

  std::vector<Item> m_items;
  bool m_isWhole = true;
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_DOCUMENT_TEXT_H
#define RKXMLLIB16_DOCUMENT_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace RkXmlLib16 {

// NUL-terminated text that a document owns, handed out without a copy. Valid as long as the node it came from. It reads
// like a std::wstring: what std::wstring_view offers (find, compare, at, iterators, comparisons, << to a wide stream,
// with the standard's errors), `+` on either side, and a conversion to std::wstring where one is asked for. To change
// it, copy it.
//
//   std::wstring name = element->GetLocalName();   // a copy
//   if (element->GetLocalName() == L"item") ...     // none
//   std::wstring path = L"/" + element->GetLocalName();
class CXmlText : public std::wstring_view {
  template <class T>
  using IfText = std::enable_if_t<std::is_convertible_v<const T&, std::wstring_view>>;

 public:
  constexpr CXmlText() noexcept : CXmlText(L"", 0) {}
  // `text` is NUL-terminated, and not null.
  constexpr CXmlText(const wchar_t* text) noexcept : std::wstring_view(text) {}
  // `text` is NUL-terminated at `length`.
  constexpr CXmlText(const wchar_t* text, std::size_t length) noexcept : std::wstring_view(text, length) {}

  constexpr const wchar_t* c_str() const noexcept { return data(); }
  // A copy, as std::wstring makes one. Throws std::out_of_range when `position` lies behind the end.
  std::wstring substr(std::size_t position = 0, std::size_t count = npos) const {
    return std::wstring(std::wstring_view::substr(position, count));
  }
  constexpr std::wstring_view View() const noexcept { return *this; }
  std::wstring ToString() const { return std::wstring(data(), size()); }
  operator std::wstring() const { return ToString(); }

  template <class T, class = IfText<T>>
  friend std::wstring operator+(const CXmlText& a, const T& b) {
    return Join(a, b);
  }
  template <class T, class = IfText<T>, class = std::enable_if_t<!std::is_same_v<T, CXmlText>>>
  friend std::wstring operator+(const T& a, const CXmlText& b) {
    return Join(a, b);
  }
  friend std::wstring operator+(std::wstring&& a, const CXmlText& b) { return std::move(a.append(b)); }
  friend std::wstring operator+(const CXmlText& a, wchar_t b) { return Join(a, {&b, 1}); }
  friend std::wstring operator+(wchar_t a, const CXmlText& b) { return Join({&a, 1}, b); }

  template <class T>
  void operator+=(const T&) {
    static_assert(sizeof(T) == 0, "a document's text is read-only: copy it into a std::wstring and append to that");
  }
  void remove_prefix(std::size_t) = delete;
  void remove_suffix(std::size_t) = delete;

 private:
  static std::wstring Join(std::wstring_view a, std::wstring_view b) {
    std::wstring joined;
    joined.reserve(a.size() + b.size());
    return joined.append(a).append(b);
  }
};

}  // namespace RkXmlLib16

#endif

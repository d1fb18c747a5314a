#ifndef RKXMLLIB16_DOCUMENT_TEXT_H
#define RKXMLLIB16_DOCUMENT_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace RkXmlLib16 {

// NUL-terminated text that a document owns, handed out without a copy. Valid as long as the node it came from; converts
// to std::wstring where one is asked for.
//
//   std::wstring name = element->GetLocalName();   // a copy
//   if (element->GetLocalName() == L"item") ...     // none
class CXmlText {
 public:
  constexpr CXmlText() noexcept = default;
  // `text` is NUL-terminated at `length`.
  constexpr CXmlText(const wchar_t* text, std::size_t length) noexcept : m_text(text), m_length(length) {}

  constexpr const wchar_t* c_str() const noexcept { return m_text; }
  constexpr const wchar_t* data() const noexcept { return m_text; }
  constexpr std::size_t length() const noexcept { return m_length; }
  constexpr std::size_t size() const noexcept { return m_length; }
  constexpr bool empty() const noexcept { return m_length == 0; }
  constexpr wchar_t operator[](std::size_t index) const noexcept { return m_text[index]; }
  constexpr std::wstring_view View() const noexcept { return {m_text, m_length}; }
  std::wstring ToString() const { return std::wstring(m_text, m_length); }

  operator std::wstring() const { return ToString(); }
  constexpr operator std::wstring_view() const noexcept { return View(); }

  friend bool operator==(const CXmlText& a, const CXmlText& b) noexcept { return a.View() == b.View(); }
  friend bool operator==(const CXmlText& a, std::wstring_view b) noexcept { return a.View() == b; }
  friend bool operator==(std::wstring_view a, const CXmlText& b) noexcept { return a == b.View(); }
  friend bool operator==(const CXmlText& a, const std::wstring& b) noexcept { return a.View() == b; }
  friend bool operator==(const std::wstring& a, const CXmlText& b) noexcept { return a == b.View(); }
  friend bool operator==(const CXmlText& a, const wchar_t* b) noexcept { return a.View() == b; }
  friend bool operator==(const wchar_t* a, const CXmlText& b) noexcept { return a == b.View(); }
  template <class T>
  friend bool operator!=(const CXmlText& a, const T& b) noexcept {
    return !(a == b);
  }

 private:
  const wchar_t* m_text = L"";
  std::size_t m_length = 0;
};

}  // namespace RkXmlLib16

#endif

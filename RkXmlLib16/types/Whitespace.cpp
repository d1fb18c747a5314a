#include "RkXmlLib16/types/Whitespace.h"

#include <algorithm>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/Ascii.h"

namespace RkXmlLib16 {

namespace {

std::wstring_view ReplaceView(std::wstring_view text, std::wstring& scratch) {
  if (!Ascii::MayHaveControl(text.data(), text.size())) return text;
  const auto changes = [](wchar_t c) { return c != L' ' && CWhitespaceUtils::IsWhiteSpace(c); };
  if (std::none_of(text.begin(), text.end(), changes)) return text;
  scratch.resize(text.size());
  std::replace_copy_if(text.begin(), text.end(), scratch.begin(), changes, L' ');
  return scratch;
}

std::wstring_view CollapseView(std::wstring_view text, std::wstring& scratch) {
  if (!Ascii::MayHaveSpace(text.data(), text.size())) return text;  // as most texts have none
  while (!text.empty() && CWhitespaceUtils::IsWhiteSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && CWhitespaceUtils::IsWhiteSpace(text.back())) text.remove_suffix(1);
  if (!Ascii::MayHaveSpaceRun(text.data(), text.size())) return text;
  // The ends are black now, so text[i + 1] exists after white space.
  const std::size_t size = text.size();
  std::size_t i = 0;
  while (i < size &&
         !(CWhitespaceUtils::IsWhiteSpace(text[i]) && (text[i] != L' ' || CWhitespaceUtils::IsWhiteSpace(text[i + 1]))))
    ++i;
  if (i == size) return text;
  scratch.assign(text, 0, i);
  for (; i < size; ++i) {
    if (!CWhitespaceUtils::IsWhiteSpace(text[i]))
      scratch += text[i];
    else if (!CWhitespaceUtils::IsWhiteSpace(text[i + 1]))
      scratch += L' ';
  }
  return scratch;
}

}  // namespace

std::wstring CWhitespaceUtils::Preserve(const std::wstring& text) { return text; }

std::wstring CWhitespaceUtils::Replace(const std::wstring& text) { return ApplyRule(replace, text); }

std::wstring CWhitespaceUtils::Collapse(const std::wstring& text) { return ApplyRule(collapse, text); }

std::wstring CWhitespaceUtils::ApplyRule(WhitespaceRule rule, const std::wstring& text) {
  std::wstring scratch;
  return std::wstring(ApplyRule(rule, std::wstring_view(text), scratch));
}

std::wstring_view CWhitespaceUtils::ApplyRule(WhitespaceRule rule, std::wstring_view text, std::wstring& scratch) {
  switch (rule) {
    case none:
    case preserve:
      return text;
    case replace:
      return ReplaceView(text, scratch);
    case collapse:
      return CollapseView(text, scratch);
  }
  throw CRkException(L"Unknown WhitespaceRule");
}

}  // namespace RkXmlLib16

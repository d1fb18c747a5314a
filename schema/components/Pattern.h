// Regular expressions of XML Schema: Datatypes, appendix F.
#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_PATTERN_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_PATTERN_H

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace RkXmlLib16 {
class CRegEx;
}

namespace RkXmlSchema {

struct PatternStep;

// Why a text is no regular expression, and where: `offset` counts characters from 0.
class CPatternError : public std::runtime_error {
 public:
  CPatternError(std::wstring text, std::size_t at);
  ~CPatternError() override;
  const std::wstring& GetText() const noexcept { return m_text; }
  std::size_t GetOffset() const noexcept { return m_offset; }

 private:
  std::wstring m_text;
  std::size_t m_offset;
};

// The expression in the dialect of the library's facet checks, with XSD's meaning: class subtraction, categories and
// blocks, \i, \c, \d, \w and the like are written out, and nothing is left that the library rewrites itself. Never
// empty. Throws CPatternError.
//
//   TranslatePattern(L"[a-z-[aeiou]]+");  // (?:(?![aeiou])[a-z])+
std::wstring TranslatePattern(std::wstring_view pattern);

// One translated expression that matches what one of the patterns matches.
std::wstring JoinAlternatives(const PatternStep& step);

// A translated pattern, compiled. Threads may share it.
class CPatternMatcher {
 public:
  // Throws CPatternError when the expression is larger than the matcher takes.
  explicit CPatternMatcher(const std::wstring& translated);
  CPatternMatcher(const CPatternMatcher&) = delete;
  CPatternMatcher& operator=(const CPatternMatcher&) = delete;
  ~CPatternMatcher();

  // Whether the whole value matches; false also where the match needs more than the limits of the library.
  bool Matches(const std::wstring& value) const;

 private:
  std::unique_ptr<const RkXmlLib16::CRegEx> m_expression;
};

}  // namespace RkXmlSchema

#endif

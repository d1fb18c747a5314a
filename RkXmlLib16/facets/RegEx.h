#ifndef RKXMLLIB16_FACETS_REGEX_H
#define RKXMLLIB16_FACETS_REGEX_H

#include <memory>
#include <string>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// An XSD regular expression, rewritten for PCRE2 by plain text replacement and compiled. Threads may share it.
class RKXML_EXPORT CRegEx {
 public:
  // Throws CRkException "Invalid Regular Expression: %ls Error: '%ls'" (`value`, which is about to be matched, and the
  // engine's text) when the expression does not compile.
  CRegEx(std::string utf8Pattern, const std::wstring& value);
  CRegEx(const CRegEx&) = delete;
  CRegEx& operator=(const CRegEx&) = delete;
  ~CRegEx();

  // Whether the whole value matches. Throws the same when the match would need more than the engine's limits allow.
  bool Matches(const std::wstring& value) const;

 private:
  struct Engine;
  std::unique_ptr<const Engine> m_engine;
};

// Compiles the expression (in UTF-8) and matches the value, once.
RKXML_EXPORT bool TestRegEx(std::string utf8Pattern, std::wstring value);

}  // namespace RkXmlLib16

#endif

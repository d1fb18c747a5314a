#include "schema/components/internal/XPathSubset.h"

#include <string>

#include "schema/components/internal/Xsd.h"

namespace RkXmlSchema {

namespace {

class CPathParser {
 public:
  CPathParser(std::wstring_view text, bool isField, const std::function<bool(std::wstring_view)>& isDeclared)
      : m_rest(text), m_isField(isField), m_isDeclared(isDeclared) {}

  bool Parse() {
    do {
      if (!Path()) return false;
    } while (Skip(L"|"));
    Blanks();
    return m_rest.empty();
  }

 private:
  void Blanks() {
    while (!m_rest.empty() && IsBlank(m_rest[0])) m_rest.remove_prefix(1);
  }

  bool Skip(std::wstring_view token) {
    Blanks();
    if (m_rest.substr(0, token.size()) != token) return false;
    m_rest.remove_prefix(token.size());
    return true;
  }

  bool Path() {
    if (Skip(L".//")) {
      // what follows is a step
    } else if (Skip(L"//") || Skip(L"/")) {
      return false;
    }
    for (;;) {
      bool isAttribute = false;
      if (!Step(isAttribute)) return false;
      if (isAttribute) {
        Blanks();
        return m_rest.empty() || m_rest[0] == L'|';
      }
      if (Skip(L"//")) return false;
      if (!Skip(L"/")) return true;
    }
  }

  bool Step(bool& isAttribute) {
    if (Skip(L"..")) return false;
    if (Skip(L".")) return true;
    if (Skip(L"@") || SkipAxis(L"attribute")) {
      if (!m_isField) return false;
      isAttribute = true;
    } else {
      SkipAxis(L"child");
    }
    return NameTest();
  }

  bool SkipAxis(std::wstring_view axis) {
    const std::wstring_view before = m_rest;
    if (Skip(axis) && Skip(L"::")) return true;
    m_rest = before;
    return false;
  }

  bool NameTest() {
    Blanks();
    if (Skip(L"*")) return true;
    const std::size_t end = m_rest.find_first_of(L" \t\r\n/|@*:");
    const std::wstring_view name = m_rest.substr(0, end);
    if (!IsNCName(name)) return false;
    m_rest.remove_prefix(name.size());
    if (m_rest.empty() || m_rest[0] != L':') return true;
    m_rest.remove_prefix(1);
    if (!m_isDeclared(name)) return false;
    if (!m_rest.empty() && m_rest[0] == L'*') {
      m_rest.remove_prefix(1);
      return true;
    }
    const std::wstring_view local = m_rest.substr(0, m_rest.find_first_of(L" \t\r\n/|@*:"));
    if (!IsNCName(local)) return false;
    m_rest.remove_prefix(local.size());
    return m_rest.empty() || m_rest[0] != L':';
  }

  std::wstring_view m_rest;
  bool m_isField;
  const std::function<bool(std::wstring_view)>& m_isDeclared;
};

}  // namespace

bool IsXPathSubset(std::wstring_view text, bool isField, const std::function<bool(std::wstring_view)>& isDeclared) {
  return CPathParser(text, isField, isDeclared).Parse();
}

}  // namespace RkXmlSchema

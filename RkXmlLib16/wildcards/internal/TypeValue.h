#ifndef RKXMLLIB16_WILDCARDS_INTERNAL_TYPEVALUE_H
#define RKXMLLIB16_WILDCARDS_INTERNAL_TYPEVALUE_H

#include <memory>
#include <string>
#include <string_view>

namespace RkXmlLib16 {

class CXmlWriter;

// The first character of a name without colons, seen generously.
inline bool StartsName(wchar_t c) {
  return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_' || static_cast<unsigned long>(c) >= 0xC0;
}

// The value of an xsi:type attribute, a name whose prefix, or lack of one, stands for a namespace.
class CTypeValue {
 public:
  static bool IsType(std::wstring_view localName, std::wstring_view namespaceUri);

  explicit CTypeValue(std::wstring_view value);  // kept
  bool HasPrefix() const { return m_hasPrefix; }
  // Other values are no matter of namespaces.
  bool IsName() const;
  std::wstring_view GetPrefix() const { return m_prefix; }
  // Writes it with another prefix where this one, or none, would not mean the namespace here; false, and nothing
  // written, where it would.
  bool WriteIfChanged(CXmlWriter& writer, const std::shared_ptr<const std::wstring>& namespaceUri) const;

 private:
  std::wstring_view m_value;
  std::wstring_view m_prefix;
  bool m_hasPrefix;
};

}  // namespace RkXmlLib16

#endif

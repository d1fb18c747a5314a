#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_QNAME_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_QNAME_H

#include <cstddef>
#include <functional>
#include <string>

namespace RkXmlSchema {

// An expanded name: namespace URI (empty for none) and local name.
struct QName {
  std::wstring namespaceUri;
  std::wstring localName;

  bool empty() const noexcept { return localName.empty(); }
  // "{urn:orders}item", or "item" without a namespace.
  std::wstring ToString() const { return namespaceUri.empty() ? localName : L'{' + namespaceUri + L'}' + localName; }

  friend bool operator==(const QName& a, const QName& b) noexcept {
    return a.localName == b.localName && a.namespaceUri == b.namespaceUri;
  }
  friend bool operator!=(const QName& a, const QName& b) noexcept { return !(a == b); }
  friend bool operator<(const QName& a, const QName& b) noexcept {
    return a.namespaceUri != b.namespaceUri ? a.namespaceUri < b.namespaceUri : a.localName < b.localName;
  }
};

struct QNameHash {
  std::size_t operator()(const QName& name) const noexcept {
    const std::hash<std::wstring> hash;
    return hash(name.localName) * 31 + hash(name.namespaceUri);
  }
};

inline constexpr const wchar_t* kSchemaNamespace = L"http://www.w3.org/2001/XMLSchema";
inline constexpr const wchar_t* kInstanceNamespace = L"http://www.w3.org/2001/XMLSchema-instance";
inline constexpr const wchar_t* kXmlNamespace = L"http://www.w3.org/XML/1998/namespace";

}  // namespace RkXmlSchema

#endif

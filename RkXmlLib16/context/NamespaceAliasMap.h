#ifndef RKXMLLIB16_CONTEXT_NAMESPACEALIASMAP_H
#define RKXMLLIB16_CONTEXT_NAMESPACEALIASMAP_H

#include <map>
#include <string>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// The prefixes that the root element of a document declares, one for a namespace URI, in ascending order of the URIs
// (compared as sequences of wide characters). Two namespaces may share a prefix; the map does not prevent it.
class RKXML_EXPORT CNamespaceAliasMap {
 public:
  CNamespaceAliasMap();
  CNamespaceAliasMap(const CNamespaceAliasMap&);
  CNamespaceAliasMap& operator=(const CNamespaceAliasMap&);
  virtual ~CNamespaceAliasMap();

  // Sets the prefix of the namespace, replacing the one it had. An empty prefix declares the default namespace.
  void Add(const wchar_t* alias, const wchar_t* namespaceUri);
  // The prefix of the namespace. Like a map's subscript: an unknown namespace is added with an empty prefix.
  std::wstring GetAliasFromNamespace(const wchar_t* namespaceUri) const;
  // The first namespace with the prefix, for which it looks through the entries, as DoesAliasExist does. Throws
  // CRkException "Namespace alias [%ls] not found".
  std::wstring GetNamespaceFromAlias(const wchar_t* alias) const;
  bool DoesAliasExist(const wchar_t* alias) const;
  bool DoesNamespaceExist(const wchar_t* namespaceUri) const;
  void RemoveNamespace(const wchar_t* namespaceUri);
  int GetNamespaceCount() const;
  // The namespace at the position in key order, to which it counts; to walk over all use GetEntries. Throws
  // CRkInvalidParamException for an index out of range.
  std::wstring GetNamespaceAt(int index) const;

  // The entries, namespace URI to prefix; for walks that must not insert.
  const std::map<std::wstring, std::wstring, std::less<>>& GetEntries() const noexcept { return m_entries; }

 private:
  mutable std::map<std::wstring, std::wstring, std::less<>> m_entries;
};

}  // namespace RkXmlLib16

#endif

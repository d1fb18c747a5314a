#include "RkXmlLib16/context/NamespaceAliasMap.h"

#include <algorithm>
#include <iterator>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"

namespace RkXmlLib16 {

namespace {

template <class Entries>
auto FindAlias(const Entries& entries, std::wstring_view alias) {
  return std::find_if(entries.begin(), entries.end(), [alias](const auto& entry) { return entry.second == alias; });
}

}  // namespace

CNamespaceAliasMap::CNamespaceAliasMap() = default;
CNamespaceAliasMap::CNamespaceAliasMap(const CNamespaceAliasMap&) = default;
CNamespaceAliasMap& CNamespaceAliasMap::operator=(const CNamespaceAliasMap&) = default;
CNamespaceAliasMap::~CNamespaceAliasMap() = default;

void CNamespaceAliasMap::Add(const wchar_t* alias, const wchar_t* namespaceUri) {
  m_entries.insert_or_assign(TextOrEmpty(namespaceUri), TextOrEmpty(alias));
}

std::wstring CNamespaceAliasMap::GetAliasFromNamespace(const wchar_t* namespaceUri) const {
  return m_entries[TextOrEmpty(namespaceUri)];
}

std::wstring CNamespaceAliasMap::GetNamespaceFromAlias(const wchar_t* alias) const {
  const auto entry = FindAlias(m_entries, TextOrEmpty(alias));
  if (entry == m_entries.end())
    throw CRkException(FormatString(L"Namespace alias [%ls] not found", TextOrEmpty(alias)));
  return entry->first;
}

bool CNamespaceAliasMap::DoesAliasExist(const wchar_t* alias) const {
  return FindAlias(m_entries, TextOrEmpty(alias)) != m_entries.end();
}

bool CNamespaceAliasMap::DoesNamespaceExist(const wchar_t* namespaceUri) const {
  return m_entries.find(std::wstring_view(TextOrEmpty(namespaceUri))) != m_entries.end();
}

void CNamespaceAliasMap::RemoveNamespace(const wchar_t* namespaceUri) {
  const auto entry = m_entries.find(std::wstring_view(TextOrEmpty(namespaceUri)));
  if (entry != m_entries.end()) m_entries.erase(entry);
}

int CNamespaceAliasMap::GetNamespaceCount() const { return static_cast<int>(m_entries.size()); }

std::wstring CNamespaceAliasMap::GetNamespaceAt(int index) const {
  if (index < 0 || index >= GetNamespaceCount()) throw CRkInvalidParamException(L"Index out of range");
  return std::next(m_entries.begin(), index)->first;
}

}  // namespace RkXmlLib16

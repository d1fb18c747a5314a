#include "RkXmlLib16/document/internal/NamespacePool.h"

namespace RkXmlLib16 {

const CNamespaceName& CNamespacePool::FindOther(const std::wstring& uri) {
  if (uri.empty()) return GetEmpty();
  const auto found = m_byText.find(uri);
  const CNamespaceName* name = found != m_byText.end() ? found->second : nullptr;
  if (name == nullptr) {
    name = &AddNew(uri);
    m_byText.emplace(name->text.Get(), name);
  }
  return *name;
}

void CNamespacePool::TellOther(const SharedText& uri) {
  auto& [text, name] = m_byAddress[uri.get()];
  if (name == nullptr) {
    name = &FindOther(*uri);
    text = uri;
  }
  m_told = uri.get();
  m_toldName = name;
}

}  // namespace RkXmlLib16

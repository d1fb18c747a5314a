#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_NAMESPACEPOOL_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_NAMESPACEPOOL_H

#include <algorithm>
#include <cstddef>
#include <deque>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "RkXmlLib16/base/SharedName.h"
#include "RkXmlLib16/base/internal/KeyedHash.h"
#include "RkXmlLib16/base/internal/WideText.h"

namespace RkXmlLib16 {

struct CNamespaceDeclaration;

// One namespace of a writer, which has it once: two are the same when their addresses are.
struct CNamespaceName {
  CNamespaceName(std::wstring_view uri, std::size_t number) : text(uri), ordinal(number) {}

  const CSharedName text;
  const std::size_t ordinal;                           // from 0, which is the empty namespace
  mutable CNamespaceDeclaration* innermost = nullptr;  // that is in effect, or null
};

// The namespaces that a writer has met. Long texts that others share are known again by their address, so that a
// document pays for the length of a namespace once, however many names are in it.
class CNamespacePool {
 public:
  using SharedText = std::shared_ptr<const std::wstring>;

  CNamespacePool() { std::fill(std::begin(m_recent), std::end(m_recent), &AddNew({})); }
  CNamespacePool(const CNamespacePool&) = delete;
  CNamespacePool& operator=(const CNamespacePool&) = delete;

  const CNamespaceName& Find(const std::wstring& uri) {
    if (uri.size() > kShort) return &uri == m_told ? *m_toldName : FindOther(uri);
    if (uri.empty()) return GetEmpty();
    const CNamespaceName*& recent = m_recent[(uri.size() ^ static_cast<std::size_t>(uri.back())) % std::size(m_recent)];
    if (!WideText::IsEqual(uri, recent->text.Get())) recent = &FindOther(uri);
    return *recent;
  }
  // The next call of Find may be for this text; it stays as it is while the pool is there.
  void Tell(const SharedText& uri) {
    if (uri->size() > kShort && uri.get() != m_told) TellOther(uri);
  }
  bool AreSame(const SharedText& a, const SharedText& b) {
    if (a->size() != b->size() || a->size() <= kShort) return *a == *b;
    Tell(a);
    const CNamespaceName* const first = m_toldName;
    Tell(b);
    return first == m_toldName;
  }
  const CNamespaceName& GetEmpty() noexcept { return m_names.front(); }
  // Whether Find compares the text, so that it need not be told.
  static bool IsShort(const std::wstring& uri) noexcept { return uri.size() <= kShort; }

 private:
  static constexpr std::size_t kShort = 64;  // characters that are quickly compared

  const CNamespaceName& AddNew(std::wstring_view uri) { return m_names.emplace_back(uri, m_names.size()); }
  const CNamespaceName& FindOther(const std::wstring& uri);
  void TellOther(const SharedText& uri);

  std::deque<CNamespaceName> m_names;
  std::unordered_map<std::wstring_view, const CNamespaceName*, CKeyedHash> m_byText;  // without the empty one
  std::unordered_map<const std::wstring*, std::pair<SharedText, const CNamespaceName*>> m_byAddress;
  const CNamespaceName* m_recent[8];  // short ones, by length and end
  const std::wstring* m_told = nullptr;
  const CNamespaceName* m_toldName = nullptr;
};

}  // namespace RkXmlLib16

#endif

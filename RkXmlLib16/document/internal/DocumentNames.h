#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_DOCUMENTNAMES_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_DOCUMENTNAMES_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "RkXmlLib16/base/NameToken.h"
#include "RkXmlLib16/base/SharedName.h"
#include "RkXmlLib16/document/internal/NamespacePool.h"

namespace RkXmlLib16 {

// The tokens that a writer gives to names of documents. Elements of one name mostly share its text, so that a token is
// found by addresses; its entry keeps the texts alive, so that no other ones come to lie there. A name that is not
// found gets a new token, with a new number, in place of one that may be needed again: nothing but time is lost.
class CDocumentNames {
 public:
  using SharedText = std::shared_ptr<const std::wstring>;

  // The token that was found by these addresses before, good until the next call, or null. `namespaceUri` is null for
  // none.
  const CNameToken* FindKnown(const CSharedName& localName, const SharedText& namespaceUri) const noexcept {
    const Entry* const first = m_entries + PlaceOf(localName);
    for (const Entry* entry = first; entry != first + kPlacesOfName; ++entry)
      if (entry->localName == &localName.Get() && entry->namespaceUri == namespaceUri) return &*entry->token;
    return nullptr;
  }
  // The token of a name that is not known, by the namespace itself, which may lie in several places; `isNew` tells
  // whether it was made by this call.
  const CNameToken& Find(const CSharedName& localName, const SharedText& namespaceUri, CNamespacePool& pool,
                         bool& isNew) {
    Entry* const first = m_entries + PlaceOf(localName);
    const CNamespaceName& namespaceName = NameOf(namespaceUri, pool);
    isNew = false;
    Entry* entry = first;
    for (; entry != first + kPlacesOfName && entry->localName != nullptr; ++entry)
      if (entry->localName == &localName.Get() && entry->namespaceName == &namespaceName) return *entry->token;
    if (entry == first + kPlacesOfName) entry = first + m_next % kPlacesOfName;
    isNew = true;
    return Make(*entry, localName, namespaceUri, namespaceName);
  }

 private:
  static constexpr int kPlaceBits = 6;
  static constexpr std::size_t kPlacesOfName = 4;

  struct Entry {
    const std::wstring* localName = nullptr;  // that of the token, or null for a free place
    SharedText namespaceUri;
    const CNamespaceName* namespaceName = nullptr;
    std::optional<CNameToken> token;
  };

  static std::size_t PlaceOf(const CSharedName& localName) noexcept {
    return reinterpret_cast<std::uintptr_t>(&localName.Get()) * 0x9E3779B97F4A7C15u >> (64 - kPlaceBits);
  }
  static const CNamespaceName& NameOf(const SharedText& namespaceUri, CNamespacePool& pool) {
    return namespaceUri != nullptr ? pool.Find(*namespaceUri) : pool.GetEmpty();
  }
  const CNameToken& Make(Entry& entry, const CSharedName& localName, const SharedText& namespaceUri,
                         const CNamespaceName& namespaceName) {
    entry.localName = &localName.Get();
    entry.namespaceUri = namespaceUri;
    entry.namespaceName = &namespaceName;
    entry.token.emplace(localName, namespaceName.text, m_next);
    if (m_next != CNameToken::kNoNumber) ++m_next;
    return *entry.token;
  }

  Entry m_entries[(1 << kPlaceBits) + kPlacesOfName - 1];
  std::uint32_t m_next = CNameToken::kFirstOfWriter;
};

}  // namespace RkXmlLib16

#endif

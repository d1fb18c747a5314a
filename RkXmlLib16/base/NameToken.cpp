#include "RkXmlLib16/base/NameToken.h"

#include <pthread.h>

#include <cstddef>
#include <mutex>
#include <unordered_map>

#include "RkXmlLib16/base/internal/KeyedHash.h"
#include "RkXmlLib16/base/internal/WideText.h"

namespace RkXmlLib16 {

// The names of all tokens that there are, but for those of writers.
class CNameTable {
 public:
  static CNameTable& Get() {
    static auto& table = *new CNameTable;  // records may come and go until the process ends
    return table;
  }

  void Enter(CNameToken& token) {
    const std::lock_guard lock(m_mutex);
    Name& name = m_names.try_emplace(Key{token.GetLocalName(), token.GetNamespace()}).first->second;
    if (name.tokens++ == 0) {
      name.localName = token.m_localName;
      name.namespaceUri = token.m_namespace;
      name.number = m_next != CNameToken::kFirstOfWriter ? m_next++ : CNameToken::kNoNumber;
    }
    token.m_localName = name.localName;
    token.m_namespace = name.namespaceUri;
    token.m_number = name.number;
    token.m_isEntered = true;
  }

  void Leave(const CNameToken& token) noexcept {
    const std::lock_guard lock(m_mutex);
    const auto found = m_names.find(Key{token.GetLocalName(), token.GetNamespace()});
    if (--found->second.tokens == 0) m_names.erase(found);
  }

 private:
  // Views of the texts of the entry.
  struct Key {
    std::wstring_view localName, namespaceUri;
    bool operator==(const Key& other) const noexcept {
      return WideText::IsEqual(localName, other.localName) && WideText::IsEqual(namespaceUri, other.namespaceUri);
    }
  };
  struct Hash {
    std::size_t operator()(const Key& key) const noexcept {
      return CKeyedHash::Of(CKeyedHash::Of(key.localName) ^ key.namespaceUri.size()) ^ CKeyedHash::Of(key.namespaceUri);
    }
  };
  struct Name {
    CSharedName localName, namespaceUri;
    std::uint32_t number = CNameToken::kNoNumber;
    std::size_t tokens = 0;
  };

  // A child of fork finds the table unlocked.
  CNameTable() {
    pthread_atfork([] { Get().m_mutex.lock(); }, [] { Get().m_mutex.unlock(); }, [] { Get().m_mutex.unlock(); });
  }

  std::mutex m_mutex;
  std::unordered_map<Key, Name, Hash> m_names;
  std::uint32_t m_next = 0;
};

CNameToken::CNameToken(std::wstring_view localName, std::wstring_view namespaceUri)
    : m_localName(localName), m_namespace(namespaceUri) {
  CNameTable::Get().Enter(*this);
}

CNameToken::CNameToken(const CSharedName& localName, const CSharedName& namespaceUri, std::uint32_t number) noexcept
    : m_localName(localName), m_namespace(namespaceUri), m_number(number) {}

CNameToken::~CNameToken() {
  if (m_isEntered) CNameTable::Get().Leave(*this);
}

}  // namespace RkXmlLib16

#include "RkXmlLib16/context/Vocabulary.h"

#include <algorithm>

#include "RkXmlLib16/base/internal/KeyedHash.h"
#include "RkXmlLib16/base/internal/WideText.h"

namespace RkXmlLib16 {

namespace {

constexpr std::size_t kFirstBlockLength = 128;
constexpr std::size_t kFirstEntries = 16;
constexpr std::size_t kFirstSlots = 16;
constexpr std::size_t kManySlots = 4096;  // a table of fewer grows in larger steps
constexpr std::size_t kMaxBlockLength = kHugePage / sizeof(wchar_t);
constexpr std::wstring_view kXmlPrefix = L"xml";
constexpr std::wstring_view kXmlNamespaceName = L"http://www.w3.org/XML/1998/namespace";

// The indices have at most 21 bits each.
CFIKey KeyOf(const CQNameParts& name) {
  return {static_cast<std::uint64_t>(name.m_prefixIndex) << 42 |
          static_cast<std::uint64_t>(name.m_namespaceNameIndex) << 21 | name.m_localNameIndex};
}

bool IsAlreadyWhole(unsigned long) { return true; }

}  // namespace

inline std::uint64_t CFIIndexHash::SlotOf(std::uint64_t octets) noexcept { return CKeyedHash::Of(octets); }

inline CFIKey CFIIndexHash::KeyOf(std::wstring_view text) noexcept {
  CFIKey key;
  if (WideText::PackEight(text, key.octets)) {
    key.length = static_cast<std::uint32_t>(text.length());
    return key;
  }
  key.octets = CKeyedHash::Of(text);
  key.length = CFIKey::kHashed;
  return key;
}

inline void CFIIndexHash::Insert(const CFIKey& key, unsigned long index) {
  if (m_slots.empty()) {
    m_slots.resize(kFirstSlots);
    m_slots[SlotOf(key.octets) % kFirstSlots] = {key.octets, key.length, static_cast<std::uint32_t>(index)};
  } else {
    m_slots[key.slot] = {key.octets, key.length, static_cast<std::uint32_t>(index)};
  }
  if (++m_count * 4 > m_slots.size() * 3) Grow();
}

void CFIIndexHash::Grow() {
  decltype(m_slots) old(m_slots.size() * (m_slots.size() < kManySlots ? 4 : 2));
  old.swap(m_slots);
  const std::size_t mask = m_slots.size() - 1;
  for (const Slot& slot : old) {
    if (slot.index == 0) continue;
    std::size_t at = SlotOf(slot.octets) & mask;
    while (m_slots[at].index != 0) at = (at + 1) & mask;
    m_slots[at] = slot;
  }
}

namespace {

[[gnu::noinline]] unsigned long FindByHash(const CFIIndexHash& hash, const CFIStringTable& table,
                                           std::wstring_view text, CFIKey& key) {
  key = CFIIndexHash::KeyOf(text);
  return hash.Find(key, [&](unsigned long index) { return table[index] == text; });
}

}  // namespace

CFIStringTable::CFIStringTable() : m_nextBlockLength(kFirstBlockLength) {}

CFIStringTable::CFIStringTable(const CFIStringTable& other) : CFIStringTable() {
  m_entries.reserve(other.m_entries.size());
  for (const std::wstring_view text : other.m_entries) Append(text);
}

CFIStringTable& CFIStringTable::operator=(const CFIStringTable& other) {
  CFIStringTable copy(other);
  m_entries.swap(copy.m_entries);
  m_blocks.swap(copy.m_blocks);
  std::swap(m_free, copy.m_free);
  std::swap(m_freeLength, copy.m_freeLength);
  std::swap(m_nextBlockLength, copy.m_nextBlockLength);
  std::swap(m_hash, copy.m_hash);
  std::swap(m_hashed, copy.m_hashed);
  return *this;
}

CFIStringTable::~CFIStringTable() = default;

unsigned long CFIStringTable::Find(std::wstring_view text) const {
  CFIKey key;
  return Find(text, key);
}

// Short texts, which are most, without a call.
unsigned long CFIStringTable::Find(std::wstring_view text, CFIKey& key) const {
  if (m_hashed != size()) return FindAfterHashing(text, key);
  if (!WideText::PackEight(text, key.octets)) return FindByHash(m_hash, *this, text, key);
  key.length = static_cast<std::uint32_t>(text.length());
  return m_hash.Find(key, IsAlreadyWhole);
}

unsigned long CFIStringTable::FindAfterHashing(std::wstring_view text, CFIKey& key) const {
  HashNewEntries();
  return Find(text, key);
}

unsigned long CFIStringTable::Add(std::wstring_view text) {
  CFIKey key;
  const unsigned long index = Find(text, key);
  if (index != 0 || size() >= FI_MAX_TABLE_ENTRIES) return index;
  AddNew(text, key);
  return size();
}

void CFIStringTable::AddNew(std::wstring_view text, const CFIKey& key) {
  Append(text);
  m_hash.Insert(key, size());
  m_hashed = size();
}

void CFIStringTable::Append(std::wstring_view text) {
  if (size() >= FI_MAX_TABLE_ENTRIES) return;
  if (text.length() > m_freeLength) {
    const std::size_t length = std::max(m_nextBlockLength, text.length());
    m_blocks.push_back(MakeChunk<wchar_t>(length));
    m_free = m_blocks.back().get();
    m_freeLength = length;
    m_nextBlockLength = std::min(2 * m_nextBlockLength, kMaxBlockLength);
  }
  if (m_entries.empty()) m_entries.reserve(kFirstEntries);
  m_entries.emplace_back(m_free, text.length());
  m_free = WideText::Copy(m_free, text);
  m_freeLength -= text.length();
}

void CFIStringTable::HashNewEntries() const {
  for (; m_hashed < size(); ++m_hashed) {
    const std::wstring_view text = (*this)[m_hashed + 1];
    CFIKey key = CFIIndexHash::KeyOf(text);
    if (m_hash.Find(key, [&](unsigned long index) { return (*this)[index] == text; }) == 0) {
      m_hash.Insert(key, m_hashed + 1);
    }
  }
}

unsigned long CFIQNameTable::Find(const CQNameParts& name) const {
  CFIKey key = KeyOf(name);
  return Find(key);
}

unsigned long CFIQNameTable::Find(CFIKey& key) const {
  for (; m_hashed < size(); ++m_hashed) {
    CFIKey entry = KeyOf(m_entries[m_hashed]);
    if (m_hash.Find(entry, IsAlreadyWhole) == 0) m_hash.Insert(entry, m_hashed + 1);
  }
  return m_hash.Find(key, IsAlreadyWhole);
}

unsigned long CFIQNameTable::Add(const CQNameParts& name) {
  CFIKey key = KeyOf(name);
  const unsigned long index = Find(key);
  if (index != 0 || size() >= FI_MAX_TABLE_ENTRIES) return index;
  m_entries.push_back(name);
  m_hash.Insert(key, size());
  m_hashed = size();
  return size();
}

void CFIQNameTable::Append(const CQNameParts& name) {
  if (size() < FI_MAX_TABLE_ENTRIES) m_entries.push_back(name);
}

CFIVocabulary::CFIVocabulary() {
  m_prefixNames.Append(kXmlPrefix);
  m_namespaceNames.Append(kXmlNamespaceName);
}

CFIVocabulary::CFIVocabulary(const CFIVocabulary& other) = default;

CFIVocabulary& CFIVocabulary::operator=(const CFIVocabulary& other) = default;

CFIVocabulary::~CFIVocabulary() = default;

bool CFIVocabulary::FindPrefixNameIndex(std::wstring_view name, unsigned long& index) const {
  return FindIndex(m_prefixNames, name, index);
}

bool CFIVocabulary::FindNamespaceNameIndex(std::wstring_view name, unsigned long& index) const {
  return FindIndex(m_namespaceNames, name, index);
}

bool CFIVocabulary::FindLocalNameIndex(std::wstring_view name, unsigned long& index) const {
  return FindIndex(m_localNames, name, index);
}

bool CFIVocabulary::FindIndex(const CFIStringTable& map, std::wstring_view key, unsigned long& index) {
  const unsigned long found = map.Find(key);
  if (found == 0) return false;
  index = found;
  return true;
}

bool CFIVocabulary::FindIndex(const StringMap& map, const std::wstring& key, unsigned long& index) {
  const auto found = map.find(key);
  if (found == map.end()) return false;
  index = found->second;
  return true;
}

void CFIVocabulary::AddPrefixName(std::wstring_view name) { AddValueToMap(name, m_prefixNames); }

void CFIVocabulary::AddNamespaceName(std::wstring_view name) { AddValueToMap(name, m_namespaceNames); }

void CFIVocabulary::AddLocalName(std::wstring_view name) { AddValueToMap(name, m_localNames); }

void CFIVocabulary::AddAttributeValue(std::wstring_view value) { AddValueToMap(value, m_attributeValues); }

void CFIVocabulary::AddElementValue(std::wstring_view value) { AddValueToMap(value, m_characterChunks); }

void CFIVocabulary::AddValueToMap(std::wstring_view text, CFIStringTable& map) { map.Add(text); }

void CFIVocabulary::AddValueToVector(std::wstring_view text, CFIStringTable& vector) { vector.Append(text); }

void CFIVocabulary::AddValueToMap(const std::wstring& text, StringMap& map) {
  if (map.size() < FI_MAX_TABLE_ENTRIES) map.emplace(text, map.size() + 1);
}

void CFIVocabulary::AddValueToVector(const std::wstring& text, std::vector<std::wstring>& vector) {
  if (vector.size() < FI_MAX_TABLE_ENTRIES) vector.push_back(text);
}

bool CFIVocabulary::AddParts(std::wstring_view prefix, std::wstring_view namespaceName, std::wstring_view localName,
                             CQNameParts& parts) {
  if (!prefix.empty()) parts.m_prefixIndex = m_prefixNames.Add(prefix);
  if (!namespaceName.empty()) parts.m_namespaceNameIndex = m_namespaceNames.Add(namespaceName);
  if (!localName.empty()) parts.m_localNameIndex = m_localNames.Add(localName);
  return (prefix.empty() || parts.m_prefixIndex != 0) && (namespaceName.empty() || parts.m_namespaceNameIndex != 0) &&
         (localName.empty() || parts.m_localNameIndex != 0);
}

unsigned long CFIVocabulary::AddQName(std::wstring_view prefix, std::wstring_view namespaceName,
                                      std::wstring_view localName, CFIQNameTable& table) {
  CQNameParts parts;
  return AddParts(prefix, namespaceName, localName, parts) ? table.Add(parts) : 0;
}

unsigned long CFIVocabulary::AddQName(std::wstring_view prefix, std::wstring_view namespaceName,
                                      std::wstring_view localName, StringMap& map, std::vector<CQNameParts>& vector) {
  std::wstring key(prefix);
  (((key += L'\1') += namespaceName) += L'\1') += localName;
  unsigned long index = 0;
  if (FindIndex(map, key, index)) return index;
  CQNameParts parts;
  if (!AddParts(prefix, namespaceName, localName, parts) || map.size() >= FI_MAX_TABLE_ENTRIES) return 0;
  AddValueToMap(key, map);
  vector.push_back(parts);
  return map.size();
}

unsigned long CFIVocabulary::AddElement(std::wstring_view prefix, std::wstring_view namespaceName,
                                        std::wstring_view localName) {
  return AddQName(prefix, namespaceName, localName, m_elementNames);
}

unsigned long CFIVocabulary::AddAttribute(std::wstring_view prefix, std::wstring_view namespaceName,
                                          std::wstring_view localName) {
  return AddQName(prefix, namespaceName, localName, m_attributeNames);
}

void CFIVocabulary::AddQNameToVector(unsigned long prefixIndex, unsigned long namespaceNameIndex,
                                     unsigned long localNameIndex, CFIQNameTable& vector) {
  vector.Append({prefixIndex, namespaceNameIndex, localNameIndex});
}

void CFIVocabulary::AddQNameToVector(unsigned long prefixIndex, unsigned long namespaceNameIndex,
                                     unsigned long localNameIndex, std::vector<CQNameParts>& vector) {
  if (vector.size() < FI_MAX_TABLE_ENTRIES) vector.push_back({prefixIndex, namespaceNameIndex, localNameIndex});
}

const std::array<std::wstring_view, 2>& CFIVocabulary::GetRestrictedAlphabets() noexcept {
  static constexpr std::array<std::wstring_view, 2> kAlphabets = {L"0123456789-+.e ", L"0123456789-:TZ "};
  return kAlphabets;
}

}  // namespace RkXmlLib16

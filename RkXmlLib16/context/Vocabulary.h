#ifndef RKXMLLIB16_CONTEXT_VOCABULARY_H
#define RKXMLLIB16_CONTEXT_VOCABULARY_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/HugePages.h"

namespace RkXmlLib16 {

// The most entries that a vocabulary table holds (ITU-T X.891 clause 7.13.7); a full table takes no more.
constexpr unsigned long FI_MAX_TABLE_ENTRIES = 1048576;

// What an entry is found by: all of it where eight octets hold that, else a hash. A search leaves in it the slot where
// it ended.
struct CFIKey {
  static constexpr std::uint32_t kHashed = UINT32_MAX;

  std::uint64_t octets = 0;
  std::uint32_t length = 0;  // of a text that the octets hold, or kHashed
  std::size_t slot = 0;
};

// Finds the index of an entry by its key; what only a hash stands for stays with its owner. Open addressing, by a hash
// with a random key of the process, so that colliding entries cannot be made up beforehand.
class CFIIndexHash {
 public:
  static CFIKey KeyOf(std::wstring_view text) noexcept;
  // The index inserted with this key, or 0. `matches(index)` tells whether that is the entry, where a hash does not.
  template <class Matches>
  unsigned long Find(CFIKey& key, Matches&& matches) const {
    if (m_slots.empty()) return 0;
    const std::size_t mask = m_slots.size() - 1;
    for (key.slot = SlotOf(key.octets) & mask;; key.slot = (key.slot + 1) & mask) {
      const Slot& slot = m_slots[key.slot];
      if (slot.index == 0) return 0;
      if (slot.octets == key.octets && slot.length == key.length &&
          (key.length != CFIKey::kHashed || matches(slot.index)))
        return slot.index;
    }
  }
  // The key is one that Find did not find, and nothing was inserted since.
  void Insert(const CFIKey& key, unsigned long index);

 private:
  struct Slot {
    std::uint64_t octets = 0;
    std::uint32_t length = 0;
    std::uint32_t index = 0;  // 0 marks a free slot
  };
  static std::uint64_t SlotOf(std::uint64_t octets) noexcept;  // before it is cut to their number
  void Grow();

  CLargeVector<Slot> m_slots;  // a power of two, at most three quarters of it in use
  std::size_t m_count = 0;
};

// One table of strings: index to text for reading, text to index for writing. Indices count from 1; 0 never names an
// entry. Texts stay where they are until the table is destroyed. Iteration goes in the order of the indices and gives
// pairs of text and index:
//
//   for (const auto& [text, index] : vocabulary.GetLocalNamesTable()) ...
class RKXML_EXPORT CFIStringTable {
 public:
  using value_type = std::pair<std::wstring_view, unsigned long>;

  class iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = CFIStringTable::value_type;
    using difference_type = std::ptrdiff_t;
    using pointer = const value_type*;
    using reference = value_type;

    iterator() noexcept = default;
    iterator(const CFIStringTable& table, unsigned long index) noexcept : m_table(&table), m_index(index) {}
    value_type operator*() const noexcept { return {(*m_table)[m_index], m_index}; }
    iterator& operator++() noexcept {
      ++m_index;
      return *this;
    }
    iterator operator++(int) noexcept {
      const iterator before = *this;
      ++m_index;
      return before;
    }
    bool operator==(const iterator& other) const noexcept { return m_index == other.m_index; }
    bool operator!=(const iterator& other) const noexcept { return m_index != other.m_index; }

   private:
    const CFIStringTable* m_table = nullptr;
    unsigned long m_index = 0;
  };
  using const_iterator = iterator;

  CFIStringTable();
  CFIStringTable(const CFIStringTable& other);
  CFIStringTable& operator=(const CFIStringTable& other);
  ~CFIStringTable();

  // The first index of the text, or 0.
  unsigned long Find(std::wstring_view text) const;
  // Adds the text under the next index unless it is present or the table is full; returns its index, or 0.
  unsigned long Add(std::wstring_view text);
  // Adds the text under the next index even when it is present already, unless the table is full.
  void Append(std::wstring_view text);
  // Find and Add in two steps, which look for the text once: Find makes its key. AddNew is for a text that Find did not
  // find and that the table has space for; nothing was added in between.
  unsigned long Find(std::wstring_view text, CFIKey& key) const;
  void AddNew(std::wstring_view text, const CFIKey& key);

  // The text of an index from 1 to size().
  std::wstring_view operator[](unsigned long index) const noexcept { return m_entries[index - 1]; }
  unsigned long size() const noexcept { return m_entries.size(); }
  bool empty() const noexcept { return m_entries.empty(); }
  iterator begin() const noexcept { return {*this, 1}; }
  iterator end() const noexcept { return {*this, size() + 1}; }

 private:
  void HashNewEntries() const;
  [[gnu::cold, gnu::noinline]] unsigned long FindAfterHashing(std::wstring_view text, CFIKey& key) const;

  CLargeVector<std::wstring_view> m_entries;  // texts in the blocks
  std::vector<CChunk<wchar_t>> m_blocks;
  wchar_t* m_free = nullptr;  // the rest of the last block
  std::size_t m_freeLength = 0;
  std::size_t m_nextBlockLength;
  mutable CFIIndexHash m_hash;         // reading never asks it, so it is filled by the first lookup
  mutable unsigned long m_hashed = 0;  // entries that it has seen
};

// A qualified name as indices into the string tables, 0 where a part is absent.
struct CQNameParts {
  unsigned long m_prefixIndex = 0;
  unsigned long m_namespaceNameIndex = 0;
  unsigned long m_localNameIndex = 0;

  friend bool operator==(const CQNameParts& a, const CQNameParts& b) noexcept {
    return a.m_prefixIndex == b.m_prefixIndex && a.m_namespaceNameIndex == b.m_namespaceNameIndex &&
           a.m_localNameIndex == b.m_localNameIndex;
  }
};

// One table of qualified names: index to parts for reading, parts to index for writing. Two names are one entry exactly
// when prefix, namespace name and local name are equal. Iteration goes in the order of the indices and gives the parts.
class RKXML_EXPORT CFIQNameTable {
 public:
  using iterator = std::vector<CQNameParts>::const_iterator;

  // The first index of the name, or 0.
  unsigned long Find(const CQNameParts& name) const;
  // Adds the name under the next index unless it is present or the table is full; returns its index, or 0.
  unsigned long Add(const CQNameParts& name);
  // Adds the name under the next index even when it is present already, unless the table is full.
  void Append(const CQNameParts& name);

  // The parts of an index from 1 to size().
  const CQNameParts& operator[](unsigned long index) const noexcept { return m_entries[index - 1]; }
  unsigned long size() const noexcept { return m_entries.size(); }
  bool empty() const noexcept { return m_entries.empty(); }
  iterator begin() const noexcept { return m_entries.begin(); }
  iterator end() const noexcept { return m_entries.end(); }

 private:
  unsigned long Find(CFIKey& key) const;

  std::vector<CQNameParts> m_entries;
  mutable CFIIndexHash m_hash;  // filled by the first lookup
  mutable unsigned long m_hashed = 0;
};

// The dynamic vocabulary of one Fast Infoset document (ITU-T X.891 clause 8): the tables that let a writer put a small
// index in place of a repeated string or name and a reader resolve it. Writer and reader add in the same order, so both
// number the entries alike. Copying the initial vocabulary costs two short strings.
//
//   CFIVocabulary v;
//   unsigned long index = 0;
//   v.AddPrefixName(L"p");
//   v.FindPrefixNameIndex(L"p", index);  // true, 2: index 1 is "xml"
class RKXML_EXPORT CFIVocabulary {
 public:
  // The initial vocabulary: prefix 1 "xml", namespace name 1 the one bound to it.
  CFIVocabulary();
  CFIVocabulary(const CFIVocabulary& other);
  CFIVocabulary& operator=(const CFIVocabulary& other);
  ~CFIVocabulary();

  // True and the index when the string is present.
  bool FindPrefixNameIndex(std::wstring_view name, unsigned long& index) const;
  bool FindNamespaceNameIndex(std::wstring_view name, unsigned long& index) const;
  bool FindLocalNameIndex(std::wstring_view name, unsigned long& index) const;
  static bool FindIndex(const CFIStringTable& map, std::wstring_view key, unsigned long& index);
  // The same of any map from text to index.
  using StringMap = std::map<std::wstring, unsigned long>;
  static bool FindIndex(const StringMap& map, const std::wstring& key, unsigned long& index);

  // Add the string for lookup and for reading; nothing happens when it is present or the table is full.
  void AddPrefixName(std::wstring_view name);
  void AddNamespaceName(std::wstring_view name);
  void AddLocalName(std::wstring_view name);
  void AddAttributeValue(std::wstring_view value);
  void AddElementValue(std::wstring_view value);
  // The shared steps: add a string once, or append it as a reader does, which takes a new index for an equal string.
  static void AddValueToMap(std::wstring_view text, CFIStringTable& map);
  static void AddValueToVector(std::wstring_view text, CFIStringTable& vector);
  static void AddValueToMap(const std::wstring& text, StringMap& map);
  static void AddValueToVector(const std::wstring& text, std::vector<std::wstring>& vector);

  // Adds the parts that are not empty and not present to their tables, then the name to `table`. A name with a part
  // that found its table full gets no index. Returns the index of the name, or 0.
  unsigned long AddQName(std::wstring_view prefix, std::wstring_view namespaceName, std::wstring_view localName,
                         CFIQNameTable& table);
  // The same with the two forms of a table apart: `map` finds the three texts, joined by U+0001, and `vector` holds
  // their indices.
  unsigned long AddQName(std::wstring_view prefix, std::wstring_view namespaceName, std::wstring_view localName,
                         StringMap& map, std::vector<CQNameParts>& vector);
  unsigned long AddElement(std::wstring_view prefix, std::wstring_view namespaceName, std::wstring_view localName);
  unsigned long AddAttribute(std::wstring_view prefix, std::wstring_view namespaceName, std::wstring_view localName);
  static void AddQNameToVector(unsigned long prefixIndex, unsigned long namespaceNameIndex,
                               unsigned long localNameIndex, CFIQNameTable& vector);
  static void AddQNameToVector(unsigned long prefixIndex, unsigned long namespaceNameIndex,
                               unsigned long localNameIndex, std::vector<CQNameParts>& vector);

  CFIStringTable& GetPrefixNamesTable() noexcept { return m_prefixNames; }
  CFIStringTable& GetNamespaceNamesTable() noexcept { return m_namespaceNames; }
  CFIStringTable& GetLocalNamesTable() noexcept { return m_localNames; }
  CFIStringTable& GetAttributeValuesTable() noexcept { return m_attributeValues; }
  CFIStringTable& GetCharacterChunksTable() noexcept { return m_characterChunks; }
  CFIQNameTable& GetElementNamesTable() noexcept { return m_elementNames; }
  CFIQNameTable& GetAttributeNamesTable() noexcept { return m_attributeNames; }
  const CFIStringTable& GetPrefixNamesTable() const noexcept { return m_prefixNames; }
  const CFIStringTable& GetNamespaceNamesTable() const noexcept { return m_namespaceNames; }
  const CFIStringTable& GetLocalNamesTable() const noexcept { return m_localNames; }
  const CFIStringTable& GetAttributeValuesTable() const noexcept { return m_attributeValues; }
  const CFIStringTable& GetCharacterChunksTable() const noexcept { return m_characterChunks; }
  const CFIQNameTable& GetElementNamesTable() const noexcept { return m_elementNames; }
  const CFIQNameTable& GetAttributeNamesTable() const noexcept { return m_attributeNames; }

  // The restricted alphabets, index 1 first: numeric, date and time. No document adds one.
  static const std::array<std::wstring_view, 2>& GetRestrictedAlphabets() noexcept;

 private:
  // Adds the parts that are not empty to their tables; false when one of these is full.
  bool AddParts(std::wstring_view prefix, std::wstring_view namespaceName, std::wstring_view localName,
                CQNameParts& parts);

  CFIStringTable m_prefixNames;
  CFIStringTable m_namespaceNames;
  CFIStringTable m_localNames;
  CFIStringTable m_attributeValues;
  CFIStringTable m_characterChunks;
  CFIQNameTable m_elementNames;
  CFIQNameTable m_attributeNames;
};

}  // namespace RkXmlLib16

#endif

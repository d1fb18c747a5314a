#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_SIBLINGINDEX_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_SIBLINGINDEX_H

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlLib16 {

// The prefixes that a document has for its namespaces, each the first one in their order.
class CPrefixIndex {
 public:
  explicit CPrefixIndex(const std::map<std::wstring_view, const CXmlName*>& aliases);

  // Empty where there is none.
  std::wstring_view Find(const CXmlName* namespaceUri) const;
  // The local name behind the prefix of the namespace.
  std::wstring GetQName(const CXmlName* namespaceUri, const CXmlText& localName) const;
  // The namespace, or null for all that have no prefix.
  const CXmlName* Distinguish(const CXmlName* namespaceUri) const {
    return Find(namespaceUri).empty() ? nullptr : namespaceUri;
  }

 private:
  std::unordered_map<const CXmlName*, std::wstring_view> m_prefixes;
};

// Where elements stand among the siblings of their qualified name, for whoever asks it of many elements, such as those
// with errors. At each depth it knows the siblings of the element that was asked about last, so that asking in document
// order takes one walk over them. Holds as long as no prefix is added to the document and no element is taken from it.
class CSiblingIndex {
 public:
  struct Place {
    std::size_t before = 0;
    std::size_t all = 0;
  };

  explicit CSiblingIndex(const std::map<std::wstring_view, const CXmlName*>& aliases) : m_prefixes(aliases) {}
  // That of the document of the element while a call with an error handler reads on this thread, else null.
  static CSiblingIndex* Of(const CXmlElement& element);

  const CPrefixIndex& GetPrefixes() const noexcept { return m_prefixes; }
  // Alone, too, for an element that was taken from its parent.
  Place Find(const CXmlElement& element);
  // Whether the element or a later sibling has the local name, in any namespace.
  bool HasNameFromHere(const CXmlElement& element, std::wstring_view localName);

 private:
  struct Key {
    const CXmlName* localName;
    const CXmlName* namespaceUri;
    bool operator==(const Key& other) const noexcept {
      return localName == other.localName && namespaceUri == other.namespaceUri;
    }
  };
  struct KeyHash {
    std::size_t operator()(const Key& key) const noexcept;
  };
  struct Siblings {
    const CXmlElement* parent = nullptr;
    const CXmlElement* last = nullptr;
    const CXmlElement* reached = nullptr;  // the first one that `before` does not count
    std::unordered_map<Key, Place, KeyHash> places;
    std::unordered_map<std::wstring_view, Place> names;
  };

  Siblings* Reach(const CXmlElement& element);
  Key KeyOf(const CXmlElement& element) const {
    return {element.GetLocalNameRef(), m_prefixes.Distinguish(element.GetNamespaceRef())};
  }

  CPrefixIndex m_prefixes;
  std::vector<Siblings> m_levels;  // by depth
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_STORAGE_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_STORAGE_H

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/ErrorHandler.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/internal/Arena.h"
#include "RkXmlLib16/document/internal/SiblingIndex.h"

namespace RkXmlLib16 {

constexpr std::size_t BytesOfText(std::size_t capacity) {
  return sizeof(CXmlTextBlock) + (capacity + 1) * sizeof(wchar_t);
}

constexpr std::size_t BytesOfAttributes(std::size_t capacity) {
  return sizeof(CXmlAttributeBlock) + capacity * sizeof(CXmlAttribute);
}

// All nodes, texts and names of one document.
struct RKXML_HIDDEN CXmlDocument::Storage {
  // An element that is being built under a filter: what to go back to when the filter drops it.
  struct OpenElement {
    CXmlElement* previousSibling;
    CArena::Mark nodes;
    CArena::Mark texts;
    std::size_t nodeCount;
    std::size_t charCount;
    std::size_t lastingCharCount;
    std::size_t declarationCount;
  };

  explicit Storage(CXmlDocument& owner) : document(owner), emptyName(L"", 0, 0, 0) {}

  // Whether nothing was added or noted yet, as when a new document is emptied before its first load.
  bool IsUntouched() const noexcept {
    return nodeCount == 0 && nameCount == 0 && charCount == 0 && aliases.empty() && noted.empty() &&
           siblings == nullptr;
  }
  void GrowNameTable();
  void Open(CXmlElement* previousSibling);    // before an element is made
  void DropCounts(const OpenElement& start);  // of what was added since, but for what lasts
  void CountNode();
  [[gnu::cold]] void CountCharacters(std::size_t charCount);
  void CountLasting(std::size_t charCount);  // the same for what no filter drops
  [[noreturn]] void ThrowExceeded(const wchar_t* name, unsigned long value) const;
  void DropDeclarations(std::size_t count);  // those after the first so many
  // The block with space for `more` characters behind its text, moved if need be.
  CXmlTextBlock* Reserve(CXmlTextBlock* block, std::size_t more);
  // The text of the element, or of one of its attributes, as a block; null for none.
  CXmlTextBlock* MakeBlock(const CXmlElement& element, CXmlHeldText text);
  CXmlTextBlock* JoinGaps(const CXmlElement& element, CXmlHeldText text);
  // A block of the text that lasts; null for an empty text.
  CXmlTextBlock* Keep(std::wstring_view text);
  // The shared block of the text of `block` (shared, or null) and the blanks; null when there can be none.
  CXmlTextBlock* ShareBlanks(const CXmlTextBlock* block, std::wstring_view blanks);

  const CXmlDocument& document;
  CArena nodes;
  CArena texts;
  CArena names;
  CXmlName emptyName;
  std::size_t depth = 0;                   // of the current element
  std::vector<const CXmlName*> nameTable;  // open addressing, a power of two
  std::size_t nameCount = 0;
  struct ExpandedHash {
    std::size_t operator()(const std::pair<const CXmlName*, const CXmlName*>& name) const noexcept;
  };
  // Local names with the namespaces in which they were not met first.
  std::unordered_map<std::pair<const CXmlName*, const CXmlName*>, const CXmlExpandedName*, ExpandedHash> expandedNames;
  std::map<std::wstring_view, const CXmlName*> aliases;  // prefix to namespace
  struct Alias {
    const CXmlName** entry = nullptr;  // in the map
    bool isInner = false;
  };
  std::unordered_map<const CXmlName*, Alias> aliasesByAddress;  // the same without comparing prefixes
  std::unordered_map<const CXmlName*, std::shared_ptr<const std::wstring>> sharedNames;
  std::unordered_map<const CXmlElement*, std::vector<std::size_t>> sections;  // where they begin in the texts
  std::vector<Declaration> declarations;                                      // in document order
  std::size_t pendingDeclarations = 0;        // the last so many belong to the element that comes next
  std::set<std::wstring_view> innerPrefixes;  // those that an inner element binds, and not as they were bound before
  // The first declaration of an element. Made when it is asked for, of the first so many declarations.
  std::unordered_map<const CXmlElement*, std::size_t> firstDeclarations;
  std::size_t indexedDeclarations = 0;
  struct BlanksStep {
    const CXmlTextBlock* before;
    CXmlTextBlock* after;
  };
  std::array<BlanksStep, 64> blanksSteps{};  // what was made of which block last, by both
  std::size_t sharedBlankCount = 0;          // characters
  std::size_t nodeCount = 0;
  std::size_t charCount = 0;
  std::size_t lastingCharCount = 0;  // of them, those that no filter drops
  std::vector<CRkDropped> noted;
  std::vector<OpenElement> open;  // only with a filter or in pieces
  // The first so many open elements have something outside them allocated after their start, so that dropping them
  // cannot free it.
  std::size_t pinned = 0;
  std::unique_ptr<CSiblingIndex> siblings;  // while it may hold, see CSiblingIndex::Of
  std::size_t indexedAliases = 0;           // declarations that it knows
  std::mutex widening;                      // of parts of the input, after the load
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_COLLECTIONS_COLLECTION_H
#define RKXMLLIB16_COLLECTIONS_COLLECTION_H

#include <cstddef>
#include <iterator>
#include <memory>
#include <vector>

#include "RkXmlLib16/base/Prefetch.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/collections/CollectionBase.h"

namespace RkXmlLib16 {

class CRkException;

// The ordered list of objects behind every typed object collection. It holds one counted reference on each item; null
// items are allowed. Every insertion tells the listeners that the item is about to be added, that it was added, and
// that the collection changed; every removal likewise, with the index -1.
//
// Reading, inserting and removing by index in a loop are fast in either direction: the node reached last is remembered,
// and what takes its place. From there a call walks to its index. AddAfterItem, AddBeforeItem and GetNodeForItem look
// through the list.
class RKXML_EXPORT CXmlCollection : public CXmlCollectionBase {
 public:
  // One place in the list.
  class CNode {
   public:
    CXmlObjectBase* GetItem() const noexcept { return m_item; }
    CNode* GetNext() const noexcept { return m_next; }
    CNode* GetPrevious() const noexcept { return m_previous; }

   private:
    friend class CXmlCollection;
    CNode() = default;

    CSmartPtr<CXmlObjectBase> m_item;
    CNode* m_next = nullptr;
    CNode* m_previous = nullptr;
  };

  // A standard forward iterator over the items as objects of class T; null items are passed over. It stays valid until
  // its item is removed.
  template <class T>
  class CIterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = T*;
    using reference = T&;

    CIterator() noexcept = default;
    explicit CIterator(const CNode* node) noexcept : m_node(node) { PassNulls(); }

    T& operator*() const noexcept { return *operator->(); }
    T* operator->() const noexcept { return static_cast<T*>(m_node->GetItem()); }
    CIterator& operator++() noexcept {
      m_node = m_node->GetNext();
      PassNulls();
      return *this;
    }
    CIterator operator++(int) noexcept {
      const CIterator before = *this;
      ++*this;
      return before;
    }
    friend bool operator==(CIterator a, CIterator b) noexcept { return a.m_node == b.m_node; }
    friend bool operator!=(CIterator a, CIterator b) noexcept { return a.m_node != b.m_node; }

   private:
    void PassNulls() noexcept {
      while (m_node != nullptr && m_node->GetItem() == nullptr) m_node = m_node->GetNext();
    }

    const CNode* m_node = nullptr;
  };

  CXmlCollection();
  CXmlCollection(const wchar_t* name, const wchar_t* namespaceUri, int minOccurs, int maxOccurs);
  ~CXmlCollection() override;

  // Writes the attributes of every item, for items whose attributes stand on the parent's element.
  void AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& context) const override;
  using CXmlObjectBase::AttributesToXml_Int;

  int GetCount() const override;
  // Removes the items one by one, the first one first.
  void Clear() override;
  void Remove(int index) override;

  // A counted reference is taken on `item`.
  void AppendItem(CXmlObjectBase* item);
  void PrependItem(CXmlObjectBase* item);
  // `index` is 0 to the count. Throws CRkInvalidParamException "Index out of range".
  void AddItemAt(int index, CXmlObjectBase* item);
  // After `existing`, or at the beginning for null; before `existing`, or at the end for null. Throw
  // CRkInvalidParamException "The object was not found in the collection", when the listeners have been told already
  // that the item is about to be added.
  void AddAfterItem(const CXmlObjectBase* existing, CXmlObjectBase* item);
  void AddBeforeItem(const CXmlObjectBase* existing, CXmlObjectBase* item);

  // The nodes belong to the collection. Throw CRkInvalidParamException "Index %d is out of range, use 0 - %d" (the
  // index and the count) and "The object was not found in the collection".
  CNode* GetNodeAtIndex(int index) const;
  CNode* GetNodeForItem(const CXmlObjectBase* item) const;
  void RemoveNode(CNode* node);
  // Whether an item is written. A null one is not, though it counts, so the document may fall short of the minimum:
  // throws CRkValidationException "The item %d of the collection [%ls] is NULL" (index and element name) for the first
  // one under CSerializationContext::SetWellFormedOutput.
  bool IsToBeWritten(const CXmlObjectBase* item, const CSerializationContext& context) const;

  // The ends of the list, null when it is empty; for walks in a loop.
  CNode* GetFirstNode() const noexcept { return m_head; }
  CNode* GetLastNode() const noexcept { return m_tail; }

  // The items as references: for (CXmlObjectBase& item : collection).
  CIterator<CXmlObjectBase> begin() const noexcept { return CIterator<CXmlObjectBase>(m_head); }
  CIterator<CXmlObjectBase> end() const noexcept { return {}; }

 protected:
  // Adds to the path of an error of writing which item it comes from, counted from 1, unless it is the only one.
  void AddPosition(CRkException& error, int position) const;
  // Lets an item that is an inline group read from `current` on; returns the first child that it left, `current` when
  // it is not there.
  static CXmlElement* ReadGroup(CXmlObjectBase* item, CXmlElement* parent, CXmlElement* current,
                                const CSerializationContext& context, bool isOptionalChoice);
  // Asks for the memory of items that a walk is about to reach: `kItemSize` bytes of each and, unless told otherwise,
  // what belongs to it. It runs `kAhead` nodes ahead of the walk.
  template <std::size_t kItemSize, int kAhead = 2, bool kWithParts = true>
  class CFetchAhead {
   public:
    explicit CFetchAhead(const CNode* first) noexcept : m_node(first) {
      for (int i = 0; i < kAhead; ++i) Advance();
    }
    // To be called once for each node.
    [[gnu::always_inline]] void Advance() noexcept {
      if (m_node == nullptr) return;
      const CXmlObjectBase* const item = m_node->GetItem();
      m_node = m_node->GetNext();
      __builtin_prefetch(m_node);
      PrefetchObject(item, kItemSize, kWithParts && m_node != nullptr ? m_node->GetItem() : nullptr);
    }

   private:
    const CNode* m_node;
  };

  // A walk over the items, each held until the next one, while they write themselves: code of the application that runs
  // meanwhile may change the collection. An item that it removes is not reached, one that it adds behind is.
  struct Walk {
    // Not inline: g++ warns of the local address that the collection keeps until the destructor takes it out.
    [[gnu::noinline]] explicit Walk(const CXmlCollection& walked) noexcept;
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk() { collection.m_walk = outer; }

    const CNode* next;
    const CXmlCollection& collection;
    Walk* const outer;
  };
  template <std::size_t kItemSize, int kAhead = 2, bool kWithParts = true>
  class CItemWalk : private Walk {
   public:
    explicit CItemWalk(const CXmlCollection& walked) noexcept : Walk(walked), m_fetch(next) {}
    // To the first item or the next one; false at the end.
    bool Advance() {
      if (next == nullptr) return false;
      m_item = next->m_item;
      next = next->m_next;
      m_fetch.Advance();
      return true;
    }
    // May be null.
    const CXmlObjectBase* GetItem() const noexcept { return m_item; }

   private:
    // May run over nodes that are out of use, which lie where they were.
    CFetchAhead<kItemSize, kAhead, kWithParts> m_fetch;
    CSmartPtr<CXmlObjectBase> m_item;
  };

 private:
  struct Removal;

  CNode* TakeNode();
  RKXML_HIDDEN void AddNodes();
  inline void LinkBefore(CNode* next, CXmlObjectBase* item);
  void InsertBefore(CNode* next, CXmlObjectBase* item);  // and tells it
  void Unlink(CNode* node);

  CNode m_firstNode;                               // most collections hold one item or none,
  std::vector<std::unique_ptr<CNode[]>> m_blocks;  // others have blocks of nodes, which grow
  CNode* m_free = &m_firstNode;                    // the nodes not in use, through m_next
  CNode* m_head = nullptr;
  CNode* m_tail = nullptr;
  mutable CNode* m_lastNode = nullptr;  // the node that GetNodeAtIndex reached last, and its index
  mutable int m_lastIndex = 0;
  int m_count = 0;
  Removal* m_removal = nullptr;    // the innermost removal under way
  mutable Walk* m_walk = nullptr;  // the innermost walk
};

}  // namespace RkXmlLib16

#endif

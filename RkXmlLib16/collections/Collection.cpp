#include "RkXmlLib16/collections/Collection.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <memory>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/context/internal/ErrorSession.h"

namespace RkXmlLib16 {

namespace {

constexpr std::size_t kUsualItemSize = 128;
constexpr int kAheadOfShortSteps = 8;
constexpr std::size_t kLargestBlock = 7;  // of that number on the blocks grow no more

}  // namespace

// A removal whose listeners are being told; its node becomes null when one of them removes it first.
struct CXmlCollection::Removal {
  Removal(CNode* toRemove, Removal*& innermost) : node(toRemove), outer(innermost), head(innermost) { head = this; }
  Removal(const Removal&) = delete;
  Removal& operator=(const Removal&) = delete;
  ~Removal() { head = outer; }

  CNode* node;
  Removal* const outer;
  Removal*& head;
};

CXmlCollection::Walk::Walk(const CXmlCollection& walked) noexcept
    : next(walked.m_head), collection(walked), outer(walked.m_walk) {
  walked.m_walk = this;
}

CXmlCollection::CXmlCollection() = default;

CXmlCollection::CXmlCollection(const wchar_t* name, const wchar_t* namespaceUri, int minOccurs, int maxOccurs)
    : CXmlCollectionBase(name, namespaceUri, minOccurs, maxOccurs) {}

CXmlCollection::~CXmlCollection() {
  CFetchAhead<kUsualItemSize> fetch(m_head);
  while (m_head != nullptr) {
    fetch.Advance();
    const CSmartPtr<CXmlObjectBase> item = std::move(m_head->m_item);
    m_head = m_head->m_next;
  }
}

void CXmlCollection::AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& context) const {
  for (CItemWalk<kUsualItemSize, kAheadOfShortSteps, /*kWithParts=*/false> walk(*this); walk.Advance();)
    if (walk.GetItem() != nullptr) walk.GetItem()->GetBase()->AttributesToXml_Int(writer, context);
}

bool CXmlCollection::IsToBeWritten(const CXmlObjectBase* item, const CSerializationContext& context) const {
  if (item != nullptr || !context.GetWellFormedOutput()) return item != nullptr;
  int index = 0;  // items are written in order, so the first null one is meant
  for (const CNode* node = m_head; node != nullptr && node->m_item != nullptr; node = node->m_next) ++index;
  throw CRkValidationException(
      FormatString(L"The item %d of the collection [%ls] is NULL", index, GetElementNameRef().c_str()), L"");
}

int CXmlCollection::GetCount() const { return m_count; }

void CXmlCollection::Clear() {
  const auto held = HoldForListeners();
  while (GetCount() > 0) Remove(0);
}

void CXmlCollection::Remove(int index) { RemoveNode(GetNodeAtIndex(index)); }

void CXmlCollection::AppendItem(CXmlObjectBase* item) {
  if (!HasListeners()) return LinkBefore(nullptr, item);
  const auto held = HoldForListeners();
  FireOnCollectionAdd(item);
  InsertBefore(nullptr, item);
}

void CXmlCollection::PrependItem(CXmlObjectBase* item) {
  const auto held = HoldForListeners();
  FireOnCollectionAdd(item);
  InsertBefore(m_head, item);
}

void CXmlCollection::AddItemAt(int index, CXmlObjectBase* item) {
  const auto held = HoldForListeners();
  const auto check = [this, index] {
    if (index < 0 || index > m_count) throw CRkInvalidParamException(L"Index out of range");
  };
  check();
  FireOnCollectionAdd(item);
  check();  // a listener may have removed items
  InsertBefore(index == m_count ? nullptr : GetNodeAtIndex(index), item);
}

void CXmlCollection::AddAfterItem(const CXmlObjectBase* existing, CXmlObjectBase* item) {
  const auto held = HoldForListeners();
  FireOnCollectionAdd(item);
  InsertBefore(existing == nullptr ? m_head : GetNodeForItem(existing)->m_next, item);
}

void CXmlCollection::AddBeforeItem(const CXmlObjectBase* existing, CXmlObjectBase* item) {
  const auto held = HoldForListeners();
  FireOnCollectionAdd(item);
  InsertBefore(existing == nullptr ? nullptr : GetNodeForItem(existing), item);
}

CXmlCollection::CNode* CXmlCollection::GetNodeAtIndex(int index) const {
  if (index < 0 || index >= m_count) {
    throw CRkInvalidParamException(FormatString(L"Index %d is out of range, use 0 - %d", index, m_count));
  }
  CNode* node = m_head;
  int at = 0;
  if (m_count - 1 - index < index) {
    node = m_tail;
    at = m_count - 1;
  }
  if (m_lastNode != nullptr && std::abs(m_lastIndex - index) < std::abs(at - index)) {
    node = m_lastNode;
    at = m_lastIndex;
  }
  for (; at < index; ++at) node = node->m_next;
  for (; at > index; --at) node = node->m_previous;
  m_lastNode = node;
  m_lastIndex = index;
  return node;
}

CXmlCollection::CNode* CXmlCollection::GetNodeForItem(const CXmlObjectBase* item) const {
  const CXmlObjectBase* const wanted = item != nullptr ? item->GetBase() : nullptr;
  for (CNode* node = m_head; node != nullptr; node = node->m_next) {
    if ((node->m_item != nullptr ? node->m_item->GetBase() : nullptr) == wanted) return node;
  }
  throw CRkInvalidParamException(L"The object was not found in the collection");
}

void CXmlCollection::RemoveNode(CNode* node) {
  const auto held = HoldForListeners();
  if (node == nullptr) throw CRkInvalidParamException(L"The object was not found in the collection");
  {
    const Removal removal(node, m_removal);
    FireOnCollectionRemove(-1);
    if (removal.node == nullptr) return;
  }
  Unlink(node);
  FireOnCollectionRemoveComplete(-1);
  FireOnCollectionChange();
}

void CXmlCollection::AddNodes() {
  const std::size_t size = std::size_t{2} << std::min(m_blocks.size(), kLargestBlock);
  std::unique_ptr<CNode[]> block(new CNode[size]);
  for (std::size_t i = 0; i + 1 < size; ++i) block[i].m_next = &block[i + 1];
  m_blocks.push_back(std::move(block));
  m_free = m_blocks.back().get();
}

inline CXmlCollection::CNode* CXmlCollection::TakeNode() {
  if (m_free == nullptr) AddNodes();
  CNode* const node = m_free;
  m_free = node->m_next;
  return node;
}

inline void CXmlCollection::LinkBefore(CNode* next, CXmlObjectBase* item) {
  if (m_count == INT_MAX) throw CRkException(L"The collection is full");
  CNode* const node = TakeNode();
  node->m_item = item;
  node->m_next = next;
  node->m_previous = next != nullptr ? next->m_previous : m_tail;
  (node->m_previous != nullptr ? node->m_previous->m_next : m_head) = node;
  (next != nullptr ? next->m_previous : m_tail) = node;
  ++m_count;
  if (m_lastNode != nullptr && next != nullptr) {
    // The new node stands in place of the remembered one, before it, or nobody knows where.
    if (next == m_lastNode)
      m_lastNode = node;
    else if (node == m_head)
      ++m_lastIndex;
    else
      m_lastNode = nullptr;
  }
}

void CXmlCollection::InsertBefore(CNode* next, CXmlObjectBase* item) {
  LinkBefore(next, item);
  if (!HasListeners()) return;
  const CSmartPtr<CXmlObjectBase> held(item);  // one of them may take the item out again
  FireOnCollectionAddComplete(item);
  FireOnCollectionChange();
}

void CXmlCollection::Unlink(CNode* node) {
  const CSmartPtr<CXmlObjectBase> removed = std::move(node->m_item);
  for (Walk* walk = m_walk; walk != nullptr; walk = walk->outer) {
    if (walk->next == node) walk->next = node->m_next;
  }
  for (Removal* removal = m_removal; removal != nullptr; removal = removal->outer) {
    if (removal->node == node) removal->node = nullptr;
  }
  if (node == m_lastNode) {
    m_lastNode = node->m_next != nullptr ? node->m_next : node->m_previous;
    if (node->m_next == nullptr) --m_lastIndex;
  } else if (node == m_head) {
    --m_lastIndex;
  } else if (node != m_tail) {
    m_lastNode = nullptr;
  }
  (node->m_previous != nullptr ? node->m_previous->m_next : m_head) = node->m_next;
  (node->m_next != nullptr ? node->m_next->m_previous : m_tail) = node->m_previous;
  --m_count;
  node->m_next = m_free;
  m_free = node;
}

void CXmlCollection::AddPosition(CRkException& error, int position) const {
  std::wstring path = error.GetLocation().GetPath();
  if (GetCount() < 2 || path.empty()) return;
  path.insert(std::min(path.find(L'/', 1), path.size()), L'[' + std::to_wstring(position) + L']');
  error.SetLocation(CRkLocation(std::move(path)));
}

CXmlElement* CXmlCollection::ReadGroup(CXmlObjectBase* item, CXmlElement* parent, CXmlElement* current,
                                       const CSerializationContext& context, bool isOptionalChoice) {
  CErrorSession::Attempt attempt(context);
  CXmlElement* const next = item->FromXml_Int(parent, current, context, isOptionalChoice);
  if (next != current) attempt.Keep();
  return next;
}

}  // namespace RkXmlLib16

#include "RkXmlLib16/collections/CollectionBase.h"

#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16 {

// One notification on its way through the listeners; RemoveEventListener keeps its position right.
struct CXmlCollectionBase::Walk {
  explicit Walk(Walk*& innermost) : outer(innermost), head(innermost) { head = this; }
  Walk(const Walk&) = delete;
  Walk& operator=(const Walk&) = delete;
  ~Walk() { head = outer; }

  std::size_t next = 0;
  Walk* const outer;
  Walk*& head;
};

CXmlCollectionBase::CXmlCollectionBase() = default;

CXmlCollectionBase::CXmlCollectionBase(const wchar_t* name, const wchar_t* namespaceUri, int minOccurs, int maxOccurs)
    : m_minOccurs(minOccurs), m_maxOccurs(maxOccurs) {
  m_namespaceUri.Set(namespaceUri);
  SetElementName(name);
}

CXmlCollectionBase::~CXmlCollectionBase() = default;

CXmlObjectBase* CXmlCollectionBase::GetBase() { return this; }

const wchar_t* CXmlCollectionBase::GetTargetNamespace() const {
  throw CRkException(
      L"CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic error)");
}

const wchar_t* CXmlCollectionBase::GetNamespace() const { return m_namespaceUri.Get().c_str(); }

CXmlCollectionBase::Limit CXmlCollectionBase::CheckCount(const CSerializationContext& context) const {
  if (context.GetIgnoreInvalidCollectionCounts()) return Limit::Kept;
  const int count = GetCount();
  if (m_maxOccurs != -1 && count > m_maxOccurs) return Limit::AboveMaximum;
  return count >= m_minOccurs ? Limit::Kept : Limit::BelowMinimum;
}

void CXmlCollectionBase::ValidateCount(const CSerializationContext& context) const {
  switch (CheckCount(context)) {
    case Limit::Kept:
      return;
    case Limit::AboveMaximum:
      throw CRkValidationException(
          FormatString(L"The Maximum number of [%ls] elements allowed in this collection is %d",
                       GetElementNameRef().c_str(), m_maxOccurs),
          L"");
    case Limit::BelowMinimum:
      throw CRkValidationException(
          FormatString(L"The Minimum number of [%ls] elements allowed in this collection is %d",
                       GetElementNameRef().c_str(), m_minOccurs),
          L"");
  }
}

bool CXmlCollectionBase::IsValidCount(const CSerializationContext& context) const {
  return CheckCount(context) == Limit::Kept;
}

void CXmlCollectionBase::AddEventListener(IEventSink* sink) {
  if (sink == nullptr) return;
  if (m_listeners == nullptr) m_listeners = std::make_unique<Listeners>();
  m_listeners->sinks.push_back(sink);
}

void CXmlCollectionBase::RemoveEventListener(IEventSink* sink) {
  if (m_listeners == nullptr) return;
  std::vector<IEventSink*>& sinks = m_listeners->sinks;
  for (std::size_t i = sinks.size(); i-- > 0;) {
    if (sinks[i] != sink) continue;
    sinks.erase(sinks.begin() + static_cast<std::ptrdiff_t>(i));
    for (Walk* walk = m_listeners->walk; walk != nullptr; walk = walk->outer) {
      if (i < walk->next) --walk->next;
    }
  }
}

template <class Notify>
void CXmlCollectionBase::ForEachListener(Notify&& notify) {
  if (!HasListeners()) return;
  const auto held = HoldForListeners();
  Walk walk(m_listeners->walk);
  while (walk.next < m_listeners->sinks.size()) notify(m_listeners->sinks[walk.next++]);
}

void CXmlCollectionBase::FireOnCollectionChange() {
  ForEachListener([this](IEventSink* sink) { FireOnCollectionChangeEvent(sink, this); });
}

void CXmlCollectionBase::FireOnCollectionAdd(void* item) {
  ForEachListener([this, item](IEventSink* sink) { FireOnCollectionAddEvent(sink, this, item); });
}

void CXmlCollectionBase::FireOnCollectionAddComplete(void* item) {
  ForEachListener([this, item](IEventSink* sink) { FireOnCollectionAddCompleteEvent(sink, this, item); });
}

void CXmlCollectionBase::FireOnCollectionRemove(int index) {
  ForEachListener([this, index](IEventSink* sink) { FireOnCollectionRemoveEvent(sink, this, index); });
}

void CXmlCollectionBase::FireOnCollectionRemoveComplete(int index) {
  ForEachListener([this, index](IEventSink* sink) { FireOnCollectionRemoveCompleteEvent(sink, this, index); });
}

void CXmlObjectBase::FireOnCollectionChangeEvent(IEventSink* sink, CXmlCollectionBase* collection) {
  sink->OnEvent(collection->GetBase(), IEventSink::MsgType_CollectionChanged, nullptr);
}

void CXmlObjectBase::FireOnCollectionAddEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item) {
  sink->OnEvent(collection->GetBase(), IEventSink::MsgType_ItemAdding, item);
}

void CXmlObjectBase::FireOnCollectionAddCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item) {
  sink->OnEvent(collection->GetBase(), IEventSink::MsgType_ItemAdded, item);
}

void CXmlObjectBase::FireOnCollectionRemoveEvent(IEventSink* sink, CXmlCollectionBase* collection, int index) {
  sink->OnEvent(collection->GetBase(), IEventSink::MsgType_ItemRemoving, index == -1 ? nullptr : &index);
}

void CXmlObjectBase::FireOnCollectionRemoveCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, int index) {
  sink->OnEvent(collection->GetBase(), IEventSink::MsgType_ItemRemoved, index == -1 ? nullptr : &index);
}

void RkVariant::SetXmlCollection(CXmlCollectionBase* collection) {
  SetReference(kXmlCollection, collection, collection);
}

CSmartPtr<CXmlCollectionBase> RkVariant::GetXmlCollection() const { return PeekXmlCollection(); }

CSmartPtr<CXmlCollectionBase> RkVariant::TakeXmlCollection() noexcept {
  CSmartPtr<CXmlCollectionBase> collection;
  if (m_type == kXmlCollection) collection.Attach(std::exchange(m_slot.reference, Reference{}).collection);
  return collection;
}

}  // namespace RkXmlLib16

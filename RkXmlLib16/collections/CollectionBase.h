#ifndef RKXMLLIB16_COLLECTIONS_COLLECTIONBASE_H
#define RKXMLLIB16_COLLECTIONS_COLLECTIONBASE_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/object/XmlObjectBase.h"

namespace RkXmlLib16 {

// What all collections of repeated elements share: name and namespace of the items, occurrence limits, listeners.
//
// The limits are enforced when a document is written and when one has been read, never while items are added or
// removed. Listeners may leave, join, change the collection or release it during a notification; one that leaves is not
// called again, one that joins is called from then on. Destroying a collection notifies nobody.
class RKXML_EXPORT CXmlCollectionBase : public CXmlObjectBase {
 public:
  CXmlCollectionBase();
  // `maxOccurs` -1 means unbounded.
  CXmlCollectionBase(const wchar_t* name, const wchar_t* namespaceUri, int minOccurs, int maxOccurs);
  ~CXmlCollectionBase() override;

  CXmlObjectBase* GetBase() override;
  using CXmlObjectBase::GetBase;
  // A collection has no element of its own: throws CRkException
  // "CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic error)".
  const wchar_t* GetTargetNamespace() const override;
  // The namespace URI of the items.
  const wchar_t* GetNamespace() const override;

  virtual int GetCount() const = 0;
  virtual void Clear() = 0;
  // Throws CRkInvalidParamException "Index %d is out of range, use 0 - %d".
  virtual void Remove(int index) = 0;
  // Throws CRkValidationException "The Maximum number of [%ls] elements allowed in this collection is %d" or
  // "The Minimum number of [%ls] elements allowed in this collection is %d", unless the context ignores the limits.
  virtual void ValidateCount(const CSerializationContext& context) const;
  // The same as an answer.
  virtual bool IsValidCount(const CSerializationContext& context) const;

  int GetMinOccurs() const noexcept { return m_minOccurs; }
  int GetMaxOccurs() const noexcept { return m_maxOccurs; }

  // The sink is kept; null is ignored. One that is added twice is told twice; removing takes out every occurrence.
  void AddEventListener(IEventSink* sink);
  void RemoveEventListener(IEventSink* sink);
  bool HasListeners() const noexcept { return m_listeners != nullptr && !m_listeners->sinks.empty(); }

  // Tell every listener, in the order in which they joined.
  void FireOnCollectionChange();
  void FireOnCollectionAdd(void* item);
  void FireOnCollectionAddComplete(void* item);
  void FireOnCollectionRemove(int index);
  void FireOnCollectionRemoveComplete(int index);

 protected:
  // Holds the collection, where it is held by counted references at all, while its listeners are told of a change.
  CSmartPtr<CXmlCollectionBase> HoldForListeners() {
    return HasListeners() && GetRefCount() > 0 ? CSmartPtr<CXmlCollectionBase>(this) : nullptr;
  }

 private:
  enum class Limit { Kept, AboveMaximum, BelowMinimum };
  struct Walk;
  // Most collections have none.
  struct Listeners {
    std::vector<IEventSink*> sinks;
    Walk* walk = nullptr;  // the innermost notification under way
  };

  Limit CheckCount(const CSerializationContext& context) const;
  template <class Notify>
  void ForEachListener(Notify&& notify);

  CSharedName m_namespaceUri;
  std::unique_ptr<Listeners> m_listeners;
  int m_minOccurs = 0;
  int m_maxOccurs = -1;
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_BASE_SMARTPTR_H
#define RKXMLLIB16_BASE_SMARTPTR_H

#include <cstddef>
#include <utility>

namespace RkXmlLib16 {

// A counted reference: AddRef when it takes an object, Release when it drops it. Null is allowed.
// Never let one take an object that lives on the stack: dropping it would delete the object.
//
//   CSmartPtr<COrder> order(new COrder);  // count 1
//   CSmartPtr<CXmlObjectBase> base = order;  // count 2
template <class T>
class CSmartPtr {
 public:
  CSmartPtr() noexcept = default;
  CSmartPtr(std::nullptr_t) noexcept {}
  CSmartPtr(T* object) : m_object(object) {
    if (m_object != nullptr) m_object->AddRef();
  }
  CSmartPtr(const CSmartPtr& other) : CSmartPtr(other.m_object) {}
  CSmartPtr(CSmartPtr&& other) noexcept : m_object(other.Detach()) {}
  template <class U>
  CSmartPtr(const CSmartPtr<U>& other) : CSmartPtr(static_cast<T*>(static_cast<U*>(other))) {}
  template <class U>
  CSmartPtr(CSmartPtr<U>&& other) noexcept : m_object(other.Detach()) {}
  ~CSmartPtr() {
    if (m_object != nullptr) m_object->Release();
  }

  CSmartPtr& operator=(CSmartPtr other) noexcept {
    std::swap(m_object, other.m_object);
    return *this;
  }

  T* operator->() const noexcept { return m_object; }
  T& operator*() const noexcept { return *m_object; }
  operator T*() const noexcept { return m_object; }
  T* Get() const noexcept { return m_object; }

  // Hands the reference to the caller, who must Release it.
  T* Detach() noexcept { return std::exchange(m_object, nullptr); }
  // Takes over a reference that the caller holds.
  void Attach(T* object) noexcept {
    T* old = std::exchange(m_object, object);
    if (old != nullptr) old->Release();
  }

 private:
  T* m_object = nullptr;
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_BASE_LAZYPART_H
#define RKXMLLIB16_BASE_LAZYPART_H

#include <atomic>
#include <memory>
#include <utility>

namespace RkXmlLib16 {

// A part that is made by its first use and shared with the copies of its owner. Threads may ask for it together; no
// lock is taken, so that a process may fork meanwhile.
template <class T>
class CLazyPart {
 public:
  CLazyPart() noexcept = default;
  CLazyPart(const CLazyPart& other) : m_part(Copy(other)) {}
  CLazyPart& operator=(const CLazyPart& other) {
    if (this != &other) delete m_part.exchange(Copy(other), std::memory_order_acq_rel);
    return *this;
  }
  ~CLazyPart() { delete m_part.load(std::memory_order_acquire); }

  // Null before the first use.
  T* Peek() const noexcept {
    const Part* const part = m_part.load(std::memory_order_acquire);
    return part != nullptr ? part->get() : nullptr;
  }
  // `make` gives the std::shared_ptr<T> of the first use. Of threads that call it together one wins.
  template <class Make>
  T* Get(Make&& make) const {
    if (T* const made = Peek()) return made;
    auto own = std::make_unique<const Part>(std::forward<Make>(make)());
    const Part* none = nullptr;
    if (!m_part.compare_exchange_strong(none, own.get(), std::memory_order_acq_rel)) return none->get();
    return own.release()->get();
  }

 private:
  using Part = std::shared_ptr<T>;

  static const Part* Copy(const CLazyPart& other) {
    const Part* const part = other.m_part.load(std::memory_order_acquire);
    return part != nullptr ? std::make_unique<const Part>(*part).release() : nullptr;
  }

  mutable std::atomic<const Part*> m_part{nullptr};
};

}  // namespace RkXmlLib16

#endif

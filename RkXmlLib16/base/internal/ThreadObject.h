#ifndef RKXMLLIB16_BASE_INTERNAL_THREADOBJECT_H
#define RKXMLLIB16_BASE_INTERNAL_THREADOBJECT_H

#include <memory>

#include "RkXmlLib16/base/Likely.h"

namespace RkXmlLib16 {

// The one T of each thread, made by its first use and destroyed when the thread ends. Everything that the library keeps
// for a thread and that has a destructor goes through it.
template <class T>
class CThreadObject {
 public:
  // Null when the thread has ended it already: static objects live longer. Throws std::bad_alloc and what T's
  // constructor throws.
  static T* Get() {
    if (RKXML_UNLIKELY(t_object == nullptr) && !t_isGone) Make();
    return t_object;
  }

 private:
  struct Holder {
    std::unique_ptr<T> object = std::make_unique<T>();
    ~Holder() {
      t_object = nullptr;
      t_isGone = true;
    }
  };
  static void Make() {
    static thread_local Holder holder;
    t_object = holder.object.get();
  }

  static inline thread_local T* t_object = nullptr;
  static inline thread_local bool t_isGone = false;
};

}  // namespace RkXmlLib16

#endif

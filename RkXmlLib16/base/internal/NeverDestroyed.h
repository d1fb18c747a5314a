#ifndef RKXMLLIB16_BASE_INTERNAL_NEVERDESTROYED_H
#define RKXMLLIB16_BASE_INTERNAL_NEVERDESTROYED_H

#include <new>
#include <utility>

namespace RkXmlLib16 {

// A static object of the library. It is not destroyed, because threads and the destructors of the application's static
// objects may use the library until the process is gone.
template <class T>
class CNeverDestroyed {
 public:
  template <class... Arguments>
  explicit CNeverDestroyed(Arguments&&... arguments) {
    ::new (m_storage) T(std::forward<Arguments>(arguments)...);
  }
  CNeverDestroyed(const CNeverDestroyed&) = delete;
  CNeverDestroyed& operator=(const CNeverDestroyed&) = delete;

  const T& Get() const noexcept { return *std::launder(reinterpret_cast<const T*>(m_storage)); }

 private:
  alignas(T) unsigned char m_storage[sizeof(T)];
};

}  // namespace RkXmlLib16

#endif

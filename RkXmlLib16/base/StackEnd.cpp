#include <pthread.h>

#include <algorithm>

#include "RkXmlLib16/base/internal/StackEnd.h"

namespace RkXmlLib16 {

void CStackEnd::Measure() noexcept {
  t_range = {1, 1};
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return;
  void* lowest = nullptr;
  std::size_t size = 0, guard = 0;
  const bool isKnown = pthread_attr_getstack(&attributes, &lowest, &size) == 0 &&
                       pthread_attr_getguardsize(&attributes, &guard) == 0 && guard < size;
  pthread_attr_destroy(&attributes);
  if (!isKnown) return;
  size -= guard;
  const auto end = reinterpret_cast<std::uintptr_t>(lowest) + guard;
  const std::size_t reserve = std::min(kReserve, size / 4);
  t_range = {end + (8 * reserve + size) / 9, end};  // left == reserve + (size - left) / 8
}

}  // namespace RkXmlLib16

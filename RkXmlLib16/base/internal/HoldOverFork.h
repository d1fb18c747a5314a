#ifndef RKXMLLIB16_BASE_INTERNAL_HOLDOVERFORK_H
#define RKXMLLIB16_BASE_INTERNAL_HOLDOVERFORK_H

#include <pthread.h>

#include <mutex>

namespace RkXmlLib16 {

// From now on forks wait for the lock, so that the child finds it unlocked and what it guards whole. No thread may take
// another such lock while it holds this one.
template <std::mutex& kLock>
bool HoldOverFork() noexcept {
  return pthread_atfork([] { kLock.lock(); }, [] { kLock.unlock(); }, [] { kLock.unlock(); }) == 0;
}

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_BASE_CRITICALSECTION_H
#define RKXMLLIB16_BASE_CRITICALSECTION_H

#include <pthread.h>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// A mutex with default attributes (not recursive). Works with std::lock_guard.
class RKXML_EXPORT CRKCriticalSection {
 public:
  CRKCriticalSection();
  CRKCriticalSection(const CRKCriticalSection&) = delete;
  CRKCriticalSection& operator=(const CRKCriticalSection&) = delete;
  virtual ~CRKCriticalSection();

  void Enter() { pthread_mutex_lock(&m_mutex); }
  void Leave() { pthread_mutex_unlock(&m_mutex); }
  void lock() { Enter(); }
  void unlock() { Leave(); }

 private:
  pthread_mutex_t m_mutex;
};

}  // namespace RkXmlLib16

#endif

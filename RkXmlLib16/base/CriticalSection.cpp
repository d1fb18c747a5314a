#include "RkXmlLib16/base/CriticalSection.h"

namespace RkXmlLib16 {

CRKCriticalSection::CRKCriticalSection() { pthread_mutex_init(&m_mutex, nullptr); }
CRKCriticalSection::~CRKCriticalSection() { pthread_mutex_destroy(&m_mutex); }

}  // namespace RkXmlLib16

#include "RkXmlLib16/core/ReadLimits.h"

#include "RkXmlLib16/core/Exception.h"
#include "RkXmlLib16/support/Format.h"

namespace RkXmlLib16 {

void CReadLimits::ThrowExceeded(const wchar_t* name, unsigned long value, const std::wstring& path) {
  throw CRkException(FormatString(L"Limit exceeded: %ls %lu.", name, value), path);
}

}  // namespace RkXmlLib16

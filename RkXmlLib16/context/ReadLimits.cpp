#include "RkXmlLib16/context/ReadLimits.h"

#include <algorithm>
#include <limits>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"

namespace RkXmlLib16 {

unsigned long CReadLimits::GetExpansionLimit(std::size_t length) const noexcept {
  constexpr unsigned long kNoLimit = std::numeric_limits<unsigned long>::max();
  if (m_maxExpansionRatio == 0 || length > kNoLimit / m_maxExpansionRatio) return kNoLimit;
  return std::max(m_expansionRatioFrom, m_maxExpansionRatio * length);
}

void CReadLimits::ThrowExceeded(const wchar_t* name, unsigned long value, const std::wstring& path) {
  CRkException failure(FormatString(L"Limit exceeded: %ls %lu.", name, value), path);
  failure.SetEndsReading();
  throw failure;
}

}  // namespace RkXmlLib16

#include "RkXmlLib16/facets/PrimitiveRestrictions.h"

namespace RkXmlLib16 {

namespace {

std::wstring TextOf(const wchar_t* text) { return text == nullptr ? std::wstring() : std::wstring(text); }

}  // namespace

CPrimitiveRestrictions::CPrimitiveRestrictions() = default;

CPrimitiveRestrictions::CPrimitiveRestrictions(const wchar_t* pattern, long minLength, long maxLength,
                                               const wchar_t* minInclusive, const wchar_t* maxInclusive,
                                               const wchar_t* minExclusive, const wchar_t* maxExclusive, long length,
                                               long totalDigits, long fractionDigits)
    : m_pattern(TextOf(pattern)),
      m_minLength(minLength),
      m_maxLength(maxLength),
      m_minInclusive(TextOf(minInclusive)),
      m_maxInclusive(TextOf(maxInclusive)),
      m_minExclusive(TextOf(minExclusive)),
      m_maxExclusive(TextOf(maxExclusive)),
      m_length(length),
      m_totalDigits(totalDigits),
      m_fractionDigits(fractionDigits) {
  m_isEmpty = m_pattern.empty() && m_minLength < 0 && m_maxLength < 0 && m_minInclusive.empty() &&
              m_maxInclusive.empty() && m_minExclusive.empty() && m_maxExclusive.empty() && m_length < 0 &&
              m_totalDigits < 0 && m_fractionDigits < 0;
}

CPrimitiveRestrictions::CPrimitiveRestrictions(const CPrimitiveRestrictions& other) = default;
CPrimitiveRestrictions& CPrimitiveRestrictions::operator=(const CPrimitiveRestrictions& other) = default;
CPrimitiveRestrictions::~CPrimitiveRestrictions() = default;

CPrimitiveRestrictions::Derived::~Derived() = default;

void CPrimitiveRestrictions::KeepDerived(std::unique_ptr<const Derived> derived) const noexcept {
  const Derived* none = nullptr;
  if (m_derived.value.compare_exchange_strong(none, derived.get(), std::memory_order_acq_rel))
    static_cast<void>(derived.release());
}

}  // namespace RkXmlLib16

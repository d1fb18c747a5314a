#ifndef RKXMLLIB16_FACETS_PRIMITIVERESTRICTIONS_H
#define RKXMLLIB16_FACETS_PRIMITIVERESTRICTIONS_H

#include <atomic>
#include <memory>
#include <string>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// The facets of a primitive member. An empty text or a negative number means that a facet is not set. Bounds are kept
// in their lexical form and read as the type of the value that they restrict.
class RKXML_EXPORT CPrimitiveRestrictions {
 public:
  // No facet set.
  CPrimitiveRestrictions();
  // Null texts count as empty.
  CPrimitiveRestrictions(const wchar_t* pattern, long minLength, long maxLength, const wchar_t* minInclusive,
                         const wchar_t* maxInclusive, const wchar_t* minExclusive, const wchar_t* maxExclusive,
                         long length, long totalDigits, long fractionDigits);
  CPrimitiveRestrictions(const CPrimitiveRestrictions& other);
  CPrimitiveRestrictions& operator=(const CPrimitiveRestrictions& other);
  virtual ~CPrimitiveRestrictions();

  // An XSD regular expression.
  const std::wstring& GetPattern() const noexcept { return m_pattern; }
  // Lengths count characters of a text, a surrogate pair as one, and bytes of a binary value.
  long GetMinLength() const noexcept { return m_minLength; }
  long GetMaxLength() const noexcept { return m_maxLength; }
  const std::wstring& GetMinInclusive() const noexcept { return m_minInclusive; }
  const std::wstring& GetMaxInclusive() const noexcept { return m_maxInclusive; }
  const std::wstring& GetMinExclusive() const noexcept { return m_minExclusive; }
  const std::wstring& GetMaxExclusive() const noexcept { return m_maxExclusive; }
  long GetLength() const noexcept { return m_length; }
  long GetTotalDigits() const noexcept { return m_totalDigits; }
  long GetFractionDigits() const noexcept { return m_fractionDigits; }
  // True when no facet is set, so that every value passes.
  bool IsEmpty() const noexcept { return m_isEmpty; }

  // What a check has worked out from the facets, bounds of one type or a compiled pattern, kept for the next check.
  // Facets are shared by threads, so the first one kept stays.
  class RKXML_EXPORT Derived {
   public:
    explicit Derived(int itemType) noexcept : m_itemType(itemType) {}
    virtual ~Derived();
    const int m_itemType;  // the kind of value that it is for
  };
  const Derived* GetDerived() const noexcept { return m_derived.value.load(std::memory_order_acquire); }
  void KeepDerived(std::unique_ptr<const Derived> derived) const noexcept;

 private:
  std::wstring m_pattern;
  long m_minLength = -1;
  long m_maxLength = -1;
  std::wstring m_minInclusive;
  std::wstring m_maxInclusive;
  std::wstring m_minExclusive;
  std::wstring m_maxExclusive;
  long m_length = -1;
  long m_totalDigits = -1;
  long m_fractionDigits = -1;
  bool m_isEmpty = true;

  // Not copied with the facets.
  struct DerivedSlot {
    DerivedSlot() noexcept = default;
    DerivedSlot(const DerivedSlot&) noexcept {}
    DerivedSlot& operator=(const DerivedSlot&) noexcept {
      delete value.exchange(nullptr);
      return *this;
    }
    ~DerivedSlot() { delete value.load(); }
    std::atomic<const Derived*> value{nullptr};
  };
  mutable DerivedSlot m_derived;
};

}  // namespace RkXmlLib16

#endif

#include "RkXmlLib16/facets/FacetChecks.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/base/internal/CodePoints.h"
#include "RkXmlLib16/facets/RegEx.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/types/BinaryData.h"
#include "RkXmlLib16/types/Conversions.h"

namespace RkXmlLib16 {

namespace {

template <class Value>
constexpr bool kIsDateOrDuration = std::is_same_v<Value, CDateTime> || std::is_same_v<Value, CDateTimeSpan>;

template <class Value>
bool IsAtMost(const Value& a, const Value& b) {
  if constexpr (kIsDateOrDuration<Value>) {
    const CompareResult order = a.CompareTo(b);
    return order == CompareResult_Equal || order == CompareResult_Less;
  } else {
    return a <= b;
  }
}

template <ItemType kItem>
std::wstring Print(const XsdValue<kItem>& value) {
  std::wstring text;
  CConversions::AppendTo<kItem>(text, value);
  return text;
}

// The text between the brackets of the message, and what follows them.
template <ItemType kItem>
std::wstring InvalidMessage(const wchar_t* name, const XsdValue<kItem>& value) {
  using Value = XsdValue<kItem>;
  if constexpr (std::is_floating_point_v<Value>)
    return FormatString(L"Invalid Value for %ls [%f]", name, static_cast<double>(value));
  else if constexpr (kItem == ItemType_unsignedInt)
    return FormatString(L"Invalid Value for %ls [%lu]", name, value);
  else if constexpr (std::is_integral_v<Value> && kItem != ItemType_long && kItem != ItemType_unsignedLong)
    return FormatString(L"Invalid Value for %ls [%ld]", name, static_cast<long>(value));
  else
    return FormatString(L"Invalid Value for %ls [%ls].", name, Print<kItem>(value).c_str());
}

// The part of a value whose rank is in the order of the values.
const CBigInteger& Ranked(const CDecimal& value) { return value.GetIntegerPart(); }
const CBigInteger& Ranked(const CBigInteger& value) { return value; }
template <ItemType kItem>
constexpr bool kIsRanked = kItem == ItemType_decimal || kItem == ItemType_integer;

// The bounds as values. A value that breaks one bound is never compared with a later one, so that a later bound which
// cannot be read goes unnoticed; they are kept only when all can be read.
template <ItemType kItem>
struct Bounds : CPrimitiveRestrictions::Derived {
  using Value = XsdValue<kItem>;
  explicit Bounds(const CPrimitiveRestrictions& facets)
      : Derived(kItem),
        minInclusive(Read(facets.GetMinInclusive())),
        maxInclusive(Read(facets.GetMaxInclusive())),
        minExclusive(Read(facets.GetMinExclusive())),
        maxExclusive(Read(facets.GetMaxExclusive())) {
    if constexpr (kIsRanked<kItem>) {
      using Limits = std::numeric_limits<std::int64_t>;
      const auto rank = [](const std::optional<Value>& bound, std::int64_t none, std::int64_t unknown) {
        return !bound ? none : Ranked(*bound).HasRank() ? Ranked(*bound).GetRank() : unknown;
      };
      above =
          std::max(rank(minInclusive, Limits::min(), Limits::max()), rank(minExclusive, Limits::min(), Limits::max()));
      below =
          std::min(rank(maxInclusive, Limits::max(), Limits::min()), rank(maxExclusive, Limits::max(), Limits::min()));
    }
  }

  static std::optional<Value> Read(const std::wstring& text) {
    if (text.empty()) return std::nullopt;
    return CConversions::FromText<kItem>(text, CWhitespaceUtils::collapse);
  }

  // Of those that are ranked.
  bool SurelyHold(const Value& value) const {
    if (!Ranked(value).HasRank()) return false;
    const std::int64_t rank = Ranked(value).GetRank();
    return above < rank && rank < below;
  }

  std::int64_t above = 0, below = 0;  // every rank between them is that of a value within the bounds
  std::optional<Value> minInclusive, maxInclusive, minExclusive, maxExclusive;
};

template <ItemType kItem>
bool MeetsBounds(const XsdValue<kItem>& value, const CPrimitiveRestrictions& facets) {
  const auto* const derived = facets.GetDerived();
  if (derived != nullptr && derived->m_itemType == kItem) {
    const auto& bounds = static_cast<const Bounds<kItem>&>(*derived);
    return !(bounds.minInclusive && *bounds.minInclusive > value) &&
           !(bounds.maxInclusive && value > *bounds.maxInclusive) &&
           !(bounds.minExclusive && IsAtMost(value, *bounds.minExclusive)) &&
           !(bounds.maxExclusive && IsAtMost(*bounds.maxExclusive, value));
  }
  const auto bound = [](const std::wstring& text) { return *Bounds<kItem>::Read(text); };
  if (!facets.GetMinInclusive().empty() && bound(facets.GetMinInclusive()) > value) return false;
  if (!facets.GetMaxInclusive().empty() && value > bound(facets.GetMaxInclusive())) return false;
  if (!facets.GetMinExclusive().empty() && IsAtMost(value, bound(facets.GetMinExclusive()))) return false;
  if (!facets.GetMaxExclusive().empty() && IsAtMost(bound(facets.GetMaxExclusive()), value)) return false;
  if (derived == nullptr) facets.KeepDerived(std::make_unique<Bounds<kItem>>(facets));
  return true;
}

// Whether the bounds, as far as they have been read, surely hold.
template <ItemType kItem>
bool SurelyMeetsBounds(const XsdValue<kItem>& value, const CPrimitiveRestrictions& facets) {
  const auto* const derived = facets.GetDerived();
  if constexpr (kIsRanked<kItem>)
    return derived != nullptr && derived->m_itemType == kItem &&
           static_cast<const Bounds<kItem>&>(*derived).SurelyHold(value);
  else
    return false;
}

// The characters of the lexical form.
template <class Value>
long PrintedLength(const Value& value) {
  if constexpr (std::is_integral_v<Value>) {
    auto rest = +value;
    long length = rest < 0 ? 1 : 0;
    do ++length;
    while ((rest /= 10) != 0);
    return length;
  } else {
    return value.IsZero() ? 1 : static_cast<long>(value.GetDigits().size()) + (value.GetSign() < 0 ? 1 : 0);
  }
}

template <ItemType kItem>
bool MeetsDigits(const XsdValue<kItem>& value, const CPrimitiveRestrictions& facets) {
  constexpr bool kCounts = (kItem >= ItemType_byte && kItem <= ItemType_unsignedLong) || kItem == ItemType_integer;
  if constexpr (kCounts) {
    return facets.GetTotalDigits() < 0 || PrintedLength(value) <= facets.GetTotalDigits();
  } else if constexpr (kItem == ItemType_decimal) {
    if (facets.GetTotalDigits() < 0 && facets.GetFractionDigits() < 0) return true;
    const long fraction = CXmlObjectHelper::GetDecimalFractionPartLen(value);
    const long total = CXmlObjectHelper::GetDecimalIntegerPartLen(value) + fraction;
    return (facets.GetTotalDigits() < 0 || total <= facets.GetTotalDigits()) &&
           (facets.GetFractionDigits() < 0 || fraction <= facets.GetFractionDigits());
  } else {
    return true;
  }
}

// The characters of a text, in which two surrogates are the one that they stand for.
unsigned long CharacterCount(const std::wstring& text) {
  unsigned long pairs = 0;
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (IsLowSurrogate(static_cast<char32_t>(text[i])) && IsHighSurrogate(static_cast<char32_t>(text[i - 1]))) ++pairs;
  }
  return text.size() - pairs;
}

bool MeetsLengths(unsigned long length, const CPrimitiveRestrictions& facets) {
  const long actual = static_cast<long>(length);
  return (facets.GetMinLength() < 0 || facets.GetMinLength() <= actual) &&
         (facets.GetMaxLength() < 0 || facets.GetMaxLength() >= actual) &&
         (facets.GetLength() < 0 || facets.GetLength() == actual);
}

bool MeetsLengths(const std::wstring& text, const CPrimitiveRestrictions& facets) {
  // As many characters as units or half of them at least: where both will do, nobody need count.
  const bool all = MeetsLengths(text.size(), facets), half = MeetsLengths((text.size() + 1) / 2, facets);
  return (all && half) || MeetsLengths(CharacterCount(text), facets);
}

// A facet and its value.
struct Facet {
  RkFacet kind = RkFacet_None;
  std::wstring bound;
};

// The first facet that the value breaks, in the order of the checks.
template <ItemType kItem>
Facet BrokenBound(const XsdValue<kItem>& value, const CPrimitiveRestrictions& facets) {
  const auto breaks = [](const std::wstring& text, auto&& isBroken) {
    return !text.empty() && isBroken(*Bounds<kItem>::Read(text));
  };
  using Value = XsdValue<kItem>;
  if (breaks(facets.GetMinInclusive(), [&](const Value& bound) { return bound > value; }))
    return {RkFacet_MinInclusive, facets.GetMinInclusive()};
  if (breaks(facets.GetMaxInclusive(), [&](const Value& bound) { return value > bound; }))
    return {RkFacet_MaxInclusive, facets.GetMaxInclusive()};
  if (breaks(facets.GetMinExclusive(), [&](const Value& bound) { return IsAtMost(value, bound); }))
    return {RkFacet_MinExclusive, facets.GetMinExclusive()};
  if (breaks(facets.GetMaxExclusive(), [&](const Value& bound) { return IsAtMost(bound, value); }))
    return {RkFacet_MaxExclusive, facets.GetMaxExclusive()};
  bool isTotal = facets.GetTotalDigits() >= 0;
  if constexpr (kItem == ItemType_decimal) {
    const int digits =
        CXmlObjectHelper::GetDecimalIntegerPartLen(value) + CXmlObjectHelper::GetDecimalFractionPartLen(value);
    isTotal = isTotal && digits > facets.GetTotalDigits();
  }
  if (isTotal) return {RkFacet_TotalDigits, std::to_wstring(facets.GetTotalDigits())};
  return {RkFacet_FractionDigits, std::to_wstring(facets.GetFractionDigits())};
}

Facet BrokenLength(unsigned long length, const CPrimitiveRestrictions& facets) {
  const long actual = static_cast<long>(length);
  if (facets.GetMinLength() > actual) return {RkFacet_MinLength, std::to_wstring(facets.GetMinLength())};
  if (facets.GetMaxLength() >= 0 && facets.GetMaxLength() < actual)
    return {RkFacet_MaxLength, std::to_wstring(facets.GetMaxLength())};
  return {RkFacet_Length, std::to_wstring(facets.GetLength())};
}

[[noreturn]] void ThrowInvalid(std::wstring message, const wchar_t* name, std::wstring value, ItemType type,
                               Facet facet) {
  CRkException failure(std::move(message));
  failure.SetRefusedValue({name, std::move(value), NameOfXsdType(type), facet.kind, std::move(facet.bound)});
  throw failure;
}

template <ItemType kItem>
constexpr bool kIsBinary = std::is_same_v<XsdValue<kItem>, CBinaryData>;

template <ItemType kItem>
[[noreturn, gnu::cold, gnu::noinline]] void Refuse(const wchar_t* name, const XsdValue<kItem>& value,
                                                   const CPrimitiveRestrictions& facets) {
  Facet broken;
  if constexpr (kIsBinary<kItem>)
    broken = BrokenLength(value.GetLength(), facets);
  else
    broken = BrokenBound<kItem>(value, facets);
  ThrowInvalid(InvalidMessage<kItem>(name, value), name, Print<kItem>(value), kItem, std::move(broken));
}

template <ItemType kItem>
[[gnu::noinline]] void CheckAll(const wchar_t* name, const XsdValue<kItem>& value,
                                const CPrimitiveRestrictions& facets) {
  bool valid = true;
  if constexpr (kIsBinary<kItem>)
    valid = MeetsLengths(value.GetLength(), facets);
  else
    valid = (SurelyMeetsBounds<kItem>(value, facets) || MeetsBounds<kItem>(value, facets)) &&
            MeetsDigits<kItem>(value, facets);
  if (!valid) Refuse<kItem>(name, value, facets);
}

template <ItemType kItem>
void Check(const wchar_t* name, const XsdValue<kItem>& value, const CPrimitiveRestrictions& facets) {
  if (facets.IsEmpty()) return;
  const bool countsDigits = facets.GetTotalDigits() >= 0 || facets.GetFractionDigits() >= 0;
  if (RKXML_UNLIKELY(countsDigits || !SurelyMeetsBounds<kItem>(value, facets))) CheckAll<kItem>(name, value, facets);
}

struct Pattern : CPrimitiveRestrictions::Derived {
  Pattern(const std::string& utf8Pattern, const std::wstring& value)
      : Derived(ItemType_string), expression(utf8Pattern, value) {}

  CRegEx expression;
};

bool MatchesPattern(const wchar_t* name, const std::wstring& value, const CPrimitiveRestrictions& facets) {
  try {
    const auto* const derived = facets.GetDerived();
    if (derived != nullptr && derived->m_itemType == ItemType_string)
      return static_cast<const Pattern*>(derived)->expression.Matches(value);
    const CBinaryData utf8 = CEncoder::UnicodeToUtf8Binary(facets.GetPattern().c_str());
    auto pattern = std::make_unique<const Pattern>(
        std::string(reinterpret_cast<const char*>(utf8.GetData()), utf8.GetLength()), value);
    const bool matches = pattern->expression.Matches(value);
    facets.KeepDerived(std::move(pattern));
    return matches;
  } catch (const CRkException& e) {
    throw CRkException(
        FormatString(L"%ls\nInvalid Value for %ls [%ls].", e.GetFullMessage().c_str(), name, value.c_str()));
  }
}

template <>
[[noreturn, gnu::cold, gnu::noinline]] void Refuse<ItemType_string>(const wchar_t* name, const std::wstring& value,
                                                                    const CPrimitiveRestrictions& facets) {
  ThrowInvalid(FormatString(L"Invalid Value for %ls [%ls].", name, value.c_str()), name, value, ItemType_string,
               MeetsLengths(value, facets) ? Facet{RkFacet_Pattern, facets.GetPattern()}
                                           : BrokenLength(CharacterCount(value), facets));
}

template <>
void Check<ItemType_string>(const wchar_t* name, const std::wstring& value, const CPrimitiveRestrictions& facets) {
  if (facets.IsEmpty()) return;
  if (!MeetsLengths(value, facets) || !(facets.GetPattern().empty() || MatchesPattern(name, value, facets)))
    Refuse<ItemType_string>(name, value, facets);
}

template <>
void Check<ItemType_boolean>(const wchar_t*, const bool&, const CPrimitiveRestrictions&) {}

}  // namespace

#define RKXML_CHECK(Kind, Name, Property, Value)                                                         \
  void CXmlObjectHelper::CheckRestrictionFor##Name(const wchar_t* elementName, XsdArgument<Value> value, \
                                                   const CPrimitiveRestrictions& facets) {               \
    if constexpr (ItemType_##Kind != ItemType_gYearMonth) /* sic */                                      \
      Check<ItemType_##Kind>(elementName, value, facets);                                                \
  }
#define RKXML_NO_CHECK(Kind, Name, Property, Value)
RKXML_XSD_TYPES(RKXML_CHECK, RKXML_CHECK, RKXML_NO_CHECK)
#undef RKXML_CHECK
#undef RKXML_NO_CHECK

// What CheckRestrictionForyearMonth does not check.
void CXmlObjectHelper::CheckRestrictionFormonthYear(const wchar_t* elementName, const CDateTime& value,
                                                    const CPrimitiveRestrictions& facets) {
  Check<ItemType_gYearMonth>(elementName, value, facets);
}

int CXmlObjectHelper::GetDecimalIntegerPartLen(const CDecimal& value) {
  return CBigInteger::Position(value.GetIntegerPart().GetDigits());
}

int CXmlObjectHelper::GetDecimalFractionPartLen(const CDecimal& value) {
  return value.GetFractionPart().IsZero() ? 0 : value.GetFractionalDivider();
}

}  // namespace RkXmlLib16

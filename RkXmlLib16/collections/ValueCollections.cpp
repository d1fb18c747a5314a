#include "RkXmlLib16/collections/ValueCollections.h"

#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/facets/FacetChecks.h"
#include "RkXmlLib16/types/Conversions.h"

namespace RkXmlLib16 {

namespace {

// The facet check of each kind.
template <ItemType kItem>
constexpr auto kCheck = nullptr;
// clang-format off
template <> constexpr auto kCheck<ItemType_hexBinary> = &CXmlObjectHelper::CheckRestrictionForhexBinary;
template <> constexpr auto kCheck<ItemType_base64Binary> = &CXmlObjectHelper::CheckRestrictionForbase64Binary;
template <> constexpr auto kCheck<ItemType_byte> = &CXmlObjectHelper::CheckRestrictionFori1;
template <> constexpr auto kCheck<ItemType_short> = &CXmlObjectHelper::CheckRestrictionFori2;
template <> constexpr auto kCheck<ItemType_int> = &CXmlObjectHelper::CheckRestrictionFori4;
template <> constexpr auto kCheck<ItemType_long> = &CXmlObjectHelper::CheckRestrictionFori8;
template <> constexpr auto kCheck<ItemType_unsignedByte> = &CXmlObjectHelper::CheckRestrictionForui1;
template <> constexpr auto kCheck<ItemType_unsignedShort> = &CXmlObjectHelper::CheckRestrictionForui2;
template <> constexpr auto kCheck<ItemType_unsignedInt> = &CXmlObjectHelper::CheckRestrictionForui4;
template <> constexpr auto kCheck<ItemType_unsignedLong> = &CXmlObjectHelper::CheckRestrictionForui8;
template <> constexpr auto kCheck<ItemType_float> = &CXmlObjectHelper::CheckRestrictionForr4;
template <> constexpr auto kCheck<ItemType_double> = &CXmlObjectHelper::CheckRestrictionForr8;
template <> constexpr auto kCheck<ItemType_duration> = &CXmlObjectHelper::CheckRestrictionForduration;
template <> constexpr auto kCheck<ItemType_gYear> = &CXmlObjectHelper::CheckRestrictionForyear;
template <> constexpr auto kCheck<ItemType_gMonth> = &CXmlObjectHelper::CheckRestrictionFormonth;
template <> constexpr auto kCheck<ItemType_gDay> = &CXmlObjectHelper::CheckRestrictionForday;
template <> constexpr auto kCheck<ItemType_string> = &CXmlObjectHelper::CheckRestrictionForstring;
template <> constexpr auto kCheck<ItemType_boolean> = &CXmlObjectHelper::CheckRestrictionForboolean;
template <> constexpr auto kCheck<ItemType_decimal> = &CXmlObjectHelper::CheckRestrictionFordecimal;
template <> constexpr auto kCheck<ItemType_integer> = &CXmlObjectHelper::CheckRestrictionForinteger;
template <> constexpr auto kCheck<ItemType_date> = &CXmlObjectHelper::CheckRestrictionFordate;
template <> constexpr auto kCheck<ItemType_time> = &CXmlObjectHelper::CheckRestrictionFortime;
template <> constexpr auto kCheck<ItemType_dateTime> = &CXmlObjectHelper::CheckRestrictionFordatetime;
template <> constexpr auto kCheck<ItemType_gYearMonth> = &CXmlObjectHelper::CheckRestrictionForyearMonth;
template <> constexpr auto kCheck<ItemType_gMonthDay> = &CXmlObjectHelper::CheckRestrictionFormonthDay;

// The kind of date that a collection holds.
struct DateKind { DTType type; const wchar_t* name; };
template <ItemType kItem>
constexpr DateKind kDateKind{};
template <> constexpr DateKind kDateKind<ItemType_date>{dt_date, L"dt_date"};
template <> constexpr DateKind kDateKind<ItemType_time>{dt_time, L"dt_time"};
template <> constexpr DateKind kDateKind<ItemType_dateTime>{dt_dateTime, L"dt_dateTime"};
template <> constexpr DateKind kDateKind<ItemType_gYearMonth>{dt_gYearMonth, L"dt_gYearMonth"};
template <> constexpr DateKind kDateKind<ItemType_gMonthDay>{dt_gMonthDay, L"dt_gMonthDay"};
// clang-format on

[[noreturn]] void ThrowIndex(int index, std::size_t count) {
  throw CRkInvalidParamException(FormatString(L"Index %d is out of range, use 0 - %d", index, static_cast<int>(count)));
}

}  // namespace

template <class T>
CValueCollectionBase<T>::~CValueCollectionBase() = default;

template <class T>
int CValueCollectionBase<T>::GetCount() const {
  return static_cast<int>(Count());
}

template <class T>
void CValueCollectionBase<T>::Clear() {
  const auto held = HoldForListeners();
  while (Count() > 0) Remove(0);
}

template <class T>
T CValueCollectionBase<T>::Item(int index) const {
  if (index < 0 || index >= GetCount()) ThrowIndex(index, Count());
  return At(static_cast<std::size_t>(index));
}

template <class T>
void CValueCollectionBase<T>::Remove(int index) {
  const auto held = HoldForListeners();
  FireOnCollectionRemove(index);
  if (index < 0 || index >= GetCount()) ThrowIndex(index, Count());
  m_values.erase(static_cast<std::size_t>(index));
  FireOnCollectionRemoveComplete(0);
  FireOnCollectionChange();
}

template <class T>
template <class Check>
void CValueCollectionBase<T>::Insert(int index, T value, Check&& check) {
  const auto held = HoldForListeners();
  FireOnCollectionAdd(&value);
  if (index < 0 || index > GetCount()) throw CRkInvalidParamException(L"Index out of range");
  check(value);
  m_values.insert(static_cast<std::size_t>(index), value);
  FireOnCollectionAddComplete(&value);
  FireOnCollectionChange();
}

template <ItemType kItem>
CValueCollection<kItem>::CValueCollection(const wchar_t* name, const wchar_t* namespaceUri, int minOccurs,
                                          int maxOccurs, const wchar_t* pattern, long minLength, long maxLength,
                                          const wchar_t* minInclusive, const wchar_t* maxInclusive,
                                          const wchar_t* minExclusive, const wchar_t* maxExclusive, long length,
                                          long totalDigits, long fractionDigits,
                                          CWhitespaceUtils::WhitespaceRule whitespaceRule, const wchar_t* format)
    : CValueCollectionBase<Value>(kItem, name, namespaceUri, minOccurs, maxOccurs, pattern, minLength, maxLength,
                                  minInclusive, maxInclusive, minExclusive, maxExclusive, length, totalDigits,
                                  fractionDigits, whitespaceRule, format) {}

template <ItemType kItem>
CValueCollection<kItem>::~CValueCollection() = default;

template <ItemType kItem>
void CValueCollection<kItem>::AddAt(int index, Value value) {
  this->Insert(index, std::move(value), [this](const Value& checked) {
    kCheck<kItem>(this->GetElementNameRef().c_str(), checked, this->GetRestrictions());
  });
}

template <ItemType kItem>
void CValueCollection<kItem>::Add(Value value) {
  AddAt(this->GetCount(), std::move(value));
}

template <ItemType kItem>
void CValueCollection<kItem>::AddFromString(std::wstring text) {
  Add(CConversions::FromText<kItem>(text, this->GetWhitespaceRule()));
}

template <ItemType kItem>
void CValueCollection<kItem>::ToXml_Int(CXmlWriter* writer, bool, const wchar_t*, const CSerializationContext& context,
                                        bool) const {
  this->ValidateCount(context);
  const std::wstring namespaceUri = this->GetNamespace();
  std::wstring text;
  for (std::size_t i = 0; i < this->Count(); ++i) {
    writer->WriteStartElement(this->GetElementNameRef(), namespaceUri);
    if constexpr (kItem == ItemType_string) {
      writer->WriteString(this->At(i), kItem);
    } else {
      text.clear();
      CConversions::AppendTo<kItem>(text, this->At(i), this->GetFormat().c_str());
      writer->WriteString(text, kItem);
    }
    writer->WriteEndElement();
  }
}

CdatetimeBaseCol::~CdatetimeBaseCol() = default;

void CdatetimeBaseCol::BaseAddAt(int index, const CDateTime& value) {
  Insert(index, value, [](const CDateTime&) {});
}

void CdatetimeBaseCol::ToXml_Int(CXmlWriter* writer, bool, const wchar_t*, const CSerializationContext& context,
                                 bool) const {
  ValidateCount(context);
  const std::wstring namespaceUri = GetNamespace();
  for (std::size_t i = 0; i < Count(); ++i) {
    writer->WriteStartElement(GetElementNameRef(), namespaceUri);
    writer->WriteString(ValueToString(At(i)), ItemType_dateTime);
    writer->WriteEndElement();
  }
}

template <ItemType kItem>
CDateCollection<kItem>::CDateCollection(const wchar_t* name, const wchar_t* namespaceUri, int minOccurs, int maxOccurs,
                                        const wchar_t* pattern, long minLength, long maxLength,
                                        const wchar_t* minInclusive, const wchar_t* maxInclusive,
                                        const wchar_t* minExclusive, const wchar_t* maxExclusive, long length,
                                        long totalDigits, long fractionDigits,
                                        CWhitespaceUtils::WhitespaceRule whitespaceRule, const wchar_t* format)
    : CdatetimeBaseCol(kItem, name, namespaceUri, minOccurs, maxOccurs, pattern, minLength, maxLength, minInclusive,
                       maxInclusive, minExclusive, maxExclusive, length, totalDigits, fractionDigits, whitespaceRule,
                       format) {}

template <ItemType kItem>
CDateCollection<kItem>::~CDateCollection() = default;

template <ItemType kItem>
void CDateCollection<kItem>::AddAt(int index, CDateTime value) {
  constexpr DateKind kind = kDateKind<kItem>;
  if (value.GetType() != kind.type)
    throw CRkInvalidParamException(std::wstring(L"Dates added to this collection must be of type ") + kind.name);
  kCheck<kItem>(GetElementNameRef().c_str(), value, GetRestrictions());
  BaseAddAt(index, value);
}

template <ItemType kItem>
void CDateCollection<kItem>::Add(CDateTime value) {
  AddAt(GetCount(), value);
}

template <ItemType kItem>
void CDateCollection<kItem>::AddFromString(std::wstring text) {
  Add(CConversions::FromText<kItem>(text, GetWhitespaceRule()));
}

template <ItemType kItem>
std::wstring CDateCollection<kItem>::ValueToString(const CDateTime& value) const {
  std::wstring text;
  CConversions::AppendTo<kItem>(text, value, GetFormat().c_str());
  return text;
}

template class CValueCollectionBase<CBinaryData>;
template class CValueCollectionBase<char>;
template class CValueCollectionBase<short>;
template class CValueCollectionBase<long>;
template class CValueCollectionBase<long long>;
template class CValueCollectionBase<unsigned char>;
template class CValueCollectionBase<unsigned short>;
template class CValueCollectionBase<unsigned long>;
template class CValueCollectionBase<unsigned long long>;
template class CValueCollectionBase<float>;
template class CValueCollectionBase<double>;
template class CValueCollectionBase<CDateTimeSpan>;
template class CValueCollectionBase<std::wstring>;
template class CValueCollectionBase<bool>;
template class CValueCollectionBase<CDecimal>;
template class CValueCollectionBase<CBigInteger>;
template class CValueCollectionBase<CDateTime>;
template class CValueCollection<ItemType_hexBinary>;
template class CValueCollection<ItemType_base64Binary>;
template class CValueCollection<ItemType_byte>;
template class CValueCollection<ItemType_short>;
template class CValueCollection<ItemType_int>;
template class CValueCollection<ItemType_long>;
template class CValueCollection<ItemType_unsignedByte>;
template class CValueCollection<ItemType_unsignedShort>;
template class CValueCollection<ItemType_unsignedInt>;
template class CValueCollection<ItemType_unsignedLong>;
template class CValueCollection<ItemType_float>;
template class CValueCollection<ItemType_double>;
template class CValueCollection<ItemType_duration>;
template class CValueCollection<ItemType_gYear>;
template class CValueCollection<ItemType_gMonth>;
template class CValueCollection<ItemType_gDay>;
template class CValueCollection<ItemType_string>;
template class CValueCollection<ItemType_boolean>;
template class CValueCollection<ItemType_decimal>;
template class CValueCollection<ItemType_integer>;
template class CDateCollection<ItemType_date>;
template class CDateCollection<ItemType_time>;
template class CDateCollection<ItemType_dateTime>;
template class CDateCollection<ItemType_gYearMonth>;
template class CDateCollection<ItemType_gMonthDay>;

ChexBinaryCol::~ChexBinaryCol() = default;
Cbase64BinaryCol::~Cbase64BinaryCol() = default;
Ci1Col::~Ci1Col() = default;
Ci2Col::~Ci2Col() = default;
Ci4Col::~Ci4Col() = default;
Ci8Col::~Ci8Col() = default;
Cui1Col::~Cui1Col() = default;
Cui2Col::~Cui2Col() = default;
Cui4Col::~Cui4Col() = default;
Cui8Col::~Cui8Col() = default;
Cr4Col::~Cr4Col() = default;
Cr8Col::~Cr8Col() = default;
CdurationCol::~CdurationCol() = default;
CyearCol::~CyearCol() = default;
CmonthCol::~CmonthCol() = default;
CdayCol::~CdayCol() = default;
CstringCol::~CstringCol() = default;
CbooleanCol::~CbooleanCol() = default;
CdecimalCol::~CdecimalCol() = default;
CintegerCol::~CintegerCol() = default;
CdateCol::~CdateCol() = default;
CtimeCol::~CtimeCol() = default;
CdatetimeCol::~CdatetimeCol() = default;
CyearMonthCol::~CyearMonthCol() = default;
CmonthDayCol::~CmonthDayCol() = default;

}  // namespace RkXmlLib16

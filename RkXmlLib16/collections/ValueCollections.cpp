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
#define RKXML_CHECK(Kind, Name, Property, Value) \
  template <>                                    \
  constexpr auto kCheck<ItemType_##Kind> = &CXmlObjectHelper::CheckRestrictionFor##Name;
#define RKXML_NO_CHECK(Kind, Name, Property, Value)
RKXML_XSD_TYPES(RKXML_CHECK, RKXML_CHECK, RKXML_NO_CHECK)
#undef RKXML_CHECK
#undef RKXML_NO_CHECK

// The kind of date that a collection holds.
struct DateKind {
  DTType type;
  const wchar_t* name;
};
template <ItemType kItem>
constexpr DateKind kDateKind{};
#define RKXML_DATE(Kind, Name, Property, Value) \
  template <>                                   \
  constexpr DateKind kDateKind<ItemType_##Kind>{dt_##Kind, L"dt_" #Kind};
#define RKXML_NO_DATE(Kind, Name, Property, Value)
RKXML_XSD_TYPES(RKXML_NO_DATE, RKXML_DATE, RKXML_NO_DATE)
#undef RKXML_DATE
#undef RKXML_NO_DATE

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
  std::size_t i = 0;
  try {
    for (; i < this->Count(); ++i) {
      if constexpr (kItem == ItemType_string) {
        writer->TextElement(this->GetElementNameRef(), namespaceUri, this->At(i), kItem);
      } else {
        text.clear();
        CConversions::AppendTo<kItem>(text, this->At(i), this->GetFormat().c_str());
        writer->TextElement(this->GetElementNameRef(), namespaceUri, text, kItem);
      }
    }
  } catch (CRkException& e) {
    this->SetPath(e, i);
    throw;
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
  std::size_t i = 0;
  try {
    for (; i < Count(); ++i) {
      writer->TextElement(GetElementNameRef(), namespaceUri, ValueToString(At(i)), ItemType_dateTime);
    }
  } catch (CRkException& e) {
    SetPath(e, i);
    throw;
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
#define RKXML_COLLECTION(Kind, Name, Property, Value) \
  template class CValueCollection<ItemType_##Kind>;   \
  C##Name##Col::~C##Name##Col() = default;
#define RKXML_DATE_COLLECTION(Kind, Name, Property, Value) \
  template class CDateCollection<ItemType_##Kind>;         \
  C##Name##Col::~C##Name##Col() = default;
#define RKXML_NO_COLLECTION(Kind, Name, Property, Value)
RKXML_XSD_TYPES(RKXML_COLLECTION, RKXML_DATE_COLLECTION, RKXML_NO_COLLECTION)

}  // namespace RkXmlLib16

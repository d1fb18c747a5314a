#ifndef RKXMLLIB16_COLLECTIONS_VALUECOLLECTIONS_H
#define RKXMLLIB16_COLLECTIONS_VALUECOLLECTIONS_H

#include <cstddef>
#include <string>

#include "RkXmlLib16/base/FrontGapVector.h"
#include "RkXmlLib16/collections/TypeCollection.h"
#include "RkXmlLib16/types/XsdValue.h"

namespace RkXmlLib16 {

// The collections of repeated elements of an XSD primitive type, named after the type: Cr4Col holds xs:float, CdateCol
// xs:date. They hold plain values in order, check each added value against the facets of the collection, and write one
// element for each.
//
//   Ci4Col sizes(L"size", L"", 0, -1, nullptr, -1, -1, L"1", L"60", nullptr, nullptr, -1, -1, -1,
//                CWhitespaceUtils::collapse, nullptr);
//   sizes.Add(42);
//   sizes.Add(99);  // CRkException "Invalid Value for size [99]"
//   sizes.Item(0);  // 42
//
// The constructor takes the name and namespace of the elements, the limits (-1: unbounded), the ten facets in the order
// of CPrimitiveRestrictions, the whitespace rule and the format. Listeners are told with the address of the value; when
// a value is removed, first with its index and afterwards always with the index 0.

// What all of them share.
template <class T>
class RKXML_EXPORT CValueCollectionBase : public CXmlTypeCollection {
 public:
  using CXmlTypeCollection::CXmlTypeCollection;
  ~CValueCollectionBase() override;

  int GetCount() const override;
  // Removes the values one by one, the first one first.
  void Clear() override;
  // Removing moves the values behind the index, except at the front. Both throw CRkInvalidParamException "Index %d is
  // out of range, use 0 - %d" (the index and the count).
  void Remove(int index) override;
  T Item(int index) const;

  // The values: for (const auto& value : collection). Iterators are those of a vector, which adding and removing
  // invalidate.
  using value_type = T;
  using const_iterator = typename CFrontGapVector<T>::const_iterator;
  using iterator = const_iterator;
  const_iterator begin() const noexcept { return m_values.begin(); }
  const_iterator end() const noexcept { return m_values.end(); }

 protected:
  // Tells the listeners, then tests the index, lets `check` throw for the value, and inserts it.
  template <class Check>
  void Insert(int index, T value, Check&& check);
  std::size_t Count() const noexcept { return m_values.size(); }
  typename CFrontGapVector<T>::const_reference At(std::size_t index) const { return m_values[index]; }

 private:
  CFrontGapVector<T> m_values;
};

template <ItemType kItem>
class RKXML_EXPORT CValueCollection : public CValueCollectionBase<XsdValue<kItem>> {
 public:
  using Value = XsdValue<kItem>;
  using CXmlObjectBase::ToXml_Int;

  CValueCollection(const wchar_t* name, const wchar_t* namespaceUri, int minOccurs, int maxOccurs,
                   const wchar_t* pattern, long minLength, long maxLength, const wchar_t* minInclusive,
                   const wchar_t* maxInclusive, const wchar_t* minExclusive, const wchar_t* maxExclusive, long length,
                   long totalDigits, long fractionDigits, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                   const wchar_t* format);
  ~CValueCollection() override;

  // Inserts the value at 0 to the count; the values behind the index move, except at the front. Throws
  // CRkInvalidParamException "Index out of range" and CRkException "Invalid Value for %ls [...]"; the collection is
  // then unchanged, but the listeners have been told that a value is about to be added.
  void AddAt(int index, Value value);
  void Add(Value value);
  void AddFromString(std::wstring text) override;
  // Checks the limits, then writes the values.
  void ToXml_Int(CXmlWriter* writer, bool registerNamespaces, const wchar_t* namespaceUri,
                 const CSerializationContext& context, bool isOptionalChoice) const override;
};

// The collections of dates and times. All are written with the item type of dateTime.
class RKXML_EXPORT CdatetimeBaseCol : public CValueCollectionBase<CDateTime> {
 public:
  using CValueCollectionBase<CDateTime>::CValueCollectionBase;
  using CXmlObjectBase::ToXml_Int;
  ~CdatetimeBaseCol() override;

  void ToXml_Int(CXmlWriter* writer, bool registerNamespaces, const wchar_t* namespaceUri,
                 const CSerializationContext& context, bool isOptionalChoice) const override;

 protected:
  // The lexical form of the value.
  virtual std::wstring ValueToString(const CDateTime& value) const = 0;
  // Inserts a value that has been checked. Throws CRkInvalidParamException "Index out of range".
  void BaseAddAt(int index, const CDateTime& value);
};

template <ItemType kItem>
class RKXML_EXPORT CDateCollection : public CdatetimeBaseCol {
 public:
  CDateCollection(const wchar_t* name, const wchar_t* namespaceUri, int minOccurs, int maxOccurs,
                  const wchar_t* pattern, long minLength, long maxLength, const wchar_t* minInclusive,
                  const wchar_t* maxInclusive, const wchar_t* minExclusive, const wchar_t* maxExclusive, long length,
                  long totalDigits, long fractionDigits, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                  const wchar_t* format);
  ~CDateCollection() override;

  // As in the other collections, but the value is checked before any listener is told. A value of another kind throws
  // CRkInvalidParamException "Dates added to this collection must be of type dt_date" (or the kind in question).
  void AddAt(int index, CDateTime value);
  void Add(CDateTime value);
  void AddFromString(std::wstring text) override;

 protected:
  std::wstring ValueToString(const CDateTime& value) const override;
};

// Instantiated once, in the library.
extern template class CValueCollectionBase<CBinaryData>;
extern template class CValueCollectionBase<char>;
extern template class CValueCollectionBase<short>;
extern template class CValueCollectionBase<long>;
extern template class CValueCollectionBase<long long>;
extern template class CValueCollectionBase<unsigned char>;
extern template class CValueCollectionBase<unsigned short>;
extern template class CValueCollectionBase<unsigned long>;
extern template class CValueCollectionBase<unsigned long long>;
extern template class CValueCollectionBase<float>;
extern template class CValueCollectionBase<double>;
extern template class CValueCollectionBase<CDateTimeSpan>;
extern template class CValueCollectionBase<std::wstring>;
extern template class CValueCollectionBase<bool>;
extern template class CValueCollectionBase<CDecimal>;
extern template class CValueCollectionBase<CBigInteger>;
extern template class CValueCollectionBase<CDateTime>;
extern template class CValueCollection<ItemType_hexBinary>;
extern template class CValueCollection<ItemType_base64Binary>;
extern template class CValueCollection<ItemType_byte>;
extern template class CValueCollection<ItemType_short>;
extern template class CValueCollection<ItemType_int>;
extern template class CValueCollection<ItemType_long>;
extern template class CValueCollection<ItemType_unsignedByte>;
extern template class CValueCollection<ItemType_unsignedShort>;
extern template class CValueCollection<ItemType_unsignedInt>;
extern template class CValueCollection<ItemType_unsignedLong>;
extern template class CValueCollection<ItemType_float>;
extern template class CValueCollection<ItemType_double>;
extern template class CValueCollection<ItemType_duration>;
extern template class CValueCollection<ItemType_gYear>;
extern template class CValueCollection<ItemType_gMonth>;
extern template class CValueCollection<ItemType_gDay>;
extern template class CValueCollection<ItemType_string>;
extern template class CValueCollection<ItemType_boolean>;
extern template class CValueCollection<ItemType_decimal>;
extern template class CValueCollection<ItemType_integer>;
extern template class CDateCollection<ItemType_date>;
extern template class CDateCollection<ItemType_time>;
extern template class CDateCollection<ItemType_dateTime>;
extern template class CDateCollection<ItemType_gYearMonth>;
extern template class CDateCollection<ItemType_gMonthDay>;

// Values of xs:hexBinary.
class RKXML_EXPORT ChexBinaryCol : public CValueCollection<ItemType_hexBinary> {
 public:
  using CValueCollection::CValueCollection;
  ~ChexBinaryCol() override;
};
// Values of xs:base64Binary.
class RKXML_EXPORT Cbase64BinaryCol : public CValueCollection<ItemType_base64Binary> {
 public:
  using CValueCollection::CValueCollection;
  ~Cbase64BinaryCol() override;
};
// Values of xs:byte.
class RKXML_EXPORT Ci1Col : public CValueCollection<ItemType_byte> {
 public:
  using CValueCollection::CValueCollection;
  ~Ci1Col() override;
};
// Values of xs:short.
class RKXML_EXPORT Ci2Col : public CValueCollection<ItemType_short> {
 public:
  using CValueCollection::CValueCollection;
  ~Ci2Col() override;
};
// Values of xs:int. They have 64 bits.
class RKXML_EXPORT Ci4Col : public CValueCollection<ItemType_int> {
 public:
  using CValueCollection::CValueCollection;
  ~Ci4Col() override;
};
// Values of xs:long.
class RKXML_EXPORT Ci8Col : public CValueCollection<ItemType_long> {
 public:
  using CValueCollection::CValueCollection;
  ~Ci8Col() override;
};
// Values of xs:unsignedByte.
class RKXML_EXPORT Cui1Col : public CValueCollection<ItemType_unsignedByte> {
 public:
  using CValueCollection::CValueCollection;
  ~Cui1Col() override;
};
// Values of xs:unsignedShort.
class RKXML_EXPORT Cui2Col : public CValueCollection<ItemType_unsignedShort> {
 public:
  using CValueCollection::CValueCollection;
  ~Cui2Col() override;
};
// Values of xs:unsignedInt. They have 64 bits.
class RKXML_EXPORT Cui4Col : public CValueCollection<ItemType_unsignedInt> {
 public:
  using CValueCollection::CValueCollection;
  ~Cui4Col() override;
};
// Values of xs:unsignedLong.
class RKXML_EXPORT Cui8Col : public CValueCollection<ItemType_unsignedLong> {
 public:
  using CValueCollection::CValueCollection;
  ~Cui8Col() override;
};
// Values of xs:float.
class RKXML_EXPORT Cr4Col : public CValueCollection<ItemType_float> {
 public:
  using CValueCollection::CValueCollection;
  ~Cr4Col() override;
};
// Values of xs:double.
class RKXML_EXPORT Cr8Col : public CValueCollection<ItemType_double> {
 public:
  using CValueCollection::CValueCollection;
  ~Cr8Col() override;
};
// Values of xs:duration.
class RKXML_EXPORT CdurationCol : public CValueCollection<ItemType_duration> {
 public:
  using CValueCollection::CValueCollection;
  ~CdurationCol() override;
};
// Values of xs:gYear.
class RKXML_EXPORT CyearCol : public CValueCollection<ItemType_gYear> {
 public:
  using CValueCollection::CValueCollection;
  ~CyearCol() override;
};
// Values of xs:gMonth.
class RKXML_EXPORT CmonthCol : public CValueCollection<ItemType_gMonth> {
 public:
  using CValueCollection::CValueCollection;
  ~CmonthCol() override;
};
// Values of xs:gDay.
class RKXML_EXPORT CdayCol : public CValueCollection<ItemType_gDay> {
 public:
  using CValueCollection::CValueCollection;
  ~CdayCol() override;
};
// Values of xs:string.
class RKXML_EXPORT CstringCol : public CValueCollection<ItemType_string> {
 public:
  using CValueCollection::CValueCollection;
  ~CstringCol() override;
};
// Values of xs:boolean.
class RKXML_EXPORT CbooleanCol : public CValueCollection<ItemType_boolean> {
 public:
  using CValueCollection::CValueCollection;
  ~CbooleanCol() override;
};
// Values of xs:decimal.
class RKXML_EXPORT CdecimalCol : public CValueCollection<ItemType_decimal> {
 public:
  using CValueCollection::CValueCollection;
  ~CdecimalCol() override;
};
// Values of xs:integer.
class RKXML_EXPORT CintegerCol : public CValueCollection<ItemType_integer> {
 public:
  using CValueCollection::CValueCollection;
  ~CintegerCol() override;
};
// Values of xs:date.
class RKXML_EXPORT CdateCol : public CDateCollection<ItemType_date> {
 public:
  using CDateCollection::CDateCollection;
  ~CdateCol() override;
};
// Values of xs:time.
class RKXML_EXPORT CtimeCol : public CDateCollection<ItemType_time> {
 public:
  using CDateCollection::CDateCollection;
  ~CtimeCol() override;
};
// Values of xs:dateTime.
class RKXML_EXPORT CdatetimeCol : public CDateCollection<ItemType_dateTime> {
 public:
  using CDateCollection::CDateCollection;
  ~CdatetimeCol() override;
};
// Values of xs:gYearMonth.
class RKXML_EXPORT CyearMonthCol : public CDateCollection<ItemType_gYearMonth> {
 public:
  using CDateCollection::CDateCollection;
  ~CyearMonthCol() override;
};
// Values of xs:gMonthDay.
class RKXML_EXPORT CmonthDayCol : public CDateCollection<ItemType_gMonthDay> {
 public:
  using CDateCollection::CDateCollection;
  ~CmonthDayCol() override;
};

}  // namespace RkXmlLib16

#endif

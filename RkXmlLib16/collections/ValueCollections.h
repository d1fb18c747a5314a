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

// Instantiated once, in the library. The named collections, of the types in base/XsdTypes.h: CdateCol, Ci4Col...
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
#define RKXML_COLLECTION_OF(Template, Kind, Name)                      \
  extern template class Template<ItemType_##Kind>;                     \
  class RKXML_EXPORT C##Name##Col : public Template<ItemType_##Kind> { \
   public:                                                             \
    using Template::Template;                                          \
    ~C##Name##Col() override;                                          \
  };
#define RKXML_COLLECTION(Kind, Name, Property, Value) RKXML_COLLECTION_OF(CValueCollection, Kind, Name)
#define RKXML_DATE_COLLECTION(Kind, Name, Property, Value) RKXML_COLLECTION_OF(CDateCollection, Kind, Name)
#define RKXML_NO_COLLECTION(Kind, Name, Property, Value)
RKXML_XSD_TYPES(RKXML_COLLECTION, RKXML_DATE_COLLECTION, RKXML_NO_COLLECTION)
#undef RKXML_COLLECTION
#undef RKXML_DATE_COLLECTION
#undef RKXML_NO_COLLECTION
#undef RKXML_COLLECTION_OF

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_OBJECT_VARIANT_H
#define RKXMLLIB16_OBJECT_VARIANT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/types/BigInteger.h"
#include "RkXmlLib16/types/BinaryData.h"
#include "RkXmlLib16/types/DateTime.h"
#include "RkXmlLib16/types/DateTimeSpan.h"
#include "RkXmlLib16/types/Decimal.h"
#include "RkXmlLib16/types/Whitespace.h"
#include "RkXmlLib16/types/XsdValue.h"

namespace RkXmlLib16 {

class CXmlObjectBase;
class CXmlCollectionBase;
struct TextSpace;  // types/Conversions.h
template <class T>
class CSmartPtr;

// One value of any XSD primitive kind, or a counted reference to an object or a collection, with a nil flag. The type
// codes 1 to 26 are those of ItemType; 0 is invalid, 27 an object, 28 a collection.
//
//   RkVariant v;
//   v.FromString(L" 42 ", ItemType_int);
//   v.GetI4();        // 42
//   v.SetNil();       // keeps the type
//
// A value type: copies own their values and share objects and collections; moves are cheap. Every value lives in the
// variant itself, scalars never allocate, and the storage of a text is kept for the next one.
//
// Implemented in object/Variant.cpp; SetXmlCollection, GetXmlCollection and TakeXmlCollection, which know the
// collection, in collections/CollectionBase.cpp.
class RKXML_EXPORT RkVariant {
 public:
  static constexpr std::uint32_t kXmlObject = 27;
  static constexpr std::uint32_t kXmlCollection = 28;

  RkVariant() noexcept {}
  RkVariant(const RkVariant& other);
  RkVariant(RkVariant&& other) noexcept;
  RkVariant& operator=(const RkVariant& other);
  RkVariant& operator=(RkVariant&& other) noexcept;
  virtual ~RkVariant();

  // Frees the value or drops the reference; type and nil flag stay.
  void Clear() noexcept;
  // True when there is a type or the nil flag is set.
  bool IsValid() const noexcept { return m_type != 0 || m_nil; }
  // No value, no type, not nil.
  void SetInvalid() noexcept {
    if (IsValid()) Begin(0);
  }
  // The same, but the storage of values is kept for the next ones; objects, octets and long texts are let go.
  void SetUnused() noexcept {
    const bool isShared = m_type >= kXmlObject || m_type == ItemType_hexBinary || m_type == ItemType_base64Binary;
    if (isShared || (m_type == ItemType_string && m_text.capacity() > kKeptCapacity)) LetGo();
    m_type = 0;
    m_nil = false;
  }
  // Clears the value, keeps the type and sets the flag, which every setter resets.
  void SetNil() noexcept;
  bool IsNil() const noexcept { return m_nil; }
  // "i4", "datetime" and so on. Throws CRkException "Invalid Type %d" without a type and for objects and collections.
  std::wstring GetType() const;
  // The type code, 0 to 28.
  ItemType GetItemType() const noexcept { return static_cast<ItemType>(m_type); }
  bool IsXmlObject() const noexcept { return m_type == kXmlObject; }
  bool IsXmlCollection() const noexcept { return m_type == kXmlCollection; }

  void SetHexBinary(const CBinaryData& value);
  void SetBase64Binary(const CBinaryData& value);
  void SetI1(char value) noexcept;
  void SetI2(short value) noexcept;
  void SetI4(long value) noexcept;
  void SetI8(long long value) noexcept;
  void SetUI1(unsigned char value) noexcept;
  void SetUI2(unsigned short value) noexcept;
  void SetUI4(unsigned long value) noexcept;
  void SetUI8(unsigned long long value) noexcept;
  void SetR4(float value) noexcept;
  void SetR8(double value) noexcept;
  void SetDuration(const CDateTimeSpan& value);
  void SetYearMonth(const CDateTime& value);
  void SetMonthDay(const CDateTime& value);
  void SetYear(unsigned short value) noexcept;
  void SetMonth(unsigned char value) noexcept;
  void SetDay(unsigned char value) noexcept;
  void SetDate(const CDateTime& value);
  void SetDateTime(const CDateTime& value);
  void SetTime(const CDateTime& value);
  void SetChar(wchar_t value) noexcept;
  void SetString(const std::wstring& value);
  void SetString(std::wstring&& value);
  void SetString(std::wstring_view value);
  void SetString(const wchar_t* value);
  void SetBoolean(bool value) noexcept;
  void SetDecimal(const CDecimal& value);
  void SetDecimal(CDecimal&& value);
  void SetInteger(const CBigInteger& value);
  void SetInteger(CBigInteger&& value);
  // Counted. Null is allowed.
  void SetXmlObject(CXmlObjectBase* object);
  void SetXmlCollection(CXmlCollectionBase* collection);

  // The value. Throw CRkException when the variant is of another type; a nil variant gives the empty value. References
  // hold until the variant changes.
  const CBinaryData& GetHexBinary() const;
  const CBinaryData& GetBase64Binary() const;
  char GetI1() const;
  short GetI2() const;
  long GetI4() const;
  long long GetI8() const;
  unsigned char GetUI1() const;
  unsigned short GetUI2() const;
  unsigned long GetUI4() const;
  unsigned long long GetUI8() const;
  float GetR4() const;
  double GetR8() const;
  const CDateTimeSpan& GetDuration() const;
  const CDateTime& GetYearMonth() const;
  const CDateTime& GetMonthDay() const;
  unsigned short GetYear() const;
  unsigned char GetMonth() const;
  unsigned char GetDay() const;
  const CDateTime& GetDate() const;
  const CDateTime& GetDateTime() const;
  const CDateTime& GetTime() const;
  wchar_t GetChar() const;
  const std::wstring& GetString() const;
  bool GetBoolean() const;
  const CDecimal& GetDecimal() const;
  const CBigInteger& GetInteger() const;
  // Null when the variant is of another type.
  CSmartPtr<CXmlObjectBase> GetXmlObject() const;
  CSmartPtr<CXmlCollectionBase> GetXmlCollection() const;

  // The same, and nothing stays in the variant, which keeps its type.
  CSmartPtr<CXmlObjectBase> TakeXmlObject() noexcept;
  CSmartPtr<CXmlCollectionBase> TakeXmlCollection() noexcept;

  // The same, borrowed until the variant changes.
  CXmlObjectBase* PeekXmlObject() const noexcept { return m_type == kXmlObject ? m_slot.reference.object : nullptr; }
  CXmlCollectionBase* PeekXmlCollection() const noexcept {
    return m_type == kXmlCollection ? m_slot.reference.collection : nullptr;
  }

  // The lexical form. `format` reaches float, double and decimal only. Throws CRkException
  // "Invalid Type %d to convert to string" without a type and for objects and collections.
  std::wstring ToString(const wchar_t* format = nullptr) const;
  // The same behind `out`.
  void AppendTo(std::wstring& out, const wchar_t* format = nullptr) const;
  // The same in the space, or this variant's own text where it is a string.
  std::wstring_view GetText(TextSpace& space, const wchar_t* format = nullptr) const;

  // Read the lexical form of the current type, or of `type`, which becomes the type when the text could be read.
  // Without a rule white space is collapsed, but kept in strings and characters. Throw CRkException
  // "Invalid Type %d to convert to string" and what the conversion throws; the value is then unchanged.
  void FromString(const std::wstring& text);
  void FromString(const std::wstring& text, ItemType type, CWhitespaceUtils::WhitespaceRule rule);
  void FromString(const std::wstring& text, ItemType type);
  // The same from a view.
  void FromText(std::wstring_view text, ItemType type, CWhitespaceUtils::WhitespaceRule rule);
  void FromText(std::wstring_view text, ItemType type);

 private:
  // Where the value is, by the type:
  //
  //   0                              nowhere: invalid, or nil without a type
  //   numbers, boolean, character,   m_slot.scalar
  //   gYear, gMonth, gDay
  //   string                         m_text
  //   decimal                        m_owned, with a place of its own
  //   octets, dates, times,          m_owned, in the other place
  //   duration, integer
  //   kXmlObject, kXmlCollection     m_slot.reference, counted
  //
  // What becomes of the variant:
  //
  //                type       nil    value and storage
  //   Set...       its own    false  the new value, in storage that is there if it fits
  //   FromText     the given  false  the same; unchanged if the text cannot be read
  //   SetNil       stays      true   cleared
  //   Clear        stays      stays  cleared; storage is freed, except that of short texts
  //   SetInvalid   0          false  cleared
  //   SetUnused    0          false  kept as storage for the next value, except octets, objects and long texts
  //   Take...      stays      stays  the reference is handed out
  struct Reference {  // counted through the object, handed out as the collection
    CXmlObjectBase* object;
    CXmlCollectionBase* collection;
  };
  union Slot {
    std::uint64_t scalar;  // the octets of a number
    Reference reference;
  };

  // A value that is no scalar. Decimals have a place of their own: objects mostly have them between values of other
  // kinds, and the storage should outlast those.
  class Owner {
   public:
    bool IsEmpty() const noexcept { return !m_decimal && !m_other; }
    void Reset() noexcept {
      m_decimal.reset();
      m_other.reset();
    }
    template <class T>
    const T* Find() const noexcept {
      if constexpr (std::is_same_v<T, CDecimal>)
        return m_decimal ? &*m_decimal : nullptr;
      else
        return m_other ? std::get_if<T>(&*m_other) : nullptr;
    }
    template <class T, class Value>
    void Emplace(Value&& value) {
      if constexpr (std::is_same_v<T, CDecimal>)
        m_decimal.emplace(std::forward<Value>(value));
      else
        m_other.emplace(std::in_place_type<T>, std::forward<Value>(value));
    }

    // The value of this type that the other one has, and nothing else.
    template <class OtherOwner>
    void Take(std::uint32_t type, OtherOwner&& other) {
      if (type == ItemType_decimal)
        m_decimal = std::forward<OtherOwner>(other).m_decimal;
      else if (IsOther(type))
        m_other = std::forward<OtherOwner>(other).m_other;
    }

   private:
    static constexpr bool IsOther(std::uint32_t type) noexcept {
      return type == ItemType_hexBinary || type == ItemType_base64Binary || type == ItemType_integer ||
             (type >= ItemType_duration && type <= ItemType_gMonthDay) ||
             (type >= ItemType_date && type <= ItemType_time);
    }

    std::optional<CDecimal> m_decimal;
    std::optional<std::variant<CBinaryData, CDateTime, CDateTimeSpan, CBigInteger>> m_other;
  };

  // Counts `object` (may be null) and stores both; `collection` is the same object or null.
  void SetReference(std::uint32_t type, CXmlObjectBase* object, CXmlCollectionBase* collection);
  bool HoldsNothing() const noexcept { return m_owned.IsEmpty() && m_text.empty() && m_type < kXmlObject; }
  void LetGo() noexcept;
  void Begin(std::uint32_t type) noexcept {
    // What an unused variant still has is space for the next value.
    if (IsValid() && !HoldsNothing()) Clear();
    m_nil = false;
    m_type = type;
  }
  void RequireType(std::uint32_t type) const;
  bool MayHold(const void* value) const noexcept;
  // The value of this kind that the variant has, as space for the next one of the type; null when there is none, or
  // when the variant has a value of another type to let go.
  template <class T>
  T* Room(std::uint32_t type) noexcept;
  // What the type says that the other one holds.
  template <class Other>
  void TakeValue(Other&& other);
  template <class T>
  bool ReadInPlace(std::uint32_t type, std::wstring_view text);
  template <ItemType kItem>
  void ReadPlain(std::wstring_view text, CWhitespaceUtils::WhitespaceRule rule);
  template <ItemType kItem>
  void Read(std::wstring_view text, CWhitespaceUtils::WhitespaceRule rule);
  template <ItemType kItem, class Value>
  void SetValue(Value&& value);
  template <ItemType kItem>
  XsdArgument<XsdValue<kItem>> GetValue() const;
  template <class T, class Value>
  void SetOwned(std::uint32_t type, Value&& value);
  template <class T>
  const T& Owned(std::uint32_t type) const;

  static constexpr std::size_t kKeptCapacity = 4096;  // longer texts give their storage back

  bool m_nil = false;
  std::uint32_t m_type = 0;
  Slot m_slot{};
  std::wstring m_text;
  Owner m_owned;
};

}  // namespace RkXmlLib16

#endif

// The members of the classes that `rkxml generate` prints, and what objects without classes have in their place, as the
// library reaches them.
#ifndef RKXMLLIB16_BINDING_MODELMEMBER_H
#define RKXMLLIB16_BINDING_MODELMEMBER_H

#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/collections/CollectionBase.h"
#include "RkXmlLib16/types/BigInteger.h"
#include "RkXmlLib16/types/BinaryData.h"
#include "RkXmlLib16/types/Conversions.h"
#include "RkXmlLib16/types/DateTime.h"
#include "RkXmlLib16/types/DateTimeSpan.h"
#include "RkXmlLib16/types/Decimal.h"

namespace RkXmlLib16Data {
struct ModelProperty;
}

namespace RkXmlLib16 {

class CXmlObjectBase;
class RkVariant;

// A value that is seldom there and then stands apart. Without one it reads as T().
template <class T>
class CRareValue {
 public:
  const T& Get() const noexcept {
    static const T none{};
    return m_value != nullptr ? *m_value : none;
  }
  T& Make() {
    if (m_value == nullptr) m_value = std::make_unique<T>();
    return *m_value;
  }
  void Reset() noexcept { m_value.reset(); }

 private:
  std::unique_ptr<T> m_value;
};

// What the library does with members of one C++ type. Those of a value have the functions of values, the others those
// of objects.
struct MemberType {
  enum class Kind { Value, Object, Collection };
  using Property = RkXmlLib16Data::ModelProperty;

  Kind kind = Kind::Value;
  // For members that do not stand in a class. No type needs a greater alignment than kAlignment.
  static constexpr std::size_t kAlignment = 8;
  std::size_t size = 0;
  void (*construct)(void* at) = nullptr;
  void (*destroy)(void* at) = nullptr;

  void (*give)(const void* at, const Property& property, RkVariant& to) = nullptr;
  void (*take)(void* at, const Property& property, const RkVariant& from) = nullptr;
  void (*reset)(void* at) = nullptr;
  // From the lexical form, as a document has it, with the check below. Where it cannot be read, throws CRkException or
  // returns false, and the member stays as it is; a value that the check refuses is there nevertheless.
  bool (*read)(void* at, const Property& property, std::wstring_view text) = nullptr;
  // The lexical form: the member itself, or in the space.
  std::wstring_view (*print)(const void* at, const Property& property, TextSpace& space) = nullptr;
  // Throws CRkException for a value that breaks a facet or is none of an enumeration.
  void (*check)(const void* at, const Property& property, const wchar_t* name) = nullptr;

  CXmlObjectBase* (*getObject)(const void* at) = nullptr;
  void (*setObject)(void* at, CXmlObjectBase* object) = nullptr;

  template <class T>
  static constexpr MemberType Of(Kind kind) noexcept {
    static_assert(alignof(T) <= kAlignment);
    MemberType type;
    type.kind = kind;
    type.size = sizeof(T);
    type.construct = [](void* at) { ::new (at) T(); };
    type.destroy = [](void* at) { static_cast<T*>(at)->~T(); };
    return type;
  }
};

// In place, or as CRareValue where the type is large.
RKXML_EXPORT const MemberType& GetMemberType(ItemType type);

// Types of values; those of enumerations are that of int.
template <class T>
struct MemberTypeOf;
#define RKXML_MEMBER_TYPES(TYPE) \
  TYPE(std::wstring)             \
  TYPE(char)                     \
  TYPE(short)                    \
  TYPE(int)                      \
  TYPE(long)                     \
  TYPE(long long)                \
  TYPE(unsigned char)            \
  TYPE(unsigned short)           \
  TYPE(unsigned long)            \
  TYPE(unsigned long long)       \
  TYPE(float)                    \
  TYPE(double)                   \
  TYPE(bool)                     \
  TYPE(CDecimal)                 \
  TYPE(CBigInteger)              \
  TYPE(CBinaryData)              \
  TYPE(CDateTime)                \
  TYPE(CDateTimeSpan)
#define RKXML_MEMBER_TYPE(type)                     \
  template <>                                       \
  struct RKXML_EXPORT MemberTypeOf<type> {          \
    static const MemberType kInPlace;               \
    static const MemberType kRare; /* CRareValue */ \
  };
RKXML_MEMBER_TYPES(RKXML_MEMBER_TYPE)
#undef RKXML_MEMBER_TYPE

template <class T>
struct ObjectMemberType {
  static CXmlObjectBase* Get(const void* at) { return static_cast<const CSmartPtr<T>*>(at)->Get(); }
  static void Set(void* at, CXmlObjectBase* object) {
    *static_cast<CSmartPtr<T>*>(at) = CSmartPtr<T>(static_cast<T*>(object));
  }
  static constexpr MemberType kType = [] {
    MemberType type = MemberType::Of<CSmartPtr<T>>(
        std::is_base_of_v<CXmlCollectionBase, T> ? MemberType::Kind::Collection : MemberType::Kind::Object);
    type.getObject = Get;
    type.setObject = Set;
    return type;
  }();
};

// Refers to a member of an object; to none for a property that its class has no member for.
class CMember {
 public:
  CMember() noexcept = default;
  template <class T, class = std::enable_if_t<!std::is_base_of_v<CMember, T>>>
  CMember(T& member) noexcept : m_at(&member) {
    if constexpr (std::is_enum_v<T>)
      m_type = &MemberTypeOf<int>::kInPlace;
    else
      m_type = &MemberTypeOf<T>::kInPlace;
  }
  template <class T>
  CMember(CRareValue<T>& member) noexcept : m_at(&member), m_type(&MemberTypeOf<T>::kRare) {}
  template <class T>
  CMember(CSmartPtr<T>& member) noexcept : m_at(&member), m_type(&ObjectMemberType<T>::kType) {}
  CMember(void* at, const MemberType& type) noexcept : m_at(at), m_type(&type) {}

  bool IsNone() const noexcept { return m_type == nullptr; }
  bool Is(MemberType::Kind kind) const noexcept { return m_type != nullptr && m_type->kind == kind; }
  void* At() const noexcept { return m_at; }
  const MemberType& Type() const noexcept { return *m_type; }

 private:
  void* m_at = nullptr;
  const MemberType* m_type = nullptr;
};

}  // namespace RkXmlLib16

#endif

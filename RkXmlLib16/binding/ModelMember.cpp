#include "RkXmlLib16/binding/ModelMember.h"

#include <cstring>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/binding/internal/ModelClass.h"
#include "RkXmlLib16/facets/FacetChecks.h"
#include "RkXmlLib16/object/Variant.h"
#include "RkXmlLib16/types/Conversions.h"
#include "RkXmlLib16/types/internal/ShortDecimal.h"

namespace RkXmlLib16 {

using RkXmlLib16Data::ModelProperty;
using RkXmlLib16Data::ThrowInvalidValue;

namespace {

// What is done with the values of each XSD type.
template <ItemType kItem>
struct Item;
#define RKXML_ITEM(Kind, Name, Property, Value)                                                              \
  template <>                                                                                                \
  struct Item<ItemType_##Kind> {                                                                             \
    static void Give(RkVariant& to, XsdArgument<Value> value) { to.Set##Property(value); }                   \
    static XsdArgument<Value> Take(const RkVariant& from) { return from.Get##Property(); }                   \
    static void Check(const wchar_t* name, XsdArgument<Value> value, const CPrimitiveRestrictions& facets) { \
      CXmlObjectHelper::CheckRestrictionFor##Name(name, value, facets);                                      \
    }                                                                                                        \
  };
#define RKXML_NO_ITEM(Kind, Name, Property, Value)
RKXML_XSD_TYPES(RKXML_ITEM, RKXML_ITEM, RKXML_NO_ITEM)
#undef RKXML_ITEM

[[noreturn, gnu::cold, gnu::noinline]] void ThrowInvalidType(ItemType type) {
  throw CRkException(FormatString(L"Invalid Type %d", static_cast<int>(type)));
}

// Calls `call` with the type as a compile-time constant. It is one of those whose values are held as T.
template <class T, class Call>
auto Visit(ItemType type, Call&& call) {
  switch (type) {
#define RKXML_VISIT(Kind, Name, Property, Value)                                                              \
  case ItemType_##Kind:                                                                                       \
    if constexpr (std::is_same_v<Value, T>) return call(std::integral_constant<ItemType, ItemType_##Kind>()); \
    break;
    RKXML_XSD_TYPES(RKXML_VISIT, RKXML_VISIT, RKXML_NO_ITEM)
#undef RKXML_VISIT
#undef RKXML_NO_ITEM
    default:
      break;
  }
  ThrowInvalidType(type);
}

bool IsKept(CWhitespaceUtils::WhitespaceRule rule) {
  return rule == CWhitespaceUtils::preserve || rule == CWhitespaceUtils::none;
}

[[gnu::always_inline]] inline void Assign(std::wstring& value, std::wstring_view text) {
  if (text.size() > value.capacity())
    value = std::wstring(text);  // in fewer steps than assign
  else
    value.assign(text);
}

[[gnu::noinline]] void AssignByRule(std::wstring& value, std::wstring_view text,
                                    CWhitespaceUtils::WhitespaceRule rule) {
  std::wstring scratch;
  Assign(value, CWhitespaceUtils::ApplyRule(rule, text, scratch));
}

// How the value of a member is reached.
template <class T>
struct InPlace {
  using Held = T;
  static const T& Get(const void* at) { return *static_cast<const T*>(at); }
  static T& Make(void* at) { return *static_cast<T*>(at); }
  static void Reset(void* at) { Make(at) = T(); }
};
template <class T>
struct Rare {
  using Held = CRareValue<T>;
  static const T& Get(const void* at) { return static_cast<const CRareValue<T>*>(at)->Get(); }
  static T& Make(void* at) { return static_cast<CRareValue<T>*>(at)->Make(); }
  static void Reset(void* at) { static_cast<CRareValue<T>*>(at)->Reset(); }
};

template <class T, class Place>
struct ValueMember {
  static void Give(const void* at, const ModelProperty& property, RkVariant& to) {
    Visit<T>(property.values->itemType, [&](auto item) { Item<item>::Give(to, Place::Get(at)); });
  }
  static void Take(void* at, const ModelProperty& property, const RkVariant& from) {
    Visit<T>(property.values->itemType, [&](auto item) { Place::Make(at) = Item<item>::Take(from); });
  }
  template <ItemType kItem>
  [[gnu::noinline]] static void ReadUnusual(T& value, std::wstring_view text, CWhitespaceUtils::WhitespaceRule rule) {
    value = CConversions::FromText<kItem>(text, rule);
  }
  template <ItemType kItem>
  static void ReadAs(T& value, std::wstring_view text, CWhitespaceUtils::WhitespaceRule rule) {
    if constexpr (kItem == ItemType_string) {
      if (IsKept(rule))
        Assign(value, text);
      else
        AssignByRule(value, text, rule);
    } else if constexpr (kItem == ItemType_decimal || kItem == ItemType_dateTime) {
      if (RKXML_UNLIKELY(!value.ParsePlain(text))) ReadUnusual<kItem>(value, text, rule);
    } else {
      value = CConversions::FromText<kItem>(text, rule);
    }
  }
  static bool Read(void* at, const ModelProperty& property, std::wstring_view text) {
    if constexpr (std::is_same_v<T, CDecimal>) {
      if (RKXML_UNLIKELY(!ShortDecimal::Parse(Place::Make(at), text))) return ReadAny(at, property, text);
      if (property.mayRefuse) CheckAs<ItemType_decimal>(at, property, property.name);
      return true;
    } else {
      return ReadAny(at, property, text);
    }
  }
  [[gnu::noinline]] static bool ReadAny(void* at, const ModelProperty& property, std::wstring_view text) {
    Visit<T>(property.values->itemType, [&](auto item) {
      ReadAs<item>(Place::Make(at), text, property.values->whitespace);
      if (property.mayRefuse) CheckAs<item>(at, property, property.name);
    });
    return true;
  }
  static std::wstring_view Print(const void* at, const ModelProperty& property, TextSpace& space) {
    const T& value = Place::Get(at);
    if constexpr (std::is_same_v<T, std::wstring>) {
      return value;
    } else {
      return Visit<T>(property.values->itemType, [&](auto item) { return CConversions::GetText<item>(value, space); });
    }
  }
  template <ItemType kItem>
  static void CheckAs(const void* at, const ModelProperty& property, const wchar_t* name) {
    const T& value = Place::Get(at);
    if constexpr (std::is_same_v<T, std::wstring>)
      if (property.values->texts != nullptr && !property.IsAllowed(value)) ThrowInvalidValue(name, value);
    if (!property.facets.IsEmpty()) Item<kItem>::Check(name, value, property.facets);
  }
  static void Check(const void* at, const ModelProperty& property, const wchar_t* name) {
    Visit<T>(property.values->itemType, [&](auto item) { CheckAs<item>(at, property, name); });
  }
};

// An enumeration is a number in the object and a text for the records. It may be set by its number too.
template <class Place>
struct ValueMember<int, Place> {
  static int Get(const void* at) {
    int number = 0;  // of an enum class, whose members these octets are
    std::memcpy(&number, at, sizeof number);
    return number;
  }
  static void Put(void* at, int number) { std::memcpy(at, &number, sizeof number); }
  static const std::wstring& Text(const void* at, const ModelProperty& property) {
    static const std::wstring none;
    const auto number = static_cast<std::size_t>(Get(at));
    return number < property.texts.size() ? property.texts[number] : none;
  }

  static void Give(const void* at, const ModelProperty& property, RkVariant& to) { to.SetString(Text(at, property)); }
  static void Take(void* at, const ModelProperty& property, const RkVariant& from) {
    const bool isNumber = from.GetItemType() == ItemType_int;
    Put(at, isNumber ? static_cast<int>(from.GetI4()) : property.FindText(from.GetString()));
  }
  static void Reset(void* at) { Put(at, 0); }
  static bool Read(void* at, const ModelProperty& property, std::wstring_view text) {
    const CWhitespaceUtils::WhitespaceRule rule = property.values->whitespace;
    std::wstring scratch;
    const int number = property.FindText(IsKept(rule) ? text : CWhitespaceUtils::ApplyRule(rule, text, scratch));
    if (number < 0) return false;
    Put(at, number);
    if (property.mayRefuse) Check(at, property, property.name);
    return true;
  }
  static std::wstring_view Print(const void* at, const ModelProperty& property, TextSpace&) {
    return Text(at, property);
  }
  static void Check(const void* at, const ModelProperty& property, const wchar_t* name) {
    const std::wstring& text = Text(at, property);
    if (static_cast<std::size_t>(Get(at)) >= property.texts.size()) ThrowInvalidValue(name, text);
    if (!property.facets.IsEmpty()) CXmlObjectHelper::CheckRestrictionForstring(name, text, property.facets);
  }
};

template <class Value, class Place>
constexpr MemberType MakeType() {
  MemberType type = MemberType::Of<typename Place::Held>(MemberType::Kind::Value);
  type.give = Value::Give;
  type.take = Value::Take;
  type.read = Value::Read;
  type.print = Value::Print;
  type.check = Value::Check;
  if constexpr (std::is_same_v<Value, ValueMember<int, Place>>)
    type.reset = Value::Reset;
  else
    type.reset = Place::Reset;
  return type;
}

}  // namespace

#define RKXML_MEMBER_TYPE(T)                                                                       \
  const MemberType MemberTypeOf<T>::kInPlace = MakeType<ValueMember<T, InPlace<T>>, InPlace<T>>(); \
  const MemberType MemberTypeOf<T>::kRare = MakeType<ValueMember<T, Rare<T>>, Rare<T>>();
RKXML_MEMBER_TYPES(RKXML_MEMBER_TYPE)
#undef RKXML_MEMBER_TYPE

namespace {

template <class T>
const MemberType& TypeOf() {
  constexpr bool isLarge = sizeof(T) > sizeof(std::wstring);
  return isLarge ? MemberTypeOf<T>::kRare : MemberTypeOf<T>::kInPlace;
}

}  // namespace

const MemberType& GetMemberType(ItemType type) {
  switch (type) {
#define RKXML_TYPE(Kind, Name, Property, Value) \
  case ItemType_##Kind:                         \
    return TypeOf<Value>();
#define RKXML_NO_TYPE(Kind, Name, Property, Value)
    RKXML_XSD_TYPES(RKXML_TYPE, RKXML_TYPE, RKXML_NO_TYPE)
#undef RKXML_TYPE
#undef RKXML_NO_TYPE
    default:
      return TypeOf<std::wstring>();
  }
}

}  // namespace RkXmlLib16

// A value of any XSD type, or an object or collection.
//
// The plain algorithm: the type code says where the value is (the table in the header). A setter clears what is there,
// sets type and value and resets the nil flag. A getter checks the type and gives the value, or an empty one if the
// variant is nil. Reading converts the text of the type and sets the result. The rows of RKXML_XSD_TYPES make the
// accessors, and Dispatch calls a function for the type at hand.
//
// What is added to that:
//   Storage     One variant takes the values of many members, one after the other, and must not allocate for each.
//               SetUnused makes it invalid and keeps the storage; Room finds it for the next value of the kind.
//               Invariant: what an invalid variant still has is never given out. Long texts, octets and objects are let
//               go at once.
//   In place    ReadPlain tries to read decimals and date-times of the usual shape into the value that is there
//               (ReadInPlace). Where the shape is another, or memory could run out half-way, Read, the plain one, does
//               it.
//   Own values  A setter may be given a value that lies in this variant, or in the object that it alone keeps alive.
//               Such a value is copied before the old one goes (MayHold).
//   References  The object is released after the variant is empty, as its destruction may come back to the variant.
#include "RkXmlLib16/object/Variant.h"

#include <cstring>
#include <iterator>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/base/internal/NeverDestroyed.h"
#include "RkXmlLib16/object/XmlObjectBase.h"
#include "RkXmlLib16/types/Conversions.h"

namespace RkXmlLib16 {

namespace {

// By type code.
#define RKXML_NAME(Kind, Name, Property, Value) L## #Name,
constexpr const wchar_t* kTypeNames[] = {nullptr, RKXML_XSD_TYPES(RKXML_NAME, RKXML_NAME, RKXML_NAME)};
#undef RKXML_NAME

[[noreturn]] void ThrowInvalidType(std::uint32_t type) { throw CRkException(FormatString(L"Invalid Type %u", type)); }

[[noreturn]] void ThrowNoText(std::uint32_t type) {
  throw CRkException(FormatString(L"Invalid Type %u to convert to string", type));
}

// What a nil variant gives.
template <class T>
const CNeverDestroyed<T> kEmpty;

// Calls `call` with the kind as a compile-time constant, for the type codes 1 to 26.
template <class Call>
[[gnu::always_inline]] inline auto Dispatch(std::uint32_t type, Call&& call) {
  switch (type) {
#define RKXML_KIND(Kind, Name, Property, Value) \
  case ItemType_##Kind:                         \
    return call(std::integral_constant<ItemType, ItemType_##Kind>());
    RKXML_XSD_TYPES(RKXML_KIND, RKXML_KIND, RKXML_KIND)
#undef RKXML_KIND
    default:
      ThrowNoText(type);
  }
}

}  // namespace

RkVariant::RkVariant(const RkVariant& other) : m_nil(other.m_nil), m_type(other.m_type), m_slot(other.m_slot) {
  TakeValue(other);
  if (m_type >= kXmlObject && m_slot.reference.object != nullptr) m_slot.reference.object->AddRef();
}

RkVariant::RkVariant(RkVariant&& other) noexcept
    : m_nil(std::exchange(other.m_nil, false)), m_type(std::exchange(other.m_type, 0)), m_slot(other.m_slot) {
  TakeValue(std::move(other));
}

RkVariant& RkVariant::operator=(const RkVariant& other) {
  if (this != &other) *this = RkVariant(other);
  return *this;
}

RkVariant& RkVariant::operator=(RkVariant&& other) noexcept {
  if (this == &other) return *this;
  // The old value may own `other` through an object, so it goes last.
  RkVariant old(std::move(*this));
  m_nil = std::exchange(other.m_nil, false);
  m_type = std::exchange(other.m_type, 0);
  m_slot = other.m_slot;
  TakeValue(std::move(other));
  return *this;
}

template <class Other>
void RkVariant::TakeValue(Other&& other) {
  if (m_type == ItemType_string)
    m_text = std::forward<Other>(other).m_text;
  else
    m_owned.Take(m_type, std::forward<Other>(other).m_owned);
}

RkVariant::~RkVariant() {
  if (m_type >= kXmlObject) Clear();
}

void RkVariant::Clear() noexcept {
  CXmlObjectBase* const released = m_type >= kXmlObject ? m_slot.reference.object : nullptr;
  m_slot = Slot{};
  m_owned.Reset();
  if (m_text.capacity() > kKeptCapacity)
    std::wstring().swap(m_text);
  else
    m_text.clear();
  if (released != nullptr) released->Release();
}

// What should not stay until the next value of its kind.
void RkVariant::LetGo() noexcept {
  if (m_type < kXmlObject) return Clear();
  m_type = 0;
  if (CXmlObjectBase* const released = std::exchange(m_slot.reference, Reference{}).object) released->Release();
}

void RkVariant::SetNil() noexcept {
  Clear();
  m_nil = true;
}

std::wstring RkVariant::GetType() const {
  if (m_type == 0 || m_type >= std::size(kTypeNames)) ThrowInvalidType(m_type);
  return kTypeNames[m_type];
}

void RkVariant::RequireType(std::uint32_t type) const {
  if (m_type != type) ThrowInvalidType(m_type);
}

// Whether the value may go with what the variant holds now.
bool RkVariant::MayHold(const void* value) const noexcept {
  return m_type >= kXmlObject ||
         reinterpret_cast<std::uintptr_t>(value) - reinterpret_cast<std::uintptr_t>(this) < sizeof *this;
}

template <class T>
T* RkVariant::Room(std::uint32_t type) noexcept {
  return m_type == 0 || m_type == type ? const_cast<T*>(m_owned.Find<T>()) : nullptr;
}

// Reads a text of the plain shape into the value of this type that the variant holds already, where no lack of memory
// can leave it half read.
template <class T>
bool RkVariant::ReadInPlace(std::uint32_t type, std::wstring_view text) {
  const bool isSafe = noexcept(std::declval<T>().ParsePlain(text)) || text.size() <= CDigitVector::kFew;
  T* const present = isSafe ? Room<T>(type) : nullptr;
  if (present == nullptr || !present->ParsePlain(text)) return false;
  m_nil = false;
  m_type = type;
  return true;
}

template <class T, class Value>
void RkVariant::SetOwned(std::uint32_t type, Value&& value) {
  if (T* const present = Room<T>(type)) {
    *present = std::forward<Value>(value);
  } else if (MayHold(&value)) {
    T copy(std::forward<Value>(value));
    Begin(type);
    m_owned.Emplace<T>(std::move(copy));
  } else {
    Begin(type);
    m_owned.Emplace<T>(std::forward<Value>(value));
  }
  m_nil = false;
  m_type = type;
}

template <class T>
const T& RkVariant::Owned(std::uint32_t type) const {
  RequireType(type);
  if (const T* const value = m_owned.Find<T>()) return *value;
  return kEmpty<T>.Get();
}

// Numbers lie in the slot, a string in the text, any other value in m_owned.
template <ItemType kItem, class Value>
void RkVariant::SetValue(Value&& value) {
  using Type = XsdValue<kItem>;
  if constexpr (std::is_arithmetic_v<Type>) {
    Begin(kItem);
    std::memcpy(&m_slot.scalar, &value, sizeof value);
  } else if constexpr (kItem == ItemType_string) {
    SetString(std::wstring_view(value));
  } else {
    SetOwned<Type>(kItem, std::forward<Value>(value));
  }
}

template <ItemType kItem>
XsdArgument<XsdValue<kItem>> RkVariant::GetValue() const {
  using Type = XsdValue<kItem>;
  if constexpr (std::is_arithmetic_v<Type>) {
    RequireType(kItem);
    Type value;
    std::memcpy(&value, &m_slot.scalar, sizeof value);
    return value;
  } else if constexpr (kItem == ItemType_string) {
    RequireType(kItem);
    return m_text;
  } else {
    return Owned<Type>(kItem);
  }
}

#define RKXML_ACCESSORS(Kind, Name, Property, Value)                                              \
  void RkVariant::Set##Property(XsdArgument<Value> value) noexcept(std::is_arithmetic_v<Value>) { \
    SetValue<ItemType_##Kind>(value);                                                             \
  }                                                                                               \
  XsdArgument<Value> RkVariant::Get##Property() const { return GetValue<ItemType_##Kind>(); }
RKXML_XSD_TYPES(RKXML_ACCESSORS, RKXML_ACCESSORS, RKXML_ACCESSORS)
#undef RKXML_ACCESSORS

void RkVariant::SetDecimal(CDecimal&& value) { SetOwned<CDecimal>(ItemType_decimal, std::move(value)); }
void RkVariant::SetInteger(CBigInteger&& value) { SetOwned<CBigInteger>(ItemType_integer, std::move(value)); }

void RkVariant::SetString(std::wstring&& value) {
  std::wstring taken(std::move(value));  // the value may lie in this variant or in the object it holds
  Begin(ItemType_string);
  m_text = std::move(taken);
}

void RkVariant::SetString(std::wstring_view value) {
  if (m_type >= kXmlObject) return SetString(std::wstring(value));  // the object may hold the text
  if (m_type != ItemType_string) Begin(ItemType_string);
  m_nil = false;
  const bool isOwn = value.data() >= m_text.data() && value.data() <= m_text.data() + m_text.size();
  if (isOwn || value.size() > m_text.capacity()) {
    m_text.assign(value);
  } else {  // the same in fewer steps
    m_text.clear();
    m_text.append(value.data(), value.size());
  }
}

void RkVariant::SetString(const wchar_t* value) {
  SetString(value == nullptr ? std::wstring_view() : std::wstring_view(value));
}

void RkVariant::SetReference(std::uint32_t type, CXmlObjectBase* object, CXmlCollectionBase* collection) {
  if (object != nullptr) object->AddRef();
  Begin(type);
  m_slot.reference = {object, collection};
}

void RkVariant::SetXmlObject(CXmlObjectBase* object) { SetReference(kXmlObject, object, nullptr); }

CSmartPtr<CXmlObjectBase> RkVariant::GetXmlObject() const { return PeekXmlObject(); }

CSmartPtr<CXmlObjectBase> RkVariant::TakeXmlObject() noexcept {
  CSmartPtr<CXmlObjectBase> object;
  if (m_type == kXmlObject) object.Attach(std::exchange(m_slot.reference, Reference{}).object);
  return object;
}

std::wstring RkVariant::ToString(const wchar_t* format) const {
  std::wstring text;
  AppendTo(text, format);
  return text;
}

void RkVariant::AppendTo(std::wstring& out, const wchar_t* format) const {
  Dispatch(m_type, [&](auto item) {
    constexpr ItemType kItem = decltype(item)::value;
    CConversions::AppendTo<kItem>(out, GetValue<kItem>(), format);
  });
}

std::wstring_view RkVariant::GetText(TextSpace& space, const wchar_t* format) const {
  return Dispatch(m_type, [&](auto item) -> std::wstring_view {
    constexpr ItemType kItem = decltype(item)::value;
    return CConversions::GetText<kItem>(GetValue<kItem>(), space, format);
  });
}

void RkVariant::FromString(const std::wstring& text) { FromText(text, static_cast<ItemType>(m_type)); }

void RkVariant::FromString(const std::wstring& text, ItemType type, CWhitespaceUtils::WhitespaceRule rule) {
  FromText(text, type, rule);
}

void RkVariant::FromString(const std::wstring& text, ItemType type) { FromText(text, type); }

void RkVariant::FromText(std::wstring_view text, ItemType type) {
  const bool keepsSpace = type == ItemType_string || type == ItemType_char;
  FromText(text, type, keepsSpace ? CWhitespaceUtils::none : CWhitespaceUtils::collapse);
}

// One function for each kind and code path, so that none reserves stack for the values of another.
template <ItemType kItem>
[[gnu::noinline]] void RkVariant::ReadPlain(std::wstring_view text, CWhitespaceUtils::WhitespaceRule rule) {
  if (!CWhitespaceUtils::IsRule(rule) || !ReadInPlace<XsdValue<kItem>>(kItem, text)) Read<kItem>(text, rule);
}

template <ItemType kItem>
[[gnu::noinline]] void RkVariant::Read(std::wstring_view text, CWhitespaceUtils::WhitespaceRule rule) {
  if constexpr (kItem == ItemType_string) {
    if (rule == CWhitespaceUtils::none || rule == CWhitespaceUtils::preserve) return SetString(text);
    std::wstring scratch;
    SetString(CWhitespaceUtils::ApplyRule(rule, text, scratch));
  } else {
    SetValue<kItem>(CConversions::FromText<kItem>(text, rule));
  }
}

void RkVariant::FromText(std::wstring_view text, ItemType type, CWhitespaceUtils::WhitespaceRule rule) {
  Dispatch(static_cast<std::uint32_t>(type), [&](auto item) {
    constexpr ItemType kItem = decltype(item)::value;
    if constexpr (kItem == ItemType_decimal || kItem == ItemType_dateTime)
      ReadPlain<kItem>(text, rule);
    else
      Read<kItem>(text, rule);
  });
}

}  // namespace RkXmlLib16

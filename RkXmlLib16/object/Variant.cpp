#include "RkXmlLib16/object/Variant.h"

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
constexpr const wchar_t* kTypeNames[] = {
    nullptr, L"hexBinary", L"base64Binary", L"i1",   L"i2",       L"i4",        L"i8",       L"ui1",     L"ui2",
    L"ui4",  L"ui8",       L"r4",           L"r8",   L"duration", L"yearMonth", L"monthDay", L"year",    L"month",
    L"day",  L"date",      L"datetime",     L"time", L"char",     L"string",    L"boolean",  L"decimal", L"integer"};

[[noreturn]] void ThrowInvalidType(std::uint32_t type) { throw CRkException(FormatString(L"Invalid Type %u", type)); }

[[noreturn]] void ThrowNoText(std::uint32_t type) {
  throw CRkException(FormatString(L"Invalid Type %u to convert to string", type));
}

// What a nil variant gives.
template <class T>
const CNeverDestroyed<T> kEmpty;

// Calls `call` with the kind as a compile-time constant, for the type codes 1 to 26.
template <class Call>
[[gnu::always_inline]] inline void Dispatch(std::uint32_t type, Call&& call) {
  switch (type) {
#define RKXML_KIND(Item) \
  case Item:             \
    return call(std::integral_constant<ItemType, Item>())
    RKXML_KIND(ItemType_hexBinary);
    RKXML_KIND(ItemType_base64Binary);
    RKXML_KIND(ItemType_byte);
    RKXML_KIND(ItemType_short);
    RKXML_KIND(ItemType_int);
    RKXML_KIND(ItemType_long);
    RKXML_KIND(ItemType_unsignedByte);
    RKXML_KIND(ItemType_unsignedShort);
    RKXML_KIND(ItemType_unsignedInt);
    RKXML_KIND(ItemType_unsignedLong);
    RKXML_KIND(ItemType_float);
    RKXML_KIND(ItemType_double);
    RKXML_KIND(ItemType_duration);
    RKXML_KIND(ItemType_gYearMonth);
    RKXML_KIND(ItemType_gMonthDay);
    RKXML_KIND(ItemType_gYear);
    RKXML_KIND(ItemType_gMonth);
    RKXML_KIND(ItemType_gDay);
    RKXML_KIND(ItemType_date);
    RKXML_KIND(ItemType_dateTime);
    RKXML_KIND(ItemType_time);
    RKXML_KIND(ItemType_char);
    RKXML_KIND(ItemType_string);
    RKXML_KIND(ItemType_boolean);
    RKXML_KIND(ItemType_decimal);
    RKXML_KIND(ItemType_integer);
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
  constexpr std::size_t kInline = 16;  // digits
  T* const present = noexcept(std::declval<T>().ParsePlain(text)) || text.size() <= kInline ? Room<T>(type) : nullptr;
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

#define RKXML_SCALAR(Name, Type, slot, Item)       \
  void RkVariant::Set##Name(Type value) noexcept { \
    Begin(Item);                                   \
    m_slot.slot = value;                           \
  }                                                \
  Type RkVariant::Get##Name() const {              \
    RequireType(Item);                             \
    return m_slot.slot;                            \
  }
RKXML_SCALAR(I1, char, i1, ItemType_byte)
RKXML_SCALAR(I2, short, i2, ItemType_short)
RKXML_SCALAR(I4, long, i4, ItemType_int)
RKXML_SCALAR(I8, long long, i8, ItemType_long)
RKXML_SCALAR(UI1, unsigned char, ui1, ItemType_unsignedByte)
RKXML_SCALAR(UI2, unsigned short, ui2, ItemType_unsignedShort)
RKXML_SCALAR(UI4, unsigned long, ui4, ItemType_unsignedInt)
RKXML_SCALAR(UI8, unsigned long long, ui8, ItemType_unsignedLong)
RKXML_SCALAR(R4, float, r4, ItemType_float)
RKXML_SCALAR(R8, double, r8, ItemType_double)
RKXML_SCALAR(Year, unsigned short, ui2, ItemType_gYear)
RKXML_SCALAR(Month, unsigned char, ui1, ItemType_gMonth)
RKXML_SCALAR(Day, unsigned char, ui1, ItemType_gDay)
RKXML_SCALAR(Char, wchar_t, character, ItemType_char)
RKXML_SCALAR(Boolean, bool, boolean, ItemType_boolean)
#undef RKXML_SCALAR

#define RKXML_OWNED(Name, Type, Item)                                           \
  void RkVariant::Set##Name(const Type& value) { SetOwned<Type>(Item, value); } \
  const Type& RkVariant::Get##Name() const { return Owned<Type>(Item); }
RKXML_OWNED(HexBinary, CBinaryData, ItemType_hexBinary)
RKXML_OWNED(Base64Binary, CBinaryData, ItemType_base64Binary)
RKXML_OWNED(Duration, CDateTimeSpan, ItemType_duration)
RKXML_OWNED(YearMonth, CDateTime, ItemType_gYearMonth)
RKXML_OWNED(MonthDay, CDateTime, ItemType_gMonthDay)
RKXML_OWNED(Date, CDateTime, ItemType_date)
RKXML_OWNED(DateTime, CDateTime, ItemType_dateTime)
RKXML_OWNED(Time, CDateTime, ItemType_time)
RKXML_OWNED(Decimal, CDecimal, ItemType_decimal)
RKXML_OWNED(Integer, CBigInteger, ItemType_integer)
#undef RKXML_OWNED

void RkVariant::SetDecimal(CDecimal&& value) { SetOwned<CDecimal>(ItemType_decimal, std::move(value)); }
void RkVariant::SetInteger(CBigInteger&& value) { SetOwned<CBigInteger>(ItemType_integer, std::move(value)); }

void RkVariant::SetString(const std::wstring& value) { SetString(std::wstring_view(value)); }

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

const std::wstring& RkVariant::GetString() const {
  RequireType(ItemType_string);
  return m_text;
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
    using Value = XsdValue<kItem>;
    const auto append = [&](const Value& value) { CConversions::AppendTo<kItem>(out, value, format); };
    if constexpr (kItem == ItemType_byte)
      append(m_slot.i1);
    else if constexpr (kItem == ItemType_short)
      append(m_slot.i2);
    else if constexpr (kItem == ItemType_int)
      append(m_slot.i4);
    else if constexpr (kItem == ItemType_long)
      append(m_slot.i8);
    else if constexpr (kItem == ItemType_unsignedByte || kItem == ItemType_gMonth || kItem == ItemType_gDay)
      append(m_slot.ui1);
    else if constexpr (kItem == ItemType_unsignedShort || kItem == ItemType_gYear)
      append(m_slot.ui2);
    else if constexpr (kItem == ItemType_unsignedInt)
      append(m_slot.ui4);
    else if constexpr (kItem == ItemType_unsignedLong)
      append(m_slot.ui8);
    else if constexpr (kItem == ItemType_float)
      append(m_slot.r4);
    else if constexpr (kItem == ItemType_double)
      append(m_slot.r8);
    else if constexpr (kItem == ItemType_char)
      append(m_slot.character);
    else if constexpr (kItem == ItemType_boolean)
      append(m_slot.boolean);
    else if constexpr (kItem == ItemType_string)
      append(m_text);
    else
      append(Owned<Value>(kItem));
  });
}

std::wstring_view RkVariant::GetText(std::wstring& scratch, const wchar_t* format) const {
  if (m_type == ItemType_string) return m_text;
  scratch.clear();
  AppendTo(scratch, format);
  return scratch;
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
    return SetString(CWhitespaceUtils::ApplyRule(rule, text, scratch));
  }
  auto value = CConversions::FromText<kItem>(text, rule);
  if constexpr (kItem == ItemType_byte)
    SetI1(value);
  else if constexpr (kItem == ItemType_short)
    SetI2(value);
  else if constexpr (kItem == ItemType_int)
    SetI4(value);
  else if constexpr (kItem == ItemType_long)
    SetI8(value);
  else if constexpr (kItem == ItemType_unsignedByte)
    SetUI1(value);
  else if constexpr (kItem == ItemType_unsignedShort)
    SetUI2(value);
  else if constexpr (kItem == ItemType_unsignedInt)
    SetUI4(value);
  else if constexpr (kItem == ItemType_unsignedLong)
    SetUI8(value);
  else if constexpr (kItem == ItemType_float)
    SetR4(value);
  else if constexpr (kItem == ItemType_double)
    SetR8(value);
  else if constexpr (kItem == ItemType_gYear)
    SetYear(value);
  else if constexpr (kItem == ItemType_gMonth)
    SetMonth(value);
  else if constexpr (kItem == ItemType_gDay)
    SetDay(value);
  else if constexpr (kItem == ItemType_char)
    SetChar(value);
  else if constexpr (kItem == ItemType_boolean)
    SetBoolean(value);
  else if constexpr (kItem != ItemType_string)
    SetOwned<XsdValue<kItem>>(kItem, std::move(value));
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

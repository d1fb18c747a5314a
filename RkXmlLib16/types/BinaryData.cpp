#include "RkXmlLib16/types/BinaryData.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/LargeMemory.h"
#include "RkXmlLib16/base/internal/Sanitizer.h"
#include "RkXmlLib16/types/Base64.h"

namespace RkXmlLib16 {

namespace {

// From this size on bytes lie in memory that can mostly grow without being copied.
constexpr unsigned long kLarge = 4096;

void CopyBytes(unsigned char* to, const unsigned char* from, unsigned long length) {
  if (length > 0) std::memcpy(to, from, length);
}

unsigned long TextBytes(const wchar_t* text) { return text == nullptr ? 0 : std::wcslen(text) * sizeof(wchar_t); }

int HexDigit(wchar_t c) {
  if (c >= L'0' && c <= L'9') return c - L'0';
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  if (c >= L'a' && c <= L'f') return c - L'a' + 10;
  throw CRkException(FormatString(L"Invalid char in hex string [%c]", c));
}

}  // namespace

CDataHolder::CDataHolder() = default;

CDataHolder::CDataHolder(unsigned char* data, unsigned long length, bool copy) {
  if (copy) {
    Grow(length);
    CopyBytes(m_data, data, length);
  } else {
    m_data = data;
    m_capacity = length;
  }
  m_length = length;
}

CDataHolder::~CDataHolder() { FreeData(); }

void CDataHolder::AddRef() { m_refCount.fetch_add(1, std::memory_order_relaxed); }

void CDataHolder::Release(bool last) {
  const std::int64_t left = m_refCount.fetch_sub(1, std::memory_order_acq_rel) - 1;
  if (left <= 0)
    delete this;
  else if (last)
    throw CRkException(FormatString(L"Failed to release data. [RefCount=%I64d]", left));
}

CDataHolder* CDataHolder::GetExclusiveCopy() {
  if (!IsShared()) return this;
  CDataHolder* const copy = new CDataHolder(m_data, m_length, /*copy=*/true);
  Release(/*last=*/false);
  return copy;
}

void CDataHolder::Append(const unsigned char* data, unsigned long length) {
  if (IsShared()) {
    const long long count = m_refCount.load(std::memory_order_relaxed);
    throw CRkException(FormatString(L"Failed to append. [RefCount=%I64d]", count));
  }
  if (length > m_capacity - m_length) {
    const std::less<> before;
    const bool isOwn = m_data != nullptr && !before(data, m_data) && before(data, m_data + m_length);
    const std::ptrdiff_t offset = isOwn ? data - m_data : 0;
    Grow(GrownCapacity(length));
    if (isOwn) data = m_data + offset;
  }
  CopyBytes(m_data + m_length, data, length);
  m_length += length;
}

unsigned char* CDataHolder::Extend(unsigned long count) {
  if (count > m_capacity - m_length) Grow(GrownCapacity(count));
  unsigned char* const added = m_data + m_length;
  m_length += count;
  return added;
}

void CDataHolder::Reserve(unsigned long capacity) {
  if (capacity > m_capacity) Grow(capacity);
}

unsigned long CDataHolder::GrownCapacity(unsigned long count) const {
  constexpr unsigned long kMost = std::numeric_limits<unsigned long>::max() / 4;
  if (count > kMost || m_length > kMost) throw std::bad_alloc();
  return 2 * (m_length + count);
}

void CDataHolder::Grow(unsigned long capacity) {
  if (capacity > PTRDIFF_MAX - kHugePage) throw std::bad_alloc();
  Origin origin = Origin::Array;
  if (capacity >= kHugePage && !kIsSanitized) {
    origin = Origin::Large;
    capacity = CLargeMemory::RoundUp(capacity);
  } else if (capacity >= kLarge) {
    origin = Origin::Heap;
  }
  if (origin == m_origin && origin != Origin::Array) {
    m_data = Enlarge(capacity);
  } else {
    unsigned char* const grown = Allocate(origin, capacity);
    CopyBytes(grown, m_data, m_length);
    FreeData();
    m_data = grown;
    m_origin = origin;
  }
  m_capacity = capacity;
}

unsigned char* CDataHolder::Allocate(Origin origin, unsigned long capacity) {
  if (origin == Origin::Array) return new unsigned char[capacity];
  void* const memory = origin == Origin::Large ? CLargeMemory::Allocate(capacity) : std::malloc(capacity);
  if (memory == nullptr) throw std::bad_alloc();
  return static_cast<unsigned char*>(memory);
}

unsigned char* CDataHolder::Enlarge(unsigned long capacity) {
  void* const memory =
      m_origin == Origin::Large ? CLargeMemory::Grow(m_data, m_capacity, capacity) : std::realloc(m_data, capacity);
  if (memory == nullptr) throw std::bad_alloc();
  return static_cast<unsigned char*>(memory);
}

void CDataHolder::FreeData() noexcept {
  switch (m_origin) {
    case Origin::Array:
      delete[] m_data;
      break;
    case Origin::Heap:
      std::free(m_data);
      break;
    case Origin::Large:
      CLargeMemory::Free(m_data, m_capacity);
      break;
  }
}

unsigned char* CDataHolder::DetachData() {
  if (m_origin == Origin::Array) return std::exchange(m_data, nullptr);
  unsigned char* const array = new unsigned char[m_length];
  CopyBytes(array, m_data, m_length);
  return array;
}

CBinaryData::CBinaryData() noexcept = default;

CBinaryData::CBinaryData(const CBinaryData& other) : m_holder(other.m_holder) {
  if (m_holder != nullptr) m_holder->AddRef();
}

CBinaryData::CBinaryData(CBinaryData&& other) noexcept : m_holder(std::exchange(other.m_holder, nullptr)) {}

CBinaryData::CBinaryData(unsigned char* data, unsigned long length, bool copy)
    : m_holder(new CDataHolder(data, length, copy)) {}

// Delegates, so that a failing append frees what it allocated.
CBinaryData::CBinaryData(const wchar_t* text) : CBinaryData() { Append(text); }

CBinaryData& CBinaryData::operator=(const CBinaryData& other) {
  CBinaryData(other).Swap(*this);
  return *this;
}

CBinaryData& CBinaryData::operator=(CBinaryData&& other) noexcept {
  CBinaryData(std::move(other)).Swap(*this);
  return *this;
}

CBinaryData::~CBinaryData() {
  if (m_holder != nullptr) m_holder->Release(/*last=*/false);
}

void CBinaryData::Swap(CBinaryData& other) noexcept { std::swap(m_holder, other.m_holder); }

unsigned char* CBinaryData::GetData() const noexcept { return m_holder == nullptr ? nullptr : m_holder->GetData(); }

unsigned long CBinaryData::GetLength() const noexcept { return m_holder == nullptr ? 0 : m_holder->GetLength(); }

unsigned char CBinaryData::operator[](unsigned long index) const {
  CheckIndex(index);
  return m_holder->m_data[index];
}

unsigned char& CBinaryData::operator[](unsigned long index) {
  CheckIndex(index);
  return Exclusive().m_data[index];
}

void CBinaryData::CheckIndex(unsigned long index) const {
  if (index >= GetLength())
    throw CRkException(FormatString(L"Index Out of range [%I64u]", static_cast<unsigned long long>(index)));
}

bool CBinaryData::operator==(const CBinaryData& other) const noexcept {
  const unsigned long length = GetLength();
  return length == other.GetLength() &&
         (m_holder == other.m_holder || length == 0 || std::memcmp(GetData(), other.GetData(), length) == 0);
}

void CBinaryData::Clear() {
  if (m_holder != nullptr && !m_holder->IsShared())
    m_holder->m_length = 0;
  else
    CBinaryData().Swap(*this);
}

unsigned char* CBinaryData::ReleaseData(unsigned long* length) {
  if (m_holder != nullptr) Exclusive();
  unsigned char* const data = m_holder != nullptr ? m_holder->DetachData() : nullptr;
  if (length != nullptr) *length = GetLength();
  CBinaryData().Swap(*this);
  return data;
}

void CBinaryData::SetBuffer(const unsigned char* data, unsigned long length) {
  // Through a second buffer, because the bytes may be this object's own.
  CBinaryData replacement;
  replacement.Reserve(length);
  replacement.Append(data, length);
  replacement.Swap(*this);
}

void CBinaryData::SetBuffer(const wchar_t* text) { CBinaryData(text).Swap(*this); }

void CBinaryData::Append(const unsigned char* data, unsigned long length) {
  // The bytes may lie in the shared buffer that this object is about to leave: hold it until they are copied.
  const CBinaryData keep = m_holder != nullptr && m_holder->IsShared() ? *this : CBinaryData();
  Exclusive().Append(data, length);
}

void CBinaryData::Append(unsigned char byte) {
  CDataHolder& holder = Exclusive();
  if (holder.m_length < holder.m_capacity)
    holder.m_data[holder.m_length++] = byte;
  else
    holder.Append(&byte, 1);
}

void CBinaryData::Append(wchar_t character) {
  Append(reinterpret_cast<const unsigned char*>(&character), sizeof character);
}

void CBinaryData::Append(const wchar_t* text) {
  if (text != nullptr) Append(reinterpret_cast<const unsigned char*>(text), TextBytes(text));
}

void CBinaryData::Append(const std::wstring& text) { Append(text.c_str()); }

void CBinaryData::Append(const CBinaryData& other) { Append(other.GetData(), other.GetLength()); }

unsigned char* CBinaryData::Extend(unsigned long count) { return Exclusive().Extend(count); }

void CBinaryData::Truncate(unsigned long length) {
  if (length < GetLength()) Exclusive().m_length = length;
}

void CBinaryData::Reserve(unsigned long capacity) { Exclusive().Reserve(capacity); }

std::wstring CBinaryData::GetAsHexString() const { return GetAsHexString(GetData(), GetLength()); }

std::wstring CBinaryData::GetAsHexString(const unsigned char* data, unsigned long length) {
  static constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
  std::wstring text(length * 2, L'0');
  wchar_t* out = text.data();
  for (unsigned long i = 0; i < length; ++i) {
    *out++ = kDigits[data[i] >> 4];
    *out++ = kDigits[data[i] & 0xF];
  }
  return text;
}

void CBinaryData::SetAsHexString(const wchar_t* text) {
  unsigned char* data = nullptr;
  const unsigned long length = ConvertToHexData(text, &data);
  std::unique_ptr<unsigned char[]> owned(data);
  CBinaryData replacement(data, length, /*copy=*/false);
  static_cast<void>(owned.release());
  replacement.Swap(*this);
}

unsigned long CBinaryData::ConvertToHexData(const wchar_t* text, unsigned char** data) {
  const unsigned long digits = text == nullptr ? 0 : std::wcslen(text);
  if (digits % 2 != 0) throw CRkException(L"Invalid length in hex string");
  const unsigned long length = digits / 2;
  auto bytes = std::make_unique<unsigned char[]>(length);
  for (unsigned long i = 0; i < length; ++i) {
    const int high = HexDigit(text[2 * i]);
    bytes[i] = static_cast<unsigned char>(high << 4 | HexDigit(text[2 * i + 1]));
  }
  *data = bytes.release();
  return length;
}

std::wstring CBinaryData::GetAsBase64() const { return CBase64::Encode(GetData(), GetLength()); }

void CBinaryData::SetAsBase64(const wchar_t* text) {
  CBinaryData replacement;
  if (text != nullptr) {
    const unsigned long most = std::wcslen(text) / 4 * 3;
    replacement.Reserve(most);
    replacement.Truncate(CBase64::Decode(text, replacement.Extend(most)));
  }
  replacement.Swap(*this);
}

CDataHolder& CBinaryData::Exclusive() {
  m_holder = m_holder == nullptr ? new CDataHolder() : m_holder->GetExclusiveCopy();
  return *m_holder;
}

}  // namespace RkXmlLib16

#include "RkXmlLib16/types/DigitVector.h"

#include <algorithm>
#include <new>

namespace RkXmlLib16 {

namespace {

constexpr std::size_t kMost = std::size_t{1} << 31;

}  // namespace

void CDigitVector::CopyLong(const CDigitVector& other) {
  SetSize(0);
  reserve(other.size());
  std::memcpy(data(), other.data(), other.size());
  SetSize(other.size());
}

void CDigitVector::Grow(std::size_t capacity) {
  capacity = std::max(capacity, GetCapacity() * 2);
  if (capacity > kMost) throw std::bad_alloc();
  auto* const grown = ::new (::operator new(sizeof(Block) + capacity))
      Block{static_cast<std::uint32_t>(capacity), static_cast<std::uint32_t>(size())};
  std::memcpy(grown->Digits(), data(), size());
  Free();
  std::memcpy(m_own, &grown, sizeof grown);
  m_size = kOnHeap;
}

void CDigitVector::resize(std::size_t count, wchar_t digit) {
  const std::size_t before = size();
  reserve(count);
  if (count > before) std::memset(data() + before, static_cast<unsigned char>(digit), count - before);
  SetSize(count);
}

void CDigitVector::insert_zeros(std::size_t count) {
  const std::size_t before = size();
  reserve(before + count);
  std::memmove(data() + count, data(), before);
  std::memset(data(), 0, count);
  SetSize(before + count);
}

void CDigitVector::erase_front(std::size_t count) noexcept {
  SetSize(size() - count);
  std::memmove(data(), data() + count, size());
}

}  // namespace RkXmlLib16

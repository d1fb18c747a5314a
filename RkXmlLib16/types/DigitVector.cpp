#include "RkXmlLib16/types/DigitVector.h"

#include <algorithm>
#include <limits>
#include <new>

namespace RkXmlLib16 {

void CDigitVector::CopyLong(const CDigitVector& other) {
  if (this == &other) return;
  m_size = 0;
  reserve(other.m_size);
  std::memcpy(data(), other.data(), other.m_size);
  m_size = other.m_size;
}

void CDigitVector::Grow(std::size_t capacity) {
  capacity = std::max(capacity, std::size_t{m_capacity} * 2);
  if (capacity > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
  unsigned char* const grown = new unsigned char[capacity];
  std::memcpy(grown, data(), m_size);
  Free();
  m_digits.heap = grown;
  m_capacity = static_cast<std::uint32_t>(capacity);
}

void CDigitVector::resize(std::size_t count, wchar_t digit) {
  reserve(count);
  if (count > m_size) std::memset(data() + m_size, static_cast<unsigned char>(digit), count - m_size);
  m_size = static_cast<std::uint32_t>(count);
}

void CDigitVector::insert_zeros(std::size_t count) {
  reserve(m_size + count);
  std::memmove(data() + count, data(), m_size);
  std::memset(data(), 0, count);
  m_size += static_cast<std::uint32_t>(count);
}

void CDigitVector::erase_front(std::size_t count) noexcept {
  m_size -= static_cast<std::uint32_t>(count);
  std::memmove(data(), data() + count, m_size);
}

}  // namespace RkXmlLib16

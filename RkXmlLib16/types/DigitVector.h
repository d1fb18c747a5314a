#ifndef RKXMLLIB16_TYPES_DIGITVECTOR_H
#define RKXMLLIB16_TYPES_DIGITVECTOR_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// A vector of decimal digits, the numbers 0 to 9, that keeps up to 16 of them without an allocation.
class RKXML_EXPORT CDigitVector {
 public:
  using value_type = unsigned char;
  using iterator = unsigned char*;
  using const_iterator = const unsigned char*;

  CDigitVector() noexcept {}
  CDigitVector(std::size_t count, wchar_t digit) { resize(count, digit); }
  CDigitVector(std::initializer_list<wchar_t> digits) { assign(digits.begin(), digits.end()); }
  CDigitVector(const std::vector<wchar_t>& digits) { assign(digits.begin(), digits.end()); }
  operator std::vector<wchar_t>() const { return std::vector<wchar_t>(begin(), end()); }
  CDigitVector(const CDigitVector& other) { *this = other; }
  CDigitVector(CDigitVector&& other) noexcept { Take(other); }
  CDigitVector& operator=(const CDigitVector& other) {
    if (other.m_size > kInline || m_capacity > kInline) {
      CopyLong(other);
    } else {
      m_size = other.m_size;
      std::memcpy(m_digits.own, other.data(), kInline);
    }
    return *this;
  }
  CDigitVector& operator=(CDigitVector&& other) noexcept {
    if (this != &other) {
      Free();
      Take(other);
    }
    return *this;
  }
  ~CDigitVector() { Free(); }

  std::size_t size() const noexcept { return m_size; }
  bool empty() const noexcept { return m_size == 0; }
  unsigned char* data() noexcept { return m_capacity > kInline ? m_digits.heap : m_digits.own; }
  const unsigned char* data() const noexcept { return m_capacity > kInline ? m_digits.heap : m_digits.own; }
  unsigned char& operator[](std::size_t i) noexcept { return data()[i]; }
  wchar_t operator[](std::size_t i) const noexcept { return data()[i]; }
  iterator begin() noexcept { return data(); }
  iterator end() noexcept { return data() + m_size; }
  const_iterator begin() const noexcept { return data(); }
  const_iterator end() const noexcept { return data() + m_size; }
  wchar_t back() const noexcept { return data()[m_size - 1]; }

  void clear() noexcept { m_size = 0; }
  void reserve(std::size_t capacity) {
    if (capacity > m_capacity) Grow(capacity);
  }
  void push_back(wchar_t digit) {
    if (m_size == m_capacity) Grow(std::size_t{m_size} + 1);
    data()[m_size++] = static_cast<unsigned char>(digit);
  }
  void pop_back() noexcept { --m_size; }
  // Makes the vector `count` digits long, all to be written by the caller, and returns the first.
  unsigned char* Overwrite(std::size_t count) {
    reserve(count);
    m_size = static_cast<std::uint32_t>(count);
    return data();
  }
  // Up to eight digits, one in each byte of `packed`, the first in the lowest; without zeros behind the last.
  void AssignPacked(std::uint64_t packed) noexcept {
    const auto bits = packed == 0 ? 1 : 64 - __builtin_clzll(packed);
    m_size = static_cast<std::uint32_t>(bits + 7) / 8;
    std::memcpy(data(), &packed, sizeof packed);
  }
  // Whether there are no more than eight digits, and what AssignPacked makes them of then.
  bool FitsPacked() const noexcept { return m_size <= sizeof(std::uint64_t); }
  std::uint64_t GetPacked() const noexcept {
    std::uint64_t packed = 0;
    std::memcpy(&packed, data(), sizeof packed);
    return m_size == 0 ? 0 : packed & ~std::uint64_t{0} >> (64 - 8 * m_size);
  }
  // New digits are `digit`.
  void resize(std::size_t count, wchar_t digit = 0);
  // Puts `count` zeros in front of the first digit, or drops the first `count` digits.
  void insert_zeros(std::size_t count);
  void erase_front(std::size_t count) noexcept;
  template <class Iterator>
  void assign(Iterator first, Iterator last) {
    clear();
    for (; first != last; ++first) push_back(static_cast<wchar_t>(*first));
  }

  friend bool operator==(const CDigitVector& a, const CDigitVector& b) noexcept {
    return a.m_size == b.m_size && std::memcmp(a.data(), b.data(), a.m_size) == 0;
  }
  friend bool operator!=(const CDigitVector& a, const CDigitVector& b) noexcept { return !(a == b); }

 private:
  static constexpr std::uint32_t kInline = 16;

  void Grow(std::size_t capacity);
  void Free() noexcept {
    if (m_capacity > kInline) delete[] m_digits.heap;
  }
  void Take(CDigitVector& other) noexcept {
    m_size = std::exchange(other.m_size, 0u);
    m_capacity = std::exchange(other.m_capacity, kInline);
    m_digits = other.m_digits;
  }
  void CopyLong(const CDigitVector& other);

  std::uint32_t m_size = 0;
  std::uint32_t m_capacity = kInline;
  union {
    unsigned char own[kInline];
    unsigned char* heap;
  } m_digits = {};
};

}  // namespace RkXmlLib16

#endif

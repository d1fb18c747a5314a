#ifndef RKXMLLIB16_TYPES_DIGITVECTOR_H
#define RKXMLLIB16_TYPES_DIGITVECTOR_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <new>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// A vector of decimal digits, the numbers 0 to 9, that keeps up to kFew of them without an allocation. Unaligned, so
// that a sign in front of it costs one byte.
class RKXML_EXPORT CDigitVector {
 public:
  using value_type = unsigned char;
  using iterator = unsigned char*;
  using const_iterator = const unsigned char*;

  static constexpr std::size_t kFew = 14;

  CDigitVector() noexcept {}
  CDigitVector(std::size_t count, wchar_t digit) { resize(count, digit); }
  CDigitVector(std::initializer_list<wchar_t> digits) { assign(digits.begin(), digits.end()); }
  CDigitVector(const std::vector<wchar_t>& digits) { assign(digits.begin(), digits.end()); }
  operator std::vector<wchar_t>() const { return std::vector<wchar_t>(begin(), end()); }
  CDigitVector(const CDigitVector& other) { *this = other; }
  CDigitVector(CDigitVector&& other) noexcept { Take(other); }
  CDigitVector& operator=(const CDigitVector& other) {
    if (this == &other) return *this;
    if (IsOnHeap() || other.IsOnHeap()) {
      CopyLong(other);
    } else {
      m_size = other.m_size;
      std::memcpy(m_own, other.m_own, kFew);
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

  std::size_t size() const noexcept { return IsOnHeap() ? Heap()->size : m_size; }
  bool empty() const noexcept { return size() == 0; }
  unsigned char* data() noexcept { return IsOnHeap() ? Heap()->Digits() : m_own; }
  const unsigned char* data() const noexcept { return IsOnHeap() ? Heap()->Digits() : m_own; }
  unsigned char& operator[](std::size_t i) noexcept { return data()[i]; }
  wchar_t operator[](std::size_t i) const noexcept { return data()[i]; }
  iterator begin() noexcept { return data(); }
  iterator end() noexcept { return data() + size(); }
  const_iterator begin() const noexcept { return data(); }
  const_iterator end() const noexcept { return data() + size(); }
  wchar_t back() const noexcept { return data()[size() - 1]; }

  void clear() noexcept { SetSize(0); }
  void reserve(std::size_t capacity) {
    if (capacity > GetCapacity()) Grow(capacity);
  }
  void push_back(wchar_t digit) {
    reserve(size() + 1);
    data()[size()] = static_cast<unsigned char>(digit);
    SetSize(size() + 1);
  }
  void pop_back() noexcept { SetSize(size() - 1); }
  // Makes the vector `count` digits long, all to be written by the caller, and returns the first.
  unsigned char* Overwrite(std::size_t count) {
    reserve(count);
    SetSize(count);
    return data();
  }
  // Up to eight digits, one in each byte of `packed`, the first in the lowest; without zeros behind the last.
  void AssignPacked(std::uint64_t packed) noexcept {
    const auto bits = packed == 0 ? 1 : 64 - __builtin_clzll(packed);
    Free();
    m_size = static_cast<unsigned char>((bits + 7) / 8);
    std::memcpy(m_own, &packed, sizeof packed);
  }
  // Whether there are no more than eight digits, and none stand apart: then they are what AssignPacked makes of these.
  bool FitsPacked() const noexcept { return m_size <= sizeof(std::uint64_t); }
  std::uint64_t GetPacked() const noexcept {
    std::uint64_t packed = 0;
    std::memcpy(&packed, m_own, sizeof packed);
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
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size()) == 0;
  }
  friend bool operator!=(const CDigitVector& a, const CDigitVector& b) noexcept { return !(a == b); }

 private:
  static constexpr unsigned char kOnHeap = 0xFF;
  // The digits follow it.
  struct Block {
    std::uint32_t capacity;
    std::uint32_t size;

    unsigned char* Digits() noexcept { return reinterpret_cast<unsigned char*>(this + 1); }
  };

  bool IsOnHeap() const noexcept { return m_size == kOnHeap; }
  Block* Heap() const noexcept {
    Block* block = nullptr;
    std::memcpy(&block, m_own, sizeof(void*));
    return block;
  }
  std::size_t GetCapacity() const noexcept { return IsOnHeap() ? Heap()->capacity : kFew; }
  void SetSize(std::size_t size) noexcept {
    if (IsOnHeap())
      Heap()->size = static_cast<std::uint32_t>(size);
    else
      m_size = static_cast<unsigned char>(size);
  }
  void Grow(std::size_t capacity);
  void Free() noexcept {
    if (IsOnHeap()) ::operator delete(Heap());
  }
  void Take(CDigitVector& other) noexcept {
    m_size = std::exchange(other.m_size, static_cast<unsigned char>(0));
    std::memcpy(m_own, other.m_own, kFew);
  }
  void CopyLong(const CDigitVector& other);

  unsigned char m_size = 0;        // kOnHeap where the digits are not here
  unsigned char m_own[kFew] = {};  // or the address of a Block
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_BASE_FRONTGAPVECTOR_H
#define RKXMLLIB16_BASE_FRONTGAPVECTOR_H

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace RkXmlLib16 {

// A vector that grows and shrinks at the front as quickly as at the end, because it keeps places free there. Elsewhere
// inserting and erasing move what stands behind, as in any vector. T() fills the free places.
template <class T>
class CFrontGapVector {
 public:
  using iterator = typename std::vector<T>::iterator;
  using const_iterator = typename std::vector<T>::const_iterator;
  using reference = typename std::vector<T>::reference;
  using const_reference = typename std::vector<T>::const_reference;

  std::size_t size() const noexcept { return m_values.size() - m_gap; }
  bool empty() const noexcept { return size() == 0; }
  reference operator[](std::size_t index) { return m_values[m_gap + index]; }
  const_reference operator[](std::size_t index) const { return m_values[m_gap + index]; }
  reference back() { return m_values.back(); }
  iterator begin() noexcept { return m_values.begin() + static_cast<std::ptrdiff_t>(m_gap); }
  iterator end() noexcept { return m_values.end(); }
  const_iterator begin() const noexcept { return m_values.begin() + static_cast<std::ptrdiff_t>(m_gap); }
  const_iterator end() const noexcept { return m_values.end(); }

  void reserve(std::size_t count) { m_values.reserve(m_gap + count); }
  template <class... Arguments>
  reference emplace_back(Arguments&&... arguments) {
    return m_values.emplace_back(std::forward<Arguments>(arguments)...);
  }
  void push_back(T value) { m_values.push_back(std::move(value)); }
  void pop_back() { m_values.pop_back(); }

  void insert(std::size_t index, T value) {
    if (index > 0 || empty()) {
      m_values.insert(begin() + static_cast<std::ptrdiff_t>(index), std::move(value));
      return;
    }
    if (m_gap == 0) MakeGap(size());
    m_values[--m_gap] = std::move(value);
  }
  void erase(std::size_t index) {
    if (index > 0) {
      m_values.erase(begin() + static_cast<std::ptrdiff_t>(index));
      return;
    }
    m_values[m_gap++] = T();
    // Not before three quarters are free, so that a gap just made stays.
    if (m_gap <= m_values.size() - m_values.size() / 4) return;
    m_values.erase(m_values.begin(), begin());
    m_gap = 0;
  }

 private:
  void MakeGap(std::size_t count) {
    std::vector<T> grown(count);
    grown.reserve(count + m_values.size());
    std::move(m_values.begin(), m_values.end(), std::back_inserter(grown));
    m_values.swap(grown);
    m_gap = count;
  }

  std::vector<T> m_values;
  std::size_t m_gap = 0;  // free places at the front
};

}  // namespace RkXmlLib16

#endif

#include "Notes.h"

#include <algorithm>

namespace {

constexpr unsigned kBits = 8;

unsigned char BitOf(std::uint64_t question) { return static_cast<unsigned char>(1U << question % kBits); }

}  // namespace

std::uint64_t Notes::Ask() {
  if (m_asked % kBits == 0) {
    if (m_window.size() == kWindow) {
      constexpr std::ptrdiff_t kOut = kWindow / 2;
      m_file.WriteAt(m_windowStart, m_window.data(), kOut);
      m_window.erase(m_window.begin(), m_window.begin() + kOut);
      m_windowStart += kOut;
    }
    m_window.push_back(0);
  }
  return m_asked++;
}

void Notes::Answer(std::uint64_t question) {
  const std::uint64_t at = question / kBits;
  if (at >= m_windowStart) {
    m_window[at - m_windowStart] |= BitOf(question);
    return;
  }
  unsigned char byte = 0;
  m_file.ReadAt(at, &byte, 1);
  byte |= BitOf(question);
  m_file.WriteAt(at, &byte, 1);
}

bool Notes::Next() {
  if (m_read == m_asked) return false;  // the document has changed since it was asked about
  const std::uint64_t question = m_read++;
  const std::uint64_t at = question / kBits;
  if (at >= m_windowStart) return (m_window[at - m_windowStart] & BitOf(question)) != 0;
  if (question % (kWindow * kBits) == 0) {
    m_piece.resize(std::min<std::uint64_t>(kWindow, m_windowStart - at));
    m_file.ReadAt(at, m_piece.data(), m_piece.size());
  }
  return (m_piece[at % kWindow] & BitOf(question)) != 0;
}

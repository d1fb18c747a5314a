#include "RkXmlLib16/io/StringBuffer.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>

namespace RkXmlLib16 {

CStringBuffer::CStringBuffer() = default;

CStringBuffer::CStringBuffer(unsigned long blockSize) : m_blockSize(blockSize < 2 ? 1 : blockSize - 1) {}

CStringBuffer::~CStringBuffer() = default;

void CStringBuffer::Append(const wchar_t* text) {
  if (text != nullptr) Append(std::wstring_view(text));
}

void CStringBuffer::AppendInPieces(std::wstring_view text) {
  while (!text.empty()) {
    if (m_used == m_capacity) AddNewBlock(m_blockSize);
    const std::size_t piece = std::min<std::size_t>(text.size(), m_capacity - m_used);
    Append(text.substr(0, piece));
    text.remove_prefix(piece);
  }
}

void CStringBuffer::SetText(const wchar_t* text) {
  Clear();
  Append(text);
}

const wchar_t* CStringBuffer::GetText() {
  if (m_blocks.empty()) return L"";
  if (m_blocks.size() > 1) {
    const unsigned long length = GetLength();
    Block whole = MakeBlock(length);
    wchar_t* end = whole.text.get();
    ForEachBlock(
        [&end](std::wstring_view block) { end = std::wmemcpy(end, block.data(), block.size()) + block.size(); });
    m_blocks.erase(m_blocks.begin() + 1, m_blocks.end());
    m_blocks.front() = std::move(whole);
    SetCurrent(0, length);
  }
  m_current[m_used] = L'\0';
  return m_current;
}

std::wstring CStringBuffer::ToString() const {
  std::wstring text;
  text.reserve(GetLength());
  ForEachBlock([&text](std::wstring_view block) { text += block; });
  return text;
}

void CStringBuffer::Empty() {
  if (m_blocks.size() > 1) m_blocks.clear();
  SetCurrent(0, 0);
}

void CStringBuffer::Clear() {
  m_blocks.clear();
  Empty();
}

CStringBuffer::Block CStringBuffer::MakeBlock(unsigned long capacity) {
  if (capacity >= std::numeric_limits<std::ptrdiff_t>::max() / sizeof(wchar_t)) throw std::bad_alloc();
  // Not zeroed: nothing reads a character before it is written.
  return Block{std::unique_ptr<wchar_t[]>(new wchar_t[capacity + 1]), capacity, 0};
}

void CStringBuffer::AddNewBlock(unsigned long capacity) {
  m_blocks.push_back(MakeBlock(capacity));
  if (m_blocks.size() > 1) m_blocks[m_blocks.size() - 2].used = m_used;
  SetCurrent(GetLength(), 0);
}

void CStringBuffer::SetCurrent(unsigned long before, unsigned long used) {
  m_current = m_blocks.empty() ? nullptr : m_blocks.back().text.get();
  m_capacity = m_blocks.empty() ? 0 : m_blocks.back().capacity;
  m_before = before;
  m_used = used;
}

}  // namespace RkXmlLib16

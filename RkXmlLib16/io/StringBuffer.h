#ifndef RKXMLLIB16_IO_STRINGBUFFER_H
#define RKXMLLIB16_IO_STRINGBUFFER_H

#include <cwchar>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// Wide text that grows in blocks, so that appending never moves what is there. Lengths count characters.
//
//   [aaaa][bbb ][cc  ]   text is appended to the last block
class RKXML_EXPORT CStringBuffer {
 public:
  // Blocks of 4095 characters, or of `blockSize` - 1 but at least one.
  CStringBuffer();
  explicit CStringBuffer(unsigned long blockSize);
  CStringBuffer(const CStringBuffer&) = delete;
  CStringBuffer& operator=(const CStringBuffer&) = delete;
  virtual ~CStringBuffer();

  // Append a text up to its first NUL; null is an empty text.
  void Append(const wchar_t* text);
  void Append(const std::wstring& text) { Append(text.c_str()); }
  // Appends all characters, which should not be NUL. The text may lie in this buffer.
  void Append(std::wstring_view text) {
    if (text.size() > m_capacity - m_used) return AppendInPieces(text);
    if (text.empty()) return;
    Commit(CopyShort(m_current + m_used, text));
  }
  void Append(wchar_t character) {
    if (m_used == m_capacity) AddNewBlock(m_blockSize);
    m_current[m_used++] = character;
  }
  // Space for `count` characters behind the text, to be written there. Commit takes the text to end at `end` within
  // it, directly after. Throws std::bad_alloc for more than memory can hold.
  wchar_t* Reserve(unsigned long count) {
    if (count > m_capacity - m_used || m_current == nullptr) AddNewBlock(count > m_blockSize ? count : m_blockSize);
    return m_current + m_used;
  }
  void Commit(const wchar_t* end) noexcept { m_used = static_cast<unsigned long>(end - m_current); }
  // Clear, then append. The text must not lie in this buffer.
  void SetText(const wchar_t* text);

  unsigned long GetLength() const noexcept { return m_before + m_used; }
  // The whole terminated text, good until the next change. Several blocks become one.
  const wchar_t* GetText();
  // A copy of the text; the blocks stay as they are.
  std::wstring ToString() const;
  // Calls `visit` with each block's text in order.
  template <class Visit>
  void ForEachBlock(Visit&& visit) const {
    for (const Block& block : m_blocks)
      visit(std::wstring_view(block.text.get(), block.text.get() == m_current ? m_used : block.used));
  }

  // Empties the buffer; a single block is kept for the next text.
  void Empty();
  void Clear();

 private:
  struct Block {
    std::unique_ptr<wchar_t[]> text;  // one character more than the capacity, for the terminator
    unsigned long capacity;
    unsigned long used = 0;  // once another block follows
  };

  // Copies the text, which is mostly short, and returns the end of the copy.
  static wchar_t* CopyShort(wchar_t* to, std::wstring_view text) {
    if (text.size() > 4) return std::wmemcpy(to, text.data(), text.size()) + text.size();
    for (const wchar_t c : text) *to++ = c;
    return to;
  }

  static Block MakeBlock(unsigned long capacity);
  [[gnu::cold]] void AddNewBlock(unsigned long capacity);
  [[gnu::cold]] void AppendInPieces(std::wstring_view text);
  void SetCurrent(unsigned long before, unsigned long used);

  std::vector<Block> m_blocks;
  unsigned long m_blockSize = 4095;
  unsigned long m_used = 0;      // of the last block
  unsigned long m_capacity = 0;  // of the last block
  wchar_t* m_current = nullptr;  // the last block
  unsigned long m_before = 0;    // characters in the blocks before the last
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_SOURCE_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/Location.h"

namespace RkXmlLib16 {

// The input of a document as far as places in it are concerned: turns the offsets that nodes keep into lines and
// columns. That takes one walk over the input up to the place; places that are asked for in ascending order take one
// walk together, others start from a mark not far before them.
class RKXML_EXPORT CSource {
 public:
  enum class Encoding { Octets, SingleByte, Utf8, Utf16LE, Utf16BE, Wide };
  // What the offsets of nodes count.
  enum class Count { Bytes, Characters };

  // The encoding of XML text by its byte order mark or declaration; octets for a Fast Infoset.
  static Encoding EncodingOf(std::string_view document);

  // `input` is kept, from the first byte of the document on (Wide: the bytes of the characters).
  CSource(std::string_view input, Encoding encoding, Count count = Count::Bytes)
      : m_input(input), m_encoding(encoding), m_count(count) {}

  void SetFileName(std::wstring name) { m_fileName = std::move(name); }
  void SetInflated(bool isInflated) { m_isInflated = isInflated; }
  // The input stands for wide text, each unit of it for one wchar_t.
  void SetWide(bool isWide) { m_isWide = isWide; }
  // Added to all offsets, which stay those of a larger input that this one was cut from.
  void SetFirstOffset(std::uint64_t offset) { m_firstOffset = offset; }
  // What keeps the input alive; else that is the caller's part.
  void SetOwner(std::shared_ptr<const void> owner) { m_owner = std::move(owner); }
  bool HasOwner() const { return m_owner != nullptr; }
  // Continues with a copy of the input, or without it: lines and columns are then not known.
  void KeepCopy();
  void Forget() { m_input = {}; }

  // An input that comes in pieces, of which only a part is held. It grows by what `read` puts into the memory given to
  // it, (bytes, room) -> count; the result is that count. What it held before may move.
  template <class Read>
  std::size_t Grow(std::size_t room, Read&& read) {
    const std::size_t length = m_buffer.size();
    try {
      m_buffer.resize(length + room);
      const std::size_t count = read(reinterpret_cast<unsigned char*>(m_buffer.data() + length), room);
      SetBufferLength(length + count);
      return count;
    } catch (...) {
      SetBufferLength(length);
      throw;
    }
  }
  std::string_view GetInput() const { return m_input; }
  // The bytes that came before those held.
  std::size_t GetFirstByte() const { return m_first; }
  std::size_t GetEnd() const { return m_first + m_input.size(); }
  void SetEncoding(Encoding encoding, Count count = Count::Bytes) {
    m_encoding = encoding;
    m_count = count;
  }
  // Lets go of what lies before the place, up to which the document was read. Lines and columns stay known of that
  // place, of what follows, and of the places in `pinned`, ascending offsets, of which those up to `known` are the
  // first that the last call had.
  void DropBefore(std::uint64_t offset, const std::vector<std::uint64_t>& pinned, std::size_t known);

  CRkLocation Locate(std::uint64_t offset, std::wstring path);
  // The offset of the `index`th attribute in the start tag at `tag`, declarations aside; `tag` itself when there is
  // none or it has another local name. Asking for one after the other takes one walk over the tag.
  std::uint64_t FindAttribute(std::uint64_t tag, std::size_t index, std::wstring_view localName, bool hasPrefixes);

 private:
  // Stands before a character.
  struct Mark {
    std::uint64_t key = 0;  // what the offsets count
    std::size_t byte = 0;
    std::uint64_t line = 1;
    std::uint64_t column = 1;
  };

  // The character at `byte`, which moves behind it.
  char32_t Next(std::size_t& byte) const;
  char32_t Peek(std::size_t byte) const;  // '>' at the end
  std::uint64_t KeyOf(std::size_t bytes) const;
  Mark Start() const;
  void Advance(Mark& mark, std::uint64_t key);
  void Skip(Mark& mark, std::uint64_t key) const;
  unsigned char At(std::size_t byte) const { return static_cast<unsigned char>(m_input[byte - m_first]); }
  void SetBufferLength(std::size_t length);

  std::string_view m_input;
  std::shared_ptr<const void> m_owner;
  Encoding m_encoding;
  Count m_count;
  bool m_isInflated = false;
  bool m_isWide = false;
  std::uint64_t m_firstOffset = 0;
  std::wstring m_fileName;
  std::vector<Mark> m_marks;  // ascending, one after each stretch of input; of pieces the pinned places
  Mark m_last;
  // Of an input in pieces: the bytes held, with some in front that were let go of.
  std::string m_buffer;
  std::size_t m_gone = 0;   // bytes of m_buffer before m_input
  std::size_t m_first = 0;  // bytes of the document before m_input
  Mark m_base;              // at the first byte of m_input
  bool m_isInPieces = false;
  struct Tag {
    std::uint64_t offset = CRkLocation::kNoOffset;
    std::size_t index = 0;  // of the attribute that follows
    std::size_t byte = 0;
  };
  Tag m_tag;  // the one that was looked through last
};

}  // namespace RkXmlLib16

#endif

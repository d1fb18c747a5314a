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

  CRkLocation Locate(std::uint64_t offset, std::wstring path);
  // The offset of the attribute in the start tag at `tag`, the `index`th of those with this local name; `tag` itself
  // when there is none.
  std::uint64_t FindAttribute(std::uint64_t tag, std::wstring_view localName, std::size_t index,
                              bool hasPrefixes) const;

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
  std::uint64_t KeyOf(std::size_t bytes) const;
  Mark Start() const;
  void Advance(Mark& mark, std::uint64_t key);

  std::string_view m_input;
  std::shared_ptr<const void> m_owner;
  Encoding m_encoding;
  Count m_count;
  bool m_isInflated = false;
  bool m_isWide = false;
  std::uint64_t m_firstOffset = 0;
  std::wstring m_fileName;
  std::vector<Mark> m_marks;  // ascending, one after each stretch of input
  Mark m_last;
};

}  // namespace RkXmlLib16

#endif

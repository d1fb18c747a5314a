#ifndef RKXMLLIB16_TESTS_FASTINFOSET_OCTETS_H
#define RKXMLLIB16_TESTS_FASTINFOSET_OCTETS_H

#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/context/FastInfosetContext.h"
#include "RkXmlLib16/fastinfoset/Writer.h"
#include "RkXmlLib16/io/BinaryStream.h"
#include "support/Tree.h"

namespace RkXmlTest {

using namespace RkXmlLib16;

using Octets = std::vector<unsigned char>;

// "E0 00 3C" to octets; blanks between them.
inline Octets FromHex(std::string_view text) {
  Octets octets;
  int octet = 1;  // a bit above the digits
  for (const char c : text) {
    if (c == ' ') continue;
    octet = octet << 4 | (c <= '9' ? c - '0' : c - 'A' + 10);
    if (octet < 0x100) continue;
    octets.push_back(static_cast<unsigned char>(octet));
    octet = 1;
  }
  return octets;
}

inline std::string ToHex(const Octets& octets) {
  std::string text;
  for (const unsigned char octet : octets) {
    text += "0123456789ABCDEF"[octet >> 4];
    text += "0123456789ABCDEF"[octet & 15];
    text += ' ';
  }
  if (!text.empty()) text.pop_back();
  return text;
}

inline std::string_view View(const Octets& octets) {
  return {reinterpret_cast<const char*>(octets.data()), octets.size()};
}

inline std::wstring TreeOf(const Octets& octets,
                           const CSerializationContext& context = CSerializationContext::m_defaultContext) {
  return TreeOf(View(octets), context);
}

inline Octets ToOctets(const CBinaryData& data) { return Octets(data.GetData(), data.GetData() + data.GetLength()); }

// What `calls` writes between the start and the end of a document, both included.
template <class Calls>
Octets Write(const CFastInfosetContext& context, Calls&& calls, FInfoDecl declaration = FInfoDecl_None) {
  CBinaryStream stream;
  CFastInfosetWriter writer(context, stream);
  writer.Open();
  writer.WriteStartDocument(declaration);
  calls(writer);
  writer.WriteEndDocument();
  writer.Close();
  return ToOctets(stream.GetBinaryStream());
}

// Reads a Fast Infoset document bit by bit, as ITU-T X.891 Annex C lays it out, and checks what makes it readable
// everywhere: indices within their tables, no literal for a name or URI that is in its table, names only by declared
// prefixes, terminators in pairs, alphabets padded with ones, well-formed UTF-8, no add bit on numbers whose text
// readers disagree about. Returns the tree in the form of TreeOf; or "wrong: " and what is wrong.
std::wstring Check(const Octets& octets);

}  // namespace RkXmlTest

#endif

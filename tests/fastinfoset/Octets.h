#ifndef RKXMLLIB16_TESTS_FASTINFOSET_OCTETS_H
#define RKXMLLIB16_TESTS_FASTINFOSET_OCTETS_H

#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/fastinfoset/Context.h"
#include "RkXmlLib16/fastinfoset/Writer.h"
#include "RkXmlLib16/support/BinaryStream.h"
#include "RkXmlLib16/xml/ElementTree.h"

namespace RkXmlTest {

using Octets = std::vector<unsigned char>;

// "E0 00 3C" to octets; blanks and line ends between them.
inline Octets FromHex(std::string_view text) {
  Octets octets;
  int high = -1;
  for (const char c : text) {
    const int digit = c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
    if (digit < 0) continue;
    if (high < 0) {
      high = digit;
    } else {
      octets.push_back(static_cast<unsigned char>(high << 4 | digit));
      high = -1;
    }
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

inline Octets ToOctets(const RkXmlLib16::CBinaryData& data) {
  return Octets(data.GetData(), data.GetData() + data.GetLength());
}

// What `calls` writes between the start and the end of a document, both included.
template <class Calls>
Octets Write(const RkXmlLib16::CFastInfosetContext& context, Calls&& calls,
             RkXmlLib16::FInfoDecl declaration = RkXmlLib16::FInfoDecl_None) {
  RkXmlLib16::CBinaryStream stream;
  RkXmlLib16::CFastInfosetWriter writer(context, stream);
  writer.Open();
  writer.WriteStartDocument(declaration);
  calls(writer);
  writer.WriteEndDocument();
  writer.Close();
  return ToOctets(stream.GetBinaryStream());
}

// A tree as text: {namespace}name[attribute=value,...](text)<children>.
std::wstring Describe(const RkXmlLib16::CXmlElement* root);
// The same of a document in octets, which may be XML text; what a reader throws passes.
std::wstring DescribeOctets(Octets octets);

// Reads a Fast Infoset document bit by bit, as ITU-T X.891 Annex C lays it out, and checks what makes it readable
// everywhere: indices within their tables, no literal for a name or URI that is in its table, names only by declared
// prefixes, terminators in pairs, alphabets padded with ones, well-formed UTF-8, no add bit on numbers whose text
// readers disagree about. Returns the tree in the form of Describe; throws std::runtime_error with what is wrong.
std::wstring Check(const Octets& octets);

}  // namespace RkXmlTest

#endif

// Bytes as the tokens of a Fast Infoset: indexes near those that exist, vocabularies, literals with and without the add
// bit, names that are none. What was read is the same after each form.
#include <algorithm>

#include "Check.h"

using namespace Fuzz;

namespace {

using namespace std::string_literals;

const std::string kPrefixes[] = {"p", "q", "xml", "xmlns", "\xC3\xA9", "p:q", "\xFF", std::string(70, 'p')};
const std::string kUris[] = {"urn:a",
                             "urn:b",
                             "http://www.w3.org/XML/1998/namespace",
                             "http://www.w3.org/2000/xmlns/",
                             "http://www.w3.org/2001/XMLSchema-instance",
                             "urn:a\r",
                             "urn:a\t|",
                             std::string(400, 'u')};
const std::string kNames[] = {"a", "b", "type", "nil", "xmlns", "a:b", "a b", "\xED\xA0\x80", "\xF0\x9F\x98\x80"};
const std::string kTexts[] = {
    "x", "p:a", "x\r\ny\t", "<![CDATA[", "]]>", "\xF0\x9F\x98\x80", "\0x"s, std::string(300, 't')};

class Tokens {
 public:
  Tokens(const std::uint8_t* data, std::size_t size) : m_next(data), m_end(data + size) {}

  std::string Build() {
    m_out = "\xE0\0\0\1"s;
    if (Take() % 4 == 0)
      Vocabulary();
    else
      m_out += '\0';
    Element();
    while (m_next != m_end && m_out.size() < kLongest) {
      switch (Take() % 8) {
        case 0:
        case 1:
          Element();
          break;
        case 2:
          m_out += '\xF0';
          break;
        case 3:
          m_out += '\xFF';
          break;
        case 4:
        case 5:
          Chunk();
          break;
        case 6:
          m_out += '\xE2';
          Value();
          break;
        default:
          m_out += static_cast<char>(Take());
      }
    }
    return m_out.append(16, '\xFF');
  }

 private:
  static constexpr std::size_t kLongest = 20000;

  unsigned Take() { return m_next == m_end ? 0 : *m_next++; }
  void Put(unsigned octet) { m_out += static_cast<char>(octet); }

  // Lists of one item, the only ones that are read past correctly, or of two.
  void Vocabulary() {
    const unsigned first = Take() & 0x13;
    const unsigned second = Take() & 0x98;
    m_out += '\x20';
    Put(first);
    Put(second);
    if ((first & 0x10) != 0) Literal(kUris[0]);
    const unsigned present = first << 8 | second;
    for (const unsigned part : {0x200u, 0x100u, 0x80u, 0x10u, 0x08u}) {
      if ((present & part) == 0) continue;
      Put(Take() % 16 == 0 ? 1 : 0);
      if (part >= 0x80)
        Literal(kUris[Take() % 2]);
      else
        m_out += "\0x"s;
    }
  }

  void Element() {
    const unsigned flags = Take();
    const unsigned attributes = flags & 0x40;
    if ((flags & 1) != 0) {
      Put(0x38 | attributes);
      for (unsigned left = Take() % 3; left > 0; --left) {
        const unsigned parts = Take() & 3;
        Put(0xCC | parts);
        if ((parts & 2) != 0) Identifying(kPrefixes);
        if ((parts & 1) != 0) Identifying(kUris);
      }
      m_out += '\xF0';
    }
    Name(flags & 1 ? 0 : attributes, 0x3C, 0x20, flags >> 1);
    if (attributes == 0) return;
    for (unsigned left = Take() % 4; left > 0; --left) {
      Name(0, 0x78, 0x40, Take());
      Value();
    }
    Put(flags & 0x80 ? 0xFF : 0xF0);
  }

  void Name(unsigned octet, unsigned literal, unsigned indexes, unsigned flags) {
    if ((flags & 1) == 0) return Put(octet | (flags >> 1) % std::min(indexes, 8u));
    const unsigned parts = flags >> 1 & 3;
    Put(octet | literal | parts);
    if ((parts & 2) != 0) Identifying(kPrefixes);
    if ((parts & 1) != 0) Identifying(kUris);
    Identifying(kNames);
  }

  template <std::size_t N>
  void Identifying(const std::string (&list)[N]) {
    const unsigned choice = Take();
    if ((choice & 1) != 0) return Put(0x80 | (choice >> 1) % 6);
    Literal(list[(choice >> 1) % N]);
  }

  // C.22: the length on the second bit.
  void Literal(const std::string& text) {
    const std::size_t length = text.size();
    if (length < 65) {
      Put(static_cast<unsigned>(length - 1));
    } else if (length < 321) {
      m_out += '\x40';
      Put(static_cast<unsigned>(length - 65));
    } else {
      m_out += "\x60\0\0"s;
      Put(static_cast<unsigned>(length - 321) >> 8);
      Put(static_cast<unsigned>(length - 321) & 0xFF);
    }
    m_out += text;
  }

  // C.14 with C.19: an index, the empty value, or a literal with or without the add bit.
  void Value() {
    const unsigned choice = Take();
    if ((choice & 1) != 0) return Put((choice & 2) != 0 ? 0xFF : 0x80 | (choice >> 2) % 6);
    const std::string& text = kTexts[(choice >> 2) % std::size(kTexts)];
    const unsigned octet = (choice & 2) != 0 ? 0x40 : 0;
    Encoded(octet, text, 8, 0x08, 9, 0x0C, 265);
  }

  // C.15 with C.20.
  void Chunk() {
    const unsigned choice = Take();
    if ((choice & 1) != 0) return Put(0xA0 | (choice >> 2) % 6);
    const std::string& text = kTexts[(choice >> 2) % std::size(kTexts)];
    Encoded((choice & 2) != 0 ? 0x90 : 0x80, text, 2, 0x02, 3, 0x03, 259);
  }

  void Encoded(unsigned octet, const std::string& text, std::size_t most, unsigned medium, std::size_t lowest,
               unsigned large, std::size_t largest) {
    const std::size_t length = text.size();
    if (length <= most) {
      Put(octet | static_cast<unsigned>(length - 1));
    } else if (length < largest) {
      Put(octet | medium);
      Put(static_cast<unsigned>(length - lowest));
    } else {
      Put(octet | large);
      m_out += "\0\0"s;
      Put(static_cast<unsigned>(length - largest) >> 8);
      Put(static_cast<unsigned>(length - largest) & 0xFF);
    }
    m_out += text;
  }

  const std::uint8_t* m_next;
  const std::uint8_t* m_end;
  std::string m_out;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string document = Tokens(data, size).Build();
  CElement tree;
  CSerializationContext context = MakeContext();
  if (ReadBothWays(tree, context, [&](CElement& into, const CSerializationContext& settings) {
        into.FromXmlStream(reinterpret_cast<unsigned char*>(document.data()), document.size(), settings);
      }))
    CheckAllForms(tree);
  return 0;
}

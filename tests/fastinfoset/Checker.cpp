#include <array>
#include <cstdint>
#include <stdexcept>

#include "Octets.h"
#include "RkXmlLib16/fastinfoset/BinaryCodec.h"
#include "RkXmlLib16/io/Encoder.h"

namespace RkXmlTest {
namespace {

using namespace RkXmlLib16;

void Require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

using Name = std::array<std::wstring, 3>;  // prefix, namespace, local name
using Strings = std::vector<std::wstring>;
using Names = std::vector<Name>;

class Checker {
 public:
  explicit Checker(const Octets& octets) : m_octets(octets) {}

  std::wstring Run() {
    SkipDeclaration();
    Require(Bits(32) == 0xE0000001, "identification and version");
    const auto components = Bits(8);
    Require((components & ~0x20u) == 0, "components");
    if (components == 0x20) {
      Require(Bits(16) == 0x1000, "initial vocabulary");
      Require(Bits(1) == 0, "padding");
      Utf8(LengthBit2());
    }
    Require(!AtTerminator(), "no element");
    const std::wstring root = Element();
    EndItem("document");
    Require(m_position == m_octets.size() * 8 || (m_octets.size() * 8 - m_position == 4 && Bits(4) == 0), "the end");
    return root;
  }

 private:
  std::uint32_t Bits(int count) {
    Require(m_position + static_cast<std::size_t>(count) <= m_octets.size() * 8, "end of octets");
    std::uint32_t value = 0;
    for (; count > 0; --count, ++m_position)
      value = value << 1 | (m_octets[m_position / 8] >> (7 - m_position % 8) & 1u);
    return value;
  }
  std::uint32_t Peek(int count) {
    const std::size_t position = m_position;
    const std::uint32_t value = Bits(count);
    m_position = position;
    return value;
  }

  // Items begin on bit 1; a terminator before them leaves four bits of 0 in its octet.
  bool AtTerminator() {
    if (m_position % 8 == 4 && Peek(4) == 0) m_position += 4;
    Require(m_position % 8 == 0 || Peek(4) == 0xF, "padding after a terminator");
    return Peek(4) == 0xF;
  }
  void EndItem(const char* what) {
    Require(AtTerminator(), what);
    m_position += 4;
  }

  // An index that begins on the second, third or fourth bit of an octet: C.25, C.27, C.28.
  std::uint32_t Index(int bit) {
    if (Bits(1) == 0) return Bits(8 - bit) + 1;
    const std::uint32_t first = 1u << (8 - bit);
    std::uint32_t index = 0;
    if (bit == 2) {
      if (Bits(1) == 0) return Bits(13) + first + 1;
      Require(Bits(1) == 0, "index");
      index = Bits(20) + first * 129 + 1;
    } else {
      if (Bits(1) == 0) return Bits(1) == 0 ? Bits(14 - bit) + first + 1 : Bits(22 - bit) + first * 65 + 1;
      Require(Bits(11 - bit) == 0, "index");
      index = Bits(20) + first * 16449 + 1;
    }
    Require(index <= 1048576, "index beyond 2^20");
    return index;
  }

  std::uint64_t Length(int shortBits, int zeroBits, std::uint64_t medium, std::uint64_t longest) {
    if (Bits(1) == 0) return Bits(shortBits) + 1;
    const bool isLong = Bits(1) == 1;
    if (zeroBits > 0) Require(Bits(zeroBits) == 0, "length");
    return isLong ? Bits(32) + longest : Bits(8) + medium;
  }
  std::uint64_t LengthBit2() { return Length(6, 5, 65, 321); }

  Octets Raw(std::uint64_t length) {
    Require(m_position % 8 == 0, "octets begin on bit 1");
    Require(length <= m_octets.size() - m_position / 8, "length beyond the octets");
    const auto start = m_octets.begin() + static_cast<std::ptrdiff_t>(m_position / 8);
    m_position += length * 8;
    return Octets(start, start + static_cast<std::ptrdiff_t>(length));
  }
  std::wstring Utf8(std::uint64_t length) {
    const Octets raw = Raw(length);
    const std::wstring text = CEncoder::Utf8ToUnicode(raw.data(), static_cast<int>(raw.size()));
    Require(ToOctets(CEncoder::UnicodeToUtf8Binary(text)) == raw, "UTF-8");
    return text;
  }

  // C.19 and C.20 after the add bit; `isFloating` becomes true for algorithms 7 and 8.
  std::wstring Encoded(bool isContent, bool& isFloating) {
    const auto selector = Bits(2);
    Require(selector != 1, "UTF-16 is not written");
    const auto index = selector >= 2 ? Bits(8) + 1 : 0;
    const auto length = isContent ? Length(1, 0, 3, 259) : Length(3, 2, 9, 265);
    if (selector == 0) return Utf8(length);
    isFloating = selector == 3 && (index == 7 || index == 8);
    if (selector == 3 && index == 10 && isContent) return Utf8(length);
    if (selector == 3) return Typed(index, Raw(length));
    Require(index <= 2, "alphabet");
    const std::wstring_view characters = index == 1 ? L"0123456789-+.e " : L"0123456789-:TZ ";
    std::wstring text;
    for (auto left = length * 2; left > 0; --left) {
      const auto code = Bits(4);
      Require(code < 15 || left == 1, "padding of an alphabet");
      if (code < 15) text += characters[code];
    }
    return text;
  }
  static std::wstring Typed(std::uint32_t algorithm, Octets raw) {
    constexpr std::size_t kLengths[] = {0, 0, 2, 4, 8, 1, 4, 8, 16};
    Require(algorithm >= 1 && algorithm <= std::size(kLengths), "algorithm");
    const std::size_t length = kLengths[algorithm - 1];
    Require(length == 0 || raw.size() == length, "the length of a number");
    return CFastInfosetBinaryData(raw.data(), raw.size(), /*copy=*/true).GetAsString(algorithm);
  }

  template <class Table>
  static const auto& At(const Table& table, std::uint32_t index) {
    Require(index >= 1 && index <= table.size(), "index beyond its table");
    return table[index - 1];
  }
  template <class Table>
  static const auto& Added(Table& table, const typename Table::value_type& literal) {
    for (const auto& entry : table) Require(entry != literal, "a literal that is in its table");
    table.push_back(literal);
    return table.back();
  }
  std::wstring Identifying(Strings& table) {  // C.13
    return Bits(1) == 1 ? At(table, Index(2)) : Added(table, Utf8(LengthBit2()));
  }

  std::wstring QualifiedName(Names& names, bool isElement) {
    Name name;
    if (isElement ? Peek(4) != 0xF : Peek(5) != 0x1E) {
      name = At(names, Index(isElement ? 3 : 2));
    } else {
      Bits(isElement ? 4 : 5);
      const bool hasPrefix = Bits(1) == 1;
      const bool hasNamespace = Bits(1) == 1;
      Require(hasNamespace || !hasPrefix, "prefix without namespace");
      Require(!hasPrefix || Peek(1) == 1, "a literal prefix in a name");
      if (hasPrefix) name[0] = Identifying(m_prefixes);
      Require(!hasNamespace || Peek(1) == 1, "a literal namespace in a name");
      if (hasNamespace) name[1] = Identifying(m_namespaces);
      name[2] = Identifying(m_locals);
      Added(names, name);
    }
    RequireDeclared(name, isElement);
    return (name[1].empty() ? L"" : L'{' + name[1] + L'}') + name[2];
  }
  void RequireDeclared(const Name& name, bool isElement) const {
    const auto& [prefix, uri, local] = name;
    if (prefix == L"xml") return Require(uri == m_namespaces[0], "the namespace of xml");
    if (!isElement && prefix.empty()) return Require(uri.empty(), "an attribute in a namespace without prefix");
    for (auto binding = m_bindings.rbegin(); binding != m_bindings.rend(); ++binding)
      if (binding->first == prefix) return Require(binding->second == uri, "prefix declared for another namespace");
    Require(prefix.empty() && uri.empty(), "prefix not declared");
  }

  std::wstring Element() {
    const std::size_t outer = m_bindings.size();
    Require(Bits(1) == 0, "element");
    const bool hasAttributes = Bits(1) == 1;
    if (Peek(6) == 0x38) {
      Bits(6);
      while (Peek(8) != 0xF0) NamespaceAttribute(outer);
      Bits(8);
      Require(m_bindings.size() > outer, "an empty list of declarations");
      Require(Bits(2) == 0, "name after declarations");
    }
    std::wstring start = QualifiedName(m_elementNames, true), text, children;
    if (hasAttributes) {
      Require(!AtTerminator(), "an empty list of attributes");
      while (!AtTerminator()) start += L'@' + Attribute();
      EndItem("attributes");
    }
    while (!AtTerminator()) {
      if (Peek(1) == 0)
        children += L'<' + Element() + L'>';
      else
        text += Chunk();
    }
    EndItem("element");
    m_bindings.resize(outer);
    return start + L'(' + text + L')' + children;
  }

  void NamespaceAttribute(std::size_t outer) {
    Require(Bits(6) == 0x33, "namespace attribute");
    const bool hasPrefix = Bits(1) == 1;
    const bool hasNamespace = Bits(1) == 1;
    Require(hasNamespace || !hasPrefix, "a prefix undeclared");
    const std::wstring prefix = hasPrefix ? Identifying(m_prefixes) : L"";
    Require(prefix != L"xml", "xml declared");
    for (std::size_t i = outer; i < m_bindings.size(); ++i)
      Require(m_bindings[i].first != prefix, "a prefix declared twice on an element");
    m_bindings.emplace_back(prefix, hasNamespace ? Identifying(m_namespaces) : L"");
  }

  std::wstring Attribute() {
    Require(Bits(1) == 0, "attribute");
    const std::wstring name = QualifiedName(m_attributeNames, false) + L'=';
    if (Bits(1) == 0) return name + Literal(m_values, false);
    if (Peek(7) != 0x7F) return name + At(m_values, Index(2));
    Bits(7);
    return name;
  }
  std::wstring Chunk() {
    Require(Bits(2) == 2, "chunk");
    return Bits(1) == 1 ? At(m_chunks, Index(4)) : Literal(m_chunks, true);
  }
  std::wstring Literal(Strings& table, bool isContent) {
    const bool add = Bits(1) == 1;
    bool isFloating = false;
    const std::wstring text = Encoded(isContent, isFloating);
    Require(!(add && isFloating), "add bit on a float");
    if (add) table.push_back(text);
    return text;
  }

  void SkipDeclaration() {
    const std::string text(m_octets.begin(), m_octets.end());
    if (text.compare(0, 5, "<?xml") != 0) return;
    const std::size_t end = text.find("?>");
    Require(end != std::string::npos, "declaration");
    Require(text.substr(0, end).find("encoding='finf'") != std::string::npos, "encoding of the declaration");
    m_position = (end + 2) * 8;
  }

  const Octets& m_octets;
  std::size_t m_position = 0;
  Strings m_prefixes = {L"xml"};
  Strings m_namespaces = {L"http://www.w3.org/XML/1998/namespace"};
  Strings m_locals, m_values, m_chunks;
  Names m_elementNames, m_attributeNames;
  std::vector<std::pair<std::wstring, std::wstring>> m_bindings;  // prefix, namespace
};

}  // namespace

std::wstring Check(const Octets& octets) {
  try {
    return Checker(octets).Run();
  } catch (const std::runtime_error& e) {
    const std::string what = e.what();
    return L"wrong: " + std::wstring(what.begin(), what.end());
  }
}

}  // namespace RkXmlTest

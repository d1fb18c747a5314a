#include <cstdint>
#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "Octets.h"

namespace RkXmlTest {
namespace {

void Require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

struct Node {
  std::wstring name;
  std::wstring attributes;
  std::wstring text;
  std::vector<Node> children;

  std::wstring Describe() const {
    std::wstring out = name + L'[' + attributes + L"](" + text + L')';
    if (children.empty()) return out;
    out += L'<';
    for (const Node& child : children) out += child.Describe();
    return out + L'>';
  }
};

using Table = std::vector<std::wstring>;
using Binding = std::pair<std::wstring, std::wstring>;  // prefix, namespace

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
    const Node root = Element();
    EndItem("document");
    Require(m_position == m_octets.size() * 8 || (m_octets.size() * 8 - m_position == 4 && Bits(4) == 0), "the end");
    return root.Describe();
  }

 private:
  std::uint32_t Bits(int count) {
    Require(m_position + static_cast<std::size_t>(count) <= m_octets.size() * 8, "end of octets");
    std::uint32_t value = 0;
    for (; count > 0; --count, ++m_position) {
      value = value << 1 | (m_octets[m_position / 8] >> (7 - m_position % 8) & 1u);
    }
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

  std::uint32_t IndexBit2(bool zeroAllowed = false) {
    if (zeroAllowed && Peek(7) == 0x7F) return Bits(7) & 0;
    if (Bits(1) == 0) return Bits(6) + 1;
    if (Bits(1) == 0) return Bits(13) + 65;
    Require(Bits(1) == 0, "index on bit 2");
    return InTable(Bits(20) + 8257);
  }
  std::uint32_t IndexBit3() {
    if (Bits(1) == 0) return Bits(5) + 1;
    if (Bits(1) == 0) return Bits(1) == 0 ? Bits(11) + 33 : Bits(19) + 2081;
    Require(Bits(8) == 0, "index on bit 3");
    return InTable(Bits(20) + 526369);
  }
  std::uint32_t IndexBit4() {
    if (Bits(1) == 0) return Bits(4) + 1;
    if (Bits(1) == 0) return Bits(1) == 0 ? Bits(10) + 17 : Bits(18) + 1041;
    Require(Bits(7) == 0, "index on bit 4");
    return InTable(Bits(20) + 263185);
  }
  static std::uint32_t InTable(std::uint32_t index) {
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
  std::uint64_t LengthBit5() { return Length(3, 2, 9, 265); }
  std::uint64_t LengthBit7() { return Length(1, 0, 3, 259); }

  Octets Raw(std::uint64_t length) {
    Require(m_position % 8 == 0, "octets begin on bit 1");
    Require(length <= m_octets.size() - m_position / 8, "length beyond the octets");
    const auto start = m_octets.begin() + static_cast<std::ptrdiff_t>(m_position / 8);
    m_position += length * 8;
    return Octets(start, start + static_cast<std::ptrdiff_t>(length));
  }

  std::wstring Utf8(std::uint64_t length) {
    const Octets raw = Raw(length);
    std::wstring text;
    for (std::size_t i = 0; i < raw.size();) {
      const unsigned lead = raw[i++];
      const int more = lead < 0x80 ? 0 : lead >= 0xC2 && lead < 0xE0 ? 1 : (lead & 0xF0) == 0xE0 ? 2 : 3;
      Require(lead < 0x80 || (lead >= 0xC2 && lead < 0xF5), "UTF-8 lead");
      std::uint32_t value = more == 0 ? lead : lead & (0x3Fu >> more);
      for (int k = 0; k < more; ++k) {
        Require(i < raw.size() && (raw[i] & 0xC0) == 0x80, "UTF-8 trail");
        value = value << 6 | (raw[i++] & 0x3Fu);
      }
      Require(value < 0xD800 || (value > 0xDFFF && value < 0x110000), "UTF-8 value");
      Require(more < 2 || value >= (more == 2 ? 0x800u : 0x10000u), "UTF-8 shortest form");
      text += static_cast<wchar_t>(value);
    }
    return text;
  }

  // C.19 and C.20 after the add bit; `isFloating` becomes true for algorithms 7 and 8.
  std::wstring Encoded(bool isContent, bool& isFloating) {
    const auto selector = Bits(2);
    Require(selector != 1, "UTF-16 is not written");
    const auto index = selector >= 2 ? Bits(8) + 1 : 0;
    const auto length = isContent ? LengthBit7() : LengthBit5();
    if (selector == 0) return Utf8(length);
    isFloating = selector == 3 && (index == 7 || index == 8);
    if (selector == 3) return index == 10 && isContent ? Utf8(length) : Typed(index, Raw(length));
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

  static std::wstring Typed(std::uint32_t algorithm, const Octets& raw) {
    std::uint64_t bits = 0;
    for (const unsigned char octet : raw) bits = bits << 8 | octet;
    char text[64] = "";
    switch (algorithm) {
      case 1:
        return Hex(raw);
      case 2:
        return Base64(raw);
      case 3:
        Require(raw.size() == 2, "short");
        return std::to_wstring(static_cast<std::int16_t>(bits));
      case 4:
        Require(raw.size() == 4, "int");
        return std::to_wstring(static_cast<std::int32_t>(bits));
      case 5:
        Require(raw.size() == 8, "long");
        return std::to_wstring(static_cast<std::int64_t>(bits));
      case 6:
        Require(bits == 0x30 || bits == 0x38, "boolean");
        return bits == 0x38 ? L"true" : L"false";
      case 7: {
        Require(raw.size() == 4, "float");
        const auto narrow = static_cast<std::uint32_t>(bits);
        float value;
        std::memcpy(&value, &narrow, sizeof value);
        std::snprintf(text, sizeof text, "%.7g", static_cast<double>(value));
        break;
      }
      case 8: {
        Require(raw.size() == 8, "double");
        double value;
        std::memcpy(&value, &bits, sizeof value);
        std::snprintf(text, sizeof text, "%.16g", value);
        break;
      }
      case 9:
        Require(raw.size() == 16, "uuid");
        return Hex(raw);
      default:
        Require(false, "algorithm");
    }
    return std::wstring(text, text + std::strlen(text));
  }
  static std::wstring Hex(const Octets& raw) {
    std::wstring text;
    for (const char c : ToHex(raw)) {
      if (c != ' ') text += static_cast<wchar_t>(c);
    }
    return text;
  }
  static std::wstring Base64(const Octets& raw) {
    constexpr std::wstring_view kDigits = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::wstring text;
    for (std::size_t i = 0; i < raw.size(); i += 3) {
      unsigned group = 0;
      for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (i + k < raw.size() ? raw[i + k] : 0u);
      for (std::size_t k = 0; k < 4; ++k) text += i + k <= raw.size() ? kDigits[group >> (18 - 6 * k) & 63] : L'=';
    }
    return text;
  }

  static const std::wstring& At(const Table& table, std::uint32_t index) {
    Require(index >= 1 && index <= table.size(), "index beyond its table");
    return table[index - 1];
  }
  std::wstring Identifying(Table& table) {  // C.13
    if (Bits(1) == 1) return At(table, IndexBit2());
    const std::wstring text = Utf8(LengthBit2());
    for (const auto& entry : table) Require(entry != text, "a literal that is in its table");
    table.push_back(text);
    return text;
  }

  std::wstring Name(Table& names, std::uint32_t (Checker::*index)(), int literalBits, bool isElement) {
    if (isElement ? Peek(4) != 0xF : Peek(5) != 0x1E) {
      const std::wstring parts = At(names, (this->*index)());
      RequireDeclared(parts, isElement);
      return Qualified(parts);
    }
    Bits(literalBits);
    const bool hasPrefix = Bits(1) == 1;
    const bool hasNamespace = Bits(1) == 1;
    Require(hasNamespace || !hasPrefix, "prefix without namespace");
    Require(!hasPrefix || Peek(1) == 1, "a literal prefix in a name");
    std::wstring parts = hasPrefix ? Identifying(m_prefixes) : L"";
    Require(!hasNamespace || Peek(1) == 1, "a literal namespace in a name");
    parts += L'\1' + (hasNamespace ? Identifying(m_namespaces) : std::wstring());
    parts += L'\1' + Identifying(m_locals);
    for (const auto& entry : names) Require(entry != parts, "a literal name that is in its table");
    names.push_back(parts);
    RequireDeclared(parts, isElement);
    return Qualified(parts);
  }
  void RequireDeclared(const std::wstring& parts, bool isElement) const {
    const auto first = parts.find(L'\1');
    const std::wstring prefix = parts.substr(0, first);
    const std::wstring uri = parts.substr(first + 1, parts.rfind(L'\1') - first - 1);
    if (prefix == L"xml") return Require(uri == m_namespaces[0], "the namespace of xml");
    if (!isElement && prefix.empty()) return Require(uri.empty(), "an attribute in a namespace without prefix");
    for (auto binding = m_bindings.rbegin(); binding != m_bindings.rend(); ++binding) {
      if (binding->first == prefix) return Require(binding->second == uri, "prefix declared for another namespace");
    }
    Require(prefix.empty() && uri.empty(), "prefix not declared");
  }
  static std::wstring Qualified(const std::wstring& parts) {
    const auto first = parts.find(L'\1');
    const auto last = parts.rfind(L'\1');
    return L'{' + parts.substr(first + 1, last - first - 1) + L'}' + parts.substr(last + 1);
  }

  Node Element() {
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
    Node node;
    node.name = Name(m_elementNames, &Checker::IndexBit3, 4, true);
    if (hasAttributes) {
      Require(!AtTerminator(), "an empty list of attributes");
      while (!AtTerminator()) node.attributes += Attribute();
      EndItem("attributes");
    }
    while (!AtTerminator()) {
      if (Peek(1) == 0) {
        node.children.push_back(Element());
      } else {
        node.text += Chunk();
      }
    }
    EndItem("element");
    m_bindings.resize(outer);
    return node;
  }

  void NamespaceAttribute(std::size_t outer) {
    Require(Bits(6) == 0x33, "namespace attribute");
    const bool hasPrefix = Bits(1) == 1;
    const bool hasNamespace = Bits(1) == 1;
    Require(hasNamespace || !hasPrefix, "a prefix undeclared");
    Binding binding;
    if (hasPrefix) binding.first = Identifying(m_prefixes);
    if (hasNamespace) binding.second = Identifying(m_namespaces);
    Require(binding.first != L"xml", "xml declared");
    for (std::size_t i = outer; i < m_bindings.size(); ++i) {
      Require(m_bindings[i].first != binding.first, "a prefix declared twice on an element");
    }
    m_bindings.push_back(binding);
  }

  std::wstring Attribute() {
    Require(Bits(1) == 0, "attribute");
    const std::wstring name = Name(m_attributeNames, &Checker::IndexBit2Name, 5, false);
    if (Bits(1) == 1) {
      const auto index = IndexBit2(true);
      return name + L'=' + (index == 0 ? L"" : At(m_values, index)) + L';';
    }
    return name + L'=' + Literal(m_values, false) + L';';
  }
  std::uint32_t IndexBit2Name() { return IndexBit2(); }

  std::wstring Chunk() {
    Require(Bits(2) == 2, "chunk");
    return Bits(1) == 1 ? At(m_chunks, IndexBit4()) : Literal(m_chunks, true);
  }

  std::wstring Literal(Table& table, bool isContent) {
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
    const std::string declaration = text.substr(0, end);
    Require(declaration.find("encoding='finf'") != std::string::npos, "encoding of the declaration");
    m_position = (end + 2) * 8;
  }

  const Octets& m_octets;
  std::size_t m_position = 0;
  Table m_prefixes = {L"xml"};
  Table m_namespaces = {L"http://www.w3.org/XML/1998/namespace"};
  Table m_locals, m_elementNames, m_attributeNames, m_values, m_chunks;
  std::vector<Binding> m_bindings;
};

}  // namespace

std::wstring Check(const Octets& octets) { return Checker(octets).Run(); }

}  // namespace RkXmlTest

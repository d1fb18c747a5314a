#include "Octets.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "Commands.h"
#include "RkXmlLib16/fastinfoset/BinaryCodec.h"
#include "RkXmlLib16/fastinfoset/Octets.h"
#include "Text.h"

using namespace RkXmlLib16;
using FastInfoset::IntegerLayout;

namespace {

constexpr std::size_t kOctetsShown = 16;
constexpr std::size_t kTextShown = 60;

// Walks through a document with tables of its own, so that a line can name what an index stands for.
class OctetList {
 public:
  explicit OctetList(std::string_view bytes) : m_bytes(bytes) {}

  void Document() {
    for (const std::string_view declaration : FastInfoset::kDeclarations) {
      if (m_bytes.substr(0, declaration.size()) == declaration) m_at = declaration.size();
    }
    if (m_at > 0) Line("XML declaration");
    m_at += sizeof FastInfoset::kHeader;
    Line("identification, version 1");
    const unsigned components = Next();
    Line(components == 0 ? "no optional components" : "optional components follow");
    if ((components & 0x40) != 0) List("additional data", [this] { return String() + ", " + Skip() + " octets"; });
    if ((components & 0x20) != 0) InitialVocabulary();
    if ((components & 0x10) != 0) UntilTerminator("notation", [this](unsigned o) { return Entity(o & 3); });
    if ((components & 0x08) != 0) {
      UntilTerminator("unparsed entity", [this](unsigned o) {
        const std::string entity = Entity(2 | (o & 1));
        return entity + ", notation " + Identifying(m_otherNames);
      });
    }
    if ((components & 0x04) != 0) Line("character encoding scheme " + String());
    if ((components & 0x02) != 0) Line(Next() != 0 ? "standalone" : "not standalone");
    if ((components & 0x01) != 0) Line("version " + Value(m_otherStrings, "other string"));
    // The element counts below the document, which ends like an element.
    m_depth = 1;
    while (m_depth > 0) Item();
    if (m_at < m_bytes.size()) {
      Line(Grouped(m_bytes.size() - m_at) + " octets after the document", m_bytes.size());
    }
  }

 private:
  using Table = std::vector<std::string>;

  [[noreturn]] void Fail(const char* what) const {
    std::fflush(stdout);
    throw DocumentError(std::string(what) + " at octet " + Grouped(std::min(m_at, m_bytes.size())));
  }

  unsigned char Next() {
    if (m_at >= m_bytes.size()) Fail("the document ends too early");
    return static_cast<unsigned char>(m_bytes[m_at++]);
  }

  // Prints the octets since the last line.
  void Line(const std::string& meaning) { Line(meaning, m_at); }
  void Line(const std::string& meaning, std::size_t end) {
    if (end > m_bytes.size()) Fail("the document ends too early");
    std::string octets;
    for (std::size_t i = m_shown; i < end && i < m_shown + kOctetsShown; ++i) {
      char text[4];
      std::snprintf(text, sizeof text, "%02X ", static_cast<unsigned char>(m_bytes[i]));
      octets += text;
    }
    if (end > m_shown + kOctetsShown) octets += "...";
    const int indent = static_cast<int>(2 * std::min<std::size_t>(m_depth, 20));
    std::printf("%08zX  %-51s  %*s%s\n", m_shown, octets.c_str(), indent, "", meaning.c_str());
    m_shown = m_at = end;
  }

  unsigned long Integer(const IntegerLayout& layout, unsigned octet) {
    for (int i = 0; i < layout.formCount; ++i) {
      const FastInfoset::IntegerForm& form = layout.forms[i];
      const unsigned mask = (1u << form.valueBits) - 1;
      if ((octet & layout.field & ~mask) != form.pattern) continue;
      unsigned long value = octet & mask;
      for (int more = 0; more < form.moreOctets; ++more) value = value << 8 | Next();
      return value + form.lowest;
    }
    Fail("no number begins");
  }

  std::string_view Take(unsigned long length) {
    if (length > m_bytes.size() - m_at) Fail("a length goes beyond the end");
    m_at += length;
    return m_bytes.substr(m_at - length, length);
  }

  std::string Skip() { return std::to_string(Take(Integer(FastInfoset::kLengthBit2, Next())).size()); }
  std::string String() { return std::string(Take(Integer(FastInfoset::kLengthBit2, Next()))); }

  static std::string Quoted(const std::string& text) {
    std::string shown = ForTerminal(text);
    if (shown.size() > kTextShown) {
      shown.resize(kTextShown);
      while (!shown.empty() && (shown.back() & 0xC0) == 0x80) shown.pop_back();
      if (!shown.empty() && (shown.back() & 0x80) != 0) shown.pop_back();
      shown += "...";
    }
    return '"' + shown + '"';
  }

  static const std::string& At(const Table& table, unsigned long index) {
    static const std::string unknown = "?";
    return index <= table.size() ? table[index - 1] : unknown;
  }

  std::string Identifying(Table& table) {
    const unsigned octet = Next();
    if ((octet & 0x80) == 0) {
      table.emplace_back(Take(Integer(FastInfoset::kLengthBit2, octet)));
      return table.back();
    }
    return At(table, Integer(FastInfoset::kIndexBit2, octet));
  }

  // An encoded string whose selector is `selector`; `octet` begins its length, or its index.
  std::string Encoded(unsigned selector, unsigned octet, const IntegerLayout& length, int indexShift,
                      std::string& kind) {
    unsigned long index = 0;
    if (selector >= 2) {
      const unsigned second = Next();
      index = ((octet << (8 - indexShift) | second >> indexShift) & 0xFF) + 1;
      octet = second;
    }
    const std::string_view octets = Take(Integer(length, octet));
    const auto* const data = reinterpret_cast<const unsigned char*>(octets.data());
    switch (selector) {
      case 0:
        return std::string(octets);
      case 1:
        kind = ", UTF-16";
        return ToUtf8(CEncoder::Utf16ToUnicode(octets, /*bigEndian=*/true));
      case 2:
        kind = ", alphabet " + std::to_string(index);
        return Packed(index, octets);
      default:
        kind = ", algorithm " + std::to_string(index);
        if (index == FIEncodingAlgorithm_Cdata) return std::string(octets);
        if (index > FIEncodingAlgorithm_Cdata) return "?";
        std::wstring text;
        CFastInfosetBinaryData::AppendAsString(index, data, octets.size(), text);
        return ToUtf8(text);
    }
  }

  static std::string Packed(unsigned long alphabet, std::string_view octets) {
    const auto& alphabets = CFIVocabulary::GetRestrictedAlphabets();
    if (alphabet > alphabets.size()) return "?";
    std::string text;
    for (const char octet : octets) {
      for (const int shift : {4, 0}) {
        const std::size_t code = static_cast<unsigned char>(octet) >> shift & 15;
        if (code < alphabets[alphabet - 1].size()) text += static_cast<char>(alphabets[alphabet - 1][code]);
      }
    }
    return text;
  }

  // A string that may be an index, beginning on bit 1.
  std::string Value(Table& table, const char* name) {
    const unsigned octet = Next();
    if (octet == FastInfoset::kEmptyValue) return "\"\", empty";
    if ((octet & 0x80) != 0) {
      const unsigned long index = Integer(FastInfoset::kIndexBit2, octet);
      return Quoted(At(table, index)) + ", " + name + ' ' + std::to_string(index);
    }
    return Literal(table, name, (octet & 0x40) != 0, octet >> 4 & 3, octet, FastInfoset::kLengthBit5, 4);
  }

  std::string Chunk(unsigned octet) {
    if ((octet & 0x20) != 0) {
      const unsigned long index = Integer(FastInfoset::kIndexBit4, octet);
      return Quoted(At(m_chunks, index)) + ", chunk " + std::to_string(index);
    }
    return Literal(m_chunks, "chunk", (octet & 0x10) != 0, octet >> 2 & 3, octet, FastInfoset::kLengthBit7, 2);
  }

  std::string Literal(Table& table, const char* name, bool add, unsigned selector, unsigned octet,
                      const IntegerLayout& length, int indexShift) {
    std::string kind;
    const std::string text = Encoded(selector, octet, length, indexShift, kind);
    if (add) {
      table.push_back(text);
      kind += std::string(", added as ") + name + ' ' + std::to_string(table.size());
    }
    return Quoted(text) + kind;
  }

  std::string Name(unsigned octet, Table& names, const char* kind, const IntegerLayout& index, unsigned literal) {
    if ((octet & index.field & ~3u) != literal) {
      const unsigned long number = Integer(index, octet);
      return ForTerminal(At(names, number)) + ", " + kind + ' ' + std::to_string(number);
    }
    std::string prefix;
    if ((octet & FastInfoset::kNamePrefixBit) != 0) prefix = Identifying(m_prefixes) + ':';
    std::string uri;
    if ((octet & FastInfoset::kNameNamespaceBit) != 0) uri = " in " + Identifying(m_namespaces);
    names.push_back(prefix + Identifying(m_localNames) + uri);
    return ForTerminal(names.back()) + ", added as " + kind + ' ' + std::to_string(names.size());
  }

  std::string Entity(unsigned identifiers) {
    std::string text = Identifying(m_otherNames);
    if ((identifiers & 2) != 0) text += ", system " + Identifying(m_otherUris);
    if ((identifiers & 1) != 0) text += ", public " + Identifying(m_otherUris);
    return ForTerminal(text);
  }

  template <class ReadItem>
  void List(const char* what, ReadItem&& readItem) {
    unsigned long count = Next();
    if (count >= 0x80) {
      count = (count & 0x0F) << 8 | Next();
      count = (count << 8 | Next()) + 128;
    }
    ++count;
    Line(std::string(what) + ": " + Grouped(count));
    for (; count > 0; --count) Line("  " + ForTerminal(readItem()));
  }

  template <class ReadItem>
  void UntilTerminator(const char* what, ReadItem&& readItem) {
    for (unsigned octet = Next(); octet != FastInfoset::kTerminator; octet = Next()) {
      Line(std::string(what) + ' ' + readItem(octet));
    }
    Line(std::string("end of the list of each ") + what);
  }

  void InitialVocabulary() {
    const unsigned first = Next();
    const unsigned parts = first << 8 | Next();
    Line("initial vocabulary");
    if ((parts & 0x1000) != 0) Line("external vocabulary " + ForTerminal(String()));
    Table unused;
    const auto strings = [this](Table& table) {
      return [this, &table] {
        table.push_back(String());
        return table.back();
      };
    };
    const auto values = [this](Table& table) {
      return [this, &table] {
        const unsigned octet = Next();
        return Literal(table, "entry", true, octet >> 4 & 3, octet, FastInfoset::kLengthBit5, 4);
      };
    };
    const auto names = [this](Table& table) {
      return [this, &table] {
        const unsigned octet = Next();
        std::string text;
        if ((octet & 2) != 0) text = At(m_prefixes, Integer(FastInfoset::kIndexBit2, Next())) + ':';
        const std::string uri =
            (octet & 1) != 0 ? " in " + At(m_namespaces, Integer(FastInfoset::kIndexBit2, Next())) : std::string();
        table.push_back(text + At(m_localNames, Integer(FastInfoset::kIndexBit2, Next())) + uri);
        return table.back();
      };
    };
    if ((parts & 0x0800) != 0) List("restricted alphabets", strings(unused));
    if ((parts & 0x0400) != 0) List("encoding algorithms", strings(unused));
    if ((parts & 0x0200) != 0) List("prefixes", strings(m_prefixes));
    if ((parts & 0x0100) != 0) List("namespace names", strings(m_namespaces));
    if ((parts & 0x0080) != 0) List("local names", strings(m_localNames));
    if ((parts & 0x0040) != 0) List("other names", strings(m_otherNames));
    if ((parts & 0x0020) != 0) List("other URIs", strings(m_otherUris));
    if ((parts & 0x0010) != 0) List("attribute values", values(m_values));
    if ((parts & 0x0008) != 0) List("character chunks", values(m_chunks));
    if ((parts & 0x0004) != 0) List("other strings", values(m_otherStrings));
    if ((parts & 0x0002) != 0) List("element names", names(m_elementNames));
    if ((parts & 0x0001) != 0) List("attribute names", names(m_attributeNames));
  }

  void End(const char* what, std::size_t levels) {
    m_depth -= std::min(m_depth, levels);
    Line(what);
  }

  void Item() {
    const unsigned octet = Next();
    if (octet < 0x80) {
      Element(octet);
    } else if (octet < 0xC0) {
      Line("text " + Chunk(octet));
    } else if (octet == FastInfoset::kProcessingInstruction) {
      const std::string target = Identifying(m_otherNames);
      Line("processing instruction " + ForTerminal(target) + ' ' + Value(m_otherStrings, "other string"));
    } else if (octet == FastInfoset::kComment) {
      Line("comment " + Value(m_otherStrings, "other string"));
    } else if ((octet & 0xFC) == FastInfoset::kDocumentType) {
      std::string text = "document type declaration";
      if ((octet & 2) != 0) text += ", system " + Identifying(m_otherUris);
      if ((octet & 1) != 0) text += ", public " + Identifying(m_otherUris);
      Line(ForTerminal(text));
      ++m_depth;
    } else if ((octet & 0xFC) == FastInfoset::kEntityReference) {
      Line("entity reference " + Entity(octet & 3));
    } else if (octet == FastInfoset::kTerminator) {
      End("end", 1);
    } else if (octet == FastInfoset::kDoubleTerminator) {
      End("end, end", 2);
    } else {
      Fail("no item begins");
    }
  }

  void Element(unsigned octet) {
    const bool hasAttributes = (octet & FastInfoset::kAttributesBit) != 0;
    if ((octet & 0x3C) == FastInfoset::kElementNamespaces) {
      Line("namespaces");
      for (octet = Next(); octet != FastInfoset::kTerminator; octet = Next()) {
        std::string text = "  xmlns";
        if ((octet & 2) != 0) text += ':' + Identifying(m_prefixes);
        text += " = " + ((octet & 1) != 0 ? Identifying(m_namespaces) : std::string("none"));
        Line(ForTerminal(text));
      }
      Line("  end of namespaces");
      octet = Next();
    }
    Line("element " +
         Name(octet, m_elementNames, "element name", FastInfoset::kIndexBit3, FastInfoset::kElementLiteralName));
    ++m_depth;
    if (!hasAttributes) return;
    for (octet = Next(); octet < 0x80; octet = Next()) {
      const std::string name =
          Name(octet, m_attributeNames, "attribute name", FastInfoset::kIndexBit2, FastInfoset::kAttributeLiteralName);
      Line("attribute " + name);
      Line("  = " + Value(m_values, "value"));
    }
    if (octet == FastInfoset::kDoubleTerminator) return End("end of attributes, end", 1);
    if (octet != FastInfoset::kTerminator) Fail("no attribute begins");
    Line("end of attributes");
  }

  std::string_view m_bytes;
  std::size_t m_at = 0;
  std::size_t m_shown = 0;
  std::size_t m_depth = 0;  // open elements, the document and a document type declaration
  Table m_prefixes = {"xml"};
  Table m_namespaces = {"http://www.w3.org/XML/1998/namespace"};
  Table m_localNames, m_otherNames, m_otherUris, m_otherStrings, m_values, m_chunks;
  Table m_elementNames, m_attributeNames;  // "prefix:name in namespace"
};

}  // namespace

void ShowOctets(std::string_view bytes) { OctetList(bytes).Document(); }

// Scanning XML text of the plain case straight into the tree.
//
// The plain algorithm: the scanner goes over the bytes once. A start tag is taken apart into raw names and values; the
// declarations among them bind prefixes, then element and attributes are added to the document. Text is widened into
// its element. m_open has the open elements, m_bindings what their declarations replaced.
//
// Every step that meets anything but the plain case returns false, up to ScanPlainXml, which drops the tree and leaves
// the document to CExpatReader. So nothing here makes an error, and what is accepted must be exactly what expat
// accepts: a doubt is a false. Invariant: up to there the tree, its locations and notes are those of CExpatReader.
//
// What is added to that:
//   Blocks   Ends of names, texts and values are searched for sixteen bytes at a time (Find), ASCII is widened eight at
//            a time.
//   Names    m_names has the last name of each hash, which tells local name and prefix. Names are compared by their
//            first sixteen bytes (Head), those that are longer also by the rest.
//   Gaps     White space that the document shares is compared with the place in the input where it last stood (Blanks).
//   Decoding What is not ASCII, a reference or a line end goes through Decode, in pieces of kPieceSize bytes.
#include "RkXmlLib16/xml/internal/PlainScanner.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/ErrorHandler.h"
#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/ByteScan.h"
#include "RkXmlLib16/base/internal/CodePoints.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/document/internal/Names.h"
#include "RkXmlLib16/document/internal/TreeBuilder.h"

namespace RkXmlLib16 {

namespace {

using namespace ByteScan;

// expat is given a document up to this size in one piece, and has no limits of its own before it.
constexpr std::size_t kLongestDocument = std::size_t{1} << 28;
// Characters of attribute namespaces, each time they occur; far below the limit of CExpatReader.
constexpr std::size_t kMostNamespaceChars = std::size_t{1} << 30;
// Texts of white space up to this length are shared.
constexpr std::size_t kLongestBlanks = 64;
// Bytes that are decoded before their characters are handed on, and those of a reference.
constexpr std::size_t kPieceSize = 512;
constexpr std::size_t kLongestItem = 16;
// Attributes of an element that are compared each with each.
constexpr std::size_t kFewAttributes = 16;
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

// ---- where searches stop ----

// What can follow a name in a tag, and nothing that can be part of one.
struct EndsName {
  static bool Is(Byte c) { return c <= ' ' || c == '>' || c == '/' || c == '='; }
  static unsigned Of(__m128i bytes) {
    const __m128i blank = _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(' ')), bytes);
    return MaskOf(
        _mm_or_si128(_mm_or_si128(blank, IsByte(bytes, '>')), _mm_or_si128(IsByte(bytes, '/'), IsByte(bytes, '='))));
  }
};

// Other bytes of a text are characters that stand for themselves.
struct EndsText {
  static bool Is(Byte c) {
    return c == '<' || c == '&' || c == ']' || c >= 0x80 || (c < ' ' && c != '\n' && c != '\t');
  }
  static unsigned Of(__m128i bytes) {
    const __m128i lines = _mm_or_si128(IsByte(bytes, '\n'), IsByte(bytes, '\t'));
    const __m128i marks = _mm_or_si128(_mm_or_si128(IsByte(bytes, '<'), IsByte(bytes, '&')), IsByte(bytes, ']'));
    return MaskOf(_mm_or_si128(_mm_andnot_si128(lines, IsBelowBlank(bytes)), marks));
  }
};

// The same for an attribute value.
template <char Quote>
struct EndsValue {
  static bool Is(Byte c) { return c == Quote || c == '<' || c == '&' || c >= 0x80 || c < ' '; }
  static unsigned Of(__m128i bytes) {
    return MaskOf(_mm_or_si128(_mm_or_si128(IsByte(bytes, Quote), IsByte(bytes, '<')),
                               _mm_or_si128(IsByte(bytes, '&'), IsBelowBlank(bytes))));
  }
};

// White space as the reader hands it on.
struct EndsBlanks {
  static bool Is(Byte c) { return c != ' ' && c != '\n' && c != '\t'; }
  static unsigned Of(__m128i bytes) {
    return MaskOf(_mm_or_si128(_mm_or_si128(IsByte(bytes, ' '), IsByte(bytes, '\n')), IsByte(bytes, '\t'))) ^ 0xFFFF;
  }
};

const Byte* FindByte(const Byte* at, const Byte* end, Byte wanted) {
  const void* const found = std::memchr(at, wanted, static_cast<std::size_t>(end - at));
  return found != nullptr ? static_cast<const Byte*>(found) : end;
}

// The first place where all of `wanted` stands, or null.
const Byte* FindAll(const Byte* at, const Byte* end, std::string_view wanted) {
  const std::string_view rest(reinterpret_cast<const char*>(at), static_cast<std::size_t>(end - at));
  const std::size_t found = rest.find(wanted);
  return found != std::string_view::npos ? at + found : nullptr;
}

// Widens so many characters of ASCII.
template <std::size_t step>
void WidenStep(const Byte* at, wchar_t* out);

template <>
void WidenStep<4>(const Byte* at, wchar_t* out) {
  std::int32_t four = 0;
  std::memcpy(&four, at, sizeof four);
  const __m128i zero = _mm_setzero_si128();
  const __m128i units = _mm_unpacklo_epi8(_mm_cvtsi32_si128(four), zero);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi16(units, zero));
}

template <>
void WidenStep<8>(const Byte* at, wchar_t* out) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i units = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)), zero);
  auto* const to = reinterpret_cast<__m128i*>(out);
  _mm_storeu_si128(to, _mm_unpacklo_epi16(units, zero));
  _mm_storeu_si128(to + 1, _mm_unpackhi_epi16(units, zero));
}

// As many steps as it takes; the last one may go over characters again.
template <std::size_t step>
void WidenBySteps(const Byte* at, std::size_t length, wchar_t* out) {
  for (std::size_t i = 0; i + step < length; i += step) WidenStep<step>(at + i, out + i);
  WidenStep<step>(at + length - step, out + length - step);
}

// Widens ASCII; returns the place behind it.
wchar_t* Widen(const Byte* at, std::size_t length, wchar_t* out) {
  if (length >= 8)
    WidenBySteps<8>(at, length, out);
  else if (length >= 4)
    WidenBySteps<4>(at, length, out);
  else
    for (std::size_t i = 0; i < length; ++i) out[i] = at[i];
  return out + length;
}

// Whether so many bytes are the same; false where that cannot be told by reading whole steps before `end`.
bool StandSame(const Byte* at, const Byte* earlier, std::size_t length, const Byte* end) {
  const std::size_t steps = (length + kStep - 1) / kStep * kStep;
  if (steps > static_cast<std::size_t>(end - at)) return false;
  const auto difference = [&](std::size_t i) {
    return MaskOf(_mm_cmpeq_epi8(Load(at + i), Load(earlier + i))) ^ 0xFFFF;
  };
  std::size_t i = 0;
  for (; i + kStep < length; i += kStep)
    if (difference(i) != 0) return false;
  return (difference(i) & (0xFFFFu >> (i + kStep - length))) == 0;
}

std::string_view View(const Byte* at, std::size_t length) { return {reinterpret_cast<const char*>(at), length}; }

// ---- names ----

// The first sixteen bytes of a name, zeros behind its end.
struct Head {
  std::uint64_t low = 0;
  std::uint64_t high = 0;

  friend bool operator==(const Head& a, const Head& b) { return a.low == b.low && a.high == b.high; }
};

// A name as the bytes of a tag spell it.
struct RawName {
  const Byte* at = nullptr;
  std::size_t length = SIZE_MAX;
  Head head;

  std::string_view View() const { return RkXmlLib16::View(at, length); }
  friend bool operator==(const RawName& a, const RawName& b) {
    return a.head == b.head && a.length == b.length &&
           (a.length <= kStep || std::memcmp(a.at + kStep, b.at + kStep, a.length - kStep) == 0);
  }
};

Head Head16(__m128i bytes, std::size_t length) {
  static constexpr Byte kMask[2 * kStep] = {255, 255, 255, 255, 255, 255, 255, 255,
                                            255, 255, 255, 255, 255, 255, 255, 255};
  Head head;
  _mm_storeu_si128(reinterpret_cast<__m128i*>(&head), _mm_and_si128(bytes, Load(kMask + kStep - length)));
  return head;
}

// The name of so many bytes.
RawName NameOf(const Byte* at, std::size_t length, const Byte* end) {
  RawName name{at, length, {}};
  if (static_cast<std::size_t>(end - at) >= kStep)
    name.head = Head16(Load(at), std::min(length, kStep));
  else
    std::memcpy(&name.head, at, length);
  return name;
}

// The name that ends where nothing of a name stands.
[[gnu::noinline]] RawName LongNameAt(const Byte* at, const Byte* end) {
  return NameOf(at, static_cast<std::size_t>(Find<EndsName>(at, end) - at), end);
}

[[gnu::always_inline]] inline RawName NameAt(const Byte* at, const Byte* end) {
  if (static_cast<std::size_t>(end - at) < kStep) return LongNameAt(at, end);
  const __m128i bytes = Load(at);
  const unsigned mask = EndsName::Of(bytes);
  return mask != 0 ? RawName{at, FirstOf(mask), Head16(bytes, FirstOf(mask))} : LongNameAt(at, end);
}

bool IsDeclaration(const RawName& name) {
  return name.length >= 5 && std::memcmp(name.at, "xmlns", 5) == 0 && (name.length == 5 || name.at[5] == ':');
}

// What a prefix stands for at the current place; null for nothing. The default namespace has the empty prefix.
struct Prefix {
  const CXmlName* uri = nullptr;
  std::size_t tag = 0;  // the number of the last start tag that declared it
};

// A name that was met, and is one.
struct KnownName {
  RawName raw;
  const CXmlName* localName = nullptr;
  const CXmlExpandedName* expanded = nullptr;  // as it was found last
  Prefix* prefix = nullptr;
  bool hasPrefix = false;
};

struct RawAttribute {
  RawName name;
  const Byte* value;
  std::size_t valueLength;
  bool isPlain;  // each byte of the value is a character that stands for itself
  bool isDeclaration;
};

struct OpenElement {
  RawName name;
  std::size_t bindings;  // how many there were before its own
};

struct Binding {
  Prefix* prefix;
  const CXmlName* before;
};

// White space that was added to a text that is shared, or to none, and the shared text that both gave.
struct Blanks {
  const Byte* at;
  std::size_t length;
  const CXmlTextBlock* before;
  CXmlTextBlock* after;
};

constexpr std::pair<std::string_view, char32_t> kEntities[] = {
    {"lt", U'<'}, {"gt", U'>'}, {"amp", U'&'}, {"quot", U'"'}, {"apos", U'\''}};

// Where characters are decoded from.
enum class Place { Text, Section, Value };

// ---- the scanner ----

// Every member that returns bool returns false to give up.
class Scanner {
 public:
  Scanner(CXmlDocument& document, ScannedAs standsFor)
      : m_document(document),
        m_tree(document),
        m_isUtf16(standsFor == ScannedAs::Utf16),
        m_joinsPairs(document.GetContext().GetJoinSurrogatePairs()),
        m_keepsSections(!document.GetContext().GetStripCDATA()),
        m_begin(document.GetInput()),
        m_end(m_begin + document.GetInputLength()),
        m_at(m_begin),
        m_emptyName(document.GetEmptyName()),
        m_defaultPrefix(&FindPrefix({})),
        m_names(document.GetInputLength() < kSmallDocument ? 64 : 256) {
    m_open.reserve(32);
  }

  bool ScanDocument() {
    if (StandsHere(kUtf8Mark)) m_at += kUtf8Mark.size();
    if (StandsHere("<?xml") && IsBlank(Peek(m_at + 5)) && !ScanDeclaration()) return false;
    if (!ScanOutside() || !ScanStartTag()) return false;
    while (!m_open.empty())
      if (!ScanContent()) return false;
    return ScanOutside() && m_at == m_end;
  }

 private:
  static constexpr std::size_t kSmallDocument = 8192;

  // NUL, which is no character of XML text, behind the end.
  Byte Peek(const Byte* at) const { return at < m_end ? *at : Byte{0}; }
  const Byte* SkipBlanks(const Byte* at) const {
    while (at < m_end && IsBlank(*at)) ++at;
    return at;
  }
  bool StandsHere(std::string_view text) const {
    return static_cast<std::size_t>(m_end - m_at) >= text.size() && std::memcmp(m_at, text.data(), text.size()) == 0;
  }
  std::uint64_t OffsetOf(const Byte* at) const {
    const auto offset = static_cast<std::uint64_t>(at - m_begin);
    return m_isUtf16 ? 2 + 2 * offset : offset;
  }

  bool ScanDeclaration();
  bool TakeDeclared(std::string_view name, std::initializer_list<std::string_view> values, bool& isThere);
  bool ScanOutside();
  bool ScanContent();
  bool ScanText();
  bool ScanStartTag();
  bool ScanAttributes(const Byte*& at);
  bool ScanEndTag();
  bool ScanComment();
  bool ScanInstruction();
  bool ScanSection();

  bool AddElement(const RawName& name, const Byte* tag);
  bool AddAttribute(CXmlElement* element, const RawAttribute& attribute);
  bool HasSameNames(const CXmlAttributes& attributes);
  bool Declare(const RawAttribute& attribute);
  void EndElement(std::size_t bindings);
  Prefix& FindPrefix(std::string_view prefix);
  KnownName* FindName(const RawName& name);
  const CXmlExpandedName* Expand(KnownName& known, const CXmlName* namespaceUri);
  bool LearnName(KnownName& known, const RawName& name);

  template <Place place>
  bool AddText(const Byte* at, const Byte* end);
  void AppendBlanks(const Byte* at, std::size_t length);
  void AppendPlain(const Byte* at, std::size_t length);
  void AppendToBlock(CXmlElement* element, const Byte* at, std::size_t length);
  template <Place place, class Use>
  bool Decode(const Byte* at, const Byte* end, Use&& use);
  template <Place place>
  bool DecodePiece(const Byte*& at, const Byte* stop, const Byte* end, wchar_t*& out) const;
  template <class Use>
  bool DecodeValue(const RawAttribute& attribute, Use&& use) {
    return Decode<Place::Value>(attribute.value, attribute.value + attribute.valueLength, use);
  }
  bool TakeName(std::string_view name);
  wchar_t* Put(char32_t c, wchar_t* out) const;

  CXmlDocument& m_document;
  CTreeBuilder m_tree;
  const bool m_isUtf16;
  const bool m_joinsPairs;
  const bool m_keepsSections;
  const Byte* const m_begin;
  const Byte* const m_end;
  const Byte* m_at;
  std::map<std::string_view, Prefix> m_prefixes;
  const CXmlName* const m_emptyName;
  Prefix* const m_defaultPrefix;
  std::vector<KnownName> m_names;  // the last one for each place, a power of two
  std::vector<OpenElement> m_open;
  std::vector<Binding> m_bindings;
  std::vector<RawAttribute> m_attributes;  // of the current tag
  std::vector<const CXmlExpandedName*> m_attributeNames;
  std::array<Blanks, 64> m_blanks{};
  std::wstring m_text;  // the last name or namespace that was decoded
  std::array<wchar_t, kPieceSize + kLongestItem> m_piece;
  std::size_t m_tag = 0;
  std::size_t m_namespaceChars = 0;
};

// ---- outside of the document element ----

// Name, equals sign and one of the values, in quotation marks, behind white space; or nothing of it.
bool Scanner::TakeDeclared(std::string_view name, std::initializer_list<std::string_view> values, bool& isThere) {
  const Byte* at = SkipBlanks(m_at);
  isThere = at != m_at && View(at, std::min(name.size(), static_cast<std::size_t>(m_end - at))) == name;
  if (!isThere) return true;
  at = SkipBlanks(at + name.size());
  if (Peek(at) != '=') return false;
  at = SkipBlanks(at + 1);
  const Byte quote = Peek(at);
  if (quote != '"' && quote != '\'') return false;
  const Byte* const value = at + 1;
  const Byte* const end = FindByte(value, m_end, quote);
  if (end == m_end) return false;
  m_at = end + 1;
  const auto isSame = [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; };
  const std::string_view text = View(value, static_cast<std::size_t>(end - value));
  return std::any_of(values.begin(), values.end(), [&](std::string_view wanted) {
    return name == "encoding" ? std::equal(text.begin(), text.end(), wanted.begin(), wanted.end(), isSame)
                              : text == wanted;
  });
}

bool Scanner::ScanDeclaration() {
  m_at += 5;
  bool isThere = false;
  if (!TakeDeclared("version", {"1.0"}, isThere) || !isThere) return false;
  if (!TakeDeclared("encoding", {"utf-8"}, isThere) || (isThere && m_isUtf16)) return false;
  if (!TakeDeclared("standalone", {"yes", "no"}, isThere)) return false;
  m_at = SkipBlanks(m_at);
  if (!StandsHere("?>")) return false;
  m_at += 2;
  return true;
}

bool Scanner::ScanOutside() {
  for (;;) {
    m_at = SkipBlanks(m_at);
    if (StandsHere("<!--")) {
      if (!ScanComment()) return false;
    } else if (StandsHere("<?")) {
      if (!ScanInstruction()) return false;
    } else {
      return true;
    }
  }
}

// ---- content ----

bool Scanner::ScanContent() {
  if (Peek(m_at) != '<' && !ScanText()) return false;
  switch (Peek(m_at + 1)) {
    case '/':
      return ScanEndTag();
    case '!':
      return StandsHere("<!--") ? ScanComment() : ScanSection();
    case '?':
      return ScanInstruction();
    default:
      return ScanStartTag();
  }
}

bool Scanner::ScanText() {
  const Byte* const start = m_at;
  if (start == m_end) return false;
  if (!EndsBlanks::Is(*start)) {
    const Byte* const end = Find<EndsBlanks>(start, m_end);
    const auto length = static_cast<std::size_t>(end - start);
    if (Peek(end) == '<' && length <= kLongestBlanks) {
      if (!m_tree.HoldGap(length, end)) AppendBlanks(start, length);
      m_at = end;
      return true;
    }
  }
  const Byte* end = Find<EndsText>(start, m_end);
  if (Peek(end) == '<') {
    AppendPlain(start, static_cast<std::size_t>(end - start));
  } else {
    end = FindByte(end, m_end, '<');
    if (end == m_end || !AddText<Place::Text>(start, end)) return false;
  }
  m_at = end;
  return true;
}

bool Scanner::ScanComment() {
  m_tree.EndGaps();
  const Byte* const text = m_at + 4;
  const Byte* const end = FindAll(text, m_end, "--");
  if (end == nullptr || Peek(end + 2) != '>') return false;
  if (!Decode<Place::Section>(text, end, [](std::wstring_view) {})) return false;
  m_document.NoteDropped(RkDropped_Comment, OffsetOf(m_at));
  m_at = end + 3;
  return true;
}

bool Scanner::ScanInstruction() {
  m_tree.EndGaps();
  const Byte* const target = m_at + 2;
  const Byte* at = target;
  while (at < m_end && !IsBlank(*at) && *at != '?') ++at;
  const std::string_view name = View(target, static_cast<std::size_t>(at - target));
  constexpr std::string_view kReserved = "xml";
  const auto isSame = [](char a, char b) { return (a | 0x20) == b; };
  if (std::equal(name.begin(), name.end(), kReserved.begin(), kReserved.end(), isSame)) return false;
  if (!TakeName(name)) return false;
  const Byte* const end = FindAll(at, m_end, "?>");
  if (end == nullptr || (end != at && !IsBlank(*at))) return false;
  if (!Decode<Place::Section>(at, end, [](std::wstring_view) {})) return false;
  m_document.NoteDropped(RkDropped_ProcessingInstruction, OffsetOf(m_at));
  m_at = end + 2;
  return true;
}

bool Scanner::ScanSection() {
  constexpr std::string_view kStart = "<![CDATA[";
  constexpr std::string_view kEnd = "]]>";
  if (!StandsHere(kStart)) return false;
  m_tree.EndGaps();
  const Byte* const text = m_at + kStart.size();
  const Byte* const end = FindAll(text, m_end, kEnd);
  if (end == nullptr) return false;
  CXmlElement* const element = m_document.GetCurrentElement();
  if (m_keepsSections) {
    m_document.MarkSection();
    m_document.AppendText(element, L"<![CDATA[");
  }
  if (!AddText<Place::Section>(text, end)) return false;
  if (m_keepsSections) m_document.AppendText(element, L"]]>");
  m_at = end + kEnd.size();
  return true;
}

// ---- names ----

Prefix& Scanner::FindPrefix(std::string_view prefix) {
  const auto [at, isNew] = m_prefixes.try_emplace(prefix);
  if (isNew && prefix.empty()) at->second.uri = m_emptyName;
  if (isNew && prefix == "xml") at->second.uri = m_document.InternName(CXmlWriter::XML_NAMESPACE);
  return at->second;
}

// Null for what is no name.
[[gnu::always_inline]] inline KnownName* Scanner::FindName(const RawName& name) {
  const Head& head = name.head;
  const std::uint64_t hash = (head.low ^ head.high * 0x9E3779B97F4A7C15u) * 0xD6E8FEB86659FD93u;
  KnownName& known = m_names[hash >> 40 & (m_names.size() - 1)];
  return known.raw == name || LearnName(known, name) ? &known : nullptr;
}

inline const CXmlExpandedName* Scanner::Expand(KnownName& known, const CXmlName* namespaceUri) {
  if (known.expanded == nullptr || known.expanded->GetNamespace() != namespaceUri)
    known.expanded = m_document.InternName(namespaceUri, known.localName);
  return known.expanded;
}

[[gnu::noinline]] bool Scanner::LearnName(KnownName& known, const RawName& name) {
  const std::string_view raw = name.View();
  const std::size_t colon = raw.find(':');
  known.raw = name;
  known.hasPrefix = colon != std::string_view::npos;
  known.prefix = m_defaultPrefix;
  if (known.hasPrefix) {
    const std::string_view prefix = raw.substr(0, colon);
    if (!TakeName(prefix)) return false;
    known.prefix = &FindPrefix(prefix);
  }
  if (!TakeName(known.hasPrefix ? raw.substr(colon + 1) : raw)) return false;
  known.localName = m_document.InternName(m_text);
  known.expanded = nullptr;
  return true;
}

// ---- tags ----

bool Scanner::ScanStartTag() {
  const Byte* const tag = m_at;
  if (Peek(tag) != '<') return false;
  const RawName name = NameAt(tag + 1, m_end);
  const Byte* at = name.at + name.length;
  m_attributes.clear();
  if (Peek(at) != '>' && !ScanAttributes(at)) return false;
  const bool isEmpty = *at == '/';
  if (isEmpty && Peek(++at) != '>') return false;
  m_at = at + 1;
  const std::size_t bindings = m_bindings.size();
  if (!AddElement(name, tag)) return false;
  if (isEmpty)
    EndElement(bindings);
  else
    m_open.push_back({name, bindings});
  return true;
}

// From behind the name of the element to the end of the tag, or the slash before it.
bool Scanner::ScanAttributes(const Byte*& at) {
  for (;;) {
    const Byte* const before = at;
    at = SkipBlanks(at);
    const Byte c = Peek(at);
    if (c == '>' || c == '/') return true;
    if (at == before) return false;
    RawAttribute attribute;
    attribute.name = NameAt(at, m_end);
    at += attribute.name.length;
    if (Peek(at) != '=') at = SkipBlanks(at);
    if (Peek(at) != '=') return false;
    ++at;
    if (IsBlank(Peek(at))) at = SkipBlanks(at);
    const Byte quote = Peek(at);
    if (quote != '"' && quote != '\'') return false;
    attribute.value = ++at;
    at = quote == '"' ? Find<EndsValue<'"'>>(at, m_end) : Find<EndsValue<'\''>>(at, m_end);
    attribute.isPlain = Peek(at) == quote;
    if (!attribute.isPlain) at = FindByte(at, m_end, quote);
    if (at == m_end) return false;
    attribute.valueLength = static_cast<std::size_t>(at - attribute.value);
    ++at;
    attribute.isDeclaration = IsDeclaration(attribute.name);
    m_attributes.push_back(attribute);
  }
}

// Declarations count for the whole tag, wherever they stand in it.
bool Scanner::AddElement(const RawName& name, const Byte* tag) {
  ++m_tag;
  for (const RawAttribute& attribute : m_attributes)
    if (attribute.isDeclaration && !Declare(attribute)) return false;
  KnownName* const known = FindName(name);
  if (known == nullptr || known->prefix->uri == nullptr) return false;
  CXmlElement* const element = m_tree.AddElement(Expand(*known, known->prefix->uri), OffsetOf(tag));
  for (const RawAttribute& attribute : m_attributes)
    if (!attribute.isDeclaration && !AddAttribute(element, attribute)) return false;
  return m_attributes.size() < 2 || !HasSameNames(element->GetAttributes());
}

bool Scanner::HasSameNames(const CXmlAttributes& attributes) {
  m_attributeNames.clear();
  for (const CXmlAttribute* attribute : attributes) m_attributeNames.push_back(attribute->GetNameRef());
  const auto begin = m_attributeNames.begin();
  const auto end = m_attributeNames.end();
  if (m_attributeNames.size() > kFewAttributes) {
    std::sort(begin, end);
    return std::adjacent_find(begin, end) != end;
  }
  for (auto name = begin; name != end; ++name)
    if (std::find(begin, name, *name) != name) return true;
  return false;
}

bool Scanner::AddAttribute(CXmlElement* element, const RawAttribute& raw) {
  KnownName* const known = FindName(raw.name);
  if (known == nullptr || known->prefix->uri == nullptr) return false;
  const CXmlName* const namespaceUri = known->hasPrefix ? known->prefix->uri : m_emptyName;
  m_namespaceChars += namespaceUri->View().size();
  if (m_namespaceChars > kMostNamespaceChars) return false;
  if (raw.isPlain && raw.valueLength != 0) {
    // Those with a prefix are mostly xsi:type and xsi:nil.
    const CXmlHeldText value = m_tree.HoldText(raw.value, raw.valueLength, m_end, /*isAskedOften=*/known->hasPrefix);
    if (!value.IsNone()) {
      m_tree.AddAttribute(element, Expand(*known, namespaceUri), value);
      m_tree.Count(raw.valueLength);
      return true;
    }
  }
  CXmlAttribute* const attribute = m_tree.AddAttribute(element, Expand(*known, namespaceUri), nullptr);
  if (raw.valueLength == 0) return true;
  if (raw.isPlain) {
    Widen(raw.value, raw.valueLength, m_document.ReserveValue(attribute, raw.valueLength));
    m_document.CommitValue(attribute, raw.valueLength);
    return true;
  }
  return DecodeValue(raw, [&](std::wstring_view piece) {
    std::wmemcpy(m_document.ReserveValue(attribute, piece.size()), piece.data(), piece.size());
    m_document.CommitValue(attribute, piece.size());
  });
}

bool Scanner::Declare(const RawAttribute& attribute) {
  std::string_view raw = attribute.name.View().substr(5);
  const bool isDefault = raw.empty();
  if (!isDefault) raw.remove_prefix(1);
  if (raw == "xml" || raw == "xmlns") return false;
  if (!isDefault && !TakeName(raw)) return false;
  const CXmlName* const prefixName = isDefault ? m_emptyName : m_document.InternName(m_text);
  m_text.clear();
  if (!DecodeValue(attribute, [this](std::wstring_view piece) { m_text += piece; })) return false;
  if ((m_text.empty() && !isDefault) || m_text.find(L'|') != std::wstring::npos ||
      m_text == CXmlWriter::XML_NAMESPACE || m_text == CXmlWriter::XMLNS_NAMESPACE)
    return false;
  Prefix& prefix = FindPrefix(raw);
  if (prefix.tag == m_tag) return false;
  prefix.tag = m_tag;
  m_bindings.push_back({&prefix, prefix.uri});
  prefix.uri = m_document.InternName(m_text);
  m_document.AddNamespaceAlias(prefixName, prefix.uri);
  return true;
}

bool Scanner::ScanEndTag() {
  const OpenElement open = m_open.back();
  if (static_cast<std::size_t>(m_end - m_at) < open.name.length + 3) return false;
  const RawName name = NameOf(m_at + 2, open.name.length, m_end);
  if (!(name == open.name)) return false;
  const Byte* at = name.at + name.length;
  if (*at != '>') at = SkipBlanks(at);
  if (Peek(at) != '>') return false;
  m_at = at + 1;
  m_open.pop_back();
  EndElement(open.bindings);
  return true;
}

void Scanner::EndElement(std::size_t bindings) {
  for (; m_bindings.size() > bindings; m_bindings.pop_back()) m_bindings.back().prefix->uri = m_bindings.back().before;
  m_tree.EndElement();
}

// ---- characters ----

wchar_t* Scanner::Put(char32_t c, wchar_t* out) const {
  if (c > 0xFFFF && !m_joinsPairs) {
    *out++ = static_cast<wchar_t>(HighSurrogateOf(c));
    c = LowSurrogateOf(c);
  }
  *out++ = static_cast<wchar_t>(c);
  return out;
}

// A reference to a character or to one of the predefined entities.
bool TakeReference(const Byte*& at, const Byte* end, char32_t& c) {
  const std::string_view text = View(at, std::min(static_cast<std::size_t>(end - at), kLongestItem));
  const std::size_t length = text.find(';');
  if (length == std::string_view::npos) return false;
  const std::string_view name = text.substr(1, length - 1);
  at += length + 1;
  for (const auto& [entity, character] : kEntities) {
    if (name != entity) continue;
    c = character;
    return true;
  }
  if (name.size() < 2 || name[0] != '#') return false;
  const bool isHexadecimal = name[1] == 'x';
  const std::string_view digits = name.substr(isHexadecimal ? 2 : 1);
  if (digits.empty()) return false;
  c = 0;
  for (const char digit : digits) {
    const char letter = static_cast<char>(digit | 0x20);
    if (digit >= '0' && digit <= '9')
      c = c * (isHexadecimal ? 16 : 10) + static_cast<char32_t>(digit - '0');
    else if (isHexadecimal && letter >= 'a' && letter <= 'f')
      c = c * 16 + static_cast<char32_t>(letter - 'a' + 10);
    else
      return false;
    if (c > 0x10FFFF) return false;
  }
  return IsScalarValue(c) && IsXmlCharacter(c);
}

// Up to `stop`, or as far behind it as the last character goes. Line ends become line feeds, in values blanks.
template <Place place>
bool Scanner::DecodePiece(const Byte*& at, const Byte* stop, const Byte* end, wchar_t*& out) const {
  using Kind = std::conditional_t<place == Place::Value, EndsValue<'"'>, EndsText>;
  char32_t character = 0;
  while (at < stop) {
    const Byte c = *at;
    if (c >= 0x80) {
      if (!TakeCharacter(at, end, character)) return false;
      out = Put(character, out);
    } else if (!Kind::Is(c)) {
      const Byte* const run = Find<Kind>(at, stop);
      out = Widen(at, static_cast<std::size_t>(run - at), out);
      at = run;
    } else if (c < ' ') {
      if (!IsBlank(c)) return false;
      if (c == '\r' && end - at > 1 && at[1] == '\n') ++at;
      *out++ = place == Place::Value ? L' ' : c == '\t' ? L'\t' : L'\n';
      ++at;
    } else if (place != Place::Section && c == '&') {
      if (!TakeReference(at, end, character)) return false;
      if (place == Place::Value || character != '\r') out = Put(character, out);
    } else {
      if (place == Place::Value && c == '<') return false;
      if (place == Place::Text && c == ']' && end - at > 2 && at[1] == ']' && at[2] == '>') return false;
      *out++ = static_cast<wchar_t>(c);
      ++at;
    }
  }
  return true;
}

// Calls `use` with the characters, one piece after the other. There are never more of them than bytes.
template <Place place, class Use>
bool Scanner::Decode(const Byte* at, const Byte* end, Use&& use) {
  while (at != end) {
    wchar_t* out = m_piece.data();
    if (!DecodePiece<place>(at, at + std::min(static_cast<std::size_t>(end - at), kPieceSize), end, out)) return false;
    use(std::wstring_view(m_piece.data(), static_cast<std::size_t>(out - m_piece.data())));
  }
  return true;
}

// Decodes into m_text.
bool Scanner::TakeName(std::string_view name) {
  const auto* const at = reinterpret_cast<const Byte*>(name.data());
  m_text.clear();
  return Decode<Place::Section>(at, at + name.size(), [this](std::wstring_view piece) { m_text += piece; }) &&
         IsNCName(m_text);
}

// Up to kLongestBlanks of them.
void Scanner::AppendBlanks(const Byte* at, std::size_t length) {
  CXmlElement* const element = m_document.GetCurrentElement();
  const CXmlTextBlock* const before = CTreeBuilder::FindShared(*element);
  if (before == nullptr && CTreeBuilder::HasText(*element)) return AppendToBlock(element, at, length);
  Blanks& known = m_blanks[(reinterpret_cast<std::uintptr_t>(before) / 8 + length * 5) % m_blanks.size()];
  if (known.length == length && known.before == before && StandSame(at, known.at, length, m_end)) {
    CTreeBuilder::SetText(*element, known.after);
    return m_tree.Count(length);
  }
  std::array<wchar_t, kLongestBlanks> blanks;
  Widen(at, length, blanks.data());
  m_document.AppendBlanks({blanks.data(), length});
  if (CXmlTextBlock* const after = CTreeBuilder::FindShared(*element)) known = {at, length, before, after};
}

void Scanner::AppendPlain(const Byte* at, std::size_t length) {
  CXmlElement* const element = m_document.GetCurrentElement();
  const CXmlHeldText text =
      CTreeBuilder::HasText(*element) ? nullptr : m_tree.HoldText(at, length, m_end, /*isAskedOften=*/false);
  if (text.IsNone()) return AppendToBlock(element, at, length);
  CTreeBuilder::SetText(*element, text);
  m_tree.Count(length);
}

[[gnu::noinline]] void Scanner::AppendToBlock(CXmlElement* element, const Byte* at, std::size_t length) {
  Widen(at, length, m_document.ReserveText(element, length));
  m_document.CommitText(element, length);
}

template <Place place>
bool Scanner::AddText(const Byte* at, const Byte* end) {
  CXmlElement* const element = m_document.GetCurrentElement();
  return Decode<place>(at, end, [&](std::wstring_view piece) {
    if (piece.size() <= kLongestBlanks && piece.find_first_not_of(L" \n\t") == std::wstring_view::npos)
      return m_document.AppendBlanks(piece);
    std::wmemcpy(m_document.ReserveText(element, piece.size()), piece.data(), piece.size());
    m_document.CommitText(element, piece.size());
  });
}

// What the scanner leaves to the reader from the start.
bool IsLeft(const CXmlDocument& document, ScannedAs standsFor) {
  const std::size_t longest = standsFor == ScannedAs::Utf16 ? kLongestDocument / 2 - 2 : kLongestDocument;
  return !document.GetContext().GetScanPlainXml() || document.HasElementFilter() ||
         document.GetSchemaType() == SchemaType_NoNamespaces || document.GetInputLength() > longest;
}

}  // namespace

bool ScanPlainXml(CXmlDocument& document, ScannedAs standsFor) {
  if (IsLeft(document, standsFor)) return false;
  try {
    if (Scanner(document, standsFor).ScanDocument()) return true;
  } catch (const CRkException&) {
    // A limit: the reader meets it too, and tells of it.
  }
  document.DropTree();
  return false;
}

}  // namespace RkXmlLib16

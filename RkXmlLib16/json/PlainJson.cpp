// Converting JSON text of the plain case to XML text, bytes to bytes.
//
// The plain algorithm: a recursive descent over the values, at most kMaxDepth deep. A name decides what its value
// becomes (Target): an element, an attribute or text. Start tags stay open (m_isTagOpen) until content comes, as
// attributes may follow. Strings are escaped for the place where they go (Place). For each element and attribute the
// position of its member or item is noted in characters; m_trailingBytes is what these differ from bytes by.
//
// Every step that meets anything but the plain case returns false, up to ConvertPlainJson, which leaves the text to
// CJsonTextReader. Invariant: what is accepted gives exactly the bytes and places that CJsonTextReader gives.
//
// What is added to that: ends of strings, names and white space are searched for sixteen bytes at a time, and names of
// up to sixteen ASCII characters are checked at once (IsPlainName).
#include "RkXmlLib16/json/internal/PlainJson.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/internal/ByteScan.h"
#include "RkXmlLib16/base/internal/CodePoints.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/context/ReadLimits.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/internal/Names.h"
#include "RkXmlLib16/io/Encoder.h"

namespace RkXmlLib16 {

namespace {

using namespace ByteScan;

constexpr int kMaxDepth = 100;             // that of CJsonTextReader
constexpr std::size_t kLongestEscape = 6;  // of one character

// Other bytes of a string go into XML text as they are.
struct EndsRun {
  static bool Is(Byte c) { return c == '"' || c == '\\' || c == '&' || c == '<' || c == '>' || c >= 0x80 || c < ' '; }
  static unsigned Of(__m128i bytes) {
    const __m128i quotes = _mm_or_si128(IsByte(bytes, '"'), IsByte(bytes, '\\'));
    const __m128i marks = _mm_or_si128(_mm_or_si128(IsByte(bytes, '<'), IsByte(bytes, '>')), IsByte(bytes, '&'));
    return MaskOf(_mm_or_si128(_mm_or_si128(quotes, marks), IsBelowBlank(bytes)));
  }
};

// In a name, which has no escapes.
struct EndsName {
  static bool Is(Byte c) { return c == '"' || c == '\\' || c >= 0x80 || c < ' '; }
  static unsigned Of(__m128i bytes) {
    return MaskOf(_mm_or_si128(_mm_or_si128(IsByte(bytes, '"'), IsByte(bytes, '\\')), IsBelowBlank(bytes)));
  }
};

struct EndsBlanks {
  static bool Is(Byte c) { return !IsBlank(c); }
  static unsigned Of(__m128i bytes) {
    const __m128i lines = _mm_or_si128(IsByte(bytes, '\n'), IsByte(bytes, '\r'));
    return MaskOf(_mm_or_si128(lines, _mm_or_si128(IsByte(bytes, ' '), IsByte(bytes, '\t')))) ^ 0xFFFF;
  }
};

bool IsNameStart(Byte c) { return static_cast<Byte>((c | 0x20) - 'a') < 26 || c == '_'; }

bool IsNameByte(Byte c) { return IsNameStart(c) || static_cast<Byte>(c - '0') < 10 || c == '-' || c == '.'; }

bool IsDigit(Byte c) { return static_cast<Byte>(c - '0') < 10; }

// Whether these are letters, digits and the like, up to sixteen of which the first is a letter.
bool IsPlainName(const Byte* at, std::size_t length) {
  const auto isBetween = [](__m128i bytes, char first, char last) {
    return _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8(static_cast<char>(first - 1))),
                         _mm_cmplt_epi8(bytes, _mm_set1_epi8(static_cast<char>(last + 1))));
  };
  const __m128i bytes = Load(at);
  const __m128i letter = isBetween(_mm_or_si128(bytes, _mm_set1_epi8(' ')), 'a', 'z');
  const __m128i others = _mm_or_si128(_mm_or_si128(IsByte(bytes, '_'), IsByte(bytes, '-')), IsByte(bytes, '.'));
  const unsigned mask = MaskOf(_mm_or_si128(_mm_or_si128(letter, others), isBetween(bytes, '0', '9')));
  return IsNameStart(*at) && length <= kStep && (~mask & ((1u << length) - 1)) == 0;
}

// A QName of ASCII, or any after decoding.
bool IsElementName(std::string_view name) {
  bool isStart = true;
  bool hasColon = false;
  for (const char character : name) {
    const auto c = static_cast<Byte>(character);
    if (c >= 0x80) return IsQName(CEncoder::Utf8ToUnicode(name));
    if (c == ':' && !isStart && !hasColon) {
      hasColon = isStart = true;
    } else {
      if (!(isStart ? IsNameStart(c) : IsNameByte(c))) return false;
      isStart = false;
    }
  }
  return !isStart;
}

// What the writer puts in place of a character, by where it stands.
enum class Place { Text, Value, ValueWithTabs, Namespace };

// Every member that returns bool returns false to give up.
class Converter {
 public:
  Converter(std::string_view json, const CSerializationContext& context, CBinaryData& xml, CJsonPlaces& places)
      : m_begin(reinterpret_cast<const Byte*>(json.data())),
        m_end(m_begin + json.size()),
        m_at(m_begin),
        m_hasMarkers(context.GetJsonContext()->GetSupportRoundtrip() != JsonRoundTrip_Plain),
        m_areDeclarationsNodes(context.GetSchemaType() == SchemaType_NoNamespaces),
        m_valuePlace(context.GetWellFormedOutput() ? Place::ValueWithTabs : Place::Value),
        m_mostRepeated(context.GetLimits().GetExpansionRatioFrom()),
        m_xml(xml),
        m_places(places) {}

  bool Convert(const std::string& rootName);

 private:
  // What the next value becomes.
  enum class Target { Content, Element, Attribute, Text };

  Byte Peek() const { return m_at < m_end ? *m_at : Byte{0}; }
  void SkipBlanks() {
    if (m_at < m_end && IsBlank(*m_at)) m_at = Find<EndsBlanks>(m_at + 1, m_end);
  }
  // In characters.
  std::uint64_t PositionOf(const Byte* at) const { return static_cast<std::uint64_t>(at - m_begin) - m_trailingBytes; }

  bool ReadValue(int depth);
  bool ReadObject(int depth);
  bool ReadMember(int depth);
  bool ReadArray(int depth);
  bool ReadName();
  bool IsName(std::string_view name) const;
  bool ReadString(Place place);
  bool ReadEscape(Place place);
  bool ReadCodeUnit(char32_t& unit);
  bool ReadNumber();
  bool ReadLiteral(std::string_view literal);
  bool ReadNull();
  template <class Read>
  bool ReadScalar(bool isEmpty, Read&& read);

  bool StartElement(std::string_view name);
  void EndElement();
  void CloseTag();

  void Grow(std::size_t count);
  // Space for so many bytes at m_out.
  void Need(std::size_t count) {
    if (static_cast<std::size_t>(m_limit - m_out) < count) Grow(count);
  }
  void Put(std::string_view text) {
    Need(text.size());
    std::memcpy(m_out, text.data(), text.size());
    m_out += text.size();
  }
  void PutCharacter(Byte c, Place place);

  const Byte* const m_begin;
  const Byte* const m_end;
  const Byte* m_at;
  const bool m_hasMarkers;
  const bool m_areDeclarationsNodes;
  const Place m_valuePlace;
  const std::size_t m_mostRepeated;
  CBinaryData& m_xml;
  CJsonPlaces& m_places;
  Byte* m_out = nullptr;
  Byte* m_limit = nullptr;
  Target m_target = Target::Content;
  std::string_view m_name;        // of the element or attribute that the next value becomes
  std::uint64_t m_itemStart = 0;  // of the innermost member or array item
  std::vector<std::string_view> m_open;
  std::vector<std::string_view> m_arrays;
  bool m_isTagOpen = false;
  std::size_t m_trailingBytes = 0;  // those of characters above ASCII that are not their first, so far
  std::size_t m_repeatedCharacters = 0;
};

bool Converter::Convert(const std::string& rootName) {
  Need(static_cast<std::size_t>(m_end - m_begin) + kLongestEscape);
  SkipBlanks();
  if (m_at == m_end) return false;
  if (!rootName.empty()) {
    m_name = rootName;
    m_target = Target::Element;
  } else if (Peek() != '{') {
    return false;
  }
  m_itemStart = PositionOf(m_at);
  if (!ReadValue(0)) return false;
  m_places.at = PositionOf(m_at);
  SkipBlanks();
  const auto length = static_cast<unsigned long>(m_out - m_xml.GetData());
  m_xml.Truncate(length);
  return m_at == m_end && length != 0;
}

void Converter::Grow(std::size_t count) {
  const auto used = m_out != nullptr ? static_cast<std::size_t>(m_out - m_xml.GetData()) : 0;
  m_xml.Truncate(used);
  const std::size_t more = std::max(count, used);
  m_out = m_xml.Extend(more);
  m_limit = m_out + more;
}

// ---- values ----

bool Converter::ReadValue(int depth) {
  if (depth + 1 > kMaxDepth) return false;
  switch (const Byte c = Peek()) {
    case '{':
      return ReadObject(depth + 1);
    case '[':
      return ReadArray(depth + 1);
    case '"':
      ++m_at;
      return ReadScalar(Peek() == '"', [this](Place place) { return ReadString(place); });
    case 'n':
      return ReadLiteral("null") && ReadNull();
    case 't':
    case 'f': {
      const std::string_view literal = c == 't' ? "true" : "false";
      return ReadScalar(false, [&](Place) {
        Put(literal);
        return ReadLiteral(literal);
      });
    }
    default:
      return ReadScalar(false, [this](Place) { return ReadNumber(); });
  }
}

bool Converter::ReadObject(int depth) {
  bool isElement = true;
  if (m_target == Target::Element) {
    if (!StartElement(m_name)) return false;
  } else if (m_target == Target::Content && !m_arrays.empty()) {
    m_repeatedCharacters += m_arrays.back().size();
    if (m_repeatedCharacters > m_mostRepeated || !StartElement(m_arrays.back())) return false;
  } else if (depth == 1) {
    isElement = false;
  } else {
    return false;
  }
  m_target = Target::Content;
  ++m_at;
  SkipBlanks();
  while (Peek() != '}') {
    if (!ReadMember(depth)) return false;
    SkipBlanks();
    if (Peek() == '}') break;
    if (Peek() != ',') return false;
    ++m_at;
    SkipBlanks();
    if (Peek() != '"') return false;
  }
  ++m_at;
  m_target = Target::Content;
  if (isElement) EndElement();
  return true;
}

bool Converter::ReadMember(int depth) {
  m_itemStart = PositionOf(m_at);
  if (Peek() != '"' || !ReadName()) return false;
  SkipBlanks();
  if (Peek() != ':') return false;
  ++m_at;
  SkipBlanks();
  return ReadValue(depth);
}

bool Converter::ReadArray(int depth) {
  if (m_target != Target::Element) return false;
  m_arrays.push_back(m_name);
  ++m_at;
  SkipBlanks();
  while (Peek() != ']') {
    m_itemStart = PositionOf(m_at);
    if (Peek() == '[' || !ReadValue(depth)) return false;
    SkipBlanks();
    if (Peek() == ']') break;
    if (Peek() != ',') return false;
    ++m_at;
    SkipBlanks();
    if (Peek() == ']') return false;
  }
  ++m_at;
  m_target = Target::Content;
  m_arrays.pop_back();
  return true;
}

// The value of an attribute, an element or a text.
template <class Read>
bool Converter::ReadScalar(bool isEmpty, Read&& read) {
  const Target target = std::exchange(m_target, Target::Content);
  if (target == Target::Attribute) {
    const bool isDeclaration = m_name.substr(0, 5) == "xmlns" && (m_name.size() == 5 || m_name[5] == ':');
    if (!m_isTagOpen || !IsName(m_name)) return false;
    if (!isDeclaration || m_areDeclarationsNodes) m_places.nodes.push_back(m_itemStart);
    Put(" ");
    Put(m_name);
    Put("=\"");
    if (!read(isDeclaration ? Place::Namespace : m_valuePlace)) return false;
    Put("\"");
    return true;
  }
  if (target == Target::Element && !StartElement(m_name)) return false;
  if (m_open.empty()) return false;
  if (!isEmpty) CloseTag();
  if (!read(Place::Text)) return false;
  if (target == Target::Element) EndElement();
  return true;
}

bool Converter::ReadNull() {
  if (std::exchange(m_target, Target::Content) != Target::Element) return true;
  if (!StartElement(m_name)) return false;
  EndElement();
  return true;
}

bool Converter::ReadLiteral(std::string_view literal) {
  if (static_cast<std::size_t>(m_end - m_at) < literal.size() || std::memcmp(m_at, literal.data(), literal.size()) != 0)
    return false;
  m_at += literal.size();
  return true;
}

bool Converter::ReadNumber() {
  const Byte* const start = m_at;
  const auto skipDigits = [this] {
    const Byte* const before = m_at;
    while (IsDigit(Peek())) ++m_at;
    return m_at != before;
  };
  if (Peek() == '-') ++m_at;
  if (Peek() == '0')
    ++m_at;
  else if (!skipDigits())
    return false;
  if (Peek() == '.') {
    ++m_at;
    if (!skipDigits()) return false;
  }
  if ((Peek() | 0x20) == 'e') {
    ++m_at;
    if (Peek() == '+' || Peek() == '-') ++m_at;
    if (!skipDigits()) return false;
  }
  Put({reinterpret_cast<const char*>(start), static_cast<std::size_t>(m_at - start)});
  return true;
}

// ---- strings ----

// The name of a member, from its quotation mark on. Attributes are checked with their value.
bool Converter::ReadName() {
  const Byte* const start = m_at + 1;
  for (m_at = Find<EndsName>(start, m_end); Peek() != '"'; m_at = Find<EndsName>(m_at, m_end)) {
    if (Peek() < 0x80) return false;
    char32_t character = 0;
    const Byte* const before = m_at;
    if (!TakeCharacter(m_at, m_end, character)) return false;
    m_trailingBytes += static_cast<std::size_t>(m_at - before) - 1;
  }
  m_name = {reinterpret_cast<const char*>(start), static_cast<std::size_t>(m_at - start)};
  ++m_at;
  m_target = Target::Element;
  if (!m_hasMarkers || m_name.empty()) return IsName(m_name);
  if (m_name[0] == '@') {
    m_name.remove_prefix(1);
    m_target = Target::Attribute;
    return !m_name.empty();
  }
  if (m_name != "#text") return IsName(m_name);
  m_target = Target::Text;
  return true;
}

bool Converter::IsName(std::string_view name) const {
  const auto* const at = reinterpret_cast<const Byte*>(name.data());
  const bool hasSpace = at >= m_begin && at < m_end && static_cast<std::size_t>(m_end - at) >= kStep;
  return (hasSpace && IsPlainName(at, name.size())) || IsElementName(name);
}

// From behind the quotation mark.
bool Converter::ReadString(Place place) {
  for (;;) {
    const Byte* const run = Find<EndsRun>(m_at, m_end);
    Put({reinterpret_cast<const char*>(m_at), static_cast<std::size_t>(run - m_at)});
    m_at = run;
    if (m_at == m_end) return false;
    Need(kLongestEscape);
    if (const Byte c = *m_at; c == '"') {
      ++m_at;
      return true;
    } else if (c == '\\') {
      if (!ReadEscape(place)) return false;
    } else if (c >= 0x80) {
      char32_t character = 0;
      const Byte* const start = m_at;
      if (!TakeCharacter(m_at, m_end, character)) return false;
      m_trailingBytes += static_cast<std::size_t>(m_at - start) - 1;
      for (const Byte* at = start; at != m_at; ++at) *m_out++ = *at;
    } else {
      if (c < ' ' && !IsBlank(c)) return false;
      PutCharacter(c, place);
      ++m_at;
    }
  }
}

bool Converter::ReadEscape(Place place) {
  ++m_at;
  if (m_at == m_end) return false;
  switch (const Byte c = *m_at++) {
    case '"':
    case '\\':
    case '/':
      PutCharacter(c, place);
      return true;
    case 'n':
      PutCharacter('\n', place);
      return true;
    case 'r':
      PutCharacter('\r', place);
      return true;
    case 't':
      PutCharacter('\t', place);
      return true;
    case 'u':
      break;
    default:
      return false;
  }
  char32_t c = 0;
  if (!ReadCodeUnit(c)) return false;
  if (IsHighSurrogate(c)) {
    char32_t low = 0;
    if (!ReadLiteral("\\u") || !ReadCodeUnit(low) || !IsLowSurrogate(low)) return false;
    c = JoinSurrogates(c, low);
  }
  if (!IsScalarValue(c) || !IsXmlCharacter(c)) return false;
  if (c < 0x80)
    PutCharacter(static_cast<Byte>(c), place);
  else
    m_out = Utf8Form::Put(c, m_out);
  return true;
}

bool Converter::ReadCodeUnit(char32_t& unit) {
  for (int i = 0; i < 4; ++i, ++m_at) {
    const Byte digit = Peek();
    const auto letter = static_cast<Byte>(digit | 0x20);
    if (IsDigit(digit))
      unit = unit * 16 + (digit - char32_t{'0'});
    else if (letter >= 'a' && letter <= 'f')
      unit = unit * 16 + (letter - char32_t{'a'} + 10);
    else
      return false;
  }
  return true;
}

// An ASCII character of a string; there is space for it.
void Converter::PutCharacter(Byte c, Place place) {
  const auto put = [this](std::string_view text) {
    std::memcpy(m_out, text.data(), text.size());
    m_out += text.size();
  };
  switch (c) {
    case '&':
      return put("&amp;");
    case '<':
      return put("&lt;");
    case '>':
      return put("&gt;");
    case '"':
      return put(place == Place::Text ? "\"" : "&quot;");
    case '\n':
      return put(place == Place::Text ? "\n" : "&#xA;");
    case '\r':
      return put(place == Place::Namespace ? "&#xD;" : "");
    case '\t':
      return put(place == Place::Namespace ? "&#x9;" : place == Place::ValueWithTabs ? "&#9;" : "\t");
    default:
      *m_out++ = c;
  }
}

// ---- elements ----

bool Converter::StartElement(std::string_view name) {
  if (m_open.empty() && !m_places.nodes.empty()) return false;
  m_places.nodes.push_back(m_itemStart);
  CloseTag();
  Put("<");
  Put(name);
  m_open.push_back(name);
  m_isTagOpen = true;
  return true;
}

void Converter::EndElement() {
  if (m_isTagOpen) {
    Put("/>");
  } else {
    Put("</");
    Put(m_open.back());
    Put(">");
  }
  m_open.pop_back();
  m_isTagOpen = false;
}

void Converter::CloseTag() {
  if (m_isTagOpen) Put(">");
  m_isTagOpen = false;
}

}  // namespace

bool ConvertPlainJson(std::string_view json, const CSerializationContext& context, CBinaryData& xml,
                      CJsonPlaces& places) {
  const CJsonContext& settings = *context.GetJsonContext();
  const std::string rootName = ToUtf8(settings.GetRootElementName());
  if (!rootName.empty() && !IsElementName(rootName)) return false;
  if (Converter(json, context, xml, places).Convert(rootName)) return true;
  xml.Clear();
  places = {};
  return false;
}

}  // namespace RkXmlLib16

// Reading XML text with expat.
//
// The plain algorithm: expat tells what it meets in UTF-16, and each call back adds that to the document: an element
// with its attributes, text, the end of the element, a namespace declaration. With namespaces a name arrives as
// "uri|local", is taken apart and interned in the document.
//
// What is added to that:
//   Names       Most names were there before. Local names are kept by a hash (LocalName) and compared whole. The
//               namespace of an element is told by the address of the name (SplitElementName): expat builds the names
//               of all elements under one declaration in one buffer. Invariant: that holds as long as no declaration
//               began or ended and expat gave nothing back to the heap, which the counting allocator tells. Up to
//               kComparedLength the text is compared besides; longer ones are not, so that a document does not pay for
//               the length of its namespaces with each element (LongUri).
//   Blanks      White space between elements comes in pieces. They are joined, and the document has them once.
//   Exceptions  must not pass through expat. Guarded keeps the first one and stops the parser; Feed throws it on.
//   Pieces      Feed gives expat the input in pieces that grow; see there.
//   Limits      What a short document could make long or deep is counted: entities within entities, attributes that a
//               DTD supplies, and the namespaces of attributes, which expat spells out for each.
//   Errors      The place of an error is the byte at which expat is.
#include "RkXmlLib16/xml/ExpatReader.h"

#include <emmintrin.h>
#include <expat.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/ErrorHandler.h"
#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/HugePages.h"
#include "RkXmlLib16/context/ReadLimits.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/types/BinaryData.h"
#include "RkXmlLib16/xml/internal/Markup.h"

namespace RkXmlLib16 {

namespace {

static_assert(sizeof(XML_Char) == 2, "expat has to report UTF-16 units");

constexpr std::size_t kShortPiece = 16;  // of text
constexpr std::size_t kSmallestPiece = std::size_t{1} << 18;
constexpr std::size_t kLargestPiece = std::size_t{1} << 28;
constexpr XML_Char kSeparator = u'|';
// Names up to this length are compared whole, longer ones are trusted to lie where they lay before (see LongUri).
constexpr std::size_t kComparedLength = 256;
// Entities that refer to other entities nest; expat follows them by recursion.
constexpr unsigned long kNestingEntities = 200;
// Attributes that come from defaults in the DTD: this many for each byte of input, and some more.
constexpr std::size_t kDefaultsPerByte = 4;
constexpr std::size_t kDefaultsAtLeast = 1000000;
// Characters of attribute namespaces, which expat spells out for each attribute: this many for each byte of input.
constexpr std::size_t kNamespaceCharsPerByte = 1000;
constexpr std::size_t kNamespaceCharsAtLeast = std::size_t{1} << 31;

std::size_t LengthOf(const XML_Char* text) {
  const XML_Char* end = text;
  while (*end != 0) ++end;
  return static_cast<std::size_t>(end - text);
}

void Widen(const XML_Char* text, std::size_t length, wchar_t* out) {
  std::size_t i = 0;
  for (const __m128i zero = _mm_setzero_si128(); i + 8 <= length; i += 8) {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_unpacklo_epi16(units, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i + 4), _mm_unpackhi_epi16(units, zero));
  }
  for (; i < length; ++i) out[i] = text[i];
}

// Leaves out carriage returns; returns the number of characters written.
std::size_t WidenWithoutCR(const XML_Char* text, std::size_t length, wchar_t* out) {
  const XML_Char* const end = text + length;
  wchar_t* const start = out;
  if (length <= kShortPiece) {
    for (; text != end; ++text)
      if (*text != '\r') *out++ = *text;
    return static_cast<std::size_t>(out - start);
  }
  for (;;) {
    const XML_Char* const cr = std::find(text, end, XML_Char{'\r'});
    Widen(text, static_cast<std::size_t>(cr - text), out);
    out += cr - text;
    if (cr == end) return static_cast<std::size_t>(out - start);
    text = cr + 1;
  }
}

bool EqualEight(const XML_Char* text, const wchar_t* wide) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
  const auto* const wanted = reinterpret_cast<const __m128i*>(wide);
  const __m128i low = _mm_cmpeq_epi32(_mm_unpacklo_epi16(units, zero), _mm_loadu_si128(wanted));
  const __m128i high = _mm_cmpeq_epi32(_mm_unpackhi_epi16(units, zero), _mm_loadu_si128(wanted + 1));
  return _mm_movemask_epi8(_mm_and_si128(low, high)) == 0xFFFF;
}

// Whether the text begins with `wide`; it holds as many units.
bool Equal(const XML_Char* text, std::wstring_view wide) {
  constexpr std::size_t kStep = 8;
  const std::size_t length = wide.size();
  if (length < kStep) {
    for (std::size_t i = 0; i < length; ++i)
      if (text[i] != static_cast<std::uint32_t>(wide[i])) return false;
    return true;
  }
  for (std::size_t i = 0; i + kStep < length; i += kStep)
    if (!EqualEight(text + i, wide.data() + i)) return false;
  return EqualEight(text + length - kStep, wide.data() + length - kStep);
}

// Counts what expat gives back to the heap on this thread. Between two equal counts nothing that expat owns has moved.
thread_local std::uint64_t heapCalls = 0;

void* Malloc(std::size_t size) { return AllocateOfHugePages(size); }

void* CountingRealloc(void* memory, std::size_t size) {
  ++heapCalls;
  return std::realloc(memory, size);
}

void CountingFree(void* memory) {
  ++heapCalls;
  std::free(memory);
}

// expat knows US-ASCII by this name only.
bool IsAliasOfAscii(const XML_Char* encoding) {
  static constexpr std::string_view kAliases[] = {
      "ascii", "ansi_x3.4-1968", "ansi_x3.4-1986", "iso646-us", "iso_646.irv", "iso-ir-6",
      "us",    "ibm367",         "cp367",          "csascii"};
  const std::size_t length = LengthOf(encoding);
  const auto same = [](XML_Char unit, char c) { return (unit >= 'A' && unit <= 'Z' ? unit - 'A' + 'a' : unit) == c; };
  return std::any_of(std::begin(kAliases), std::end(kAliases), [&](std::string_view alias) {
    return std::equal(encoding, encoding + length, alias.begin(), alias.end(), same);
  });
}

constexpr XML_Memory_Handling_Suite kCountingSuite = {Malloc, CountingRealloc, CountingFree};

}  // namespace

struct RKXML_HIDDEN CExpatReader::Parser {
  explicit Parser(CXmlDocument& target)
      : document(target), isUtf16(IsUtf16(target)), joinsPairs(target.GetContext().GetJoinSurrogatePairs()) {}
  ~Parser() { XML_ParserFree(expat); }

  void StartElement(const XML_Char* name, const XML_Char** attributes);
  void AddAttributes(CXmlElement* element, const XML_Char** attributes);
  void Text(const XML_Char* text, std::size_t length);
  bool KeepBlanks(const XML_Char* text, std::size_t length);
  void FlushBlanks() {
    if (blankCount != 0) document.AppendBlanks({blanks, std::exchange(blankCount, 0)});
  }
  void StartSection() {
    FlushBlanks();
    document.MarkSection();
    Mark(L"<![CDATA[");
  }
  void Mark(std::wstring_view mark) {
    FlushBlanks();
    document.AppendText(document.GetCurrentElement(), mark);
  }
  void EndElement() {
    FlushBlanks();
    document.EndElement();
  }
  void StartNamespace(const XML_Char* prefix, const XML_Char* uri);
  void EndNamespace();
  void EntityDeclaration(const XML_Char* value, std::size_t length);
  void AddDefaulted(CXmlElement* element, const XML_Char* name, const XML_Char* value);

  static bool IsUtf16(const CXmlDocument& document);
  void Feed(bool isFinal);
  bool FeedPiece(const char* bytes, std::size_t length, bool isFinal);
  bool Resume() { return IsPausedAfter(XML_ResumeParser(expat)); }
  bool IsPausedAfter(XML_Status status);
  std::uint64_t Offset() const { return static_cast<std::uint64_t>(XML_GetCurrentByteIndex(expat)); }
  void NoteDropped(RkDropped kind) { document.NoteDropped(kind, Offset()); }
  [[noreturn]] void ThrowParseError() const;
  [[noreturn]] void ThrowSeparatorInUri() const;
  bool IsAtTagWithSeparator() const;

  void CountNamespace(std::size_t charCount);
  // The length of a widened text as the document gets it. expat never tells a pair in two pieces.
  std::size_t Joined(wchar_t* text, std::size_t length) const {
    return joinsPairs ? JoinSurrogatePairs(text, length) : length;
  }
  const CXmlName* Intern(const XML_Char* text, std::size_t length);
  const CXmlName* LocalName(const XML_Char* name);
  // Splits a name at its separator. Returns the local part.
  const XML_Char* SplitElementName(const XML_Char* name, const CXmlName*& namespaceUri);
  const XML_Char* SplitAttributeName(const XML_Char* name, const CXmlName*& namespaceUri);

  // Runs a callback's work. Exceptions must not pass through expat's frames: the first one stops the parser and is
  // thrown on when that has returned.
  template <class Work>
  static void Guarded(void* userData, Work&& work) noexcept {
    auto& self = *static_cast<Parser*>(userData);
    if (self.failure != nullptr) return;
    try {
      work(self);
      if (self.document.IsPaused() && !self.isStopped) {
        self.isStopped = true;
        XML_StopParser(self.expat, XML_TRUE);
      }
    } catch (...) {
      self.failure = std::current_exception();
      XML_StopParser(self.expat, XML_FALSE);
    }
  }

  static void FnStartElement(void* userData, const XML_Char* name, const XML_Char** attributes) {
    Guarded(userData, [&](Parser& self) { self.StartElement(name, attributes); });
  }
  static void FnEndElement(void* userData, const XML_Char*) {
    Guarded(userData, [](Parser& self) { self.EndElement(); });
  }
  static void FnText(void* userData, const XML_Char* text, int length) {
    Guarded(userData, [&](Parser& self) { self.Text(text, static_cast<std::size_t>(length)); });
  }
  static void FnStartCDATA(void* userData) {
    Guarded(userData, [](Parser& self) { self.StartSection(); });
  }
  static void FnEndCDATA(void* userData) {
    Guarded(userData, [](Parser& self) { self.Mark(L"]]>"); });
  }
  static void FnStartNamespace(void* userData, const XML_Char* prefix, const XML_Char* uri) {
    Guarded(userData, [&](Parser& self) { self.StartNamespace(prefix, uri); });
  }
  static void FnEndNamespace(void* userData, const XML_Char*) {
    Guarded(userData, [](Parser& self) { self.EndNamespace(); });
  }
  static void FnStartDocumentType(void* userData, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    Guarded(userData, [](Parser& self) {
      throw CRkException(FormatString(L"A document type declaration is not allowed at line %d",
                                      static_cast<int>(XML_GetCurrentLineNumber(self.expat))));
    });
  }
  // These are set only where somebody wants to know what is left out.
  static void FnComment(void* userData, const XML_Char*) {
    Guarded(userData, [](Parser& self) { self.NoteDropped(RkDropped_Comment); });
  }
  static void FnProcessingInstruction(void* userData, const XML_Char*, const XML_Char*) {
    Guarded(userData, [](Parser& self) { self.NoteDropped(RkDropped_ProcessingInstruction); });
  }
  static void FnDoctype(void* userData, const XML_Char*, const XML_Char* systemId, const XML_Char*, int) {
    if (systemId != nullptr) Guarded(userData, [](Parser& self) { self.NoteDropped(RkDropped_Entity); });
  }
  static void FnSkippedEntity(void* userData, const XML_Char*, int) {
    Guarded(userData, [](Parser& self) { self.NoteDropped(RkDropped_Entity); });
  }
  static int FnExternalEntity(XML_Parser parser, const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*) {
    Guarded(XML_GetUserData(parser), [](Parser& self) { self.NoteDropped(RkDropped_Entity); });
    return XML_STATUS_OK;
  }
  static void FnEntityDeclaration(void* userData, const XML_Char*, int, const XML_Char* value, int length,
                                  const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*) {
    if (value == nullptr) return;
    Guarded(userData, [&](Parser& self) { self.EntityDeclaration(value, static_cast<std::size_t>(length)); });
  }

  static int FnUnknownEncoding(void* userData, const XML_Char* name, XML_Encoding* info) noexcept {
    if (static_cast<Parser*>(userData)->isUtf16 || !IsAliasOfAscii(name)) return XML_STATUS_ERROR;
    for (int byte = 0; byte < 256; ++byte) info->map[byte] = byte < 128 ? byte : -1;
    return XML_STATUS_OK;
  }

  // expat builds the names of elements in one buffer for each namespace declaration in scope, so the namespace is told
  // by the address, as long as neither declarations nor buffers have changed.
  struct UriEntry {
    const XML_Char* name = nullptr;
    const CXmlName* uri = nullptr;
    std::uint64_t heapCount = 0;
    std::uint64_t namespaceEvents = 0;
  };
  // Such a buffer of a long namespace, which is known as long as no declaration of the namespace has ended.
  struct LongUri {
    const CXmlName* uri = nullptr;
    std::uint64_t heapCount = 0;
    std::uint64_t endedDeclarations = 0;
  };
  const LongUri* FindLong(const XML_Char* name) const;

  CXmlDocument& document;
  const bool isUtf16;  // expat takes a NUL behind a high surrogate, where text then ends
  const bool joinsPairs;
  XML_Parser expat = nullptr;
  std::exception_ptr failure;
  bool isStopped = false;   // for a pause
  std::wstring buffer;      // for names on their way into the document
  wchar_t blanks[64] = {};  // of the current element, on their way behind its text
  std::size_t blankCount = 0;
  UriEntry uris[16];
  std::unordered_map<const XML_Char*, LongUri> longUris;
  std::vector<const CXmlName*> declaredUris;                             // in scope
  std::unordered_map<const CXmlName*, std::uint64_t> endedDeclarations;  // of long namespaces
  const CXmlName* localNames[256] = {};
  const CXmlName* lastAttributeUri = nullptr;
  const std::uint64_t* heapCount = &heapCalls;
  std::uint64_t namespaceEvents = 0;
  unsigned long nestingEntities = 0;
  std::size_t defaultedCount = 0;
  std::size_t namespaceChars = 0;
  std::unordered_map<const XML_Char*, CXmlTextBlock*> defaultedValues;  // expat keeps them where they are
};

const CXmlName* CExpatReader::Parser::Intern(const XML_Char* text, std::size_t length) {
  buffer.resize(length);
  Widen(text, length, buffer.data());
  buffer.resize(Joined(buffer.data(), length));
  return document.InternName(buffer);
}

const CXmlName* CExpatReader::Parser::LocalName(const XML_Char* name) {
  std::uint32_t hash = 0;
  const XML_Char* end = name;
  for (; *end != 0; ++end) hash = hash * 31 + *end;
  const auto length = static_cast<std::size_t>(end - name);
  const CXmlName*& cached = localNames[(hash ^ hash >> 8) % std::size(localNames)];
  if (cached == nullptr || cached->View().size() != length || !Equal(name, cached->View()))
    cached = Intern(name, length);
  return cached;
}

const XML_Char* CExpatReader::Parser::SplitElementName(const XML_Char* name, const CXmlName*& namespaceUri) {
  UriEntry& entry = uris[reinterpret_cast<std::uintptr_t>(name) / 64 % std::size(uris)];
  if (entry.name == name && entry.heapCount == *heapCount && entry.namespaceEvents == namespaceEvents) {
    const std::wstring_view uri = entry.uri->View();
    if (name[uri.size()] == kSeparator && Equal(name, uri)) {
      namespaceUri = entry.uri;
      return name + uri.size() + 1;
    }
  }
  if (const LongUri* const known = FindLong(name)) {
    namespaceUri = known->uri;
    return name + namespaceUri->View().size() + 1;
  }
  const XML_Char* at = name;
  while (*at != 0 && *at != kSeparator) ++at;
  if (*at == 0) {
    namespaceUri = document.GetEmptyName();
    return name;
  }
  const auto length = static_cast<std::size_t>(at - name);
  namespaceUri = Intern(name, length);
  if (length > kComparedLength)
    longUris[name] = {namespaceUri, *heapCount, endedDeclarations[namespaceUri]};
  else
    entry = {name, namespaceUri, *heapCount, namespaceEvents};
  return at + 1;
}

const CExpatReader::Parser::LongUri* CExpatReader::Parser::FindLong(const XML_Char* name) const {
  if (longUris.empty()) return nullptr;
  const auto found = longUris.find(name);
  if (found == longUris.end() || found->second.heapCount != *heapCount) return nullptr;
  const auto ended = endedDeclarations.find(found->second.uri);
  return ended->second == found->second.endedDeclarations ? &found->second : nullptr;
}

const XML_Char* CExpatReader::Parser::SplitAttributeName(const XML_Char* name, const CXmlName*& namespaceUri) {
  const XML_Char* at = name;
  while (*at != 0 && *at != kSeparator) ++at;
  if (*at == 0) {
    namespaceUri = document.GetEmptyName();
    return name;
  }
  const auto length = static_cast<std::size_t>(at - name);
  if (lastAttributeUri == nullptr || lastAttributeUri->View().size() != length ||
      !Equal(name, lastAttributeUri->View()))
    lastAttributeUri = Intern(name, length);
  namespaceUri = lastAttributeUri;
  CountNamespace(length);
  return at + 1;
}

void CExpatReader::Parser::CountNamespace(std::size_t charCount) {
  namespaceChars += charCount;
  if (namespaceChars <= kNamespaceCharsAtLeast) return;
  const std::size_t limit = std::max(kNamespaceCharsAtLeast, kNamespaceCharsPerByte * document.GetInputLength());
  if (namespaceChars <= limit) return;
  CReadLimits::ThrowExceeded(L"characters of attribute namespaces", limit, document.GetCurrentElement()->GetXPath());
}

void CExpatReader::Parser::StartElement(const XML_Char* name, const XML_Char** attributes) {
  FlushBlanks();
  const CXmlName* namespaceUri = nullptr;
  const CXmlName* const localName = LocalName(SplitElementName(name, namespaceUri));
  CXmlElement* const element = document.AddElement(document.InternName(namespaceUri, localName));
  CXmlDocument::SetOffset(element, Offset());
  AddAttributes(element, attributes);
  document.CompleteStart(element);
}

void CExpatReader::Parser::AddAttributes(CXmlElement* element, const XML_Char** attributes) {
  if (*attributes == nullptr) return;
  const CXmlName* namespaceUri = nullptr;
  const XML_Char** const firstDefault = attributes + XML_GetSpecifiedAttributeCount(expat);
  for (; *attributes != nullptr; attributes += 2) {
    if (attributes >= firstDefault) {
      AddDefaulted(element, attributes[0], attributes[1]);
      continue;
    }
    const CXmlName* const localName = LocalName(SplitAttributeName(attributes[0], namespaceUri));
    CXmlAttribute* const attribute =
        document.AddAttribute(element, document.InternName(namespaceUri, localName), std::wstring_view());
    if (const std::size_t length = LengthOf(attributes[1])) {
      wchar_t* const value = document.ReserveValue(attribute, length);
      Widen(attributes[1], length, value);
      document.CommitValue(attribute, Joined(value, length));
    }
  }
}

void CExpatReader::Parser::Text(const XML_Char* text, std::size_t length) {
  CXmlElement* const element = document.GetCurrentElement();
  if (isUtf16) length = static_cast<std::size_t>(std::find(text, text + length, XML_Char{0}) - text);
  if (length == 0 || element == nullptr) return;
  if (KeepBlanks(text, length)) return;
  FlushBlanks();
  wchar_t* const out = document.ReserveText(element, length);
  document.CommitText(element, Joined(out, WidenWithoutCR(text, length, out)));
}

// White space between elements comes in two pieces or more, which are joined before they reach the document. False for
// any other text.
bool CExpatReader::Parser::KeepBlanks(const XML_Char* text, std::size_t length) {
  if (length > std::size(blanks) - blankCount) return false;
  wchar_t* out = blanks + blankCount;
  for (const XML_Char* const end = text + length; text != end; ++text) {
    if (*text != ' ' && *text != '\n' && *text != '\t') return false;
    *out++ = *text;
  }
  blankCount += length;
  return true;
}

// The value of a default is stored once, however many elements have it.
void CExpatReader::Parser::AddDefaulted(CXmlElement* element, const XML_Char* name, const XML_Char* value) {
  const std::size_t limit = std::max(kDefaultsAtLeast, kDefaultsPerByte * document.GetInputLength());
  if (++defaultedCount > limit) CReadLimits::ThrowExceeded(L"defaulted attributes", limit, element->GetXPath());
  const CXmlName* namespaceUri = nullptr;
  const CXmlName* const localName = LocalName(SplitAttributeName(name, namespaceUri));
  CXmlTextBlock*& stored = defaultedValues[value];
  if (stored == nullptr) {
    buffer.resize(LengthOf(value));
    Widen(value, buffer.size(), buffer.data());
    buffer.resize(Joined(buffer.data(), buffer.size()));
    stored = document.StoreValue(buffer);
  }
  document.AddAttribute(element, document.InternName(namespaceUri, localName), stored);
}

void CExpatReader::Parser::StartNamespace(const XML_Char* prefix, const XML_Char* uri) {
  ++namespaceEvents;
  const std::size_t length = uri != nullptr ? LengthOf(uri) : 0;
  if (std::find(uri, uri + length, kSeparator) != uri + length) ThrowSeparatorInUri();
  const CXmlName* const prefixName = prefix != nullptr ? Intern(prefix, LengthOf(prefix)) : document.GetEmptyName();
  declaredUris.push_back(Intern(uri, length));
  document.AddNamespaceAlias(prefixName, declaredUris.back());
}

// Declarations end in the reverse order.
void CExpatReader::Parser::EndNamespace() {
  ++namespaceEvents;
  const CXmlName* const uri = declaredUris.back();
  declaredUris.pop_back();
  if (uri->View().size() > kComparedLength) ++endedDeclarations[uri];
}

void CExpatReader::Parser::EntityDeclaration(const XML_Char* value, std::size_t length) {
  const XML_Char* const end = value + length;
  const bool refers =
      std::find(value, end, XML_Char{'%'}) != end ||
      std::adjacent_find(value, end, [](XML_Char a, XML_Char b) { return a == '&' && b != '#'; }) != end;
  if (refers && ++nestingEntities > kNestingEntities)
    CReadLimits::ThrowExceeded(L"entities that refer to entities", kNestingEntities);
}

// The namespace of a name could not be told from its local part. Some versions of expat reject such a declaration
// themselves, as a syntax error in the start tag that makes it.
void CExpatReader::Parser::ThrowSeparatorInUri() const {
  throw CRkException(FormatString(L"A namespace URI contains the character '|' at line %d",
                                  static_cast<int>(XML_GetCurrentLineNumber(expat))));
}

bool CExpatReader::Parser::IsAtTagWithSeparator() const {
  int offset = 0;
  int size = 0;
  const char* const context = XML_GetInputContext(expat, &offset, &size);
  if (context == nullptr) return false;
  std::string_view tag(context + offset, static_cast<std::size_t>(size - offset));
  tag = tag.substr(0, tag.find('>'));
  return tag.find("<!") != 0 && tag.find("<?") != 0 && tag.find('<') < 2 && tag.find('|') != std::string_view::npos;
}

// The first unit is a byte order mark or an ASCII character.
bool CExpatReader::Parser::IsUtf16(const CXmlDocument& document) {
  if (document.GetInputLength() < 2) return false;
  const unsigned char* const bytes = document.GetInput();
  return bytes[0] >= 0xFE || bytes[0] == 0 || bytes[1] == 0;
}

// expat copies what it is given, and counts the lines of every piece but the last, so a document whose tree takes more
// anyway is one piece. Where a filter keeps the tree small, smaller pieces bound the copy; that they grow with what was
// read bounds the scanning, because a token that was cut off is scanned again from its start.
void CExpatReader::Parser::Feed(bool isFinal) {
  const auto* bytes = reinterpret_cast<const char*>(document.GetInput());
  const std::size_t length = document.GetInputLength();
  const std::size_t smallest = document.HasElementFilter() || !isFinal ? kSmallestPiece : kLargestPiece;
  for (std::size_t done = 0;;) {
    const std::size_t piece = std::min({length - done, std::max(smallest, done / 8), kLargestPiece});
    const XML_Status status =
        XML_Parse(expat, bytes + done, static_cast<int>(piece), isFinal && done + piece == length);
    done += piece;
    if (failure != nullptr) std::rethrow_exception(failure);
    if (status != XML_STATUS_OK) ThrowParseError();
    if (done == length) return;
  }
}

bool CExpatReader::Parser::FeedPiece(const char* bytes, std::size_t length, bool isFinal) {
  return IsPausedAfter(XML_Parse(expat, bytes, static_cast<int>(length), isFinal));
}

bool CExpatReader::Parser::IsPausedAfter(XML_Status status) {
  if (failure != nullptr) std::rethrow_exception(failure);
  if (status == XML_STATUS_ERROR) ThrowParseError();
  isStopped = false;
  return status == XML_STATUS_SUSPENDED;
}

void CExpatReader::Parser::ThrowParseError() const {
  const XML_Error code = XML_GetErrorCode(expat);
  if (code == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
  if (code == XML_ERROR_SYNTAX && IsAtTagWithSeparator()) ThrowSeparatorInUri();
  const std::string_view description = XML_ErrorString(code);
  throw CRkException(FormatString(L"%ls at line %d", std::wstring(description.begin(), description.end()).c_str(),
                                  static_cast<int>(XML_GetCurrentLineNumber(expat))));
}

CExpatReader::CExpatReader(CXmlDocument& document) : m_document(document) {}

CExpatReader::~CExpatReader() = default;

void CExpatReader::CreateParser() {
  m_parser = std::make_unique<Parser>(m_document);
  const bool namespaces = m_document.GetSchemaType() != SchemaType_NoNamespaces;
  const XML_Char separator[] = {kSeparator, 0};
  XML_Parser const expat = XML_ParserCreate_MM(nullptr, &kCountingSuite, namespaces ? separator : nullptr);
  if (expat == nullptr) throw std::bad_alloc();
  m_parser->expat = expat;
  XML_SetUserData(expat, m_parser.get());
  XML_SetElementHandler(expat, Parser::FnStartElement, Parser::FnEndElement);
  XML_SetNamespaceDeclHandler(expat, Parser::FnStartNamespace, Parser::FnEndNamespace);
  XML_SetCharacterDataHandler(expat, Parser::FnText);
  XML_SetEntityDeclHandler(expat, Parser::FnEntityDeclaration);
  XML_SetUnknownEncodingHandler(expat, Parser::FnUnknownEncoding, m_parser.get());
  if (m_document.GetContext().GetErrorHandler() != nullptr) {
    XML_SetCommentHandler(expat, Parser::FnComment);
    XML_SetProcessingInstructionHandler(expat, Parser::FnProcessingInstruction);
    XML_SetStartDoctypeDeclHandler(expat, Parser::FnDoctype);
    XML_SetSkippedEntityHandler(expat, Parser::FnSkippedEntity);
    XML_SetExternalEntityRefHandler(expat, Parser::FnExternalEntity);
  }
  if (m_document.GetContext().GetRefuseDocumentType())
    XML_SetStartDoctypeDeclHandler(expat, Parser::FnStartDocumentType);
  if (!m_document.GetContext().GetStripCDATA())
    XML_SetCdataSectionHandler(expat, Parser::FnStartCDATA, Parser::FnEndCDATA);
}

template <class Work>
auto CExpatReader::WithLocation(Work&& work) {
  try {
    return work();
  } catch (CRkException& e) {
    if (!e.HasLocation()) e.SetLocation(m_document.Locate(m_parser->Offset()));
    e.SetEndsReading();
    throw;
  }
}

void CExpatReader::Parse(bool isFinal) {
  if (m_parser == nullptr) CreateParser();
  WithLocation([&] { m_parser->Feed(isFinal); });
  if (isFinal) Cleanup();
}

bool CExpatReader::ParsePiece(const unsigned char* bytes, std::size_t length, bool isFinal) {
  return WithLocation([&] { return m_parser->FeedPiece(reinterpret_cast<const char*>(bytes), length, isFinal); });
}

bool CExpatReader::Resume() {
  return WithLocation([&] { return m_parser->Resume(); });
}

std::uint64_t CExpatReader::GetOffset() const {
  const XML_Index index = XML_GetCurrentByteIndex(m_parser->expat);
  return index < 0 ? 0 : static_cast<std::uint64_t>(index);
}

void CExpatReader::Cleanup() { m_parser.reset(); }

// ---- markup ----

namespace {

bool IsWellFormed(const std::wstring& document) {
  const CBinaryData bytes = CEncoder::UnicodeToUtf8Binary(document);
  if (bytes.GetLength() > INT_MAX) return false;
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr),
                                                                                             &XML_ParserFree);
  if (parser == nullptr) throw std::bad_alloc();
  const auto* const text = reinterpret_cast<const char*>(bytes.GetData());
  if (XML_Parse(parser.get(), text, static_cast<int>(bytes.GetLength()), 1) == XML_STATUS_OK) return true;
  if (XML_GetErrorCode(parser.get()) == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
  return false;
}

}  // namespace

bool IsWellFormedProlog(std::wstring_view text) { return IsWellFormed(std::wstring(text) + L"<a/>"); }

bool IsWellFormedContent(std::wstring_view text) { return IsWellFormed(L"<a>" + std::wstring(text) + L"</a>"); }

}  // namespace RkXmlLib16

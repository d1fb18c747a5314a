// Writing Fast Infoset (ITU-T X.891).
//
// The plain algorithm: an element is written as its declarations, its name, its attributes and a terminator, then its
// content and another terminator. What is written in full the first time enters a table of the vocabulary, which
// readers build in the same way, and is written as its index in the table from then on: names, their parts, and short
// texts.
//
// What is added to that:
//   Pending tags  The first octet of an element tells whether it has declarations and attributes, which come later, and
//                 the declarations stand before the name. So the start tag waits in m_room, from m_startTag on, and
//                 WriteElement completes it. Invariant: nothing is given to the stream while a start tag waits.
//   Terminators   take four bits. One is owed until it is known whether it shares its octet with another.
//   Scopes        Names carry their prefix, so that its declaration has to be in force. m_bindings holds those that
//                 are. m_scope is a number for the present set of them; it changes whenever one comes or goes.
//   Known names   The index of a name is looked for in this order, each step slower than the one before:
//                   RecordOutput                          the number of a record's name; for one scope
//                   m_elementScope, m_attributeScope      the namespace: prefix and indices; for one scope
//                   m_recentElements, m_recentAttributes  local name, prefix and namespace index
//                   the tables of the vocabulary          the same, all that were ever written
//                 All but the last may forget. Invariant: an index in the vocabulary never changes its meaning.
//   Integers      come in several forms (IntegerLayout). PutInteger writes the two shortest, PutLongInteger any.
//   Typed values  are encoded into m_typedOctets first; where that would change the value, UTF-8 is written instead.
//   Texts         RecordOutput writes an element with nothing but text without a context; names that have no index yet
//                 are written by the operations above it.
#include "RkXmlLib16/fastinfoset/Writer.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <typeinfo>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/base/internal/NeverDestroyed.h"
#include "RkXmlLib16/base/internal/WideText.h"
#include "RkXmlLib16/document/internal/NamespacePool.h"
#include "RkXmlLib16/document/internal/OutputChecks.h"
#include "RkXmlLib16/document/internal/RecordOutput.h"
#include "RkXmlLib16/fastinfoset/BinaryCodec.h"
#include "RkXmlLib16/fastinfoset/Octets.h"
#include "RkXmlLib16/io/BinaryStream.h"
#include "RkXmlLib16/io/Encoder.h"

namespace RkXmlLib16 {

using FastInfoset::IntegerForm;
using FastInfoset::IntegerLayout;

namespace {

constexpr std::size_t kFlushLength = 6 * 1024;
constexpr unsigned char kExternalVocabulary[] = {0x20, 0x10, 0x00};
constexpr unsigned char kNoAddBit = 0;
constexpr std::size_t kShortText = 64;
constexpr std::size_t kLongestInteger = 5;
constexpr std::size_t kFewBindings = 16;  // up to so many are searched one by one

// A restricted alphabet and where its characters, which are ASCII, stand in it.
struct Alphabet {
  explicit Alphabet(std::wstring_view text) : length(text.length()) {
    positions.fill(-1);
    for (std::size_t i = 0; i < length; ++i) positions[static_cast<std::size_t>(text[i])] = static_cast<int>(i);
  }
  int Find(wchar_t c) const {
    const auto code = static_cast<std::size_t>(static_cast<std::uint32_t>(c));
    return code < positions.size() ? positions[code] : -1;
  }

  std::size_t length;
  std::array<int, 128> positions;
};

const Alphabet kAlphabets[] = {Alphabet(CFIVocabulary::GetRestrictedAlphabets()[0]),
                               Alphabet(CFIVocabulary::GetRestrictedAlphabets()[1])};

const Alphabet& FindAlphabet(unsigned long index) {
  if (index < 1 || index > std::size(kAlphabets)) {
    throw CRkException(FormatString(L"Failed to write FastInfoset. Invalid Restricted Alphabet value [%lu]", index));
  }
  return kAlphabets[index - 1];
}

// Packs the text at the end of `octets`; false, and nothing appended, when the alphabet lacks a character.
bool AppendPacked(const Alphabet& alphabet, std::wstring_view text, std::vector<unsigned char>& octets) {
  const std::size_t start = octets.size();
  const int width = FastInfoset::BitsPerCharacter(alphabet.length);
  octets.resize(start + (text.length() * static_cast<std::size_t>(width) + 7) / 8);
  unsigned char* to = octets.data() + start;
  std::uint32_t bits = 0;
  int bitCount = 0;
  for (const wchar_t c : text) {
    const int position = alphabet.Find(c);
    if (position < 0) {
      octets.resize(start);
      return false;
    }
    bits = bits << width | static_cast<std::uint32_t>(position);
    bitCount += width;
    for (; bitCount >= 8; bitCount -= 8) *to++ = static_cast<unsigned char>(bits >> (bitCount - 8));
  }
  if (bitCount > 0) *to = static_cast<unsigned char>(bits << (8 - bitCount) | 0xFFu >> bitCount);
  return true;
}

[[noreturn]] void ThrowNotInAlphabet() {
  throw CRkException(L"Failed to write FastInfoset. Invalid character not found for Restricted Alphabet.");
}

// Any form of an integer; `octet` holds the bits before it.
unsigned char* PutLongInteger(const IntegerLayout& layout, unsigned char* to, unsigned char octet,
                              unsigned long value) {
  if (value < 1 || value > layout.highest) {
    throw CRkException(value < 1 ? L"Failed to write FastInfoset. A name is empty."
                                 : L"Failed to write FastInfoset. A string is too long.");
  }
  const IntegerForm* form = layout.forms + layout.formCount - 1;
  while (value < form->lowest) --form;
  const unsigned long stored = value - form->lowest;
  unsigned more = form->moreOctets;
  *to++ = static_cast<unsigned char>(octet | form->pattern | stored >> (8 * more));
  while (more-- > 0) *to++ = static_cast<unsigned char>(stored >> (8 * more));
  return to;
}

// The two lowest forms, which have at most one octet more, and by way of a call the others.
template <const IntegerLayout& kLayout>
inline unsigned char* PutInteger(unsigned char* to, unsigned char octet, unsigned long value) {
  constexpr const IntegerForm& kFirst = kLayout.forms[0];
  constexpr const IntegerForm& kSecond = kLayout.forms[1];
  static_assert(kFirst.lowest == 1 && kFirst.moreOctets == 0 && kSecond.moreOctets == 1 && kLayout.formCount > 2);
  if (value - 1 < kSecond.lowest - 1) {
    *to++ = static_cast<unsigned char>(octet | kFirst.pattern | (value - 1));
    return to;
  }
  if (value == 0 || value >= kLayout.forms[2].lowest) return PutLongInteger(kLayout, to, octet, value);
  const unsigned long stored = value - kSecond.lowest;
  *to++ = static_cast<unsigned char>(octet | kSecond.pattern | stored >> 8);
  *to++ = static_cast<unsigned char>(stored);
  return to;
}

std::size_t SlotOf(std::wstring_view name, std::size_t slots) {
  if (name.empty()) return 0;
  const auto mix = static_cast<std::size_t>(name.front()) * 5 + static_cast<std::size_t>(name.back()) * 3;
  return (mix + name.length()) % slots;
}

bool IsDecimal(ItemType type) {
  return (type >= ItemType_byte && type <= ItemType_unsignedLong) || type == ItemType_decimal ||
         type == ItemType_integer;
}

// An optional sign, digits, and a point at most. Decoders disagree about the letter of an exponent in the numeric
// alphabet: some give a capital back.
bool IsNumberWithoutExponent(std::wstring_view text) {
  if (!text.empty() && (text.front() == L'-' || text.front() == L'+')) text.remove_prefix(1);
  std::size_t digits = 0;
  std::size_t points = 0;
  for (const wchar_t c : text) {
    digits += c >= L'0' && c <= L'9' ? 1 : 0;
    points += c == L'.' ? 1 : 0;
  }
  return digits != 0 && points <= 1 && digits + points == text.length();
}

bool IsFloating(const EncodedCharacterString& encoding) {
  return encoding.m_encoding == FIStringEncoding_EncodingAlgorithm &&
         (encoding.m_index == FIEncodingAlgorithm_Float || encoding.m_index == FIEncodingAlgorithm_Double);
}

}  // namespace

// Of the name of a record its index is kept.
class RKXML_HIDDEN CFastInfosetWriter::RecordOutput final
    : public CFormRecordOutput<CFastInfosetWriter::RecordOutput, CFastInfosetWriter, unsigned long> {
 public:
  // A name has an index once it was written.
  explicit RecordOutput(CFastInfosetWriter& writer) noexcept : CFormRecordOutput(writer, /*takesNewNames=*/false) {}

  std::uint64_t GetScope() const noexcept { return m_writer.m_scope; }
  bool MakeElement(const CNameToken& name, Entry& entry) {
    return Make(name, m_writer.m_elementScope, m_writer.m_vocabulary.GetElementNamesTable(), entry);
  }
  bool MakeAttribute(const CNameToken& name, Entry& entry) {
    return Make(name, m_writer.m_attributeScope, m_writer.m_vocabulary.GetAttributeNamesTable(), entry);
  }
  bool PutStart(const CNameToken& name, Entry& entry);
  bool PutText(const CNameToken& name, Entry& entry, std::wstring_view text, ItemType type, bool isCanonical);
  bool PutAttribute(const CNameToken& name, Entry& entry, std::wstring_view value, ItemType type, bool isCanonical);
  bool PutEnd();

 private:
  bool Make(const CNameToken& name, const ScopeCache& scopes, const CFIQNameTable& names, Entry& entry) const {
    entry.namespaceName = &m_writer.NameOf(name.GetNamespace());
    const ScopedNamespace* const scoped = m_writer.FindKnown(scopes, *entry.namespaceName);
    if (scoped == nullptr) return false;
    entry.made = m_writer.FindIndex(names, m_writer.PartsOf(*scoped, name.GetLocalName()), *scoped);
    return entry.made != 0;
  }
};

CFastInfosetWriter::CFastInfosetWriter(const CFastInfosetContext& context, CBinaryStream& stream)
    : m_fiContext(context), m_stream(stream), m_vocabulary(context.GetVocabulary()) {
  Grow(kFlushLength);
  SetRecordOutput<CFastInfosetWriter, RecordOutput>();
}

CFastInfosetWriter::~CFastInfosetWriter() = default;

inline bool CFastInfosetWriter::IsStartTagOpen() const { return m_context != nullptr && m_context->m_startTagOpen; }

inline std::size_t CFastInfosetWriter::GetLength() const { return static_cast<std::size_t>(m_end - m_room.get()); }

inline unsigned char* CFastInfosetWriter::Reserve(std::size_t count) {
  if (static_cast<std::size_t>(m_limit - m_end) < count) Grow(count);
  return m_end;
}

inline void CFastInfosetWriter::Put(unsigned char octet) {
  Reserve(1);
  *m_end++ = octet;
}

inline void CFastInfosetWriter::Put(const unsigned char* octets, std::size_t count) {
  m_end = std::copy_n(octets, count, Reserve(count));
}

template <const IntegerLayout& kLayout>
inline void CFastInfosetWriter::Integer(unsigned char octet, unsigned long value) {
  m_end = PutInteger<kLayout>(Reserve(kLongestInteger), octet, value);
}

// The name of an element, after the terminator that is owed.
inline void CFastInfosetWriter::ElementIndex(unsigned long index) {
  unsigned char* to = Reserve(1 + kLongestInteger);
  if (m_terminatorOwed) *to++ = FastInfoset::kTerminator;
  m_terminatorOwed = false;
  m_end = PutInteger<FastInfoset::kIndexBit3>(to, 0, index);
}

// Most texts are short and ASCII: as many octets as characters, known before they are encoded.
template <const IntegerLayout& kLayout>
inline void CFastInfosetWriter::Utf8(unsigned char octet, std::wstring_view text) {
  if (text.empty() || text.length() > kShortText) return AnyUtf8<kLayout>(octet, text);
  unsigned char* const to = PutInteger<kLayout>(Reserve(kLongestInteger + kShortText), octet, text.length());
  if (!Ascii::NarrowAll(text.data(), text.length(), to)) return AnyUtf8<kLayout>(octet, text);
  m_end = to + text.length();
}

template <const IntegerLayout& kLayout>
void CFastInfosetWriter::AnyUtf8(unsigned char octet, std::wstring_view text) {
  const unsigned long length = CEncoder::Utf8Length(text);
  Integer<kLayout>(octet, length);
  m_end = CEncoder::WriteUtf8(text, Reserve(length));
}

// Terminators come in pairs of half octets: one is owed until it is known whether another follows at once.
inline void CFastInfosetWriter::WriteTerminator() {
  if (m_terminatorOwed) Put(FastInfoset::kDoubleTerminator);
  m_terminatorOwed = !m_terminatorOwed;
}

inline void CFastInfosetWriter::FlushTerminator() {
  if (!m_terminatorOwed) return;
  Put(FastInfoset::kTerminator);
  m_terminatorOwed = false;
}

inline void CFastInfosetWriter::WriteElement() {
  if (!IsStartTagOpen()) return;
  m_context->m_startTagOpen = false;
  const unsigned char attributes = m_hasAttributes ? FastInfoset::kAttributesBit : 0;
  if (m_declarations.empty())
    m_room[m_startTag] = static_cast<unsigned char>(m_room[m_startTag] | attributes);
  else
    InsertDeclarations(attributes);
  if (m_hasAttributes) WriteTerminator();
}

// Before the name in the pending start tag.
void CFastInfosetWriter::InsertDeclarations(unsigned char attributes) {
  m_declarations.insert(m_declarations.begin(),
                        static_cast<unsigned char>(FastInfoset::kElementNamespaces | attributes));
  m_declarations.push_back(FastInfoset::kTerminator);
  Reserve(m_declarations.size());
  unsigned char* const start = m_room.get() + m_startTag;
  std::copy_backward(start, m_end, m_end + m_declarations.size());
  std::copy(m_declarations.begin(), m_declarations.end(), start);
  m_end += m_declarations.size();
}

void CFastInfosetWriter::Grow(std::size_t count) {
  const std::size_t length = GetLength();
  const std::size_t space = 2 * (length + count);
  std::unique_ptr<unsigned char[]> room(
      new unsigned char[space]);  // not zeroed: each octet is written before it is read
  m_end = std::copy_n(m_room.get(), length, room.get());
  m_room = std::move(room);
  m_limit = m_room.get() + space;
}

void CFastInfosetWriter::FlushOctets() {
  if (IsStartTagOpen()) return;
  m_stream.Append(m_room.get(), GetLength());
  m_end = m_room.get();
}

void CFastInfosetWriter::WriteStartDocument(FInfoDecl declaration) {
  if (declaration < FInfoDecl_None || declaration > FInfoDecl_Version11StandaloneNo) {
    throw CRkInvalidParamException(
        FormatString(L"Invalid Fast Infoset declaration [%d]", static_cast<int>(declaration)));
  }
  if (declaration != FInfoDecl_None) {
    const std::string_view text = FastInfoset::kDeclarations[declaration - 1];
    Put(reinterpret_cast<const unsigned char*>(text.data()), text.size());
  }
  Put(FastInfoset::kHeader, sizeof FastInfoset::kHeader);
  if (m_fiContext.GetUseGeneratedVocabulary()) {
    Put(kExternalVocabulary, sizeof kExternalVocabulary);
    const std::wstring uri = m_fiContext.GetExternalVocabularyURI();
    NonEmptyOctetUTF8StringBit2(0x00, uri.empty() ? CFastInfosetContext::LIBRARY_NAMESPACE : uri);
  } else {
    Put(0x00);
  }
  FlushOctets();
}

void CFastInfosetWriter::WriteEndDocument() {
  while (m_context != nullptr) WriteEndElement();
  WriteTerminator();
  FlushTerminator();
  FlushOctets();
}

void CFastInfosetWriter::Close() {
  CXmlWriter::Close();
  FlushOctets();
}

void CFastInfosetWriter::SetDefaultNamespace(const std::wstring& namespaceUri) {
  CXmlWriter::SetDefaultNamespace(namespaceUri);
  ChangeScope();
}

void CFastInfosetWriter::AddNamespace(const std::wstring& prefix, const std::wstring& namespaceUri) {
  CXmlWriter::AddNamespace(prefix, namespaceUri);
  ChangeScope();
}

void CFastInfosetWriter::SetWellFormedOutput(bool refuse) {
  SetChecks(refuse ? std::make_unique<OutputChecks>(OutputChecks::Form::FastInfoset) : nullptr);
}

void CFastInfosetWriter::WriteComment(const std::wstring&) {}

void CFastInfosetWriter::WritePI(const std::wstring&) {}

void CFastInfosetWriter::WriteInlineSchema(const std::wstring&) {}

inline void CFastInfosetWriter::BeginChild() {
  WriteElement();
  ++m_context->m_childCount;
}

// Of the element whose context was just opened.
inline void CFastInfosetWriter::BeginStartTag() {
  ++m_openElements;
  m_startTag = GetLength();
  m_hasAttributes = false;
  m_declarations.clear();
}

void CFastInfosetWriter::WriteStartElement(const std::wstring& localName, const std::wstring& namespaceUri) {
  const bool isRoot = m_context == nullptr;
  if (!isRoot) BeginChild();
  FlushTerminator();
  if (GetLength() >= kFlushLength) FlushOctets();
  PushContext(localName, namespaceUri);
  BeginStartTag();
  if (isRoot) {
    ChangeScope();
    const std::wstring& defaultNamespace = m_context->GetDefaultNamespace();
    if (!defaultNamespace.empty() && !namespaceUri.empty()) Declare(L"", NameOf(defaultNamespace));
    for (const auto& [uri, prefix] : m_namespaces) {
      const bool isFree = !prefix.empty() && FindBinding(prefix) == nullptr;
      if (uri != XML_NAMESPACE && isFree) Declare(prefix, NameOf(uri));
    }
  }
  ElementName(ResolveElement(*m_context->GetName()), localName);
}

[[gnu::always_inline]] inline bool CFastInfosetWriter::RecordOutput::PutStart(const CNameToken& name, Entry& entry) {
  CFastInfosetWriter& w = m_writer;
  w.BeginChild();
  w.FlushTerminator();
  if (w.GetLength() >= kFlushLength) w.FlushOctets();
  w.PushContext(name, *entry.namespaceName);
  w.BeginStartTag();
  w.Integer<FastInfoset::kIndexBit3>(0, entry.made);
  return true;
}

void CFastInfosetWriter::WriteString(const std::wstring& text, ItemType type) {
  if (m_checks != nullptr) m_checks->Text(text);
  if (m_context == nullptr) {
    if (text.empty()) return;
    throw CRkException(L"Text must be written inside an Element.");
  }
  WriteElement();
  if (text.empty()) return;
  FlushTerminator();
  NonIdentifyingStringOrIndexBit3(text, type);
  if (GetLength() >= kFlushLength) FlushOctets();
}

[[gnu::always_inline]] inline bool CFastInfosetWriter::RecordOutput::PutText(const CNameToken&, Entry& entry,
                                                                             std::wstring_view text, ItemType type,
                                                                             bool) {
  CFastInfosetWriter& w = m_writer;
  w.BeginChild();
  w.ElementIndex(entry.made);
  if (!text.empty()) w.NonIdentifyingStringOrIndex<Chunk>(text, type);
  w.m_terminatorOwed = true;
  if (w.GetLength() >= kFlushLength) w.FlushOctets();
  return true;
}

void CFastInfosetWriter::WriteEndElement() {
  if (m_context == nullptr) throw CRkException(L"There is no open Element to end.");
  CloseElement();
}

inline void CFastInfosetWriter::CloseElement() {
  WriteElement();
  WriteTerminator();
  if (!m_ownScopes.empty() && m_ownScopes.back() == m_openElements) LeaveScope();
  CloseContext();
  --m_openElements;
}

[[gnu::always_inline]] inline bool CFastInfosetWriter::RecordOutput::PutEnd() {
  m_writer.CloseElement();
  return true;
}

void CFastInfosetWriter::WriteAttributeString(const std::wstring& localName, const std::wstring& namespaceUri,
                                              const std::wstring& value, ItemType type) {
  RequireStartTag();
  if (m_checks != nullptr) m_checks->Attribute(localName, namespaceUri, value);
  if (namespaceUri == XMLNS_NAMESPACE) return Declare(localName, NameOf(value));
  AttributeName(ResolveAttribute(NameOf(namespaceUri)), localName);
  m_hasAttributes = true;
  NonIdentifyingStringOrIndexBit1(value, type);
}

[[gnu::always_inline]] inline bool CFastInfosetWriter::RecordOutput::PutAttribute(const CNameToken&, Entry& entry,
                                                                                  std::wstring_view value,
                                                                                  ItemType type, bool) {
  CFastInfosetWriter& w = m_writer;
  if (!w.IsStartTagOpen()) return false;
  w.Integer<FastInfoset::kIndexBit2>(0, entry.made);
  w.m_hasAttributes = true;
  if (value.empty())
    w.NonIdentifyingStringOrIndexBit1(value, type);
  else
    w.NonIdentifyingStringOrIndex<AttributeValue>(value, type);
  return true;
}

void CFastInfosetWriter::WriteAttributeType(const std::wstring& typeNamespaceUri, const std::wstring& typeName,
                                            ItemType type) {
  RequireStartTag();
  std::wstring value = typeName;
  // An element without namespace is outside the default one.
  const Binding* const unprefixed = FindBinding({});
  const bool isDefault = m_context->IsDefaultNamespace(typeNamespaceUri) && unprefixed != nullptr &&
                         unprefixed->name == &NameOf(typeNamespaceUri);
  if (!typeNamespaceUri.empty() && !isDefault) {
    value = ResolveAttribute(NameOf(typeNamespaceUri)).prefix + L':' + typeName;
  }
  WriteAttributeString(L"type", XSI_NAMESPACE, value, type);
}

void CFastInfosetWriter::WriteAttributeNil() {
  static const CNeverDestroyed<std::wstring> name(L"nil"), value(L"true");
  WriteAttributeString(name.Get(), XSI_NAMESPACE, value.Get(), ItemType_boolean);
}

void CFastInfosetWriter::RequireStartTag() const {
  if (!IsStartTagOpen()) throw CRkException(L"Attributes must be added before elements");
}

// Namespaces

const CFastInfosetWriter::ScopedNamespace* CFastInfosetWriter::FindKnown(const ScopeCache& cache,
                                                                         const CNamespaceName& name) const {
  return name.ordinal < cache.size() && cache[name.ordinal].scope == m_scope ? &cache[name.ordinal] : nullptr;
}

const CFastInfosetWriter::ScopedNamespace& CFastInfosetWriter::ResolveElement(const CNamespaceName& name) {
  const ScopedNamespace* const known = FindKnown(m_elementScope, name);
  if (known != nullptr && (m_avoidedPrefix.empty() || known->prefix != m_avoidedPrefix)) return *known;
  const bool isUnprefixed = name.ordinal == 0 || m_context->IsDefaultNamespace(name);
  return Remember(m_elementScope, name, isUnprefixed ? std::wstring() : FindPrefix(name));
}

const CFastInfosetWriter::ScopedNamespace& CFastInfosetWriter::ResolveAttribute(const CNamespaceName& name) {
  if (const ScopedNamespace* const known = FindKnown(m_attributeScope, name)) return *known;
  return Remember(m_attributeScope, name, name.ordinal == 0 ? std::wstring() : FindPrefix(name));
}

// A prefix that this element declares for another namespace, or that its names may have used for one, cannot serve.
std::wstring CFastInfosetWriter::FindPrefix(const CNamespaceName& name) {
  bool invented = false;
  const std::wstring& prefix = RequirePrefix(name, invented);
  const Binding* const binding = FindBinding(prefix);
  const bool hasName = GetLength() > m_startTag;
  const bool isTaken = binding != nullptr && (hasName || binding->element == m_openElements) && binding->name != &name;
  if (!invented && !isTaken) return prefix;
  ChangeScope();
  return isTaken ? m_context->InventPrefix(name) : prefix;
}

// Declares the namespace unless it is in force, and keeps what names need of it. Attributes without a namespace need
// nothing.
const CFastInfosetWriter::ScopedNamespace& CFastInfosetWriter::Remember(ScopeCache& cache, const CNamespaceName& name,
                                                                        const std::wstring& prefix) {
  if (name.text.Get() != XML_NAMESPACE && (&cache == &m_elementScope || name.ordinal != 0)) {
    const Binding* const binding = FindBinding(prefix);
    const bool isInForce = binding == nullptr ? name.ordinal == 0 : binding->name == &name;
    if (!isInForce) Declare(prefix, name);
  }
  if (cache.size() <= name.ordinal) cache.resize(name.ordinal + 1);
  ScopedNamespace& scoped = cache[name.ordinal];
  scoped.name = &name;
  scoped.prefix = prefix;
  scoped.prefixIndex = 0;
  m_vocabulary.FindPrefixNameIndex(prefix, scoped.prefixIndex);
  scoped.namespaceNameIndex = NamespaceNameIndex(name);
  scoped.scope = m_scope;
  return scoped;
}

// The index of the namespace, which it keeps once it has one, or 0.
unsigned long& CFastInfosetWriter::NamespaceNameIndex(const CNamespaceName& name) {
  if (m_namespaceNameIndices.size() <= name.ordinal) m_namespaceNameIndices.resize(name.ordinal + 1);
  unsigned long& index = m_namespaceNameIndices[name.ordinal];
  if (index == 0) m_vocabulary.FindNamespaceNameIndex(name.text.Get(), index);
  return index;
}

std::size_t CFastInfosetWriter::PrefixHash::operator()(std::wstring_view prefix) const noexcept {
  return CKeyedHash::Of(prefix);
}

const CFastInfosetWriter::Binding* CFastInfosetWriter::FindBinding(std::wstring_view prefix) const {
  if (!m_innermost.empty()) {
    const auto found = m_innermost.find(prefix);
    return found != m_innermost.end() ? found->second : nullptr;
  }
  const auto found = std::find_if(m_bindings.rbegin(), m_bindings.rend(),
                                  [prefix](const Binding& binding) { return binding.prefix == prefix; });
  return found == m_bindings.rend() ? nullptr : &*found;
}

// C.12, among the declarations of the pending start tag.
void CFastInfosetWriter::Declare(const std::wstring& prefix, const CNamespaceName& name) {
  const std::wstring& namespaceUri = name.text.Get();
  unsigned long& index = NamespaceNameIndex(name);
  if (index == 0 && Ascii::MayHaveControl(namespaceUri.data(), namespaceUri.length()))
    throw CRkException(L"Failed to write FastInfoset. A namespace contains a control character.");
  const std::size_t start = GetLength();
  unsigned char octet = FastInfoset::kNamespaceAttribute;
  if (!prefix.empty()) octet |= FastInfoset::kNamePrefixBit;
  if (!namespaceUri.empty()) octet |= FastInfoset::kNameNamespaceBit;
  Put(octet);
  if (!prefix.empty()) IdentifyingStringOrIndexBit1(prefix, m_vocabulary.GetPrefixNamesTable());
  if (!namespaceUri.empty()) {
    NamePart(namespaceUri, index, m_vocabulary.GetNamespaceNamesTable());
    if (index == 0) m_vocabulary.FindNamespaceNameIndex(namespaceUri, index);
  }
  m_declarations.insert(m_declarations.end(), m_room.get() + start, m_end);
  m_end = m_room.get() + start;
  m_bindings.push_back({prefix, &name, m_openElements});
  if (!m_innermost.empty()) {
    AddToIndex(m_bindings.back());
  } else if (m_bindings.size() > kFewBindings) {
    for (Binding& binding : m_bindings) AddToIndex(binding);
  }
  ChangeScope();
}

void CFastInfosetWriter::AddToIndex(Binding& binding) {
  const auto [at, isNew] = m_innermost.try_emplace(binding.prefix, &binding);
  if (isNew) return;
  binding.hidden = at->second;
  at->second = &binding;
}

void CFastInfosetWriter::RemoveLastBinding() {
  const Binding& binding = m_bindings.back();
  const auto found = m_innermost.find(binding.prefix);
  if (found != m_innermost.end() && found->second == &binding) {
    found->second = binding.hidden;
    if (found->second == nullptr) m_innermost.erase(found);
  }
  m_bindings.pop_back();
}

// The scope is that of the open element from now on, and what was resolved before may differ.
void CFastInfosetWriter::ChangeScope() {
  if (m_ownScopes.empty() || m_ownScopes.back() != m_openElements) m_ownScopes.push_back(m_openElements);
  ++m_scope;
}

// Of the open element, which has one of its own.
void CFastInfosetWriter::LeaveScope() {
  m_ownScopes.pop_back();
  while (!m_bindings.empty() && m_bindings.back().element == m_openElements) RemoveLastBinding();
  ++m_scope;
}

// Names

template <const IntegerLayout& kIndex>
inline unsigned long CFastInfosetWriter::QualifiedName(unsigned char literal, CFIQNameTable& names, RecentNames& recent,
                                                       const ScopedNamespace& scoped, std::wstring_view localName) {
  RecentName& slot = recent[SlotOf(localName, recent.size())];
  const bool isRecent = slot.index != 0 && slot.prefixIndex == scoped.prefixIndex &&
                        slot.namespaceNameIndex == scoped.namespaceNameIndex &&
                        WideText::IsEqual(slot.localName, localName);
  const unsigned long index = isRecent ? slot.index : NewQualifiedName(literal, names, slot, scoped, localName);
  if (index != 0) Integer<kIndex>(0, index);
  return index;
}

unsigned long CFastInfosetWriter::AttributeName(const ScopedNamespace& scoped, std::wstring_view localName) {
  return QualifiedName<FastInfoset::kIndexBit2>(
      FastInfoset::kAttributeLiteralName, m_vocabulary.GetAttributeNamesTable(), m_recentAttributes, scoped, localName);
}

unsigned long CFastInfosetWriter::ElementName(const ScopedNamespace& scoped, std::wstring_view localName) {
  return QualifiedName<FastInfoset::kIndexBit3>(FastInfoset::kElementLiteralName, m_vocabulary.GetElementNamesTable(),
                                                m_recentElements, scoped, localName);
}

void CFastInfosetWriter::QualifiedNameOrIndexBit2(const ScopedNamespace& scoped, std::wstring_view localName) {
  AttributeName(scoped, localName);
}

void CFastInfosetWriter::QualifiedNameOrIndexBit3(const ScopedNamespace& scoped, std::wstring_view localName) {
  ElementName(scoped, localName);
}

inline CQNameParts CFastInfosetWriter::PartsOf(const ScopedNamespace& scoped, std::wstring_view localName) const {
  return {scoped.prefixIndex, scoped.namespaceNameIndex, m_vocabulary.GetLocalNamesTable().Find(localName)};
}

unsigned long CFastInfosetWriter::FindIndex(const CFIQNameTable& names, const CQNameParts& parts,
                                            const ScopedNamespace& scoped) {
  const bool isIndexed = (scoped.prefix.empty() || parts.m_prefixIndex != 0) &&
                         (scoped.name->ordinal == 0 || parts.m_namespaceNameIndex != 0) && parts.m_localNameIndex != 0;
  return isIndexed ? names.Find(parts) : 0;
}

unsigned long CFastInfosetWriter::NewQualifiedName(unsigned char literal, CFIQNameTable& names, RecentName& slot,
                                                   const ScopedNamespace& scoped, std::wstring_view localName) {
  CQNameParts parts = PartsOf(scoped, localName);
  if (const unsigned long known = FindIndex(names, parts, scoped)) {
    const std::wstring_view lasting = m_vocabulary.GetLocalNamesTable()[parts.m_localNameIndex];
    slot = {lasting, parts.m_prefixIndex, parts.m_namespaceNameIndex, known};
    return known;
  }
  const bool hasPrefix = !scoped.prefix.empty();
  const bool hasNamespace = scoped.name->ordinal != 0;
  if (hasPrefix) literal |= FastInfoset::kNamePrefixBit;
  if (hasNamespace) literal |= FastInfoset::kNameNamespaceBit;
  Put(literal);
  if (hasPrefix) NamePart(scoped.prefix, parts.m_prefixIndex, m_vocabulary.GetPrefixNamesTable());
  if (hasNamespace) {
    NamePart(scoped.name->text.Get(), parts.m_namespaceNameIndex, m_vocabulary.GetNamespaceNamesTable());
  }
  NamePart(localName, parts.m_localNameIndex, m_vocabulary.GetLocalNamesTable());
  if (hasPrefix && parts.m_prefixIndex == 0) m_vocabulary.FindPrefixNameIndex(scoped.prefix, parts.m_prefixIndex);
  if (hasNamespace && parts.m_namespaceNameIndex == 0) parts.m_namespaceNameIndex = NamespaceNameIndex(*scoped.name);
  if (parts.m_localNameIndex == 0) m_vocabulary.FindLocalNameIndex(localName, parts.m_localNameIndex);
  const bool isComplete = (!hasPrefix || parts.m_prefixIndex != 0) &&
                          (!hasNamespace || parts.m_namespaceNameIndex != 0) && parts.m_localNameIndex != 0;
  if (isComplete) names.Add(parts);
  return 0;
}

void CFastInfosetWriter::NamePart(std::wstring_view text, unsigned long index, CFIStringTable& table) {
  if (index != 0) return Integer1To2pw20Bit2(FastInfoset::kIdentifyingIndexBit, index);
  IdentifyingStringOrIndexBit1(text, table);
}

void CFastInfosetWriter::IdentifyingStringOrIndexBit1(std::wstring_view text, CFIStringTable& table) {
  if (const unsigned long index = table.Find(text)) {
    return Integer1To2pw20Bit2(FastInfoset::kIdentifyingIndexBit, index);
  }
  NonEmptyOctetUTF8StringBit2(0x00, text);
  table.Add(text);
}

// Values

// What tells an attribute value from a text: its table and settings, and where it begins in its first octet.
struct CFastInfosetWriter::AttributeValue {
  static constexpr bool kIsContent = false;
  static constexpr unsigned char kFirstBits = 0;
  static constexpr unsigned char kIndexBit = FastInfoset::kValueIndexBit;
  static constexpr unsigned char kAddBit = FastInfoset::kValueAddBit;
  static constexpr const IntegerLayout& kIndex = FastInfoset::kIndexBit2;
  static constexpr const IntegerLayout& kLength = FastInfoset::kLengthBit5;
  static constexpr auto kTyped = &CFastInfosetWriter::EncodedCharacterStringBit3;

  static CFIStringTable& TableOf(CFIVocabulary& vocabulary) { return vocabulary.GetAttributeValuesTable(); }
  static unsigned long MaxAddLength(const CFastInfosetContext& c) { return c.GetAttributeMaxAddLength(); }
};

struct CFastInfosetWriter::Chunk {
  static constexpr bool kIsContent = true;
  static constexpr unsigned char kFirstBits = FastInfoset::kChunk;
  static constexpr unsigned char kIndexBit = FastInfoset::kChunkIndexBit;
  static constexpr unsigned char kAddBit = FastInfoset::kChunkAddBit;
  static constexpr const IntegerLayout& kIndex = FastInfoset::kIndexBit4;
  static constexpr const IntegerLayout& kLength = FastInfoset::kLengthBit7;
  static constexpr auto kTyped = &CFastInfosetWriter::EncodedCharacterStringBit5;

  static CFIStringTable& TableOf(CFIVocabulary& vocabulary) { return vocabulary.GetCharacterChunksTable(); }
  static unsigned long MaxAddLength(const CFastInfosetContext& c) { return c.GetElementMaxAddLength(); }
};

inline const EncodedCharacterString& CFastInfosetWriter::EncodingOf(ItemType type) const {
  static const EncodedCharacterString kNone;
  return type >= ItemType_none && type <= ItemType_integer ? m_fiContext.GetEncoding(type) : kNone;
}

inline bool CFastInfosetWriter::IsUtf8(const EncodedCharacterString& wanted) const {
  const bool isNone = wanted.m_encoding == FIStringEncoding_None;
  return (isNone ? m_fiContext.GetDefaultStringEncoding() : wanted.m_encoding) == FIStringEncoding_UTF8;
}

template <class Value>
void CFastInfosetWriter::NonIdentifyingStringOrIndex(std::wstring_view text, ItemType type) {
  const bool isShort = text.length() < Value::MaxAddLength(m_fiContext);
  CFIKey key;
  if (isShort) {
    if (const unsigned long index = Value::TableOf(m_vocabulary).Find(text, key))
      return Integer<Value::kIndex>(Value::kFirstBits | Value::kIndexBit, index);
  } else if (IsUtf8(EncodingOf(type))) {
    return Utf8<Value::kLength>(Value::kFirstBits, text);
  }
  Literal<Value>(text, type, isShort ? &key : nullptr);
}

// A value that is written in full, in the encoding of its type, and added to the table under the key, if there is one.
template <class Value>
void CFastInfosetWriter::Literal(std::wstring_view text, ItemType type, const CFIKey* key) {
  CFIStringTable& values = Value::TableOf(m_vocabulary);
  const EncodedCharacterString& wanted = EncodingOf(type);
  const bool isTyped = !IsUtf8(wanted) && EncodeTyped(wanted, text, type, Value::kIsContent);
  const bool add = key != nullptr && !(isTyped && IsFloating(wanted)) && values.size() < FI_MAX_TABLE_ENTRIES;
  const unsigned char octet = Value::kFirstBits | (add ? Value::kAddBit : kNoAddBit);
  if (isTyped)
    (this->*Value::kTyped)(octet, text, wanted);
  else
    Utf8<Value::kLength>(octet, text);
  if (add) values.AddNew(text, *key);
}

void CFastInfosetWriter::NonIdentifyingStringOrIndexBit1(std::wstring_view text, ItemType type) {
  if (text.empty()) return Integer0To2pw20Bit2(FastInfoset::kValueIndexBit, 0);
  NonIdentifyingStringOrIndex<AttributeValue>(text, type);
}

void CFastInfosetWriter::NonIdentifyingStringOrIndexBit3(std::wstring_view text, ItemType type) {
  NonIdentifyingStringOrIndex<Chunk>(text, type);
}

// Makes the octets of a value that is not written as characters. False where the encoding would change the value, which
// is written as characters then. cdata has no place in an attribute.
bool CFastInfosetWriter::EncodeTyped(const EncodedCharacterString& wanted, std::wstring_view text, ItemType type,
                                     bool isContent) {
  const bool hasOctets = wanted.m_encoding == FIStringEncoding_RestrictedAlphabet ||
                         wanted.m_encoding == FIStringEncoding_EncodingAlgorithm;
  if (!hasOctets) return true;
  m_typedOctets.clear();
  if (wanted.m_encoding == FIStringEncoding_RestrictedAlphabet) {
    const bool isPacked = AppendPacked(FindAlphabet(wanted.m_index), text, m_typedOctets);
    if (wanted.m_index != FIRestrictedAlphabet_Numeric) return isPacked;
    // Dates may have a fraction, which their alphabet lacks; what the numeric one lacks is in no integer or decimal.
    if (!isPacked && IsDecimal(type)) ThrowNotInAlphabet();
    return isPacked && IsNumberWithoutExponent(text);
  }
  if (wanted.m_index < FIEncodingAlgorithm_Hexadecimal || wanted.m_index > FIEncodingAlgorithm_Cdata) {
    throw CRkException(
        FormatString(L"Failed to write FastInfoset. Invalid Encoding Algorithm value [%lu]", wanted.m_index));
  }
  return (isContent || wanted.m_index != FIEncodingAlgorithm_Cdata) &&
         CFastInfosetBinaryData::AppendExactly(wanted.m_index, text, m_typedOctets);
}

// C.19: the selector in bits 3 and 4, the index of an alphabet or algorithm across two octets, the length on bit 5.
void CFastInfosetWriter::EncodedCharacterStringBit3(unsigned char octet, std::wstring_view text,
                                                    const EncodedCharacterString& encoding) {
  const unsigned long stored = encoding.m_index - 1;
  switch (encoding.m_encoding) {
    case FIStringEncoding_UTF8:
      return Utf8<FastInfoset::kLengthBit5>(octet, text);
    case FIStringEncoding_UTF16BE:
      throw CRkException(L"Failed to write FastInfoset. Unsupported Feature UTF16BE in EncodedCharacterStringBit5.");
    case FIStringEncoding_RestrictedAlphabet:
    case FIStringEncoding_EncodingAlgorithm: {
      const unsigned selector = encoding.m_encoding == FIStringEncoding_RestrictedAlphabet ? 0x20 : 0x30;
      Put(static_cast<unsigned char>(octet | selector | stored >> 4));
      const auto second = static_cast<unsigned char>(stored << 4);
      return NonEmptyOctetStringBit5(second, m_typedOctets.data(), m_typedOctets.size());
    }
    default:
      throw CRkException(L"Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit5.");
  }
}

// C.20: the same two bits further on.
void CFastInfosetWriter::EncodedCharacterStringBit5(unsigned char octet, std::wstring_view text,
                                                    const EncodedCharacterString& encoding) {
  const unsigned long stored = encoding.m_index - 1;
  switch (encoding.m_encoding) {
    case FIStringEncoding_UTF8:
      return Utf8<FastInfoset::kLengthBit7>(octet, text);
    case FIStringEncoding_UTF16BE:
      throw CRkException(L"Failed to write FastInfoset. Unsupported Feature UTF16BE in EncodedCharacterStringBit5.");
    case FIStringEncoding_RestrictedAlphabet:
    case FIStringEncoding_EncodingAlgorithm: {
      const unsigned selector = encoding.m_encoding == FIStringEncoding_RestrictedAlphabet ? 0x08 : 0x0C;
      Put(static_cast<unsigned char>(octet | selector | stored >> 6));
      const auto second = static_cast<unsigned char>(stored << 2);
      return NonEmptyOctetStringBit7(second, m_typedOctets.data(), m_typedOctets.size());
    }
    default:
      throw CRkException(L"Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit7.");
  }
}

void CFastInfosetWriter::AppendRestrictedAlphabetString(unsigned long alphabetIndex, std::wstring_view text,
                                                        std::vector<unsigned char>& octets) {
  const Alphabet& alphabet = FindAlphabet(alphabetIndex);
  if (alphabet.length < 2 || alphabet.length > FI_MAX_TABLE_ENTRIES) {
    throw CRkException(
        L"Failed to write FastInfoset. Invalid Restricted Alphabet. Alphabet must contain between 2 and 2^20 "
        L"characters.");
  }
  if (text.empty()) {
    throw CRkException(L"Failed to write FastInfoset. Unsupported Feature in AppendRestrictedAlphabetString.");
  }
  if (!AppendPacked(alphabet, text, octets)) ThrowNotInAlphabet();
}

void CFastInfosetWriter::AppendRestrictedAlphabetString(unsigned long alphabetIndex, std::wstring_view text) {
  std::vector<unsigned char> octets;
  AppendRestrictedAlphabetString(alphabetIndex, text, octets);
  Put(octets.data(), octets.size());
}

// Octets

void CFastInfosetWriter::Integer1To2pw20Bit2(unsigned char octet, unsigned long value) {
  Integer<FastInfoset::kIndexBit2>(octet, value);
}

void CFastInfosetWriter::Integer1To2pw20Bit3(unsigned char octet, unsigned long value) {
  Integer<FastInfoset::kIndexBit3>(octet, value);
}

void CFastInfosetWriter::Integer1To2pw20Bit4(unsigned char octet, unsigned long value) {
  Integer<FastInfoset::kIndexBit4>(octet, value);
}

void CFastInfosetWriter::Integer0To2pw20Bit2(unsigned char octet, unsigned long value) {
  if (value != 0) return Integer1To2pw20Bit2(octet, value);
  Put(static_cast<unsigned char>(octet | FastInfoset::kIndexBit2.field));
}

void CFastInfosetWriter::NonEmptyOctetUTF8StringBit2(unsigned char octet, std::wstring_view text) {
  Utf8<FastInfoset::kLengthBit2>(octet, text);
}

void CFastInfosetWriter::NonEmptyOctetStringBit5(unsigned char octet, const unsigned char* data, std::size_t n) {
  Integer<FastInfoset::kLengthBit5>(octet, n);
  Put(data, n);
}

void CFastInfosetWriter::NonEmptyOctetStringBit7(unsigned char octet, const unsigned char* data, std::size_t n) {
  Integer<FastInfoset::kLengthBit7>(octet, n);
  Put(data, n);
}

}  // namespace RkXmlLib16

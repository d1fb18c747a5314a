// Writing JSON text.
//
// The plain algorithm: an element is a member of its parent's object, an attribute too. The key of an element is
// written when it starts. What its value is shows later: the first member of its own makes it an object, text alone a
// string or a number, and without either it is "{}" or nothing. So the value begins with what comes next, and text is
// held until it is known whether members follow, which make the text a member itself. The header has the table of these
// states.
//
// What is added to that:
//   Arrays   The records tell when the items of a collection follow. The first item that turns out to be an object
//            opens an array between its key and its brace (OpenBrackets), elements of the same name continue it, and
//            any other member or the end closes it (CloseArray). Frame::arrayOpen tells that the bracket is open, the
//            state of the context, which records change, whether items may follow. Strict output opens the array at
//            once, with the key.
//   Texts    Without markers an item with nothing but text cannot stand in an array of objects. So nothing is written
//            of an item, not even the comma, until it shows what it is (m_itemPending).
//   Levels   m_depth of a context is its level of indentation, from 1 for the root. An open array adds one to its owner
//            and to its items.
//   Lines    LineStart gives the line end and the indentation of a level from one text, which grows to the deepest
//            level.
//   Members  PutMember writes key and short value to space that was reserved once.
//   Names    RecordOutput keeps the line start and key of names of records, by the number of the name, and writes an
//            element with nothing but text as a member at once. Invariant: a key is that of its level, holds in its
//            scope and for the present settings. The first items of arrays, those with nothing but text, and namespaces
//            without a prefix in scope are written by the operations above it, with the same result.
#include "RkXmlLib16/json/JsonTextWriter.h"

#include <emmintrin.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <typeinfo>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/NeverDestroyed.h"
#include "RkXmlLib16/base/internal/WideText.h"
#include "RkXmlLib16/document/internal/LineEnd.h"
#include "RkXmlLib16/document/internal/OutputChecks.h"
#include "RkXmlLib16/document/internal/RecordOutput.h"
#include "RkXmlLib16/io/TextStream.h"

namespace RkXmlLib16 {

namespace {

constexpr std::size_t kFlushLength = 4096;
constexpr std::size_t kShortText = 64;
constexpr std::size_t kLongestEscape = 6;  // of one character
const CNeverDestroyed<std::wstring> kNone;
const CNeverDestroyed<std::wstring> kNull(L"null");

[[noreturn]] void ThrowUnknownNamespace(const std::wstring& name) {
  throw CRkException(L"Unknown Namespace: " + name + L".");
}

constexpr bool IsUnquoted(ItemType type) {
  return (type >= ItemType_byte && type <= ItemType_double) || type == ItemType_boolean || type == ItemType_decimal ||
         type == ItemType_integer;
}

std::wstring_view UpToNul(std::wstring_view text) { return text.substr(0, text.find(L'\0')); }

std::size_t SkipDigits(std::wstring_view text, std::size_t i) {
  while (i < text.size() && text[i] >= L'0' && text[i] <= L'9') ++i;
  return i;
}

// A number of RFC 8259 that a binary64 can hold. Beyond its range strict parsers may refuse the document; the length
// limit on the exponent keeps the arithmetic exact and drops nothing, since such a text is written as a string.
bool IsStrictNumber(std::wstring_view text) {
  constexpr std::int64_t kMaxExponent = 307;
  std::size_t i = !text.empty() && text[0] == L'-' ? 1 : 0;
  const std::size_t integer = i;
  i = SkipDigits(text, i);
  const std::size_t integerEnd = i;
  if (integerEnd == integer || (text[integer] == L'0' && integerEnd - integer > 1)) return false;
  std::int64_t magnitude = static_cast<std::int64_t>(integerEnd - integer) - 1;
  if (i < text.size() && text[i] == L'.') {
    const std::size_t fraction = ++i;
    i = SkipDigits(text, i);
    if (i == fraction) return false;
  }
  if (i < text.size() && (text[i] == L'e' || text[i] == L'E')) {
    ++i;
    const bool negative = i < text.size() && text[i] == L'-';
    if (i < text.size() && (text[i] == L'-' || text[i] == L'+')) ++i;
    const std::size_t exponent = i;
    i = SkipDigits(text, i);
    if (i == exponent || i - exponent > 6) return false;
    std::int64_t value = 0;
    for (std::size_t k = exponent; k < i; ++k) value = value * 10 + (text[k] - L'0');
    magnitude += negative ? -value : value;
  }
  return i == text.size() && magnitude <= kMaxExponent;
}

// Whether what the library writes for a value of the type is a number or boolean of RFC 8259, which a binary64 can
// hold.
constexpr bool IsLiteral(std::wstring_view text, ItemType type) {
  constexpr std::size_t kMostDigits = 300;
  return IsUnquoted(type) && type != ItemType_float && type != ItemType_double && text.size() <= kMostDigits;
}

bool IsStrictLiteral(std::wstring_view text) { return text == L"true" || text == L"false" || IsStrictNumber(text); }

}  // namespace

// What is made of the name of a record: the start of the line and the key, for one level.
struct MadeKey {
  static constexpr std::size_t kLongest = 48;
  static constexpr std::int64_t kNoLevel = INT64_MIN;  // arrays inside arrays bring levels below 0

  const std::wstring* prefix;
  std::int64_t level;
  CReadyText<kLongest> key;  // longer: there is no text
};

// Whether the element is the next item of the array that is open in the current element.
template <class Namespace>
inline bool CJsonTextWriter::ContinuesArray(const std::wstring& localName, Namespace&& getNamespace) {
  const Frame& frame = Top();
  return frame.arrayOpen && m_context->m_state == ContextState_ArrayOpen &&
         WideText::IsEqual(frame.arrayName.Get(), localName) &&
         (m_roundTrip != JsonRoundTrip_Namespaces || frame.arrayNamespace == getNamespace());
}

// Whether an element that continues no array begins one of its own, even if it has only text.
inline bool CJsonTextWriter::OpensArray() const {
  return m_strict && m_roundTrip != JsonRoundTrip_Plain && !m_context->m_itemsAreGroups &&
         (m_context->m_state == ContextState_CollectionStart || m_context->m_state == ContextState_ArrayOpen);
}

inline bool CJsonTextWriter::NeedsQuotes(std::wstring_view text, ItemType type) const {
  return !IsUnquoted(type) || (m_strict && !IsStrictLiteral(text));
}

class RKXML_HIDDEN CJsonTextWriter::RecordOutput final
    : public CFormRecordOutput<CJsonTextWriter::RecordOutput, CJsonTextWriter, MadeKey> {
 public:
  using CFormRecordOutput::CFormRecordOutput;

  bool MakeElement(const CNameToken& name, Entry& entry);
  bool MakeAttribute(const CNameToken& name, Entry& entry);
  bool PutStart(const CNameToken& name, Entry& entry);
  bool PutText(const CNameToken& name, Entry& entry, std::wstring_view text, ItemType type, bool isCanonical);
  bool PutAttribute(const CNameToken& name, Entry& entry, std::wstring_view value, ItemType type, bool isCanonical);

 private:
  bool ContinuesArray(const CNameToken& name, const Entry& entry) {
    return m_writer.ContinuesArray(name.GetLocalName(), [&] { return entry.namespaceName; });
  }
  // Whether the key is that of the level, or is now.
  bool HasKey(MadeKey& made, const CNameToken& name, std::wstring_view marker, std::int64_t level);
  void Make(MadeKey& made, const CNameToken& name, std::wstring_view marker, std::int64_t level);
  void WriteMember(MadeKey& made, const CNameToken& name, std::wstring_view marker, std::wstring_view value,
                   ItemType type, bool isCanonical);
};

bool CJsonTextWriter::RecordOutput::MakeElement(const CNameToken& name, Entry& entry) {
  entry.namespaceName = &m_writer.NameOf(name.GetNamespace());
  const bool mayHavePrefix = m_writer.m_roundTrip == JsonRoundTrip_Namespaces;
  entry.made.prefix = mayHavePrefix ? m_writer.FindElementPrefix(*entry.namespaceName) : &kNone.Get();
  entry.made.level = MadeKey::kNoLevel;
  return entry.made.prefix != nullptr;
}

bool CJsonTextWriter::RecordOutput::MakeAttribute(const CNameToken& name, Entry& entry) {
  const std::wstring& namespaceUri = name.GetNamespace();
  const bool hasPrefix = m_writer.m_roundTrip == JsonRoundTrip_Namespaces && !namespaceUri.empty();
  entry.made.prefix = hasPrefix ? m_writer.FindAttributePrefix(namespaceUri) : &kNone.Get();
  entry.made.level = MadeKey::kNoLevel;
  return entry.made.prefix != nullptr && namespaceUri != XMLNS_NAMESPACE;
}

inline bool CJsonTextWriter::RecordOutput::HasKey(MadeKey& made, const CNameToken& name, std::wstring_view marker,
                                                  std::int64_t level) {
  if (made.level != level) Make(made, name, marker, level);
  return made.key.length <= MadeKey::kLongest;
}

void CJsonTextWriter::RecordOutput::Make(MadeKey& made, const CNameToken& name, std::wstring_view marker,
                                         std::int64_t level) {
  const std::wstring_view start = m_writer.LineStart(level);
  wchar_t text[8 * MadeKey::kLongest];
  made.level = level;
  made.key.length = start.size() + m_writer.KeyLength(marker, *made.prefix, name.GetLocalName());
  if (made.key.length > std::size(text)) return;
  const wchar_t* const end = m_writer.CopyKey(WideText::Copy(text, start), marker, *made.prefix, name.GetLocalName());
  made.key.length = static_cast<std::size_t>(end - text);
  std::copy_n(text, std::min(made.key.length, MadeKey::kLongest), made.key.text);
}

[[gnu::always_inline]] inline void CJsonTextWriter::RecordOutput::WriteMember(MadeKey& made, const CNameToken& name,
                                                                              std::wstring_view marker,
                                                                              std::wstring_view value, ItemType type,
                                                                              bool isCanonical) {
  CJsonTextWriter& w = m_writer;
  const bool quoted = !(isCanonical && IsLiteral(value, type)) && w.NeedsQuotes(value, type);
  const bool isFurther = w.BeginMember();
  if (!HasKey(made, name, marker, w.m_context->m_depth + 1))
    return w.PutMember(isFurther, marker, *made.prefix, name.GetLocalName(), value, quoted);
  const bool isShort = value.size() <= kShortText;
  wchar_t* to = w.m_out.Reserve(1 + MadeKey::kLongest + (isShort ? value.size() * kLongestEscape + 2 : 0));
  *to = L',';
  to = made.key.CopyTo(isFurther ? to + 1 : to);
  if (isShort) return w.WriteShortValue(to, value, quoted, isCanonical && HasNothingToEscape(type));
  w.m_out.Commit(to);
  w.WriteLongValue(value, quoted);
}

[[gnu::always_inline]] inline bool CJsonTextWriter::RecordOutput::PutStart(const CNameToken& name, Entry& entry) {
  CJsonTextWriter& w = m_writer;
  const bool isItem = ContinuesArray(name, entry);
  if (isItem ? w.m_roundTrip == JsonRoundTrip_Plain : w.OpensArray()) return false;
  if (!isItem) w.CloseArray(*w.m_context, w.Top(), false);
  w.OpenMember();
  const std::int64_t level = w.PushContext(name, *entry.namespaceName).m_depth;
  w.StartMember(isItem, /*isUndecided=*/false);
  if (isItem)
    w.Put(w.LineStart(level));
  else if (HasKey(entry.made, name, {}, level))
    w.m_out.Commit(entry.made.key.CopyTo(w.m_out.Reserve(MadeKey::kLongest)));
  else
    w.PutKey(w.LineStart(level), {}, *entry.made.prefix, name.GetLocalName());
  w.FlushWhenFull();
  return true;
}

[[gnu::always_inline]] inline bool CJsonTextWriter::RecordOutput::PutText(const CNameToken& name, Entry& entry,
                                                                          std::wstring_view text, ItemType type,
                                                                          bool isCanonical) {
  if (m_writer.OpensArray() || ContinuesArray(name, entry)) return false;
  if (text.empty())
    WriteMember(entry.made, name, {}, kNull.Get(), ItemType_boolean, /*isCanonical=*/true);
  else
    WriteMember(entry.made, name, {}, text, type, isCanonical);
  return true;
}

[[gnu::always_inline]] inline bool CJsonTextWriter::RecordOutput::PutAttribute(const CNameToken& name, Entry& entry,
                                                                               std::wstring_view value, ItemType type,
                                                                               bool isCanonical) {
  WriteMember(entry.made, name, m_writer.GetMarker(), value, type, isCanonical);
  return true;
}

CJsonTextWriter::CJsonTextWriter(CTextStream& stream) : m_stream(stream), m_out(stream.GetBuffer()) {
  m_inventsPrefixes = false;
  SetRecordOutput<CJsonTextWriter, RecordOutput>();
}

CJsonTextWriter::~CJsonTextWriter() = default;

void CJsonTextWriter::SetFormat(bool format) noexcept {
  m_format = format;
  ForgetNames();
}

void CJsonTextWriter::SetSupportRoundtrip(JsonRoundTrip mode) noexcept {
  m_roundTrip = mode;
  m_writesNamespaces = mode == JsonRoundTrip_Namespaces;
  ForgetNames();
}

void CJsonTextWriter::SetStrictOutput(bool strict) noexcept {
  m_strict = strict;
  ForgetNames();
}

void CJsonTextWriter::SetIndentChars(const wchar_t* text) {
  m_indentChars = text != nullptr ? text : L"";
  m_lineStart.clear();
  ForgetNames();
}

void CJsonTextWriter::SetEOLType(EOLType type) {
  m_eol = LineEnd(type);
  m_eolType = type;
  m_lineStart.clear();
  ForgetNames();
}

void CJsonTextWriter::Open() {
  CXmlWriter::Open();
  m_stream.Open();
}

void CJsonTextWriter::Close() {
  m_stream.Close();
  CXmlWriter::Close();
}

void CJsonTextWriter::WriteStartDocument() {
  Put(L"{");
  Put(LineStart(0));
  FlushWhenFull();
}

void CJsonTextWriter::WriteEndDocument() {
  Put(LineStart(0));
  Put(L"}");
  FlushWhenFull();
}

void CJsonTextWriter::WriteIndent(int level) {
  for (int i = 0; i < level; ++i) Put(m_indentChars);
  FlushWhenFull();
}

void CJsonTextWriter::WriteOpenBrackets(CXmlWriterContext& context) {
  OpenBrackets(context);
  Put(LineStart(0));
  FlushWhenFull();
}

void CJsonTextWriter::OpenBrackets(CXmlWriterContext& context) {
  if (m_valuePending) {
    if (m_itemPending) SeparateItem(context);
    CXmlWriterContext* owner = context.m_parent.get();
    if (owner != nullptr && owner->m_state == ContextState_CollectionStart) OpenArray(context, *owner);
    m_out.Append(L'{');
    m_valuePending = false;
  } else {
    m_out.Append(L',');
  }
}

void CJsonTextWriter::WriteValue(const std::wstring& text, ItemType type) {
  const bool quoted = NeedsQuotes(text, type);
  if (text.size() <= kShortText)
    WriteShortValue(m_out.Reserve(text.size() * kLongestEscape + 2), text, quoted, /*isClean=*/false);
  else
    WriteLongValue(text, quoted);
}

inline void CJsonTextWriter::WriteShortValue(wchar_t* to, std::wstring_view text, bool quoted, bool isClean) {
  if (quoted) *to++ = L'"';
  to = isClean ? WideText::Copy(to, text) : PutText(to, text, quoted);
  if (quoted) *to++ = L'"';
  m_out.Commit(to);
  FlushWhenFull();
}

void CJsonTextWriter::WriteLongValue(std::wstring_view text, bool quoted) {
  if (quoted) {
    Put(L"\"");
    PutEscaped(text);
    Put(L"\"");
  } else {
    Put(UpToNul(text));
  }
  FlushWhenFull();
}

inline wchar_t* CJsonTextWriter::PutText(wchar_t* to, std::wstring_view text, bool quoted) const {
  return quoted ? PutEscapedShort(to, text) : WideText::CopyUpToNul(to, text);
}

void CJsonTextWriter::SetWellFormedOutput(bool refuse) {
  SetChecks(refuse ? std::make_unique<OutputChecks>(OutputChecks::Form::Json) : nullptr);
}

void CJsonTextWriter::WriteComment(const std::wstring& text) {
  if (m_strict) return;
  Put(L"/* ");
  PutEscaped(text);
  Put(L" */");
  Put(m_eol);
  FlushWhenFull();
}

void CJsonTextWriter::WritePI(const std::wstring&) {}
void CJsonTextWriter::WriteInlineSchema(const std::wstring&) {}

void CJsonTextWriter::WriteStartElement(const std::wstring& localName, const std::wstring& namespaceUri) {
  const bool root = m_context == nullptr;
  const bool item = !root && ContinuesArray(localName, [&] { return &NameOf(namespaceUri); });
  const bool keyHasPrefix = !item && m_roundTrip == JsonRoundTrip_Namespaces;
  const std::wstring* const prefix = keyHasPrefix && !root ? FindElementPrefix(namespaceUri) : &kNone.Get();
  if (prefix == nullptr) ThrowUnknownNamespace(localName);
  // An item that turns out to have only text cannot stand in an array without markers.
  const bool undecided = item && m_roundTrip == JsonRoundTrip_Plain;
  const bool opensArray = !root && !item && OpensArray();
  if (!root) {
    if (!item) CloseArray(*m_context, Top(), false);
    if (!undecided) OpenMember();
  }

  CXmlWriterContext& context = PushContext(localName, namespaceUri);
  StartMember(item, undecided);
  if (root) context.m_depth = 1;  // the braces of the document are level 0

  if (undecided) return;
  const std::wstring_view start = root ? Indent(context.m_depth) : LineStart(context.m_depth);
  if (root && keyHasPrefix) {
    DeclareNamespaces();
  } else if (!item) {
    PutKey(start, {}, *prefix, localName);
    if (opensArray) OpenArray(context, *context.m_parent);
    Top().arrayItem = opensArray;
  } else {
    Put(start);
  }
  FlushWhenFull();
}

// The state of an element that starts.
inline void CJsonTextWriter::StartMember(bool isItem, bool isUndecided) {
  if (m_frameCount == m_frames.size()) m_frames.emplace_back();
  ++m_frameCount;
  Top().arrayItem = isItem;
  Top().arrayOpen = false;
  m_valuePending = true;
  m_itemPending = isUndecided;
}

// The key of the root element and the declarations in its object.
void CJsonTextWriter::DeclareNamespaces() {
  CXmlWriterContext& root = *m_context;
  if (const std::wstring* known = FindElementPrefix(root.m_namespaceUri.Get())) {
    PutKey(Indent(root.m_depth), {}, *known, root.m_localName.Get());
  } else {
    bool invented;
    const std::wstring& prefix = RequirePrefix(root.m_namespaceUri.Get(), invented);
    PutKey(Indent(root.m_depth), {}, prefix, root.m_localName.Get());
    WriteNamespaceMember(prefix, root.m_namespaceUri.Get());
  }
  if (!root.GetDefaultNamespace().empty()) WriteNamespaceMember(kNone.Get(), root.GetDefaultNamespace());
  for (const auto& [uri, prefix] : m_namespaces) {
    if (uri != XML_NAMESPACE && !prefix.empty()) WriteNamespaceMember(prefix, uri);
  }
}

void CJsonTextWriter::WriteString(const std::wstring& text, ItemType type) {
  if (m_checks != nullptr) m_checks->Text(text);
  if (text.empty()) {
    if (m_context == nullptr) return;
    if (!m_valuePending) {
      if (!m_strict) Put(L"null");
    } else if (!Top().arrayItem && !m_textPending) {
      m_textPending = true;
      m_text.clear();
      m_textType = type;
    }
    return FlushWhenFull();
  }
  RequireOpenElement();
  if (m_textPending) {
    m_textType = m_text.empty() ? type : ItemType_string;
    m_text += text;
  } else if (m_valuePending && (!Top().arrayItem || m_itemPending)) {
    m_textPending = true;
    m_text = text;
    m_textType = type;
  } else {
    WriteTextMember(text, type);
  }
}

void CJsonTextWriter::WriteEndElement() {
  RequireOpenElement();
  CXmlWriterContext& context = *m_context;
  CloseArray(context, Top(), true);
  if (!m_valuePending) {
    const std::wstring_view start = LineStart(context.m_depth);
    wchar_t* const to = WideText::Copy(m_out.Reserve(start.size() + 1), start);
    *to = L'}';
    m_out.Commit(to + 1);
  } else if (m_textPending) {
    if (m_itemPending) WriteItemAsMember(context);
    if (m_text.empty()) {
      Put(L"null");
    } else {
      WriteValue(m_text, m_textType);
    }
  } else if (Top().arrayItem || m_strict) {
    if (m_itemPending) SeparateItem(context);
    Put(L"{}");
  }
  m_valuePending = m_textPending = false;
  CloseContext();
  --m_frameCount;
  FlushWhenFull();
}

void CJsonTextWriter::WriteAttributeString(const std::wstring& localName, const std::wstring& namespaceUri,
                                           const std::wstring& value, ItemType type) {
  RequireOpenElement();
  if (m_checks != nullptr) m_checks->Attribute(localName, namespaceUri, value);
  if (m_roundTrip != JsonRoundTrip_Namespaces && namespaceUri == XMLNS_NAMESPACE) return;
  const bool prefixed = m_roundTrip == JsonRoundTrip_Namespaces && !namespaceUri.empty();
  const std::wstring* prefix = prefixed ? FindAttributePrefix(namespaceUri) : &kNone.Get();
  if (prefix == nullptr) ThrowUnknownNamespace(localName);
  PutMember(BeginMember(), GetMarker(), *prefix, localName, value, NeedsQuotes(value, type));
}

void CJsonTextWriter::WriteAttributeType(const std::wstring& typeNamespaceUri, const std::wstring& typeName,
                                         ItemType type) {
  if (m_roundTrip != JsonRoundTrip_Namespaces) return;
  RequireOpenElement();
  const std::wstring* prefix = FindElementPrefix(typeNamespaceUri);
  if (prefix == nullptr) ThrowUnknownNamespace(typeName);
  WriteAttributeString(L"type", XSI_NAMESPACE, prefix->empty() ? typeName : *prefix + L":" + typeName, type);
}

void CJsonTextWriter::WriteAttributeNil() {
  if (!m_strict || m_roundTrip != JsonRoundTrip_Namespaces) return;
  RequireOpenElement();
  bool invented;
  const std::wstring& prefix = RequirePrefix(XSI_NAMESPACE, invented);
  if (invented) WriteNamespaceMember(prefix, XSI_NAMESPACE);
  WriteAttributeString(L"nil", XSI_NAMESPACE, L"true", ItemType_boolean);
}

void CJsonTextWriter::OpenArray(CXmlWriterContext& item, CXmlWriterContext& owner) {
  owner.m_state = ContextState_ArrayOpen;
  Frame& frame = Owner();
  frame.arrayOpen = true;
  frame.arrayName = item.m_localName;
  frame.arrayNamespace = item.GetName();
  Put(L"[");
  if (m_format) {
    ++item.m_depth;
    ++owner.m_depth;
    Put(LineStart(item.m_depth));
  }
}

// Closes the array of `owner`: at the end of the owner, or before a member that is not its item.
void CJsonTextWriter::CloseOpenArray(CXmlWriterContext& owner, Frame& frame, bool atEnd) {
  frame.arrayOpen = false;
  if (owner.m_state == ContextState_ArrayOpen) owner.m_state = ContextState_CollectionStart;
  if (m_format) {
    Put(LineStart(owner.m_depth));
    --owner.m_depth;
    if (atEnd && !m_strict && owner.m_parent != nullptr) --owner.m_parent->m_depth;
  }
  Put(L"]");
}

void CJsonTextWriter::OpenMember() {
  if (m_textPending) {
    m_textPending = false;
    if (!m_text.empty()) WriteTextMember(m_text, m_textType);
  }
  OpenBrackets(*m_context);
}

inline bool CJsonTextWriter::BeginMember() {
  CloseArray(*m_context, Top(), false);
  const bool isFurther = !m_valuePending && !m_textPending;
  if (!isFurther) OpenMember();
  return isFurther;
}

void CJsonTextWriter::PutMember(bool isFurther, std::wstring_view marker, const std::wstring& prefix,
                                const std::wstring& localName, std::wstring_view value, bool quoted) {
  const std::wstring_view start = LineStart(m_context->m_depth + 1);
  const bool isShort = value.size() <= kShortText;
  wchar_t* to = m_out.Reserve(1 + start.size() + KeyLength(marker, prefix, localName) +
                              (isShort ? value.size() * kLongestEscape + 2 : 0));
  if (isFurther) *to++ = L',';
  to = CopyKey(WideText::Copy(to, start), marker, prefix, localName);
  if (isShort) return WriteShortValue(to, value, quoted, /*isClean=*/false);
  m_out.Commit(to);
  WriteLongValue(value, quoted);
}

void CJsonTextWriter::SeparateItem(const CXmlWriterContext& item) {
  m_itemPending = false;
  m_out.Append(L',');
  Put(LineStart(item.m_depth));
}

// Takes an item out of the array that it would have continued: a member with a key of its own.
void CJsonTextWriter::WriteItemAsMember(CXmlWriterContext& item) {
  CXmlWriterContext& owner = *item.m_parent;
  CloseArray(owner, Owner(), false);
  item.m_depth = owner.m_depth + 1;
  SeparateItem(item);
  PutKey({}, {}, kNone.Get(), item.m_localName.Get());
}

void CJsonTextWriter::WriteTextMember(const std::wstring& text, ItemType type) {
  CloseArray(*m_context, Top(), false);
  OpenBrackets(*m_context);
  Put(LineStart(m_context->m_depth + 1));
  Put(m_roundTrip == JsonRoundTrip_Plain ? L"\"\": " : L"\"#text\": ");
  WriteValue(text, type);
}

void CJsonTextWriter::WriteNamespaceMember(const std::wstring& prefix, const std::wstring& namespaceUri) {
  OpenMember();
  if (prefix.empty())
    PutKey(LineStart(m_context->m_depth + 1), L"@", kNone.Get(), L"xmlns");
  else
    PutKey(LineStart(m_context->m_depth + 1), L"@", L"xmlns", prefix);
  Put(L"\"");
  m_out.Commit(PutName(m_out.Reserve(namespaceUri.size() * kLongestEscape), namespaceUri));
  Put(L"\"");
}

const std::wstring* CJsonTextWriter::FindAttributePrefix(const std::wstring& namespaceUri) const {
  const std::wstring* prefix = m_context->FindPrefix(namespaceUri);
  return prefix != nullptr && !prefix->empty() ? prefix : nullptr;
}

void CJsonTextWriter::RequireOpenElement() const {
  if (m_context == nullptr) throw CRkException(L"No Element is open.");
}

inline std::wstring_view CJsonTextWriter::LineStart(std::int64_t level) {
  if (!m_format) return {};
  const std::size_t length = m_eol.size() + (level > 0 ? m_indentChars.size() * static_cast<std::size_t>(level) : 0);
  if (m_lineStart.size() < length) GrowLineStart(length);
  return {m_lineStart.data(), length};
}

inline std::wstring_view CJsonTextWriter::Indent(std::int64_t level) {
  return m_format ? LineStart(level).substr(m_eol.size()) : std::wstring_view();
}

void CJsonTextWriter::GrowLineStart(std::size_t length) {
  if (m_lineStart.empty()) m_lineStart = m_eol;
  while (m_lineStart.size() < length) m_lineStart += m_indentChars;
}

void CJsonTextWriter::PutKey(std::wstring_view start, std::wstring_view marker, const std::wstring& prefix,
                             const std::wstring& localName) {
  wchar_t* const to = m_out.Reserve(start.size() + KeyLength(marker, prefix, localName));
  m_out.Commit(CopyKey(WideText::Copy(to, start), marker, prefix, localName));
}

inline std::size_t CJsonTextWriter::KeyLength(std::wstring_view marker, const std::wstring& prefix,
                                              const std::wstring& localName) const {
  return marker.size() + (prefix.size() + localName.size()) * kLongestEscape + 5;
}

inline wchar_t* CJsonTextWriter::CopyKey(wchar_t* to, std::wstring_view marker, const std::wstring& prefix,
                                         const std::wstring& localName) const {
  *to++ = L'"';
  to = WideText::Copy(to, marker);
  if (!prefix.empty()) {
    to = PutName(to, prefix);
    *to++ = L':';
  }
  to = PutName(to, localName);
  *to++ = L'"';
  *to++ = L':';
  *to++ = L' ';
  return to;
}

// Keys and namespace URIs; like every text they end at a NUL.
wchar_t* CJsonTextWriter::PutName(wchar_t* to, const std::wstring& name) const {
  return m_strict ? PutEscapedShort(to, name) : WideText::CopyUpToNul(to, name);
}

void CJsonTextWriter::PutEscaped(std::wstring_view text) {
  text = UpToNul(text);
  while (!text.empty()) {
    const std::wstring_view piece = text.substr(0, kShortText);
    m_out.Commit(PutEscapedShort(m_out.Reserve(piece.size() * kLongestEscape), piece));
    text.remove_prefix(piece.size());
  }
}

// The text up to its first NUL; there is space for the longest escapes.
wchar_t* CJsonTextWriter::PutEscapedShort(wchar_t* to, std::wstring_view text) const {
  const __m128i quote = _mm_set1_epi8(m_strict ? '"' : 0);
  const __m128i backslash = _mm_set1_epi8(m_strict ? '\\' : 0);
  return WideText::CopyEscaped(
      to, text,
      [=](__m128i octets) {
        const __m128i control = _mm_cmplt_epi8(octets, _mm_set1_epi8(' '));
        const __m128i marks = _mm_or_si128(_mm_cmpeq_epi8(octets, quote), _mm_cmpeq_epi8(octets, backslash));
        return _mm_movemask_epi8(_mm_or_si128(control, marks)) != 0;
      },
      [this](wchar_t* at, wchar_t c) {
        const auto code = static_cast<std::uint32_t>(c);
        if (code > 31 && (!m_strict || (c != L'"' && c != L'\\'))) {
          *at++ = c;
          return at;
        }
        return PutEscape(at, code);
      });
}

wchar_t* CJsonTextWriter::PutEscape(wchar_t* to, std::uint32_t c) const {
  static constexpr wchar_t kHex[] = L"0123456789ABCDEF";
  static constexpr std::wstring_view kShort = L"\"\\\b\t\n\f\r";
  static constexpr std::wstring_view kLetters = L"\"\\btnfr";
  if (!m_strict) {
    if (c == L'\n') return WideText::Copy(to, m_eol);
    if (c == L'\r') return to;
    if (c == L'\b' || c == L'\t' || c == L'\f') {
      *to++ = static_cast<wchar_t>(c);
      return to;
    }
  }
  *to++ = L'\\';
  const std::size_t letter = kShort.find(static_cast<wchar_t>(c));
  if (letter != std::wstring_view::npos) {
    *to++ = kLetters[letter];
    return to;
  }
  const wchar_t code[] = {L'u', L'0', L'0', kHex[c >> 4], kHex[c & 15]};
  return WideText::Copy(to, std::wstring_view(code, 5));
}

void CJsonTextWriter::FlushWhenFull() {
  if (m_out.GetLength() >= kFlushLength) m_stream.Flush();
}

}  // namespace RkXmlLib16

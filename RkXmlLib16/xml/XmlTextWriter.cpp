// Writing XML text.
//
// The plain algorithm: WriteStartElement closes the start tag before it, indents, asks the writer base for the prefix
// of the namespace and writes "<name" with the declarations that are missing. The tag stays open for attributes until
// text, a child or the end of the element comes. The end writes "/>" if the tag is still open, else "</name>", indented
// if the element has children.
//
// What is added to that:
//   Space     A tag is written to space in the stream that was reserved for the longest it can become (kLongestEscape
//             for each character), and what it took is committed: one check for a tag, not one for each character.
//             Invariant: between Reserve and Commit nothing else writes to the stream.
//   Escaping  PutEscapedShort looks at sixteen characters at once. kMayBeSpecial says yes for each of those that are
//             escaped, and for a few others, which are looked at one by one. In long texts PutEscaped passes on whole
//             runs of sixteen that have none.
//   Names     RecordOutput keeps the tags and attributes of names of records as they are written, by the number of the
//             name, and writes an element with a short text at once, without a context. Invariant: a start tag is that
//             of its depth, all hold in their scope and for the present settings. Namespaces without a prefix in scope,
//             long texts and long names are written by the operations above it, with the same result.
//   Sections  Text that begins with "<![CDATA[" is taken for a finished section, unless m_escapesSections is set.
//   Flushing  Every operation ends by passing the text on once it exceeds kFlushLength.
//   Checks    m_checks, if there, refuses what a reader would not give back; it changes nothing in what is written.
#include "RkXmlLib16/xml/XmlTextWriter.h"

#include <emmintrin.h>

#include <iterator>
#include <memory>
#include <typeinfo>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/internal/NeverDestroyed.h"
#include "RkXmlLib16/base/internal/WideText.h"
#include "RkXmlLib16/document/internal/LineEnd.h"
#include "RkXmlLib16/document/internal/OutputChecks.h"
#include "RkXmlLib16/document/internal/RecordOutput.h"
#include "RkXmlLib16/document/internal/Section.h"
#include "RkXmlLib16/xml/internal/Markup.h"

namespace RkXmlLib16 {

namespace {

constexpr unsigned long kFlushLength = 4096;
constexpr std::size_t kShortText = 64;
constexpr std::size_t kLongestEscape = 6;  // of one character
const CNeverDestroyed<std::wstring> kNoPrefix;
const CNeverDestroyed<std::wstring> kLess(L"<");
const CNeverDestroyed<std::wstring> kNil(L"nil");
const CNeverDestroyed<std::wstring> kTrue(L"true");

// The text up to its first NUL.
std::wstring_view UpToNul(const std::wstring& text) { return text.c_str(); }

[[gnu::always_inline]] inline wchar_t* PutQName(wchar_t* to, const std::wstring& prefix,
                                                const std::wstring& localName) {
  if (!prefix.empty()) {
    to = WideText::CopyUpToNul(to, prefix);
    *to++ = L':';
  }
  return WideText::CopyUpToNul(to, localName);
}

// Whether some of sixteen characters may be special: below '?', but not a space or between '+' and ';'.
constexpr auto kMayBeSpecial = [](__m128i octets) {
  const __m128i letter = _mm_cmpgt_epi8(octets, _mm_set1_epi8('>'));
  const __m128i space = _mm_cmpeq_epi8(octets, _mm_set1_epi8(' '));
  const __m128i digit =
      _mm_and_si128(_mm_cmpgt_epi8(octets, _mm_set1_epi8('*')), _mm_cmplt_epi8(octets, _mm_set1_epi8('<')));
  return _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(letter, space), digit)) != 0xFFFF;
};

// The characters that escaping looks at, which are all below 64, as bits.
constexpr std::uint64_t MakeSet(std::wstring_view characters) {
  std::uint64_t set = 0;
  for (const wchar_t c : characters) set |= std::uint64_t{1} << c;
  return set;
}

constexpr std::uint64_t kSpecialInText = MakeSet(L"&<>\n\r");
constexpr std::uint64_t kSpecialInAttribute = MakeSet(L"&<>\n\r\"");
constexpr std::uint64_t kSpecialInNamespace = MakeSet(L"&<>\t\n\r\"");

}  // namespace

// What is made of the name of a record: tags for one depth, or all of an attribute but its value.
struct MadeMarkup {
  const std::wstring* prefix;
  std::int64_t depth;
  std::size_t indentation;
  CReadyText<48> start;  // the indentation and "<name"; of attributes " name=" and the quotation mark
  CReadyText<48> end;    // "</name>" and the line end
};

class RKXML_HIDDEN CXmlTextWriter::RecordOutput final
    : public CFormRecordOutput<CXmlTextWriter::RecordOutput, CXmlTextWriter, MadeMarkup> {
 public:
  using CFormRecordOutput::CFormRecordOutput;

  bool MakeElement(const CNameToken& name, Entry& entry);
  bool MakeAttribute(const CNameToken& name, Entry& entry);
  bool PutStart(const CNameToken& name, Entry& entry);
  bool PutText(const CNameToken& name, Entry& entry, std::wstring_view text, ItemType type, bool isCanonical);
  bool PutAttribute(const CNameToken& name, Entry& entry, std::wstring_view value, ItemType type, bool isCanonical);
  bool PutEnd();

 private:
  // Whether the tags are those of a child of the open element, or are now.
  bool HasTags(const CNameToken& name, MadeMarkup& made);
  bool MakeTags(const CNameToken& name, std::int64_t depth, MadeMarkup& made);
  // Space for what closes the start tag of the open element, which is written, and `count` characters more.
  wchar_t* BeginChild(std::size_t count);
};

bool CXmlTextWriter::RecordOutput::MakeElement(const CNameToken& name, Entry& entry) {
  entry.namespaceName = &m_writer.NameOf(name.GetNamespace());
  entry.made.prefix = m_writer.FindElementPrefix(*entry.namespaceName);
  entry.made.depth = 0;  // that of the root
  return entry.made.prefix != nullptr;
}

bool CXmlTextWriter::RecordOutput::MakeAttribute(const CNameToken& name, Entry& entry) {
  MadeMarkup& made = entry.made;
  const std::wstring& namespaceUri = name.GetNamespace();
  made.prefix = namespaceUri.empty() ? &kNoPrefix.Get() : m_writer.FindPrefixInScope(namespaceUri);
  if (made.prefix == nullptr || namespaceUri == XMLNS_NAMESPACE) return false;
  if (1 + made.prefix->size() + 1 + name.GetLocalName().size() + 2 > std::size(made.start.text)) return false;
  made.start.text[0] = L' ';
  wchar_t* to = PutQName(made.start.text + 1, *made.prefix, name.GetLocalName());
  *to++ = L'=';
  *to++ = L'"';
  made.start.length = static_cast<std::size_t>(to - made.start.text);
  return true;
}

inline bool CXmlTextWriter::RecordOutput::HasTags(const CNameToken& name, MadeMarkup& made) {
  const std::int64_t depth = m_writer.m_context->m_depth + 1;
  return made.depth == depth || MakeTags(name, depth, made);
}

bool CXmlTextWriter::RecordOutput::MakeTags(const CNameToken& name, std::int64_t depth, MadeMarkup& made) {
  const CXmlTextWriter& w = m_writer;
  const std::size_t length = made.prefix->size() + 1 + name.GetLocalName().size();
  if (w.IndentLength(depth) + 1 + length > std::size(made.start.text)) return false;
  if (2 + length + 1 + w.m_endOfLine.size() > std::size(made.end.text)) return false;
  made.depth = depth;
  wchar_t* to = w.PutIndent(made.start.text, depth);
  made.indentation = static_cast<std::size_t>(to - made.start.text);
  *to++ = L'<';
  made.start.length = static_cast<std::size_t>(PutQName(to, *made.prefix, name.GetLocalName()) - made.start.text);
  made.end.text[0] = L'<';
  made.end.text[1] = L'/';
  to = w.PutEndOfTag(PutQName(made.end.text + 2, *made.prefix, name.GetLocalName()));
  made.end.length = static_cast<std::size_t>(to - made.end.text);
  return true;
}

inline wchar_t* CXmlTextWriter::RecordOutput::BeginChild(std::size_t count) {
  CXmlWriterContext& parent = *m_writer.m_context;
  wchar_t* const to = m_writer.m_out.Reserve(1 + m_writer.m_endOfLine.size() + count);
  ++parent.m_childCount;
  if (!parent.m_startTagOpen) return to;
  parent.m_startTagOpen = false;
  return m_writer.PutEndOfTag(to);
}

[[gnu::always_inline]] inline bool CXmlTextWriter::RecordOutput::PutStart(const CNameToken& name, Entry& entry) {
  const MadeMarkup& made = entry.made;
  if (!HasTags(name, entry.made)) return false;
  wchar_t* const to = BeginChild(std::size(made.start.text));
  CXmlWriterContext& context = m_writer.PushContext(name, *entry.namespaceName);
  if (!made.prefix->empty()) context.m_prefix = *made.prefix;
  m_writer.m_out.Commit(made.start.CopyTo(to));
  m_writer.FlushIfDue();
  return true;
}

[[gnu::always_inline]] inline bool CXmlTextWriter::RecordOutput::PutText(const CNameToken& name, Entry& entry,
                                                                         std::wstring_view text, ItemType type,
                                                                         bool isCanonical) {
  const MadeMarkup& made = entry.made;
  if (text.size() > kShortText || StartsSection(text) || !HasTags(name, entry.made)) return false;
  wchar_t* to = BeginChild(std::size(made.start.text) + 2 + text.size() * kLongestEscape + std::size(made.end.text));
  to = made.start.CopyTo(to);
  if (text.empty() || text.front() == L'\0') {
    *to++ = L'/';
    to = m_writer.PutEndOfTag(to);
  } else {
    *to++ = L'>';
    const bool isClean = isCanonical && HasNothingToEscape(type);
    to = isClean ? WideText::Copy(to, text) : m_writer.PutEscapedShort(to, text, Escaping::Text);
    to = made.end.CopyTo(to);
  }
  m_writer.m_out.Commit(to);
  m_writer.FlushIfDue();
  return true;
}

[[gnu::always_inline]] inline bool CXmlTextWriter::RecordOutput::PutAttribute(const CNameToken&, Entry& entry,
                                                                              std::wstring_view value, ItemType type,
                                                                              bool isCanonical) {
  const MadeMarkup& made = entry.made;
  if (value.size() > kShortText || !m_writer.m_context->m_startTagOpen) return false;
  const Escaping where = m_writer.m_keepTabs ? Escaping::AttributeWithTabs : Escaping::Attribute;
  wchar_t* to = m_writer.m_out.Reserve(std::size(made.start.text) + value.size() * kLongestEscape + 1);
  to = made.start.CopyTo(to);
  const bool isClean = isCanonical && HasNothingToEscape(type);
  to = isClean ? WideText::Copy(to, value) : m_writer.PutEscapedShort(to, value, where);
  *to++ = L'"';
  m_writer.m_out.Commit(to);
  m_writer.FlushIfDue();
  return true;
}

[[gnu::always_inline]] inline bool CXmlTextWriter::RecordOutput::PutEnd() {
  const CXmlWriterContext& context = *m_writer.m_context;
  const Entry* const entry = FindElement(context.GetNameNumber());
  if (entry == nullptr || entry->made.depth != context.m_depth || context.m_startTagOpen) return false;
  const MadeMarkup& made = entry->made;
  wchar_t* to = m_writer.m_out.Reserve(std::size(made.start.text) + std::size(made.end.text));
  if (context.m_childCount != 0) {
    made.start.CopyTo(to);
    to += made.indentation;
  }
  m_writer.m_out.Commit(made.end.CopyTo(to));
  m_writer.CloseContext();
  m_writer.FlushIfDue();
  return true;
}

CXmlTextWriter::CXmlTextWriter(CTextStream& stream) : m_stream(stream), m_out(stream.GetBuffer()) {
  SetRecordOutput<CXmlTextWriter, RecordOutput>();
}

CXmlTextWriter::~CXmlTextWriter() = default;

void CXmlTextWriter::SetWellFormedOutput(bool refuse) {
  SetChecks(refuse ? std::make_unique<OutputChecks>(OutputChecks::Form::Xml) : nullptr);
  m_keepTabs = refuse;
}

void CXmlTextWriter::SetFormat(bool format) noexcept {
  m_format = format;
  ForgetNames();
}

void CXmlTextWriter::SetIndentChars(const wchar_t* text) {
  m_indentChars = text != nullptr ? text : L"";
  ForgetNames();
}

void CXmlTextWriter::SetEOLType(EOLType type) {
  m_endOfLine = LineEnd(type);
  m_eolType = type;
  ForgetNames();
}

void CXmlTextWriter::Open() {
  CXmlWriter::Open();
  m_stream.Open();
}

void CXmlTextWriter::Close() {
  m_stream.Close();
  CXmlWriter::Close();
}

void CXmlTextWriter::WriteStartDocument() {
  Put(L"<?xml version=\"1.0\"");
  if (m_stream.GetEncoding() == XmlEncoding_UTF8) Put(L" encoding=\"UTF-8\"");
  if (m_stream.GetEncoding() == XmlEncoding_UTF16) Put(L" encoding=\"UTF-16\"");
  Put(L"?>");
  Put(m_endOfLine);
  FlushIfDue();
}

void CXmlTextWriter::WriteHeaderDirective(const std::wstring& text) {
  if (m_context != nullptr) throw CRkException(L"Headed directives must appear before an Element has been added.");
  if (m_checks != nullptr && !IsWellFormedProlog(text)) OutputChecks::Refuse(L"header directive", text);
  Put(UpToNul(text));
  Put(m_endOfLine);
  FlushIfDue();
}

void CXmlTextWriter::WriteRawElement(const std::wstring& text) {
  if (m_checks != nullptr && !IsWellFormedContent(text)) OutputChecks::Refuse(L"element", text);
  Put(UpToNul(text));
  if (m_format) Put(m_endOfLine);
  FlushIfDue();
}

void CXmlTextWriter::WriteComment(const std::wstring& text) {
  if (m_checks != nullptr) m_checks->Comment(text);
  Put(L"<!--");
  PutEscaped(UpToNul(text), Escaping::Text);
  Put(L"-->");
  Put(m_endOfLine);
  FlushIfDue();
}

void CXmlTextWriter::WritePI(const std::wstring& text) {
  if (m_checks != nullptr) m_checks->ProcessingInstruction(text);
  Put(UpToNul(text));
  Put(m_endOfLine);
  Put(m_endOfLine);
  FlushIfDue();
}

void CXmlTextWriter::WriteInlineSchema(const std::wstring& schemaText) {
  if (m_checks != nullptr && !IsWellFormedContent(schemaText)) OutputChecks::Refuse(L"schema", schemaText);
  CloseStartTag();
  Put(L" ");
  Put(m_endOfLine);
  Put(UpToNul(schemaText));
  Put(m_endOfLine);
  FlushIfDue();
}

void CXmlTextWriter::WriteStartElement(const std::wstring& localName, const std::wstring& namespaceUri) {
  const bool isRoot = m_context == nullptr;
  const bool closesTag = !isRoot && m_context->m_startTagOpen;
  if (!isRoot) {
    ++m_context->m_childCount;
    m_context->m_startTagOpen = false;
  }
  CXmlWriterContext& context = PushContext(localName, namespaceUri);
  const std::wstring* const known = FindElementPrefix(*context.GetName());
  const bool invented = known == nullptr;
  if (invented)
    context.m_prefix = context.InventPrefix(namespaceUri);
  else if (!known->empty())
    context.m_prefix = *known;
  if (m_checks != nullptr && !context.m_prefix.empty()) m_checks->Declaration(context.m_prefix, namespaceUri);

  wchar_t* to = m_out.Reserve(1 + m_endOfLine.size() + IndentLength(context.m_depth) + 1 + context.m_prefix.size() + 1 +
                              localName.size());
  if (closesTag) to = PutEndOfTag(to);
  to = PutIndent(to, context.m_depth);
  *to++ = L'<';
  m_out.Commit(PutQName(to, context.m_prefix, localName));

  if (invented) {
    Put(L" ");
    PutDeclaration(context.m_prefix, namespaceUri);
  }
  if (isRoot) PutRootDeclarations();
  FlushIfDue();
}

void CXmlTextWriter::PutRootDeclarations() {
  if (!m_context->GetDefaultNamespace().empty()) {
    Put(L" ");
    PutDeclaration({}, m_context->GetDefaultNamespace());
  }
  for (const auto& [uri, prefix] : m_namespaces) {
    if (uri == XML_NAMESPACE || prefix.empty()) continue;
    Put(L" ");
    PutDeclaration(prefix, uri);
  }
}

void CXmlTextWriter::WriteString(const std::wstring& text, ItemType) {
  if (m_checks != nullptr) {
    m_checks->Text(text);
    if (!m_escapesSections && StartsSection(text)) m_checks->Section(text);
  }
  WriteText(UpToNul(text));
}

void CXmlTextWriter::WriteData(const std::wstring& text) {
  if (!StartsSection(text)) return WriteString(text, ItemType_string);
  WriteString(kLess.Get(), ItemType_string);
  WriteString(text.substr(kLess.Get().size()), ItemType_string);
}

void CXmlTextWriter::WriteSection(const std::wstring& section) {
  const bool escapes = std::exchange(m_escapesSections, false);
  WriteString(section, ItemType_string);
  m_escapesSections = escapes;
}

void CXmlTextWriter::WriteText(std::wstring_view text) {
  if (text.empty()) return;
  if (m_context == nullptr) throw CRkException(L"Text must be written inside an Element.");
  CloseStartTag();
  if (!m_escapesSections && StartsSection(text))
    Put(text);
  else
    PutEscaped(text, Escaping::Text);
  FlushIfDue();
}

void CXmlTextWriter::WriteEndElement() {
  if (m_context == nullptr) throw CRkException(L"There is no open Element to end.");
  const CXmlWriterContext& context = *m_context;
  const std::wstring& localName = context.m_localName.Get();
  wchar_t* to = m_out.Reserve(IndentLength(context.m_depth) + 3 + context.m_prefix.size() + 1 + localName.size() +
                              m_endOfLine.size());
  if (context.m_startTagOpen) {
    *to++ = L'/';
  } else {
    if (context.m_childCount != 0) to = PutIndent(to, context.m_depth);
    *to++ = L'<';
    *to++ = L'/';
    to = PutQName(to, context.m_prefix, localName);
  }
  m_out.Commit(PutEndOfTag(to));
  CloseContext();
  FlushIfDue();
}

std::size_t CXmlTextWriter::IndentLength(std::int64_t depth) const {
  return m_format ? m_indentChars.size() * static_cast<std::size_t>(depth) : 0;
}

inline wchar_t* CXmlTextWriter::PutIndent(wchar_t* to, std::int64_t depth) const {
  return m_format ? WideText::Repeat(to, m_indentChars, static_cast<std::size_t>(depth)) : to;
}

// What closes a tag that other lines follow.
inline wchar_t* CXmlTextWriter::PutEndOfTag(wchar_t* to) const {
  *to++ = L'>';
  return m_format ? WideText::Copy(to, m_endOfLine) : to;
}

void CXmlTextWriter::WriteAttributeString(const std::wstring& localName, const std::wstring& namespaceUri,
                                          const std::wstring& value, ItemType) {
  WriteAttribute(localName, namespaceUri, std::wstring_view(value));
}

void CXmlTextWriter::WriteAttribute(const std::wstring& localName, const std::wstring& namespaceUri,
                                    std::wstring_view value) {
  RequireStartTag();
  if (m_checks != nullptr) m_checks->Attribute(localName, namespaceUri, value);
  const std::wstring* prefix = &kNoPrefix.Get();
  if (!namespaceUri.empty()) {
    bool invented = false;
    prefix = &RequirePrefix(namespaceUri, invented);
    if (invented) {
      Put(L" ");
      PutDeclaration(*prefix, namespaceUri);
    }
  }
  const Escaping where = namespaceUri == XMLNS_NAMESPACE ? Escaping::Namespace
                         : m_keepTabs                    ? Escaping::AttributeWithTabs
                                                         : Escaping::Attribute;
  const bool isShort = value.size() <= kShortText;
  wchar_t* to =
      m_out.Reserve(1 + prefix->size() + 1 + localName.size() + 3 + (isShort ? value.size() * kLongestEscape : 0));
  *to++ = L' ';
  to = PutQName(to, *prefix, localName);
  *to++ = L'=';
  *to++ = L'"';
  if (isShort) {
    to = PutEscapedShort(to, value, where);
  } else {
    m_out.Commit(to);
    PutEscaped(value, where);
    to = m_out.Reserve(1);
  }
  *to++ = L'"';
  m_out.Commit(to);
  FlushIfDue();
}

void CXmlTextWriter::WriteDeclaration(std::wstring_view prefix, std::wstring_view namespaceUri) {
  RequireStartTag();
  if (m_checks != nullptr && !prefix.empty()) m_checks->Declaration(prefix, namespaceUri);
  Put(L" ");
  PutDeclaration(prefix, namespaceUri);
  FlushIfDue();
}

void CXmlTextWriter::WriteAttributeType(const std::wstring& typeNamespaceUri, const std::wstring& typeName,
                                        ItemType type) {
  RequireStartTag();
  if (m_checks != nullptr) m_checks->TypeName(typeName);
  std::wstring value = typeName;
  if (!typeNamespaceUri.empty() && !m_context->IsDefaultNamespace(typeNamespaceUri)) {
    bool invented = false;
    const std::wstring& prefix = RequirePrefix(typeNamespaceUri, invented);
    if (invented) {
      Put(L" ");
      PutDeclaration(prefix, typeNamespaceUri);
      Put(L" ");
    }
    value = prefix + L':' + typeName;
  }
  WriteAttributeString(L"type", XSI_NAMESPACE, value, type);
}

void CXmlTextWriter::WriteAttributeNil() {
  WriteAttributeString(kNil.Get(), XSI_NAMESPACE, kTrue.Get(), ItemType_boolean);
}

void CXmlTextWriter::PutEscaped(std::wstring_view text, Escaping where) {
  text = text.substr(0, text.find(L'\0'));
  // Short pieces take the space they could need; of long ones the clean runs go out whole.
  while (text.size() > kShortText) {
    std::size_t clean = 0;
    const wchar_t* const from = text.data();
    while (clean + 16 <= text.size() && !kMayBeSpecial(WideText::PackSixteen(from + clean, from + clean + 8)))
      clean += 16;
    Put(text.substr(0, clean));
    text.remove_prefix(clean);
    const std::wstring_view piece = text.substr(0, clean != 0 ? 16 : kShortText);
    m_out.Commit(PutEscapedShort(m_out.Reserve(piece.size() * kLongestEscape), piece, where));
    text.remove_prefix(piece.size());
  }
  m_out.Commit(PutEscapedShort(m_out.Reserve(text.size() * kLongestEscape), text, where));
}

// The text up to its first NUL; there is space for the longest escapes.
wchar_t* CXmlTextWriter::PutEscapedShort(wchar_t* to, std::wstring_view text, Escaping where) const {
  static constexpr std::uint64_t kSpecial[] = {kSpecialInText, kSpecialInAttribute, kSpecialInNamespace,
                                               kSpecialInNamespace};
  const std::uint64_t special = kSpecial[static_cast<int>(where)];
  return WideText::CopyEscaped(to, text, kMayBeSpecial, [this, special, where](wchar_t* at, wchar_t c) {
    const auto code = static_cast<std::uint32_t>(c);
    if (code < 64 && (special >> code & 1) != 0) return PutEscape(at, c, where);
    *at++ = c;
    return at;
  });
}

wchar_t* CXmlTextWriter::PutEscape(wchar_t* to, wchar_t c, Escaping where) const {
  const auto put = [to](std::wstring_view text) { return WideText::Copy(to, text); };
  switch (c) {
    case L'&':
      return put(L"&amp;");
    case L'<':
      return put(L"&lt;");
    case L'>':
      return put(L"&gt;");
    case L'"':
      return put(L"&quot;");
    case L'\n':
      return put(where == Escaping::Text ? std::wstring_view(m_endOfLine) : std::wstring_view(L"&#xA;"));
    case L'\t':
      return put(where == Escaping::Namespace ? std::wstring_view(L"&#x9;") : std::wstring_view(L"&#9;"));
    default:  // carriage returns, which text and values lose
      return where == Escaping::Namespace ? put(L"&#xD;") : to;
  }
}

// xmlns:prefix="uri", or xmlns="uri" without a prefix.
void CXmlTextWriter::PutDeclaration(std::wstring_view prefix, std::wstring_view namespaceUri) {
  Put(L"xmlns");
  if (!prefix.empty()) {
    Put(L":");
    Put(prefix);
  }
  Put(L"=\"");
  PutEscaped(namespaceUri, Escaping::Namespace);
  Put(L"\"");
}

void CXmlTextWriter::CloseStartTag() {
  if (m_context == nullptr || !m_context->m_startTagOpen) return;
  m_context->m_startTagOpen = false;
  Put(L">");
}

void CXmlTextWriter::RequireStartTag() const {
  if (m_context == nullptr || !m_context->m_startTagOpen)
    throw CRkException(L"Attributes must be added before elements");
}

void CXmlTextWriter::FlushIfDue() {
  if (m_out.GetLength() >= kFlushLength) m_stream.Flush();
}

}  // namespace RkXmlLib16

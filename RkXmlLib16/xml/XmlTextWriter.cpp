#include "RkXmlLib16/xml/XmlTextWriter.h"

#include <cstddef>
#include <cstdint>

#include "RkXmlLib16/core/Exception.h"

namespace RkXmlLib16 {

namespace {

constexpr unsigned long kFlushLength = 4096;
constexpr std::size_t kShortText = 64;
constexpr std::wstring_view kCDataStart = L"<![CDATA[";

// The text up to its first NUL.
std::wstring_view UpToNul(const std::wstring& text) { return text.c_str(); }

// The characters that escaping looks at, which are all below 64, as bits.
constexpr std::uint64_t MakeSet(std::wstring_view characters) {
  std::uint64_t set = 0;
  for (const wchar_t c : characters) set |= std::uint64_t{1} << c;
  return set;
}

constexpr std::uint64_t kSpecialInText = MakeSet(L"&<>\n\r");
constexpr std::uint64_t kSpecialInAttribute = MakeSet(L"&<>\n\r\"");

}  // namespace

CXmlTextWriter::CXmlTextWriter(CTextStream& stream) : m_stream(stream) {}

CXmlTextWriter::~CXmlTextWriter() = default;

void CXmlTextWriter::SetIndentChars(const wchar_t* text) { m_indentChars = text != nullptr ? text : L""; }

void CXmlTextWriter::SetEOLType(EOLType type) {
  if (type != EOLType_CRLF && type != EOLType_LF) throw CRkException(L"Invalid EOL type.");
  m_endOfLine = type == EOLType_CRLF ? L"\r\n" : L"\n";
  m_eolType = type;
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
  Put(UpToNul(text));
  Put(m_endOfLine);
  FlushIfDue();
}

void CXmlTextWriter::WriteRawElement(const std::wstring& text) {
  Put(UpToNul(text));
  if (m_format) Put(m_endOfLine);
  FlushIfDue();
}

void CXmlTextWriter::WriteComment(const std::wstring& text) {
  Put(L"<!--");
  PutEscaped(UpToNul(text), Escaping::Text);
  Put(L"-->");
  Put(m_endOfLine);
  FlushIfDue();
}

void CXmlTextWriter::WritePI(const std::wstring& text) {
  Put(UpToNul(text));
  Put(m_endOfLine);
  Put(m_endOfLine);
  FlushIfDue();
}

void CXmlTextWriter::WriteInlineSchema(const std::wstring& schemaText) {
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
  bool invented = false;
  if (!namespaceUri.empty() && namespaceUri != context.GetDefaultNamespace())
    context.m_prefix = RequirePrefix(namespaceUri, invented);

  const std::wstring_view name = UpToNul(localName);
  wchar_t* to =
      m_stream.Reserve(1 + m_endOfLine.size() + IndentLength() + 1 + context.m_prefix.size() + 1 + name.size());
  if (closesTag) {
    *to++ = L'>';
    if (m_format) to = CStringBuffer::Copy(to, m_endOfLine);
  }
  to = Indent(to);
  *to++ = L'<';
  m_stream.Commit(CStringBuffer::Copy(Prefix(to), name));

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

void CXmlTextWriter::WriteString(const std::wstring& text, ItemType) { WriteText(UpToNul(text)); }

void CXmlTextWriter::WriteText(std::wstring_view text) {
  if (text.empty()) return;
  if (m_context == nullptr) throw CRkException(L"Text must be written inside an Element.");
  CloseStartTag();
  if (text.substr(0, kCDataStart.size()) == kCDataStart)
    Put(text);
  else
    PutEscaped(text, Escaping::Text);
  FlushIfDue();
}

void CXmlTextWriter::WriteEndElement() {
  if (m_context == nullptr) throw CRkException(L"There is no open Element to end.");
  const CXmlWriterContext& context = *m_context;
  const std::wstring_view name = UpToNul(context.m_localName);
  wchar_t* to = m_stream.Reserve(IndentLength() + 3 + context.m_prefix.size() + 1 + name.size() + m_endOfLine.size());
  if (context.m_startTagOpen) {
    *to++ = L'/';
  } else {
    if (context.m_childCount != 0) to = Indent(to);
    *to++ = L'<';
    *to++ = L'/';
    to = CStringBuffer::Copy(Prefix(to), name);
  }
  *to++ = L'>';
  if (m_format) to = CStringBuffer::Copy(to, m_endOfLine);
  m_stream.Commit(to);
  PopContext();
  FlushIfDue();
}

std::size_t CXmlTextWriter::IndentLength() const {
  return m_indentChars.size() * static_cast<std::size_t>(m_context->m_depth);
}

// The indentation of the open element.
wchar_t* CXmlTextWriter::Indent(wchar_t* to) const {
  if (!m_format) return to;
  for (std::int64_t depth = m_context->m_depth; depth > 0; --depth) to = CStringBuffer::Copy(to, m_indentChars);
  return to;
}

// The prefix of the open element and its colon.
wchar_t* CXmlTextWriter::Prefix(wchar_t* to) const {
  if (m_context->m_prefix.empty()) return to;
  to = CStringBuffer::Copy(to, m_context->m_prefix);
  *to++ = L':';
  return to;
}

void CXmlTextWriter::WriteAttributeString(const std::wstring& localName, const std::wstring& namespaceUri,
                                          const std::wstring& value, ItemType) {
  WriteAttribute(localName, namespaceUri, UpToNul(value));
}

void CXmlTextWriter::WriteAttribute(const std::wstring& localName, const std::wstring& namespaceUri,
                                    std::wstring_view value) {
  RequireStartTag();
  Put(L" ");
  if (!namespaceUri.empty()) {
    bool invented = false;
    const std::wstring& prefix = RequirePrefix(namespaceUri, invented);
    if (invented) {
      PutDeclaration(prefix, namespaceUri);
      Put(L" ");
    }
    Put(prefix);
    Put(L":");
  }
  Put(UpToNul(localName));
  Put(L"=\"");
  PutEscaped(value, Escaping::Attribute);
  m_stream.Append(L'"');
  FlushIfDue();
}

void CXmlTextWriter::WriteAttributeType(const std::wstring& typeNamespaceUri, const std::wstring& typeName,
                                        ItemType type) {
  RequireStartTag();
  std::wstring value = typeName;
  if (!typeNamespaceUri.empty() && typeNamespaceUri != m_context->GetDefaultNamespace()) {
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
  static const std::wstring name = L"nil";
  WriteAttribute(name, XSI_NAMESPACE, L"true");
}

void CXmlTextWriter::PutEscaped(std::wstring_view text, Escaping where) {
  const std::uint64_t special = where == Escaping::Attribute ? kSpecialInAttribute : kSpecialInText;
  const auto isSpecial = [special](wchar_t c) {
    const auto code = static_cast<std::uint32_t>(c);
    return code < 64 && (special >> code & 1) != 0;
  };
  if (text.size() <= kShortText) {
    wchar_t* to = m_stream.Reserve(text.size() * kLongestEscape);
    for (const wchar_t c : text) {
      if (isSpecial(c))
        to = PutEscape(to, c, where);
      else
        *to++ = c;
    }
    return m_stream.Commit(to);
  }
  // Clean runs go out whole.
  const wchar_t* run = text.data();
  const wchar_t* const end = run + text.size();
  for (const wchar_t* at = run; at != end; ++at) {
    if (!isSpecial(*at)) continue;
    Put({run, static_cast<std::size_t>(at - run)});
    run = at + 1;
    m_stream.Commit(PutEscape(m_stream.Reserve(kLongestEscape), *at, where));
  }
  Put({run, static_cast<std::size_t>(end - run)});
}

wchar_t* CXmlTextWriter::PutEscape(wchar_t* to, wchar_t c, Escaping where) const {
  const auto put = [to](std::wstring_view text) { return CStringBuffer::Copy(to, text); };
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
      return put(where == Escaping::Attribute ? std::wstring_view(L"&#xA;") : std::wstring_view(m_endOfLine));
    default:  // carriage returns are dropped
      return to;
  }
}

// xmlns:prefix="uri", or xmlns="uri" without a prefix.
void CXmlTextWriter::PutDeclaration(std::wstring_view prefix, const std::wstring& namespaceUri) {
  Put(L"xmlns");
  if (!prefix.empty()) {
    Put(L":");
    Put(prefix);
  }
  Put(L"=\"");
  PutEscaped(UpToNul(namespaceUri), Escaping::Attribute);
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
  if (m_stream.GetLength() >= kFlushLength) m_stream.Flush();
}

}  // namespace RkXmlLib16

#include "RkXmlLib16/xml/XmlTextWriter.h"

#include <array>
#include <cstddef>

#include "RkXmlLib16/core/Exception.h"

namespace RkXmlLib16 {

namespace {

constexpr unsigned long kFlushLength = 4096;
constexpr std::wstring_view kCDataStart = L"<![CDATA[";

// The text up to its first NUL.
std::wstring_view UpToNul(const std::wstring& text) { return text.c_str(); }

struct CharTable {
  std::array<bool, 64> special{};
};

// The characters that escaping looks at; all are below 64.
constexpr CharTable MakeTable(bool attribute) {
  CharTable table;
  for (const wchar_t c : {L'&', L'<', L'>', L'\n', L'\r'}) table.special[static_cast<std::size_t>(c)] = true;
  table.special[static_cast<std::size_t>(L'"')] = attribute;
  return table;
}

constexpr CharTable kTextTable = MakeTable(false);
constexpr CharTable kAttributeTable = MakeTable(true);

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
  if (!isRoot) {
    ++m_context->m_childCount;
    if (m_context->m_startTagOpen) {
      CloseStartTag();
      if (m_format) Put(m_endOfLine);
    }
  }
  CXmlWriterContext& context = PushContext(localName, namespaceUri);
  if (m_format) PutIndent(context.m_depth);
  Put(L"<");
  bool invented = false;
  if (!namespaceUri.empty() && namespaceUri != context.GetDefaultNamespace()) {
    context.m_prefix = RequirePrefix(namespaceUri, invented);
    Put(context.m_prefix);
    Put(L":");
  }
  Put(UpToNul(localName));
  if (invented) {
    Put(L" ");
    PutDeclaration(context.m_prefix, namespaceUri);
  }
  if (isRoot) {
    if (!context.GetDefaultNamespace().empty()) {
      Put(L" ");
      PutDeclaration({}, context.GetDefaultNamespace());
    }
    for (const auto& [uri, prefix] : m_namespaces) {
      if (uri == XML_NAMESPACE || prefix.empty()) continue;
      Put(L" ");
      PutDeclaration(prefix, uri);
    }
  }
  FlushIfDue();
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
  if (context.m_startTagOpen) {
    Put(L"/>");
  } else {
    if (m_format && context.m_childCount != 0) PutIndent(context.m_depth);
    Put(L"</");
    if (!context.m_prefix.empty()) {
      Put(context.m_prefix);
      Put(L":");
    }
    Put(UpToNul(context.m_localName));
    Put(L">");
  }
  if (m_format) Put(m_endOfLine);
  PopContext();
  FlushIfDue();
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
  Put(L"\"");
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

// Clean runs go out whole.
void CXmlTextWriter::PutEscaped(std::wstring_view text, Escaping where) {
  const CharTable& table = where == Escaping::Attribute ? kAttributeTable : kTextTable;
  const wchar_t* run = text.data();
  const wchar_t* const end = run + text.size();
  for (const wchar_t* at = run; at != end; ++at) {
    const auto c = static_cast<std::uint32_t>(*at);
    if (c >= table.special.size() || !table.special[c]) continue;
    Put({run, static_cast<std::size_t>(at - run)});
    run = at + 1;
    switch (*at) {
      case L'&':
        Put(L"&amp;");
        break;
      case L'<':
        Put(L"&lt;");
        break;
      case L'>':
        Put(L"&gt;");
        break;
      case L'"':
        Put(L"&quot;");
        break;
      case L'\n':
        Put(where == Escaping::Attribute ? std::wstring_view(L"&#xA;") : std::wstring_view(m_endOfLine));
        break;
      default:  // carriage returns are dropped
        break;
    }
  }
  Put({run, static_cast<std::size_t>(end - run)});
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

void CXmlTextWriter::PutIndent(std::int64_t depth) {
  for (; depth > 0; --depth) Put(m_indentChars);
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

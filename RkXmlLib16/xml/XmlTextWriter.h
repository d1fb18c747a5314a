#ifndef RKXMLLIB16_XML_XMLTEXTWRITER_H
#define RKXMLLIB16_XML_XMLTEXTWRITER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/io/TextStream.h"

namespace RkXmlLib16 {

// Writes XML text (W3C XML 1.0, Namespaces in XML 1.0) to a text stream. Formatted, which is the default, each element
// stands on a line of its own, indented by its depth. Texts end at their first NUL.
//
//   CTextStream stream(XmlEncoding_UTF8);
//   CXmlTextWriter writer(stream);
//   writer.Open();
//   writer.WriteStartDocument();
//   writer.WriteStartElement(L"order", L"");
//   writer.WriteString(L"7 < 8", ItemType_string);
//   writer.WriteEndElement();
//   writer.Close();  // <?xml version="1.0" encoding="UTF-8"?> and <order>7 &lt; 8</order>, each on its line
class RKXML_EXPORT CXmlTextWriter : public CXmlWriter {
 public:
  explicit CXmlTextWriter(CTextStream& stream);  // kept
  ~CXmlTextWriter() override;

  // Whether elements are put on lines of their own.
  bool GetFormat() const noexcept { return m_format; }
  void SetFormat(bool format) noexcept;
  // Written once per level of depth; one tab at first. Null is an empty text.
  const std::wstring& GetIndentChars() const noexcept { return m_indentChars; }
  void SetIndentChars(const wchar_t* text);
  // The end of each line and of the lines inside text. Throws CRkException "Invalid EOL type.".
  EOLType GetEOLType() const noexcept { return m_eolType; }
  void SetEOLType(EOLType type);
  // Whether text that begins with "<![CDATA[" is escaped too. Off at first: such text is taken for a finished section.
  bool GetEscapesSections() const noexcept { return m_escapesSections; }
  void SetEscapesSections(bool escapes) noexcept { m_escapesSections = escapes; }

  // Refuse what a reader would not give back as it was, with CRkException "Refused to write ..."; tabs of attributes
  // become character references. Off at first. See CSerializationContext::SetWellFormedOutput.
  void SetWellFormedOutput(bool refuse);
  // Tabs of attributes become character references, which readers give back, without refusing anything. Off at first.
  void SetKeepTabs(bool keep) noexcept { m_keepTabs = keep; }

  // The XML declaration, naming the stream's encoding when that is UTF-8 or UTF-16.
  void WriteStartDocument();
  // A line outside the root element, unchanged: a document type declaration or a stylesheet instruction. Throws
  // CRkException "Headed directives must appear before an Element has been added." while an element is open.
  void WriteHeaderDirective(const std::wstring& text);
  // Text that is XML already: neither escaped nor indented, and an open start tag stays open.
  void WriteRawElement(const std::wstring& text);

  void Open() override;
  void Close() override;
  void WriteComment(const std::wstring& text) override;
  void WritePI(const std::wstring& text) override;
  void WriteInlineSchema(const std::wstring& schemaText) override;
  void WriteStartElement(const std::wstring& localName, const std::wstring& namespaceUri) override;
  // Text that begins with "<![CDATA[" is written unchanged unless SetEscapesSections says otherwise, any other is
  // escaped. Without an open element a text that is not empty throws CRkException.
  void WriteString(const std::wstring& text, ItemType type) override;
  // Throws CRkException when no element is open.
  void WriteEndElement() override;
  void WriteAttributeString(const std::wstring& localName, const std::wstring& namespaceUri, const std::wstring& value,
                            ItemType type) override;
  void WriteAttributeType(const std::wstring& typeNamespaceUri, const std::wstring& typeName, ItemType type) override;
  void WriteAttributeNil() override;

  // Two ways to write text by WriteString: as data, in two pieces where one would be taken for a section, and as the
  // finished section that it is.
  void WriteData(const std::wstring& text);
  void WriteSection(const std::wstring& section);

  // The same for text that is at hand without a string; it must not hold NUL.
  void WriteText(std::wstring_view text);
  void WriteAttribute(const std::wstring& localName, const std::wstring& namespaceUri, std::wstring_view value);
  // Writes xmlns:prefix="uri" onto the open start tag, or xmlns="uri" without a prefix; the scope does not change.
  void WriteDeclaration(std::wstring_view prefix, std::wstring_view namespaceUri);

 private:
  class RecordOutput;
  enum class Escaping { Text, Attribute, Namespace, AttributeWithTabs };

  void Put(std::wstring_view text) { m_out.Append(text); }
  void PutEscaped(std::wstring_view text, Escaping where);
  void PutDeclaration(std::wstring_view prefix, std::wstring_view namespaceUri);
  void PutRootDeclarations();
  std::size_t IndentLength(std::int64_t depth) const;
  // Write to `to` and return the end.
  wchar_t* PutIndent(wchar_t* to, std::int64_t depth) const;
  wchar_t* PutEndOfTag(wchar_t* to) const;
  wchar_t* PutEscapedShort(wchar_t* to, std::wstring_view text, Escaping where) const;
  wchar_t* PutEscape(wchar_t* to, wchar_t c, Escaping where) const;
  void CloseStartTag();
  void RequireStartTag() const;
  void FlushIfDue();

  std::wstring m_indentChars = L"\t";
  std::wstring m_endOfLine = L"\n";
  EOLType m_eolType = EOLType_LF;
  bool m_format = true;
  bool m_keepTabs = false;
  bool m_escapesSections = false;
  CTextStream& m_stream;
  CStringBuffer& m_out;  // that of the stream
};

}  // namespace RkXmlLib16

#endif

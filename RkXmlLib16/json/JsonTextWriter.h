#ifndef RKXMLLIB16_JSON_JSONTEXTWRITER_H
#define RKXMLLIB16_JSON_JSONTEXTWRITER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/io/TextStream.h"

namespace RkXmlLib16 {

// The writer that turns the calls of CXmlWriter into JSON text. Every element is a member of its parent's object;
// attributes and text are members with marker keys; the items of a collection of objects are one array; in the fullest
// round-trip mode namespaces are prefixes and "@xmlns" members. CJsonTextReader reads the same shapes.
//
//   <order id="1"><name>x</name></order>   is   {"order": {"@id": "1","name": "x"}}
//
// Strings are written with quotation marks, backslashes, tabs and line feeds as they are, and an element with nothing
// in it is a key without value, unless the output is strict: then the text is RFC 8259 whatever the document holds, and
// with markers the items of every collection are an array, those with only text as {"#text": value}.
// docs/json.md shows all shapes.
class RKXML_EXPORT CJsonTextWriter : public CXmlWriter {
 public:
  // `stream` is kept: it must outlive the writer.
  explicit CJsonTextWriter(CTextStream& stream);
  ~CJsonTextWriter() override;

  // Indentation and line ends; on at first.
  bool GetFormat() const noexcept { return m_format; }
  void SetFormat(bool format) noexcept;
  // One tab at first. Null is an empty text.
  const std::wstring& GetIndentChars() const noexcept { return m_indentChars; }
  void SetIndentChars(const wchar_t* text);
  // LF at first. Throws CRkException "Invalid EOL type." and keeps the old one.
  EOLType GetEOLType() const noexcept { return m_eolType; }
  void SetEOLType(EOLType type);
  // Namespaces at first.
  JsonRoundTrip GetSupportRoundtrip() const noexcept { return m_roundTrip; }
  void SetSupportRoundtrip(JsonRoundTrip mode) noexcept;
  // RFC 8259 text always; off at first. See CJsonContext::SetStrictOutput.
  bool GetStrictOutput() const noexcept { return m_strict; }
  void SetStrictOutput(bool strict) noexcept;
  // Refuse what a reader would not give back as it was, with CRkException "Refused to write ...". Off at first. See
  // CSerializationContext::SetWellFormedOutput.
  void SetWellFormedOutput(bool refuse);

  // The braces of the document, an object whose one member is the root element.
  void WriteStartDocument();
  void WriteEndDocument();
  // The indent characters `level` times; nothing for a negative level.
  void WriteIndent(int level);
  // Prepares for a member of `context`, which is the open element: the first opens the object (and, when it is the
  // first item of a collection, the array), each further one is separated by a comma.
  void WriteOpenBrackets(CXmlWriterContext& context);
  // Numbers and booleans (by type, not by text) without quotes, everything else as a string.
  void WriteValue(const std::wstring& text, ItemType type);

  void Open() override;
  void Close() override;
  // "/* text */", which only readers that allow comments accept; nothing when the output is strict.
  void WriteComment(const std::wstring& text) override;
  // JSON has neither; they write nothing.
  void WritePI(const std::wstring& text) override;
  void WriteInlineSchema(const std::wstring& schemaText) override;
  // With namespaces: throws CRkException "Unknown Namespace: %ls." for a namespace without a prefix in scope, except on
  // the root element, which invents one.
  void WriteStartElement(const std::wstring& localName, const std::wstring& namespaceUri) override;
  void WriteString(const std::wstring& text, ItemType type) override;
  void WriteEndElement() override;
  // With namespaces: throws CRkException "Unknown Namespace: %ls." for a namespace without a prefix in scope.
  void WriteAttributeString(const std::wstring& localName, const std::wstring& namespaceUri, const std::wstring& value,
                            ItemType type) override;
  // Written with namespaces only.
  void WriteAttributeType(const std::wstring& typeNamespaceUri, const std::wstring& typeName, ItemType type) override;
  // Written with namespaces and strict output only.
  void WriteAttributeNil() override;

 private:
  class RecordOutput;
  // What an open element needs besides its context; `m_frames` runs parallel to the chain of contexts.
  struct Frame {
    bool arrayItem = false;  // stands in an array that was open before it
    bool arrayOpen = false;  // an array of this element's children is open
    CSharedName arrayName;   // the name of its items
    const CNamespaceName* arrayNamespace = nullptr;
  };

  Frame& Top() { return m_frames[m_frameCount - 1]; }
  Frame& Owner() { return m_frames[m_frameCount - 2]; }
  template <class Namespace>
  bool ContinuesArray(const std::wstring& localName, Namespace&& getNamespace);
  bool OpensArray() const;
  void OpenArray(CXmlWriterContext& item, CXmlWriterContext& owner);
  void CloseArray(CXmlWriterContext& owner, Frame& frame, bool atEnd) {
    if (frame.arrayOpen) CloseOpenArray(owner, frame, atEnd);
  }
  void CloseOpenArray(CXmlWriterContext& owner, Frame& frame, bool atEnd);
  void OpenBrackets(CXmlWriterContext& context);
  void OpenMember();
  void SeparateItem(const CXmlWriterContext& item);
  void WriteItemAsMember(CXmlWriterContext& item);
  // Prepares for a member of the open element; whether another one was written before it.
  bool BeginMember();
  // The member with nothing but a value, after that.
  void PutMember(bool isFurther, std::wstring_view marker, const std::wstring& prefix, const std::wstring& localName,
                 std::wstring_view value, bool quoted);
  // Of attributes.
  std::wstring_view GetMarker() const { return {L"@", m_roundTrip == JsonRoundTrip_Plain ? 0u : 1u}; }
  void StartMember(bool isItem, bool isUndecided);
  // `isClean`: without NUL and without characters that are escaped.
  void WriteShortValue(wchar_t* to, std::wstring_view text, bool quoted, bool isClean);
  void WriteLongValue(std::wstring_view text, bool quoted);
  void WriteTextMember(const std::wstring& text, ItemType type);
  void WriteNamespaceMember(const std::wstring& prefix, const std::wstring& namespaceUri);
  void DeclareNamespaces();
  // The prefix that stands for the namespace, null when the scope knows none.
  const std::wstring* FindAttributePrefix(const std::wstring& namespaceUri) const;
  void RequireOpenElement() const;
  bool NeedsQuotes(std::wstring_view text, ItemType type) const;

  void Put(std::wstring_view text) { m_out.Append(text); }
  // The line end and the indentation of a level, or the latter alone; empty when the output is one line. Good until the
  // next one.
  std::wstring_view LineStart(std::int64_t level);
  std::wstring_view Indent(std::int64_t level);
  void GrowLineStart(std::size_t length);
  // The key of a member, behind the start of its line.
  void PutKey(std::wstring_view start, std::wstring_view marker, const std::wstring& prefix,
              const std::wstring& localName);
  void PutEscaped(std::wstring_view text);
  std::size_t KeyLength(std::wstring_view marker, const std::wstring& prefix, const std::wstring& localName) const;
  // Write to `to` and return the end.
  wchar_t* CopyKey(wchar_t* to, std::wstring_view marker, const std::wstring& prefix,
                   const std::wstring& localName) const;
  wchar_t* PutText(wchar_t* to, std::wstring_view text, bool quoted) const;
  wchar_t* PutName(wchar_t* to, const std::wstring& name) const;
  wchar_t* PutEscapedShort(wchar_t* to, std::wstring_view text) const;
  wchar_t* PutEscape(wchar_t* to, std::uint32_t c) const;
  void FlushWhenFull();

  std::wstring m_indentChars = L"\t";
  std::wstring m_eol = L"\n";
  std::wstring m_lineStart;  // the line end and the indentation of the deepest level so far
  EOLType m_eolType = EOLType_LF;
  JsonRoundTrip m_roundTrip = JsonRoundTrip_Namespaces;
  bool m_format = true;
  bool m_strict = false;
  CTextStream& m_stream;
  CStringBuffer& m_out;  // that of the stream
  // The state of the open element. Its end returns to its parent, which is in state Object then.
  //
  //             pending: value item text  written so far     a member comes        text comes     the end comes
  //   Item               yes   yes  no    nothing            ", {", the member     held           "," and "{}"
  //   ItemText           yes   yes  yes   nothing            ", {", text, member   joined         a member of its own
  //   Key                yes   no   no    key or place       "{", the member       held           "{}" or nothing
  //   Text               yes   no   yes   key or place       "{", text, member     joined         the text, or null
  //   Object             no    no   no    "{" and members    ",", the member       a text member  "}"
  //
  // "{}" stands for items of arrays and in strict output. Text of an array's item whose place is written (Key) is not
  // held, but becomes a text member at once. Before its "{" the first item of a collection opens the array with "[".
  // An empty text is held in Key alone, as null; in Object it writes a null without a key unless strict.  // sic
  bool m_valuePending = false;  // its key or place is written, its value not begun
  bool m_itemPending = false;   // not even the separator before it, because it may not become an array item
  bool m_textPending = false;   // its text is held: members that follow make it a member itself
  std::wstring m_text;
  ItemType m_textType = ItemType_none;
  std::vector<Frame> m_frames;  // kept when elements end, with their storage
  std::size_t m_frameCount = 0;
};

}  // namespace RkXmlLib16

#endif

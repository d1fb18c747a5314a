#ifndef RKXMLLIB16_JSON_JSONTEXTREADER_H
#define RKXMLLIB16_JSON_JSONTEXTREADER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/HugePages.h"
#include "RkXmlLib16/json/JsonReaderHandler.h"

namespace RkXmlLib16 {

class CBinaryData;
class CJsonReaderDefaultHandler;

// Where JSON text has what it was converted to, as numbers of characters (units of the wide text) before it.
struct CJsonPlaces {
  CLargeVector<std::uint64_t> nodes;  // of the elements and their attributes in the order of the XML text
  std::size_t at = 0;                 // where the value ends, or what the conversion failed at stands
};

class CSerializationContext;

// A parser of JSON text (RFC 8259) that reports what it finds to a handler, at most 100 values deep. It also takes what
// CJsonTextWriter writes beyond the standard: any character but the quotation mark and the backslash stands for itself
// inside a string. What follows the first value is not examined.
//
// Syntax errors throw CRkValidationException with the JSON path and the place: lines count from 0, the position is the
// number of characters since the last line feed, the offending one included.
//
// Implemented in json/JsonTextReader.cpp; ConvertJsonToXml in json/JsonToXml.cpp.
class RKXML_EXPORT CJsonTextReader {
 public:
  // Converts JSON text to XML text in UTF-8 without declaration, by the JSON settings of the context: "@" members
  // become attributes, "#text" members text, arrays repeated elements. Beyond syntax errors throws
  // CRkInvalidStateException with the JSON path for names and values that XML cannot hold.
  static CBinaryData ConvertJsonToXml(const std::wstring& json, const CSerializationContext& context);
  // The same with the indentation of the XML text as asked for; the call above indents. Tells the places too, also when
  // it throws.
  static CBinaryData ConvertJsonToXml(const std::wstring& json, const CSerializationContext& context, bool indented,
                                      CJsonPlaces& places);

  // `text` is kept: it must outlive the reader.
  explicit CJsonTextReader(const std::wstring& text);
  // A text in pieces: `more` appends the next one; false when there is none.
  using More = std::function<bool(std::wstring& text)>;
  explicit CJsonTextReader(More more);
  CJsonTextReader(const CJsonTextReader&) = delete;
  CJsonTextReader& operator=(const CJsonTextReader&) = delete;
  ~CJsonTextReader();

  // `handler` is kept; null for none.
  void SetJsonReaderHandler(IJsonReaderHandler* handler);
  // Lives as long as the reader.
  const IErrorPathProvider* GetErrorPathProvider() const;
  // Off at first.
  void SetAllowComments(bool allow) noexcept { m_allowComments = allow; }
  // When not empty, the document is reported as if it were the value of one member of this name.
  void SetRootElementName(const std::wstring& name) { m_rootElementName = name; }

  // Reads the text from its start.
  void Read();
  // The same in steps: after Start, ReadOn reads a value, a start or an end; false when all is read.
  void Start();
  bool ReadOn();
  // After that: goes to the first character behind the value that is no white space, and to the end of the text.
  // Return whether there is such a character, and how many of them.
  bool SkipToRest();
  std::size_t SkipRest();
  // The index of the character that is read next, and of the start of the innermost member or array item.
  std::size_t GetPosition() const noexcept { return m_before + m_at; }
  std::size_t GetItemStart() const noexcept { return m_itemStart; }

 private:
  static constexpr std::size_t kMaxDepth = 100;
  static constexpr std::size_t kNothingHeld = SIZE_MAX;
  enum class Expected { Value, MoreOrEnd, Nothing };

  bool AtEnd() { return m_at == m_text.size() && !GetMore(); }
  // The current character; NUL at the end of the text, where no caller takes it for one.
  wchar_t Current() { return AtEnd() ? L'\0' : m_text[m_at]; }
  // Lets go of what was read and not held, and gets more behind what is left; false at the end of the text.
  bool GetMore();
  // Whether so many characters are left.
  bool Has(std::size_t count);
  void SkipWhiteSpace();
  void SkipBehind(std::wstring_view end);
  void End();
  void ReadValue();
  void StartObject();
  void ReadMemberName();
  void StartArray();
  void StartItem();
  void ReadMoreOrEnd();
  // Leaves the text between the quotation marks in m_buffer.
  void ReadQuoted();
  void ReadEscape();
  wchar_t ReadCodeUnit();
  void ReadNumber();
  void ReadDigits();
  void ReadLiteral(std::wstring_view literal, const wchar_t* endMessage, const wchar_t* message);

  // Throws with the line and position, and with the current character where the message shows it.
  [[noreturn]] void Fail(const wchar_t* message) const;
  // One message for the end of the text, one for any other character.
  [[noreturn]] void FailUnexpected(const wchar_t* endMessage, const wchar_t* message);

  std::unique_ptr<CJsonReaderDefaultHandler> m_handler;
  bool m_allowComments = false;
  std::wstring m_rootElementName;
  std::wstring_view m_text;  // what is there of it
  std::size_t m_at = 0;      // the index of the current character in m_text
  std::vector<bool> m_open;  // the objects (true) and arrays around it
  Expected m_expected = Expected::Nothing;
  More m_more;  // null when m_text is all
  std::wstring m_window;
  std::size_t m_held = kNothingHeld;  // the index of the first character that is to stay
  std::size_t m_before = 0;           // characters before m_text
  std::size_t m_linesBefore = 0;      // line feeds in them
  std::size_t m_columnBefore = 0;     // characters behind the last of these
  std::size_t m_itemStart = 0;
  std::wstring m_buffer;  // the name, string or number being read
};

}  // namespace RkXmlLib16

#endif

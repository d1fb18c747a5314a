#include "RkXmlLib16/json/JsonTextReader.h"

#include <algorithm>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/base/internal/CodePoints.h"
#include "RkXmlLib16/json/JsonReaderDefaultHandler.h"
#include "RkXmlLib16/types/Whitespace.h"

namespace RkXmlLib16 {

namespace {

using Ascii::IsDigit;

// The value of a hexadecimal digit, -1 for another character.
constexpr int HexValue(wchar_t c) {
  if (IsDigit(c)) return c - L'0';
  if (c >= L'a' && c <= L'f') return c - L'a' + 10;
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  return -1;
}

}  // namespace

CJsonTextReader::CJsonTextReader(const std::wstring& text)
    : m_handler(std::make_unique<CJsonReaderDefaultHandler>()), m_text(text) {}

CJsonTextReader::~CJsonTextReader() = default;

void CJsonTextReader::SetJsonReaderHandler(IJsonReaderHandler* handler) { m_handler->SetInnerHandler(handler); }

const IErrorPathProvider* CJsonTextReader::GetErrorPathProvider() const { return m_handler.get(); }

void CJsonTextReader::Read() {
  m_at = m_itemStart = 0;
  m_handler->ReadStartDocument();
  if (!m_rootElementName.empty()) {
    m_handler->ReadStartObject();
    m_handler->ReadName(m_rootElementName);
  }
  SkipWhiteSpace();
  m_itemStart = m_at;
  if (!AtEnd()) ReadValue(0);
  if (!m_rootElementName.empty()) m_handler->ReadEndObject();
  m_handler->ReadEndDocument();
}

void CJsonTextReader::SkipWhiteSpace() {
  for (;;) {
    while (!AtEnd() && CWhitespaceUtils::IsWhiteSpace(m_text[m_at])) ++m_at;
    if (!m_allowComments || Current() != L'/' || m_at + 1 == m_text.size()) return;
    const wchar_t* end;
    if (m_text[m_at + 1] == L'/') {
      end = L"\n";
    } else if (m_text[m_at + 1] == L'*') {
      end = L"*/";
    } else {
      return;
    }
    const std::size_t found = m_text.find(end, m_at + 2);
    m_at = found == std::wstring::npos ? m_text.size() : found + std::wstring_view(end).size();
  }
}

void CJsonTextReader::ReadValue(int depth) {
  if (depth + 1 > kMaxDepth) Fail(L"JSON exceeded depth limit at line %d, position %d.");
  const wchar_t c = Current();
  switch (c) {
    case L'{':
      return ReadObject(depth + 1);
    case L'[':
      return ReadArray(depth + 1);
    case L'"':
      ReadQuoted();
      return m_handler->ReadString(m_buffer);
    case L'n':
      ReadLiteral(L"null", L"Unexpected End of File. Expected value 'NULL' at line %d, position %d.",
                  L"Expected 'NULL' at line %d, position %d.");
      return m_handler->ReadNull();
    case L't':
      ReadLiteral(L"true", L"Unexpected End of File. Expected value 'true' at line %d, position %d.",
                  L"Expected 'true' at line %d, position %d.");
      return m_handler->ReadBool(true);
    case L'f':
      ReadLiteral(L"false", L"Unexpected End of File. Expected value 'false' at line %d, position %d.",
                  L"Expected 'false' at line %d, position %d.");
      return m_handler->ReadBool(false);
    default:
      if (c != L'-' && !IsDigit(c))
        Fail(
            L"Expected Value '{', '[', '\"', '0-9', '-', 'true', 'false' or 'null', found '%c' at line %d, "
            L"position %d.");
      ReadNumber();
      return m_handler->ReadNumber(m_buffer);
  }
}

void CJsonTextReader::ReadObject(int depth) {
  static constexpr wchar_t kUnterminated[] =
      L"Unexpected End of File. Expected Object terminator character '}' at line %d, position %d.";
  static constexpr wchar_t kNameExpected[] =
      L"Expected quotation mark character '\"' before Name, found '%c' at line %d, position %d.";
  m_handler->ReadStartObject();
  ++m_at;
  SkipWhiteSpace();
  if (Current() != L'}') {
    if (AtEnd()) Fail(L"Unexpected End of File. Expected Object terminator character '}}' at line %d, position %d.");
    for (;;) {
      if (Current() != L'"') FailUnexpected(kUnterminated, kNameExpected);
      m_itemStart = m_at;
      ReadQuoted();
      m_handler->ReadName(m_buffer);
      SkipWhiteSpace();
      if (Current() != L':')
        FailUnexpected(
            L"Unexpected End of File. Expected Object Name/Value separator character ':' at line %d, position %d.",
            L"Expected Object Name/Value separator character ':', found '%c' at line %d, position %d.");
      ++m_at;
      SkipWhiteSpace();
      if (AtEnd()) Fail(L"Unexpected End of File. Expected Object Value at line %d, position %d.");
      ReadValue(depth);
      SkipWhiteSpace();
      if (Current() == L'}') break;
      if (Current() != L',')
        FailUnexpected(kUnterminated, L"Expected Object separator character ',', found '%c' at line %d, position %d.");
      ++m_at;
      SkipWhiteSpace();
    }
  }
  ++m_at;
  m_handler->ReadEndObject();
}

void CJsonTextReader::ReadArray(int depth) {
  static constexpr wchar_t kUnterminated[] =
      L"Unexpected End of File. Expected Array terminator character ']' at line %d, position %d.";
  m_handler->ReadStartArray();
  ++m_at;
  SkipWhiteSpace();
  if (Current() != L']') {
    for (;;) {
      if (AtEnd()) Fail(kUnterminated);
      m_itemStart = m_at;
      ReadValue(depth);
      SkipWhiteSpace();
      if (Current() == L']') break;
      if (Current() != L',')
        FailUnexpected(kUnterminated, L"Expected Array separator character ',', found '%c' at line %d, position %d.");
      ++m_at;
      SkipWhiteSpace();
    }
  }
  ++m_at;
  m_handler->ReadEndArray();
}

void CJsonTextReader::ReadQuoted() {
  m_buffer.clear();
  ++m_at;
  for (;;) {
    const wchar_t* const run = m_text.data() + m_at;
    const wchar_t* const end = m_text.data() + m_text.size();
    const wchar_t* const stop = std::find_if(run, end, [](wchar_t c) { return c == L'"' || c == L'\\'; });
    m_buffer.append(run, stop);
    m_at += static_cast<std::size_t>(stop - run);
    if (AtEnd()) Fail(L"Unexpected End of File. Expected string value at line %d, position %d.");
    if (m_text[m_at++] == L'"') return;
    ReadEscape();
  }
}

void CJsonTextReader::ReadEscape() {
  if (AtEnd()) Fail(L"Unexpected End of File. Expected string value at line %d, position %d.");
  const wchar_t c = m_text[m_at];
  switch (c) {
    case L'"':
    case L'\\':
    case L'/':
      m_buffer += c;
      break;
    case L'b':
      m_buffer += L'\b';
      break;
    case L'f':
      m_buffer += L'\f';
      break;
    case L'n':
      m_buffer += L'\n';
      break;
    case L'r':
      m_buffer += L'\r';
      break;
    case L't':
      m_buffer += L'\t';
      break;
    case L'u': {
      ++m_at;
      const auto unit = static_cast<char32_t>(ReadCodeUnit());
      char32_t character = IsScalarValue(unit) ? unit : kReplacementCharacter;
      if (IsHighSurrogate(unit) && m_text.compare(m_at, 2, L"\\u") == 0) {
        const std::size_t next = m_at;
        m_at += 2;
        const auto low = static_cast<char32_t>(ReadCodeUnit());
        if (IsLowSurrogate(low)) {
          character = JoinSurrogates(unit, low);
        } else {
          m_at = next;
        }
      }
      m_buffer += static_cast<wchar_t>(character);
      return;
    }
    default:
      Fail(L"Invalid Escape Character '%c' at line %d, position %d.");
  }
  ++m_at;
}

wchar_t CJsonTextReader::ReadCodeUnit() {
  int unit = 0;
  for (int i = 0; i < 4; ++i, ++m_at) {
    const int digit = HexValue(Current());
    if (digit < 0)
      FailUnexpected(L"Unexpected End of File. Expected 4 hexadecimal digits'\\uxxxx' at line %d, position %d.",  // sic
                     L"Invalid Escape Character '%c' at line %d, position %d.");
    unit = unit * 16 + digit;
  }
  return static_cast<wchar_t>(unit);
}

void CJsonTextReader::ReadNumber() {
  const std::size_t start = m_at;
  if (Current() == L'-') {
    ++m_at;
    if (AtEnd()) Fail(L"Unexpected End of File. Expected a number at line %d, position %d.");
  }
  if (Current() == L'0') {
    ++m_at;
  } else {
    ReadDigits();
  }
  if (Current() == L'.') {
    ++m_at;
    ReadDigits();
  }
  if (Current() == L'e' || Current() == L'E') {
    ++m_at;
    if (AtEnd()) Fail(L"Unexpected End of File. Expected '+', '-' or a number at line %d, position %d.");
    if (Current() == L'+' || Current() == L'-') ++m_at;
    ReadDigits();
  }
  m_buffer.assign(m_text, start, m_at - start);
}

void CJsonTextReader::ReadDigits() {
  if (!IsDigit(Current()))
    FailUnexpected(L"Unexpected End of File. Expected a digit '0' to '9' at line %d, position %d.",
                   L"Expected a digit '0' to '9', found '%c' at line %d, position %d.");
  while (IsDigit(Current())) ++m_at;
}

void CJsonTextReader::ReadLiteral(std::wstring_view literal, const wchar_t* endMessage, const wchar_t* message) {
  for (const wchar_t c : literal) {
    if (Current() != c) FailUnexpected(endMessage, message);
    ++m_at;
  }
}

void CJsonTextReader::FailUnexpected(const wchar_t* endMessage, const wchar_t* message) const {
  Fail(AtEnd() ? endMessage : message);
}

void CJsonTextReader::Fail(const wchar_t* message) const {
  const std::wstring_view read = std::wstring_view(m_text).substr(0, m_at + 1);
  const int line = static_cast<int>(std::count(read.begin(), read.end(), L'\n'));
  const std::size_t lastFeed = read.rfind(L'\n');
  const int position = static_cast<int>(lastFeed == std::wstring_view::npos ? read.size() : read.size() - lastFeed - 1);
  const bool showsCharacter = std::wstring_view(message).find(L"%c") != std::wstring_view::npos;
  const std::wstring text = showsCharacter ? FormatString(message, static_cast<wint_t>(m_text[m_at]), line, position)
                                           : FormatString(message, line, position);
  throw CRkValidationException(text, m_handler->GetPath());
}

}  // namespace RkXmlLib16

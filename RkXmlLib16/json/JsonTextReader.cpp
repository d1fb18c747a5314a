#include "RkXmlLib16/json/JsonTextReader.h"

#include <algorithm>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/base/internal/CodePoints.h"
#include "RkXmlLib16/json/JsonReaderDefaultHandler.h"
#include "RkXmlLib16/types/Whitespace.h"

namespace RkXmlLib16 {

namespace {

using Ascii::IsDigit;

constexpr wchar_t kUnterminatedObject[] =
    L"Unexpected End of File. Expected Object terminator character '}' at line %d, position %d.";
constexpr wchar_t kUnterminatedArray[] =
    L"Unexpected End of File. Expected Array terminator character ']' at line %d, position %d.";

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

CJsonTextReader::CJsonTextReader(More more)
    : m_handler(std::make_unique<CJsonReaderDefaultHandler>()), m_more(std::move(more)) {}

CJsonTextReader::~CJsonTextReader() = default;

void CJsonTextReader::SetJsonReaderHandler(IJsonReaderHandler* handler) { m_handler->SetInnerHandler(handler); }

const IErrorPathProvider* CJsonTextReader::GetErrorPathProvider() const { return m_handler.get(); }

void CJsonTextReader::Read() {
  Start();
  while (ReadOn()) {
  }
}

void CJsonTextReader::Start() {
  m_at = m_itemStart = m_before = 0;
  m_open.clear();
  m_handler->ReadStartDocument();
  if (!m_rootElementName.empty()) {
    m_handler->ReadStartObject();
    m_handler->ReadName(m_rootElementName);
  }
  SkipWhiteSpace();
  m_itemStart = GetPosition();
  m_expected = AtEnd() ? Expected::Nothing : Expected::Value;
  if (m_expected == Expected::Nothing) End();
}

bool CJsonTextReader::ReadOn() {
  switch (m_expected) {
    case Expected::Value:
      ReadValue();
      return true;
    case Expected::MoreOrEnd:
      ReadMoreOrEnd();
      return m_expected != Expected::Nothing;
    default:
      return false;
  }
}

bool CJsonTextReader::SkipToRest() {
  while (!AtEnd() && CWhitespaceUtils::IsWhiteSpace(m_text[m_at])) ++m_at;
  return !AtEnd();
}

std::size_t CJsonTextReader::SkipRest() {
  const std::size_t start = GetPosition();
  while (!AtEnd()) m_at = m_text.size();
  return GetPosition() - start;
}

void CJsonTextReader::End() {
  if (!m_rootElementName.empty()) m_handler->ReadEndObject();
  m_handler->ReadEndDocument();
}

bool CJsonTextReader::GetMore() {
  if (m_more == nullptr) return false;
  const std::size_t gone = std::min(m_at, m_held);
  const std::wstring_view used = m_text.substr(0, gone);
  m_linesBefore += static_cast<std::size_t>(std::count(used.begin(), used.end(), L'\n'));
  const std::size_t lastFeed = used.rfind(L'\n');
  m_columnBefore = lastFeed == std::wstring_view::npos ? m_columnBefore + gone : gone - lastFeed - 1;
  m_window.erase(0, gone);
  m_before += gone;
  m_at -= gone;
  if (m_held != kNothingHeld) m_held -= gone;
  const bool hasMore = m_more(m_window);
  m_text = m_window;
  return hasMore;
}

bool CJsonTextReader::Has(std::size_t count) {
  while (m_text.size() - m_at < count)
    if (!GetMore()) return false;
  return true;
}

void CJsonTextReader::SkipWhiteSpace() {
  for (;;) {
    while (!AtEnd() && CWhitespaceUtils::IsWhiteSpace(m_text[m_at])) ++m_at;
    if (!m_allowComments || Current() != L'/' || !Has(2)) return;
    if (m_text[m_at + 1] == L'/') {
      SkipBehind(L"\n");
    } else if (m_text[m_at + 1] == L'*') {
      SkipBehind(L"*/");
    } else {
      return;
    }
  }
}

// Behind the next occurrence, two characters from here or later, or to the end of the text.
void CJsonTextReader::SkipBehind(std::wstring_view end) {
  m_at += 2;
  for (;;) {
    const std::size_t found = m_text.find(end, m_at);
    if (found != std::wstring_view::npos) return void(m_at = found + end.size());
    m_at = std::max(m_at, m_text.size() - std::min(m_text.size(), end.size() - 1));
    if (!GetMore()) return void(m_at = m_text.size());
  }
}

void CJsonTextReader::ReadValue() {
  if (m_open.size() + 1 > kMaxDepth) Fail(L"JSON exceeded depth limit at line %d, position %d.");
  m_expected = Expected::MoreOrEnd;
  const wchar_t c = Current();
  switch (c) {
    case L'{':
      return StartObject();
    case L'[':
      return StartArray();
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

void CJsonTextReader::StartObject() {
  m_handler->ReadStartObject();
  ++m_at;
  m_open.push_back(true);
  SkipWhiteSpace();
  if (Current() == L'}') return;
  if (AtEnd()) Fail(L"Unexpected End of File. Expected Object terminator character '}}' at line %d, position %d.");
  ReadMemberName();
}

void CJsonTextReader::ReadMemberName() {
  if (Current() != L'"')
    FailUnexpected(kUnterminatedObject,
                   L"Expected quotation mark character '\"' before Name, found '%c' at line %d, position %d.");
  m_itemStart = GetPosition();
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
  m_expected = Expected::Value;
}

void CJsonTextReader::StartArray() {
  m_handler->ReadStartArray();
  ++m_at;
  m_open.push_back(false);
  SkipWhiteSpace();
  if (Current() != L']') StartItem();
}

void CJsonTextReader::StartItem() {
  if (AtEnd()) Fail(kUnterminatedArray);
  m_itemStart = GetPosition();
  m_expected = Expected::Value;
}

// Behind a value or at the first end of an empty object or array.
void CJsonTextReader::ReadMoreOrEnd() {
  if (m_open.empty()) {
    m_expected = Expected::Nothing;
    return End();
  }
  const bool isObject = m_open.back();
  SkipWhiteSpace();
  if (Current() == (isObject ? L'}' : L']')) {
    ++m_at;
    m_open.pop_back();
    return isObject ? m_handler->ReadEndObject() : m_handler->ReadEndArray();
  }
  if (Current() != L',') {
    FailUnexpected(isObject ? kUnterminatedObject : kUnterminatedArray,
                   isObject ? L"Expected Object separator character ',', found '%c' at line %d, position %d."
                            : L"Expected Array separator character ',', found '%c' at line %d, position %d.");
  }
  ++m_at;
  SkipWhiteSpace();
  isObject ? ReadMemberName() : StartItem();
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
    if (stop == end) {
      if (AtEnd()) Fail(L"Unexpected End of File. Expected string value at line %d, position %d.");
      continue;
    }
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
      Has(6);  // so that what is put back is there
      if (IsHighSurrogate(unit) && m_text.substr(m_at, 2) == L"\\u") {
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
  m_held = m_at;
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
  m_buffer.assign(m_text.substr(m_held, m_at - m_held));
  m_held = kNothingHeld;
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

void CJsonTextReader::FailUnexpected(const wchar_t* endMessage, const wchar_t* message) {
  Fail(AtEnd() ? endMessage : message);
}

void CJsonTextReader::Fail(const wchar_t* message) const {
  const std::wstring_view read = m_text.substr(0, m_at + 1);
  const auto lines = static_cast<std::size_t>(std::count(read.begin(), read.end(), L'\n'));
  const auto line = static_cast<int>(m_linesBefore + lines);
  const std::size_t lastFeed = read.rfind(L'\n');
  const auto position =
      static_cast<int>(lastFeed == std::wstring_view::npos ? m_columnBefore + read.size() : read.size() - lastFeed - 1);
  const bool showsCharacter = std::wstring_view(message).find(L"%c") != std::wstring_view::npos;
  const std::wstring text = showsCharacter ? FormatString(message, static_cast<wint_t>(m_text[m_at]), line, position)
                                           : FormatString(message, line, position);
  throw CRkValidationException(text, m_handler->GetPath());
}

}  // namespace RkXmlLib16

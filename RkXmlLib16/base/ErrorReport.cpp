// What is made of an exception when it is asked for: its code, its report and the forms of that.
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/ErrorCode.h"
#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/XsdTypes.h"

namespace RkXmlLib16 {

namespace {

// Characters of a document that a report shows at most, of a path and of each of two values in a message.
constexpr std::size_t kLongestPath = 100;
constexpr std::size_t kLongestValue = 40;
constexpr std::size_t kMostValues = 2;
// Of a message that the table does not know.
constexpr std::size_t kLongestMessage = 100;

struct Kind {
  RkErrorCode code;
  const char* name;
  std::vector<std::wstring_view> messages;
};

const std::vector<Kind>& Kinds() {
  static const std::vector<Kind> kKinds = {
#define RKXML_ERROR(number, name, meaning, ...) {RkErrorCode_##name, #name, {__VA_ARGS__}},
#include "RkXmlLib16/base/ErrorTable.h"
  };
  return kKinds;
}

bool IsNumber(std::wstring_view text) {
  return !text.empty() && text.find_first_not_of(L"-0123456789") == std::wstring_view::npos;
}

// Whether the message could be made of the format. `values` gets the texts that stand for its conversions.
bool Matches(std::wstring_view message, std::wstring_view format, std::vector<std::wstring_view>& values) {
  values.clear();
  for (;;) {
    const std::size_t percent = std::min(format.find(L'%'), format.size());
    if (message.substr(0, percent) != format.substr(0, percent)) return false;
    message.remove_prefix(percent);
    if (percent == format.size()) return message.empty();
    format.remove_prefix(percent + 1);
    const bool isText = format[0] == L'l' || format[0] == L'c';
    format.remove_prefix(format.substr(0, 2) == L"ls" ? 2 : 1);
    // Up to the last place where the text before the next conversion stands, as values may hold anything.
    const std::wstring_view next = format.substr(0, format.find(L'%'));
    const std::size_t end = format.empty() ? message.size() : message.rfind(next);
    if (end == std::wstring_view::npos) return false;
    const std::wstring_view value = message.substr(0, end);
    if (!isText && !IsNumber(value)) return false;
    values.push_back(value);
    message.remove_prefix(end);
  }
}

const CRkException& InnermostOf(const CRkException& exception) {
  const CRkException* innermost = &exception;
  while (innermost->GetInnerException() != nullptr) innermost = innermost->GetInnerException();
  return *innermost;
}

// The message without the path that follows it.
std::wstring_view MessageOf(const CRkException& exception) {
  std::wstring_view message = exception.GetMessage();
  const std::wstring suffix = L"\nPath: " + exception.GetPath();
  if (message.size() >= suffix.size() && message.substr(message.size() - suffix.size()) == suffix &&
      !exception.GetPath().empty())
    message.remove_suffix(suffix.size());
  return message;
}

const Kind* FindKind(std::wstring_view message, std::vector<std::wstring_view>& values) {
  for (const Kind& kind : Kinds())
    for (const std::wstring_view format : kind.messages)
      if (Matches(message, format, values)) return &kind;
  values.clear();
  return nullptr;
}

std::wstring Shortened(std::wstring_view text, std::size_t longest) {
  return text.size() <= longest ? std::wstring(text) : std::wstring(text.substr(0, longest - 3)) + L"...";
}

// The message in one line, its values cut short.
std::wstring OneLine(std::wstring_view message) {
  std::vector<std::wstring_view> values;
  std::wstring line;
  if (FindKind(message, values) == nullptr) {
    line = Shortened(message, kLongestMessage);
  } else {
    std::size_t shown = 0;
    const wchar_t* at = message.data();
    for (const std::wstring_view value : values) {
      line.append(at, value.data());
      line += IsNumber(value) ? std::wstring(value.substr(0, kLongestValue))
                              : Shortened(value, shown++ < kMostValues ? kLongestValue : 3);
      at = value.data() + value.size();
    }
    line.append(at, message.data() + message.size());
  }
  for (wchar_t& c : line)
    if (c < L' ') c = L' ';
  return line;
}

std::wstring Extras(const CRkException& exception) {
  std::wstring extras = exception.GetHint();
  const CRkRefusedValue* const refused = exception.GetRefusedValue();
  if (refused == nullptr) return extras;
  if (!extras.empty()) extras += L"; ";
  if (refused->facet == RkFacet_None) return extras += refused->name + L": xs:" + refused->typeName;
  extras += NameOfFacet(refused->facet);
  if (!refused->bound.empty()) extras += L' ' + refused->bound;
  return extras;
}

// Ill-formed text becomes '?': this is for people.
std::string ToUtf8(const std::wstring& text) {
  std::string utf8;
  for (const wchar_t c : text) {
    const auto code = static_cast<char32_t>(c);
    const auto put = [&](char32_t bits) { utf8 += static_cast<char>(bits); };
    if (code < 0x80) {
      put(code);
    } else if (code < 0x800) {
      put(0xC0 | code >> 6);
      put(0x80 | (code & 0x3F));
    } else if (code > 0x10FFFF || (code & ~char32_t{0x7FF}) == 0xD800) {
      put(U'?');
    } else {
      if (code < 0x10000) {
        put(0xE0 | code >> 12);
      } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
      }
      put(0x80 | (code >> 6 & 0x3F));
      put(0x80 | (code & 0x3F));
    }
  }
  return utf8;
}

}  // namespace

const char* NameOfErrorCode(RkErrorCode code) noexcept {
  switch (code) {
#define RKXML_ERROR(number, name, ...) \
  case RkErrorCode_##name:             \
    return #name;
#include "RkXmlLib16/base/ErrorTable.h"
    default:
      return "None";
  }
}

const wchar_t* NameOfFacet(RkFacet facet) noexcept {
  static constexpr const wchar_t* kNames[] = {L"",
                                              L"length",
                                              L"minLength",
                                              L"maxLength",
                                              L"pattern",
                                              L"enumeration",
                                              L"minInclusive",
                                              L"maxInclusive",
                                              L"minExclusive",
                                              L"maxExclusive",
                                              L"totalDigits",
                                              L"fractionDigits"};
  const auto index = static_cast<std::size_t>(facet);
  return index < std::size(kNames) ? kNames[index] : L"";
}

const wchar_t* NameOfXsdType(ItemType type) noexcept {
#define RKXML_NAME(Kind, Name, Property, Value) L## #Kind,
#define RKXML_CHARACTER(Kind, Name, Property, Value) L"string",
  static constexpr const wchar_t* kNames[] = {L"", RKXML_XSD_TYPES(RKXML_NAME, RKXML_NAME, RKXML_CHARACTER)};
#undef RKXML_NAME
#undef RKXML_CHARACTER
  const auto index = static_cast<std::size_t>(type);
  return index < std::size(kNames) ? kNames[index] : L"";
}

RkErrorCode CRkException::GetCode() const {
  const CRkRefusedValue* const refused = GetRefusedValue();
  if (refused != nullptr && refused->facet != RkFacet_None)
    return static_cast<RkErrorCode>(RkErrorCode_InvalidValue + refused->facet);
  std::vector<std::wstring_view> values;
  const Kind* const kind = FindKind(MessageOf(InnermostOf(*this)), values);
  return kind != nullptr ? kind->code : RkErrorCode_None;
}

std::wstring CRkException::GetReport() const {
  const CRkException& innermost = InnermostOf(*this);
  std::wstring report = GetLocation().ToString();
  if (!report.empty()) report += L": ";
  std::wstring_view path = GetLocation().GetPath();
  if (path.empty()) path = GetPath();
  if (path.size() > kLongestPath) {
    report += L"...";
    path.remove_prefix(path.size() - kLongestPath + 3);
  }
  report += path;
  if (!path.empty()) report += L": ";
  report += OneLine(MessageOf(innermost));
  const std::wstring extras = Extras(*this);
  if (extras.empty()) return report;
  if (report.back() == L'.') report.pop_back();
  return report += L" (" + extras + L')';
}

const char* CRkException::what() const noexcept {
  try {
    auto what = std::atomic_load(&m_what);
    if (what == nullptr) {
      what = std::make_shared<const std::string>(ToUtf8(GetReport()));
      std::shared_ptr<const std::string> none;
      if (!std::atomic_compare_exchange_strong(&m_what, &none, what)) what = none;
    }
    return what->c_str();
  } catch (const std::bad_alloc&) {
    return "out of memory";
  }
}

CRkStdException::CRkStdException(const CRkException& original)
    : std::runtime_error(original.what()), m_original(original.Clone()) {}
CRkStdException::CRkStdException(const CRkStdException& other) noexcept = default;
CRkStdException& CRkStdException::operator=(const CRkStdException& other) noexcept = default;
CRkStdException::~CRkStdException() = default;

}  // namespace RkXmlLib16

#include "RkXmlLib16/facets/RegEx.h"

#include <memory>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#ifndef PCRE2_CODE_UNIT_WIDTH
#define PCRE2_CODE_UNIT_WIDTH 8
#endif
#include <pcre2.h>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/ThreadObject.h"
#include "RkXmlLib16/facets/internal/PlainPattern.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

namespace {

// Enough for any value that a backtracking matcher should try; beyond them the other matcher gives the answer.
constexpr std::uint32_t kMatchLimit = 5000000;
constexpr std::uint32_t kDepthLimit = 5000000;
constexpr std::uint32_t kHeapLimitKiB = 64 * 1024;
// The other matcher's work for a character grows with the square of the alternatives that it follows at once, for which
// this makes room: some five hundred.
constexpr std::size_t kWorkspace = 3000;
constexpr std::size_t kShortValue = 256;

template <auto kFree>
struct Freer {
  template <class T>
  void operator()(T* object) const {
    kFree(object);
  }
};
using Code = std::unique_ptr<pcre2_code, Freer<pcre2_code_free>>;
using CompileContext = std::unique_ptr<pcre2_compile_context, Freer<pcre2_compile_context_free>>;
using MatchContext = std::unique_ptr<pcre2_match_context, Freer<pcre2_match_context_free>>;
using MatchData = std::unique_ptr<pcre2_match_data, Freer<pcre2_match_data_free>>;

template <class Owner>
Owner Require(Owner owner) {
  if (owner == nullptr) throw std::bad_alloc();
  return owner;
}

struct WorkingMemory {
  MatchData data = Require(MatchData(pcre2_match_data_create(1, nullptr)));
};

// UTF-8, borrowed.
struct Subject {
  PCRE2_SPTR bytes;
  std::size_t size;
};

PCRE2_SPTR Bytes(const std::string& text) { return reinterpret_cast<PCRE2_SPTR>(text.data()); }

// From XSD's escapes to the engine's, in this order, over the whole pattern whatever stands around them.
std::string Rewrite(std::string pattern) {
  static const std::pair<const char*, const char*> kSteps[] = {
      {"\\\\", "\x01"},  // keeps an escaped backslash out of the steps between
      {"\\i", "([^\\W\\d]|:)"},
      {"\\I", "([\\W\\d])"},
      {"\\c", "(\\w|\\.|-|:)"},
      {"\\C", "([^\\w\\.\\-\\:])"},
      {"\\p{IsBasicLatin}", "[\\000-\\177]"},
      {"\\p{IsLatin-1Supplement}", "[\\200-\\377]"},
      {"\\p{IsLatinExtended-A}", "[\\400-\\577]"},
      {"\\p{IsLatinExtended-B}", "[\\600-\\1117]"},  // sic: never compiles, the range stands the wrong way round
      {"\x01", "\\\\"},
  };
  for (const auto& [find, replace] : kSteps) FindReplace(pattern, find, replace);
  return "^(" + pattern + ")$";
}

[[noreturn]] void ThrowInvalid(const std::wstring& value, int error) {
  PCRE2_UCHAR buffer[256];
  pcre2_get_error_message(error, buffer, sizeof buffer);
  const std::string text(reinterpret_cast<const char*>(buffer));
  throw CRkException(FormatString(L"Invalid Regular Expression: %ls Error: '%ls'", value.c_str(),
                                  std::wstring(text.begin(), text.end()).c_str()));
}

Code Compile(const std::string& pattern, const std::wstring& value) {
  const auto context = Require(CompileContext(pcre2_compile_context_create(nullptr)));
  pcre2_set_newline(context.get(), PCRE2_NEWLINE_LF);
  pcre2_set_compile_extra_options(context.get(), PCRE2_EXTRA_BAD_ESCAPE_IS_LITERAL);
  int error = 0;
  PCRE2_SIZE offset = 0;
  Code code(pcre2_compile(Bytes(pattern), pattern.size(), PCRE2_UTF | PCRE2_ANCHORED, &error, &offset, context.get()));
  if (code == nullptr) {
    if (error == PCRE2_ERROR_HEAP_FAILED) throw std::bad_alloc();
    ThrowInvalid(value, error);
  }
  return code;
}

bool IsLimit(int result) {
  return result == PCRE2_ERROR_MATCHLIMIT || result == PCRE2_ERROR_DEPTHLIMIT || result == PCRE2_ERROR_HEAPLIMIT;
}

// The matcher that follows all alternatives at once and never goes back.
int MatchWithoutBacktracking(const pcre2_code* code, const Subject& subject, pcre2_match_data* data,
                             pcre2_match_context* context) {
  std::vector<int> workspace(kWorkspace);
  return pcre2_dfa_match(code, subject.bytes, subject.size, 0, PCRE2_NO_UTF_CHECK, data, context, workspace.data(),
                         workspace.size());
}

}  // namespace

struct CRegEx::Engine {
  CPlainPattern plain;
  Code code;  // null where the plain form is all
  MatchContext limits;
};

CRegEx::CRegEx(std::string utf8Pattern, const std::wstring& value) {
  CPlainPattern plain(utf8Pattern);
  if (!plain.IsEmpty()) {
    m_engine = std::make_unique<const Engine>(Engine{std::move(plain), nullptr, nullptr});
    return;
  }
  Code code = Compile(Rewrite(std::move(utf8Pattern)), value);
  auto limits = Require(MatchContext(pcre2_match_context_create(nullptr)));
  pcre2_set_match_limit(limits.get(), kMatchLimit);
  pcre2_set_depth_limit(limits.get(), kDepthLimit);
  pcre2_set_heap_limit(limits.get(), kHeapLimitKiB);
  m_engine = std::make_unique<const Engine>(Engine{std::move(plain), std::move(code), std::move(limits)});
}

CRegEx::~CRegEx() = default;

bool CRegEx::Matches(const std::wstring& value) const {
  if (m_engine->code == nullptr) return m_engine->plain.Matches(value);
  constexpr std::size_t kMostBytes = 4;  // of a character
  unsigned char shortSubject[kShortValue];
  std::string longSubject;
  unsigned char* start = shortSubject;
  if (value.size() > kShortValue / kMostBytes) {
    longSubject.resize(CEncoder::Utf8Length(value));
    start = reinterpret_cast<unsigned char*>(longSubject.data());
  }
  const Subject subject{start, static_cast<std::size_t>(CEncoder::WriteUtf8(value, start) - start)};
  const pcre2_code* const code = m_engine->code.get();
  pcre2_match_context* const limits = m_engine->limits.get();
  // The engine's working memory is kept for short values, which need little of it.
  const WorkingMemory* const kept = subject.size <= kShortValue ? CThreadObject<WorkingMemory>::Get() : nullptr;
  std::optional<WorkingMemory> own;
  pcre2_match_data* const data = (kept != nullptr ? *kept : own.emplace()).data.get();

  // 0: it matched, and there was no room for the groups inside it.
  int result = pcre2_match(code, subject.bytes, subject.size, 0, PCRE2_NO_UTF_CHECK, data, limits);
  if (result == 0) result = 1;
  if (IsLimit(result)) {
    const int limit = result;
    result = MatchWithoutBacktracking(code, subject, data, limits);
    // 0: it matched, but not every shorter match found room.
    if (result < 0 && result != PCRE2_ERROR_NOMATCH) ThrowInvalid(value, limit);
    if (result == 0) result = 1;
  }
  if (result == PCRE2_ERROR_NOMEMORY) throw std::bad_alloc();
  const PCRE2_SIZE* const matched = pcre2_get_ovector_pointer(data);
  return result > 0 && matched[0] == 0 && matched[1] == subject.size;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): callers are compiled against copies
bool TestRegEx(std::string utf8Pattern, std::wstring value) {
  return CRegEx(std::move(utf8Pattern), value).Matches(value);
}

}  // namespace RkXmlLib16

#include "RkXmlLib16/facets/RegEx.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#ifndef PCRE2_CODE_UNIT_WIDTH
#define PCRE2_CODE_UNIT_WIDTH 8
#endif
#include <pcre2.h>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/ThreadObject.h"
#include "RkXmlLib16/facets/internal/PatternBudget.h"
#include "RkXmlLib16/facets/internal/PlainPattern.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

namespace {

// Enough for any value that a matcher which goes back should try.
constexpr std::uint32_t kMatchLimit = 5000000;
constexpr std::uint32_t kDepthLimit = 5000000;
constexpr std::uint32_t kHeapLimitKiB = 64 * 1024;
// Steps of a first attempt, which decides on most values. A step may look at the whole value, so that the steps for a
// long one are fewer and count for more.
constexpr std::uint32_t kQuickSteps = 10000;
constexpr std::uint32_t kFewestSteps = 100;
constexpr std::size_t kBytesPerStep = 64;
// The matcher that never goes back takes work for a character that grows with the square of the alternatives that it
// follows at once, for which these make space: some hundred, and some five hundred.
constexpr std::size_t kSmallWorkspace = 600;
constexpr std::size_t kLargeWorkspace = 3000;
constexpr unsigned long kStepsPerByte = 256;  // of the latter
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

// What one match at a time needs beside the pattern.
struct WorkingMemory {
  WorkingMemory() {
    pcre2_set_depth_limit(context.get(), kDepthLimit);
    pcre2_set_heap_limit(context.get(), kHeapLimitKiB);
  }

  MatchData data = Require(MatchData(pcre2_match_data_create(2, nullptr)));
  MatchContext context = Require(MatchContext(pcre2_match_context_create(nullptr)));
  std::array<int, kSmallWorkspace> workspace;
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

// Whether the pattern has what the two matchers may understand differently. XSD has none of it.
bool HasOtherSyntax(std::string_view pattern) {
  for (const char* const syntax : {"(?", "(*", "++", "*+", "?+", "}+", "\\K"})
    if (pattern.find(syntax) != std::string_view::npos) return true;
  return false;
}

enum class Answer { Yes, No, TooHard };

// One value on its way through the matchers.
class Match {
 public:
  Match(const pcre2_code* code, const Subject& subject, WorkingMemory& memory)
      : m_code(code), m_subject(subject), m_memory(memory), m_weight(subject.size / kBytesPerStep + 1) {}

  Answer Quickly() { return GoBack(std::max(kFewestSteps, static_cast<std::uint32_t>(kQuickSteps / m_weight))); }

  // By the matcher that follows all alternatives at once and never goes back. It does not know which match the other
  // one finds first, which matters where a value ends in a line feed that the match may leave out.
  Answer AllAtOnce() {
    const int result = FollowAll(m_memory.workspace.data(), m_memory.workspace.size());
    if (result < 0) return result == PCRE2_ERROR_NOMATCH ? Answer::No : Answer::TooHard;
    return result != 1 && IsWhole() ? Answer::TooHard : Found();
  }

  // The last attempts, up to the limits of a match and, where there is a budget, to its end.
  Answer Thoroughly() {
    PatternBudget* const budget = PatternBudget::GetCurrent();
    const Answer answer = budget != nullptr ? GoBackWithin(*budget) : GoBack(kMatchLimit);
    if (answer != Answer::TooHard) return answer;
    if (budget != nullptr) budget->Spend(kStepsPerByte * m_subject.size);
    std::vector<int> workspace(kLargeWorkspace);
    const int result = FollowAll(workspace.data(), workspace.size());
    if (result < 0) return result == PCRE2_ERROR_NOMATCH ? Answer::No : Answer::TooHard;
    return Found();
  }

  // The limit that the matcher that goes back met.
  int GetLimit() const { return m_limit; }

 private:
  Answer GoBack(std::uint32_t steps) {
    pcre2_set_match_limit(m_memory.context.get(), steps);
    const int result = pcre2_match(m_code, m_subject.bytes, m_subject.size, 0, PCRE2_NO_UTF_CHECK, m_memory.data.get(),
                                   m_memory.context.get());
    if (result >= 0) return Found();  // 0: there was no space for the groups inside it
    if (result == PCRE2_ERROR_NOMEMORY) throw std::bad_alloc();
    const bool isLimit =
        result == PCRE2_ERROR_MATCHLIMIT || result == PCRE2_ERROR_DEPTHLIMIT || result == PCRE2_ERROR_HEAPLIMIT;
    if (!isLimit) return Answer::No;
    m_limit = result;
    return Answer::TooHard;
  }

  // The engine does not tell how many steps it took: attempts with more and more of them narrow it down.
  Answer GoBackWithin(PatternBudget& budget) {
    for (std::uint32_t steps = kQuickSteps;; steps *= 2) {
      const unsigned long left = budget.GetLeft() / m_weight;
      const auto most = static_cast<std::uint32_t>(std::min<unsigned long>(kMatchLimit, left));
      steps = std::min(steps, most);
      const Answer answer = GoBack(steps);
      const bool isTooHard = answer == Answer::TooHard;
      if (isTooHard && steps == left) budget.Spend(budget.GetLeft());
      budget.Spend(m_weight * (isTooHard ? steps : steps / 2));
      if (!isTooHard || m_limit != PCRE2_ERROR_MATCHLIMIT || steps == kMatchLimit) return answer;
    }
  }

  int FollowAll(int* workspace, std::size_t size) {
    pcre2_set_match_limit(m_memory.context.get(), kMatchLimit);
    const int result = pcre2_dfa_match(m_code, m_subject.bytes, m_subject.size, 0, PCRE2_NO_UTF_CHECK,
                                       m_memory.data.get(), m_memory.context.get(), workspace, size);
    if (result == PCRE2_ERROR_NOMEMORY) throw std::bad_alloc();
    return result;
  }

  bool IsWhole() const {
    const PCRE2_SIZE* const matched = pcre2_get_ovector_pointer(m_memory.data.get());
    return matched[0] == 0 && matched[1] == m_subject.size;
  }
  Answer Found() const { return IsWhole() ? Answer::Yes : Answer::No; }

  const pcre2_code* const m_code;
  const Subject& m_subject;
  WorkingMemory& m_memory;
  const std::size_t m_weight;
  int m_limit = PCRE2_ERROR_MATCHLIMIT;
};

}  // namespace

struct CRegEx::Engine {
  explicit Engine(std::string_view pattern) : plain(pattern) {}

  CPlainPattern plain;
  Code code;  // null where the plain form decides on every value
  bool hasOtherSyntax = false;
  mutable std::atomic<bool> isHard{false};  // met the limit of a quick attempt once
};

CRegEx::CRegEx(std::string utf8Pattern, const std::wstring& value) {
  auto engine = std::make_unique<Engine>(utf8Pattern);
  if (engine->plain.IsEmpty() || !engine->plain.IsWhole()) {
    engine->hasOtherSyntax = HasOtherSyntax(utf8Pattern);
    engine->code = Compile(Rewrite(std::move(utf8Pattern)), value);
  }
  m_engine = std::move(engine);
}

CRegEx::~CRegEx() = default;

bool CRegEx::Matches(const std::wstring& value) const {
  const CPlainPattern& plain = m_engine->plain;
  if (plain.Matches(value)) return true;
  if (plain.Decides(value)) return false;
  constexpr std::size_t kMostBytes = 4;  // of a character
  unsigned char shortSubject[kShortValue];
  std::string longSubject;
  unsigned char* start = shortSubject;
  if (value.size() > kShortValue / kMostBytes) {
    longSubject.resize(CEncoder::Utf8Length(value));
    start = reinterpret_cast<unsigned char*>(longSubject.data());
  }
  const Subject subject{start, static_cast<std::size_t>(CEncoder::WriteUtf8(value, start) - start)};
  // The engine's working memory is kept for short values, which need little of it.
  WorkingMemory* const kept = subject.size <= kShortValue ? CThreadObject<WorkingMemory>::Get() : nullptr;
  std::optional<WorkingMemory> own;
  Match match(m_engine->code.get(), subject, kept != nullptr ? *kept : own.emplace());

  Answer answer = m_engine->isHard.load(std::memory_order_relaxed) ? Answer::TooHard : match.Quickly();
  if (answer == Answer::TooHard && !m_engine->hasOtherSyntax) {
    m_engine->isHard.store(true, std::memory_order_relaxed);
    answer = match.AllAtOnce();
  }
  if (answer == Answer::TooHard) answer = match.Thoroughly();
  if (answer == Answer::TooHard) ThrowInvalid(value, match.GetLimit());
  return answer == Answer::Yes;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): callers are compiled against copies
bool TestRegEx(std::string utf8Pattern, std::wstring value) {
  return CRegEx(std::move(utf8Pattern), value).Matches(value);
}

}  // namespace RkXmlLib16

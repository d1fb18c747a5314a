#include "RkXmlLib16/support/LastingText.h"

#include <deque>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace RkXmlLib16::LastingText {

std::atomic<const std::wstring*> g_first{nullptr};

namespace {

struct Texts {
  Texts() {
    known.reserve(kMostKnown);
    g_first = known.data();
  }
  ~Texts() { g_first = nullptr; }

  const std::wstring& Store(std::wstring_view text) {
    if (known.size() < kMostKnown) return known.emplace_back(text);
    return others.emplace_back(text);
  }

  std::mutex mutex;
  std::vector<std::wstring> known;  // never more than it was made for, so that none of them moves
  std::deque<std::wstring> others;
  std::unordered_map<std::wstring, const std::wstring*> index;
};

}  // namespace

const std::wstring& Get(std::wstring_view text) {
  static Texts texts;
  const std::lock_guard<std::mutex> lock(texts.mutex);
  const std::wstring*& entry = texts.index[std::wstring(text)];
  if (entry == nullptr) entry = &texts.Store(text);
  return *entry;
}

}  // namespace RkXmlLib16::LastingText

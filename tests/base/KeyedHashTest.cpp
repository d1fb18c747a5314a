#include "RkXmlLib16/base/internal/KeyedHash.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "Expect.h"

using namespace RkXmlTest;

namespace {

// How many of the hashes the fullest of as many places gets: 8 or so when they are spread like random numbers.
std::size_t FullestPlace(const std::vector<std::uint64_t>& hashes) {
  std::vector<std::size_t> places(hashes.size());
  for (const std::uint64_t hash : hashes) ++places[hash % places.size()];
  return *std::max_element(places.begin(), places.end());
}

// Differences that products without the upper half of 128 bits push out of reach, whatever the seed.
TEST(KeyedHash, SpreadsWhatIsMadeUpToCollide) {
  constexpr std::size_t kCount = 1 << 16;
  std::vector<std::uint64_t> highest, lowest, texts;
  std::set<std::uint64_t> different;
  for (std::uint64_t i = 0; i < kCount; ++i) {
    highest.push_back(CKeyedHash::Of(i << 48));
    lowest.push_back(CKeyedHash::Of(i));
    std::wstring text(64, L'a');  // changes in two blocks of 64 bits that cancel each other
    for (std::size_t bit = 0; bit < 16; ++bit) {
      if ((i >> bit & 1) == 0) continue;
      for (const std::size_t at : {1u, 2u, 3u}) text[4 * bit + at] ^= static_cast<wchar_t>(0x80000000);
    }
    texts.push_back(CKeyedHash::Of(text));
    different.insert(texts.back());
  }
  EXPECT_LT(FullestPlace(highest), 32u);
  EXPECT_LT(FullestPlace(lowest), 32u);
  EXPECT_LT(FullestPlace(texts), 32u);
  EXPECT_EQ(kCount, different.size());
}

}  // namespace

#include <sys/random.h>
#include <time.h>

#include <cstring>

#include "RkXmlLib16/base/internal/KeyedHash.h"

namespace RkXmlLib16 {

// Before the other objects of the library, some of which may hash.
[[gnu::init_priority(101)]] const CKeyedHash::Key CKeyedHash::kKey = MakeKey();

CKeyedHash::Key CKeyedHash::MakeKey() noexcept {
  Key key{};
  if (getrandom(&key, sizeof key, GRND_NONBLOCK) != static_cast<ssize_t>(sizeof key)) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    key.mask = reinterpret_cast<std::uintptr_t>(&key) ^ static_cast<std::uint64_t>(now.tv_nsec) << 32;
    key.factor = Fold(reinterpret_cast<std::uintptr_t>(&kKey) ^ static_cast<std::uint64_t>(now.tv_sec),
                      0x9E3779B97F4A7C15u ^ static_cast<std::uint64_t>(now.tv_nsec));
  }
  key.factor |= 1;
  return key;
}

std::uint64_t CKeyedHash::Of(std::wstring_view text) noexcept {
  std::uint64_t hash = kKey.mask ^ text.size();
  for (; text.size() >= 2; text.remove_prefix(2)) {
    std::uint64_t pair;
    std::memcpy(&pair, text.data(), sizeof pair);
    hash = Fold(hash ^ pair, kKey.factor) + kKey.mask;
  }
  if (!text.empty()) hash ^= static_cast<std::uint32_t>(text.front());
  return Fold(hash, kKey.factor);
}

}  // namespace RkXmlLib16

#ifndef RKXMLLIB16_BASE_INTERNAL_KEYEDHASH_H
#define RKXMLLIB16_BASE_INTERNAL_KEYEDHASH_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace RkXmlLib16 {

// Hashes by a random key that each process draws once, so that entries that collide cannot be made up beforehand. The
// two halves of a product of 128 bits with the key are folded into one: every bit of the input, the highest ones too,
// changes the result in a way that depends on the key.
class CKeyedHash {
 public:
  static std::uint64_t Of(std::uint64_t number) noexcept { return Fold(number ^ kKey.mask, kKey.factor); }
  static std::uint64_t Of(std::wstring_view text) noexcept;

  // For the hash tables of the standard library.
  std::size_t operator()(std::wstring_view text) const noexcept { return Of(text); }

 private:
  struct Key {
    std::uint64_t mask;
    std::uint64_t factor;  // odd
  };
  static Key MakeKey() noexcept;
  static std::uint64_t Fold(std::uint64_t a, std::uint64_t b) noexcept {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
  }

  static const Key kKey;
};

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_BASE_INTERNAL_CODEPOINTS_H
#define RKXMLLIB16_BASE_INTERNAL_CODEPOINTS_H

#include <cstddef>

// One code point in and out of the Unicode encoding forms (The Unicode Standard, clause 3.9).
namespace RkXmlLib16 {

constexpr char32_t kReplacementCharacter = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t c) { return (c & ~char32_t{0x3FF}) == 0xD800; }
constexpr bool IsLowSurrogate(char32_t c) { return (c & ~char32_t{0x3FF}) == 0xDC00; }
constexpr bool IsScalarValue(char32_t c) { return c < 0x110000 && (c & ~char32_t{0x7FF}) != 0xD800; }
constexpr char32_t JoinSurrogates(char32_t high, char32_t low) {
  return 0x10000 + ((high - 0xD800) << 10 | (low - 0xDC00));
}
constexpr char32_t HighSurrogateOf(char32_t c) { return 0xD800 + ((c - 0x10000) >> 10); }
constexpr char32_t LowSurrogateOf(char32_t c) { return 0xDC00 + (c & 0x3FF); }

enum class Decoded {
  Good,
  Illegal,   // the position is after the ill-formed units, which stand for one U+FFFD
  Exhausted  // the units end inside a character; the position is unchanged
};

// Each form: Next reads the code point at `at` (before `end`) and moves `at` behind it, Size is the number of units of
// a code point, Put writes them and returns the place after them. Size and Put expect a scalar value.
struct Utf8Form {
  using Unit = unsigned char;

  static Decoded Next(const Unit*& at, const Unit* end, char32_t& c) {
    const Unit lead = *at;
    if (lead < 0x80) {
      c = lead;
      ++at;
      return Decoded::Good;
    }
    const int trail = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    const Unit* next = at + 1;
    if (lead < 0xC2 || lead > 0xF4) {
      at = next;
      return Decoded::Illegal;
    }
    // The second byte excludes overlong forms, surrogates and what lies above U+10FFFF.
    Unit least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    Unit most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    char32_t value = lead & (0x3Fu >> trail);
    for (int i = 0; i < trail; ++i, ++next) {
      if (next == end) return Decoded::Exhausted;
      if (*next < least || *next > most) {
        at = next;
        return Decoded::Illegal;
      }
      value = value << 6 | (*next & 0x3Fu);
      least = 0x80;
      most = 0xBF;
    }
    at = next;
    c = value;
    return Decoded::Good;
  }

  static constexpr std::size_t Size(char32_t c) { return c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4; }

  static Unit* Put(char32_t c, Unit* out) {
    if (c < 0x80) {
      *out++ = static_cast<Unit>(c);
    } else if (c < 0x800) {
      *out++ = static_cast<Unit>(0xC0 | c >> 6);
      *out++ = static_cast<Unit>(0x80 | (c & 0x3F));
    } else {
      if (c < 0x10000) {
        *out++ = static_cast<Unit>(0xE0 | c >> 12);
      } else {
        *out++ = static_cast<Unit>(0xF0 | c >> 18);
        *out++ = static_cast<Unit>(0x80 | (c >> 12 & 0x3F));
      }
      *out++ = static_cast<Unit>(0x80 | (c >> 6 & 0x3F));
      *out++ = static_cast<Unit>(0x80 | (c & 0x3F));
    }
    return out;
  }
};

struct Utf16Form {
  using Unit = char16_t;

  // `Position` is a pointer to units or behaves like one.
  template <class Position>
  static Decoded Next(Position& at, const Position& end, char32_t& c) {
    Position next = at;
    c = *next;
    ++next;
    if (IsHighSurrogate(c)) {
      if (next == end) return Decoded::Exhausted;
      if (IsLowSurrogate(*next)) {
        c = JoinSurrogates(c, *next);
        ++next;
      }
    }
    at = next;
    return IsScalarValue(c) ? Decoded::Good : Decoded::Illegal;
  }

  static constexpr std::size_t Size(char32_t c) { return c < 0x10000 ? 1 : 2; }

  static Unit* Put(char32_t c, Unit* out) {
    if (c < 0x10000) {
      *out++ = static_cast<Unit>(c);
    } else {
      *out++ = static_cast<Unit>(HighSurrogateOf(c));
      *out++ = static_cast<Unit>(LowSurrogateOf(c));
    }
    return out;
  }
};

struct Utf32Form {
  using Unit = char32_t;

  static Decoded Next(const Unit*& at, const Unit*, char32_t& c) {
    c = *at++;
    return IsScalarValue(c) ? Decoded::Good : Decoded::Illegal;
  }

  static constexpr std::size_t Size(char32_t) { return 1; }

  static Unit* Put(char32_t c, Unit* out) {
    *out++ = c;
    return out;
  }
};

// The library's wide text: a code point per unit, but a surrogate pair is read as the character that it stands for.
struct WideForm {
  using Unit = wchar_t;

  static Decoded Next(const Unit*& at, const Unit* end, char32_t& c) {
    c = static_cast<char32_t>(*at++);
    if (IsHighSurrogate(c) && at != end && IsLowSurrogate(static_cast<char32_t>(*at)))
      c = JoinSurrogates(c, static_cast<char32_t>(*at++));
    return IsScalarValue(c) ? Decoded::Good : Decoded::Illegal;
  }

  static constexpr std::size_t Size(char32_t) { return 1; }

  static Unit* Put(char32_t c, Unit* out) {
    *out++ = static_cast<Unit>(c);
    return out;
  }
};

// Next for those who never fail: U+FFFD for what is ill-formed, and one for a character cut off by the end.
template <class Form, class Position>
char32_t NextOrReplacement(Position& at, const Position& end) {
  char32_t c = kReplacementCharacter;
  switch (Form::Next(at, end, c)) {
    case Decoded::Good:
      return c;
    case Decoded::Exhausted:
      at = end;
      break;
    case Decoded::Illegal:
      break;
  }
  return kReplacementCharacter;
}

}  // namespace RkXmlLib16

#endif

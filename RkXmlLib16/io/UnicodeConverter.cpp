#include "RkXmlLib16/io/UnicodeConverter.h"

#include "RkXmlLib16/base/internal/CodePoints.h"

namespace RkXmlLib16 {

namespace {

template <class From, class To>
ConversionResult Convert(const typename From::Unit** sourceStart, const typename From::Unit* sourceEnd,
                         typename To::Unit** targetStart, typename To::Unit* targetEnd, ConversionFlags flags) {
  const typename From::Unit*& source = *sourceStart;
  typename To::Unit*& target = *targetStart;
  while (source < sourceEnd) {
    const typename From::Unit* next = source;
    char32_t c = kReplacementCharacter;
    switch (From::Next(next, sourceEnd, c)) {
      case Decoded::Good:
        break;
      case Decoded::Exhausted:
        return sourceExhausted;
      case Decoded::Illegal:
        if (flags == strictConversion) return sourceIllegal;
        c = kReplacementCharacter;
    }
    if (static_cast<std::size_t>(targetEnd - target) < To::Size(c)) return targetExhausted;
    target = To::Put(c, target);
    source = next;
  }
  return conversionOK;
}

}  // namespace

ConversionResult ConvertUTF32toUTF16(const UTF32** sourceStart, const UTF32* sourceEnd, UTF16** targetStart,
                                     UTF16* targetEnd, ConversionFlags flags) {
  return Convert<Utf32Form, Utf16Form>(sourceStart, sourceEnd, targetStart, targetEnd, flags);
}

ConversionResult ConvertUTF16toUTF32(const UTF16** sourceStart, const UTF16* sourceEnd, UTF32** targetStart,
                                     UTF32* targetEnd, ConversionFlags flags) {
  return Convert<Utf16Form, Utf32Form>(sourceStart, sourceEnd, targetStart, targetEnd, flags);
}

ConversionResult ConvertUTF16toUTF8(const UTF16** sourceStart, const UTF16* sourceEnd, UTF8** targetStart,
                                    UTF8* targetEnd, ConversionFlags flags) {
  return Convert<Utf16Form, Utf8Form>(sourceStart, sourceEnd, targetStart, targetEnd, flags);
}

ConversionResult ConvertUTF8toUTF16(const UTF8** sourceStart, const UTF8* sourceEnd, UTF16** targetStart,
                                    UTF16* targetEnd, ConversionFlags flags) {
  return Convert<Utf8Form, Utf16Form>(sourceStart, sourceEnd, targetStart, targetEnd, flags);
}

ConversionResult ConvertUTF32toUTF8(const UTF32** sourceStart, const UTF32* sourceEnd, UTF8** targetStart,
                                    UTF8* targetEnd, ConversionFlags flags) {
  return Convert<Utf32Form, Utf8Form>(sourceStart, sourceEnd, targetStart, targetEnd, flags);
}

ConversionResult ConvertUTF8toUTF32(const UTF8** sourceStart, const UTF8* sourceEnd, UTF32** targetStart,
                                    UTF32* targetEnd, ConversionFlags flags) {
  return Convert<Utf8Form, Utf32Form>(sourceStart, sourceEnd, targetStart, targetEnd, flags);
}

bool IsLegalUTF8(const UTF8* source, int length) {
  if (length <= 0) return false;
  const UTF8* const end = source + length;
  char32_t c;
  return Utf8Form::Next(source, end, c) == Decoded::Good && source == end;
}

bool IsLegalUTF8Sequence(const UTF8* source, const UTF8* sourceEnd) {
  char32_t c;
  return source < sourceEnd && Utf8Form::Next(source, sourceEnd, c) == Decoded::Good;
}

}  // namespace RkXmlLib16

#ifndef RKXMLLIB16_IO_UNICODECONVERTER_H
#define RKXMLLIB16_IO_UNICODECONVERTER_H

#include "RkXmlLib16/base/Export.h"

// Conversions between the Unicode encoding forms, buffer to buffer.
namespace RkXmlLib16 {

using UTF8 = unsigned char;
using UTF16 = char16_t;
using UTF32 = char32_t;

enum ConversionResult {
  conversionOK,     // all of the source was converted
  sourceExhausted,  // the source ends inside a character
  targetExhausted,  // the target has no space for the next character
  sourceIllegal     // the source is ill-formed; only with strictConversion
};

enum ConversionFlags {
  strictConversion,  // stop at what is ill-formed
  lenientConversion  // write U+FFFD for it and go on
};

// Each converts from `*sourceStart` up to `sourceEnd` into `*targetStart` up to `targetEnd` and moves both starts
// behind what was read and written. When it stops early, the source is left at the first character that was not
// converted, and no part of that is written.
RKXML_EXPORT ConversionResult ConvertUTF32toUTF16(const UTF32** sourceStart, const UTF32* sourceEnd,
                                                  UTF16** targetStart, UTF16* targetEnd, ConversionFlags flags);
RKXML_EXPORT ConversionResult ConvertUTF16toUTF32(const UTF16** sourceStart, const UTF16* sourceEnd,
                                                  UTF32** targetStart, UTF32* targetEnd, ConversionFlags flags);
RKXML_EXPORT ConversionResult ConvertUTF16toUTF8(const UTF16** sourceStart, const UTF16* sourceEnd, UTF8** targetStart,
                                                 UTF8* targetEnd, ConversionFlags flags);
RKXML_EXPORT ConversionResult ConvertUTF8toUTF16(const UTF8** sourceStart, const UTF8* sourceEnd, UTF16** targetStart,
                                                 UTF16* targetEnd, ConversionFlags flags);
RKXML_EXPORT ConversionResult ConvertUTF32toUTF8(const UTF32** sourceStart, const UTF32* sourceEnd, UTF8** targetStart,
                                                 UTF8* targetEnd, ConversionFlags flags);
RKXML_EXPORT ConversionResult ConvertUTF8toUTF32(const UTF8** sourceStart, const UTF8* sourceEnd, UTF32** targetStart,
                                                 UTF32* targetEnd, ConversionFlags flags);

// Whether the `length` bytes at `source` are exactly one well-formed character.
RKXML_EXPORT bool IsLegalUTF8(const UTF8* source, int length);
// Whether one well-formed character begins at `source` and ends before or at `sourceEnd`.
RKXML_EXPORT bool IsLegalUTF8Sequence(const UTF8* source, const UTF8* sourceEnd);

}  // namespace RkXmlLib16

#endif

#ifndef RKXMLLIB16_TYPES_BASE64_H
#define RKXMLLIB16_TYPES_BASE64_H

#include <string>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

// The base64 codec of RFC 4648 clause 4: the standard alphabet with "+" and "/", padded with "=".
//
//   CBase64::Encode(reinterpret_cast<const unsigned char*>("Man"), 3);  // "TWFu"
class RKXML_EXPORT CBase64 {
 public:
  // The text of `length` bytes, without line breaks.
  static std::wstring Encode(const unsigned char* data, unsigned long length);
  // Decodes `text` into `data` and returns the number of bytes, at most three for every four characters; with a null
  // `data` it only checks and counts. Blanks, tabs and line ends are skipped. Throws CRkException
  // "Invalid char in base64 string [%c]", also for data after the padding, and "Invalid length in base64 string" when
  // the text is not made of groups of four.
  static unsigned long Decode(const wchar_t* text, unsigned char* data);

  // The four 6-bit groups of a 24-bit quantum, group 0 in the highest bits.
  static unsigned Read(unsigned quantum, int group) { return (quantum & m_nMask[group]) >> (18 - 6 * group); }
  static unsigned Write(unsigned quantum, int group, unsigned value) { return quantum | value << (18 - 6 * group); }

 private:
  static constexpr wchar_t m_sBase64Alphabet[65] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  static constexpr unsigned m_nMask[4] = {0xFC0000, 0x03F000, 0x000FC0, 0x00003F};
};

}  // namespace RkXmlLib16

#endif

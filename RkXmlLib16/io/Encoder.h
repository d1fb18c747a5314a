#ifndef RKXMLLIB16_IO_ENCODER_H
#define RKXMLLIB16_IO_ENCODER_H

#include <string>
#include <string_view>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

// Wide text as UTF-8 and back, for printing and for everything else that takes bytes. As in CEncoder.
//
//   std::printf("%s\n", ToUtf8(track->GetName()).c_str());  // in any locale
//   track->SetName(FromUtf8(argv[1]));
RKXML_EXPORT std::string ToUtf8(std::wstring_view text);
RKXML_EXPORT std::wstring FromUtf8(std::string_view utf8);
// Puts the one character in place of each surrogate pair in the `length` characters and returns how many are left.
RKXML_EXPORT std::size_t JoinSurrogatePairs(wchar_t* text, std::size_t length);

// Between wide text and the bytes of the Unicode encoding forms. A surrogate pair in wide text is the one character
// that it stands for. What cannot be converted becomes U+FFFD and the conversion goes on: lone surrogates and values
// above U+10FFFF in wide text, ill-formed bytes in UTF-8 and UTF-16.
//
//   CEncoder::UnicodeToUtf8Binary(L"\U0001F600");  // F0 9F 98 80
class RKXML_EXPORT CEncoder {
 public:
  // The text in UTF-8, allocated to the byte. The pointer form ends at the NUL.
  static CBinaryData UnicodeToUtf8Binary(const wchar_t* text);
  static CBinaryData UnicodeToUtf8Binary(std::wstring_view text);
  // The wide text of `length` bytes; empty for a length of 0 or less.
  static std::wstring Utf8ToUnicode(const unsigned char* bytes, int length);
  static std::wstring Utf8ToUnicode(std::string_view bytes);
  // The same for UTF-16, little-endian unless told otherwise. A last odd byte becomes U+FFFD.
  static std::wstring Utf16ToUnicode(const unsigned char* bytes, int length);
  static std::wstring Utf16ToUnicode(std::string_view bytes, bool bigEndian = false);

  // In two steps, into memory of the caller: the number of bytes that the text takes, and writing exactly so many.
  static unsigned long Utf8Length(std::wstring_view text);
  static unsigned char* WriteUtf8(std::wstring_view text, unsigned char* out);
  static void AppendUtf8(std::wstring_view text, CBinaryData& out);
  // And back: the number of characters, and writing them. Both return what `out` would move to.
  static unsigned long UnicodeLength(std::string_view utf8);
  static wchar_t* WriteUnicode(std::string_view utf8, wchar_t* out);
};

// Encodes wide text that comes in pieces as UTF-8 at the end of `out` (kept), as if it came whole: a surrogate pair
// that two pieces share is still one character.
class CUtf8Appender {
 public:
  explicit CUtf8Appender(CBinaryData& out) : m_out(out) {}
  void Append(std::wstring_view piece);
  // The high surrogate at the end of the last piece, which waits for its partner and is given back; 0 when there is
  // none.
  wchar_t TakePending();
  // No more pieces: a pending high surrogate is a lone one.
  void Finish();

 private:
  void AppendPiece(std::wstring_view piece);

  CBinaryData& m_out;
  wchar_t m_pending = 0;
};

// Buffer to buffer, with the treatment of CEncoder. They return the number of target units produced: as many whole
// characters as fit, or, with a null target, all that the source takes. UTF-16 is little-endian; a length or capacity
// that belongs to a byte pointer counts bytes, any other wide characters.
RKXML_EXPORT unsigned long UnicodeToUTF8(const wchar_t* source, unsigned long length, unsigned char* target,
                                         unsigned long capacity);
RKXML_EXPORT unsigned long UTF8ToUnicode(const unsigned char* source, unsigned long length, wchar_t* target,
                                         unsigned long capacity);
RKXML_EXPORT unsigned long UnicodeToUTF16(const wchar_t* source, unsigned long length, unsigned char* target,
                                          unsigned long capacity);
RKXML_EXPORT unsigned long UTF16ToUnicode(const unsigned char* source, unsigned long length, wchar_t* target,
                                          unsigned long capacity);

// Whether any character, or byte, is above 127.
RKXML_EXPORT bool DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(const wchar_t* text, int length);
RKXML_EXPORT bool DoesUTF8StrContainAnyCharsLargerThanOneByte(const unsigned char* bytes, unsigned long length);

// A file name for the runtime: in the multibyte form of the current locale, or in UTF-8 when that lacks any of its
// characters.
RKXML_EXPORT std::string UnicodeToMultiByte(const wchar_t* text);

}  // namespace RkXmlLib16

#endif

#include "RkXmlLib16/io/Encoder.h"

#include <vector>

#include "Expect.h"
#include "RkXmlLib16/io/UnicodeConverter.h"
#include "support/Bytes.h"
#include "support/HostLocale.h"

using namespace RkXmlTest;

namespace {

std::wstring Utf8Hex(std::wstring_view text) { return CEncoder::UnicodeToUtf8Binary(text).GetAsHexString(); }

}  // namespace

TEST(Encoder, EncodesUtf8AndReplacesWhatIsNoCharacter) {
  const Rows<std::wstring, Wide> kCases = {
      {L"", L""},
      {L"a\u00E9\u20AC\U0001F600", L"61C3A9E282ACF09F9880"},
      {kHigh + kLow, L"F09F9880"},
      {kHigh + L"a", L"EFBFBD61"},
      {kLow + kHigh, L"EFBFBDEFBFBD"},
      {kHigh + kHigh + kLow, L"EFBFBDF09F9880"},
      {std::wstring(1, 0x110000) + static_cast<wchar_t>(-1) + L'a', L"EFBFBDEFBFBD61"}};
  for (const auto& [text, hex] : kCases) EXPECT_TEXT(hex, Utf8Hex(text));
  EXPECT_EQ(0u, CEncoder::UnicodeToUtf8Binary(static_cast<const wchar_t*>(nullptr)).GetLength());
}

// The length is counted in blocks where it can be; it must be what is written wherever pairs and lone halves fall.
TEST(Encoder, CountsWhatItWrites) {
  const wchar_t kinds[] = {L'a', 0xE9, 0x20AC, 0x1F600, 0xD83D, 0xDE00, 0x110000};
  unsigned state = 1;
  for (int round = 0; round < 5000; ++round) {
    std::wstring text;
    const unsigned variety = static_cast<unsigned>(round) % 7 + 1;
    for (int i = 0; i < round % 70; ++i) text += kinds[(state = state * 1664525u + 1013904223u) / 65536 % variety];
    std::vector<unsigned char> written(text.size() * 4 + 1);
    const unsigned char* const end = CEncoder::WriteUtf8(text, written.data());
    ASSERT_EQ(static_cast<unsigned long>(end - written.data()), CEncoder::Utf8Length(text));
  }
}

TEST(Encoder, EveryCharacterSurvivesEachForm) {
  std::wstring all;
  for (char32_t c = 1; c < 0x110000; ++c)
    if (c < 0xD800 || c > 0xDFFF) all += static_cast<wchar_t>(c);
  const CBinaryData utf8 = CEncoder::UnicodeToUtf8Binary(all);
  EXPECT_EQ(all, Utf8Text(utf8));
  EXPECT_EQ(utf8.GetLength(), UnicodeToUTF8(all.data(), all.size(), nullptr, 0));

  std::string utf16(UnicodeToUTF16(all.data(), all.size(), nullptr, 0), '\0');
  const auto units = reinterpret_cast<unsigned char*>(utf16.data());
  EXPECT_EQ(utf16.size(), UnicodeToUTF16(all.data(), all.size(), units, utf16.size()));
  EXPECT_EQ(all, CEncoder::Utf16ToUnicode(units, static_cast<int>(utf16.size())));
  EXPECT_EQ(all.size(), UTF16ToUnicode(units, utf16.size(), nullptr, 0));
}

TEST(Encoder, IllFormedUtf8BecomesOneReplacementForEachLongestPrefix) {
  const Rows<Wide, Wide> kCases = {{L"61FF62", L"a\uFFFDb"},
                                   {L"C080", L"\uFFFD\uFFFD"},                  // overlong
                                   {L"E08080", L"\uFFFD\uFFFD\uFFFD"},          // overlong
                                   {L"EDA080", L"\uFFFD\uFFFD\uFFFD"},          // surrogate
                                   {L"F4908080", L"\uFFFD\uFFFD\uFFFD\uFFFD"},  // above U+10FFFF
                                   {L"E282", L"\uFFFD"},                        // cut off by the end
                                   {L"F09F98", L"\uFFFD"},
                                   {L"F09F9861", L"\uFFFDa"},  // cut off by a character
                                   {L"E28261", L"\uFFFDa"},
                                   {L"80BF", L"\uFFFD\uFFFD"}};
  for (const auto& [hex, text] : kCases) EXPECT_TEXT(text, Utf8Text(Hex(hex)));
  EXPECT_TEXT(L"", CEncoder::Utf8ToUnicode(nullptr, 0));
  EXPECT_TEXT(L"", CEncoder::Utf8ToUnicode(reinterpret_cast<const unsigned char*>("a"), -1));
}

TEST(Encoder, ReadsUtf16InBothByteOrders) {
  EXPECT_TEXT(L"a\U0001F600", CEncoder::Utf16ToUnicode(std::string_view("a\0\x3D\xD8\x00\xDE", 6)));
  EXPECT_TEXT(L"a\U0001F600", CEncoder::Utf16ToUnicode(std::string_view("\0a\xD8\x3D\xDE\x00", 6), true));
  EXPECT_TEXT(L"\uFFFDa\uFFFD", CEncoder::Utf16ToUnicode(std::string_view("\0\xDE\x61\0\x3D\xD8", 6)));
  EXPECT_TEXT(L"a\uFFFD", CEncoder::Utf16ToUnicode(std::string_view("a\0b", 3)));
  EXPECT_TEXT(L"\uFFFD\uFFFD", CEncoder::Utf16ToUnicode(std::string_view("\x3D\xD8\x00", 3)));
}

// The runs of ASCII are converted sixteen at a time: a foreign character at every place of texts of every short length.
TEST(Encoder, AsciiRunsEndAtEveryPlace) {
  for (std::size_t length = 0; length < 40; ++length) {
    for (std::size_t at = 0; at <= length; ++at) {
      std::wstring text(length, L'x');
      for (std::size_t i = 0; i < length; ++i) text[i] = static_cast<wchar_t>(L'!' + i);
      if (at < length) text[at] = 0x80;
      const CBinaryData utf8 = CEncoder::UnicodeToUtf8Binary(text);
      ASSERT_EQ(length + (at < length ? 1 : 0), utf8.GetLength());
      ASSERT_EQ(text, Utf8Text(utf8));
      ASSERT_EQ(at < length, DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(text.data(), static_cast<int>(length)));
      ASSERT_EQ(at < length, DoesUTF8StrContainAnyCharsLargerThanOneByte(utf8.GetData(), utf8.GetLength()));
    }
  }
}

TEST(Encoder, WrappersStopBeforeACharacterThatDoesNotFit) {
  unsigned char bytes[8] = {};
  EXPECT_EQ(1u, UnicodeToUTF8(L"a\u20AC", 2, bytes, 3));
  EXPECT_EQ(4u, UnicodeToUTF8(L"a\u20AC", 2, bytes, 4));
  EXPECT_EQ(2u, UnicodeToUTF16(L"a\U0001F600", 2, bytes, 5));
  EXPECT_EQ(6u, UnicodeToUTF16(L"a\U0001F600", 2, bytes, 6));
  wchar_t wide[1];
  EXPECT_EQ(1u, UTF8ToUnicode(reinterpret_cast<const unsigned char*>("ab"), 2, wide, 1));
}

TEST(Encoder, FileNamesGoThroughTheLocaleOrUtf8) {
  for (const char* name : {"C", "C.UTF-8"}) {
    const HostLocale locale(name);
    EXPECT_EQ("a\xC3\xA9\xF0\x9F\x98\x80", UnicodeToMultiByte((L"a\u00E9" + kHigh + kLow).c_str()));
    EXPECT_EQ("plain.xml", UnicodeToMultiByte(L"plain.xml"));
    EXPECT_EQ("", UnicodeToMultiByte(nullptr));
  }
}

TEST(UnicodeConverter, ReportsWhyItStoppedAndWhere) {
  const UTF8 source[] = {'a', 0xF0, 0x9F, 0x98, 0x80, 0xFF, 0xE2, 0x82};
  UTF16 target[8];
  const auto convert = [&](int from, int to, int capacity, ConversionFlags flags, int read, int written) {
    const UTF8* s = source + from;
    UTF16* t = target;
    const ConversionResult result = ConvertUTF8toUTF16(&s, source + to, &t, target + capacity, flags);
    EXPECT_EQ(read, s - source);
    EXPECT_EQ(written, t - target);
    return result;
  };
  EXPECT_EQ(conversionOK, convert(0, 5, 3, strictConversion, 5, 3));
  EXPECT_EQ(0xD83D, target[1]);
  EXPECT_EQ(0xDE00, target[2]);
  EXPECT_EQ(targetExhausted, convert(0, 5, 2, strictConversion, 1, 1));
  EXPECT_EQ(sourceIllegal, convert(0, 8, 8, strictConversion, 5, 3));
  EXPECT_EQ(sourceExhausted, convert(0, 8, 8, lenientConversion, 6, 4));
  EXPECT_EQ(0xFFFD, target[3]);
}

TEST(UnicodeConverter, TreatsSurrogatesAsTheStandardPrescribes) {
  const UTF16 pair[] = {0xD83D, 0xDE00, 0xDE00};
  const UTF16* from = pair;
  UTF8 utf8[8];
  UTF8* to = utf8;
  EXPECT_EQ(sourceExhausted, ConvertUTF16toUTF8(&from, pair + 1, &to, utf8 + 8, strictConversion));
  EXPECT_EQ(sourceIllegal, ConvertUTF16toUTF8(&from, pair + 3, &to, utf8 + 8, strictConversion));
  EXPECT_EQ(4, to - utf8);
  const UTF32 lone[] = {0xD83D, 0x110000};
  const UTF32* wide = lone;
  EXPECT_EQ(sourceIllegal, ConvertUTF32toUTF8(&wide, lone + 2, &to, utf8 + 8, strictConversion));
  EXPECT_EQ(targetExhausted, ConvertUTF32toUTF8(&wide, lone + 2, &to, utf8 + 8, lenientConversion));
  EXPECT_EQ(7, to - utf8);
  EXPECT_TRUE(IsLegalUTF8(utf8, 4));
  EXPECT_FALSE(IsLegalUTF8(utf8, 3));
  EXPECT_FALSE(IsLegalUTF8(utf8, 5));
  EXPECT_TRUE(IsLegalUTF8Sequence(utf8, utf8 + 5));
  EXPECT_FALSE(IsLegalUTF8Sequence(utf8 + 1, utf8 + 5));
}

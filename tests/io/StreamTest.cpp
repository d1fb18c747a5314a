#include <cstdio>

#include "Expect.h"
#include "RkXmlLib16/io/BinaryStream.h"
#include "RkXmlLib16/io/File.h"
#include "RkXmlLib16/io/TextStream.h"
#include "support/Bytes.h"
#include "support/TempFile.h"

using namespace RkXmlTest;

namespace {

constexpr wchar_t kUnnamedFailure[] = L"Failed to write data to the file";
constexpr wchar_t kUnknownEncoding[] = L"Unknown Encoding, select UTF-8 (contact our support team)";
std::wstring EncodedHex(XmlEncoding encoding, const std::wstring& text) {
  CTextStream stream(encoding);
  stream.Append(text);
  return stream.GetEncodedStream().GetAsHexString();
}

std::wstring HexOf(const CTempFile& file) { return DataOf(file.Bytes()).GetAsHexString(); }

bool HasFullDevice() { return std::ifstream("/dev/full").good(); }

}  // namespace

TEST(TextStream, EncodesItsText) {
  EXPECT_TEXT(L"61C3A9", EncodedHex(XmlEncoding_UTF8, L"a\u00E9"));
  EXPECT_TEXT(L"61000000E9000000", EncodedHex(XmlEncoding_Wide, L"a\u00E9"));
  for (const auto encoding : {XmlEncoding_UTF8, XmlEncoding_UTF16, XmlEncoding_Wide})
    EXPECT_TEXT(L"", EncodedHex(encoding, L""));
  for (const auto encoding : {XmlEncoding_None, static_cast<XmlEncoding>(4)})
    EXPECT_THROWS(CRkException, kUnknownEncoding, CTextStream(encoding).GetEncodedStream());
}

TEST(TextStream, EncodingUtf16WidensTheBytesOfTheWideTextIntended) {
  EXPECT_TEXT(L"6100000000000000E900", EncodedHex(XmlEncoding_UTF16, L"a\u00E9bcd"));
  EXPECT_TEXT(L"AC0020000000", EncodedHex(XmlEncoding_UTF16, L"\u20ACbc"));
}

TEST(TextStream, EncodesAcrossBlocksWithoutJoiningThem) {
  const std::wstring text = std::wstring(4094, L'x') + kHigh + kLow + L"y" + kHigh;
  CTextStream stream(XmlEncoding_UTF8);
  stream.Append(text);
  const CBinaryData utf8 = stream.GetEncodedStream();
  EXPECT_EQ(4094u + 4 + 1 + 3, utf8.GetLength());
  EXPECT_TEXT(L"F09F988079EFBFBD", utf8.GetAsHexString().substr(2 * 4094));
  EXPECT_EQ(text, stream.GetText());
  stream.Open();
  EXPECT_EQ(0u, stream.GetLength());
}

TEST(FileTextStream, WritesWhatWasFlushedWithItsMark) {
  const Rows<XmlEncoding, Wide> kCases = {{XmlEncoding_UTF8, L"61C3A962"},
                                          {XmlEncoding_UTF16, L"FFFE610000006200"},
                                          {XmlEncoding_Wide, L"FFFE61000000E900000062000000"}};
  for (const auto& [encoding, hex] : kCases) {
    const CTempFile scratch;
    CFileTextStream file(scratch.Name().c_str(), encoding);
    file.Append(L"lost by Open");
    file.Open();
    file.Append(L"a\u00E9");
    file.Flush();
    EXPECT_EQ(0u, file.GetLength());
    file.Append(L'b');
    file.Close();
    EXPECT_TEXT(hex, HexOf(scratch));
    file.Append(L"too late");
    file.Flush();
    file.Close();
    EXPECT_TEXT(hex, HexOf(scratch));
  }
}

TEST(FileTextStream, APairSplitBetweenFlushesIsOneCharacter) {
  const CTempFile scratch;
  {
    CFileTextStream file(scratch.Name().c_str(), XmlEncoding_UTF8);
    file.Open();
    for (const std::wstring& piece : {L"a" + kHigh, kLow + L"b", kHigh, kHigh}) {
      file.Append(piece);
      file.Flush();
      file.Flush();
    }
  }  // the destructor writes the rest
  EXPECT_TEXT(L"61F09F988062EFBFBDEFBFBD", HexOf(scratch));
}

TEST(FileTextStream, AFullDiskFailsOnceAndNeverInTheDestructor) {
  if (!HasFullDevice()) GTEST_SKIP() << "no /dev/full";
  CFileTextStream big(L"/dev/full", XmlEncoding_UTF8);
  big.Open();
  big.Append(std::wstring(100'000, L'x'));
  EXPECT_THROWS(CRkException, kUnnamedFailure, big.Flush());
  big.Flush();
  big.Close();

  CFileTextStream small(L"/dev/full", XmlEncoding_UTF8);
  small.Open();
  small.Append(L"x");
  small.Flush();
  EXPECT_THROWS(CRkException, L"Failed to write data to the file [/dev/full].", small.Close());

  CFileTextStream dropped(L"/dev/full", XmlEncoding_UTF8);
  dropped.Open();
  dropped.Append(L"x");
}

TEST(FileBinaryStream, WritesTheBytesBehindTheMark) {
  CBinaryData data = Hex(L"000D0AFF");
  for (const auto encoding : {XmlEncoding_None, XmlEncoding_UTF8, XmlEncoding_UTF16, XmlEncoding_Wide}) {
    const CTempFile scratch;
    CFileBinaryStream(scratch.Name().c_str(), encoding, data).ToFile();
    EXPECT_TEXT(encoding >= XmlEncoding_UTF16 ? L"FFFE000D0AFF" : L"000D0AFF", HexOf(scratch));
  }
  EXPECT_THROWS(CRkException, L"Failed to write data to the file [/].",
                CFileBinaryStream(L"/", XmlEncoding_None, data).ToFile());
  if (HasFullDevice()) {
    EXPECT_THROWS(CRkException, L"Failed to write data to the file [/dev/full].",
                  CFileBinaryStream(L"/dev/full", XmlEncoding_None, data).ToFile());
  }
}

#include "RkXmlLib16/io/Zip.h"

#include <string>

#include "Expect.h"
#include "support/Bytes.h"

using namespace RkXmlTest;

namespace {

CBinaryData Compressed(const std::string& text, CompressionType type) {
  CBinaryData data = DataOf(text);
  CRkZip::CompressData(data, type);
  return data;
}

CBinaryData Decompressed(CBinaryData data) {
  unsigned long length = 0;
  unsigned char* bytes = data.ReleaseData(&length);
  CRkZip::Decompress(&bytes, &length);
  return CBinaryData(bytes, length, /*copy=*/false);
}

// Text without repetition: it does not shrink.
std::string Noise(std::size_t length) {
  std::string noise;
  for (unsigned state = 1; noise.size() < length; state = state * 1664525u + 1013904223u)
    noise += static_cast<char>(state >> 24);
  return noise;
}

std::string Document(int elements) {
  std::string text = "<?xml version=\"1.0\"?><list>";
  for (int i = 0; i < elements; ++i) text += "<item id=\"" + std::to_string(i * 7919) + "\">text</item>";
  return text + "</list>";
}

constexpr CompressionType kTypes[] = {CompressionType_GZip, CompressionType_ZLib};

}  // namespace

TEST(Zip, BothWrappersComeBackAsTheyWere) {
  for (const CompressionType type : kTypes) {
    for (const int elements : {10, 1000, 20000}) {
      const std::string text = Document(elements);
      const CBinaryData packed = Compressed(text, type);
      EXPECT_LT(packed.GetLength(), text.size());
      EXPECT_EQ(type == CompressionType_GZip ? 0x1F : 0x78, packed[0]);
      EXPECT_EQ(DataOf(text), Decompressed(packed));
    }
  }
  EXPECT_EQ(DataOf("abc"), Compressed("abc", CompressionType_None));
  EXPECT_EQ(0u, Compressed("", CompressionType_GZip).GetLength());
}

TEST(Zip, WhatDoesNotShrinkFailsWithZlibsCodeAndStaysIntended) {
  const Rows<CompressionType, std::string, Wide> kCases = {
      {CompressionType_GZip, Noise(10), L"-5"},     {CompressionType_GZip, Noise(11), L"0"},
      {CompressionType_GZip, "<a>12</a>", L"-5"},   {CompressionType_GZip, "<a>1234</a>", L"0"},
      {CompressionType_ZLib, Noise(2), L"-5"},      {CompressionType_ZLib, Noise(3), L"0"},
      {CompressionType_GZip, Noise(300'000), L"0"}, {CompressionType_ZLib, Noise(300'000), L"0"}};
  for (const auto& [type, text, code] : kCases) {
    const std::wstring message = std::wstring(L"Failed to compress data. [Error Code: ") + code + L"]";
    CBinaryData data = DataOf(text);
    EXPECT_THROWS(CRkException, message, CRkZip::CompressData(data, type));
    EXPECT_EQ(DataOf(text), data);
    unsigned long length = 0;
    unsigned char* bytes = data.ReleaseData(&length);
    EXPECT_THROWS(CRkException, message, CRkZip::Compress(&bytes, &length, type));
    EXPECT_EQ(DataOf(text), CBinaryData(bytes, length, /*copy=*/false));
  }
  unsigned char* none = nullptr;
  unsigned long length = 0;
  EXPECT_THROWS(CRkException, L"Failed to compress data. [Error Code: -5]",
                CRkZip::Compress(&none, &length, CompressionType_GZip));
}

TEST(Zip, LeavesWhatIsNoWholeStreamUnchanged) {
  for (const std::string& text : {std::string(), std::string("x"), std::string("<?xml version=\"1.0\"?>"),
                                  std::string("{\"a\":1}"), std::string("\xE0\x00\x00\x01", 4), std::string("\x1F\x8B"),
                                  std::string("\x78\x9C"), std::string("\x78\x9C garbage")})
    EXPECT_EQ(DataOf(text), Decompressed(DataOf(text)));
  for (const CompressionType type : kTypes) {
    const CBinaryData packed = Compressed(Document(50), type);
    for (unsigned long length = 0; length < packed.GetLength(); ++length) {
      CBinaryData cut = packed;
      cut.Truncate(length);
      ASSERT_EQ(cut, Decompressed(cut));
    }
    CBinaryData corrupt = packed;
    corrupt[packed.GetLength() - 5] ^= 0xFF;
    corrupt[packed.GetLength() / 2] ^= 0xFF;
    EXPECT_EQ(corrupt, Decompressed(corrupt));
  }
}

TEST(Zip, DropsWhatFollowsTheStreamIntended) {
  CBinaryData packed = Compressed(Document(10), CompressionType_GZip);
  packed.Append(packed);
  EXPECT_EQ(DataOf(Document(10)), Decompressed(packed));
}

TEST(Zip, InflatingStopsAtALimit) {
  const CBinaryData bomb = Compressed(std::string(8'000'000, 'x'), CompressionType_GZip);
  const auto inflate = [&](InflateLimits limits) {
    CBinaryData out = DataOf("kept");
    const InflateResult result = CRkZip::Inflate(bomb.GetData(), bomb.GetLength(), limits, out);
    EXPECT_EQ(result == InflateResult::Inflated ? 8'000'000u : 4u, out.GetLength());
    return result;
  };
  EXPECT_EQ(InflateResult::Inflated, inflate({0, 0, 0}));
  EXPECT_EQ(InflateResult::Inflated, inflate({8'000'000, 0, 0}));
  EXPECT_EQ(InflateResult::TooManyBytes, inflate({7'999'999, 0, 0}));
  EXPECT_EQ(InflateResult::RatioTooHigh, inflate({0, 100, 1'000'000}));
  EXPECT_EQ(InflateResult::Inflated, inflate({0, 100, 8'000'000}));
  EXPECT_EQ(InflateResult::Inflated, inflate({0, 2000, 0}));
}

#include "RkXmlLib16/fastinfoset/BinaryCodec.h"

#include "Expect.h"
#include "Octets.h"

namespace RkXmlTest {
namespace {

CFastInfosetBinaryData Encoded(unsigned long algorithm, const wchar_t* text) {
  CFastInfosetBinaryData data;
  data.SetAsEncodedString(algorithm, text);
  return data;
}

CFastInfosetBinaryData Holding(const char* hex) {
  Octets octets = FromHex(hex);
  return {octets.data(), octets.size(), /*copy=*/true};
}

TEST(FastInfosetBinaryData, SingleValuesBothWays) {
  const Rows<unsigned long, Wide, const char*> rows = {
      {1, L"0ABC", "0A BC"},
      {3, L"32767", "7F FF"},
      {4, L"-2147483648", "80 00 00 00"},
      {5, L"-9223372036854775808", "80 00 00 00 00 00 00 00"},
      {6, L"false", "30"},
      {7, L"-INF", "FF 80 00 00"},
      {8, L"0.1", "3F B9 99 99 99 99 99 9A"},
      {9, L"00112233445566778899AABBCCDDEEFF", "00 11 22 33 44 55 66 77 88 99 AA BB CC DD EE FF"},
  };
  for (const auto& [algorithm, text, octets] : rows) {
    SCOPED_TRACE(Narrow(text));
    const CFastInfosetBinaryData data = Encoded(algorithm, text);
    EXPECT_EQ(octets, ToHex(ToOctets(data)));
    EXPECT_TEXT(text, data.GetAsString(algorithm));
  }
  EXPECT_EQ("C3 A9", ToHex(ToOctets(Encoded(10, L"\u00E9"))));
  EXPECT_EQ("00 11 22 33 44 55 66 77 88 99 AA BB CC DD EE FF",
            ToHex(ToOctets(Encoded(9, L"00112233-4455-6677-8899-aabbccddeeff"))));
}

TEST(FastInfosetBinaryData, NullIsAnEmptyText) {
  for (unsigned long algorithm = 1; algorithm <= 10; ++algorithm) {
    const auto octets = [algorithm](const wchar_t* text) -> std::string {
      try {
        return ToHex(ToOctets(Encoded(algorithm, text)));
      } catch (const CRkException& e) {
        return Narrow(e.GetMessage());
      }
    };
    EXPECT_EQ(octets(L""), octets(nullptr)) << algorithm;
  }
}

TEST(FastInfosetBinaryData, ListsAreReadWithOneBlankBetween) {
  const Rows<unsigned long, const char*, Wide> rows = {
      {3, "FF FE 01 02", L"-2 258"},
      {4, "00 00 00 01 FF FF FF FF", L"1 -1"},
      {6, "0F", L"true true true true"},
      {6, "7B 00", L"true false true true false"},
      {6, "30", L"false"},
      {6, "F0", L""},  // more unused bits than there are
      {7, "3F C0 00 00 40 00 00 00", L"1.5 2"},
      {6, "", L""},
  };
  for (const auto& [algorithm, octets, text] : rows)
    EXPECT_TEXT(text, Holding(octets).GetAsString(algorithm)) << octets;
}

TEST(FastInfosetBinaryData, Failures) {
  const Rows<unsigned long, std::wstring> numbers = {{3, L"SHORT"}, {4, L"INT"},    {5, L"LONG"},
                                                     {7, L"FLOAT"}, {8, L"DOUBLE"}, {9, L"UUID"}};
  for (const auto& [algorithm, name] : numbers)
    EXPECT_THROWS(CRkException, L"Invalid value for " + name + L" byte encoding.",
                  Holding("01 02 03").GetAsString(algorithm));
  for (const unsigned long algorithm : {0u, 10u, 11u})
    EXPECT_THROWS(CRkException, L"Unknown byte encoding.", Holding("01 02 03").GetAsString(algorithm));
  EXPECT_THROWS(CRkException, L"Unknown byte encoding.", Encoded(11, L"1"));
  EXPECT_THROWS(CRkException, L"Invalid length in hex string", Encoded(1, L"ABC"));
  EXPECT_THROWS(CRkInvalidValueException, L"The value [32768] is to large to fit in a i2", Encoded(3, L"32768"));
  EXPECT_THROWS(CRkInvalidValueException, L"The value [3000000000] is to large to fit in a i4",
                Encoded(4, L"3000000000"));
  EXPECT_THROWS(CRkInvalidValueException, L"The value [1.x] can not be converted to a r8", Encoded(8, L"1.x"));
}

}  // namespace
}  // namespace RkXmlTest

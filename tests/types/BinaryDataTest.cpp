#include "RkXmlLib16/types/BinaryData.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/base/KeptMemory.h"
#include "RkXmlLib16/types/Base64.h"
#include "support/Bytes.h"

using namespace RkXmlTest;

TEST(BinaryData, ReadsAndPrintsHexDigits) {
  EXPECT_TEXT(L"00AB", Hex(L"00ab").GetAsHexString());
  EXPECT_EQ(Hex(L"00AB"), Hex(L"00ab"));
  EXPECT_EQ(0u, Hex(L"").GetLength());
  CBinaryData kept = Hex(L"01");
  EXPECT_THROWS(CRkException, L"Invalid length in hex string", kept.SetAsHexString(L"ABC"));
  EXPECT_THROWS(CRkException, L"Invalid char in hex string [G]", kept.SetAsHexString(L"0G"));
  EXPECT_THROWS(CRkException, L"Invalid char in hex string [\u0661]", kept.SetAsHexString(L"0\u0661"));
  EXPECT_TEXT(L"01", kept.GetAsHexString());
}

TEST(BinaryData, ReadsAndPrintsBase64) {
  const Rows<Wide, Wide> kCases = {{L"", L""},         {L"4D616E", L"TWFu"},           {L"4D", L"TQ=="},
                                   {L"4D61", L"TWE="}, {L"FBEFBEFFFFFF", L"++++////"}, {L"00FF10", L"AP8Q"}};
  for (const auto& [hex, base64] : kCases) {
    EXPECT_TEXT(base64, Hex(hex).GetAsBase64());
    CBinaryData read;
    read.SetAsBase64(base64);
    EXPECT_TEXT(hex, read.GetAsHexString());
  }
  CBinaryData data;
  data.SetAsBase64(L" T\tW\r\nE = ");
  EXPECT_TEXT(L"4D61", data.GetAsHexString());
  for (const wchar_t* text : {L"TW*u", L"TW-_", L"T===", L"=", L"TQ==TQ==", L"TQ===", L"TW\u0141u"})
    EXPECT_THROW(data.SetAsBase64(text), CRkException);
  EXPECT_THROWS(CRkException, L"Invalid char in base64 string [\u0141]", data.SetAsBase64(L"TW\u0141u"));
  EXPECT_THROWS(CRkException, L"Invalid char in base64 string [=]", data.SetAsBase64(L"TWE=="));
  for (const wchar_t* text : {L"T", L"TQ", L"TQ=", L"TWF", L"TWFuT"})
    EXPECT_THROWS(CRkException, L"Invalid length in base64 string", data.SetAsBase64(text));
  EXPECT_TEXT(L"4D61", data.GetAsHexString());
  EXPECT_EQ(3u, CBase64::Decode(L"TWFu", nullptr));
}

TEST(BinaryData, EveryByteAndLengthSurvivesBothTextForms) {
  CBinaryData data;
  for (int i = 0; i < 600; ++i) {
    CBinaryData hex, base64;
    hex.SetAsHexString(data.GetAsHexString().c_str());
    base64.SetAsBase64(data.GetAsBase64().c_str());
    ASSERT_EQ(data, hex);
    ASSERT_EQ(data, base64);
    data.Append(static_cast<unsigned char>(i * 7));
  }
}

TEST(BinaryData, AWriterGetsItsOwnCopyFirst) {
  const CBinaryData original = Hex(L"0102");
  const auto change = [&](auto&& operation) {
    CBinaryData copy = original;
    EXPECT_EQ(original.GetData(), copy.GetData());
    operation(copy);
    EXPECT_TEXT(L"0102", original.GetAsHexString());
    return copy.GetAsHexString();
  };
  EXPECT_TEXT(L"010203", change([](CBinaryData& d) { d.Append(static_cast<unsigned char>(3)); }));
  EXPECT_TEXT(L"01020102", change([](CBinaryData& d) { d.Append(d); }));
  EXPECT_TEXT(L"FF02", change([](CBinaryData& d) { d[0] = 0xFF; }));
  EXPECT_TEXT(L"01", change([](CBinaryData& d) { d.Truncate(1); }));
  EXPECT_TEXT(L"", change([](CBinaryData& d) { d.Clear(); }));
  EXPECT_TEXT(L"", change([](CBinaryData& d) {
                unsigned long length = 0;
                const std::unique_ptr<unsigned char[]> bytes(d.ReleaseData(&length));
                ASSERT_EQ(2u, length);
                bytes[0] = 9;
              }));
}

TEST(BinaryData, AppendsAndSetsItsOwnBytes) {
  CBinaryData data = Hex(L"0102");
  for (int i = 0; i < 10; ++i) data.Append(data);
  EXPECT_EQ(2048u, data.GetLength());
  EXPECT_EQ(2, data[2047]);
  data.SetBuffer(data.GetData() + 1, 3);
  data = *&data;
  EXPECT_TEXT(L"020102", data.GetAsHexString());
}

// Their memory grows in place, or into what others left, or moves.
TEST(BinaryData, LargeBuffersKeepTheirBytesWhateverOthersDo) {
  const auto fill = [](unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::pair<CBinaryData, std::string>> buffers(4);
    for (int step = 0; step < 200; ++step) {
      auto& [data, expected] = buffers[random() % buffers.size()];
      if (random() % 50 == 0) {
        data.Clear();
        expected.clear();
      }
      const std::string piece(random() % 300000, static_cast<char>(random()));
      data.Append(reinterpret_cast<const unsigned char*>(piece.data()), piece.size());
      expected += piece;
      CBinaryData copy = data;
      copy.Append(static_cast<unsigned char>(1));
      EXPECT_EQ(data.GetLength() + 1, copy.GetLength());
      if (random() % 40 == 0) FreeKeptMemory();
    }
    for (auto& [data, expected] : buffers)
      EXPECT_TRUE(std::equal(expected.begin(), expected.end(), reinterpret_cast<const char*>(data.GetData())));
  };
  std::thread other(fill, 1);
  fill(2);
  other.join();
  EXPECT_THROW(CBinaryData().Reserve(std::numeric_limits<unsigned long>::max()), std::bad_alloc);
}

TEST(BinaryData, WideTextIsItsRawBytesWithoutTerminator) {
  EXPECT_TEXT(L"6100000000F60100", CBinaryData(L"a\U0001F600").GetAsHexString());
  CBinaryData data;
  data.SetBuffer(L"b");
  data.Append(L'c');
  data.Append(std::wstring(L"d\0e", 3));
  EXPECT_TEXT(L"620000006300000064000000", data.GetAsHexString());
}

TEST(BinaryData, AnEmptyOrMovedFromBufferIsUsable) {
  CBinaryData data;
  EXPECT_EQ(nullptr, data.ReleaseData());
  EXPECT_EQ(CBinaryData(), data);
  data.Append(nullptr, 0);
  data.SetBuffer(static_cast<const wchar_t*>(nullptr));
  data.SetAsBase64(nullptr);
  EXPECT_THROWS(CRkException, L"Index Out of range [0]", data[0]);
  EXPECT_THROWS(CRkException, L"Index Out of range [18446744073709551615]", data[~0ul]);
  data = Hex(L"01");
  const CBinaryData moved = std::move(data);
  data.Append(moved);  // NOLINT(bugprone-use-after-move,clang-analyzer-cplusplus.Move): what is tested
  EXPECT_EQ(moved, data);
}

TEST(BinaryData, HolderDemandsExclusiveUse) {
  CDataHolder* const holder = new CDataHolder();
  holder->AddRef();
  const unsigned char byte = 1;
  EXPECT_THROWS(CRkException, L"Failed to append. [RefCount=2]", holder->Append(&byte, 1));
  EXPECT_THROWS(CRkException, L"Failed to release data. [RefCount=1]", holder->Release(true));
  holder->Append(&byte, 1);
  EXPECT_EQ(1u, holder->GetLength());
  holder->AddRef();
  CDataHolder* const copy = holder->GetExclusiveCopy();
  EXPECT_NE(holder, copy);
  EXPECT_EQ(holder, holder->GetExclusiveCopy());
  copy->Release(true);
  holder->Release(true);
}

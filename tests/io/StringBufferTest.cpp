#include "RkXmlLib16/io/StringBuffer.h"

#include <new>

#include "Expect.h"

using namespace RkXmlTest;

namespace {

int BlocksOf(const CStringBuffer& buffer) {
  int blocks = 0;
  buffer.ForEachBlock([&blocks](std::wstring_view) { ++blocks; });
  return blocks;
}

}  // namespace

TEST(StringBuffer, FillsABlockExactlyBeforeTheNextBegins) {
  CStringBuffer buffer;
  EXPECT_TEXT(L"", buffer.GetText());
  EXPECT_EQ(0, BlocksOf(buffer));
  const std::wstring text(4095, L'a');
  buffer.Append(text);
  EXPECT_EQ(1, BlocksOf(buffer));
  EXPECT_EQ(text, buffer.GetText());
  buffer.Append(L'b');
  EXPECT_EQ(2, BlocksOf(buffer));
  EXPECT_EQ(4096u, buffer.GetLength());
  EXPECT_EQ(text + L"b", buffer.GetText());
  EXPECT_EQ(1, BlocksOf(buffer));
  buffer.Append(L"c");
  EXPECT_EQ(2, BlocksOf(buffer));
  EXPECT_EQ(text + L"bc", buffer.GetText());
}

TEST(StringBuffer, KeepsEveryTextInEveryBlockSize) {
  for (unsigned long blockSize = 0; blockSize < 9; ++blockSize) {
    CStringBuffer buffer(blockSize);
    std::wstring expected;
    for (int i = 0; i < 60; ++i) {
      const std::wstring piece(static_cast<std::size_t>(i % 7), static_cast<wchar_t>(L'a' + i % 26));
      if (i % 4 == 0) buffer.Append(piece.c_str());
      if (i % 4 == 1) buffer.Append(piece);
      if (i % 4 == 2) buffer.Append(std::wstring_view(piece));
      for (std::size_t c = 0; i % 4 == 3 && c < piece.size(); ++c) buffer.Append(piece[c]);
      expected += piece;
      ASSERT_EQ(expected.size(), buffer.GetLength());
      ASSERT_EQ(expected, buffer.ToString());
      ASSERT_TRUE(i % 20 != 19 || expected == buffer.GetText());
    }
  }
}

TEST(StringBuffer, EmptyKeepsASingleBlockOnly) {
  CStringBuffer buffer(5);
  buffer.Append(L"abc");
  const wchar_t* const block = buffer.GetText();
  buffer.Empty();
  EXPECT_EQ(0u, buffer.GetLength());
  EXPECT_TEXT(L"", buffer.GetText());
  buffer.Append(L"de");
  EXPECT_EQ(block, buffer.GetText());
  EXPECT_TEXT(L"de", buffer.GetText());
  buffer.Append(L"fghij");
  buffer.Empty();
  EXPECT_EQ(0, BlocksOf(buffer));
  buffer.SetText(L"x");
  buffer.SetText(L"yz");
  EXPECT_TEXT(L"yz", buffer.GetText());
  buffer.SetText(nullptr);
  EXPECT_TEXT(L"", buffer.GetText());
}

TEST(StringBuffer, AppendsItsOwnText) {
  CStringBuffer buffer(4);
  buffer.Append(L"abcd");
  buffer.Append(buffer.GetText());
  EXPECT_TEXT(L"abcdabcd", buffer.GetText());
}

// A text that held a NUL would end there for every later reader and cut off what follows.
TEST(StringBuffer, AStringObjectEndsAtItsFirstNulIntended) {
  CStringBuffer buffer;
  buffer.Append(std::wstring(L"a\0b", 3));
  buffer.Append(L"c");
  EXPECT_TEXT(L"ac", buffer.GetText());
  EXPECT_EQ(2u, buffer.GetLength());
}
TEST(StringBuffer, RefusesToReserveMoreThanMemoryHolds) {
  CStringBuffer buffer;
  buffer.Append(L"kept");
  for (const unsigned long count : {~0UL, ~0UL - 1, ~0UL / 4, ~0UL / 4 - 1, ~0UL / 8})
    EXPECT_THROW(buffer.Reserve(count), std::bad_alloc) << count;
  EXPECT_TEXT(L"kept", buffer.GetText());
}

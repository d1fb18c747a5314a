#include "RkXmlLib16/io/StringBuffer.h"

#include <new>

#include "Expect.h"

using namespace RkXmlTest;

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

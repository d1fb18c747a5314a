// Documents that cost far more than their length suggests.
#include <string>

#include "Expect.h"
#include "RkXmlLib16/facets/FacetChecks.h"
#include "RkXmlLib16/facets/RegEx.h"
#include "fixtures/Records.h"
#include "support/SmallStack.h"

using namespace RkXmlTest;

namespace {

using HostileReadingTest = TableTest;

Table::Initial Texts(const wchar_t* pattern) {
  return [pattern](RkVariant& value) {
    value.SetXmlCollection(new CstringCol(L"v", L"", 0, -1, pattern, -1, -1, nullptr, nullptr, nullptr, nullptr, -1, -1,
                                          -1, CWhitespaceUtils::none, nullptr));
  };
}

std::wstring ReadValues(const wchar_t* pattern, int count, const std::wstring& value, unsigned long steps) {
  const Table table(ClassInfo(kSequence, L"r"), {new CElementInfoSeqPrimCol(L"v", L"", 0)}, {}, {Texts(pattern)});
  CSerializationContext context;
  context.GetLimits().SetMaxPatternSteps(steps);
  const std::wstring xml = L"<r>" + Repeat(count, (L"<v>" + value + L"</v>").c_str()) + L"</r>";
  return Thrown([&] { Read(table, xml.c_str(), context); });
}

// <e><e>...</e></e>
std::wstring Nested(int depth) { return Repeat(depth, L"<e>") + Repeat(depth, L"</e>"); }

}  // namespace

// The first alternative fails after steps by the power of the length, the second one matches.
TEST_F(HostileReadingTest, PatternsShareOneBudgetInARead) {
  constexpr wchar_t kHard[] = L"(a|aa)+b|a+!";
  const std::wstring value = std::wstring(33, L'a') + L"!";
  // Met its limit once, the pattern never goes back again.
  EXPECT_TEXT(L"nothing", ReadValues(kHard, 2000, value, 1));

  // A reference to a group leaves nothing but going back.
  constexpr wchar_t kHarder[] = L"((a|aa)+b|(a+)!\\3?)";
  const std::wstring shorter = std::wstring(16, L'a') + L"!";
  EXPECT_TEXT(L"nothing", ReadValues(kHarder, 10, shorter, 1000000));
  EXPECT_NE(std::wstring::npos,
            ReadValues(kHarder, 100, shorter, 1000000).find(L"Limit exceeded: pattern steps 1000000."));
  EXPECT_TEXT(L"nothing", ReadValues(kHarder, 100, shorter, 0));
  for (int i = 0; i < 100; ++i) EXPECT_TRUE(TestRegEx("((a|aa)+b|(a+)!\\3?)", shorter));
}

TEST_F(HostileReadingTest, TheBudgetReachesSetters) {
  const CPrimitiveRestrictions facets(L"((a|aa)+b|(a+)!\\3?)", -1, -1, nullptr, nullptr, nullptr, nullptr, -1, -1, -1);
  Table table(ClassInfo(kSequence, L"r"), {Prim(L"v", 0, ItemType_string)});
  int checked = 0;
  table.m_checkSetter = [&](int, const RkVariant& value) {
    for (checked = 0; checked < 100; ++checked)
      CXmlObjectHelper::CheckRestrictionForstring(L"v", value.GetString(), facets);
  };
  CSerializationContext context;
  context.GetLimits().SetMaxPatternSteps(1000000);
  const std::wstring xml = L"<r><v>" + std::wstring(16, L'a') + L"!</v></r>";
  EXPECT_NE(L"nothing", Thrown([&] { Read(table, xml.c_str(), context); }));
  EXPECT_LT(0, checked);
  EXPECT_GT(100, checked);
}

// As deep as a small stack lets a document be read, it is also written and destroyed there.
TEST_F(HostileReadingTest, ObjectDepthEndsBeforeTheStack) {
  const Table table(ClassInfo(kSequence, L"e"), {Cls(L"e", 0)});
  Classes() = {&table};
  RunInSmallStack([&] {
    CSerializationContext context;
    context.GetLimits().SetMaxObjectDepth(0);
    const std::wstring failure = Thrown([&] { Read(table, Nested(20000).c_str(), context); });
    constexpr wchar_t kLimit[] = L"Limit exceeded: object depth ";
    const std::size_t at = failure.find(kLimit);
    ASSERT_NE(std::wstring::npos, at) << Narrow(failure);
    const int depth = std::stoi(failure.substr(at + std::size(kLimit) - 1));
    EXPECT_LT(50, depth);
    const auto object = Read(table, Nested(depth).c_str(), context);
    EXPECT_TEXT(Repeat(depth - 1, L"<e>") + L"<e/>" + Repeat(depth - 1, L"</e>"), Write(*object, context));
    EXPECT_FALSE(object->ToJson(false, EOLType_LF, context).empty());
    EXPECT_NE(0u, object->ToFastInfosetStream(FInfoDecl_None, context).GetLength());
  });
}

#include "schema/components/SimpleValue.h"

#include <algorithm>

#include "Expect.h"
#include "support/Cases.h"
#include "support/Schemas.h"

namespace RkXmlSchema {
namespace {

using RkXmlTest::Narrow;

std::wstring Wide(const std::string& text) { return {text.begin(), text.end()}; }

TEST(SimpleValue, IsComparedInTheValueSpace) {
  const CSchemaSet set;
  const struct {
    const wchar_t* type;
    const wchar_t* a;
    const wchar_t* b;
    bool equal;
  } rows[] = {
      {L"decimal", L"1.50", L"+01.5", true},
      {L"decimal", L"-0", L"0", true},
      {L"float", L"1e2", L"100", true},
      {L"double", L"NaN", L"NaN", true},
      {L"boolean", L"1", L"true", true},
      {L"string", L" a", L"a", false},
      {L"token", L" a", L"a", true},
      {L"dateTime", L"2024-01-01T00:00:00Z", L"2023-12-31T24:00:00Z", true},
      {L"date", L"2024-01-01Z", L"2024-01-01", false},
      {L"duration", L"P1Y", L"P12M", true},
      {L"duration", L"P1M", L"P30D", false},
      {L"hexBinary", L"ab", L"AB", true},
      {L"base64Binary", L"Y Q==", L"YQ==", true},
      {L"NMTOKENS", L"a  b", L" a b", true},
      {L"time", L"12:00:00+01:00", L"11:00:00Z", true},
  };
  for (const auto& row : rows)
    EXPECT_EQ(AreEqualValues(*set.FindType({kSchemaNamespace, row.type})->AsSimple(), row.a, row.b), row.equal)
        << Narrow(row.a) << " " << Narrow(row.b);
}

// The lines of the file are "+ TYPE VALUE", and "- TYPE VALUE" where it is none; first of built-in types.
TEST(SimpleValue, IsOfTheLexicalSpaceAndHoldsAllFacets) {
  CSchemaSet set;
  set.AddFile(L"" RKXML_TEST_DATA "/facets.xsd");
  ASSERT_TRUE(set.Resolve()) << Narrow(Lines(set));
  const NamespaceBindings bindings = {{L"u", L"urn:t"}, {L"a", L"urn:a"}};
  for (const std::string& line : RkXmlTest::ReadLines(RKXML_TEST_DATA "/simple_values.txt")) {
    const std::size_t blank = std::min(line.find(' ', 2), line.size());
    const std::wstring name = Wide(line.substr(2, blank - 2));
    const TypeDefinition* const own = set.FindType({L"urn:t", name});
    const TypeDefinition* const type = own != nullptr ? own : set.FindType({kSchemaNamespace, name});
    EXPECT_EQ(
        !CheckValue(*type->AsSimple(), Wide(line.substr(std::min(blank + 1, line.size()))), ResolverOf(&bindings)),
        line[0] == '+')
        << line;
  }
  const SimpleTypeDefinition* const either = set.FindType({L"urn:t", L"sizeOrName"})->AsSimple();
  EXPECT_EQ(FindMemberType(*either, L"12"), set.GetBuiltIn(BuiltInType::Byte));
  EXPECT_EQ(FindMemberType(*either, L"a"), set.GetBuiltIn(BuiltInType::NCName));
}

}  // namespace
}  // namespace RkXmlSchema

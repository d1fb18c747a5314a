#include "schema/components/SimpleValue.h"

#include "Expect.h"
#include "support/Schemas.h"

namespace RkXmlSchema {
namespace {

using RkXmlTest::Narrow;

TEST(SimpleValue, HasTheLexicalSpaceOfItsType) {
  const CSchemaSet set;
  const struct {
    const wchar_t* type;
    std::vector<const wchar_t*> valid;
    std::vector<const wchar_t*> invalid;
  } rows[] = {
      {L"boolean", {L"true", L" 0 "}, {L"TRUE", L"", L"yes"}},
      {L"decimal", {L"-.5", L"+5.", L"00012345678901234567890.10"}, {L".", L"1e3", L"", L"- 1"}},
      {L"integer", {L"-0", L"+12"}, {L"1.0", L"1.", L""}},
      {L"long", {L"-9223372036854775808"}, {L"9223372036854775808"}},
      {L"byte", {L"-128", L"127"}, {L"128", L"-129"}},
      {L"unsignedByte", {L"255", L"-0"}, {L"256", L"-1"}},
      {L"positiveInteger", {L"1"}, {L"0"}},
      {L"negativeInteger", {L"-1"}, {L"0"}},
      {L"float", {L"1e3", L"-INF", L"NaN", L".5E-2"}, {L"+INF", L"inf", L"1e", L"0x1", L""}},
      {L"duration",
       {L"P1Y", L"-P1DT2.5S", L"PT0S"},
       {L"P", L"PT", L"P1", L"P1H", L"P1M1Y", L"PT1.S", L"+P1Y", L"P-1Y"}},
      {L"dateTime",
       {L"2024-02-29T24:00:00", L"-0001-01-01T00:00:00.5Z", L"12024-01-01T00:00:00+14:00"},
       {L"2023-02-29T00:00:00", L"0000-01-01T00:00:00", L"2024-01-01T24:00:01", L"2024-01-01T00:00:00+14:01",
        L"02024-01-01T00:00:00", L"2024-01-01", L"2024-01-01T00:00:60"}},
      {L"time", {L"23:59:59.999"}, {L"25:00:00", L"1:00:00"}},
      {L"gYearMonth", {L"2024-02Z"}, {L"2024-13"}},
      {L"gMonthDay", {L"--02-29"}, {L"--02-30", L"-02-29"}},
      {L"gMonth", {L"--05"}, {L"05", L"--05--"}},
      {L"gDay", {L"---31-05:00"}, {L"---32"}},
      {L"hexBinary", {L"0aFF", L""}, {L"0", L"0g"}},
      {L"base64Binary", {L"YQ==", L"Y Q = =", L""}, {L"YQ=", L"YR==", L"Y", L"Y=Q="}},
      {L"anyURI", {L"", L"a b", L"http://x/%20#f"}, {L"%zz", L"a#b#c", L":x"}},
      {L"QName", {L"a:b", L"b"}, {L":b", L"a:", L"a:b:c", L"1"}},
      {L"language", {L"en-US", L"x-klingon"}, {L"", L"en_US", L"toolonglang"}},
      {L"NMTOKENS", {L"a 1"}, {L"", L"a ,"}},
      {L"Name", {L":a"}, {L"1a", L""}},
      {L"NCName", {L"a.b"}, {L"a:b"}},
      {L"token", {L"", L"  a  "}, {}},
  };
  for (const auto& row : rows) {
    const SimpleTypeDefinition* const type = set.FindType({kSchemaNamespace, row.type})->AsSimple();
    for (const wchar_t* text : row.valid)
      EXPECT_EQ(CheckValue(*type, text), std::nullopt) << Narrow(row.type) << " " << Narrow(text);
    for (const wchar_t* text : row.invalid)
      EXPECT_TRUE(CheckValue(*type, text)) << Narrow(row.type) << " " << Narrow(text);
  }
}

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

TEST(SimpleValue, HasToHoldAllFacets) {
  const auto set = Read(R"(
    <xs:simpleType name='digits'><xs:restriction base='xs:decimal'><xs:totalDigits value='4'/><xs:fractionDigits value='2'/>
      </xs:restriction></xs:simpleType>
    <xs:simpleType name='past'><xs:restriction base='xs:dateTime'><xs:maxExclusive value='2000-01-01T00:00:00Z'/>
      </xs:restriction></xs:simpleType>
    <xs:simpleType name='span'><xs:restriction base='xs:duration'><xs:minInclusive value='P1M'/></xs:restriction></xs:simpleType>
    <xs:simpleType name='code'><xs:restriction base='xs:token'><xs:pattern value='[A-Z]+'/><xs:pattern value='\d+'/>
      </xs:restriction></xs:simpleType>
    <xs:simpleType name='shortCode'><xs:restriction base='t:code'><xs:pattern value='..'/></xs:restriction></xs:simpleType>
    <xs:simpleType name='sizes'><xs:list itemType='xs:byte'/></xs:simpleType>
    <xs:simpleType name='twoSizes'><xs:restriction base='t:sizes'><xs:length value='2'/><xs:enumeration value='1 2'/>
      <xs:enumeration value='3 4'/></xs:restriction></xs:simpleType>
    <xs:simpleType name='sizeOrName'><xs:union memberTypes='xs:byte xs:NCName'/></xs:simpleType>
    <xs:simpleType name='someOfThem'><xs:restriction base='t:sizeOrName'><xs:enumeration value='7'/><xs:enumeration value='x'/>
      </xs:restriction></xs:simpleType>
    <xs:simpleType name='names'><xs:restriction base='xs:QName'><xs:enumeration value='t:one'/></xs:restriction></xs:simpleType>)");
  ASSERT_EQ(Lines(*set), L"");
  const struct {
    const wchar_t* type;
    const wchar_t* text;
    bool valid;
  } rows[] = {
      {L"digits", L"99.99", true},
      {L"digits", L"0099.9900", true},
      {L"digits", L"999.99", false},
      {L"digits", L"1.234", false},
      {L"past", L"1999-12-31T23:59:59Z", true},
      {L"past", L"2000-01-01T00:00:00Z", false},
      {L"past", L"1999-12-31T23:00:00", false},  // within 14 hours: the order is not known
      {L"past", L"1999-12-30T00:00:00", true},
      {L"span", L"P32D", true},
      {L"span", L"P30D", false},
      {L"code", L"AB", true},
      {L"code", L"12", true},
      {L"code", L"A1", false},
      {L"shortCode", L"12", true},
      {L"shortCode", L"123", false},
      {L"sizes", L"1 -1", true},
      {L"sizes", L"1 300", false},
      {L"twoSizes", L" 01  2 ", true},
      {L"twoSizes", L"1 3", false},
      {L"sizeOrName", L"x", true},
      {L"sizeOrName", L"300", false},
      {L"someOfThem", L"07", true},
      {L"someOfThem", L"8", false},
      {L"someOfThem", L" x ", true},
      {L"names", L"u:one", true},
      {L"names", L"one", false},
  };
  const NamespaceBindings bindings = {{L"u", L"urn:t"}};
  for (const auto& row : rows) {
    const SimpleTypeDefinition* const type = set->FindType({L"urn:t", row.type})->AsSimple();
    EXPECT_EQ(!CheckValue(*type, row.text, ResolverOf(&bindings)), row.valid)
        << Narrow(row.type) << " " << Narrow(row.text);
  }
  const SimpleTypeDefinition* const either = set->FindType({L"urn:t", L"sizeOrName"})->AsSimple();
  EXPECT_EQ(FindMemberType(*either, L"12"), set->GetBuiltIn(BuiltInType::Byte));
  EXPECT_EQ(FindMemberType(*either, L"a"), set->GetBuiltIn(BuiltInType::NCName));
}

}  // namespace
}  // namespace RkXmlSchema

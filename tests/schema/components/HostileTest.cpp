// Schemas that cost far more than their size suggests: reading ends soon, with a diagnostic or without.
#include <gtest/gtest.h>

#include "RkXmlLib16/base/Format.h"
#include "support/Schemas.h"

namespace RkXmlSchema {
namespace {

// The text so many times, with the number of each for "#" and the next number for "@".
std::string Many(int count, const char* text) {
  std::string all;
  for (int i = 0; i < count; ++i) {
    std::string one = text;
    RkXmlLib16::FindReplace(one, "#", std::to_string(i).c_str());
    RkXmlLib16::FindReplace(one, "@", std::to_string(i + 1).c_str());
    all += one;
  }
  return all;
}

bool IsLimited(const CSchemaSet& set) { return Lines(set).find(L"Limit exceeded: ") != std::wstring::npos; }

TEST(Hostile, GroupsThatDoubleWithEachLevel) {
  const std::string groups =
      Many(100,
           "<xs:group name='g#'><xs:sequence><xs:group ref='t:g@'/><xs:group ref='t:g@'/></xs:sequence></xs:group>") +
      "<xs:group name='g100'><xs:sequence><xs:element name='e' type='xs:string'/></xs:sequence></xs:group>";
  EXPECT_EQ(Lines(*Read(groups)), L"");  // as long as nobody uses them
  EXPECT_TRUE(IsLimited(*Read(groups + "<xs:complexType name='c'><xs:group ref='t:g0'/></xs:complexType>")));
  // Optional ones are allowed to be empty, which is found out once for each.
  EXPECT_TRUE(IsLimited(
      *Read(groups + "<xs:complexType name='c' mixed='true'><xs:group ref='t:g0' minOccurs='0'/></xs:complexType>"
                     "<xs:element name='x' type='t:c' default='1'/>")));
  // Unions of unions.
  const auto unions =
      Read(Many(100, "<xs:simpleType name='u#'><xs:union memberTypes='t:u@ t:u@'/></xs:simpleType>") +
           "<xs:simpleType name='u100'><xs:restriction base='xs:int'/></xs:simpleType>"
           "<xs:element name='x' type='t:u0' default='1'/><xs:element name='y' type='t:u0' default='a'/>");
  EXPECT_NE(Lines(*unions).find(L"[a] is no value"), std::wstring::npos);
  // Attribute groups.
  EXPECT_EQ(
      Lines(*Read(Many(100,
                       "<xs:attributeGroup name='a#'><xs:attributeGroup ref='t:a@'/><xs:attributeGroup ref='t:a@'/>"
                       "</xs:attributeGroup>") +
                  "<xs:attributeGroup name='a100'><xs:attribute name='x'/></xs:attributeGroup>")),
      L"");
}

TEST(Hostile, ChainsOfAnyLength) {
  const int kLength = 20000;
  EXPECT_TRUE(IsLimited(*Read("<xs:complexType name='c0'/>" +
                              Many(kLength,
                                   "<xs:complexType name='c@'><xs:complexContent><xs:extension base='t:c#'/>"
                                   "</xs:complexContent></xs:complexType>"))));
  EXPECT_TRUE(
      IsLimited(*Read("<xs:simpleType name='c0'><xs:restriction base='xs:int'/></xs:simpleType>" +
                      Many(kLength, "<xs:simpleType name='c@'><xs:restriction base='t:c#'/></xs:simpleType>"))));
  EXPECT_TRUE(
      IsLimited(*Read("<xs:element name='c0'/>" + Many(kLength, "<xs:element name='c@' substitutionGroup='t:c#'/>"))));
  EXPECT_TRUE(IsLimited(
      *Read("<xs:group name='c0'><xs:sequence/></xs:group>" +
            Many(kLength, "<xs:group name='c@'><xs:sequence><xs:group ref='t:c#'/></xs:sequence></xs:group>"))));
}

TEST(Hostile, LargeNumbersCostNothing) {
  EXPECT_EQ(
      Lines(*Read("<xs:complexType name='c'><xs:sequence minOccurs='1000000000' maxOccurs='1000000000'>"
                  "<xs:element name='a' minOccurs='999999999' maxOccurs='99999999999999999999999999'/>"
                  "<xs:choice maxOccurs='unbounded'><xs:element name='b'/><xs:any namespace='##other'/></xs:choice>"
                  "</xs:sequence></xs:complexType>")),
      L"");
  std::string nested;
  for (int i = 0; i < 100; ++i) nested += "<xs:sequence minOccurs='2' maxOccurs='2'>";
  nested += "<xs:element name='a'/>";
  for (int i = 0; i < 100; ++i) nested += "</xs:sequence>";
  const auto set = Read("<xs:complexType name='c'>" + nested + "</xs:complexType>");
  EXPECT_FALSE(set->HasErrors());  // a warning says that it was not checked to the end
}

TEST(Hostile, WideContentIsCheckedWithinABudget) {
  // Each of many optional elements can be followed by all later ones.
  const auto set = Read("<xs:complexType name='c'><xs:sequence>" +
                        Many(20000, "<xs:element name='e#' minOccurs='0'/>") + "</xs:sequence></xs:complexType>");
  EXPECT_FALSE(set->HasErrors());
  EXPECT_FALSE(Read("<xs:complexType name='c'><xs:choice maxOccurs='unbounded'>" +
                    Many(20000, "<xs:element name='e#' maxOccurs='unbounded'/>") + "</xs:choice></xs:complexType>")
                   ->HasErrors());
}

TEST(Hostile, DeepDocumentsAndManyErrors) {
  std::string deep;
  for (int i = 0; i < 5000; ++i) deep += "<xs:sequence>";
  for (int i = 0; i < 5000; ++i) deep += "</xs:sequence>";
  EXPECT_TRUE(IsLimited(*Read("<xs:complexType name='c'>" + deep + "</xs:complexType>")));
  const auto set = Read(Many(5000, "<xs:element name='e#' type='t:none'/>"));
  EXPECT_EQ(set->GetDiagnostics().size(), SchemaLimits().maxDiagnostics + 1);
}

TEST(Hostile, NothingOutsideIsRead) {
  const auto set = Read(
      "<xs:include schemaLocation='http://localhost:1/a.xsd'/><xs:import namespace='urn:d' schemaLocation='/dev/zero'/>"
      "<xs:import namespace='urn:f' schemaLocation='file:///proc/self/mem'/>");
  EXPECT_EQ(set->GetDocuments().size(), 1u);
}

}  // namespace
}  // namespace RkXmlSchema

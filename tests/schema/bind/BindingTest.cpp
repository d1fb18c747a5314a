// Which records, kinds and facets the components of a schema become.
#include "schema/bind/Binding.h"

#include <gtest/gtest.h>

#include "RkXmlLib16/RkXmlLib16.h"
#include "support/Cases.h"
#include "support/Schemas.h"

namespace RkXmlSchema {
namespace {

using namespace RkXmlLib16;

struct Bound {
  explicit Bound(const std::string& parts) {
    set.AddText(Schema(parts), L"test.xsd");
    if (set.Resolve()) binding = std::make_unique<CBinding>(set);
  }
  const ClassBinding& Class(const wchar_t* type) const { return *binding->FindClass(set.FindType({L"urn:t", type})); }

  CSchemaSet set;
  std::unique_ptr<CBinding> binding;
};

// "SeqPrimMnd": the name of the record class for the member, without "CElementInfo".
std::string RecordClass(const ClassBinding& owner, const MemberBinding& member) {
  static constexpr const char* kGroups[] = {"Seq", "Choice", "All"};
  static constexpr const char* kKinds[] = {"Prim", "Enum", "Cls", "AbsCls", "Cls", "Untpd"};
  static constexpr const char* kCardinalities[] = {"Mnd", "Opt", "Col"};
  return std::string(kGroups[owner.group]) + kKinds[static_cast<int>(member.kind)] +
         kCardinalities[static_cast<int>(member.cardinality)];
}

// "a:SeqPrimMnd b:SeqClsCol(ChoicePrimOpt,...)": names, records, occurrence where it is not 1, and groups in brackets.
std::string Members(const ClassBinding& object) {
  std::string text;
  for (const MemberBinding& member : object.members) {
    if (!text.empty()) text += ' ';
    text += std::string(member.name.begin(), member.name.end()) + ':' + RecordClass(object, member);
    if (member.IsCollection())
      text += '{' + std::to_string(member.minOccurs) + ',' + std::to_string(member.maxOccurs) +
              (member.stopsAtMaximum ? "!}" : "}");
    if (member.kind == MemberBinding::Kind::InlineGroup)
      text += (member.isRequired ? "(" : "?(") + Members(*member.object) + ')';
  }
  return text;
}

TEST(Binding, MembersAndRecords) {
  const std::string common =
      "<xs:simpleType name='e'><xs:restriction base='xs:string'><xs:enumeration value='x'/></xs:restriction>"
      "</xs:simpleType><xs:complexType name='o'/><xs:complexType name='base'/><xs:complexType name='more'>"
      "<xs:complexContent><xs:extension base='t:base'/></xs:complexContent></xs:complexType><xs:element name='head'/>"
      "<xs:element name='sub' substitutionGroup='t:head' type='xs:int'/>";
  for (const auto& [type, members] : RkXmlTest::ReadCases(RKXML_TEST_DATA "/schema_members.txt")) {
    const Bound bound(common + "<xs:complexType name='r'>" + type + "</xs:complexType>");
    ASSERT_NE(nullptr, bound.binding) << members;
    EXPECT_EQ(members, Members(bound.Class(L"r")));
  }
}

TEST(Binding, TellsWhatIsNotCheckedAndNotKept) {
  const Bound bound(
      "<xs:element name='r'><xs:complexType mixed='true'><xs:sequence><xs:element name='a' minOccurs='0'/>"
      "</xs:sequence></xs:complexType><xs:key name='k'><xs:selector xpath='t:a'/><xs:field xpath='.'/></xs:key>"
      "</xs:element>");
  ASSERT_NE(nullptr, bound.binding);
  ASSERT_EQ(1u, bound.binding->GetUnchecked().size());
  EXPECT_NE(0u, bound.binding->GetUnchecked()[0].location.line);
  ASSERT_EQ(1u, bound.binding->GetUnkept().size());
  EXPECT_NE(0u, bound.binding->GetUnkept()[0].location.column);
}

}  // namespace
}  // namespace RkXmlSchema

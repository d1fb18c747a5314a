// Which records, kinds and facets the components of a schema become.
#include "schema/bind/Binding.h"

#include <gtest/gtest.h>

#include "RkXmlLib16/RkXmlLib16.h"

namespace RkXmlSchema {
namespace {

using namespace RkXmlLib16;

struct Bound {
  explicit Bound(const std::string& parts) {
    set.AddText(
        "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:t' targetNamespace='urn:t' "
        "elementFormDefault='qualified'>" +
            parts + "</xs:schema>",
        L"test.xsd");
    if (set.Resolve()) binding = std::make_unique<CBinding>(set);
  }
  const ClassBinding& Class(const wchar_t* type) const { return *binding->FindClass(set.FindType({L"urn:t", type})); }

  CSchemaSet set;
  std::unique_ptr<CBinding> binding;
};

// "a:SeqPrimMnd b:SeqClsCol(ChoicePrimOpt,...)": names, records, occurrence where it is not 1, and groups in brackets.
std::string Members(const ClassBinding& object) {
  std::string text;
  for (const MemberBinding& member : object.members) {
    if (!text.empty()) text += ' ';
    text += std::string(member.name.begin(), member.name.end()) + ':' +
            GetRecordClass(object, member).substr(sizeof "CElementInfo" - 1);
    if (member.IsCollection())
      text += '{' + std::to_string(member.minOccurs) + ',' + std::to_string(member.maxOccurs) +
              (member.stopsAtMaximum ? "!}" : "}");
    if (member.kind == MemberBinding::Kind::InlineGroup)
      text += (member.isRequired ? "(" : "?(") + Members(*member.object) + ')';
  }
  return text;
}

TEST(Binding, MembersAndRecords) {
  const struct {
    const char* type;
    const char* members;
  } rows[] = {
      {"<xs:sequence><xs:element name='a' type='xs:int'/><xs:element name='b' type='t:e' minOccurs='0'/><xs:element "
       "name='c' type='t:o' maxOccurs='9'/><xs:element name='d' type='t:base'/><xs:any maxOccurs='unbounded'/>"
       "</xs:sequence>",
       "a:SeqPrimMnd b:SeqEnumOpt c:SeqClsCol{1,9} d:SeqAbsClsMnd AnyElement:SeqUntpdCol{1,-1}"},
      {"<xs:choice><xs:element name='a' type='xs:int'/><xs:choice><xs:element name='b' type='t:o' maxOccurs='2'/>"
       "</xs:choice></xs:choice>",
       "a:ChoicePrimOpt b:ChoiceClsCol{1,2}"},
      {"<xs:sequence minOccurs='0' maxOccurs='unbounded'><xs:element name='a' type='xs:int'/></xs:sequence>",
       "a:SeqPrimCol{0,-1}"},
      {"<xs:sequence><xs:choice minOccurs='2' maxOccurs='2'><xs:sequence><xs:element name='a' type='xs:int' "
       "maxOccurs='2'/></xs:sequence></xs:choice><xs:sequence minOccurs='0' maxOccurs='2'><xs:element name='b' "
       "type='xs:int' minOccurs='2' maxOccurs='2'/></xs:sequence><xs:sequence maxOccurs='9223372036854775808'>"
       "<xs:element name='c' type='xs:int' maxOccurs='3'/></xs:sequence></xs:sequence>",
       "a:SeqPrimCol{2,4} b:SeqClsCol{0,2}(b:SeqPrimCol{2,2!}) c:SeqPrimCol{1,-1}"},
      {"<xs:sequence><xs:choice maxOccurs='unbounded'><xs:element name='a' type='xs:int' minOccurs='0'/><xs:element "
       "name='b' type='xs:int'/></xs:choice></xs:sequence>",
       "a:SeqClsCol{0,-1}?(a:ChoicePrimOpt b:ChoicePrimOpt)"},
      {"<xs:all minOccurs='0'><xs:element name='a' type='xs:int'/><xs:element name='b' type='xs:int' minOccurs='0'/>"
       "</xs:all>",
       "a:SeqClsOpt(a:AllPrimMnd b:AllPrimOpt)"},
      {"<xs:sequence><xs:element name='a' type='xs:int' minOccurs='2' maxOccurs='2'/><xs:element name='a' "
       "type='xs:int'/></xs:sequence>",
       "a:SeqPrimCol{2,2!} a:SeqPrimMnd"},
      {"<xs:sequence><xs:element name='a' type='xs:int' nillable='true'/><xs:element name='b' type='xs:int' "
       "nillable='true' minOccurs='0'/><xs:element name='c' type='xs:int' default='1' maxOccurs='3'/></xs:sequence>",
       "a:SeqPrimMnd b:SeqClsOpt c:SeqClsCol{1,3}"},
      {"<xs:sequence><xs:element ref='t:head' maxOccurs='4'/></xs:sequence>",
       "head:SeqClsCol{1,4}(head:ChoiceAbsClsOpt sub:ChoicePrimOpt)"},
  };
  const std::string common =
      "<xs:simpleType name='e'><xs:restriction base='xs:string'><xs:enumeration value='x'/></xs:restriction>"
      "</xs:simpleType><xs:complexType name='o'/><xs:complexType name='base'/><xs:complexType name='more'>"
      "<xs:complexContent><xs:extension base='t:base'/></xs:complexContent></xs:complexType><xs:element name='head'/>"
      "<xs:element name='sub' substitutionGroup='t:head' type='xs:int'/>";
  for (const auto& row : rows) {
    const Bound bound(common + "<xs:complexType name='r'>" + row.type + "</xs:complexType>");
    ASSERT_NE(nullptr, bound.binding) << row.members;
    EXPECT_EQ(row.members, Members(bound.Class(L"r")));
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

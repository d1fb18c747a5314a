// What each construct of a schema makes of documents: those that are valid come back in every form, others are refused.
#include "Documents.h"
#include "Expect.h"
#include "support/Schemas.h"
#include "support/Tree.h"

namespace RkXmlSchema {
namespace {

using namespace RkXmlLib16;
using RkXmlTest::Narrow;

struct Construct {
  const char* name;
  const char* parts;  // of the schema with target namespace urn:t, bound to t
  std::vector<const char*> valid;
  std::vector<const char*> invalid;
};

// <r> in the namespace of the schema, with the prefixes that the documents use.
std::string Document(const std::string& inner) {
  const std::size_t end = inner.find('|');  // attributes | content
  const std::string attributes = end == std::string::npos ? "" : inner.substr(0, end);
  const std::string content = end == std::string::npos ? inner : inner.substr(end + 1);
  return "<r xmlns='urn:t' xmlns:t='urn:t' xmlns:o='urn:o' xmlns:xs='http://www.w3.org/2001/XMLSchema' "
         "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' " +
         attributes + ">" + content + "</r>";
}

const Construct kConstructs[] = {
    {"sequence",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='xs:int'/>"
     "<xs:element name='b' type='xs:date' minOccurs='0'/><xs:element name='c' type='xs:string' maxOccurs='2'/>"
     "</xs:sequence></xs:complexType></xs:element>",
     {"<a>1</a><c/>", "<a> 1 </a><b>2020-02-29</b><c>x</c><c>y</c>"},
     {"", "<a>1</a>", "<a>1<x/></a><c/>", "<c/><a>1</a>", "<a>1</a><a>1</a><c/>", "<a>x</a><c/>",
      "<a>1</a><b>2021-02-29</b><c/>", "<a>1</a><c/><c/><c/>", "<a>3000000000</a><c/>", "<a>1</a>text<c/>",
      "<a>1</a><c x='1'/>", "x='1'|<a>1</a><c/>"}},
    {"a pattern for some of the listed values",
     "<xs:element name='r' type='t:some'/><xs:simpleType name='some'><xs:restriction base='t:all'><xs:pattern "
     "value='a+'/></xs:restriction></xs:simpleType><xs:simpleType name='all'><xs:restriction base='xs:string'>"
     "<xs:enumeration value='a'/><xs:enumeration value='aa'/><xs:enumeration value='b'/></xs:restriction>"
     "</xs:simpleType>",
     {"a", "aa"},
     {"b", "aaa", ""}},
    {"a collection that must stop",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='xs:int' minOccurs='2' "
     "maxOccurs='2'/><xs:element name='a' type='xs:int'/><xs:element name='b' type='t:g' minOccurs='2' maxOccurs='2'/>"
     "<xs:element name='b' type='t:g' minOccurs='0'/></xs:sequence></xs:complexType></xs:element>"
     "<xs:complexType name='g'><xs:attribute name='x'/></xs:complexType>",
     {"<a>1</a><a>2</a><a>3</a><b x='1'/><b x='2'/>", "<a>1</a><a>2</a><a>3</a><b/><b/><b x='3'/>"},
     {"<a>1</a><a>2</a><b/><b/>", "<a>1</a><a>2</a><a>3</a><a>4</a><b/><b/>",
      "<a>1</a><a>2</a><a>3</a><b/><b/><b/><b/>"}},
    {"groups in groups",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:choice minOccurs='0' maxOccurs='unbounded'><xs:sequence>"
     "<xs:element name='a'/><xs:element name='b' minOccurs='0' maxOccurs='2'/></xs:sequence><xs:element name='c'/>"
     "</xs:choice><xs:sequence minOccurs='0'><xs:element name='d'/><xs:choice><xs:element name='e'/>"
     "<xs:element name='f' maxOccurs='3'/></xs:choice></xs:sequence></xs:sequence></xs:complexType></xs:element>",
     {"", "<a/><a/><b/><b/><c/><a/>", "<d/><f/><f/>", "<c/><d/><e/>"},
     {"<b/>", "<a/><b/><b/><b/>", "<d/>", "<e/>", "<d/><e/><f/>", "<d/><e/><c/>", "<d/><f/><f/><f/><f/>"}},
    {"a repeated group that may be empty",
     "<xs:element name='r'><xs:complexType><xs:sequence minOccurs='3' maxOccurs='4'><xs:element name='a' "
     "minOccurs='0'/>"
     "<xs:element name='b' minOccurs='0'/></xs:sequence></xs:complexType></xs:element>",
     {"", "<a/>", "<a/><b/><b/>", "<a/><a/><a/><a/>"},
     {"<a/><a/><a/><a/><a/>", "<c/>"}},
    {"a choice",
     "<xs:element name='r'><xs:complexType><xs:choice><xs:element name='a' type='xs:boolean'/><xs:element name='b' "
     "minOccurs='2' maxOccurs='3'/><xs:choice><xs:element name='c' type='xs:decimal'/></xs:choice></xs:choice>"
     "</xs:complexType></xs:element>",
     {"<a>true</a>", "<b/><b/>", "<c>1.50</c>"},
     {"", "<b/>", "<a>1</a><c>1</c>", "<b/><b/><b/><b/>", "<c>x</c>"}},
    {"all and an optional all",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='x'><xs:complexType><xs:all><xs:element "
     "name='a'/><xs:element name='b' minOccurs='0' type='xs:int'/></xs:all></xs:complexType></xs:element><xs:element "
     "name='y'><xs:complexType><xs:all minOccurs='0'><xs:element name='a'/><xs:element name='b'/></xs:all>"
     "</xs:complexType></xs:element></xs:sequence></xs:complexType></xs:element>",
     {"<x><a/></x><y/>", "<x><a/><b>1</b></x><y><a/><b/></y>"},
     {"<x/><y/>", "<x><b>1</b></x><y/>", "<x><a/></x><y><a/></y>", "<x><a/><a/></x><y/>", "<x><a/><b>q</b></x><y/>"}},
    {"extension of a choice, attributes, xsi:type",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='i' type='t:base' maxOccurs='unbounded'/>"
     "</xs:sequence></xs:complexType></xs:element><xs:complexType name='base'><xs:choice><xs:element name='a'/>"
     "<xs:element name='b'/></xs:choice><xs:attribute name='n' type='xs:int' use='required'/></xs:complexType>"
     "<xs:complexType name='more'><xs:complexContent><xs:extension base='t:base'><xs:sequence><xs:element name='c'/>"
     "</xs:sequence><xs:attribute name='m' default='d'/></xs:extension></xs:complexContent></xs:complexType>"
     "<xs:complexType name='less'><xs:complexContent><xs:restriction base='t:base'><xs:choice><xs:element name='a'/>"
     "</xs:choice></xs:restriction></xs:complexContent></xs:complexType>"
     "<xs:complexType name='other'/>",
     {"<i n='1'><a/></i>", "<i n='1' xsi:type='t:more'><b/><c/></i><i n='2' xsi:type='less'><a/></i>",
      "<i n='1' m='x' xsi:type='t:more'><a/><c/></i>"},
     {"<i><a/></i>", "<i n='1'/>", "<i n='1'><a/><c/></i>", "<i n='1' xsi:type='t:more'><a/></i>",
      "<i n='1' xsi:type='t:less'><b/></i>", "<i n='1' xsi:type='t:other'/>", "<i n='1' xsi:type='t:none'><a/></i>",
      "<i n='1' m='x'><a/></i>"}},
    {"abstract and blocked types",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='i' type='t:base' minOccurs='0'/><xs:element "
     "name='j' type='t:plain' block='extension' minOccurs='0'/></xs:sequence></xs:complexType></xs:element>"
     "<xs:complexType name='base' abstract='true'/><xs:complexType name='one'><xs:complexContent><xs:extension "
     "base='t:base'><xs:attribute name='n'/></xs:extension></xs:complexContent></xs:complexType>"
     "<xs:complexType name='plain'/><xs:complexType name='two'><xs:complexContent><xs:extension base='t:plain'/>"
     "</xs:complexContent></xs:complexType>",
     {"<i xsi:type='t:one' n='1'/>", "<j/>", ""},
     {"<i/>", "<i xsi:type='t:base'/>", "<j xsi:type='t:two'/>"}},
    {"substitution groups",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element ref='t:head'/><xs:element ref='t:head' "
     "minOccurs='0' maxOccurs='2'/><xs:element name='z' minOccurs='0'/></xs:sequence></xs:complexType></xs:element>"
     "<xs:element name='head' abstract='true'/><xs:element name='p' substitutionGroup='t:head' type='xs:int'/>"
     "<xs:element name='q' substitutionGroup='t:p'/><xs:element name='s' substitutionGroup='t:head'><xs:complexType>"
     "<xs:attribute name='n' type='xs:int'/></xs:complexType></xs:element>",
     {"<p>1</p>", "<s n='1'/><q>2</q><s/><z/>"},
     {"", "<head/>", "<p>x</p>", "<z/>", "<p>1</p><p>1</p><p>1</p><p>1</p>", "<s n='x'/>"}},
    {"nil, defaults and fixed values",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='xs:int' nillable='true'/>"
     "<xs:element name='b' type='xs:date' nillable='true' minOccurs='0' maxOccurs='2'/><xs:element name='c' "
     "type='xs:int' default='7' minOccurs='0' maxOccurs='3'/><xs:element name='d' type='xs:decimal' fixed='1.0' "
     "minOccurs='0'/><xs:element name='e' nillable='true' minOccurs='0'><xs:complexType><xs:sequence><xs:element "
     "name='f'/></xs:sequence><xs:attribute name='n'/></xs:complexType></xs:element></xs:sequence><xs:attribute "
     "name='v' fixed='1'/><xs:attribute name='w' type='xs:int' default='3'/></xs:complexType></xs:element>",
     {"<a>1</a>", "<a xsi:nil='true'/>", "<a>1</a><b xsi:nil='1'/><b>2020-01-01</b><c/><c>8</c>",
      "v='1' w='4'|<a>1</a><d>1.00</d>", "<a>1</a><d/>", "<a>1</a><e xsi:nil='true' n='1'/>", "<a>1</a><e><f/></e>"},
     {"<a/>", "<a xsi:nil='true'>1</a>", "<a>1</a><c xsi:nil='true'/>", "<a>1</a><d>2</d>", "v='2'|<a>1</a>",
      "<a>1</a><e/>", "<a>1</a><e xsi:nil='true'><f/></e>", "<a>1</a><b xsi:nil='true'>2020-01-01</b>",
      "w='x'|<a>1</a>"}},
    {"simple content, lists, unions, enumerations, patterns",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='a' type='t:sized' minOccurs='0' "
     "maxOccurs='9'/><xs:element name='l' type='t:three' minOccurs='0' maxOccurs='9'/><xs:element name='u' "
     "type='t:mix' minOccurs='0' maxOccurs='9'/><xs:element name='e' type='t:colour' minOccurs='0' maxOccurs='9'/>"
     "<xs:element name='n' type='t:odd' minOccurs='0' maxOccurs='9'/><xs:element name='p' type='t:code' "
     "minOccurs='0'/><xs:element name='m' type='t:money' minOccurs='0'/></xs:sequence></xs:complexType></xs:element>"
     "<xs:complexType name='sized'><xs:simpleContent><xs:extension base='xs:decimal'><xs:attribute name='unit' "
     "type='t:colour'/></xs:extension></xs:simpleContent></xs:complexType>"
     "<xs:simpleType name='ints'><xs:list itemType='xs:int'/></xs:simpleType><xs:simpleType name='three'>"
     "<xs:restriction base='t:ints'><xs:maxLength value='3'/></xs:restriction></xs:simpleType>"
     "<xs:simpleType name='mix'><xs:union memberTypes='xs:int t:colour'/></xs:simpleType>"
     "<xs:simpleType name='colour'><xs:restriction base='xs:token'><xs:enumeration value='red'/><xs:enumeration "
     "value='dark blue'/></xs:restriction></xs:simpleType>"
     "<xs:simpleType name='odd'><xs:restriction base='xs:int'><xs:enumeration value='1'/><xs:enumeration value='3'/>"
     "</xs:restriction></xs:simpleType>"
     "<xs:simpleType name='two'><xs:restriction base='xs:string'><xs:pattern value='[A-Z]+'/><xs:pattern "
     "value='[0-9]+'/></xs:restriction></xs:simpleType><xs:simpleType name='code'><xs:restriction base='t:two'>"
     "<xs:pattern value='.{2}'/></xs:restriction></xs:simpleType>"
     "<xs:simpleType name='money'><xs:restriction base='xs:decimal'><xs:pattern value='\\d+\\.\\d{2}'/>"
     "<xs:totalDigits value='4'/></xs:restriction></xs:simpleType>",
     {"<a unit='red'>1.5</a><a> 2 </a>", "<l>1 2  3</l><l/>", "<u>5</u><u>red</u>", "<e>red</e><e> dark  blue </e>",
      "<n>1</n><n>+3</n>", "<p>AB</p>", "<p>12</p>", "<m>12.50</m>"},
     {"<a>x</a>", "<a unit='green'>1</a>", "<a>1<b/></a>", "<l>1 2 3 4</l>", "<l>1 x</l>", "<u>green</u>",
      "<e>green</e>", "<n>2</n>", "<p>ABC</p>", "<p>A1</p>", "<m>12.5</m>", "<m>1234.50</m>", "<e a='1'>red</e>",
      "<l><x/></l>"}},
    {"integers and their digits",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='d' type='t:d2' minOccurs='0'/><xs:element "
     "name='b' type='xs:byte' minOccurs='0'/><xs:element name='p' type='xs:positiveInteger' minOccurs='0'/>"
     "<xs:element name='u' type='xs:unsignedInt' minOccurs='0'/></xs:sequence></xs:complexType></xs:element>"
     "<xs:simpleType name='d2'><xs:restriction base='xs:int'><xs:totalDigits value='2'/></xs:restriction>"
     "</xs:simpleType>",
     {"<d>-12</d>", "<d>99</d>", "<b>-128</b>", "<p>1</p>", "<u>4294967295</u>"},
     {"<d>-100</d>", "<d>100</d>", "<b>128</b>", "<p>0</p>", "<u>4294967296</u>"}},
    {"wildcards",
     "<xs:element name='r'><xs:complexType><xs:sequence><xs:any namespace='##other' processContents='lax' "
     "minOccurs='0' maxOccurs='2'/><xs:element name='u' form='unqualified' minOccurs='0'/><xs:any "
     "namespace='##targetNamespace' processContents='strict' minOccurs='0'/></xs:sequence><xs:anyAttribute "
     "namespace='urn:o' processContents='skip'/></xs:complexType></xs:element><xs:element name='g' type='xs:int'/>",
     {"", "<o:x><y xmlns=''>1</y></o:x><o:x/><u xmlns=''/><g>1</g>", "o:a='1'|<g>2</g>", "<u xmlns=''/>"},
     {"<o:x/><o:x/><o:x/>", "<g>x</g>", "<h/>", "t:a='1'|", "<o:x><t:g>x</t:g></o:x>"}},
    {"mixed content, xs:anyType and names",
     "<xs:element name='r'><xs:complexType mixed='true'><xs:sequence><xs:element name='b' minOccurs='0' "
     "maxOccurs='9' type='xs:QName'/><xs:element name='t' minOccurs='0'/></xs:sequence></xs:complexType></xs:element>",
     {"some text", "<b>o:name</b><b>xs:int</b>", "<t a='1'>x<y/></t>", "<t xsi:type='xs:int'>5</t>"},
     {"<b>none:name</b>", "<c/>", "<t xsi:type='xs:int'>x</t>"}},
};

TEST(DynamicConstructs, ValidDocumentsComeBackAndOthersAreRefused) {
  for (const Construct& construct : kConstructs) {
    SCOPED_TRACE(construct.name);
    const CSchemaUnderTest schema(Schema(construct.parts));
    ASSERT_TRUE(schema.IsUsable()) << Narrow(schema.GetErrors());
    for (const char* inner : construct.valid) EXPECT_EQ("", Narrow(RoundTripText(schema, Document(inner)))) << inner;
    for (const char* inner : construct.invalid) EXPECT_NE(L"", schema.CheckText(Document(inner))) << inner;
  }
}

// Reading goes on within the element that an error is found in.
TEST(DynamicConstructs, AHandlerIsToldOfAllErrorsOfADocument) {
  const CSchemaUnderTest schema(
      Schema("<xs:element name='r'><xs:complexType><xs:sequence><xs:element name='q' type='xs:QName'/><xs:element "
             "name='v' type='xs:int' maxOccurs='9'/><xs:element name='d' nillable='true' type='xs:date'/><xs:element "
             "name='w'><xs:complexType><xs:sequence><xs:any namespace='##other' processContents='strict' "
             "maxOccurs='2'/><xs:element name='e' type='xs:int'/></xs:sequence></xs:complexType></xs:element>"
             "</xs:sequence><xs:attribute name='x' type='xs:int'/></xs:complexType></xs:element>"));
  ASSERT_TRUE(schema.IsUsable()) << Narrow(schema.GetErrors());
  const std::string xml = Document(
      "x='y'|text<q><z/></q><v>1</v><v n='1'>2</v><v>b</v><v><z/></v><v>5</v>"
      "<d xsi:nil='true'>no</d><w xsi:type='xs:string'><o:p/><e>f</e></w>");
  CErrorCollector collector;
  CSerializationContext context;
  CXmlDocument document(context);
  RkXmlTest::Load(document, xml);
  context.SetErrorHandler(&collector);
  const auto object = schema.Get().Read(document, context);
  std::wstring places;
  for (const auto& error : collector.GetErrors()) places += error->GetLocation().GetPath() + L' ';
  EXPECT_EQ("/r /r/@x /r/q/z /r/v[2]/@n /r/v[3] /r/v[4]/z /r/d /r/w /r/w/o:p /r/w/e ", Narrow(places));
  EXPECT_EQ(object->GetCollection(L"v")->GetCount(), 3);
}

}  // namespace
}  // namespace RkXmlSchema

#include "schema/components/SchemaSet.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "Expect.h"
#include "RkXmlLib16/io/Encoder.h"
#include "schema/components/SimpleValue.h"
#include "support/Schemas.h"

namespace RkXmlSchema {
namespace {

using RkXmlTest::Narrow;

namespace fs = std::filesystem;

TEST(SchemaSet, ReadsNamesByThePrefixesInScope) {
  const auto set = Read(
      "<xs:annotation><xs:documentation xmlns='urn:doc' xmlns:t='urn:doc'><p/></xs:documentation></xs:annotation>"
      "<xs:element name='a' xmlns:u='urn:u' type='t:b' default='u:x'/>"
      "<xs:element xmlns='urn:t' xmlns:t='http://www.w3.org/2001/XMLSchema' name='c' type='b'/>"
      "<xs:simpleType name='b'><xs:restriction base='xs:QName'/></xs:simpleType>");
  EXPECT_EQ(Lines(*set), L"");
  EXPECT_EQ(set->FindElement({L"urn:t", L"a"})->type, set->FindElement({L"urn:t", L"c"})->type);
  EXPECT_EQ(ResolverOf(set->FindElement({L"urn:t", L"a"})->value.namespaces)(L"u"), L"urn:u");
}

// Each row is one fault; the line that tells of it begins with the place.
TEST(SchemaSet, TellsWhatIsWrongAndWhere) {
  const struct {
    const char* parts;
    const wchar_t* line;
  } rows[] = {
      {"<xs:element name='a' type='t:b'/>", L"test.xsd:2:1: error: The type definition [{urn:t}b] is not declared."},
      {"<xs:element name='a' type='u:b'/>", L"test.xsd:2:1: error: The prefix of [u:b] is not declared."},
      {"<xs:element name='a'/>\n<xs:element name='a'/>",
       L"test.xsd:3:1: error: The element declaration [{urn:t}a] is declared twice"},
      {"<xs:elment name='a'/>", L"test.xsd:2:1: error: The element [xs:elment] cannot stand here"},
      {"<xs:element nam='a'/>", L"test.xsd:2:1: error: The attribute [name] of [xs:element] is missing."},
      {"<xs:element name='a' minOccurs='0'/>",
       L"test.xsd:2:1: error: The attribute [minOccurs] is not allowed on [xs:element]."},
      {"<xs:element name='a' abstract='yes'/>", L"error: The value [yes] of the attribute [abstract] is not allowed."},
      {"text", L"test.xsd:1:1: error: The element [xs:schema] cannot contain text."},
      {"<xs:complexType name='a'><xs:complexContent><xs:extension base='t:a'/></xs:complexContent></xs:complexType>",
       L"test.xsd:2:1: error: The type definition [{urn:t}a] is defined by itself."},
      {"<xs:group name='g'><xs:sequence>\n<xs:group ref='t:g'/></xs:sequence></xs:group>",
       L"test.xsd:3:1: error: The model group definition contains itself."},
      {"<xs:attributeGroup name='g'>\n<xs:attributeGroup ref='t:g'/></xs:attributeGroup>",
       L"test.xsd:3:1: error: The attribute group definition [{urn:t}g] contains itself."},
      {"<xs:element name='a' substitutionGroup='t:a'/>",
       L"error: The element declaration [{urn:t}a] is the head of its own substitution group."},
      {"<xs:simpleType name='a'><xs:restriction base='xs:int'>\n<xs:pattern "
       "value='('/></xs:restriction></xs:simpleType>",
       L"test.xsd:3:1: error: The pattern [(] is no regular expression"},
      {"<xs:simpleType name='a'><xs:restriction base='xs:int'>\n<xs:length "
       "value='1'/></xs:restriction></xs:simpleType>",
       L"test.xsd:3:1: error: The facet [length] does not apply to the type [int]."},
      {"<xs:simpleType name='a'><xs:restriction base='xs:byte'>\n<xs:maxInclusive "
       "value='128'/></xs:restriction></xs:simpleType>",
       L"test.xsd:3:1: error: The facet [maxInclusive] is out of the bounds of the base type."},
      {"<xs:simpleType name='a'><xs:restriction base='xs:int'><xs:minInclusive value='5'/><xs:maxInclusive "
       "value='4'/></xs:restriction></xs:simpleType>",
       L"error: The lower bound is above the upper bound."},
      {"<xs:simpleType name='a' final='restriction'><xs:restriction base='xs:int'/></xs:simpleType>\n<xs:simpleType "
       "name='b'><xs:restriction base='t:a'/></xs:simpleType>",
       L"test.xsd:3:1: error: The type definition [{urn:t}a] is final for restrictions."},
      {"<xs:element name='a' type='xs:int' default='x'/>",
       L"test.xsd:2:1: error: The default or fixed value is invalid: [x] is no value of the type [int]."},
      {"<xs:complexType name='a'><xs:sequence><xs:element name='b' minOccurs='0'/>\n<xs:element "
       "name='b'/></xs:sequence></xs:complexType>",
       L"test.xsd:3:1: error: The content of the type definition [{urn:t}a] is ambiguous"},
      {"<xs:complexType name='a'><xs:sequence><xs:any/>\n<xs:element name='b' minOccurs='0'/><xs:any maxOccurs='2' "
       "minOccurs='0'/></xs:sequence></xs:complexType>",
       L"error: The content of the type definition [{urn:t}a] is ambiguous"},
      {"<xs:complexType name='a'><xs:choice><xs:element name='b' type='xs:int'/><xs:sequence><xs:element "
       "name='c'/>\n<xs:element name='b' type='xs:string'/></xs:sequence></xs:choice></xs:complexType>",
       L"test.xsd:3:1: error: The element [{urn:t}b] has another type at"},
      {"<xs:complexType name='a'><xs:sequence><xs:element name='b'/></xs:sequence></xs:complexType>\n<xs:complexType "
       "name='c'><xs:complexContent><xs:restriction base='t:a'><xs:sequence><xs:element name='b' "
       "maxOccurs='2'/></xs:sequence></xs:restriction></xs:complexContent></xs:complexType>",
       L"test.xsd:3:1: error: The content of the type definition [{urn:t}c] is no restriction"},
      {"<xs:complexType name='a'><xs:attribute name='b'/>\n<xs:attribute name='b'/></xs:complexType>",
       L"error: The attribute [b] stands twice in the type definition [{urn:t}a]."},
      {"<xs:complexType name='a'><xs:attribute name='b' type='xs:ID'/><xs:attribute name='c' "
       "type='xs:ID'/></xs:complexType>",
       L"error: A type has at most one attribute of the type [ID]."},
      {"<xs:complexType name='a'><xs:sequence><xs:group ref='t:g'/></xs:sequence></xs:complexType><xs:group "
       "name='g'><xs:all><xs:element name='b'/></xs:all></xs:group>",
       L"error: An all group cannot stand within another group."},
      {"<xs:element name='a'><xs:keyref name='k' refer='t:none'><xs:selector xpath='b'/><xs:field "
       "xpath='@c'/></xs:keyref></xs:element>",
       L"error: The key [{urn:t}none] is not declared."},
      {"<xs:element name='a'><xs:key name='k'>\n<xs:selector xpath='/b'/><xs:field xpath='@c'/></xs:key></xs:element>",
       L"test.xsd:3:1: error: The path [/b] is not allowed"},
      {"<xs:element name='a' type='xs:NOTATION'/>",
       L"error: The type [NOTATION] can be used with an enumeration only."},
      {"<xs:import namespace='urn:t'/>", L"error: A schema cannot import its own target namespace [urn:t]."},
      {"<xs:include schemaLocation='none.xsd'/>",
       L"test.xsd:2:1: warning: The schema document [none.xsd] cannot be opened."},
      {"<xs:import namespace='urn:u' schemaLocation='http://example.com/u.xsd'/>",
       L"test.xsd:2:1: warning: The schema document [http://example.com/u.xsd] is not read"},
      {"<xs:element name='a' type='xs:int'", L"test.xsd:"},
  };
  for (const auto& row : rows) {
    const auto set = Read(row.parts);
    EXPECT_NE(Lines(*set).find(row.line), std::wstring::npos) << row.parts << "\n"
                                                              << Narrow(row.line) << "\n"
                                                              << Narrow(Lines(*set));
  }
  EXPECT_EQ(Read("<xs:element name='a' type='t:b'/><xs:element name='c' type='t:d'/>")->GetDiagnostics().size(), 2u);
}

TEST(SchemaSet, AcceptsWhatLooksWrong) {
  for (const char* parts : {
           // A group that occurs exactly so often is not ambiguous with what follows it.
           "<xs:complexType name='a'><xs:sequence><xs:element name='b' minOccurs='2' maxOccurs='2'/><xs:element "
           "name='b'/></xs:sequence></xs:complexType>",
           "<xs:complexType name='a'><xs:sequence><xs:sequence minOccurs='3' maxOccurs='3'><xs:element "
           "name='b'/><xs:element name='c' minOccurs='0'/></xs:sequence><xs:element "
           "name='b'/></xs:sequence></xs:complexType>",
           "<xs:complexType name='a'><xs:sequence><xs:element name='b' minOccurs='0' maxOccurs='0'/><xs:element "
           "name='b'/></xs:sequence></xs:complexType>",
           "<xs:complexType name='a'><xs:complexContent><xs:restriction base='xs:anyType'><xs:sequence><xs:element "
           "name='b'/></xs:sequence><xs:attribute name='c'/></xs:restriction></xs:complexContent></xs:complexType>",
           "<xs:complexType name='a'><xs:sequence><xs:element name='b' type='t:a' "
           "minOccurs='0'/></xs:sequence></xs:complexType>",
           "<xs:import namespace='http://www.w3.org/XML/1998/namespace'/><xs:complexType name='a'><xs:attribute "
           "ref='xml:lang' default='en'/><xs:attributeGroup ref='xml:specialAttrs' "
           "xmlns:xml='http://www.w3.org/XML/1998/namespace'/></xs:complexType>",
       }) {
    const std::wstring lines = Lines(*Read(parts));
    if (std::string(parts).find("xml:lang") != std::string::npos) {
      EXPECT_NE(lines.find(L"The attribute [{http://www.w3.org/XML/1998/namespace}lang] stands twice"),
                std::wstring::npos);
    } else {
      EXPECT_EQ(Narrow(lines), "") << parts;
    }
  }
}

class SchemaFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    m_folder = fs::temp_directory_path() /
               ("rkxml_schema_" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::create_directories(m_folder / "parts");
  }
  void TearDown() override { fs::remove_all(m_folder); }
  void Write(const char* name, const std::string& text) { std::ofstream(m_folder / name) << text; }
  std::unique_ptr<CSchemaSet> Load(const char* name) {
    auto set = std::make_unique<CSchemaSet>();
    set->AddFile(RkXmlLib16::FromUtf8((m_folder / name).native()));
    set->Resolve();
    return set;
  }
  static std::string Plain(const std::string& parts) {
    return "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>" + parts + "</xs:schema>";
  }

  fs::path m_folder;
};

TEST_F(SchemaFiles, AreIncludedImportedAndTakeTheNamespaceOfWhoIncludesThem) {
  Write("main.xsd",
        Schema("<xs:include schemaLocation='parts/chameleon.xsd'/><xs:include schemaLocation='main.xsd'/>"
               "<xs:import namespace='urn:o' schemaLocation='parts/other.xsd'/>"
               "<xs:element name='root' type='t:Name'/><xs:element name='other' xmlns:o='urn:o' type='o:Type'/>"));
  Write("parts/chameleon.xsd",
        Plain("<xs:include schemaLocation='deeper.xsd'/><xs:complexType name='Name'><xs:sequence>"
              "<xs:element name='part' type='Part'/></xs:sequence></xs:complexType>"));
  Write("parts/deeper.xsd", Plain("<xs:include schemaLocation='chameleon.xsd'/><xs:simpleType "
                                  "name='Part'><xs:restriction base='xs:int'/></xs:simpleType>"));
  Write("parts/other.xsd",
        "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:o'>"
        "<xs:include schemaLocation='chameleon.xsd'/><xs:complexType name='Type'/></xs:schema>");
  const auto set = Load("main.xsd");
  EXPECT_EQ(Narrow(Lines(*set)), "");
  EXPECT_EQ(set->GetDocuments().size(), 6u);
  EXPECT_NE(set->FindType({L"urn:t", L"Part"}), nullptr);
  EXPECT_NE(set->FindType({L"urn:o", L"Part"}), nullptr);
  EXPECT_EQ(set->FindType({L"", L"Part"}), nullptr);
  EXPECT_EQ(set->FindElement({L"urn:t", L"other"})->type, set->FindType({L"urn:o", L"Type"}));
}

// Whatever the locale is.
TEST_F(SchemaFiles, HaveNamesOfAnyCharacters) {
  const std::string include = "<xs:include schemaLocation='";
  Write("\u00FC\U0001F600.xsd", Schema(include + "&#x1F600;.xsd'/>" + include + "gr%C3%B6%20%23.xsd'/>" + include +
                                       "a%00.xsd'/>" + include + "&#xFFFD;%FF.xsd'/>"));
  Write("\U0001F600.xsd", Plain("<xs:element name='a'/>"));
  Write("gr\u00F6 #.xsd", Plain("<xs:element name='b'/>"));
  const auto set = Load("\u00FC\U0001F600.xsd");
  EXPECT_FALSE(set->HasErrors()) << Narrow(Lines(*set));
  EXPECT_EQ(set->GetDiagnostics().size(), 2u);
  EXPECT_EQ(set->GetDocuments()[0].file->substr(set->GetDocuments()[0].file->rfind(L'/')), L"/\u00FC\U0001F600.xsd");
  EXPECT_NE(set->FindElement({L"urn:t", L"a"}), nullptr);
  EXPECT_NE(set->FindElement({L"urn:t", L"b"}), nullptr);
}

TEST_F(SchemaFiles, AreRedefined) {
  Write("base.xsd",
        Schema("<xs:complexType name='Person'><xs:sequence><xs:element name='name'/></xs:sequence></xs:complexType>"
               "<xs:simpleType name='Size'><xs:restriction base='xs:int'/></xs:simpleType>"
               "<xs:group name='g'><xs:sequence><xs:element name='a'/></xs:sequence></xs:group>"
               "<xs:attributeGroup name='ag'><xs:attribute name='x'/></xs:attributeGroup>"
               "<xs:element name='person' type='t:Person'/>"));
  Write(
      "main.xsd",
      Schema("<xs:redefine schemaLocation='base.xsd'>"
             "<xs:complexType name='Person'><xs:complexContent><xs:extension base='t:Person'><xs:sequence>"
             "<xs:element name='age' type='t:Size'/><xs:group ref='t:g'/></xs:sequence><xs:attributeGroup "
             "ref='t:ag'/></xs:extension></xs:complexContent></xs:complexType>"
             "<xs:simpleType name='Size'><xs:restriction base='t:Size'><xs:maxInclusive "
             "value='9'/></xs:restriction></xs:simpleType>"
             "<xs:group name='g'><xs:sequence><xs:group ref='t:g'/><xs:element name='b'/></xs:sequence></xs:group>"
             "<xs:attributeGroup name='ag'><xs:attributeGroup ref='t:ag'/><xs:attribute name='y'/></xs:attributeGroup>"
             "</xs:redefine>"));
  const auto set = Load("main.xsd");
  EXPECT_EQ(Narrow(Lines(*set)), "");
  const ComplexTypeDefinition& person = *set->FindElement({L"urn:t", L"person"})->type->AsComplex();
  EXPECT_EQ(person.particle->group->particles.size(), 2u);
  EXPECT_EQ(person.attributeUses.size(), 2u);
  EXPECT_TRUE(set->FindType({L"urn:t", L"Size"})->AsSimple()->facets.maxInclusive);
  EXPECT_EQ(set->FindModelGroup({L"urn:t", L"g"})->modelGroup->particles.size(), 2u);
}

TEST_F(SchemaFiles, HaveToBeReadable) {
  Write("broken.xsd", "<xs:schema>\n<a>");
  Write("other.xml", "<a/>");
  EXPECT_NE(Lines(*Load("broken.xsd")).find(L"broken.xsd:"), std::wstring::npos);
  EXPECT_NE(Lines(*Load("other.xml")).find(L"its document element is not xs:schema"), std::wstring::npos);
  EXPECT_NE(Lines(*Load("none.xsd")).find(L"cannot be opened"), std::wstring::npos);
}

}  // namespace
}  // namespace RkXmlSchema

#include "schema/components/SchemaSet.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "Expect.h"
#include "RkXmlLib16/io/Encoder.h"
#include "schema/components/SimpleValue.h"
#include "support/Cases.h"
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

// Each case of the file is one fault, and how the line begins that tells of it, or what is right.
TEST(SchemaSet, TellsWhatIsWrongAndWhere) {
  for (const auto& [parts, line] : RkXmlTest::ReadCases(RKXML_TEST_DATA "/schema_errors.txt")) {
    const std::string lines = Narrow(Lines(*Read(parts)));
    EXPECT_EQ(lines.empty(), line.empty()) << parts << "\n" << lines;
    EXPECT_NE(lines.find(line), std::string::npos) << parts << "\n" << line << "\n" << lines;
  }
  EXPECT_EQ(Read("<xs:element name='a' type='t:b'/><xs:element name='c' type='t:d'/>")->GetDiagnostics().size(), 2u);
}

class SchemaFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    // The name is no UTF-8.
    m_folder = fs::temp_directory_path() /
               ("rkxml_schema_\xE9_" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::create_directories(m_folder);
  }
  void TearDown() override { fs::remove_all(m_folder); }
  void Write(const char* name, const std::string& text) { std::ofstream(m_folder / name) << text; }
  static std::unique_ptr<CSchemaSet> LoadFile(const fs::path& file) {
    auto set = std::make_unique<CSchemaSet>();
    set->AddFile(file);
    set->Resolve();
    return set;
  }
  std::unique_ptr<CSchemaSet> Load(const char* name) { return LoadFile(m_folder / name); }
  static std::unique_ptr<CSchemaSet> LoadData(const char* name) {
    return LoadFile(fs::path(RKXML_TEST_DATA) / "schemas" / name);
  }
  static std::string Plain(const std::string& parts) {
    return "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>" + parts + "</xs:schema>";
  }

  fs::path m_folder;
};

TEST_F(SchemaFiles, AreIncludedImportedAndTakeTheNamespaceOfWhoIncludesThem) {
  const auto set = LoadData("main.xsd");
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
  const auto set = LoadData("redefining.xsd");
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

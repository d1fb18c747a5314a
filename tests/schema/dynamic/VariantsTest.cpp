// Documents that were valid until one thing in them was changed by rule: they are refused, at the right place.
#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

#include "Documents.h"
#include "support/TempFile.h"
#include "support/Tree.h"
#include "support/Variants.h"

namespace RkXmlSchema {
namespace {

using namespace RkXmlLib16;
namespace fs = std::filesystem;

// The path of the element with this place in document order.
std::wstring PathOf(const CXmlDocument& document, std::size_t index) {
  const CXmlElement* at = document.GetDocumentElement();
  for (; index > 0; --index) {
    const CXmlElement* next = at->GetFirstElement();
    for (; next == nullptr; at = at->GetParentElement()) next = at->GetNextSiblingElement();
    at = next;
  }
  return at->GetXPath();
}

// Whether the schema says what stands in elements of the namespace; others are the content of wildcards.
bool IsDescribed(const CSchemaUnderTest& schema, const wchar_t* uri) {
  const auto& documents = schema.GetBinding().GetSchemas().GetDocuments();
  return std::any_of(documents.begin(), documents.end(),
                     [&](const SchemaDocument& document) { return document.targetNamespace == uri; });
}

void CheckVariants(const CSchemaUnderTest& schema, const fs::path& file, std::size_t most) {
  const std::string text = RkXmlTest::ReadFile(file);
  ASSERT_EQ(L"", schema.CheckText(text)) << file;
  CElement whole;
  whole.FromXml(text.c_str());
  std::vector<CElement*> all;
  RkXmlTest::Flatten(whole, all);
  for (const RkXmlTest::Rule& rule : RkXmlTest::kRules) {
    SCOPED_TRACE(rule.name);
    const bool isAlwaysWrong =
        rule.name == std::string_view("rename") || rule.name == std::string_view("unknown attribute");
    std::size_t refused = 0;
    const std::size_t step = std::max<std::size_t>(1, all.size() / most);
    for (std::size_t i = 0; i < all.size(); i += step) {
      if (all[i]->GetChildCount() == 0) continue;
      const int at = static_cast<int>(i % static_cast<std::size_t>(all[i]->GetChildCount()));
      const bool isDescribed =
          IsDescribed(schema, all[i]->GetNamespace()) && IsDescribed(schema, all[i]->GetChild(at)->GetNamespace());
      CElement changed;
      changed.FromXml(text.c_str());
      std::vector<CElement*> elements;
      RkXmlTest::Flatten(changed, elements);
      const CSmartPtr<CElement> child(elements[i]->GetChild(at));
      if (!rule.apply(*elements[i], *child, at)) continue;
      const CSerializationContext context;
      CXmlDocument document(context);
      RkXmlTest::Load(document, changed.ToXmlUtf8());
      try {
        schema.Get().Read(document, context);
        EXPECT_FALSE(isAlwaysWrong && isDescribed) << "below element " << i << " of " << file;
      } catch (const CRkException& e) {
        const std::wstring parent = PathOf(document, i);
        EXPECT_EQ(parent, e.GetPath().substr(0, parent.size())) << file;
        EXPECT_NE(0u, e.GetLocation().GetLine());
        ++refused;
      }
    }
    EXPECT_NE(0u, refused) << file;
  }
}

TEST(DynamicVariants, AreRefusedAtTheirPlace) {
  const fs::path examples = fs::path(RKXML_TEST_DATA) / "../../examples";
  CheckVariants(CSchemaUnderTest(std::vector<fs::path>{examples / "order" / "order.xsd"}),
                examples / "data" / "order.xml", 40);
}

TEST(DynamicVariants, OfDocumentsInUseAreRefusedAtTheirPlace) {
  const fs::path schemas = fs::path(RKXML_SHARED) / "schemas";
  if (!fs::exists(schemas)) GTEST_SKIP() << "no schemas at hand";
  CheckVariants(CSchemaUnderTest(std::vector<fs::path>{schemas / "ubl/schemas/maindoc/UBL-Invoice-2.1.xsd"}),
                schemas / "ubl/documents/UBL-Invoice-2.1-Example.xml", 40);
  CheckVariants(CSchemaUnderTest(std::vector<fs::path>{schemas / "ipxact/schemas/index.xsd"}),
                schemas / "ipxact/documents/Leon2_spiritconsortium.org_Leon2RTL_timers_1.2_timers.xml", 40);
}

// Each of many elements inside each other holds the others as what a wildcard allows, and is checked itself. That takes
// no more than once for each.
TEST(DynamicVariants, KnownElementsInsideWildcardsAreReadOnce) {
  const CSchemaUnderTest schema(std::string(
      "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='k'><xs:complexType><xs:choice "
      "maxOccurs='unbounded'><xs:any processContents='lax'/></xs:choice></xs:complexType></xs:element><xs:element "
      "name='one'><xs:complexType><xs:sequence><xs:any/></xs:sequence></xs:complexType></xs:element><xs:element "
      "name='either'><xs:complexType><xs:choice><xs:element name='i'/><xs:any namespace='urn:x' processContents='lax'/>"
      "</xs:choice></xs:complexType></xs:element><xs:element name='any'/><xs:element name='n' type='xs:int'/>"
      "</xs:schema>"));
  ASSERT_TRUE(schema.IsUsable());
  std::string head;
  std::string tail;
  for (int i = 0; i < 100; ++i) {
    head += "<k><one><any>";
    tail += "</any></one></k>";
  }
  std::string many;
  for (int i = 0; i < 5000; ++i) many += "<n>1</n>";
  EXPECT_EQ(schema.CheckText("<k>" + head + many + tail + "</k>"), L"");
  const std::wstring error = schema.CheckText("<k>" + head + many + "<n>x</n>" + tail + "</k>");
  EXPECT_NE(error.find(L"/any/n[5001]"), std::wstring::npos) << error;
  EXPECT_NE(schema.CheckText("<k><k><one><n>1</n><n>1</n></one></k></k>"), L"");
  EXPECT_NE(schema.CheckText("<k><k><one/></k></k>"), L"");
  EXPECT_EQ(schema.CheckText("<k><k><either><x xmlns='urn:x'/></either></k></k>"), L"");
  EXPECT_NE(schema.CheckText("<k><k><either><x xmlns='urn:x'/><x xmlns='urn:x'/></either></k></k>"), L"");
}

}  // namespace
}  // namespace RkXmlSchema

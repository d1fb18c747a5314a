// Documents that were valid until one thing in them was changed by rule: they are refused, at the right place.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

#include "Documents.h"

namespace RkXmlSchema {
namespace {

using namespace RkXmlLib16;
namespace fs = std::filesystem;

enum Rule { kRename, kAttribute, kText, kDrop, kDouble, kSwap, kBreak, kRules };
constexpr const char* kNames[] = {"rename", "attribute", "text", "drop", "double", "swap", "break"};

std::string Slurp(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void Flatten(CElement& element, std::vector<CElement*>& all) {
  all.push_back(&element);
  for (int i = 0; i < element.GetChildCount(); ++i) Flatten(*element.GetChild(i), all);
}

// False where the rule has nothing to do.
bool Apply(Rule rule, CElement& parent, int at) {
  CElement& child = *parent.GetChild(at);
  const CSmartPtr<CElement> kept(&child);
  switch (rule) {
    case kRename:
      parent.RemoveChild(at);
      parent.InsertChild(at, CSmartPtr<CElement>(new CElement(L"renamed", child.GetNamespace())));
      return true;
    case kAttribute:
      child.SetAttribute(L"unknown", L"x");
      return true;
    case kText:
      parent.SetText(L"text");
      return true;
    case kDrop:
      parent.RemoveChild(at);
      return true;
    case kDouble:
      parent.InsertChild(at, &child);
      return true;
    case kSwap:
      if (at + 1 >= parent.GetChildCount() || parent.GetChild(at + 1)->GetElementName() == child.GetElementName())
        return false;
      parent.RemoveChild(at);
      parent.InsertChild(at + 1, kept);
      return true;
    default:
      if (child.GetChildCount() > 0 || child.GetText().empty()) return false;
      child.SetText(L"no \x2603 value");
      return true;
  }
}

// The path of the element with this place in document order.
std::wstring PathOf(const std::string& xml, std::size_t index) {
  std::string bytes = xml;
  CXmlDocument document;
  document.LoadXmlStream(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size());
  const CXmlElement* at = document.GetDocumentElement();
  for (; index > 0; --index) {
    const CXmlElement* next = at->GetFirstElement();
    while (next == nullptr) {
      next = at->GetNextSiblingElement();
      if (next == nullptr) at = at->GetParentElement();
    }
    at = next;
  }
  return at->GetXPath();
}

struct Refusal {
  bool isRefused = false;
  std::wstring path;
  unsigned long line = 0;
};

Refusal Read(const CSchemaUnderTest& schema, const std::string& xml) {
  std::string bytes = xml;
  const CSerializationContext context;
  CXmlDocument document(context);
  document.LoadXmlStream(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size());
  try {
    schema.Get().Read(document, context);
    return {};
  } catch (const CRkException& e) {
    return {true, e.GetPath(), static_cast<unsigned long>(e.GetLocation().GetLine())};
  }
}

// Whether the schema says what stands in elements of the namespace; others are the content of wildcards.
bool IsDescribed(const CSchemaUnderTest& schema, const wchar_t* uri) {
  const auto& documents = schema.GetBinding().GetSchemas().GetDocuments();
  return std::any_of(documents.begin(), documents.end(),
                     [&](const SchemaDocument& document) { return document.targetNamespace == uri; });
}

void CheckVariants(const CSchemaUnderTest& schema, const fs::path& file, std::size_t most) {
  const std::string text = Slurp(file);
  ASSERT_EQ(L"", schema.CheckText(text)) << file;
  CElement whole;
  whole.FromXml(text.c_str());
  std::vector<CElement*> all;
  Flatten(whole, all);
  std::size_t refused = 0;
  std::array<std::size_t, kRules> refusedBy{};
  const std::size_t step = std::max<std::size_t>(1, all.size() / most);
  for (std::size_t i = 0; i < all.size(); i += step) {
    for (int rule = 0; rule < kRules; ++rule) {
      CElement changed;
      changed.FromXml(text.c_str());
      std::vector<CElement*> elements;
      Flatten(changed, elements);
      if (elements[i]->GetChildCount() == 0) continue;
      const int at = static_cast<int>(i % static_cast<std::size_t>(elements[i]->GetChildCount()));
      if (!Apply(static_cast<Rule>(rule), *elements[i], at)) continue;
      const CBinaryData bytes = changed.ToXmlStream();
      const std::string xml(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength());
      const Refusal refusal = Read(schema, xml);
      if ((rule == kRename || rule == kAttribute) && IsDescribed(schema, all[i]->GetNamespace()) &&
          IsDescribed(schema, all[i]->GetChild(at)->GetNamespace())) {
        EXPECT_TRUE(refusal.isRefused) << kNames[rule] << " below element " << i << " of " << file;
      }
      if (!refusal.isRefused) continue;
      const std::wstring parent = PathOf(xml, i);
      EXPECT_EQ(parent, refusal.path.substr(0, parent.size())) << kNames[rule] << " of " << file;
      EXPECT_NE(0ul, refusal.line) << kNames[rule];
      ++refused;
      ++refusedBy[static_cast<std::size_t>(rule)];
    }
  }
  EXPECT_GE(refused, 50u);
  for (const Rule rule : {kRename, kAttribute, kText, kDrop, kDouble, kSwap, kBreak})
    EXPECT_NE(0u, refusedBy[rule]) << kNames[rule] << " of " << file;
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

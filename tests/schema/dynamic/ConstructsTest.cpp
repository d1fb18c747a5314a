// What each construct of a schema makes of documents: those that are valid come back in every form, others are refused.
#include <algorithm>

#include "Documents.h"
#include "Expect.h"
#include "support/Cases.h"
#include "support/Schemas.h"
#include "support/Tree.h"

namespace RkXmlSchema {
namespace {

using namespace RkXmlLib16;
using RkXmlTest::Narrow;

// <r> in the namespace of the schema, with the prefixes that the documents use.
std::string Document(const std::string& inner) {
  const std::size_t end = inner.find('|');  // attributes | content
  const std::string attributes = end == std::string::npos ? "" : inner.substr(0, end);
  const std::string content = end == std::string::npos ? inner : inner.substr(end + 1);
  return "<r xmlns='urn:t' xmlns:t='urn:t' xmlns:o='urn:o' xmlns:xs='http://www.w3.org/2001/XMLSchema' "
         "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' " +
         attributes + ">" + content + "</r>";
}

// Beside each schema, the documents that are valid by it, after "+ ", and others after "- ".
TEST(DynamicConstructs, ValidDocumentsComeBackAndOthersAreRefused) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(RKXML_TEST_DATA "/constructs")) {
    std::filesystem::path file = entry.path();
    if (file.extension() != ".xsd") continue;
    SCOPED_TRACE(file);
    const CSchemaUnderTest schema(std::vector<std::filesystem::path>{file});
    ASSERT_TRUE(schema.IsUsable()) << Narrow(schema.GetErrors());
    for (const std::string& line : RkXmlTest::ReadLines(file.replace_extension(".txt"))) {
      const std::string inner = line.substr(std::min<std::size_t>(2, line.size()));
      if (line[0] == '+')
        EXPECT_EQ("", Narrow(RoundTripText(schema, Document(inner)))) << inner;
      else
        EXPECT_NE(L"", schema.CheckText(Document(inner))) << inner;
      ++count;
    }
  }
  EXPECT_LT(140, count);
}

TEST(Binding, TellsWhatIsNotCheckedAndNotKept) {
  const CSchemaUnderTest schema(
      Schema("<xs:element name='r'><xs:complexType mixed='true'><xs:sequence><xs:element name='a' minOccurs='0'/>"
             "</xs:sequence></xs:complexType><xs:key name='k'><xs:selector xpath='t:a'/><xs:field xpath='.'/></xs:key>"
             "</xs:element>"));
  ASSERT_EQ(1u, schema.GetBinding().GetUnchecked().size());
  EXPECT_NE(0u, schema.GetBinding().GetUnchecked()[0].location.line);
  ASSERT_EQ(1u, schema.GetBinding().GetUnkept().size());
  EXPECT_NE(0u, schema.GetBinding().GetUnkept()[0].location.column);
}

// Groups have no start tag of their own.
TEST(DynamicConstructs, PrefixesOfNamesInGroupsAreDeclaredAroundThem) {
  const CSchemaUnderTest schema(
      Schema("<xs:element name='r'><xs:complexType><xs:sequence maxOccurs='2'><xs:element name='v' type='xs:int'/>"
             "<xs:choice maxOccurs='2'><xs:element name='q' type='xs:QName'/><xs:element name='w' type='xs:int'/>"
             "</xs:choice></xs:sequence></xs:complexType></xs:element>"));
  ASSERT_TRUE(schema.IsUsable()) << Narrow(schema.GetErrors());
  CSerializationContext context;
  context.SetDefaultNamespaceURI(L"urn:t");
  CXmlDocument document(context);
  RkXmlTest::Load(document, "<r xmlns='urn:t'><v>1</v><w>2</w><v>3</v><w>4</w><q xmlns:p='urn:p'>p:n</q></r>");
  EXPECT_EQ("<r xmlns=\"urn:t\" xmlns:p=\"urn:p\"><v>1</v><w>2</w><v>3</v><w>4</w><q>p:n</q></r>",
            Narrow(schema.Get().Read(document, context)->ToXml(false, false, EOLType_LF, context)));
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

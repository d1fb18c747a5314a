#include "RkXmlLib16/json/internal/PlainJson.h"

#include <string>
#include <string_view>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/context/ReadLimits.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/io/Encoder.h"
#include "support/Bytes.h"
#include "support/Cases.h"

using namespace RkXmlTest;

namespace {

struct Settings {
  Settings(JsonRoundTrip mode, const wchar_t* rootName, bool keepsTabs, SchemaType type) {
    context.GetJsonContext()->SetSupportRoundtrip(mode);
    context.GetJsonContext()->SetRootElementName(rootName);
    context.SetWellFormedOutput(keepsTabs);
    context.SetSchemaType(type);
  }
  CSerializationContext context;
};

const Settings& Usual() {
  static const Settings settings(JsonRoundTrip_Namespaces, L"", false, SchemaType_Xsd);
  return settings;
}

// Whether the JSON is of the plain case; its XML text and places are then those that the reader's events make.
bool IsPlain(std::string_view json, const Settings& settings = Usual()) {
  CBinaryData xml;
  CJsonPlaces places;
  if (!ConvertPlainJson(json, settings.context, xml, places)) {
    EXPECT_EQ(0u, xml.GetLength());
    EXPECT_TRUE(places.nodes.empty());
    return false;
  }
  CJsonPlaces expected;
  const CBinaryData whole = CJsonTextReader::ConvertJsonToXml(CEncoder::Utf8ToUnicode(json), settings.context,
                                                              /*indented=*/false, expected);
  EXPECT_TEXT(Utf8Text(whole), Utf8Text(xml)) << json;
  EXPECT_EQ(expected.nodes, places.nodes) << json;
  EXPECT_EQ(expected.at, places.at) << json;
  return true;
}

TEST(PlainJson, ConvertsThePlainCase) {
  const std::string nested = [] {
    std::string json;
    for (int i = 0; i < 99; ++i) json += "{\"a\":";
    return json + "1" + std::string(99, '}');
  }();
  const std::string_view rows[] = {
      "{\"a\":1}",
      " {\r\n\t\"a\" : { \"b\" : [ ] , \"c\" : { } , \"d\" : null , \"e\" : \"\" } } \n",
      "{\"a\":{\"b\":[1,-2.50e+10,0,\"x\",true,false,null],\"c\":[null,{\"d\":1}],\"e\":[{},{},{\"f\":[{},2]}]}}",
      "{\"a\":{\"@x\":1,\"@y\":null,\"@z\":\"\",\"#text\":\"\",\"@late\":true,\"#text\":\"t\",\"b\":\"\"}}",
      "{\"p:a\":{\"@xmlns:p\":\"u\\t\\r\\n&<>\\\"\",\"@xmlns\":\"u\\u0026v\",\"@p:x\":\"1\\t\\r\\n&<>\\\"'\"}}",
      "{\"a\":\"1\\t2\\r3\\n4 & < > \\\" \\\\ \\/ \\u0041\\u00e9\\u20AC\\ud83d\\uDE00\\u000d\\u007f <![CDATA[ ]]>\"}",
      "{\"a\":{\"b\":\"\r\",\"c\":\"raw\t\n\"}}",
      "{\"\xC3\xA9\":{\"@\xCE\xB1\":\"\xE2\x82\xAC\xF0\x9F\x98\x80 and more than "
      "sixteen\",\"b\":\"\xC3\xA9\",\"c\":1}}",
      "{\"a\":{\"@xmlnsx\":\"1\\t2\",\"@xmlns:q\":\"\"}}",
      nested,
  };
  const Settings others[] = {{JsonRoundTrip_Markers, L"", true, SchemaType_Xsd},
                             {JsonRoundTrip_Namespaces, L"r:\xE9", false, SchemaType_NoNamespaces}};
  for (const std::string_view row : rows) {
    EXPECT_TRUE(IsPlain(row)) << row;
    EXPECT_TRUE(IsPlain(row, others[0])) << row;
    EXPECT_TRUE(IsPlain(row, others[1])) << row;
  }
  const Settings plain(JsonRoundTrip_Plain, L"root", false, SchemaType_Xsd);
  EXPECT_TRUE(IsPlain("{\"a\":[{\"b\":1},{\"b\":2}]}", plain));
  EXPECT_TRUE(IsPlain(" 1 ", plain));
  EXPECT_FALSE(IsPlain("{\"@a\":1}", plain));
  EXPECT_FALSE(IsPlain("{\"#text\":1}", plain));
}

TEST(PlainJson, LeavesAllElse) {
  const std::string tooDeep = [] {
    std::string json;
    for (int i = 0; i < 100; ++i) json += "{\"a\":";
    return json + "1" + std::string(100, '}');
  }();
  std::vector<std::string> rows = RkXmlTest::ReadLines(RKXML_TEST_DATA "/json_not_plain.txt");
  rows.insert(rows.end(), {"", " ", "{\"\xC3\x97\":1}", "{\"a\":\"\\x\"}", "{\"a\":\"\x01\"}",
                           "{\"a\":\"\xED\xA0\x80\"}", "{\"a\":\"\xEF\xBF\xBF\"}", "{\"a\":\"\xC3\"}", tooDeep});
  for (const std::string& row : rows) EXPECT_FALSE(IsPlain(row)) << row;
  constexpr std::string_view kWhole = "{\"a\":{\"@x\":\"\\u00e9\xC3\xA9\",\"b\":[-1.5e+3,true,null,{\"c\":\"\\n\"}]}}";
  for (std::size_t length = 0; length < kWhole.size(); ++length) EXPECT_FALSE(IsPlain(kWhole.substr(0, length)));
  EXPECT_TRUE(IsPlain(kWhole));

  Settings limited = Usual();
  limited.context.GetLimits().SetExpansionRatioFrom(2);
  EXPECT_TRUE(IsPlain("{\"r\":{\"a\":[{},{},{}]}}", limited));
  EXPECT_FALSE(IsPlain("{\"r\":{\"a\":[{},{},{},{}]}}", limited));
}

}  // namespace

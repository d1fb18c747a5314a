#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/json/JsonTextReader.h"

#include "Expect.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/context/ReadLimits.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/io/TextStream.h"
#include "RkXmlLib16/json/JsonReaderDefaultHandler.h"
#include "RkXmlLib16/json/JsonToXml.h"
#include "RkXmlLib16/xml/XmlTextWriter.h"
#include "support/Bytes.h"
#include "support/Cases.h"

using namespace RkXmlTest;

namespace {

struct Settings {
  JsonRoundTrip mode = JsonRoundTrip_Namespaces;
  const wchar_t* rootName = L"";
  bool comments = false;
};

std::wstring Convert(const std::wstring& json, const Settings& settings = {}) {
  CSerializationContext context;
  context.GetJsonContext()->SetSupportRoundtrip(settings.mode);
  context.GetJsonContext()->SetRootElementName(settings.rootName);
  context.GetJsonContext()->GetAllowComments(settings.comments);
  return Utf8Text(CJsonTextReader::ConvertJsonToXml(json, context));
}

// The XML text without indentation.
std::wstring Flat(const std::wstring& json, const Settings& settings = {}) {
  std::wstring xml = Convert(json, settings);
  std::wstring flat;
  for (const wchar_t c : xml)
    if (c != L'\n' && c != L'\t') flat += c;
  return flat;
}

// Writes down the events.
class Recorder : public IJsonReaderHandler {
 public:
  void ReadStartDocument() override { events += L"("; }
  void ReadEndDocument() override { events += L")"; }
  void ReadName(const std::wstring& name) override { events += name + L"="; }
  void ReadString(const std::wstring& value) override { events += L"'" + value + L"' "; }
  void ReadNumber(const std::wstring& lexical) override { events += lexical + L" "; }
  void ReadStartObject() override { events += L"{"; }
  void ReadEndObject() override { events += L"}"; }
  void ReadStartArray() override { events += L"["; }
  void ReadEndArray() override { events += L"]"; }
  void ReadBool(bool value) override { events += value ? L"T " : L"F "; }
  void ReadNull() override { events += L"N "; }

  std::wstring events;
};

std::wstring Events(const std::wstring& json, const wchar_t* rootName = L"") {
  CJsonTextReader reader(json);
  Recorder recorder;
  reader.SetJsonReaderHandler(&recorder);
  reader.SetRootElementName(rootName);
  reader.Read();
  EXPECT_TEXT(L"$", reader.GetErrorPathProvider()->GetPath());
  return recorder.events;
}

TEST(JsonTextReader, ReportsEventsInOrder) {
  EXPECT_TEXT(L"({a=[1 {b='x' }[]T ]c=N d=F })",
              Events(L" { \"a\" : [ 1 , { \"b\" : \"x\" } , [ ] , true ] ,\r\n\t\"c\":null,\"d\":false } rest"));
  EXPECT_TEXT(L"('s' )", Events(L"\"s\""));
  EXPECT_TEXT(L"()", Events(L" \n"));
  for (const wchar_t* number : {L"0", L"-0", L"10", L"-1.50", L"1e5", L"1E+05", L"0.1e-2"})
    EXPECT_TEXT(L"([" + std::wstring(number) + L" ])", Events(L"[" + std::wstring(number) + L"]"));
}

TEST(JsonTextReader, ReportsARootElementNameAroundTheValue) {
  EXPECT_TEXT(L"({o={a=1 }})", Events(L"{\"a\":1}", L"o"));
  EXPECT_TEXT(L"<o><a>1</a></o>", Flat(L"{\"a\":1}", {JsonRoundTrip_Namespaces, L"o"}));
  EXPECT_TEXT(L"<o>x</o>", Flat(L"\"x\"", {JsonRoundTrip_Namespaces, L"o"}));
  EXPECT_TEXT(L"({o=})", Events(L" \n", L"o"));
  EXPECT_TEXT(L"<o/>", Flat(L" \n", {JsonRoundTrip_Namespaces, L"o"}));
  EXPECT_TEXT(L"<o/>", Flat(L"/**/", {JsonRoundTrip_Plain, L"o", true}));
}

TEST(JsonTextReader, ResolvesEscapes) {
  EXPECT_TEXT(L"('\"\\/\b\f\n\r\tA\u00e9' )", Events(L"\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u0041\\u00E9\""));
  const Rows<Wide, Wide> kRows = {
      {L"\\uD83D\\uDE00", L"\U0001F600"}, {L"\\ud83d", L"\uFFFD"},
      {L"\\ud83dx", L"\uFFFDx"},          {L"\\ude00\\ud83d", L"\uFFFD\uFFFD"},
      {L"\\ud83d\\u0041", L"\uFFFDA"},    {L"\\ud83d\\ud83d\\ude00", L"\uFFFD\U0001F600"},
      {L"\\ud83d\\n", L"\uFFFD\n"},       {L"\\u0041\\ude00", L"A\uFFFD"},
  };
  for (const auto& [json, text] : kRows)
    EXPECT_TEXT(std::wstring(L"('") + text + L"' )", Events(std::wstring(L"\"") + json + L"\""));
}

TEST(JsonTextReader, MalformedTextFailsWithPlaceAndPath) {
  auto cases = ReadCases(RKXML_TEST_DATA "/json_errors.txt");
  cases.emplace_back("{\"a\":\n", "$.a: Unexpected End of File. Expected Object Value at line 1, position 0");
  cases.emplace_back("{\"a\":fal\n", "$.a: Expected 'false' at line 1, position 0");
  for (const auto& [json, result] : cases) {
    SCOPED_TRACE(json);
    const std::size_t colon = result.find(": ");
    const std::wstring message = FromUtf8(result.substr(colon + 2)) + L".\nPath: " + FromUtf8(result.substr(0, colon));
    EXPECT_THROWS(CRkValidationException, message, Convert(FromUtf8(json)));
  }
  EXPECT_THROW(Convert(std::wstring(L"{\"a\":\0}", 7)), CRkValidationException);
}

// Every name that is taken can be read as XML.
TEST(JsonTextReader, TakesNoNameThatTheXmlParserRefuses) {
  CTextStream stream;
  CXmlTextWriter writer(stream);
  CJsonReaderDefaultHandler path;
  CJsonReaderToXmlHandler handler(writer, JsonRoundTrip_Namespaces, &path);
  handler.ReadStartDocument();
  handler.ReadName(L"r");
  handler.ReadStartObject();
  std::size_t count = 0;
  for (wchar_t c = 0x80; c < 0x30000; ++c) {
    if (c >= 0xD800 && c < 0xE000) continue;
    for (const std::wstring& name : {std::wstring(1, c), std::wstring(L"a") + c}) {
      try {
        handler.ReadName(name);
      } catch (const CRkInvalidStateException&) {
        continue;
      }
      handler.ReadNull();
      ++count;
    }
  }
  handler.ReadEndObject();
  CXmlDocument document;
  document.LoadXmlWide(stream.ToString());
  EXPECT_LT(60000u, count);
}

TEST(JsonTextReader, NamesAndValuesThatXmlCannotHoldFail) {
  for (const wchar_t* name : {L"b c", L"1b", L"b/", L"b><c", L":b", L"b:", L"b:c:d", L"-b", L"b\u00d7", L"\u2028",
                              // Names of the fifth edition of XML only, which the XML parser refuses.
                              L"\u2C00", L"b\u0132", L"\U00010000", L"b\U0001F600"})
    EXPECT_THROWS(CRkInvalidStateException,
                  FormatString(L"Failed to convert name '%ls' to Element name in XML.\nPath: $.a.%ls", name, name),
                  Convert(std::wstring(L"{\"a\":{\"") + name + L"\":[]}}"));
  const Rows<Wide, Wide, Wide, Wide> kRows = {
      {LR"({"a":{"@b c":"v"}})", L"v", L"Attribute", L".a.@b c"},
      {LR"({"a":{"@b":"\u0001"}})", L"\x01", L"Attribute", L".a.@b"},
      {LR"({"a":{"b":1,"@c":"v"}})", L"v", L"Attribute", L".a.@c"},
      {LR"({"a":{"@b":{}}})", L"{", L"Attribute", L".a.@b"},
      {LR"({"@b":1})", L"1", L"Attribute", L".@b"},
      {LR"({"a":[1,"\uFFFE"]})", L"\uFFFE", L"Element", L".a[1]"},
      {LR"({"a":"x\u000B"})", L"x\v", L"Element", L".a"},
      {LR"({"a":"\uFFFF"})", L"\uFFFF", L"Element", L".a"},
      {LR"("x")", L"x", L"Element", L""},
      {LR"({"a":1,"#text":"x"})", L"x", L"Element", L".#text"},
  };
  for (const auto& [json, value, target, path] : kRows)
    EXPECT_THROWS(
        CRkInvalidStateException,
        FormatString(L"Failed to convert value '%ls' to %ls string value in XML.\nPath: $%ls", value, target, path),
        Convert(json));
  EXPECT_THROW(Convert(LR"({"a":"\u0000"})"), CRkInvalidStateException);
}

TEST(JsonTextReader, ConvertsTheShapesOfTheWriter) {
  const Rows<Wide, Wide> kRows = {
      {L"{\"r\":{\"\u00e9\u0301.-\u00b7\":1}}", L"<r><\u00e9\u0301.-\u00b7>1</\u00e9\u0301.-\u00b7></r>"},
      {L"{\"r\":\"\U0001F600\\uD83D\\uDE00\\u007F\"}", L"<r>\U0001F600\U0001F600\x7F</r>"},
  };
  for (const auto& [json, xml] : kRows) EXPECT_TEXT(xml, Flat(json));
  for (const auto& [json, xml] : ReadCases(RKXML_TEST_DATA "/json_shapes.txt"))
    EXPECT_TEXT(FromUtf8(xml), Flat(FromUtf8(json)));
  EXPECT_THROW(Convert(L"[]"), CRkException);
  EXPECT_TEXT(L"<r>\n\t<a>1</a>\n</r>\n", Convert(LR"({"r":{"a":1}})"));
}

TEST(JsonTextReader, PlainValuesBeyondTheFirstAreTextIntended) {
  EXPECT_TEXT(L"<r><v>a</v>b<e>1</e></r>", Flat(L"{\"r\":{\"v\":[\"a\",\"b\"],\"e\":1}}"));
  EXPECT_TEXT(L"<r><v>a</v>bc<e>1</e></r>", Flat(L"{\"r\":{\"v\":[\"a\",\"b\",null,\"c\"],\"e\":1}}"));
}

TEST(JsonTextReader, MarkersAreNamesInPlainModeIntended) {
  const Settings plain{JsonRoundTrip_Plain};
  EXPECT_TEXT(L"<r><@a>1</@a><#text>t</#text></r>", Flat(L"{\"r\":{\"@a\":1,\"#text\":\"t\"}}", plain));
  for (const wchar_t* name : {L"@", L"@a b", L"@@a", L"#b", L"@a><b"})
    EXPECT_THROWS(CRkInvalidStateException,
                  FormatString(L"Failed to convert name '%ls' to Element name in XML.\nPath: $.r.%ls", name, name),
                  Convert(std::wstring(L"{\"r\":{\"") + name + L"\":1}}", plain));
  EXPECT_TEXT(L"<r a=\"1\">t</r>", Flat(L"{\"r\":{\"@a\":1,\"#text\":\"t\"}}", {JsonRoundTrip_Markers}));
}

TEST(JsonTextReader, DepthIsLimitedToAHundredValues) {
  const auto nested = [](int depth) { return Repeat(depth - 1, L"{\"a\":") + L"{}" + Repeat(depth - 1, L"}"); };
  EXPECT_NO_THROW(Convert(nested(100)));
  EXPECT_THROWS(CRkValidationException,
                L"JSON exceeded depth limit at line 0, position 501.\nPath: $" + Repeat(100, L".a"),
                Convert(nested(101)));
  EXPECT_THROW(Convert(L"{\"a\":" + Repeat(1000000, L"[")), CRkValidationException);
}

TEST(JsonTextReader, CommentsStandWhereWhiteSpaceMay) {
  const Settings comments{JsonRoundTrip_Namespaces, L"", true};
  EXPECT_TEXT(L"<r><a>1</a><b>/*x*/</b></r>",
              Flat(L"// one\n/* two\n*/{/**/\"r\"/*:*/:{//\n\"a\":1/*,*/,/***/\"b\":\"/*x*/\"}}// end", comments));
  EXPECT_THROWS(CRkValidationException,
                L"Expected quotation mark character '\"' before Name, found '/' at line 0, position 2.\nPath: $",
                Convert(L"{/ \"a\":1}", comments));
  EXPECT_THROWS(CRkValidationException,
                L"Unexpected End of File. Expected Object terminator character '}}' at line 1, position 2.\nPath: $",
                Convert(L"{/*\n /", comments));
  EXPECT_THROW(Convert(L"{//x\n}"), CRkValidationException);
}

TEST(JsonTextReader, RepeatingALongNameIsLimited) {
  CSerializationContext context;
  context.GetLimits().SetExpansionRatioFrom(10000);
  context.GetLimits().SetMaxExpansionRatio(10);
  const std::wstring json = L"{\"r\":{\"" + Repeat(1000, L"n") + L"\":[{}" + Repeat(1000, L",{}") + L"]}}";
  EXPECT_THROWS(CRkException, L"Limit exceeded: expansion ratio 10.\nPath: $.r." + Repeat(1000, L"n") + L"[41]",
                CJsonTextReader::ConvertJsonToXml(json, context));
  context.GetLimits().SetMaxExpansionRatio(0);
  EXPECT_NO_THROW(CJsonTextReader::ConvertJsonToXml(json, context));
}

// What RFC 8259 demands, in short: each text is read or refused, and refused by a described failure.
TEST(JsonTextReader, AcceptsAndRejectsAsTheStandardDemands) {
  const std::wstring accepted =
      L"[] ~ {} ~ [[]   ] ~ [\"\"] ~ [null, 1, \"1\", {}] ~ [1\n] ~  [1] ~ [0e1] ~ [123.456e78] ~ "
      L"{\"asd\":\"sdf\", \"dfg\":\"fgh\"} ~ {\"a\":\"b\",\"a\":\"c\"} ~ {\"\":0} ~ "
      L"{\"foo\\u0000bar\": 42} ~ {\"x\":[{\"id\": \"\"}], \"id\": \"\"} ~ [\"a/*b*/c\"] ~ "
      L"[\"\\uDBFF\\uDFFE\"] ~ [\"\u2028\u2029\x7F\"] ~ [\"\\u0000\"] ~ \"x\" ~ -0.1 ~ true ~ null";
  const std::wstring rejected =
      L"[,1] ~ [1,,2] ~ [\"x\",,] ~ [3[4]] ~ [--2.] ~ [-1.0.] ~ [.-1] ~ [.2e-3] ~ [0.e1] ~ [1 000.0] ~ "
      L"[+1] ~ [Inf] ~ [NaN] ~ [0x1] ~ [1eE2] ~ {\"x\"::\"b\"} ~ {[: \"x\"} ~ {\"a\" b} ~ {:\"b\"} ~ "
      L"{1:1} ~ {null:null} ~ {'a':0} ~ {\"a\":\"a\" 123} ~ {, ~ {{ ~ [\"\\uD800\\u\"] ~ "
      L"[\"\\uD800\\u1x\"] ~ [\"\\\"] ~ \\ ~ [\\u0020\"asd\"] ~ \" ~ 'x' ~ [\u00e9] ~ \u2060 ~ <.> ~ *";
  for (const std::wstring& json : Split(accepted, L" ~ ")) {
    SCOPED_TRACE(Narrow(json));
    EXPECT_NO_THROW(Events(json));
    try {
      Convert(json);
    } catch (const CRkException& e) {
      EXPECT_NE(std::wstring::npos, e.GetMessage().find(L"\nPath: $"));
    }
  }
  for (const std::wstring& json : Split(rejected, L" ~ ")) {
    SCOPED_TRACE(Narrow(json));
    EXPECT_THROW(Events(json), CRkValidationException);
  }
}

}  // namespace

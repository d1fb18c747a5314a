#include "RkXmlLib16/binding/DocumentStream.h"

#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <stdexcept>

#include "Expect.h"
#include "RkXmlLib16/base/ErrorHandler.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/io/Zip.h"
#include "RkXmlLib16/wildcards/Element.h"
#include "support/Bytes.h"
#include "support/Pieces.h"
#include "support/TempFile.h"
#include "support/Tree.h"

using namespace RkXmlTest;

namespace {

using Event = CDocumentStream::Event;

// Long enough for a few pieces of each size, with what readers may stumble over at their ends.
std::string MakeXml() {
  std::string xml =
      "\xEF\xBB\xBF<?xml version='1.0'?>\r\n<!DOCTYPE log [<!ENTITY both '<item n=\"e1\"/><item "
      "n=\"e2\">&#228;</item>'>"
      "<!ATTLIST item kind CDATA 'plain'>]>\n<!-- a comment of some length -->\n"
      "<log xmlns='urn:log' xmlns:x='urn:x' x:level=\"3\"\n     name='\xC3\xA4\xF0\x9F\x98\x80'>mixed\r\n<skipped>"
      "<deep a='1'><item>no</item></deep>text</skipped>\r";
  for (int i = 0; i < 20; ++i) {
    const std::string n = std::to_string(i);
    xml += "<day date='" + n + "'>\r\n  <x:item xmlns:y='urn:y" + n + "' n='" + n + "'\n\ty:m=\"\xE2\x82\xAC\">" +
           (i % 3 == 0 ? "<![CDATA[<" + n + ">]]>" : "&lt;" + n) + "\r\n<part/>tail<?pi?></x:item>" +
           (i % 5 == 0 ? "&both;" : "") + "<item/> <other>" + n + "</other></day>\n";
  }
  return xml + "</log>\n<!-- the end -->";
}

std::string ToFastInfoset(const std::string& xml) {
  CElement tree;
  tree.FromXml(xml.c_str());
  return BytesOf(tree.ToFastInfosetStream());
}

std::string Wrapped(const std::string& bytes, CompressionType type) {
  CBinaryData data = DataOf(bytes);
  CRkZip::CompressData(data, type);
  return BytesOf(data);
}

void ExpectSame(std::string_view bytes, const std::wstring& path, std::size_t slice,
                const CSerializationContext& context = CSerializationContext::m_defaultContext,
                DocumentForm form = DocumentForm_Xml) {
  const Outcome whole = ReadWhole(bytes, path, context, form);
  const Outcome pieces = ReadInPieces(CSlicedSource(bytes, slice), path, context);
  EXPECT_EQ(whole.error, pieces.error) << slice;
  if (whole.error.empty()) {
    EXPECT_EQ(whole.elements, pieces.elements) << slice;
  } else {
    ASSERT_LE(pieces.elements.size(), whole.elements.size()) << slice;
    EXPECT_TRUE(std::equal(pieces.elements.begin(), pieces.elements.end(), whole.elements.begin())) << slice;
  }
}

TEST(DocumentStreamTest, GivesTheElementsOfTheWholeDocumentForEverySizeOfPiece) {
  const std::string xml = MakeXml();
  const std::string octets = ToFastInfoset(xml);
  for (const std::string& bytes :
       {xml, octets, Wrapped(xml, CompressionType_GZip), Wrapped(octets, CompressionType_ZLib)}) {
    for (std::size_t slice = 1; slice < bytes.size(); slice += 1 + slice / 30)
      ExpectSame(bytes, L"/log/day/item", slice);
    for (const wchar_t* path : {L"/log/day", L"/log/*/*", L"/log", L"/log/skipped/deep", L"/none/day"})
      for (const std::size_t slice : {1u, 13u, 200u, 100000u}) ExpectSame(bytes, path, slice);
  }
}

// Cut short anywhere, or damaged.
TEST(DocumentStreamTest, FailsAsTheWholeDocumentDoes) {
  const std::string xml = MakeXml();
  const std::string octets = ToFastInfoset(xml);
  const std::string zipped = Wrapped(xml, CompressionType_GZip);
  for (const std::string* bytes : {&xml, &octets, &zipped}) {
    for (std::size_t length = 0; length < bytes->size(); length += 1 + length / 50) {
      const std::string cut = bytes->substr(0, length);
      std::string damaged = *bytes;
      damaged[length] = static_cast<char>(damaged[length] ^ 0x15);
      if (bytes != &zipped) {
        ExpectSame(cut, L"/log/day/item", 7);
        ExpectSame(damaged, L"/log/day/item", 50);
      } else {  // elements come before, and errors in them
        EXPECT_EQ(ReadInPieces(CSlicedSource(cut, 7), L"/log/day/item").error, ReadWhole(cut, L"/log/day/item").error);
        const bool fails = !ReadInPieces(CSlicedSource(damaged, 50), L"/log/day/item").error.empty();
        EXPECT_EQ(fails, !ReadWhole(damaged, L"/log/day/item").error.empty());
      }
    }
  }
}

// A whole document as events, in the manner of TreeOf but with the text where it stands.
std::wstring EventsOf(CByteSource&& source, const std::vector<const wchar_t*>& paths) {
  CDocumentStream stream(source);
  for (const wchar_t* path : paths) stream.AddPath(path);
  stream.SetReportsOpen(true);
  std::wstring all;
  for (Event event = stream.Next(); event != Event::Done; event = stream.Next()) {
    if (event == Event::Start) all += L"<" + TreeOf(stream.GetElement());
    if (event == Event::Text) all += stream.GetText();
    if (event == Event::Subtree) all += L"#" + std::to_wstring(stream.GetPathNumber()) + TreeOf(stream.GetElement());
    if (event == Event::End) all += L"/" + stream.GetElement()->GetLocalName().ToString() + L">";
  }
  EXPECT_EQ(stream.Next(), Event::Done);
  return all;
}

TEST(DocumentStreamTest, ReportsWhatStandsAroundTheElements) {
  const std::string xml = "<a k='1'>one<b/>two<c><d>three</d></c><e><d x='4'>f<g/>our</d></e>five</a>";
  for (std::size_t slice = 1; slice < 90; ++slice) {
    EXPECT_EQ(EventsOf(CSlicedSource(xml, slice), {}),
              L"<a@k=1()one<b()/b>two<c()<d()three/d>/c><e()<d@x=4()f<g()/g>our/d>/e>five/a>");
    EXPECT_EQ(EventsOf(CSlicedSource(xml, slice), {L"/a/e/*", L"/a/*/d", L"/a/c"}),
              L"<a@k=1()one<b()/b>two#2c()<d(three)><e()#0d@x=4(four)<g()>/e>five/a>");
  }
}

// ---- JSON ----

std::string MakeJson() {
  std::string json =
      "\xEF\xBB\xBF /* first */ {\"log\": {\"@xmlns\": \"urn:log\", \"@xmlns:x\": \"urn:x\", \"@name\" "
      ":\"\\u00e4\xE2\x82\xAC\","
      "\"skipped\":[{\"a\":1},{\"a\":[]}],\n\"day\": [";
  for (int i = 0; i < 12; ++i) {
    const std::string n = std::to_string(i);
    json += (i != 0 ? std::string(",\r\n ") : std::string()) + "{\"@date\": \"" + n +
            "\", \"item\": [{\"@x:n\": \"\\ud83d\\ude00\", \"#text\": \"a\\n\\\"" + n +
            "\", \"part\": null }, {\"v\": -1.5e+" + n +
            ", \"w\": true}] // comment\n, \"x:other\": {\"deep\": {\"d\":[1,2]}} }";
  }
  return json + "], \"end\": false}}\n";
}

void ForEachMode(const std::function<void(const CSerializationContext&)>& check) {
  for (const JsonRoundTrip mode : {JsonRoundTrip_Plain, JsonRoundTrip_Markers, JsonRoundTrip_Namespaces}) {
    CSerializationContext context;
    context.GetJsonContext()->SetSupportRoundtrip(mode);
    context.GetJsonContext()->GetAllowComments(true);
    check(context);
  }
}

TEST(DocumentStreamTest, GivesTheElementsOfJsonForEverySizeOfPiece) {
  const std::string json = MakeJson();
  ForEachMode([&](const CSerializationContext& context) {
    for (const std::string& bytes : {json, Wrapped(json, CompressionType_GZip)}) {
      for (std::size_t slice = 1; slice < 200; slice += 1 + slice / 20)
        ExpectSame(bytes, L"/log/day/item", slice, context, DocumentForm_Json);
      for (const wchar_t* path : {L"/log/day", L"/log/*/*", L"/log", L"/log/skipped", L"/none"})
        for (const std::size_t slice : {1u, 100u, 100000u}) ExpectSame(bytes, path, slice, context, DocumentForm_Json);
    }
  });
}

TEST(DocumentStreamTest, FailsAsTheWholeJsonDoes) {
  const std::string json = MakeJson();
  ForEachMode([&](const CSerializationContext& context) {
    // Names that are none in XML are found before what follows them.
    if (context.GetJsonContext()->GetSupportRoundtrip() == JsonRoundTrip_Plain) return;
    for (std::size_t length = 0; length < json.size(); length += 1 + length / 50) {
      const auto expectSame = [&](const std::string& bytes) {
        const Outcome whole = ReadWhole(bytes, L"/log/day/item", context, DocumentForm_Json);
        const Outcome pieces = ReadInPieces(CSlicedSource(bytes, 7), L"/log/day/item", context, DocumentForm_Json);
        EXPECT_EQ(whole.error, pieces.error) << length;
      };
      expectSame(json.substr(0, length));
      std::string damaged = json;
      damaged[length] = '}';
      expectSame(damaged);
    }
  });
}

TEST(DocumentStreamTest, RefusesAttributesOfJsonThatComeTooLate) {
  for (const char* json : {R"({"log":{"day":[{"item":{"@n":"1"}},{"item":{}}],"@name":"x"}})",
                           R"({"log":{"day":{"item":{}},"@xmlns":"urn:x"}})"}) {
    const Outcome outcome = ReadInPieces(CSlicedSource(json, 1), L"/log/day/item");
    EXPECT_FALSE(outcome.elements.empty());
    EXPECT_NE(outcome.error.find(L"$.log.@"), std::wstring::npos) << Narrow(outcome.error);
  }
}

// ---- errors, limits and sources ----

TEST(DocumentStreamTest, TellsWhatIsLeftOutAsTheWholeDocumentDoes) {
  const std::string json = "{\"log\":{}}  rest \xC3\xA4 of it";
  const std::string xml = "<log><!--1--><?p?><day/><!--2--></log>";
  const std::string octets = ToFastInfoset(xml) + "123";
  for (const std::string& bytes : {json, xml, octets, Wrapped(MakeXml(), CompressionType_GZip) + "12345"}) {
    const bool isJson = bytes[0] == '{';
    CErrorCollector whole;
    CErrorCollector pieces;
    CSerializationContext context;
    context.SetErrorHandler(&whole);
    ReadWhole(bytes, L"/log", context, isJson ? DocumentForm_Json : DocumentForm_Xml);
    context.SetErrorHandler(&pieces);
    ReadInPieces(CSlicedSource(bytes, 5), L"/log/day", context);
    std::set<std::wstring> expected;
    std::set<std::wstring> actual;
    for (const CRkDropped& dropped : whole.GetDropped()) expected.insert(WithoutPositions(dropped.GetReport()));
    for (const CRkDropped& dropped : pieces.GetDropped()) actual.insert(WithoutPositions(dropped.GetReport()));
    EXPECT_EQ(actual, expected);
    EXPECT_FALSE(expected.empty());
  }
}

TEST(DocumentStreamTest, PathsBearThePositionsSoFar) {
  const std::string xml = "<a><b/><b><c/><d>1</d><d><e/><e/></d></b><b/></a>";
  CMemorySource source(xml.data(), xml.size());
  CDocumentStream stream(source);
  stream.AddPath(L"/a/b/d");
  stream.Next();
  EXPECT_EQ(stream.GetElement()->GetXPath(), L"/a/b[2]/d[1]");
  stream.Next();
  EXPECT_EQ(stream.GetElement()->GetFirstElement()->GetXPath(), L"/a/b[2]/d[2]/e[1]");
  EXPECT_EQ(stream.GetElement()->GetParentElement()->GetLocation().GetColumn(), 8u);
  EXPECT_EQ(stream.Next(), Event::Done);
}

TEST(DocumentStreamTest, PathsTellNamespacesByTheAliasesOfTheContext) {
  const std::string xml = "<a xmlns='urn:1'><b/><b xmlns='urn:2'/><x:c xmlns:x='urn:2'/></a>";
  const auto count = [&](const wchar_t* path, const CSerializationContext& context) {
    return ReadInPieces(CSlicedSource(xml, 9), path, context).elements.size();
  };
  CSerializationContext context;
  context.GetNamespaceAliases().Add(L"two", L"urn:2");
  EXPECT_EQ(count(L"/a/b", context), 2u);
  EXPECT_EQ(count(L"/*/two:b", context), 1u);
  EXPECT_EQ(count(L"/*/two:*", context), 2u);
  context.SetDefaultNamespaceURI(L"urn:1");
  EXPECT_EQ(count(L"/a/b", context), 1u);
  context.SetIgnoreNamespaces(true);
  EXPECT_EQ(count(L"/two:a/two:b", context), 2u);
  CMemorySource source("", 0);
  CDocumentStream stream(source);
  for (const wchar_t* bad : {L"", L"a", L"/", L"/a/", L"/a//b", L"/a/b[1]", L"/no:a", L"/:a", L"/a:"})
    EXPECT_THROW(stream.AddPath(bad), CRkInvalidParamException);
  EXPECT_THROW(stream.AddPath(nullptr), CRkInvalidParamException);
}

TEST(DocumentStreamTest, LimitsCountWhatIsHeld) {
  std::string xml = "<a>";
  for (int i = 0; i < 1000; ++i) xml += "<b c='1'>some text</b>\n";
  xml += "</a>";
  using Limits = std::vector<std::pair<void (CReadLimits::*)(unsigned long), unsigned long>>;
  const auto read = [](const std::string& bytes, const Limits& limits) {
    CSerializationContext context;
    for (const auto& [set, limit] : limits) (context.GetLimits().*set)(limit);
    return ReadInPieces(CSlicedSource(bytes, 1000), L"/a/b", context);
  };
  EXPECT_EQ(1000u, read(xml, {{&CReadLimits::SetMaxNodes, 5}, {&CReadLimits::SetMaxCharacters, 30}}).elements.size());
  EXPECT_NE(read(xml, {{&CReadLimits::SetMaxNodes, 2}}).error, L"");
  EXPECT_NE(read(xml, {{&CReadLimits::SetMaxCharacters, 8}}).error, L"");
  EXPECT_NE(read(xml, {{&CReadLimits::SetMaxElementDepth, 1}}).error, L"");
  const std::string zipped = Wrapped(xml, CompressionType_GZip);
  EXPECT_EQ(read(zipped, {}).error, L"");
  EXPECT_NE(read(zipped, {{&CReadLimits::SetMaxInflatedBytes, 10000}}).error, L"");
  EXPECT_NE(read(zipped, {{&CReadLimits::SetMaxInflationRatio, 2}, {&CReadLimits::SetInflationRatioFrom, 1000}}).error,
            L"");
  // Names stay.
  std::string names = "<a>";
  for (int i = 0; i < 1000; ++i) names += "<n" + std::to_string(i) + "/>";
  EXPECT_NE(read(names + "</a>", {{&CReadLimits::SetMaxCharacters, 2000}}).error, L"");
}

TEST(DocumentStreamTest, ReadsEverySource) {
  const std::string xml = MakeXml();
  const auto expected = ReadWhole(xml, L"/log/day").elements.size();
  const auto read = [](CByteSource&& source) { return ReadInPieces(std::move(source), L"/log/day"); };
  const CBinaryData data = DataOf(xml);
  EXPECT_EQ(read(CMemorySource(data)).elements.size(), expected);
  std::istringstream stream(xml);
  stream.exceptions(std::ios::failbit | std::ios::badbit);
  EXPECT_EQ(read(CStreamSource(stream)).elements.size(), expected);
  std::size_t at = 0;
  EXPECT_EQ(read(CCallbackSource([&](unsigned char* to, std::size_t room) {
              const std::size_t count = std::min({room, std::size_t{3}, xml.size() - at});
              std::copy_n(xml.data() + at, count, to);
              at += count;
              return count;
            })).elements.size(),
            expected);
  const CTempFile file;
  std::ofstream(file.Path(), std::ios::binary) << xml;
  EXPECT_EQ(CFileSource(file.Path()).GetLength(), xml.size());
  EXPECT_EQ(read(CFileSource(file.Name().c_str())).elements.size(), expected);
}

TEST(DocumentStreamTest, SourcesFailAsFilesDo) {
  const auto message = [](CByteSource&& source) {
    CDocumentStream stream(source);
    try {
      stream.Next();
    } catch (const CRkException& e) {
      EXPECT_EQ(stream.Next(), Event::Done);
      return e.GetMessage();
    }
    return std::wstring();
  };
  EXPECT_EQ(message(CFileSource("/no/such")), L"Failed to open the file [/no/such].");
  EXPECT_EQ(message(CFileSource("/")), L"Failed to read the contents of the file [/] Error [21]");
  EXPECT_EQ(message(CMemorySource("", 0)), L"XML Stream is empty!");
  std::istringstream bad;
  bad.setstate(std::ios::badbit);
  EXPECT_EQ(message(CStreamSource(bad)), L"Failed to read the stream.");
  EXPECT_EQ(message(CCallbackSource([](unsigned char*, std::size_t room) { return room + 1; })).substr(0, 19),
            L"The source returned");
  CCallbackSource throwing([](unsigned char*, std::size_t) -> std::size_t { throw std::out_of_range("mine"); });
  CDocumentStream stream(throwing);
  EXPECT_THROW(stream.Next(), std::out_of_range);
}

}  // namespace

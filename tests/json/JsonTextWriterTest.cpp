#include "RkXmlLib16/json/JsonTextWriter.h"

#include <functional>

#include "Expect.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/io/TextStream.h"
#include "support/Cases.h"
#include "support/EveryPlace.h"
#include "support/Replay.h"

using namespace RkXmlTest;

namespace {

struct Style {
  JsonRoundTrip mode = JsonRoundTrip_Namespaces;
  bool format = false;
  bool strict = false;
};
constexpr Style kStrict{JsonRoundTrip_Namespaces, false, true};

std::wstring Write(const Style& style, const std::function<void(CJsonTextWriter&)>& calls) {
  CTextStream stream;
  CJsonTextWriter writer(stream);
  writer.SetSupportRoundtrip(style.mode);
  writer.SetFormat(style.format);
  writer.SetStrictOutput(style.strict);
  writer.Open();
  writer.WriteStartDocument();
  calls(writer);
  writer.WriteEndDocument();
  writer.Close();
  return stream.GetText();
}

std::wstring Write(const Style& style, const wchar_t* script) {
  return Write(style, [script](CJsonTextWriter& w) { Replay(w, script); });
}

std::wstring WriteLeaf(const Style& style, const std::wstring& text, ItemType type = ItemType_string) {
  return Write(style, [&](CJsonTextWriter& w) {
    w.WriteStartElement(L"r", L"");
    w.WriteString(text, type);
    w.WriteEndElement();
  });
}

TEST(JsonTextWriter, WritesTheThreeRoundTripModes) {
  const wchar_t* const order =
      L"={urn:d} +p{urn:p} <order{urn:d} @id=#7 @lang{http://www.w3.org/XML/1998/namespace}=en .name{urn:p}=x"
      L" [ <item{urn:d} <n{urn:d} #1>> <item{urn:d} <n{urn:d} #2>> ]>";
  EXPECT_TEXT(
      LR"({"order": {"@xmlns": "urn:d","@xmlns:p": "urn:p","@id": 7,"@xml:lang": "en","p:name": "x",)"
      LR"("item": [{"n": 1},{"n": 2}]}})",
      Write({JsonRoundTrip_Namespaces}, order));
  EXPECT_TEXT(LR"({"order": {"@id": 7,"@lang": "en","name": "x","item": [{"n": 1},{"n": 2}]}})",
              Write({JsonRoundTrip_Markers}, order));
  EXPECT_TEXT(LR"({"order": {"id": 7,"lang": "en","name": "x","item": [{"n": 1},{"n": 2}]}})",
              Write({JsonRoundTrip_Plain}, order));
}

TEST(JsonTextWriter, TypesDecideAboutQuotes) {
  const Rows<std::wstring, ItemType, bool, bool> kRows = {
      {L"1", ItemType_string, true, true},
      {L"true", ItemType_boolean, false, false},
      {L"1", ItemType_boolean, false, false},
      {L"-12", ItemType_byte, false, false},
      {L"+5", ItemType_int, false, true},
      {L"007", ItemType_integer, false, true},
      {L".5", ItemType_decimal, false, true},
      {L"5.", ItemType_decimal, false, true},
      {L"1.5E-05", ItemType_float, false, false},
      {L"1E-400", ItemType_double, false, false},
      {L"1e", ItemType_double, false, true},
      {L"INF", ItemType_double, false, true},
      {L"NaN", ItemType_float, false, true},
      {L"1e307", ItemType_double, false, false},
      {L"10e307", ItemType_decimal, false, true},
      {L"1e308", ItemType_double, false, true},  // strict parsers may refuse what a double cannot hold
      {L"1e99999999999999999999", ItemType_double, false, true},
      {L"2024-01-01", ItemType_dateTime, true, true},
      {L"00FF", ItemType_hexBinary, true, true},
  };
  for (const auto& [text, type, quoted, quotedWhenStrict] : kRows) {
    const std::wstring bare = L"{\"r\": " + text + L"}", inQuotes = L"{\"r\": \"" + text + L"\"}";
    EXPECT_TEXT(quoted ? inQuotes : bare, WriteLeaf({}, text, type));
    EXPECT_TEXT(quotedWhenStrict ? inQuotes : bare, WriteLeaf(kStrict, text, type));
  }
}

TEST(JsonTextWriter, StringsKeepQuotesBackslashesAndTabsIntended) {
  const std::wstring text = L"\"\\/\b\f\n\r\t\x01\x1F\x7F\u00E9";
  EXPECT_TEXT(L"{\"r\": \"\"\\/\b\f\n\t\\u0001\\u001F\x7F\u00E9\"}", WriteLeaf({}, text));
  EXPECT_TEXT(L"{\"r\": \"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u001F\x7F\u00E9\"}", WriteLeaf(kStrict, text));
  for (const std::size_t length : {1u, 100u}) {
    const std::wstring bare = std::wstring(length, L'1') + L"\r\x01";
    EXPECT_TEXT(L"{\"r\": " + bare + L"}", WriteLeaf({}, bare + std::wstring(1, L'\0') + L"2", ItemType_int));
  }
}

TEST(JsonTextWriter, EscapesAndEndsStringsAtEveryPlace) {
  RkXmlTest::AtEveryPlace([](const std::wstring& before, const std::wstring& after) {
    const auto write = [&](wchar_t c, ItemType type) {
      const std::wstring text = before + c + after;
      return Write(kStrict, [&](CJsonTextWriter& w) {
        w.WriteStartElement(L"r", L"");
        w.WriteTextElement(text, L"", text, type);
        w.WriteEndElement();
      });
    };
    const auto document = [](const std::wstring& text) { return L"{\"r\": {\"" + text + L"\": \"" + text + L"\"}}"; };
    ASSERT_EQ(document(before + L"\\\"" + after), write(L'"', ItemType_string));
    ASSERT_EQ(document(before + L"\\n" + after), write(L'\n', ItemType_int));
    ASSERT_EQ(document(before), write(L'\0', ItemType_string));
  });
}

TEST(JsonTextWriter, KeysAreNotEscapedIntended) {
  EXPECT_TEXT(L"{\"a\"\x01\": \"x\"}", Write({}, L"<a\"\x01 'x'>"));
  EXPECT_TEXT(LR"({"a\"\u0001": "x"})", Write(kStrict, L"<a\"\x01 'x'>"));
}

TEST(JsonTextWriter, NothingIsAKeyWithoutValueIntended) {
  const wchar_t* const script = L"<r <a> <b ''> <c nil>>";
  EXPECT_TEXT(LR"({"r": {"a": ,"b": null,"c": }})", Write({}, script));
  EXPECT_TEXT(LR"({"r": {"a": {},"b": null,"c": {}}})", Write({JsonRoundTrip_Markers, false, true}, script));
  EXPECT_TEXT(LR"({"c": {"@xmlns:AA": "http://www.w3.org/2001/XMLSchema-instance","@AA:nil": true}})",
              Write(kStrict, [](CJsonTextWriter& w) {
                Replay(w, L"<c nil>");
                w.WriteComment(L"gone");
              }));
  EXPECT_TEXT(LR"({"c": {"@xmlns:i": "http://www.w3.org/2001/XMLSchema-instance","@i:nil": true}})",
              Write(kStrict, L"+i{http://www.w3.org/2001/XMLSchema-instance} <c nil>"));
}

TEST(JsonTextWriter, EmptyTextBesideAttributesIsABareNullIntended) {
  EXPECT_TEXT(LR"({"r": {"@a": "1"null}})", Write({}, L"<r @a=1 ''>"));
  EXPECT_TEXT(LR"({"r": {"@a": "1"}})", Write(kStrict, L"<r @a=1 ''>"));
}

// Each case of a file is what is called within an element, and what is written of that with markers and, behind " | "
// where it differs, in plain mode.
void ExpectShapes(const char* file, bool strict) {
  for (const auto& [given, result] : ReadCases(std::string(RKXML_TEST_DATA) + file)) {
    SCOPED_TRACE(given);
    const std::size_t bar = result.find(" | ");
    const auto json = [](const std::string& value) { return L"{\"r\": " + FromUtf8(value) + L"}"; };
    const std::wstring script = L"<r " + FromUtf8(given) + L">", markers = json(result.substr(0, bar));
    for (const JsonRoundTrip mode : {JsonRoundTrip_Markers, JsonRoundTrip_Namespaces})
      EXPECT_TEXT(markers, Write({mode, false, strict}, script.c_str()));
    EXPECT_TEXT(bar == std::string::npos ? markers : json(result.substr(bar + 3)),
                Write({JsonRoundTrip_Plain, false, strict}, script.c_str()));
  }
}

TEST(JsonTextWriter, ShapesOfTextAndCollections) { ExpectShapes("/json_collections.txt", false); }

// In strict output with markers no item of a collection is a member of its own.
TEST(JsonTextWriter, StrictCollectionsAreArraysWhateverTheItems) {
  ExpectShapes("/json_strict_collections.txt", true);
  EXPECT_TEXT(LR"({"r": {"v": [{"#text": 1},{}],"w": 2}})", Write(kStrict, L"<r [ .v=#1 .v=# ] .w=#2>"));
  EXPECT_TEXT(
      L"{\n\t\"r\": {\n\t\t\"v\": [\n\t\t\t{\n\t\t\t\t\"#text\": 1\n\t\t\t},\n\t\t\t{}\n\t\t],\n\t\t\"e\": 2\n\t}\n}",
      Write({JsonRoundTrip_Markers, true, true}, L"<r [<v #1><v>] <e #2>>"));
}

TEST(JsonTextWriter, IndentsAnArrayAndWhatFollowsIt) {
  EXPECT_TEXT(
      L"{\n\t\"r\": {\n\t\t\"@a\": 1,\n\t\t\"i\": [\n\t\t\t{\n\t\t\t\t\"n\": 1\n\t\t\t},\n\t\t\t{}\n\t\t],\n"
      L"\t\t\"e\": 2\n\t}\n}",
      Write({JsonRoundTrip_Namespaces, true}, L"<r @a=#1 [<i <n #1>> <i>] <e #2>>"));
  EXPECT_TEXT(L"{\n\t\"r\": {\n\t\t\"i\": [\n\t\t\t{\n\t\t\t\t\"n\": 1\n\t\t\t}\n\t\t],\n\t\t\"i\": \"t\"\n\t}\n}",
              Write({JsonRoundTrip_Plain, true}, L"<r [<i <n #1>> <i 't'>]>"));
}

// An array that is last takes one level of indentation from what follows its owner.
TEST(JsonTextWriter, AnArrayAtTheEndOfItsOwnerShiftsWhatFollowsIntended) {
  const wchar_t* const script = L"<r <g [<i <n #1>>]> <e #2>>";
  const std::wstring strict = Write({JsonRoundTrip_Markers, true, true}, script);
  EXPECT_TEXT(L"\t\t},\n\t\t\"e\": 2\n\t}\n}", strict.substr(strict.size() - 18));
  const std::wstring shifted = Write({JsonRoundTrip_Markers, true}, script);
  EXPECT_TEXT(L"\n\t\t\t]\n\t\t},\n\t\"e\": 2\n}\n}", shifted.substr(shifted.find(L"\n\t\t\t]")));
}

TEST(JsonTextWriter, NamespacesNeedAPrefixBelowTheRoot) {
  EXPECT_TEXT(LR"({"AA:r": {"@xmlns:AA": "urn:r","AA:c": "x"}})", Write({}, L"<r{urn:r} <c{urn:r} 'x'>>"));
  EXPECT_TEXT(
      LR"({"r": {"@xmlns": "urn:r","@xmlns:xsi": "http://www.w3.org/2001/XMLSchema-instance",)"
      LR"("@xsi:type": "T","c": {"@xsi:type": "xsi:U"}}})",
      Write({},
            L"+{urn:r} +xsi{http://www.w3.org/2001/XMLSchema-instance}"
            L" <r{urn:r} :T{urn:r} <c :U{http://www.w3.org/2001/XMLSchema-instance}>>"));
  for (const wchar_t* unknown : {L"<r <e{urn:x}>>", L"<r @e{urn:x}=v>", L"<r :e{urn:x}>"})
    EXPECT_THROWS(CRkException, L"Unknown Namespace: e.", Write({}, unknown));
  EXPECT_THROWS(CRkException, L"Unknown Namespace: type.", Write({}, L"<r :T>"));
  EXPECT_TEXT(LR"({"r": {"@e": "v"}})", Write({JsonRoundTrip_Markers}, L"<r :e{urn:x} @e{urn:x}=v>"));
}

TEST(JsonTextWriter, EveryCallFlushesAFullStream) {
  using W = CJsonTextWriter;
  const auto script = [](std::wstring text) { return [text](W& w) { Replay(w, text); }; };
  const std::wstring longText(100, L'1');
  W::CXmlWriterContext open(L"", L"", L"", {}, nullptr);
  ExpectFlushes<W>({&W::WriteStartDocument, &W::WriteStartDocument, [](W& w) { w.WriteIndent(1); }, script(L"<r"),
                    script(L"@a=1"), script(L"@b=" + longText), script(L"<c"), script(L"'t'>"), script(L"'t'"),
                    script(L"''"), [](W& w) { w.WriteTextElement(L"e", L"", L"", ItemType_int); },
                    [](W& w) { w.WriteValue(L"1", ItemType_int); }, [&](W& w) { w.WriteValue(longText, ItemType_int); },
                    [&](W& w) { w.WriteOpenBrackets(open); }, [](W& w) { w.WriteComment(L""); }, script(L">"),
                    &W::WriteEndDocument});
}

TEST(JsonTextWriter, MisuseThrows) {
  CTextStream stream;
  CJsonTextWriter writer(stream);
  writer.Open();
  Replay(writer, L"''");
  EXPECT_TEXT(L"", stream.GetText());
  for (const wchar_t* call : {L">", L"'x'", L"@a=x"})
    EXPECT_THROWS(CRkException, L"No Element is open.", Replay(writer, call));
  writer.WriteStartElement(L"r", L"");
  EXPECT_THROWS(CRkException, L"An Element has not been closed.", writer.Close());
}

}  // namespace

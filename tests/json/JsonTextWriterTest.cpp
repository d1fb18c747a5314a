#include "RkXmlLib16/json/JsonTextWriter.h"

#include <functional>

#include "Expect.h"
#include "RkXmlLib16/support/TextStream.h"

using namespace RkXmlLib16;

namespace {

using Calls = std::function<void(CJsonTextWriter&)>;

struct Style {
  JsonRoundTrip mode = JsonRoundTrip_Namespaces;
  bool format = false;
  bool strict = false;
};

std::wstring Write(const Style& style, const Calls& calls) {
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

void Leaf(CXmlWriter& w, const wchar_t* name, const wchar_t* text, ItemType type = ItemType_string,
          const wchar_t* ns = L"") {
  w.WriteStartElement(name, ns);
  w.WriteString(text, type);
  w.WriteEndElement();
}

void Empty(CXmlWriter& w, const wchar_t* name) {
  w.WriteStartElement(name, L"");
  w.WriteEndElement();
}

void Object(CXmlWriter& w, const wchar_t* name, const wchar_t* member, const wchar_t* value) {
  w.WriteStartElement(name, L"");
  Leaf(w, member, value, ItemType_int);
  w.WriteEndElement();
}

// The calls inside one root element r.
Calls InRoot(const Calls& content) {
  return [content](CJsonTextWriter& w) {
    w.WriteStartElement(L"r", L"");
    content(w);
    w.WriteEndElement();
  };
}

const Calls kOrder = [](CJsonTextWriter& w) {
  w.SetDefaultNamespace(L"urn:d");
  w.AddNamespace(L"p", L"urn:p");
  w.WriteStartElement(L"order", L"urn:d");
  w.WriteAttributeString(L"id", L"", L"7", ItemType_int);
  w.WriteAttributeString(L"lang", CXmlWriter::XML_NAMESPACE, L"en", ItemType_string);
  Leaf(w, L"name", L"x", ItemType_string, L"urn:p");
  w.SetContextState(ContextState_CollectionStart);
  for (const wchar_t* n : {L"1", L"2"}) {
    w.WriteStartElement(L"item", L"urn:d");
    Leaf(w, L"n", n, ItemType_int, L"urn:d");
    w.WriteEndElement();
  }
  w.SetContextState(ContextState_CollectionEnd);
  w.WriteEndElement();
};

TEST(JsonTextWriter, WritesTheThreeRoundTripModes) {
  EXPECT_WIDE_EQ(
      L"{\n"
      L"\t\"order\": {\n"
      L"\t\t\"@xmlns\": \"urn:d\",\n"
      L"\t\t\"@xmlns:p\": \"urn:p\",\n"
      L"\t\t\"@id\": 7,\n"
      L"\t\t\"@xml:lang\": \"en\",\n"
      L"\t\t\"p:name\": \"x\",\n"
      L"\t\t\"item\": [\n"
      L"\t\t\t{\n"
      L"\t\t\t\t\"n\": 1\n"
      L"\t\t\t},\n"
      L"\t\t\t{\n"
      L"\t\t\t\t\"n\": 2\n"
      L"\t\t\t}\n"
      L"\t\t]\n"
      L"\t}\n"
      L"}",
      Write({JsonRoundTrip_Namespaces, true}, kOrder));
  EXPECT_WIDE_EQ(L"{\"order\": {\"@id\": 7,\"@lang\": \"en\",\"name\": \"x\",\"item\": [{\"n\": 1},{\"n\": 2}]}}",
                 Write({JsonRoundTrip_Markers}, kOrder));
  EXPECT_WIDE_EQ(L"{\"order\": {\"id\": 7,\"lang\": \"en\",\"name\": \"x\",\"item\": [{\"n\": 1},{\"n\": 2}]}}",
                 Write({JsonRoundTrip_Plain}, kOrder));
}

TEST(JsonTextWriter, UsesTheSettingsOfFormatting) {
  CTextStream stream;
  CJsonTextWriter writer(stream);
  writer.SetIndentChars(L"  ");
  writer.SetEOLType(EOLType_CRLF);
  EXPECT_RK_THROWS(CRkException, L"Invalid EOL type.", writer.SetEOLType(static_cast<EOLType>(2)));
  writer.Open();
  writer.WriteStartDocument();
  Leaf(writer, L"r", L"a\nb");
  writer.WriteComment(L"c\n\"");
  writer.WriteEndDocument();
  writer.Close();
  EXPECT_WIDE_EQ(L"{\r\n  \"r\": \"a\r\nb\"/* c\r\n\" */\r\n\r\n}", stream.GetText());
}

TEST(JsonTextWriter, TypesDecideAboutQuotes) {
  const struct {
    const wchar_t* text;
    ItemType type;
    const wchar_t* json;
    const wchar_t* strict;
  } kRows[] = {
      {L"1", ItemType_string, L"\"1\"", L"\"1\""},
      {L"true", ItemType_boolean, L"true", L"true"},
      {L"1", ItemType_boolean, L"1", L"1"},
      {L"-12", ItemType_byte, L"-12", L"-12"},
      {L"+5", ItemType_int, L"+5", L"\"+5\""},
      {L"007", ItemType_integer, L"007", L"\"007\""},
      {L".5", ItemType_decimal, L".5", L"\".5\""},
      {L"5.", ItemType_decimal, L"5.", L"\"5.\""},
      {L"1E5", ItemType_double, L"1E5", L"1E5"},
      {L"1.5E-05", ItemType_float, L"1.5E-05", L"1.5E-05"},
      {L"1e", ItemType_double, L"1e", L"\"1e\""},
      {L"INF", ItemType_double, L"INF", L"\"INF\""},
      {L"NaN", ItemType_float, L"NaN", L"\"NaN\""},
      {L"1e307", ItemType_double, L"1e307", L"1e307"},
      {L"10e307", ItemType_decimal, L"10e307", L"\"10e307\""},
      {L"1e308", ItemType_double, L"1e308", L"\"1e308\""},  // strict parsers may refuse what a double cannot hold
      {L"1e99999999999999999999", ItemType_double, L"1e99999999999999999999", L"\"1e99999999999999999999\""},
      {L"2024-01-01", ItemType_dateTime, L"\"2024-01-01\"", L"\"2024-01-01\""},
      {L"00FF", ItemType_hexBinary, L"\"00FF\"", L"\"00FF\""},
  };
  for (const auto& row : kRows) {
    const auto calls = [&row](CJsonTextWriter& w) { Leaf(w, L"r", row.text, row.type); };
    EXPECT_WIDE_EQ(std::wstring(L"{\"r\": ") + row.json + L"}", Write({}, calls));
    EXPECT_WIDE_EQ(std::wstring(L"{\"r\": ") + row.strict + L"}",
                   Write({JsonRoundTrip_Namespaces, false, true}, calls));
  }
}

TEST(JsonTextWriter, StringsKeepQuotesBackslashesAndTabsIntended) {
  const std::wstring text = L"\"\\/\b\f\n\r\t\x01\x1F\x7F\u00E9";
  const auto calls = [&text](CJsonTextWriter& w) { Leaf(w, L"r", text.c_str()); };
  EXPECT_WIDE_EQ(L"{\"r\": \"\"\\/\b\f\n\t\\u0001\\u001F\x7F\u00E9\"}", Write({}, calls));
  EXPECT_WIDE_EQ(L"{\"r\": \"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u001F\x7F\u00E9\"}",
                 Write({JsonRoundTrip_Namespaces, false, true}, calls));
}

TEST(JsonTextWriter, KeysAreNotEscapedIntended) {
  const auto calls = [](CJsonTextWriter& w) { Leaf(w, L"a\"b", L"x"); };
  EXPECT_WIDE_EQ(L"{\"a\"b\": \"x\"}", Write({}, calls));
  EXPECT_WIDE_EQ(L"{\"a\\\"b\": \"x\"}", Write({JsonRoundTrip_Namespaces, false, true}, calls));
}

TEST(JsonTextWriter, NothingIsAKeyWithoutValueIntended) {
  const auto calls = InRoot([](CXmlWriter& w) {
    Empty(w, L"a");
    Leaf(w, L"b", L"");
    w.WriteStartElement(L"c", L"");
    w.WriteAttributeNil();
    w.WriteEndElement();
  });
  EXPECT_WIDE_EQ(L"{\"r\": {\"a\": ,\"b\": null,\"c\": }}", Write({}, calls));
  EXPECT_WIDE_EQ(L"{\"r\": {\"a\": {},\"b\": null,\"c\": {}}}", Write({JsonRoundTrip_Markers, false, true}, calls));
}

TEST(JsonTextWriter, EmptyTextBesideAttributesIsABareNullIntended) {
  const auto calls = InRoot([](CXmlWriter& w) {
    w.WriteAttributeString(L"a", L"", L"1", ItemType_string);
    w.WriteString(L"", ItemType_string);
  });
  EXPECT_WIDE_EQ(L"{\"r\": {\"@a\": \"1\"null}}", Write({}, calls));
  EXPECT_WIDE_EQ(L"{\"r\": {\"@a\": \"1\"}}", Write({JsonRoundTrip_Namespaces, false, true}, calls));
}

TEST(JsonTextWriter, StrictOutputMarksNil) {
  const auto calls = InRoot([](CXmlWriter& w) {
    w.WriteStartElement(L"c", L"");
    w.WriteAttributeNil();
    w.WriteEndElement();
    w.WriteComment(L"gone");
  });
  EXPECT_WIDE_EQ(L"{\"r\": {\"c\": {\"@xmlns:AA\": \"http://www.w3.org/2001/XMLSchema-instance\",\"@AA:nil\": true}}}",
                 Write({JsonRoundTrip_Namespaces, false, true}, calls));
}

TEST(JsonTextWriter, ShapesOfTextAndCollections) {
  const struct {
    const char* what;
    Calls content;
    const wchar_t* markers;
    const wchar_t* plain;
  } kRows[] = {
      {"text beside an attribute",
       [](CXmlWriter& w) {
         w.WriteAttributeString(L"a", L"", L"1", ItemType_string);
         w.WriteString(L"t", ItemType_string);
       },
       L"{\"@a\": \"1\",\"#text\": \"t\"}", L"{\"a\": \"1\",\"\": \"t\"}"},
      {"text before a child",
       [](CXmlWriter& w) {
         w.WriteString(L"t", ItemType_string);
         Leaf(w, L"c", L"1", ItemType_int);
       },
       L"{\"#text\": \"t\",\"c\": 1}", L"{\"\": \"t\",\"c\": 1}"},
      {"text in two pieces",
       [](CXmlWriter& w) {
         w.WriteString(L"1", ItemType_int);
         w.WriteString(L"2", ItemType_int);
       },
       L"\"12\"", L"\"12\""},
      {"a collection of plain values is repeated members",
       [](CXmlWriter& w) {
         w.SetContextState(ContextState_CollectionStart);
         Leaf(w, L"v", L"1", ItemType_int);
         Leaf(w, L"v", L"2", ItemType_int);
         w.SetContextState(ContextState_CollectionEnd);
         Leaf(w, L"e", L"3", ItemType_int);
       },
       L"{\"v\": 1,\"v\": 2,\"e\": 3}", L"{\"v\": 1,\"v\": 2,\"e\": 3}"},
      {"a member after a collection closes the array",
       [](CXmlWriter& w) {
         w.SetContextState(ContextState_CollectionStart);
         Object(w, L"i", L"n", L"1");
         w.SetContextState(ContextState_CollectionEnd);
         Object(w, L"i", L"n", L"2");
       },
       L"{\"i\": [{\"n\": 1}],\"i\": {\"n\": 2}}", L"{\"i\": [{\"n\": 1}],\"i\": {\"n\": 2}}"},
      {"a second collection and text close it",
       [](CXmlWriter& w) {
         w.SetContextState(ContextState_CollectionStart);
         Object(w, L"i", L"n", L"1");
         w.SetContextState(ContextState_CollectionEnd);
         w.SetContextState(ContextState_CollectionStart);
         Object(w, L"j", L"n", L"2");
         w.SetContextState(ContextState_CollectionEnd);
         w.WriteString(L"t", ItemType_string);
       },
       L"{\"i\": [{\"n\": 1}],\"j\": [{\"n\": 2}],\"#text\": \"t\"}",
       L"{\"i\": [{\"n\": 1}],\"j\": [{\"n\": 2}],\"\": \"t\"}"},
      {"an item of another name starts another array",
       [](CXmlWriter& w) {
         w.SetContextState(ContextState_CollectionStart);
         Object(w, L"i", L"n", L"1");
         Object(w, L"j", L"n", L"2");
         Leaf(w, L"k", L"3", ItemType_int);
         Object(w, L"j", L"n", L"4");
         w.SetContextState(ContextState_CollectionEnd);
       },
       L"{\"i\": [{\"n\": 1}],\"j\": [{\"n\": 2}],\"k\": 3,\"j\": [{\"n\": 4}]}",
       L"{\"i\": [{\"n\": 1}],\"j\": [{\"n\": 2}],\"k\": 3,\"j\": [{\"n\": 4}]}"},
      {"items without members",
       [](CXmlWriter& w) {
         w.SetContextState(ContextState_CollectionStart);
         Object(w, L"i", L"n", L"1");
         Leaf(w, L"i", L"t");
         Empty(w, L"i");
         Leaf(w, L"i", L"");
         Object(w, L"i", L"n", L"2");
         Leaf(w, L"i", L"u");
         Object(w, L"i", L"n", L"3");
         Empty(w, L"i");
         w.SetContextState(ContextState_CollectionEnd);
       },
       L"{\"i\": [{\"n\": 1},{\"#text\": \"t\"},{},{},{\"n\": 2},{\"#text\": \"u\"},{\"n\": 3},{}]}",
       L"{\"i\": [{\"n\": 1}],\"i\": \"t\",\"i\": ,\"i\": null,\"i\": [{\"n\": 2}],\"i\": \"u\",\"i\": [{\"n\": "
       L"3},{}]}"},
      {"a collection in a collection",
       [](CXmlWriter& w) {
         w.SetContextState(ContextState_CollectionStart);
         for (int i = 0; i < 2; ++i) {
           w.WriteStartElement(L"o", L"");
           w.SetContextState(ContextState_CollectionStart);
           Object(w, L"i", L"n", L"1");
           w.SetContextState(ContextState_CollectionEnd);
           w.WriteEndElement();
         }
         w.SetContextState(ContextState_CollectionEnd);
       },
       L"{\"o\": [{\"i\": [{\"n\": 1}]},{\"i\": [{\"n\": 1}]}]}",
       L"{\"o\": [{\"i\": [{\"n\": 1}]},{\"i\": [{\"n\": 1}]}]}"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    EXPECT_WIDE_EQ(std::wstring(L"{\"r\": ") + row.markers + L"}", Write({JsonRoundTrip_Markers}, InRoot(row.content)));
    EXPECT_WIDE_EQ(std::wstring(L"{\"r\": ") + row.plain + L"}", Write({JsonRoundTrip_Plain}, InRoot(row.content)));
  }
}

TEST(JsonTextWriter, IndentsAnArrayAndWhatFollowsIt) {
  EXPECT_WIDE_EQ(
      L"{\n"
      L"\t\"r\": {\n"
      L"\t\t\"i\": [\n"
      L"\t\t\t{\n"
      L"\t\t\t\t\"n\": 1\n"
      L"\t\t\t},\n"
      L"\t\t\t{\n"
      L"\t\t\t\t\"#text\": \"t\"\n"
      L"\t\t\t},\n"
      L"\t\t\t{}\n"
      L"\t\t],\n"
      L"\t\t\"e\": 2\n"
      L"\t}\n"
      L"}",
      Write({JsonRoundTrip_Markers, true}, InRoot([](CXmlWriter& w) {
              w.SetContextState(ContextState_CollectionStart);
              Object(w, L"i", L"n", L"1");
              Leaf(w, L"i", L"t");
              Empty(w, L"i");
              w.SetContextState(ContextState_CollectionEnd);
              Leaf(w, L"e", L"2", ItemType_int);
            })));
}

// An array that is last takes one level of indentation from what follows its owner.
TEST(JsonTextWriter, AnArrayAtTheEndOfItsOwnerShiftsWhatFollowsIntended) {
  const Calls calls = InRoot([](CXmlWriter& w) {
    w.WriteStartElement(L"g", L"");
    w.SetContextState(ContextState_CollectionStart);
    Object(w, L"i", L"n", L"1");
    w.SetContextState(ContextState_CollectionEnd);
    w.WriteEndElement();
    Leaf(w, L"e", L"2", ItemType_int);
  });
  const std::wstring strict = Write({JsonRoundTrip_Markers, true, true}, calls);
  EXPECT_WIDE_EQ(L"\t\t},\n\t\t\"e\": 2\n\t}\n}", strict.substr(strict.size() - 18));
  EXPECT_WIDE_EQ(
      L"{\n"
      L"\t\"r\": {\n"
      L"\t\t\"g\": {\n"
      L"\t\t\t\"i\": [\n"
      L"\t\t\t\t{\n"
      L"\t\t\t\t\t\"n\": 1\n"
      L"\t\t\t\t}\n"
      L"\t\t\t]\n"
      L"\t\t},\n"
      L"\t\"e\": 2\n"
      L"}\n"
      L"}",
      Write({JsonRoundTrip_Markers, true}, calls));
}

TEST(JsonTextWriter, NamespacesNeedAPrefixBelowTheRoot) {
  EXPECT_WIDE_EQ(L"{\"AA:r\": {\"@xmlns:AA\": \"urn:r\",\"AA:c\": \"x\"}}", Write({}, [](CJsonTextWriter& w) {
                   w.WriteStartElement(L"r", L"urn:r");
                   Leaf(w, L"c", L"x", ItemType_string, L"urn:r");
                   w.WriteEndElement();
                 }));
  EXPECT_WIDE_EQ(
      L"{\"r\": {\"@xmlns\": \"urn:r\",\"@xmlns:xsi\": \"http://www.w3.org/2001/XMLSchema-instance\","
      L"\"@xsi:type\": \"T\",\"c\": {\"@xsi:type\": \"xsi:U\"}}}",
      Write({}, [](CJsonTextWriter& w) {
        w.AddNamespace(L"", L"urn:r");
        w.AddNamespace(L"xsi", CXmlWriter::XSI_NAMESPACE);
        w.WriteStartElement(L"r", L"urn:r");
        w.WriteAttributeType(L"urn:r", L"T", ItemType_string);
        w.WriteStartElement(L"c", L"");
        w.WriteAttributeType(CXmlWriter::XSI_NAMESPACE, L"U", ItemType_string);
        w.WriteEndElement();
        w.WriteEndElement();
      }));
  const Calls kUnknown[] = {
      InRoot([](CXmlWriter& w) { w.WriteStartElement(L"e", L"urn:x"); }),
      InRoot([](CXmlWriter& w) { w.WriteAttributeString(L"e", L"urn:x", L"v", ItemType_string); }),
      InRoot([](CXmlWriter& w) { w.WriteAttributeType(L"urn:x", L"e", ItemType_string); }),
  };
  for (const Calls& calls : kUnknown) EXPECT_RK_THROWS(CRkException, L"Unknown Namespace: e.", Write({}, calls));
  EXPECT_RK_THROWS(CRkException, L"Unknown Namespace: type.",
                   Write({}, InRoot([](CXmlWriter& w) { w.WriteAttributeType(L"", L"T", ItemType_string); })));
  EXPECT_WIDE_EQ(L"{\"r\": {\"@e\": \"v\"}}", Write({JsonRoundTrip_Markers}, InRoot([](CXmlWriter& w) {
                                                      w.WriteAttributeType(L"urn:x", L"e", ItemType_string);
                                                      w.WriteAttributeString(L"e", L"urn:x", L"v", ItemType_string);
                                                    })));
}

TEST(JsonTextWriter, MisuseThrows) {
  CTextStream stream;
  CJsonTextWriter writer(stream);
  writer.Open();
  EXPECT_THROW(writer.WriteEndElement(), CRkException);
  EXPECT_THROW(writer.WriteString(L"x", ItemType_string), CRkException);
  EXPECT_THROW(writer.WriteAttributeString(L"a", L"", L"x", ItemType_string), CRkException);
  writer.WriteStartElement(L"r", L"");
  EXPECT_RK_THROWS(CRkException, L"An Element has not been closed.", writer.Close());
}

}  // namespace

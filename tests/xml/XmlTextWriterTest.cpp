#include "RkXmlLib16/xml/XmlTextWriter.h"

#include <algorithm>
#include <functional>
#include <random>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/io/Encoder.h"
#include "support/Cases.h"
#include "support/EveryPlace.h"
#include "support/Replay.h"

using namespace RkXmlTest;

namespace {

// What `write` makes of an open writer; plain means not formatted.
std::wstring Written(const std::function<void(CXmlTextWriter&)>& write, bool formatted = false) {
  CTextStream stream;
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(formatted);
  write(writer);
  writer.Close();
  return stream.GetText();
}

std::wstring Written(const wchar_t* script, bool formatted = false) {
  return Written([script](CXmlTextWriter& w) { Replay(w, script); }, formatted);
}

TEST(XmlTextWriter, PutsElementsOnIndentedLines) {
  EXPECT_TEXT(L"<order id=\"7\">\n\t<item>pen</item>\n\t<gift/>\n\t<box>\n\t\t<item/>\n\t</box>\n</order>\n",
              Written(L"<order @id=#7 <item 'pen'> <gift ''> <box <item>>>", true));
}

TEST(XmlTextWriter, KeepsTextBesideChildrenInPlace) {
  const auto mixed = [](CXmlTextWriter& w) {
    w.SetIndentChars(L"  ");
    w.SetEOLType(EOLType_CRLF);
    Replay(w, L"<a 'x' <b>>");
  };
  EXPECT_TEXT(L"<a>x  <b/>\r\n</a>\r\n", Written(mixed, true));
  EXPECT_TEXT(L"<a>x<b/></a>", Written(mixed));
}

TEST(XmlTextWriter, WritesTheDeclarationForTheEncoding) {
  const Rows<XmlEncoding, std::wstring> rows = {{XmlEncoding_None, L""},
                                                {XmlEncoding_UTF8, L" encoding=\"UTF-8\""},
                                                {XmlEncoding_UTF16, L" encoding=\"UTF-16\""},
                                                {XmlEncoding_Wide, L""}};
  for (const auto& [encoding, declared] : rows) {
    CTextStream stream(encoding);
    CXmlTextWriter(stream).WriteStartDocument();
    EXPECT_TEXT(L"<?xml version=\"1.0\"" + declared + L"?>\n", stream.GetText());
  }
}

TEST(XmlTextWriter, EscapesTextAndAttributes) {
  const Rows<Wide, Wide, Wide> rows = {
      {L"a & b < c > d", L"a &amp; b &lt; c &gt; d", L"a &amp; b &lt; c &gt; d"},
      {L"\"it's\"", L"\"it's\"", L"&quot;it's&quot;"},
      {L"1\r\n2\n3\r4", L"1\r\n2\r\n34", L"1&#xA;2&#xA;34"},
      {L"\t\x1\x20AC\x1F600", L"\t\x1\x20AC\x1F600", L"\t\x1\x20AC\x1F600"},
      {L"<![CDATA[<&>]]>&", L"<![CDATA[<&>]]>&", L"&lt;![CDATA[&lt;&amp;&gt;]]&gt;&amp;"},
      {L"x<![CDATA[", L"x&lt;![CDATA[", L"x&lt;![CDATA["},
  };
  for (const auto& [value, text, attribute] : rows) {
    const std::wstring written = Written([raw = value](CXmlTextWriter& w) {
      w.SetEOLType(EOLType_CRLF);
      w.WriteStartElement(L"e", L"");
      w.WriteAttributeString(L"a", L"", raw, ItemType_string);
      w.WriteString(raw, ItemType_string);
      w.WriteEndElement();
    });
    EXPECT_TEXT(std::wstring(L"<e a=\"") + attribute + L"\">" + text + L"</e>", written);
  }
  EXPECT_TEXT(L"<e>ab</e>", Written([](CXmlTextWriter& w) { Replay(w, std::wstring_view(L"<e 'ab\0c'>", 10)); }));
}

TEST(XmlTextWriter, EscapesAndEndsTextsAtEveryPlace) {
  RkXmlTest::AtEveryPlace([](const std::wstring& before, const std::wstring& after) {
    const auto write = [&](wchar_t c) {
      const std::wstring text = before + c + after;
      return Written([&](CXmlTextWriter& w) {
        w.WriteStartElement(text, L"");
        w.WriteAttributeString(L"a", L"", text, ItemType_string);
        w.WriteTextElement(L"t", L"", text, ItemType_string);
        w.WriteEndElement();
      });
    };
    const auto document = [](const std::wstring& name, const std::wstring& text) {
      const std::wstring child = text.empty() ? L"<t/>" : L"<t>" + text + L"</t>";
      return L"<" + name + L" a=\"" + text + L"\">" + child + L"</" + name + L">";
    };
    ASSERT_EQ(document(before + L"&" + after, before + L"&amp;" + after), write(L'&'));
    ASSERT_EQ(document(before, before), write(L'\0'));
  });
}

// Each case of the file is a script of calls and the text that they write.
TEST(XmlTextWriter, NamesFollowTheScope) {
  for (const auto& [script, xml] : ReadCases(RKXML_TEST_DATA "/xml_namespaces.txt"))
    EXPECT_TEXT(FromUtf8(xml), Written(FromUtf8(script).c_str()));
}

TEST(XmlTextWriter, WritesWhatStandsAroundTheRoot) {
  EXPECT_TEXT(L"<!DOCTYPE e>\n<!--a &amp; b-->\n<?go now?>\n\n<e> \n<schema/>\n<raw/></e><?end?>\n",
              Written([](CXmlTextWriter& w) {
                w.WriteHeaderDirective(L"<!DOCTYPE e>");
                w.WriteComment(L"a & b");
                w.WritePI(L"<?go now?>");
                w.WriteStartElement(L"e", L"");
                w.WriteInlineSchema(L"<schema/>");
                w.WriteRawElement(L"<raw/>");
                w.WriteEndElement();
                w.WriteHeaderDirective(L"<?end?>");
              }));
}

TEST(XmlTextWriter, LeavesTheStartTagOpenAtACommentIntended) {
  EXPECT_TEXT(L"<e<!--c-->\n/>", Written([](CXmlTextWriter& w) {
                w.WriteStartElement(L"e", L"");
                w.WriteComment(L"c");
                w.WriteEndElement();
              }));
}

// Not even after another prefix has taken over its namespace.
TEST(XmlTextWriter, DeclaresThePrefixOfAStartTagForNothingElse) {
  EXPECT_TEXT(L"<AA:r xmlns:AA=\"u1\"><AA:c xmlns:A=\"u1\"/></AA:r>", Written([](CXmlTextWriter& w) {
                Replay(w, L"<r{u1} <c{u1}");
                EXPECT_TRUE(w.DeclareNamespace(L"A", L"u1"));
                EXPECT_FALSE(w.DeclareNamespace(L"AA", L"u2"));
                EXPECT_TRUE(w.DeclareNamespace(L"AA", L"u1"));  // it is, still
                for (const wchar_t* never : {L"", L"xml", L"xmlns"})
                  EXPECT_FALSE(w.DeclareNamespace(never, L"u2")) << never;
                Replay(w, L">>");
              }));
}

TEST(XmlTextWriter, KeepsTwoBlanksAfterAnInventedTypePrefixIntended) {
  const std::wstring xsi = CXmlWriter::XSI_NAMESPACE;
  EXPECT_TEXT(L"<r xmlns=\"d\"><a xmlns:AA=\"t\"  xmlns:AB=\"" + xsi + L"\" AB:type=\"AA:T\"/><b xmlns:AA=\"" + xsi +
                  L"\" AA:type=\"T\" AA:nil=\"true\"/></r>",
              Written(L"={d} <r <a :T{t}> <b :T{d} nil>>"));
}

TEST(XmlTextWriter, EveryCallFlushesAFullStream) {
  using W = CXmlTextWriter;
  const auto script = [](std::wstring text) { return [text](W& w) { Replay(w, text); }; };
  ExpectFlushes<W>(
      {&W::WriteStartDocument, &W::WriteStartDocument, [](W& w) { w.WriteHeaderDirective(L"<!D>"); },
       [](W& w) { w.WriteComment(L""); }, [](W& w) { w.WritePI(L"<?p?>"); }, script(L"<r"), script(L"@a=1"),
       script(L"@b=" + std::wstring(100, L'1')), script(L":T"), script(L"nil"), script(L"'t'"),
       [](W& w) { w.WriteRawElement(L"<x/>"); }, [](W& w) { w.WriteInlineSchema(L"<s/>"); },
       [](W& w) { w.WriteTextElement(L"e", L"", L"1", ItemType_int); }, script(L"<c"), script(L">"), script(L">")});
}

TEST(XmlTextWriter, RefusesMisuse) {
  CTextStream stream;
  CXmlTextWriter w(stream);
  const wchar_t* const late = L"Attributes must be added before elements";
  EXPECT_THROWS(CRkException, late, w.WriteAttributeString(L"a", L"", L"", ItemType_string));
  EXPECT_THROWS(CRkException, L"There is no open Element to end.", w.WriteEndElement());
  w.WriteString(L"", ItemType_string);
  EXPECT_THROWS(CRkException, L"Text must be written inside an Element.", w.WriteString(L"x", ItemType_string));
  EXPECT_THROWS(CRkException, L"Invalid EOL type.", w.SetEOLType(static_cast<EOLType>(2)));
  EXPECT_EQ(EOLType_LF, w.GetEOLType());
  w.WriteStartElement(L"e", L"");
  w.WriteString(L"x", ItemType_string);
  EXPECT_THROWS(CRkException, late, w.WriteAttributeString(L"a", L"", L"", ItemType_string));
  EXPECT_THROWS(CRkException, late, w.WriteAttributeType(L"", L"T", ItemType_string));
  EXPECT_THROWS(CRkException, late, w.WriteAttributeNil());
  EXPECT_THROWS(CRkException, L"Headed directives must appear before an Element has been added.",
                w.WriteHeaderDirective(L"<!DOCTYPE e>"));
  EXPECT_THROWS(CRkException, L"An Element has not been closed.", w.Close());
  EXPECT_TEXT(L"<e>x", stream.GetText());
}

// Hundreds of scopes and declarations in one, against a map for each scope.
TEST(XmlWriterContext, ManyScopesDeclareWhatOneMapWould) {
  using Context = CXmlWriter::CXmlWriterContext;
  std::mt19937 random(1);
  const auto choose = [&](unsigned count) { return std::to_wstring(random() % count); };
  const auto hasPrefix = [](const CXmlWriter::NamespaceMap& map, const std::wstring& prefix) {
    return std::any_of(map.begin(), map.end(), [&](const auto& entry) { return entry.second == prefix; });
  };
  auto context = std::make_unique<Context>(L"r", L"", L"", CXmlWriter::NamespaceMap{}, nullptr);
  std::vector<CXmlWriter::NamespaceMap> scopes(1);
  for (int step = 0; step < 5000; ++step) {
    CXmlWriter::NamespaceMap& scope = scopes.back();
    const std::wstring uri = L"u" + choose(300);
    const std::wstring prefix =
        random() % 2 == 0 ? L"p" + choose(50) : CXmlWriter::NsIntToString(static_cast<int>(random() % 50));
    const auto action = step / 500 % 2 == 0 ? random() % 6 : random() % 7;  // grows, then stays or shrinks
    if (action < 2) {
      context = std::make_unique<Context>(L"e", L"", std::move(context));
      scopes.emplace_back(scopes.back());
    } else if (action == 2) {
      context->SetNamespaceMapValue(uri, prefix);
      scope[uri] = prefix;
    } else if (action == 3) {
      const std::wstring expected = CXmlWriter::GetUniquePrefix(scope);
      ASSERT_EQ(expected, context->InventPrefix(uri));
      scope[uri] = expected;
    } else if (action == 4 && random() % 50 == 0) {
      context->SetNamespaceMapValue(uri, L"x");  // in this scope, whose text may be changed then
      context->GetNamespaceMapValue(uri) = prefix;
      scope[uri] = prefix;
    } else if (action >= 5 && scopes.size() > 1) {
      context = std::move(context->m_parent);
      scopes.pop_back();
    }
    const std::wstring* const found = context->FindPrefix(uri);
    const auto known = scopes.back().find(uri);
    ASSERT_EQ(known != scopes.back().end(), found != nullptr) << step;
    if (found != nullptr) {
      ASSERT_EQ(known->second, *found) << step;
    }
    ASSERT_EQ(hasPrefix(scopes.back(), prefix), context->HasPrefix(prefix)) << step;
    if (step % 100 == 0) {
      ASSERT_EQ(scopes.back(), context->GetNamespaceMap()) << step;
    }
  }
}

}  // namespace

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <string>

#include "Expect.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/io/Zip.h"
#include "support/Bytes.h"
#include "support/SmallStack.h"
#include "support/TempFile.h"
#include "support/Tree.h"

using namespace RkXmlTest;

namespace {

// Characters above U+FFFF lose their high bits.
std::string Utf16(const std::wstring& text, bool bigEndian) {
  std::string bytes;
  for (const wchar_t c : text) {
    const char low = static_cast<char>(c);
    const char high = static_cast<char>(c >> 8);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

TEST(Reading, BuildsTheTree) {
  CSerializationContext raw;
  raw.SetStripCDATA(false);
  CSerializationContext noNamespaces;
  noNamespaces.SetSchemaType(SchemaType_NoNamespaces);
  const struct {
    const char* xml;
    const wchar_t* tree;
    const CSerializationContext& context = CSerializationContext::m_defaultContext;
  } rows[] = {
      {"<a>1<b/>2</a>", L"a(12)<b()>"},
      {"<a>1\r\n2\r3&#13;4&#xD;&#xA;5</a>", L"a(1\n2\n34\n5)"},
      {"<a x='1&#13;2&#10;3'/>", L"a@x=1\r2\n3()"},
      {"<a xmlns='u' xmlns:p='v' x='1' p:y='2'><p:b/><c xmlns=''/></a>", L"{u}a@x=1@{v}y=2()<{v}b()><c()>"},
      {"<a xml:lang='de'/>", L"a@{http://www.w3.org/XML/1998/namespace}lang=de()"},
      {"<p:a xmlns:p='u' p:x='1'/>", L"p:a@xmlns:p=u@p:x=1()", noNamespaces},
      {"<a>1<![CDATA[<&]]>2</a>", L"a(1<&2)"},
      {"<a>1<![CDATA[<&]]>2</a>", L"a(1<![CDATA[<&]]>2)", raw},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>", L"a(\xE9)"},
      {"\xEF\xBB\xBF<a>\xC3\xA9\xE2\x82\xAC</a>", L"a(\xE9\x20AC)"},
      {"<a>\xF0\x9F\x98\x80</a>", L"a(\xD83D\xDE00)"},
      {"<!DOCTYPE a [<!ENTITY e 'x<b/>'><!ATTLIST a d CDATA 'dv' e CDATA ''>]><a>&e;</a>", L"a@d=dv@e=(x)<b()>"},
      {"<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><a>1&e;2</a>", L"a(12)"},
  };
  for (const auto& row : rows) EXPECT_TEXT(row.tree, TreeOf(row.xml, row.context)) << row.xml;
}

// Names in a namespace are recognised by where the parser keeps them; declarations of equal length come and go here,
// and long names make the parser move its buffers.
TEST(Reading, TellsNamespacesApartWhereverTheParserKeepsThem) {
  CSerializationContext context;
  context.SetScanPlainXml(false);
  for (const std::size_t uriLength : {4u, 300u, 5000u}) {
    std::string xml = "<r>";
    std::wstring tree = L"r()";
    for (int i = 0; i < 300; ++i) {
      const std::string uri = std::string(uriLength, 'u') + std::to_string(1000 + i % 7);
      const std::string other = std::string(uriLength, 'u') + std::to_string(2000 + i % 5);
      const std::string local = "n" + std::string(static_cast<std::size_t>(i), 'x');
      xml +=
          "<p:" + local + " xmlns:p='" + uri + "' xmlns:q='" + other + "'><q:" + local + "/><p:n/></p:" + local + ">";
      const std::wstring u(uri.begin(), uri.end());
      const std::wstring o(other.begin(), other.end());
      const std::wstring n(local.begin(), local.end());
      tree += L"<{" + u + L"}" + n + L"()<{" + o + L"}" + n + L"()><{" + u + L"}n()>>";
    }
    EXPECT_TRUE(tree == TreeOf(xml + "</r>", context)) << uriLength;
  }
}

TEST(Reading, RunsOfEveryLengthAreWidenedWhole) {
  std::string text;
  for (int length = 0; length < 100; ++length) {
    const std::wstring wide(text.begin(), text.end());
    EXPECT_TEXT(L"a@v=" + wide + L"(" + wide + L"\xE9)", TreeOf("<a v='" + text + "'>" + text + "&#13;\xC3\xA9</a>"));
    text += static_cast<char>('a' + length % 26);
  }
}

// Whether expat lets a NUL behind a high surrogate through depends on its patch level.
TEST(Reading, TextEndsAtANulUnlessTheParserRefusesIt) {
  const std::wstring xml = L"<a>x\xD85B\x10000y<b>z</b></a>";
  const auto expectEither = [](const auto& read) {
    std::wstring tree;
    const std::wstring thrown = Thrown([&] { tree = read(); });
    EXPECT_TEXT(L"a(x\xD85B)<b(z)>", thrown == L"nothing" ? tree : L"a(x\xD85B)<b(z)>");
    EXPECT_TRUE(thrown == L"nothing" || thrown == L"CRkException: not well-formed (invalid token) at line 1")
        << Narrow(thrown);
  };
  expectEither([&] {
    CXmlDocument document;
    document.LoadXml(xml.c_str());
    return TreeOf(document);
  });
  for (const bool bigEndian : {false, true})
    for (const wchar_t* const mark : {L"\xFEFF", L""})
      expectEither([&] { return TreeOf(Utf16(mark + xml, bigEndian)); });
}

TEST(Reading, WideTextLosesHighBitsIntended) {
  CXmlDocument document;
  document.LoadXml(L"<a>\xE9\x1F600</a>");
  EXPECT_TEXT(L"a(\xE9\xF600)", TreeOf(document));
  const std::wstring markup = std::wstring(L"<a>") + wchar_t(0x1003C) + L"b/></a>";
  document.LoadXml(markup.c_str());
  EXPECT_TEXT(L"a()<b()>", TreeOf(document));
  // The library's own stays whole.
  document.LoadXmlWide(L"<a>\xE9\x1F600\x1003C\x110000</a>");
  EXPECT_TEXT(L"a(\xE9\xD83D\xDE00\xD800\xDC3C\xFFFD)", TreeOf(document));
}

TEST(Reading, KnowsTheNamesOfUsAscii) {
  const auto declared = [](const char* name, const char* text) {
    return "<?xml version='1.0' encoding='" + std::string(name) + "'?><a>" + text + "</a>";
  };
  for (const char* const name : {"US-ASCII", "ASCII", "ascii", "ANSI_X3.4-1968", "ISO646-US", "csASCII", "us"}) {
    EXPECT_TEXT(L"a(~)", TreeOf(declared(name, "~"))) << name;
    EXPECT_THROWS(CRkException, L"not well-formed (invalid token) at line 1", TreeOf(declared(name, "\xE9")));
  }
  for (const char* const name : {"ASCIIX", "ASCI", "windows-1252"})
    EXPECT_THROWS(CRkException, L"unknown encoding at line 1", TreeOf(declared(name, "~")));
  CXmlDocument document;
  EXPECT_THROWS(CRkException, L"unknown encoding at line 1",
                document.LoadXml(L"<?xml version='1.0' encoding='ASCII'?><a/>"));
}

TEST(Reading, DeclaredEncodingOfWideTextMustFitIntended) {
  CXmlDocument document;
  document.LoadXml(L"<?xml version='1.0'?><a/>");
  EXPECT_THROWS(CRkException, L"encoding specified in XML declaration is incorrect at line 1",
                document.LoadXml(L"<?xml version='1.0' encoding='UTF-8'?><a/>"));
}

TEST(Reading, TellsWhatIsWrong) {
  CXmlDocument d;
  EXPECT_THROWS(CRkException, L"XML String is empty!", d.LoadXml(""));
  EXPECT_THROWS(CRkException, L"XML String is empty!", d.LoadXml(static_cast<const char*>(nullptr)));
  EXPECT_THROWS(CRkException, L"XML String is empty!", d.LoadXml(L""));
  EXPECT_THROWS(CRkException, L"XML String is empty!", d.LoadXml(static_cast<const wchar_t*>(nullptr)));
  EXPECT_THROWS(CRkException, L"XML String is empty!", d.LoadXmlWide(L""));
  EXPECT_THROWS(CRkException, L"XML Stream is empty!", d.LoadXmlStream(nullptr, 0));
  EXPECT_THROWS(CRkException, L"JSON String is empty!", d.LoadJson(""));
  EXPECT_THROWS(CRkException, L"JSON String is empty!", d.LoadJson(L""));
  EXPECT_THROWS(CRkException, L"JSON Stream is empty!", d.LoadJsonStream(nullptr, 0));

  const Rows<const char*, Wide> rows = {
      {"<a>\n<b></a>", L"mismatched tag at line 2"},
      {"<a>", L"no element found at line 1"},
      {"text", L"syntax error at line 1"},
      {"\n<a/><b/>", L"junk after document element at line 2"},
      {"<p:a/>", L"unbound prefix at line 1"},
      {"<a x='1' x='2'/>", L"duplicate attribute at line 1"},
      {"<a>&#0;</a>", L"reference to invalid character number at line 1"},
      {"<a>&lol;</a>", L"undefined entity at line 1"},
      {"<r>\n<a xmlns='u|v'/></r>", L"A namespace URI contains the character '|' at line 2"},
      {"<p:r xmlns:p='|'/>", L"A namespace URI contains the character '|' at line 1"}};
  for (const auto& [xml, message] : rows) EXPECT_THROWS(CRkException, message, Load(d, xml));
  Load(d, "<ok/>");
  EXPECT_TEXT(L"ok()", TreeOf(d));
}

TEST(Reading, FilesThatCannotBeReadSayWhy) {
  CXmlDocument d;
  EXPECT_THROWS(CRkException, L"Failed to open the file [/no/such/file].", d.Load(L"/no/such/file"));
  EXPECT_THROWS(CRkException, L"Failed to open the file [].", d.Load(nullptr));
  EXPECT_THROWS(CRkException,
                L"Failed to read the contents of the file [/tmp] Error [" + std::to_wstring(EISDIR) + L"]",
                d.Load(L"/tmp"));
  EXPECT_THROWS(CRkException, L"Failed to read the contents of the file [/dev/null] Error [0]",
                d.LoadJsonFile(L"/dev/null"));

  const CTempFile file;
  std::ofstream(file.Path()) << "<a>1</a>";
  d.Load(file.Name().c_str());
  EXPECT_TEXT(L"a(1)", TreeOf(d));
  int pipe[2];
  ASSERT_EQ(0, ::pipe(pipe));
  const std::wstring pipeName = L"/dev/fd/" + std::to_wstring(pipe[0]);
  EXPECT_THROWS(CRkException,
                L"Failed to get the size of the file [" + pipeName + L"] Error [" + std::to_wstring(ESPIPE) + L"]",
                d.Load(pipeName.c_str()));
  ::close(pipe[0]);
  ::close(pipe[1]);
}

TEST(Reading, HoldsTheLimits) {
  CSerializationContext c;
  c.GetLimits().SetMaxElementDepth(2);
  EXPECT_THROWS(CRkException, L"Limit exceeded: element depth 2.\nPath: /a/b", TreeOf("<a><b><c/></b></a>", c));
  EXPECT_TEXT(L"a()<b()><b()>", TreeOf("<a><b/><b/></a>", c));
  c.GetLimits().SetMaxNodes(3);
  EXPECT_THROWS(CRkException, L"Limit exceeded: elements and attributes 3.\nPath: /a",
                TreeOf("<a x=''><b/><b/></a>", c));
  c.GetLimits().SetMaxNodes(0);
  c.GetLimits().SetMaxCharacters(10);
  EXPECT_THROWS(CRkException, L"Limit exceeded: characters 10.\nPath: /a", TreeOf("<a>1234567890</a>", c));
  c.GetLimits().SetMaxInflatedBytes(1000);
  CBinaryData data = CEncoder::UnicodeToUtf8Binary(L"<a>" + std::wstring(1000, L'x') + L"</a>");
  CRkZip::CompressData(data, CompressionType_GZip);
  CXmlDocument document(c);
  EXPECT_THROWS(CRkException, L"Limit exceeded: inflated bytes 1000.",
                document.LoadXmlStream(data.GetData(), data.GetLength()));
  c.GetLimits().SetMaxInflatedBytes(0);
  c.GetLimits().SetInflationRatioFrom(100);
  c.GetLimits().SetMaxInflationRatio(10);
  EXPECT_THROWS(CRkException, L"Limit exceeded: inflation ratio 10.", TreeOf(BytesOf(data), c));
}

TEST(Reading, RefusesDocumentTypesOnRequest) {
  const char* const texts[] = {"<!DOCTYPE r><r/>", "<!DOCTYPE r SYSTEM 'file:///etc/passwd'><r/>",
                               "<!DOCTYPE r [<!ENTITY e 'x'>]><r>&e;</r>"};
  const CBinaryData fastInfoset = Hex(L"E000000100C4F03C0072FF");
  CSerializationContext context;
  for (const bool refuses : {false, true}) {
    context.SetRefuseDocumentType(refuses);
    CXmlDocument document(context);
    const std::wstring refused = L"CRkException: A document type declaration is not allowed ";
    for (const char* const text : texts)
      EXPECT_TEXT(refuses ? refused + L"at line 1" : L"nothing", Thrown([&] { document.LoadXml(text); }));
    EXPECT_TEXT(refuses ? refused + L"in Fast Infoset" : L"nothing",
                Thrown([&] { document.LoadXmlStream(fastInfoset.GetData(), fastInfoset.GetLength()); }));
    document.LoadXml("<r/>");
  }
}

TEST(Reading, BoundsWhatADtdCanDo) {
  const auto nested = [](int depth) {
    std::string xml = "<!DOCTYPE a [<!ENTITY e0 '&#38;#120;'>";
    for (int i = 1; i <= depth; ++i) xml += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
    const std::string last = "&e" + std::to_string(depth) + ";";
    return xml + "]><a v='" + last + "'>" + last + "</a>";
  };
  RunInSmallStack([&] { EXPECT_TEXT(L"a@v=x(x)", TreeOf(nested(200))); });
  EXPECT_THROWS(CRkException, L"Limit exceeded: entities that refer to entities 200.", TreeOf(nested(20000)));
  std::string many = "<!DOCTYPE a [<!ATTLIST b";
  for (int i = 0; i < 1000; ++i) many += " x" + std::to_string(i) + " CDATA ''";
  many += ">]><a>";
  for (int i = 0; i < 1001; ++i) many += "<b/>";
  EXPECT_THROWS(CRkException, L"Limit exceeded: defaulted attributes 1000000.\nPath: /a/b[1001]",
                TreeOf(many + "</a>"));
  // One long default on many elements is held once.
  std::string defaults = "<!DOCTYPE a [<!ATTLIST b x CDATA '" + std::string(100000, 'x') + "'>]><a>";
  for (int i = 0; i < 10000; ++i) defaults += "<b/>";
  CXmlDocument document;
  Load(document, defaults + "</a>");
  const CXmlElement* const b = document.GetDocumentElement()->GetFirstElement();
  EXPECT_EQ(100000u, b->GetAttribute(L"x", L"").size());
  EXPECT_EQ(b->GetAttribute(L"x", L"").data(), b->GetNextSiblingElement()->GetAttribute(L"x", L"").data());
}

int seen = 0;

TEST(Reading, FilterKeepsMemoryBounded) {
  constexpr int kRecords = 100000;
  const std::string text(500, 't');
  std::string xml = "<all><keep/>";
  for (int i = 0; i < kRecords; ++i) xml += "<record a='v'><n>" + text + "</n></record>";
  xml += "<keep>end</keep></all>";

  seen = 0;
  const auto filter = +[](CXmlElement* element) {
    if (element->GetLocalName() == L"n") return false;
    if (element->GetLocalName() == L"record") ++seen;
    return element->GetLocalName() != L"keep";
  };
  CSerializationContext context;  // limits what the tree holds
  context.GetLimits().SetMaxNodes(6);
  context.GetLimits().SetMaxCharacters(600);
  CXmlDocument document(filter, context);
  rusage before{};
  getrusage(RUSAGE_SELF, &before);
  Load(document, xml);
  rusage after{};
  getrusage(RUSAGE_SELF, &after);
  EXPECT_EQ(kRecords, seen);
  EXPECT_TEXT(L"all()<keep()><keep(end)>", TreeOf(document));
#ifndef __SANITIZE_ADDRESS__
  EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 20 * 1024);  // kilobytes; the whole tree is over 200 MB
#endif
}

TEST(Reading, FilterMayBuildAndCannotDropTheRoot) {
  seen = 0;
  CXmlDocument document(+[](CXmlElement* element) {
    ++seen;
    CXmlElement* const parent = element->GetParentElement();
    if (parent != nullptr) parent->AppendText(element->GetText().c_str());
    return true;
  });
  Load(document, "<a><b>1<c>2</c></b><d>3</d>4</a>");
  EXPECT_EQ(4, seen);
  EXPECT_TEXT(L"a(1234)", TreeOf(document));

  CXmlDocument building(+[](CXmlElement* element) {
    auto& owner = const_cast<CXmlDocument&>(*element->GetDocument());
    if (element->GetLocalName() == L"c") owner.GetDocumentElement()->AppendText(L"kept");
    if (element->GetLocalName() == L"e") owner.AddChildElement(L"", L"n");
    if (element->GetLocalName() == L"e") owner.EndElement();
    return element->GetLocalName() != L"n";
  });
  Load(building, "<a><b><c/></b><d>dropped</d><e/></a>");
  EXPECT_TEXT(L"a(kept)<e()><n()>", TreeOf(building));
}

}  // namespace

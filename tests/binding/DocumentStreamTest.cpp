#include "RkXmlLib16/binding/DocumentStream.h"

#include <sstream>

#include "Expect.h"
#include "RkXmlLib16/io/Zip.h"
#include "RkXmlLib16/wildcards/Element.h"
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
  const CBinaryData octets = tree.ToFastInfosetStream();
  return {reinterpret_cast<const char*>(octets.GetData()), octets.GetLength()};
}

std::string Wrapped(const std::string& bytes, CompressionType type) {
  CBinaryData data;
  data.Append(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
  CRkZip::CompressData(data, type);
  return {reinterpret_cast<const char*>(data.GetData()), data.GetLength()};
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

}  // namespace

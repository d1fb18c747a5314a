#include "RkXmlLib16/fastinfoset/Reader.h"

#include <algorithm>

#include "Expect.h"
#include "Octets.h"
#include "RkXmlLib16/context/ReadLimits.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/io/Encoder.h"
#include "support/Cases.h"

namespace RkXmlTest {
namespace {

// A document of these octets, which follow the header.
std::wstring Read(const std::string& hex) { return TreeOf(FromHex("E0 00 00 01" + hex)); }

std::wstring Message(Wide rest) { return std::wstring(L"Failed to parse FastInfoset. ") + rest; }

std::string Hex(std::string_view text) { return ToHex(Octets(text.begin(), text.end())); }

// Each case of the file is octets behind the header, and their tree.
TEST(FastInfosetReader, WhatWritersMayWrite) {
  // Short texts are read in another way when enough octets follow.
  const std::string more = " " + Hex(std::string(32, '\r'));
  for (const auto& [octets, tree] : ReadCases(RKXML_TEST_DATA "/fastinfoset_trees.txt")) {
    EXPECT_TEXT(FromUtf8(tree), Read(octets)) << octets;
    EXPECT_TEXT(FromUtf8(tree), Read(octets + more)) << octets;
  }
  EXPECT_TEXT(L"a@b=x\ry()", Read("00 7C 00 61 78 00 62 42 78 0D 79 FF F0"));
}

TEST(FastInfosetReader, Failures) {
  for (const auto& [octets, message] : ReadCases(RKXML_TEST_DATA "/fastinfoset_errors.txt")) {
    SCOPED_TRACE(octets);
    EXPECT_THROWS(CRkException, FromUtf8(message), Read(octets));
  }
}

// What would mean something else as XML text, or nothing there.
TEST(FastInfosetReader, NamesThatXmlTextCannotHoldAreRefused) {
  const std::string xmlnsNamespace = "1C " + Hex("http://www.w3.org/2000/xmlns/");
  std::vector<std::string> documents = ReadLines(RKXML_TEST_DATA "/fastinfoset_refused.txt");
  for (std::string& line : documents) line.erase(std::min(line.find("  #"), line.size()));  // remarks
  // The namespace of xmlns.
  documents.push_back("00 38 CF 00 70" + xmlnsNamespace + " F0 3C 00 61 FF");
  documents.push_back("00 3D " + xmlnsNamespace + " 00 61 FF");
  for (const char* const uri : {"75 05 76", "75 0D 76", "75 0A 76", "75 09 76", "75 7C 76", "75 C3 28"})
    documents.push_back(std::string("00 38 CF 00 70 02 ") + uri + " F0 3C 00 61 FF");
  std::string attributes = "00 7C 00 61";
  for (int i = 0; i < 40; ++i)
    attributes += " 78 01 61 " + Hex(std::string(1, static_cast<char>('A' + i % 39))) + " FF";
  documents.push_back(attributes + " FF F0");  // the first of many again
  for (const std::string& octets : documents) {
    SCOPED_TRACE(octets);
    EXPECT_THROWS(CRkException, Message(L"Invalid Encoding of Element type."), Read(octets));
  }
  // xml may be declared for what it stands for; without namespaces, colons are letters like others.
  EXPECT_TEXT(L"a()", Read("00 38 CF 80 80 F0 3C 00 61 FF"));
  CSerializationContext plain;
  plain.SetSchemaType(SchemaType_NoNamespaces);
  EXPECT_TEXT(L"a:b@xmlns=u()",
              TreeOf(FromHex("E0 00 00 01 00 7C 02 61 3A 62 78 04 78 6D 6C 6E 73 40 75 FF F0"), plain));
}

TEST(FastInfosetReader, OtherInputIsLeftAlone) {
  const std::string declaration = "<?xml encoding='finf'?>";
  for (const Octets& octets : {Octets(), FromHex("E0"), FromHex("E0 00 00"), FromHex("E0 00 00 02 00"),
                               FromHex("3C 61 2F 3E"), Octets(declaration.begin(), declaration.end())}) {
    CXmlDocument document;
    const CFastInfosetContext context;
    EXPECT_FALSE(CFastInfosetReader(context, document).Parse(octets.data(), octets.size())) << ToHex(octets);
  }
}

TEST(FastInfosetReader, InitialVocabularyListsAreReadPastIntended) {
  const std::wstring unknown = Message(L"Invalid Encoding of integers 1 To 2^20 type  on the second bit of an octet.");
  // Lists of one item keep their numbers but cannot be referred to: the document's own entries come after them.
  EXPECT_TEXT(L"{urn:p}a()<a()>", Read("20 03 80 00 00 71 00 04 75 72 6E 3A 71 00 00 62"
                                       "38 CF 00 70 04 75 72 6E 3A 70 F0 3F 82 82 00 61 3C 81 FF F0"));
  EXPECT_THROWS(CRkException, unknown, Read("20 00 80 00 00 62 3C 80 FF"));
  EXPECT_THROWS(CRkException, Message(L"Invalid Encoding of integers 0 To 2^20 type  on the second bit of an octet."),
                Read("20 00 10 00 00 62 7C 00 61 78 00 63 80 FF F0"));
  const Rows<const char*, Wide> ofOneItem = {
      {"20 0C 00 00 00 62 00 00 63 3C 00 61 FF", L"a()"},     // alphabets, algorithms
      {"20 00 40 00 00 62 E1 80 00 6E 3C 00 61 FF", L"a()"},  // other names
      {"20 00 20 00 00 62 C6 80 F0 3C 00 61 FF", L"a()"},     // other URIs
      {"20 00 10 00 00 62 7C 00 61 78 00 62 40 63 78 00 63 81 FF F0", L"a@b=c@c=c()"},
      {"20 00 08 00 00 62 3C 00 61 90 78 A1 FF", L"a(xx)"},
      {"20 00 04 00 00 62 E2 80 3C 00 61 FF", L"a()"},  // other strings
      {"20 00 02 00 00 80 3C 00 61 01 FF F0", L"a()<a()>"},
      {"20 00 01 00 00 80 7C 00 61 78 00 62 40 63 F0 40 01 80 FF FF", L"a@b=c()<a@b=c()>"},
  };
  for (const auto& [octets, tree] : ofOneItem) EXPECT_TEXT(tree, Read(octets)) << octets;
  for (const char* const octets : {"20 00 08 00 00 62 3C 00 61 90 78 A0 FF", "20 00 02 00 00 80 3C 00 61 00 FF F0",
                                   "20 00 01 00 00 80 7C 00 61 78 00 62 40 63 F0 40 00 80 FF FF"})
    EXPECT_THROW(Read(octets), CRkException) << octets;
  // The length of a longer list is read before every item, so such a list is misread, and no index is trusted then.
  EXPECT_TEXT(L"a()", Read("20 00 80 01 00 62 01 00 63 3C 00 61 FF"));
  EXPECT_THROWS(CRkException, unknown, Read("20 00 80 01 00 62 01 00 63 3C 00 61 3C 81 FF F0"));
  EXPECT_THROW(Read("20 03 88 00 00 70 00 05 75 72 6E 3A 70 6F 01 00 61 00 62 01 02 6F 6E 65 02 74 77 6F "
                    "38 CF 81 81 F0 3F 81 81 80 A1 FF"),
               CRkException);
}

TEST(FastInfosetReader, PrefixesAreThoseOfTheDeclarations) {
  const Octets octets =
      FromHex("E0 00 00 01 00 38 CD 04 75 72 6E 3A 64 CF 00 70 04 75 72 6E 3A 70 F0 3F 81 82 00 61 FF");
  CXmlDocument document;
  Load(document, View(octets));
  EXPECT_TEXT(L"p", document.LookupAliasFromNamespace(L"urn:p").View());
  EXPECT_TEXT(L"urn:d", document.LookupNamespaceFromAlias(L"").View());
  EXPECT_TEXT(L"p:a", document.GetDocumentElement()->GetQName());
}

// Elements inside each other, as many as there are octets for; nothing recurses.
TEST(FastInfosetReader, DepthTakesNoStack) {
  Octets octets = FromHex("E0 00 00 01 00 3C 00 61");
  constexpr std::size_t kDepth = 300000;
  octets.insert(octets.end(), kDepth, 0x00);
  octets.insert(octets.end(), kDepth / 2 + 1, 0xFF);
  CXmlDocument document;
  Load(document, View(octets));
  std::size_t depth = 0;
  for (const CXmlElement* at = document.GetDocumentElement(); at != nullptr; at = at->GetFirstElement()) ++depth;
  EXPECT_EQ(kDepth + 1, depth);
}

TEST(FastInfosetReader, ExpansionOfIndexedTextIsBounded) {
  Octets octets = FromHex("E0 00 00 01 00 3C 00 61 93 00 00 00 00");  // a chunk of 259 octets, added
  octets.insert(octets.end(), 259, 'x');
  octets.insert(octets.end(), 1000, 0xA0);
  octets.push_back(0xFF);
  CSerializationContext context;
  context.GetLimits().SetExpansionRatioFrom(1000);
  context.GetLimits().SetMaxExpansionRatio(10);
  EXPECT_THROW(TreeOf(octets, context), CRkException);
  context.GetLimits().SetMaxExpansionRatio(0);
  EXPECT_EQ(259u * 1001u + 3, TreeOf(octets, context).size());

  Octets names = FromHex("E0 00 00 01 00 3C 00 72 3C 40 C3");  // a name of 260 octets
  names.insert(names.end(), 260, 'x');
  for (int i = 0; i < 1000; ++i) names.insert(names.end(), {0xF0, 0x01});
  names.insert(names.end(), {0xFF, 0xFF});
  EXPECT_EQ(1001u * 264u + 3, TreeOf(names, context).size());
  context.GetLimits().SetMaxExpansionRatio(10);
  EXPECT_THROWS(CRkException, L"Limit exceeded: characters of indexed strings 22730.", TreeOf(names, context));
}

TEST(FastInfosetReader, CharactersNotOctetsAreLimited) {
  Octets octets = FromHex("E0 00 00 01 00 3C 00 61");
  for (int i = 0; i < 100; ++i) octets.insert(octets.end(), {0x82, 0x00, 0xE6, 0xBC, 0xA2});  // a chunk of 3 octets
  octets.push_back(0xFF);
  CSerializationContext context;
  context.GetLimits().SetMaxCharacters(200);
  EXPECT_EQ(103u, TreeOf(octets, context).size());
  context.GetLimits().SetMaxCharacters(100);
  EXPECT_THROWS(CRkException, L"Limit exceeded: characters 100.\nPath: /a", TreeOf(octets, context));
}

}  // namespace
}  // namespace RkXmlTest

#include "RkXmlLib16/fastinfoset/Reader.h"

#include "Expect.h"
#include "Octets.h"
#include "RkXmlLib16/context/ReadLimits.h"
#include "RkXmlLib16/context/SerializationContext.h"

namespace RkXmlTest {
namespace {

// A document of these octets, which follow the header.
std::wstring Read(const std::string& hex) { return TreeOf(FromHex("E0 00 00 01" + hex)); }

std::wstring Message(Wide rest) { return std::wstring(L"Failed to parse FastInfoset. ") + rest; }

std::string Hex(std::string_view text) { return ToHex(Octets(text.begin(), text.end())); }

TEST(FastInfosetReader, WhatWritersMayWrite) {
  const Rows<const char*, Wide> rows = {
      // terminators: merged, apart, at the end of attributes
      {"00 7C 00 61 78 00 62 40 31 F0 3C 00 63 F0 F0 F0", L"a@b=1()<c()>"},
      {"00 7C 00 61 78 00 62 40 31 F0 3C 00 63 FF F0", L"a@b=1()<c()>"},
      {"00 7C 00 61 78 00 62 40 31 FF F0", L"a@b=1()"},
      // octets after the document belong to something else
      {"00 3C 00 61 FF 00 12", L"a()"},
      // UTF-16, alphabets padded or cut, lists
      {"00 7C 00 61 78 00 62 51 00 E9 F0 95 6F 22 FF", L"a@b=\u00E9(\u6F22)"},
      {"00 7C 00 61 78 00 6E 60 01 A1 C5 78 00 6D 60 01 12 3F F0 98 01 A1 C5 FF", L"a@n=-1.5@m=123(-1.5)"},
      {"00 3C 00 61 8C 26 00 78 3C 79 FF", L"a(x<y)"},
      // a typed literal that is added, then found
      {"00 7C 00 61 78 00 69 70 33 00 00 00 05 78 00 73 80 FF F0", L"a@i=5@s=5()"},
      // comments and instructions keep to tables of their own
      {"00 E1 01 67 6F 42 6E 6F 77 3C 00 61 E2 80 E2 FF 90 78 A0 FF", L"a(xx)"},
      // document type, entity references
      {"00 C6 04 61 2E 64 74 64 F0 3C 00 61 90 78 CA 00 65 80 90 79 C8 80 FF", L"a(xy)"},
      // optional components
      {"47 00 05 75 72 6E 3A 61 64 01 0A 0B 04 55 54 46 2D 38 01 42 31 2E 30 3C 00 61 FF", L"a()"},
      // an external vocabulary that adds nothing
      {"20 10 00 04 75 72 6E 3A 76 3C 00 61 FF", L"a()"},
      // carriage returns in text go, also where the text is found again
      {"00 3C 00 61 92 00 78 0D 79 A0 FF", L"a(xyxy)"},
      {"00 7C 00 61 78 00 62 42 78 0D 79 FF F0", L"a@b=x\ry()"},
      // texts and values end at a NUL, also where they are found again and in UTF-16
      {"00 3C 00 61 92 00 78 00 79 A0 FF", L"a(xx)"},
      {"00 7C 00 61 78 00 62 42 78 00 79 78 00 63 80 78 00 64 53 00 78 00 00 FF F0", L"a@b=x@c=x@d=x()"},
      // indexed texts and values, of which more is made in some elements; octets behind a text that are none of it
      {"00 3C 00 61 91 78 79 3C 00 62 A0 80 7A F0 3C 00 63 A0 F0 80 77 FF", L"a(xyw)<b(xyz)><c(xy)>"},
      {"00 7C 00 61 78 00 62 41 31 32 F0 7C 00 63 00 80 78 00 64 40 33 F0 F0 3C 00 65 80 31 FF F0",
       L"a@b=12()<c@b=12@d=3()><e(1)>"},
      {"00 3C 00 61 82 0D 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66 67 3C 00 62 82 00 C3 A9 64 F0 82 01 68 0D 69 6A "
       "FF",
       L"a(123456789abcdefghij)<b(\u00E9d)>"},
      // literals of a qualified name itself
      {"00 3F 00 70 04 75 72 6E 3A 70 00 61 FF", L"{urn:p}a()"},
  };
  // Short texts are read in another way when enough octets follow.
  const std::string more = " " + Hex(std::string(32, '\r'));
  for (const auto& [octets, tree] : rows) {
    EXPECT_TEXT(tree, Read(octets)) << octets;
    EXPECT_TEXT(tree, Read(octets + more)) << octets;
  }
}

TEST(FastInfosetReader, Failures) {
  const std::wstring end = Message(L"Unexpected End of File.");
  const std::wstring item = Message(L"Invalid Encoding of Element type.");
  const std::wstring index2 = Message(L"Invalid Encoding of integers 1 To 2^20 type  on the second bit of an octet.");
  const std::wstring index3 = Message(L"Invalid Encoding of integers 1 To 2^20 type  on the third bit of an octet.");
  const std::wstring index4 = Message(L"Invalid Encoding of integers 1 To 2^20 type  on the fourth bit of an octet.");
  const std::wstring value = Message(L"Invalid Encoding of integers 0 To 2^20 type  on the second bit of an octet.");
  const std::wstring length2 = Message(L"Invalid NonEmptyOctetString type  on the second bit of an octet.");
  const std::wstring length5 = Message(L"Invalid NonEmptyOctetString type  on the fifth bit of an octet.");
  const std::wstring alphabet =
      Message(L"Invalid Encoding of Restricted Alphabet. Alphabet must contain between 2 and 2^20 characters.");
  const Rows<const char*, std::wstring> rows = {
      {"00 3C", end},                          // no name
      {"00 3C 02 61", end},                    // cut inside a string
      {"00 3C 40", end},                       // cut inside a length
      {"00 3C 60 FF FF FF FF 61", end},        // a length beyond everything
      {"00 3C 00 61 83 FF FF FF FF 61", end},  // the same of a chunk
      {"00 3C 00 61", end},                    // no end of the element
      {"00 3C 00 61 F0", end},                 // no end of the document
      {"20 00 80 80 00 00", end},              // a list of 129 local names
      {"00 F0", item},                         // no element
      {"00 C4 FF", item},                      // only a document type
      {"00 3C 00 61 F0 3C 00 61 FF", item},    // a second root
      {"00 80 61", item},                      // text outside the root
      {"00 3C 00 61 C0 FF", item},             // octets that begin nothing
      {"00 7C 00 61 E1 FF", item},             // not an attribute
      {"00 38 CB F0 3C 00 61 FF", item},       // not a namespace attribute
      {"00 38 CC F0 7C 00 61 FF", item},       // attribute bit behind declarations
      {"10 C4 F0 3C 00 61 FF", item},          // not a notation
      {"08 C4 F0 3C 00 61 FF", item},          // not an unparsed entity
      {"00 3E 00 70 00 61 FF", Message(L"Invalid QName type Prefix without Namespace.")},
      {"00 00 FF", index3},  // no such element name
      {"00 3C 00 61 01 FF", index3},
      {"00 34 00 61 FF", index3},              // no such form
      {"00 3C 80 FF", index2},                 // no such local name
      {"00 7C 00 61 00 80 FF", index2},        // no such attribute name
      {"00 7C 00 61 7C 00 62 80 FF", index2},  // no such form
      {"00 7C 00 61 78 00 62 80 FF", value},   // no such value
      {"00 7C 00 61 78 00 62 F1 FF", value},   // no such form
      {"00 3C 00 61 A0 FF", index4},           // no such chunk
      {"00 3C 00 61 BC FF", index4},           // no such form
      {"00 3C 41 61 FF", length2},
      {"00 7C 00 61 78 00 62 49 61 FF", length5},
      {"00 3C 00 61 88 08 12 FF", alphabet},                               // alphabet 3
      {"00 3C 00 61 8C 28 12 FF", L"Unknown byte encoding."},              // algorithm 11
      {"00 3C 00 61 8D 0C 01 FF", L"Unknown byte encoding."},              // algorithm 68
      {"00 7C 00 61 78 00 62 31 30 01 FF F0", L"Unknown byte encoding."},  // algorithm 20
      {"00 3C 00 61 8C 0C 01 FF", L"Invalid value for INT byte encoding."},
      {"00 E2 80 3C 00 61 FF", value},            // a comment that is not there
      {"00 38 CF 81 81 F0 3C 00 61 FF", index2},  // prefix 2
  };
  for (const auto& [octets, message] : rows) {
    SCOPED_TRACE(octets);
    EXPECT_THROWS(CRkException, message, Read(octets));
  }
}

// What would mean something else as XML text, or nothing there.
TEST(FastInfosetReader, NamesThatXmlTextCannotHoldAreRefused) {
  const std::string xmlnsNamespace = "1C " + Hex("http://www.w3.org/2000/xmlns/");
  std::vector<std::string> documents = {
      "00 3C 01 61 3E FF",                                    // a>
      "00 3C 00 3A FF",                                       // :
      "00 3C 04 61 3A 62 3A 63 FF",                           // a:b:c
      "00 3C 02 61 3A 62 FF",                                 // a:b
      "00 7C 00 61 78 02 61 3A 62 40 31 FF F0",               // the same of an attribute
      "00 7C 00 61 78 04 78 6D 6C 6E 73 40 75 FF F0",         // xmlns="u"
      "00 7C 00 61 78 00 62 40 31 00 40 32 FF F0",            // b twice
      "00 3C 01 61 FF FF",                                    // ill-formed UTF-8
      "00 3C 01 C3 C0 FF",                                    //
      "00 3C 02 ED A0 80 FF",                                 // a surrogate
      "00 3C 02 E2 B0 80 FF",                                 // U+2C00, a name of the fifth edition of XML only
      "00 3C 03 F0 90 80 80 FF",                              // U+10000
      "00 38 CF 00 3D 00 75 F0 3C 00 61 FF",                  // prefix =
      "00 38 CF 01 C0 80 00 75 F0 3C 00 61 FF",               // ill-formed prefix
      "00 38 CF 04 78 6D 6C 6E 73 00 75 F0 3C 00 61 FF",      // prefix xmlns
      "00 38 CF 80 00 75 F0 3C 00 61 FF",                     // prefix xml for u
      "00 38 CE 80 F0 3C 00 61 FF",                           // for nothing
      "00 38 CF 00 70 80 F0 3C 00 61 FF",                     // p for the namespace of xml
      "00 38 CD 80 F0 3C 00 61 FF",                           // that as the default
      "00 3F 00 70 80 00 61 FF",                              // the same in names
      "00 3F 80 00 75 00 61 FF",                              //
      "00 38 CF 00 70" + xmlnsNamespace + " F0 3C 00 61 FF",  // the namespace of xmlns
      "00 3D " + xmlnsNamespace + " 00 61 FF",                //
  };
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

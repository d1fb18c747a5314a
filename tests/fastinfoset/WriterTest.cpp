#include "RkXmlLib16/fastinfoset/Writer.h"

#include <functional>
#include <map>

#include "Expect.h"
#include "Octets.h"
#include "RkXmlLib16/io/Encoder.h"
#include "support/Cases.h"
#include "support/Replay.h"

namespace RkXmlTest {
namespace {

using Calls = std::function<void(CFastInfosetWriter&)>;

// Every document written here has to pass the checker and to read to the tree that the checker sees.
void ExpectReadable(const Octets& octets) { EXPECT_TEXT(Check(octets), TreeOf(octets)) << ToHex(octets); }

Octets WriteScript(const wchar_t* script, const CFastInfosetContext& context = {}) {
  return Write(context, [script](CFastInfosetWriter& w) { Replay(w, script); });
}

void ExpectOctets(const std::string& hex, const Calls& calls, const CFastInfosetContext& context = {}) {
  const Octets octets = Write(context, calls);
  EXPECT_EQ(ToHex(FromHex("E0 00 00 01 00" + hex)), ToHex(octets));
  ExpectReadable(octets);
}

void ExpectOctets(const std::string& hex, const wchar_t* script, const CFastInfosetContext& context = {}) {
  ExpectOctets(
      hex, [script](CFastInfosetWriter& w) { Replay(w, script); }, context);
}

// <a b="text">text</a>
void WriteBoth(CXmlWriter& w, const std::wstring& name, const std::wstring& text, ItemType type = ItemType_string) {
  w.WriteStartElement(name, L"");
  w.WriteAttributeString(L"b", L"", text, type);
  w.WriteString(text, type);
  w.WriteEndElement();
}

// Each case of the file is a script of calls and the octets that they write.
TEST(FastInfosetWriter, WorkedExamples) {
  for (const auto& [script, octets] : ReadCases(RKXML_TEST_DATA "/fastinfoset_written.txt"))
    ExpectOctets(octets, FromUtf8(script).c_str());
  ExpectOctets("7C 01 C3 A9 78 00 61 42 E6 BC A2 F0 92 01 F0 9F 98 80 FF", L"<\u00E9 @a=\u6F22 '\xD83D\xDE00'>");
}

TEST(FastInfosetWriter, ATypeOfTheDefaultNamespaceNeedsAPrefixWhereThatIsUndeclared) {
  const Octets typed = WriteScript(L"={urn:d} <a{urn:d} :T{urn:d} <b :T{urn:d}>>");
  ExpectReadable(typed);
  const std::wstring type = L"@{" + CXmlWriter::XSI_NAMESPACE + L"}type=";
  EXPECT_TEXT(L"{urn:d}a" + type + L"T()<b" + type + L"AB:T()>", TreeOf(typed));
}

TEST(FastInfosetWriter, EveryNameIsInScopeForOtherReaders) {
  for (const wchar_t* const script : {
           L"={urn:d} <a <b{urn:d}> <c>>",                            // a root without namespace under a default one
           L"+p{urn:1} +p{urn:2} <a{urn:1} @b{urn:2}=v <c{urn:2}>>",  // two namespaces under one prefix
           // the first of them in force, and used, where the second is needed
           L"+p{urn:1} +p{urn:2} <a <b{urn:1} @c{urn:2}=v> <b @c{urn:1}=v @d{urn:2}=v>>",
           // a prefix added late, inside and after the start tag
           L"<a +p{urn:p} @b{urn:p}=v <c 't' +q{urn:q} <d{urn:q}>> <e{urn:q}>>",
           L"={urn:d} <a{urn:d} <b{urn:d} ={urn:e} <c{urn:e}>> <d{urn:d}>>",  // the default changed below the root
           // an empty prefix stands for the default namespace, and attributes need another
           L"+{urn:d} <a{urn:d} @b{urn:d}=v>",
       })
    ExpectReadable(WriteScript(script));
}

TEST(FastInfosetWriter, TextOfTheMaximumAddLengthIsNeverIndexed) {
  ExpectOctets("7C 00 61 78 00 62 44 31 32 33 34 35 78 00 63 80 F0 92 02 31 32 33 34 35 A0 FF",
               L"<a @b=12345 @c=12345 '12345' '12345'>");
  const wchar_t* const longer = L"<a @b=123456 @c=123456 '123456' '123456'>";
  ExpectOctets(
      "7C 00 61 78 00 62 05 31 32 33 34 35 36 78 00 63 05 31 32 33 34 35 36 F0 82 03 31 32 33 34 35 36"
      "82 03 31 32 33 34 35 36 FF",
      longer);
  CFastInfosetContext context;
  context.SetAttributeMaxAddLength(7);
  context.SetElementMaxAddLength(0);
  ExpectOctets(
      "7C 00 61 78 00 62 45 31 32 33 34 35 36 78 00 63 80 F0 82 03 31 32 33 34 35 36 82 03 31 32 33 34 35 36"
      "FF",
      longer, context);
}

// What stands between the octets before and after it, for texts and tables of a given size.
TEST(FastInfosetWriter, LengthBoundaries) {
  const Rows<std::size_t, const char*, const char*, const char*> rows = {
      {1, "40", "90", "00"},
      {2, "41", "91", "01"},
      {3, "42", "92 00", "02"},
      {8, "07", "82 05", "07"},
      {9, "08 00", "82 06", "08"},
      {64, "08 37", "82 3D", "3F"},
      {65, "08 38", "82 3E", "40 00"},
      {258, "08 F9", "82 FF", "40 C1"},
      {259, "08 FA", "83 00 00 00 00", "40 C2"},
      {264, "08 FF", "83 00 00 00 05", "40 C7"},
      {265, "0C 00 00 00 00", "83 00 00 00 06", "40 C8"},
      {320, "0C 00 00 00 37", "83 00 00 00 3D", "40 FF"},
      {321, "0C 00 00 00 38", "83 00 00 00 3E", "60 00 00 00 00"},
      {66000, "0C 00 01 00 C7", "83 00 01 00 CD", "60 00 01 00 8F"},
  };
  for (const auto& [length, value, chunk, name] : rows) {
    SCOPED_TRACE(length);
    std::string content;
    for (std::size_t i = 0; i < length; ++i) content += " 78";
    const std::string hex =
        std::string("7C") + name + content + "78 00 62" + value + content + "F0" + chunk + content + "FF";
    const std::wstring text(length, L'x');
    ExpectOctets(hex, [&](auto& w) { WriteBoth(w, text, text); });
  }
}

TEST(FastInfosetWriter, IndexBoundaries) {
  // The last octets of a document in which entry n is used again, for element names, attribute names with values, and
  // chunks. The boundaries from half a million on are reached through the integers themselves below.
  const Rows<std::size_t, const char*, const char*, const char*, const char*> rows = {
      {1, "00", "00", "80", "A0"},
      {16, "0F", "0F", "8F", "AF"},
      {17, "10", "10", "90", "B0 00"},
      {32, "1F", "1F", "9F", "B0 0F"},
      {33, "20 00", "20", "A0", "B0 10"},
      {64, "20 1F", "3F", "BF", "B0 2F"},
      {65, "20 20", "40 00", "C0 00", "B0 30"},
      {1040, "23 EF", "43 CF", "C3 CF", "B3 FF"},
      {1041, "23 F0", "43 D0", "C3 D0", "B4 00 00"},
      {2080, "27 FF", "47 DF", "C7 DF", "B4 04 0F"},
      {2081, "28 00 00", "47 E0", "C7 E0", "B4 04 10"},
      {8256, "28 18 1F", "5F FF", "DF FF", "B4 1C 2F"},
      {8257, "28 18 20", "60 00 00", "E0 00 00", "B4 1C 30"}};
  CFastInfosetContext context;
  context.SetAttributeMaxAddLength(10);
  context.SetElementMaxAddLength(10);
  for (const auto& [index, element, attribute, value, chunk] : rows) {
    SCOPED_TRACE(index);
    const Octets octets = Write(context, [last = index](CFastInfosetWriter& w) {
      const auto write = [&w](const std::wstring& n) {
        Replay(w, L"<" + n + L" @" + n + L"=" + n + L" '" + n + L"'>");
      };
      w.WriteStartElement(L"n1", L"");
      for (std::size_t n = 1; n <= last; ++n) write(L"n" + std::to_wstring(n));
      write(L"n" + std::to_wstring(last));
    });
    Octets start = FromHex(element);
    start[0] |= 0x40;
    const std::string end = ToHex(start) + " " + attribute + " " + value + " F0 " + chunk + " FF F0";
    const Octets tail(octets.end() - static_cast<std::ptrdiff_t>(FromHex(end).size()), octets.end());
    EXPECT_EQ(end, ToHex(tail));
    if (index <= 2081) ExpectReadable(octets);
  }
}

// The steps by themselves, in front of the octets of an element.
class CStepWriter : public CFastInfosetWriter {
 public:
  using CFastInfosetWriter::CFastInfosetWriter;
  using CFastInfosetWriter::Integer0To2pw20Bit2;
  using CFastInfosetWriter::Integer1To2pw20Bit2;
  using CFastInfosetWriter::Integer1To2pw20Bit3;
  using CFastInfosetWriter::Integer1To2pw20Bit4;
};

TEST(FastInfosetWriter, LargeIndices) {
  const CFastInfosetContext context;
  CBinaryStream stream;
  CStepWriter w(context, stream);
  w.Integer0To2pw20Bit2(0x80, 0);
  w.Integer1To2pw20Bit2(0x80, 1048576ul);
  for (const unsigned long index : {526368ul, 526369ul, 1048576ul}) w.Integer1To2pw20Bit3(0x00, index);
  for (const unsigned long index : {263184ul, 263185ul, 1048576ul}) w.Integer1To2pw20Bit4(0xA0, index);
  w.Close();
  EXPECT_EQ("FF EF DF BF 2F FF FF 30 00 00 00 30 07 F7 DF B7 FF FF B8 00 00 00 B8 0B FB EF",
            ToHex(ToOctets(stream.GetBinaryStream())));
}

TEST(FastInfosetWriter, Headers) {
  const auto a = [](CFastInfosetWriter& w) { Replay(w, L"<a>"); };
  for (int declaration = 1; declaration <= 9; ++declaration) {
    const Octets octets = Write(CFastInfosetContext(), a, static_cast<FInfoDecl>(declaration));
    EXPECT_EQ(0, std::string(octets.begin(), octets.end()).compare(0, 6, "<?xml ")) << declaration;
    EXPECT_TEXT(L"a()", TreeOf(octets));
    ExpectReadable(octets);
  }
  const Octets last = Write(CFastInfosetContext(), a, FInfoDecl_Version11StandaloneNo);
  EXPECT_EQ("<?xml version='1.1' encoding='finf' standalone='no'?>", std::string(last.begin(), last.begin() + 53));
  EXPECT_THROWS(CRkInvalidParamException, L"Invalid Fast Infoset declaration [10]",
                Write(CFastInfosetContext(), a, static_cast<FInfoDecl>(10)));

  CFastInfosetContext context;
  context.SetUseGeneratedVocabulary(true);
  context.SetExternalVocabularyURI(L"urn:v");
  EXPECT_EQ("E0 00 00 01 20 10 00 04 75 72 6E 3A 76 3C 00 61 FF", ToHex(Write(context, a)));
  context.SetExternalVocabularyURI(L"");
  const Octets own = Write(context, a);
  EXPECT_NE(std::string::npos, std::string(own.begin(), own.end()).find("urn:rkxmllib16:fast-infoset"));
  ExpectReadable(own);
}

TEST(FastInfosetWriter, TypedValuesUnderTheSuggestedEncodings) {
  CFastInfosetContext context;
  context.SetSuggestedValues();
  const struct {
    ItemType type;
    const wchar_t* text;
    const char *attribute, *chunk;
  } rows[] = {
      {ItemType_hexBinary, L"0ABC", "70 01 0A BC", "9C 01 0A BC"},
      {ItemType_hexBinary, L"0abc", "43 30 61 62 63", "92 01 30 61 62 63"},
      {ItemType_base64Binary, L"SGVs", "70 12 48 65 6C", "9C 06 00 48 65 6C"},
      {ItemType_base64Binary, L"SG V", "43 53 47 20 56", "92 01 53 47 20 56"},
      {ItemType_byte, L"-2", "70 21 FF FE", "9C 09 FF FE"},
      {ItemType_short, L"+5", "41 2B 35", "91 2B 35"},
      {ItemType_short, L"007", "42 30 30 37", "92 00 30 30 37"},
      {ItemType_unsignedShort, L"65535", "70 33 00 00 FF FF", "9C 0E 01 00 00 FF FF"},
      {ItemType_int, L"66051", "70 33 00 01 02 03", "9C 0E 01 00 01 02 03"},
      {ItemType_int, L"3000000000", "08 01 33 30 30 30 30 30 30 30 30 30", "82 07 33 30 30 30 30 30 30 30 30 30"},
      {ItemType_long, L"-1", "70 47 FF FF FF FF FF FF FF FF", "9C 12 05 FF FF FF FF FF FF FF FF"},
      {ItemType_unsignedLong, L"123", "60 01 12 3F", "98 01 12 3F"},
      {ItemType_float, L"1.5", "30 63 3F C0 00 00", "8C 1A 01 3F C0 00 00"},
      {ItemType_float, L"1.50", "43 31 2E 35 30", "92 01 31 2E 35 30"},
      {ItemType_float, L"INF", "42 49 4E 46", "92 00 49 4E 46"},
      {ItemType_double, L"0.5", "30 77 3F E0 00 00 00 00 00 00", "8C 1E 05 3F E0 00 00 00 00 00 00"},
      {ItemType_boolean, L"true", "70 50 38", "9C 14 38"},
      {ItemType_boolean, L"TRUE", "43 54 52 55 45", "92 01 54 52 55 45"},
      {ItemType_decimal, L"-1.5", "60 01 A1 C5", "98 01 A1 C5"},
      {ItemType_integer, L"12", "60 00 12", "98 00 12"},
      {ItemType_decimal, L".5", "60 00 C5", "98 00 C5"},
      // Numbers without exponent only: decoders give the letter back in either case.
      {ItemType_decimal, L"1e3", "42 31 65 33", "92 00 31 65 33"},
      {ItemType_integer, L"ee", "41 65 65", "91 65 65"},
      {ItemType_decimal, L"1 2", "42 31 20 32", "92 00 31 20 32"},
      {ItemType_decimal, L"1-2", "42 31 2D 32", "92 00 31 2D 32"},
      {ItemType_decimal, L"1.2.", "43 31 2E 32 2E", "92 01 31 2E 32 2E"},
      {ItemType_decimal, L"-.", "41 2D 2E", "91 2D 2E"},
      {ItemType_date, L"2003-01-05", "20 14 20 03 A0 1A 05", "88 06 02 20 03 A0 1A 05"},
      {ItemType_time, L"12:30:00Z", "20 14 12 B3 0B 00 DF", "88 06 02 12 B3 0B 00 DF"},
      {ItemType_time, L"1:2.5", "44 31 3A 32 2E 35", "92 02 31 3A 32 2E 35"},
      {ItemType_dateTime, L"T+01", "43 54 2B 30 31", "92 01 54 2B 30 31"},
      {ItemType_duration, L"P1D", "42 50 31 44", "92 00 50 31 44"},
      {ItemType_string, L"12", "41 31 32", "91 31 32"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(Narrow(row.text));
    ExpectOctets(
        std::string("7C 00 61 78 00 62") + row.attribute + "F0" + row.chunk + "FF",
        [&](auto& w) { WriteBoth(w, L"a", row.text, row.type); }, context);
  }
  ExpectOctets("3C 00 61 90 35 FF", L"<a #5>");  // without the suggestions every value is characters
}

TEST(FastInfosetWriter, EncodingsThatCannotBeWritten) {
  const auto write = [](FIStringEncoding encoding, unsigned long index, bool asAttribute) {
    CFastInfosetContext context;
    context.SetEncoding(ItemType_string, {encoding, index});
    return WriteScript(asAttribute ? L"<a @b=12>" : L"<a '12'>", context);
  };
  const Rows<FIStringEncoding, unsigned long, Wide> rows = {
      {FIStringEncoding_UTF16BE, 0, L"Unsupported Feature UTF16BE in EncodedCharacterStringBit5."},
      {FIStringEncoding_RestrictedAlphabet, 3, L"Invalid Restricted Alphabet value [3]"},
      {FIStringEncoding_RestrictedAlphabet, 4294967297, L"Invalid Restricted Alphabet value [4294967297]"},
      {FIStringEncoding_EncodingAlgorithm, 11, L"Invalid Encoding Algorithm value [11]"},
      {FIStringEncoding_EncodingAlgorithm, 4294967297, L"Invalid Encoding Algorithm value [4294967297]"},
  };
  for (const auto& [encoding, index, message] : rows)
    for (const bool asAttribute : {true, false})
      EXPECT_THROWS(CRkException, std::wstring(L"Failed to write FastInfoset. ") + message,
                    write(encoding, index, asAttribute));
  EXPECT_THROWS(CRkException, L"Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit5.",
                write(static_cast<FIStringEncoding>(9), 0, true));
  EXPECT_THROWS(CRkException, L"Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit7.",
                write(static_cast<FIStringEncoding>(9), 0, false));
  CFastInfosetContext suggested;
  suggested.SetSuggestedValues();
  for (const ItemType type : {ItemType_decimal, ItemType_integer, ItemType_unsignedLong})
    EXPECT_THROWS(CRkException, L"Failed to write FastInfoset. Invalid character not found for Restricted Alphabet.",
                  Write(suggested, [type](CFastInfosetWriter& w) { WriteBoth(w, L"a", L"1,5", type); }));
  suggested.SetEncoding(ItemType_string, suggested.GetEncoding(ItemType_decimal));
  ExpectOctets(
      "7C 00 61 78 00 62 42 31 2C 35 F0 92 00 31 2C 35 FF", [](auto& w) { WriteBoth(w, L"a", L"1,5"); }, suggested);
  // cdata is for content only.
  EXPECT_EQ("E0 00 00 01 00 7C 00 61 78 00 62 41 31 32 FF F0",
            ToHex(write(FIStringEncoding_EncodingAlgorithm, FIEncodingAlgorithm_Cdata, true)));
  EXPECT_EQ("E0 00 00 01 00 3C 00 61 9C 25 31 32 FF",
            ToHex(write(FIStringEncoding_EncodingAlgorithm, FIEncodingAlgorithm_Cdata, false)));
}

TEST(FastInfosetWriter, AlphabetsSayWhatTheyLack) {
  std::vector<unsigned char> octets;
  CFastInfosetWriter::AppendRestrictedAlphabetString(FIRestrictedAlphabet_Numeric, L"-1.5e 2", octets);
  EXPECT_EQ("A1 C5 DE 2F", ToHex(octets));
  EXPECT_THROWS(CRkException, L"Failed to write FastInfoset. Invalid character not found for Restricted Alphabet.",
                CFastInfosetWriter::AppendRestrictedAlphabetString(FIRestrictedAlphabet_Numeric, L"1,5", octets));
  EXPECT_THROWS(CRkException, L"Failed to write FastInfoset. Unsupported Feature in AppendRestrictedAlphabetString.",
                CFastInfosetWriter::AppendRestrictedAlphabetString(FIRestrictedAlphabet_Numeric, L"", octets));
  EXPECT_THROWS(CRkException, L"Failed to write FastInfoset. Invalid Restricted Alphabet value [0]",
                CFastInfosetWriter::AppendRestrictedAlphabetString(0, L"1", octets));
  EXPECT_EQ("A1 C5 DE 2F", ToHex(octets));
}

TEST(FastInfosetWriter, OrderOfCalls) {
  ExpectOctets("3C 00 61 90 78 FF", [](auto& w) {
    w.WriteComment(L"c");
    w.WritePI(L"<?p?>");
    Replay(w, L"'' <a");
    w.WriteComment(L"c");
    w.WriteInlineSchema(L"<s/>");
    Replay(w, L"'' 'x'");
  });
  for (const wchar_t* script : {L"<a 't' @b=1>", L"<a <c> @b=1>", L"<a '' @b=1>"})
    EXPECT_THROWS(CRkException, L"Attributes must be added before elements", WriteScript(script));
  EXPECT_THROWS(CRkException, L"Failed to write FastInfoset. A name is empty.", WriteScript(L"<>"));
  const CFastInfosetContext context;
  CBinaryStream stream;
  CFastInfosetWriter w(context, stream);
  EXPECT_THROW(w.WriteString(L"outside", ItemType_string), CRkException);
  EXPECT_THROW(w.WriteEndElement(), CRkException);
  w.WriteStartElement(L"a", L"");
  EXPECT_THROWS(CRkException, L"An Element has not been closed.", w.Close());
  w.WriteEndElement();
  w.Close();
}

}  // namespace
}  // namespace RkXmlTest

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/io/Encoder.h"
#include "support/Cases.h"
#include "support/LoadText.h"
#include "support/Tree.h"

using namespace RkXmlTest;

namespace {

template <class LoadInput>
std::wstring Describe(CSerializationContext context, bool scans, bool stays, LoadInput&& load, bool& wasScanned) {
  CErrorCollector told;
  context.SetErrorHandler(&told);
  context.SetScanPlainXml(scans);
  CXmlDocument document(context);
  document.SetInputStays(stays);
  std::wstring text = DescribeLoad(document, told, load);
  wasScanned = document.WasScanned();
  return text;
}

template <class LoadInput>
bool IsScanned(LoadInput&& load, std::string_view bytes, const CSerializationContext& context) {
  bool wasScanned = false;
  bool never = true;
  const std::wstring scanned = Describe(context, true, /*stays=*/false, load, wasScanned);
  EXPECT_EQ(Describe(context, true, /*stays=*/true, load, wasScanned), scanned) << bytes.substr(0, 1000);
  EXPECT_EQ(Describe(context, false, /*stays=*/false, load, never), scanned) << bytes.substr(0, 1000);
  EXPECT_FALSE(never);
  return wasScanned;
}

// Loads the bytes with and without the scanner, which has to make no difference, and so as wide text. Returns whether
// they were scanned. Wide text is scanned like bytes if it is ASCII and declares no encoding.
bool IsScanned(std::string_view bytes, const CSerializationContext& context = CSerializationContext()) {
  const bool wasScanned = IsScanned([bytes](CXmlDocument& loaded) { Load(loaded, bytes); }, bytes, context);
  const bool isAscii = bytes.find('\0') == std::string_view::npos &&
                       std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
  if (!isAscii) return wasScanned;
  const std::wstring wide(bytes.begin(), bytes.end());
  const bool wasWideScanned =
      IsScanned([&wide](CXmlDocument& loaded) { loaded.LoadXml(wide.c_str()); }, bytes, context);
  const bool declaresEncoding = bytes.find("encoding") != std::string_view::npos;
  EXPECT_EQ(wasWideScanned, wasScanned && !declaresEncoding) << bytes.substr(0, 1000);
  return wasScanned;
}

CSerializationContext OtherSettings() {
  CSerializationContext context;
  context.SetStripCDATA(false);
  context.SetJoinSurrogatePairs(true);
  return context;
}

TEST(PlainScanner, ScansThePlainCase) {
  const std::string many = [] {
    std::string tag = "<a";
    for (int i = 0; i < 100; ++i) tag += " x" + std::to_string(i) + "='" + std::to_string(i) + "'";
    return tag + "/>";
  }();
  std::string names = "<a>";
  for (int i = 0; i < 3000; ++i) names += "<n" + std::to_string(i) + "/>";
  names += "<n7/></a>";
  const std::string_view rows[] = {
      "<a/>",
      "\xEF\xBB\xBF<a></a >\r\n",
      "<?xml version = '1.0'  encoding=\"utf-8\" standalone='no' ?>\n<!---><?x ?>--><?x y?z?><a\r\n/><!-- - --> <?z ?>",
      "<a x = '1\t2\r\n3\r4&#9;5&#13;6&#x20;7&lt;&amp;\"' y=\"'&#x1F600;\xF0\x9F\x98\x80\" z=''/>",
      "<a>\r\n  <b> 1\r2\r\n3&#13;&#10;4 </b>\r \t\n\r\n&#32;<b>&#32;</b><b>\n</b></a>",
      "<a>]] >]&gt;]]&gt;<b/>]<![CDATA[]]><![CDATA[ ]]]>]]&#62;\x7F\xC2\x85\xE2\x80\xA8\xF3\xA0\x80\x81</a>",
      "<a> <b x='0123456789'> </b>\n\t<!--c--> <b>0123456789</b> <?p?> <b/>\t<![CDATA[]]> <b/>&#13; <b/> x <b/> </a>",
      "<a>\n                         \n<b/><b/><b/></a>",
      "<a>a text of more than sixteen characters, one of them \xC3\xA9, and more than sixteen behind it</a>",
      "<\xC3\xA9t\xC3\xA9 \xCE\xB1.-\xC2\xB7='1'><_:x xmlns:_='u'/></\xC3\xA9t\xC3\xA9>",
      "<p:a p:x='1' x='2' xmlns:p='u' xmlns='u' xmlns:q='v' q:x='3'><b xmlns='' p:x='4'><p:c "
      "xmlns:p='w'/></b><p:d/></p:a>",
      "<a xml:lang='de' xml:space='preserve'><xml:b/></a>",
      "<a xmlns='a&#10;b\nc &amp;d'/>",
      "<xmlns><xmlnsx xmlnsy='1' xml='2'/></xmlns>",
      many,
      names,
  };
  for (const std::string_view row : rows) {
    EXPECT_TRUE(IsScanned(row)) << row.substr(0, 1000);
    EXPECT_TRUE(IsScanned(row, OtherSettings())) << row.substr(0, 1000);
  }
}

TEST(PlainScanner, LeavesAllElse) {
  std::string twice = "<a";
  for (int i = 0; i < 100; ++i) twice += " x" + std::to_string(i % 99) + "='1'";
  twice += "/>";
  std::vector<std::string> rows = RkXmlTest::ReadLines(RKXML_TEST_DATA "/xml_not_plain.txt");
  rows.insert(rows.end(), {"", " ", "<\xC3\x97/>", "<\xF0\x90\x80\x80/>", "<a>\x01</a>", "<a x='\x02'/>",
                           "<a>\xED\xA0\x80</a>", "<a>\xEF\xBF\xBF</a>", "<a>\xC3</a>", "<a>\xC0\x80</a>",
                           "<a>\xF4\x90\x80\x80</a>", "<a><!--\x01--></a>", " <?xml version='1.0'?><a/>", twice});
  for (const std::string& row : rows) {
    EXPECT_FALSE(IsScanned(row)) << row;
    EXPECT_FALSE(IsScanned(row, OtherSettings())) << row;
  }
  // The end of the input anywhere.
  constexpr std::string_view kWhole =
      "<?xml version='1.0' encoding='UTF-8'?><!--c--><?p i?><a:b x='&amp;' "
      "xmlns:a='u'>\xC3\xA9<![CDATA[x]]>&#x20;</a:b>";
  for (std::size_t length = 0; length < kWhole.size(); ++length) EXPECT_FALSE(IsScanned(kWhole.substr(0, length)));
  EXPECT_TRUE(IsScanned(kWhole));

  constexpr std::string_view kPlain = "<a xmlns='u'><b x='1'>2</b><!--c--></a>";
  CSerializationContext settings[4];
  settings[0].SetSchemaType(SchemaType_NoNamespaces);
  settings[1].GetLimits().SetMaxNodes(2);
  settings[2].GetLimits().SetMaxCharacters(4);
  settings[3].GetLimits().SetMaxElementDepth(1);
  for (const CSerializationContext& context : settings) EXPECT_FALSE(IsScanned(kPlain, context));
}

// Every small document in the project, and of the sets beside it where they are.
TEST(PlainScanner, ReadsAsTheParserReads) {
  namespace fs = std::filesystem;
  constexpr std::uintmax_t kLongest = 60000;
  const fs::path root = fs::path(RKXML_TEST_DATA) / "../..";
  std::size_t count = 0;
  std::size_t scannedCount = 0;
  for (const char* folder :
       {"fuzz/corpus", "fuzz/old_crashes", "tests/data", "examples", "../shared/schemas", "../shared/interop"}) {
    if (!fs::is_directory(root / folder)) continue;
    for (const fs::directory_entry& file : fs::recursive_directory_iterator(root / folder)) {
      if (!file.is_regular_file() || file.file_size() == 0 || file.file_size() > kLongest) continue;
      const std::string bytes = ReadFile(file.path());
      SCOPED_TRACE(file.path());
      ++count;
      scannedCount += IsScanned(bytes);
    }
  }
  EXPECT_GT(count, 50u);
  EXPECT_GT(scannedCount, 10u);
}

}  // namespace

// Text and file names beyond ASCII.
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/RkXmlLib16.h"

using namespace RkXmlTest;

namespace {

const std::wstring kWhole = L"\U0001F600", kPair = L"\xD83D\xDE00";
const std::string kBytes = "\xF0\x9F\x98\x80";

// What each form gives for a character above U+FFFF in text, attribute, defaulted attribute and namespace.
std::vector<std::wstring> Readings(const CSerializationContext& context) {
  CElement source(L"r", (L"urn:" + kWhole).c_str());
  source.SetAttribute(L"a", kWhole.c_str());
  source.SetText(kWhole.c_str());
  const std::string dtd = "<!DOCTYPE r [<!ATTLIST r a CDATA '" + kBytes + "'>]>";
  const std::string xml = source.ToXmlUtf8(false, false);
  const std::string bare = dtd + "<r xmlns='urn:" + kBytes + "'><![CDATA[" + kBytes + "]]></r>";
  std::wstring wide = source.ToXml(false, false);
  if (!context.GetJoinSurrogatePairs())
    for (std::size_t at; (at = wide.find(kWhole)) != std::wstring::npos;) wide.replace(at, 1, kPair);
  const CBinaryData finf = source.ToFastInfosetStream();

  std::vector<std::wstring> readings;
  const auto add = [&](auto&& read) {
    CElement e;
    read(e);
    const std::wstring uri = e.GetNamespace();
    readings.push_back(e.GetAttribute(L"a") + L" " + e.GetText() + L" " + uri.substr(uri.find(L':') + 1));
  };
  add([&](CElement& e) { e.FromXml(xml.c_str(), context); });
  add([&](CElement& e) { e.FromXml(bare.c_str(), context); });
  add([&](CElement& e) { e.FromXml(wide.c_str(), context); });
  add([&](CElement& e) { e.FromJson(source.ToJsonUtf8(false).c_str(), context); });
  add([&](CElement& e) { e.FromXmlElement(&source, context); });
  add([&](CElement& e) { e.FromXmlStream(finf, context); });
  return readings;
}

std::wstring Three(const std::wstring& text) { return text + L" " + text + L" " + text; }

}  // namespace

TEST(Utf8, FormsAgreeWhenPairsAreJoined) {
  CSerializationContext context;
  EXPECT_EQ((std::vector<std::wstring>(5, Three(kPair))), [&] {
    std::vector<std::wstring> readings = Readings(context);
    EXPECT_TEXT(Three(kWhole), readings.back());  // Fast Infoset
    readings.pop_back();
    return readings;
  }());
  context.SetJoinSurrogatePairs(true);
  const CSerializationContext copy(context);
  EXPECT_EQ((std::vector<std::wstring>(6, Three(kWhole))), Readings(copy));
}

TEST(Utf8, NarrowFileNamesReachTheSystemAsTheyAre) {
  namespace fs = std::filesystem;
  const fs::path folder = fs::path(testing::TempDir()) / ("rkxml_utf8_" + std::to_string(getpid()));
  fs::create_directory(folder);
  const fs::path path = folder / "\xFF\xE9.xml";  // in no encoding
  const std::string name = path.string();
  CElement source(L"r");
  source.SetText(L"1");

  const auto check = [&](auto&& write, auto&& read) {
    write();
    EXPECT_TRUE(fs::exists(path));
    CElement target;
    read(target);
    EXPECT_TEXT(L"1", target.GetText());
    fs::remove(path);
  };
  const char* const narrow = name.c_str();
  check([&] { source.ToXmlFile(narrow); }, [&](CElement& e) { e.FromXmlFile(path); });
  check([&] { source.ToXmlFile(path); }, [&](CElement& e) { e.FromXmlFile(name); });
  check([&] { source.ToXmlFile(name, false, false); }, [&](CElement& e) { e.FromXmlFile(narrow); });
  check([&] { source.ToJsonFile(path); }, [&](CElement& e) { e.FromJsonFile(narrow); });
  check([&] { source.ToFastInfosetFile(narrow); },
        [&](CElement& e) {
          CXmlDocument document;
          document.Load(path);
          e.FromXmlElement(document.GetDocumentElement());
        });
  check([&] { source.ToJsonFile(narrow); },
        [&](CElement& e) {
          CXmlDocument document;
          const CBinaryData xml = document.LoadJsonFile(narrow);
          e.FromXmlStream(xml);
        });
  AsyncToXmlFile(true);
  check([&] { source.ToXmlFile(path); }, [&](CElement& e) { e.FromXmlFile(narrow); });
  AsyncToXmlFile(false);
  fs::remove_all(folder);

  // Literal null pointers go to the wide names, and messages show UTF-8.
  CXmlDocument document;
  CElement e(L"r");
  EXPECT_THROWS(CRkException, L"Failed to open the file [].", document.Load(nullptr));
  EXPECT_THROWS(CRkException, L"Failed to open the file [].", document.LoadJsonFile(nullptr));
  EXPECT_THROWS(CRkException, L"Failed to open the file [].", e.FromXmlFile(nullptr));
  EXPECT_THROWS(CRkException, L"Failed to open the file [].", e.FromJsonFile(nullptr));
  EXPECT_THROWS(CRkException, L"Failed to write data to the file [].", e.ToXmlFile(nullptr));
  EXPECT_THROWS(CRkException, L"Failed to write data to the file [].", e.ToJsonFile(nullptr));
  EXPECT_THROWS(CRkException, L"Failed to write data to the file [].", e.ToFastInfosetFile(nullptr));
  EXPECT_THROWS(CRkException, L"Failed to open the file [/no/such/\xE9].", e.FromXmlFile("/no/such/\xC3\xA9"));
  EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r/>\n", e.ToXmlUtf8());
}

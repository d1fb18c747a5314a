#include "RkXmlLib16/binding/DocumentWriter.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/RkXmlLib16.h"
#include "support/Bytes.h"
#include "support/TempFile.h"

using namespace RkXmlLib16;
using RkXmlTest::CTempFile;

namespace {

using Step = void (*)(CDocumentWriter&);

void Start(CDocumentWriter& w) { w.WriteStartElement(L"a"); }
void EndElement(CDocumentWriter& w) { w.WriteEndElement(); }
void Text(CDocumentWriter& w) { w.WriteText(L"x"); }
void TextElement(CDocumentWriter& w) { w.WriteTextElement(L"b", L"", L"x"); }
void Object(CDocumentWriter& w) { w.WriteObject(CElement(L"o")); }
void Attribute(CDocumentWriter& w) { w.WriteAttribute(L"k", L"v"); }
void Nil(CDocumentWriter& w) { w.WriteNil(); }
void Begin(CDocumentWriter& w) { w.BeginCollection(); }
void End(CDocumentWriter& w) { w.End(); }

TEST(DocumentWriterTest, CallsOutOfOrderAreRefusedAndHarmNothing) {
  const struct {
    std::vector<Step> before;
    std::vector<Step> refused;
    const wchar_t* message;
    std::vector<Step> after;
    const char* xml;
  } kCases[] = {
      {{}, {End}, L"The document cannot end without a root element.", {Object, End}, "<o/>"},
      {{}, {EndElement}, L"There is no open Element to end.", {Object, End}, "<o/>"},
      {{}, {Text, TextElement}, L"Text must be written inside an Element.", {Object, End}, "<o/>"},
      {{}, {Begin}, L"No Element is open.", {Object, End}, "<o/>"},
      {{}, {Attribute, Nil}, L"Attributes must be added before elements", {Object, End}, "<o/>"},
      {{Start}, {End}, L"An Element has not been closed.", {Attribute, EndElement, End}, "<a k=\"v\"/>"},
      {{Start, Text}, {Attribute, Nil}, L"Attributes must be added before elements", {EndElement, End}, "<a>x</a>"},
      {{Start, Object}, {Attribute}, L"Attributes must be added before elements", {EndElement, End}, "<a><o/></a>"},
      {{Start, TextElement, Start, EndElement},
       {Attribute},
       L"Attributes must be added before elements",
       {EndElement, End},
       "<a><b>x</b><a/></a>"},
      {{Start, EndElement}, {EndElement}, L"There is no open Element to end.", {End}, "<a/>"},
      {{Object}, {Start, Object}, L"The document has its root element already.", {End}, "<o/>"},
      {{Object, End},
       {Start, EndElement, Text, TextElement, Object, Attribute, Nil, Begin, End},
       L"The document has ended.",
       {},
       "<o/>"},
  };
  for (const auto& test : kCases) {
    std::ostringstream xml, json, finf;
    CXmlDocumentWriter xmlWriter(xml, CompressionType_None, GetDefaultContext(), false, false);
    CJsonDocumentWriter jsonWriter(json);
    CFastInfosetDocumentWriter finfWriter(finf);
    for (CDocumentWriter* const writer :
         std::initializer_list<CDocumentWriter*>{&xmlWriter, &jsonWriter, &finfWriter}) {
      for (const Step step : test.before) step(*writer);
      for (const Step step : test.refused) EXPECT_THROWS(CRkInvalidStateException, test.message, step(*writer));
      for (const Step step : test.after) step(*writer);
    }
    EXPECT_EQ(xml.str(), test.xml);
    CElement read;
    read.FromXmlStream(RkXmlTest::DataOf(finf.str()));
    EXPECT_EQ(read.ToXmlUtf8(false, false), test.xml);
  }
}

TEST(DocumentWriterTest, AFailedObjectGivesTheDocumentUp) {
  const CTempFile file;
  {
    CXmlDocumentWriter writer(file.Path());
    writer.WriteStartElement(L"a");
    EXPECT_THROW(writer.WriteObject(CElement(L"")), CRkInvalidStateException);
    for (const Step step : {Start, EndElement, Text, End})
      EXPECT_THROWS(CRkInvalidStateException, L"The document was given up after a failure.", step(writer));
  }
  EXPECT_FALSE(file.Exists());
}

// The directory holds nothing but what is told.
std::vector<std::string> FilesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

class FolderTest : public testing::Test {
 protected:
  FolderTest() { std::filesystem::create_directory(m_folder); }
  ~FolderTest() override { std::filesystem::remove_all(m_folder); }

  const std::filesystem::path m_folder = testing::TempDir() + "rkxml_folder_" + std::to_string(getpid());
};

TEST_F(FolderTest, AFileAppearsWholeOrNotAtAll) {
  const std::filesystem::path file = m_folder / "a.xml";
  const auto writeThousands = [](CDocumentWriter& writer) {
    writer.WriteStartElement(L"a");
    for (int i = 0; i < 50000; ++i) writer.WriteTextElement(L"b", L"", L"x");
  };
  {
    CXmlDocumentWriter writer(file);
    writeThousands(writer);
    EXPECT_FALSE(std::filesystem::exists(file));
  }
  EXPECT_TRUE(FilesIn(m_folder).empty());

  std::ofstream(file) << "old";
  ::chmod(file.c_str(), 0640);
  std::filesystem::create_symlink("a.xml", m_folder / "link");
  const std::vector<std::string> both = {"a.xml", "link"};
  {
    CXmlDocumentWriter writer(m_folder / "link");
    writeThousands(writer);
    writer.WriteEndElement();
  }
  EXPECT_EQ(RkXmlTest::ReadFile(file), "old");
  EXPECT_EQ(FilesIn(m_folder), both);

  CXmlDocumentWriter writer(m_folder / "link", CompressionType_None, GetDefaultContext(), false, false);
  writer.WriteObject(CElement(L"a"));
  EXPECT_EQ(RkXmlTest::ReadFile(file), "old");
  writer.End();
  EXPECT_EQ(RkXmlTest::ReadFile(file), "<a/>");
  EXPECT_TRUE(std::filesystem::is_symlink(m_folder / "link"));
  EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0640));
  EXPECT_EQ(FilesIn(m_folder), both);
}

TEST_F(FolderTest, FilesThatCannotBeWrittenAreTold) {
  const auto message = [](const std::wstring& name) { return L"Failed to write data to the file [" + name + L"]."; };
  for (const std::filesystem::path& file : {m_folder / "no" / "a.xml", m_folder})
    EXPECT_THROWS(CRkException, message(file.wstring()), CXmlDocumentWriter{file});
  EXPECT_THROWS(CRkException, L"ZLIB Compression only available for To Stream methods.",
                CXmlDocumentWriter(m_folder / "a.xml", CompressionType_ZLib));
  EXPECT_TRUE(FilesIn(m_folder).empty());

  // A full disk shows itself at once or in the end, with or without compression, and objects do not hide it.
  const auto writeMany = [](CDocumentWriter& writer, int count) {
    CElement item(L"item");
    writer.WriteStartElement(L"a");
    for (int i = 0; i < count; ++i) {
      item.SetText(std::to_wstring(i * 7919L).c_str());
      writer.WriteObject(item);
    }
    writer.WriteEndElement();
    writer.End();
  };
  for (const CompressionType compression : {CompressionType_None, CompressionType_GZip}) {
    for (const int count : {1, 100000}) {
      CXmlDocumentWriter writer("/dev/full", compression);
      EXPECT_THROWS(CRkException, message(L"/dev/full"), writeMany(writer, count));
      EXPECT_THROW(writer.End(), CRkInvalidStateException);
    }
  }
}

TEST(DocumentWriterTest, StreamsAndFunctionsThatFailAreTold) {
  constexpr wchar_t kFailed[] = L"Failed to write data to the target of the document";
  const auto write = [](CByteTarget target) {
    CJsonDocumentWriter writer(std::move(target));
    writer.WriteObject(CElement(L"a"));
    writer.End();
  };
  for (const bool throws : {false, true}) {
    std::ofstream full("/dev/full");
    if (throws) full.exceptions(std::ios::badbit | std::ios::failbit);
    EXPECT_THROWS(CRkException, kFailed, write(full));
  }
  const auto refuse = [](const unsigned char*, std::size_t) { return false; };
  EXPECT_THROWS(CRkException, kFailed, write(refuse));
  // What a function throws is the caller's, also from inside objects.
  const auto throwNumber = [](const unsigned char*, std::size_t) -> bool { throw 7; };
  EXPECT_THROW(write(throwNumber), int);
  const auto throwMine = [](const unsigned char*, std::size_t) -> bool { throw CRkException(L"mine"); };
  CXmlDocumentWriter writer(throwMine);
  CElement large(L"a");
  large.SetText(std::wstring(200000, L'x').c_str());
  EXPECT_THROWS(CRkException, L"mine", (writer.WriteObject(large), writer.End()));
}

}  // namespace

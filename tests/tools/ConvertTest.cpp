#include "Convert.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "RkXmlLib16/RkXmlLib16.h"
#include "support/TempFile.h"

using namespace RkXmlLib16;

namespace {

// What a conversion leaves: the bytes and what is not kept, or the error.
struct Result {
  bool done = true;
  std::string bytes;
  std::string leftOut;
  std::string error;
};

// In pieces it is not known yet whether an element is the only one of its name.
std::string WithoutFirst(std::string error) {
  for (std::size_t at; (at = error.find("[1]")) != std::string::npos;) error.erase(at, 3);
  return error;
}

template <class Work>
Result Run(const RkXmlTest::CTempFile& out, Work&& work) {
  Result result;
  try {
    result.done = work(result.leftOut);
    if (result.done) result.bytes = out.Bytes();
  } catch (const DocumentError& e) {
    result.error = e.what();
  } catch (const CRkException& e) {
    result.error = e.what();
  }
  return result;
}

// The documents that come with the project, whole and damaged ones.
std::vector<std::string> FindDocuments() {
  std::vector<std::string> files;
  for (const char* const folder : {"examples", "tests/data", "fuzz/corpus"}) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(RKXML_SOURCES "/" + std::string(folder))) {
      const std::string ending = entry.path().extension();
      const bool isDocument = ending == ".xml" || ending == ".xsd" || ending == ".gpx" || ending == ".finf" ||
                              ending == ".json" || ending.empty();
      if (entry.is_regular_file() && isDocument && entry.file_size() < 20000) files.push_back(entry.path());
    }
  }
  return files;
}

// Converts the file in both ways and tells whether that was possible in pieces.
bool CheckSame(const std::string& file, std::vector<const char*> call) {
  const RkXmlTest::CTempFile out;
  const std::string name = out.Path();
  call.insert(call.begin(), {"rkxml", "convert"});
  call.insert(call.end(), {file.c_str(), name.c_str()});
  const Options options = ParseOptions(static_cast<int>(call.size()), call.data());
  const InputFile input(file);
  Progress progress;
  const Result pieces =
      Run(out, [&](std::string& leftOut) { return ConvertInPieces(options, input, progress, leftOut); });
  if (!pieces.done) return false;
  const Result whole = Run(out, [&](std::string& leftOut) {
    ConvertWhole(options, input, progress, leftOut);
    return true;
  });
  EXPECT_TRUE(pieces.bytes == whole.bytes) << file << "\nwhole:\n"
                                           << whole.bytes.substr(0, 2000) << "\nin pieces:\n"
                                           << pieces.bytes.substr(0, 2000);
  EXPECT_EQ(pieces.leftOut, whole.leftOut) << file;
  EXPECT_EQ(WithoutFirst(pieces.error), WithoutFirst(whole.error)) << file;
  return true;
}

TEST(ConvertTest, InPiecesAndWholeAreTheSame) {
  const std::vector<std::vector<const char*>> kCalls = {
      {"--to=xml", "--indent=2", "--eol=crlf"},
      {"--to=xml", "--compact", "--gzip"},
      {"--to=finf"},
      {"--to=finf", "--typed", "--declaration=3", "--gzip"},
  };
  int inPieces = 0;
  int all = 0;
  for (const std::string& file : FindDocuments()) {
    const bool isJson = std::filesystem::path(file).extension() == ".json";
    for (std::vector<const char*> call : kCalls) {
      call.push_back(isJson ? "--from=json" : "--from=xml");
      inPieces += CheckSame(file, call) ? 1 : 0;
      ++all;
    }
  }
  EXPECT_GT(all, 100);
  EXPECT_GT(inPieces, all / 2);
}

// What decides whether a document goes in pieces.
TEST(ConvertTest, DocumentsThatNeedATreeAreTold) {
  const struct {
    const char* text;
    bool inPieces;
  } kCases[] = {
      {"<a>x<b/></a>", true},
      {"<a>\n <b/>\n</a>", true},
      {"<a>x<b/>\n</a>", false},
      {"<a><b/>x</a>", false},
      {"<a xmlns='u'><b xmlns='u' xmlns:p='v' p:c='p:d'/></a>", true},
      {"<a xmlns='u'><b xmlns='v'/></a>", false},
      {"<a xmlns:p='u'><b xmlns:p='v' k='p:x'/></a>", false},
      {"<a xmlns:p='u' xmlns:q='u' k='q:x'/>", false},
      {"<a xmlns='u' xmlns:p='u' p:k='1'/>", true},
      {"<a xmlns='u' xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:type='t'/>", true},
      {"<p:a xmlns:p='p' xmlns='u' xmlns:i='http://www.w3.org/2001/XMLSchema-instance'><b i:type='t'/></p:a>", true},
      {"<a><b xmlns='u' xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:type='t'/></a>", false},
      {"<a><![CDATA[<![CDATA[x]]></a>", true},
      {"<a> </a>", true},
  };
  for (const auto& test : kCases) {
    const RkXmlTest::CTempFile in;
    const std::string name = in.Path() + ".xml";
    std::ofstream(name) << test.text;
    for (const char* const to : {"--to=xml", "--to=finf"})
      EXPECT_EQ(CheckSame(name, {to}), test.inPieces) << test.text << " " << to;
    std::filesystem::remove(name);
  }
}

}  // namespace

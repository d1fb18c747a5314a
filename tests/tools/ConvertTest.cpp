#include "Convert.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "Input.h"
#include "Notes.h"
#include "RkXmlLib16/RkXmlLib16.h"
#include "support/Cases.h"

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

// The documents that come with the project, whole and damaged ones, and some of those that may lie beside it.
std::vector<std::string> FindDocuments() {
  constexpr int kEach = 10;
  int others = 0;
  std::vector<std::string> files;
  for (const std::string folder : {"examples", "tests/data", "fuzz/corpus", "../shared/schemas"}) {
    const std::filesystem::path path = std::filesystem::path(RKXML_SOURCES) / folder;
    if (!std::filesystem::exists(path)) continue;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
      const std::string ending = entry.path().extension();
      const bool isDocument = ending == ".xml" || ending == ".xsd" || ending == ".gpx" || ending == ".finf" ||
                              ending == ".json" || ending.empty();
      if (!entry.is_regular_file() || !isDocument || entry.file_size() > 20000) continue;
      if (folder.front() != '.' || others++ % kEach == 0) files.push_back(entry.path());
    }
  }
  return files;
}

// A document as its tags tell it: names, attributes and text where they stand, without indentation. Prefixes count as
// the namespaces that they mean, in values too; `isFlat` tells whether a tree of
// elements with one text each, under one set of prefixes, holds it.
class Meaning {
 public:
  explicit Meaning(const std::string& file, const char* form) {
    const Options options = Parse({"show", (std::string("--from=") + form).c_str(), file.c_str()});
    const InputFile input(file);
    Progress progress;
    CSerializationContext context;
    context.SetEscapeCDATA(true);
    context.SetJoinSurrogatePairs(true);
    options.json.ApplyTo(context);
    InputStream stream(input, options, context, progress);
    while (stream.Next()) {
      if (stream.GetEvent() == InputStream::Event::Start)
        Start(*stream->GetElement());
      else if (stream.GetEvent() == InputStream::Event::Text)
        m_levels.back().text += stream->GetText();
      else
        End();
    }
  }

  static Options Parse(std::vector<const char*> call) {
    call.insert(call.begin(), "rkxml");
    return ParseOptions(static_cast<int>(call.size()), call.data());
  }

  std::wstring text;
  bool isFlat = true;

 private:
  struct Level {
    const CXmlElement* element;
    std::wstring text;     // since the last tag
    std::wstring content;  // without blank text beside child elements
    std::wstring mixed;    // with it
    bool hasChild = false;
    bool hasText = false;
  };

  static bool IsBlank(const std::wstring& text) { return text.find_first_not_of(L" \t\r\n") == std::wstring::npos; }

  // With the namespaces of what looks like prefixes.
  static std::wstring ValueOf(std::wstring value, const CXmlElement& element, bool isType) {
    value.erase(std::remove(value.begin(), value.end(), L'\r'), value.end());
    const std::size_t colon = value.find(L':');
    const std::wstring prefix = value.substr(0, colon == std::wstring::npos ? 0 : colon);
    if (colon == std::wstring::npos && !isType) return value;
    const CXmlName* const uri = element.LookupNamespaceRef(prefix);
    if (uri == nullptr || uri->empty()) return value;
    return L"{" + uri->GetText().ToString() + L"}" + value.substr(colon == std::wstring::npos ? 0 : colon + 1);
  }

  template <class Node>
  static std::wstring NameOf(const Node& node) {
    return L"{" + node.GetNamespaceURI().ToString() + L"}" + node.GetLocalName().ToString();
  }

  void Start(const CXmlElement& element) {
    if (!m_levels.empty()) {
      TakeText();
      m_levels.back().hasChild = true;
    }
    std::wstring tag = L"<" + NameOf(element);
    for (const CXmlAttribute* attribute : element.GetAttributes()) {
      const std::wstring name = NameOf(*attribute);
      const bool isType = name == L"{" + CXmlWriter::XSI_NAMESPACE + L"}type";
      tag += L" " + name + L"=" + ValueOf(attribute->GetValue().ToString(), element, isType);
    }
    for (const auto& [owner, prefix, uri] : element.GetDocument()->GetDeclarations(&element)) {
      if (m_uris.try_emplace(prefix, uri).first->second != uri) isFlat = false;
      if (!prefix->empty() && m_prefixes.try_emplace(uri, prefix).first->second != prefix) isFlat = false;
    }
    m_levels.push_back({&element, {}, tag + L">", tag + L">"});
  }

  void TakeText() {
    Level& level = m_levels.back();
    const std::wstring value = ValueOf(level.text, *level.element, false);
    level.mixed += value;
    if (!IsBlank(value)) level.content += value;
    if (level.hasChild && (level.hasText || !IsBlank(value)) && !value.empty()) isFlat = false;
    level.hasText = level.hasText || !IsBlank(value);
    level.text.clear();
  }

  void End() {
    TakeText();
    const Level& level = m_levels.back();
    const std::wstring whole = (level.hasChild && !level.hasText ? level.content : level.mixed) + L"</>";
    m_levels.pop_back();
    if (m_levels.empty()) {
      text = whole;
    } else {
      m_levels.back().content += whole;
      m_levels.back().mixed += whole;
    }
  }

  std::vector<Level> m_levels;
  std::map<const CXmlName*, const CXmlName*> m_uris;
  std::map<const CXmlName*, const CXmlName*> m_prefixes;
};

// The line that tells what is not kept, without the position of text, which a tree does not keep.
std::string WithoutMixed(const std::string& leftOut) {
  const std::size_t at = leftOut.find("mixed content");
  return leftOut.substr(0, at == std::string::npos || at < 2 ? at : at - 2);
}

struct Call {
  std::vector<const char*> options;
  const char* to;
};

// Converts the file in both ways and tells whether that was possible in pieces. In pieces it means the same as before;
// what a tree holds has the bytes that the tree is written as.
bool CheckSame(const std::string& file, const char* from, const Call& call) {
  const RkXmlTest::CTempFile out;
  const std::string name = out.Path();
  const std::string fromOption = std::string("--from=") + from;
  const std::string toOption = std::string("--to=") + call.to;
  std::vector<const char*> words = {"convert", fromOption.c_str(), toOption.c_str()};
  words.insert(words.end(), call.options.begin(), call.options.end());
  words.insert(words.end(), {file.c_str(), name.c_str()});
  const Options options = Meaning::Parse(words);
  const InputFile input(file);
  Progress progress;
  const Result pieces =
      Run(out, [&](std::string& leftOut) { return ConvertInPieces(options, input, progress, leftOut); });
  if (!pieces.done) return false;
  bool isFlat = true;
  if (pieces.error.empty()) {
    const Meaning before(file, from);
    isFlat = before.isFlat;
    if (std::strcmp(call.to, "json") != 0 && !options.layout.pretty) {
      try {
        const std::wstring after = Meaning(name, "xml").text;
        const auto differs = std::mismatch(before.text.begin(), before.text.end(), after.begin(), after.end());
        EXPECT_TRUE(after == before.text)
            << file << "\nbefore:\n"
            << CRkException(std::wstring(differs.first, before.text.end())).what() << "\nafter:\n"
            << CRkException(std::wstring(differs.second, after.end())).what();
      } catch (const DocumentError& e) {
        EXPECT_EQ(std::filesystem::path(file).extension(), ".finf") << file << e.what() << pieces.bytes;
      }
    }
  }
  const Result whole = Run(out, [&](std::string& leftOut) {
    ConvertWhole(options, input, progress, leftOut);
    return true;
  });
  if (isFlat) {
    EXPECT_TRUE(pieces.bytes == whole.bytes) << file << "\nwhole:\n"
                                             << whole.bytes.substr(0, 2000) << "\nin pieces:\n"
                                             << pieces.bytes.substr(0, 2000);
  }
  EXPECT_EQ(WithoutMixed(pieces.leftOut), WithoutMixed(whole.leftOut)) << file;
  EXPECT_EQ(WithoutFirst(pieces.error), WithoutFirst(whole.error)) << file;
  return true;
}

const Call kCalls[] = {
    {{"--indent=2", "--eol=crlf"}, "xml"},
    {{"--compact", "--gzip"}, "xml"},
    {{}, "finf"},
    {{"--typed", "--declaration=3", "--gzip"}, "finf"},
    {{"--indent=2"}, "json"},
    {{"--compact", "--mode=1", "--gzip"}, "json"},
    {{"--mode=0"}, "json"},
};

// So many that most of them leave memory, some before they are answered.
TEST(ConvertTest, NotesKeepTheirAnswers) {
  constexpr std::uint64_t kQuestions = 1500000;
  Notes notes(Question::IsRow);
  for (std::uint64_t i = 0; i < kQuestions; ++i) {
    EXPECT_EQ(notes.Ask(), i);
    if (i % 3 == 0) notes.Answer(i);
    if (i % 70001 == 1) notes.Answer(i / 2 * 3 % i);
  }
  std::vector<bool> expected(kQuestions);
  for (std::uint64_t i = 0; i < kQuestions; i += 3) expected[i] = true;
  for (std::uint64_t i = 1; i < kQuestions; i += 70001) expected[i / 2 * 3 % i] = true;
  for (std::uint64_t i = 0; i < kQuestions; ++i) ASSERT_EQ(notes.Next(), expected[i]) << i;
}

TEST(ConvertTest, InPiecesAndWholeAreTheSame) {
  std::map<std::string, int> inPieces;
  std::map<std::string, int> all;
  for (const std::string& file : FindDocuments()) {
    const bool isJson = std::filesystem::path(file).extension() == ".json";
    for (const Call& call : kCalls) {
      const bool done = CheckSame(file, isJson ? "json" : "xml", call);
      EXPECT_TRUE(done || isJson || std::strcmp(call.to, "json") == 0) << file;
      inPieces[call.to] += done ? 1 : 0;
      ++all[call.to];
    }
  }
  for (const auto& [form, count] : all) {
    EXPECT_GT(count, 100);
    EXPECT_GT(inPieces[form], count / 2) << form;
  }
}

// "+ " stands before documents that go in pieces to JSON, "- " before others; to the other forms all of them do.
TEST(ConvertTest, DocumentsThatNeedATreeAreTold) {
  for (const std::string& line : RkXmlTest::ReadLines(std::string(RKXML_TEST_DATA) + "/json_in_pieces.txt")) {
    const RkXmlTest::CTempFile in;
    const std::string name = in.Path() + ".xml";
    std::ofstream(name) << line.substr(2);
    for (const Call& call : kCalls)
      EXPECT_EQ(CheckSame(name, "xml", call), line[0] == '+' || std::strcmp(call.to, "json") != 0) << line << call.to;
    std::filesystem::remove(name);
  }
}

}  // namespace

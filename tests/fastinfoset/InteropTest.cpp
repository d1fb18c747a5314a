#include <cwctype>
#include <filesystem>
#include <regex>
#include <set>

#include "Expect.h"
#include "Octets.h"
#include "support/Bytes.h"
#include "support/TempFile.h"

namespace RkXmlTest {
namespace {

namespace fs = std::filesystem;

Octets ReadAll(const fs::path& path) {
  const std::string bytes = ReadFile(path);
  return Octets(bytes.begin(), bytes.end());
}

struct Pair {
  std::string name;
  Octets finf, xml;
};

std::vector<Pair> ReadPairs(const fs::path& folder) {
  std::vector<Pair> pairs;
  if (!fs::exists(folder)) return pairs;
  for (const auto& entry : fs::directory_iterator(folder))
    if (fs::path file = entry.path(); file.extension() == ".finf")
      pairs.push_back({file.stem().string(), ReadAll(file), ReadAll(file.replace_extension(".xml"))});
  return pairs;
}

const fs::path kShared = RKXML_SHARED "/interop/fastinfoset";
const fs::path kOwn = RKXML_TEST_DATA "/fastinfoset";

// These use entries of vocabularies that the reader does not have.
const std::set<std::string> kUnreadable = {"external-vocabulary-entries", "hand-initial-vocabulary-lists"};
// Here the reader's text of a uuid differs: no hyphens, upper-case digits.
const std::set<std::string> kUuids = {"typed-attributes", "typed-content", "typed-lists"};

// Every uuid as the reader gives it.
std::wstring NormalizeUuids(std::wstring text) {
  static const std::wregex uuid(L"([0-9a-f]{8})-([0-9a-f]{4})-([0-9a-f]{4})-([0-9a-f]{4})-([0-9a-f]{12})");
  for (std::wsmatch m; std::regex_search(text, m, uuid);) {
    std::wstring digits = m.format(L"$1$2$3$4$5");
    for (wchar_t& c : digits) c = static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(c)));
    text = m.prefix().str() + digits + m.suffix().str();
  }
  return text;
}

void ExpectSameTree(const Pair& pair) {
  SCOPED_TRACE(pair.name);
  // Characters above U+FFFF come from XML text as two.
  std::wstring expected = Utf8Text(CEncoder::UnicodeToUtf8Binary(TreeOf(pair.xml)));
  const std::wstring actual = TreeOf(pair.finf);
  if (kUuids.count(pair.name) != 0) expected = NormalizeUuids(expected);
  EXPECT_TRUE(expected == actual) << Narrow(expected).substr(0, 2000) << "\n" << Narrow(actual).substr(0, 2000);
}

TEST(FastInfosetInterop, DocumentsOfTheLibraryReadToTheTreeOfTheirXml) {
  const auto pairs = ReadPairs(kOwn);
  ASSERT_FALSE(pairs.empty());
  for (const Pair& pair : pairs) ExpectSameTree(pair);
}

TEST(FastInfosetInterop, DocumentsFromElsewhereReadToTheTreeOfTheirXmlUnlessTheyNeedAForeignVocabulary) {
  const auto pairs = ReadPairs(kShared);
  if (pairs.empty()) GTEST_SKIP() << "no shared documents";
  for (const Pair& pair : pairs) {
    if (kUnreadable.count(pair.name) == 0)
      ExpectSameTree(pair);
    else
      EXPECT_THROW(TreeOf(pair.finf), CRkException) << pair.name;
  }
}

// At every place in small documents, at as many places spread over large ones.
TEST(FastInfosetInterop, CutDocumentsThrow) {
  auto pairs = ReadPairs(kShared);
  if (pairs.empty()) pairs = ReadPairs(kOwn);
  for (const Pair& pair : pairs)
    for (std::size_t length = 1; length < pair.finf.size(); length += 1 + pair.finf.size() / 400) {
      const Octets cut(pair.finf.begin(), pair.finf.begin() + static_cast<std::ptrdiff_t>(length));
      EXPECT_THROW(TreeOf(cut), CRkException) << pair.name << " cut at " << length;
    }
}

}  // namespace
}  // namespace RkXmlTest

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "Expect.h"
#include "Octets.h"
#include "RkXmlLib16/core/Exception.h"

namespace RkXmlTest {
namespace {

namespace fs = std::filesystem;

Octets ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return Octets(std::istreambuf_iterator<char>(in), {});
}

struct Pair {
  std::string name;
  Octets finf, xml;
};

std::vector<Pair> ReadPairs(const fs::path& folder) {
  std::vector<Pair> pairs;
  if (!fs::exists(folder)) return pairs;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() != ".finf") continue;
    fs::path xml = entry.path();
    xml.replace_extension(".xml");
    pairs.push_back({entry.path().stem().string(), ReadAll(entry.path()), ReadAll(xml)});
  }
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
    for (wchar_t& c : digits) c = static_cast<wchar_t>(c >= L'a' ? c - L'a' + L'A' : c);
    text.replace(static_cast<std::size_t>(m.position()), static_cast<std::size_t>(m.length()), digits);
  }
  return text;
}

// Characters above U+FFFF as one, whichever way the XML reader gives them.
std::wstring JoinSurrogates(const std::wstring& text) {
  std::wstring out;
  for (const wchar_t c : text) {
    const auto low = static_cast<unsigned>(c);
    if (low >= 0xDC00 && low < 0xE000 && !out.empty() && static_cast<unsigned>(out.back() & ~0x3FF) == 0xD800) {
      out.back() = static_cast<wchar_t>(0x10000 + ((static_cast<unsigned>(out.back()) - 0xD800) << 10) + low - 0xDC00);
    } else {
      out += c;
    }
  }
  return out;
}

void ExpectSameTree(const Pair& pair) {
  SCOPED_TRACE(pair.name);
  std::wstring expected;
  std::wstring actual;
  try {
    expected = JoinSurrogates(DescribeOctets(pair.xml));
    actual = DescribeOctets(pair.finf);
  } catch (const RkXmlLib16::CRkException& e) {
    ADD_FAILURE() << Narrow(e.GetMessage());
    return;
  }
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
      EXPECT_THROW(DescribeOctets(pair.finf), RkXmlLib16::CRkException) << pair.name;
  }
}

// At every place in small documents, at as many places spread over large ones.
TEST(FastInfosetInterop, CutDocumentsThrow) {
  auto pairs = ReadPairs(kShared);
  if (pairs.empty()) pairs = ReadPairs(kOwn);
  for (const Pair& pair : pairs)
    for (std::size_t length = 1; length < pair.finf.size(); length += 1 + pair.finf.size() / 400) {
      const Octets cut(pair.finf.begin(), pair.finf.begin() + static_cast<std::ptrdiff_t>(length));
      EXPECT_THROW(DescribeOctets(cut), RkXmlLib16::CRkException) << pair.name << " cut at " << length;
    }
}

}  // namespace
}  // namespace RkXmlTest

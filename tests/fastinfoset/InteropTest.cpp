#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
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
  Octets finf;
  Octets xml;
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
  std::sort(pairs.begin(), pairs.end(), [](const Pair& a, const Pair& b) { return a.name < b.name; });
  return pairs;
}

const fs::path kShared = RKXML_SHARED "/interop/fastinfoset";
const fs::path kOwn = RKXML_TEST_DATA "/fastinfoset";

// These use entries of vocabularies that the reader does not have.
const std::set<std::string> kUnreadable = {"external-vocabulary-entries", "hand-initial-vocabulary-lists"};
// Here the reader's text of a uuid differs: no hyphens, upper-case digits.
const std::set<std::string> kUuids = {"typed-attributes", "typed-content", "typed-lists"};

bool IsHexDigit(wchar_t c) { return std::wstring_view(L"0123456789abcdefABCDEF").find(c) != std::wstring_view::npos; }

// Every uuid as the reader gives it.
std::wstring NormalizeUuids(const std::wstring& text) {
  constexpr std::wstring_view kShape = L"xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
  std::wstring out;
  for (std::size_t i = 0; i < text.size();) {
    std::wstring digits;
    std::size_t n = 0;
    for (; n < kShape.size() && i + n < text.size(); ++n) {
      const wchar_t c = text[i + n];
      if (kShape[n] == L'-' ? c != L'-' : !IsHexDigit(c)) break;
      if (c != L'-') digits += static_cast<wchar_t>(c >= L'a' ? c - L'a' + L'A' : c);
    }
    if (n == kShape.size()) {
      out += digits;
      i += n;
    } else {
      out += text[i++];
    }
  }
  return out;
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

constexpr std::size_t kCuts = 400;

TEST(FastInfosetInterop, CutDocumentsThrow) {
  auto pairs = ReadPairs(kShared);
  if (pairs.empty()) pairs = ReadPairs(kOwn);
  for (const Pair& pair : pairs) {
    // Every place in small documents, as many places spread over large ones.
    const std::size_t step = std::max<std::size_t>(1, pair.finf.size() / kCuts);
    for (std::size_t length = 1; length < pair.finf.size(); length += step) {
      const Octets cut(pair.finf.begin(), pair.finf.begin() + static_cast<std::ptrdiff_t>(length));
      EXPECT_THROW(DescribeOctets(cut), RkXmlLib16::CRkException) << pair.name << " cut at " << length;
    }
  }
}

TEST(FastInfosetInterop, DamagedDocumentsThrowOrReadToATree) {
  auto pairs = ReadPairs(kShared);
  if (pairs.empty()) pairs = ReadPairs(kOwn);
  std::uint32_t state = 1;
  const auto random = [&state](std::size_t below) {
    state = state * 1664525u + 1013904223u;
    return (state >> 8) % below;
  };
  for (const Pair& pair : pairs) {
    const std::size_t rounds = pair.finf.size() > 4096 ? 20 : 300;
    for (std::size_t round = 0; round < rounds; ++round) {
      Octets damaged = pair.finf;
      for (std::size_t i = 0; i <= round % 3; ++i) {
        damaged[random(damaged.size())] = static_cast<unsigned char>(random(256));
      }
      try {
        DescribeOctets(damaged);
      } catch (const RkXmlLib16::CRkException&) {
      }
    }
  }
}

}  // namespace
}  // namespace RkXmlTest

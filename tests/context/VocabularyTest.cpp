#include "RkXmlLib16/context/Vocabulary.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/context/FastInfosetContext.h"

namespace RkXmlTest {
namespace {

TEST(FastInfosetVocabulary, AppendingTakesANewIndexAndLookupTheFirst) {
  CFIStringTable table;
  for (const wchar_t* text : {L"a", L"b", L"a"}) CFIVocabulary::AddValueToVector(text, table);
  EXPECT_EQ(3u, table.size());
  unsigned long index = 0;
  EXPECT_TRUE(CFIVocabulary::FindIndex(table, L"a", index));
  EXPECT_EQ(1u, index);
  CFIVocabulary::AddValueToMap(L"c", table);
  std::wstring all;
  for (const auto& [text, number] : table) all += std::wstring(text) + std::to_wstring(number);
  EXPECT_TEXT(L"a1b2a3c4", all);
}

// Texts up to eight characters below U+0100 are told apart otherwise than all others.
TEST(FastInfosetVocabulary, SimilarTextsAreDifferentEntries) {
  std::vector<std::wstring> texts = {L"", std::wstring(1, L'\0'), std::wstring(2, L'\0'), std::wstring(9, L'\0')};
  for (const wchar_t last :
       {L'a', L'\0', L'\x1', L'\xFF', L'\x100', L'\x161', L'\x10061', L'\x7FFFFFFF', L'\x80000061'})
    for (std::size_t length = 1; length <= 18; ++length) {
      texts.push_back(std::wstring(length, L'b') + last);
      texts.push_back(last + std::wstring(length, L'b'));
    }
  CFIStringTable table;
  for (std::size_t round = 0; round < 2; ++round)
    for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(i + 1, table.Add(texts[i])) << i;
  for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(i + 1, CFIStringTable(table).Find(texts[i])) << i;
}

TEST(FastInfosetVocabulary, AFullTableTakesNoMore) {
  CFIStringTable table;
  for (unsigned long i = 0; i < FI_MAX_TABLE_ENTRIES; ++i) table.Add(std::to_wstring(i));
  EXPECT_EQ(FI_MAX_TABLE_ENTRIES, table.size());
  EXPECT_EQ(0u, table.Add(L"one more"));
  table.Append(L"one more");
  EXPECT_EQ(FI_MAX_TABLE_ENTRIES, table.size());
  EXPECT_EQ(FI_MAX_TABLE_ENTRIES, table.Add(std::to_wstring(FI_MAX_TABLE_ENTRIES - 1)));
}

TEST(FastInfosetVocabulary, TablesAreStandardContainers) {
  std::map<std::wstring, unsigned long> map;
  std::vector<std::wstring> texts;
  std::vector<CQNameParts> names;
  CFIVocabulary vocabulary;
  for (const wchar_t* text : {L"a", L"b", L"a"}) {
    CFIVocabulary::AddValueToMap(text, map);
    CFIVocabulary::AddValueToVector(text, texts);
  }
  EXPECT_EQ((std::map<std::wstring, unsigned long>{{L"a", 1}, {L"b", 2}}), map);
  EXPECT_EQ((std::vector<std::wstring>{L"a", L"b", L"a"}), texts);
  unsigned long index = 0;
  EXPECT_TRUE(CFIVocabulary::FindIndex(map, L"b", index));
  EXPECT_EQ(2u, index);
  EXPECT_FALSE(CFIVocabulary::FindIndex(map, L"c", index));

  map.clear();
  EXPECT_EQ(1u, vocabulary.AddQName(L"p", L"urn:p", L"x", map, names));
  EXPECT_EQ(2u, vocabulary.AddQName(L"", L"", L"x", map, names));
  EXPECT_EQ(1u, vocabulary.AddQName(L"p", L"urn:p", L"x", map, names));
  CFIVocabulary::AddQNameToVector(0, 0, 1, names);
  EXPECT_EQ((std::vector<CQNameParts>{{2, 2, 1}, {0, 0, 1}, {0, 0, 1}}), names);

  const CFIStringTable& prefixes = vocabulary.GetPrefixNamesTable();
  const std::vector<CFIStringTable::value_type> copied(prefixes.begin(), prefixes.end());
  EXPECT_EQ((std::vector<CFIStringTable::value_type>{{L"xml", 1}, {L"p", 2}}), copied);
  const auto isP = [](const CFIStringTable::value_type& entry) { return entry.first == L"p"; };
  EXPECT_EQ(2u, (*std::find_if(prefixes.begin(), prefixes.end(), isP)).second);
}

TEST(FastInfosetContext, EncodingsByType) {
  CFastInfosetContext context;
  for (int type = 0; type <= ItemType_integer; ++type)
    EXPECT_EQ(FIStringEncoding_None, context.GetEncoding(type).m_encoding);
  context.SetSuggestedValues();
  const CFastInfosetContext copy(context);
  EXPECT_EQ(FIStringEncoding_EncodingAlgorithm, copy.GetEncoding(ItemType_double).m_encoding);
  EXPECT_EQ(8u, copy.GetEncoding(ItemType_double).m_index);
  EXPECT_EQ(FIStringEncoding_None, copy.GetEncoding(ItemType_duration).m_encoding);
  EXPECT_THROWS(CRkInvalidParamException, L"Invalid encoding index [27]", context.GetEncoding(27));
  EXPECT_THROWS(CRkInvalidParamException, L"Invalid encoding index [-1]", context.SetEncoding(-1, {}));
}

}  // namespace
}  // namespace RkXmlTest

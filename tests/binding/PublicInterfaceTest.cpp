// What a program writes with nothing but the header of everything: names, implicit constructions, standard containers.
#include "RkXmlLib16/RkXmlLib16.h"

#include <algorithm>
#include <ctime>
#include <iterator>
#include <map>
#include <memory>

#include "Expect.h"

using namespace RkXmlTest;

namespace {

std::wstring DateText(const CDateTime& value) { return value.ToString(); }
std::wstring BytesText(const CBinaryData& value) { return value.GetAsHexString(); }
std::wstring IntegerText(const CBigInteger& value) { return value.ToString(); }
std::wstring DecimalText(const CDecimal& value) { return value.ToString(); }

template <class To, class From>
std::wstring CopyInitialised(const From& from) {
  const To exception = from;
  return exception.GetFullMessage();
}

}  // namespace

TEST(PublicInterface, ValuesAreConstructedImplicitly) {
  const std::time_t time = 86400;
  const CDateTime fromTime = time, fromType = dt_date, fromText = L"2024-02-29T08:30:00Z";
  const CBinaryData bytes = L"x";
  const CBigInteger rounded = CDecimal(L"1.6"), fromDouble = 2.6, fromInt = 3, fromDigits = L"-4";
  const CDecimal decimal = CBigInteger(5), fromReal = 0.5;
  const Rows<std::wstring, Wide> rows = {
      {fromTime.ToString(), L"1970-01-02T00:00:00"},
      {DateText(time), L"1970-01-02T00:00:00"},
      {fromType.GetTypeAsString(), L"date"},
      {fromText.ToString(), L"2024-02-29T08:30:00Z"},
      {BytesText(L"x") == bytes.GetAsHexString() ? L"raw" : L"", L"raw"},
      {rounded.ToString(), L"2"},
      {fromDouble.ToString(), L"3"},
      {fromInt.ToString(), L"3"},
      {fromDigits.ToString(), L"-4"},
      {decimal.ToString(), L"5"},
      {fromReal.ToString(), L"0.5"},
      {IntegerText(CDecimal(7)) + IntegerText(8) + IntegerText(9L) + IntegerText(L"1"), L"7891"},
      {DecimalText(CBigInteger(7)) + DecimalText(8) + DecimalText(L"9"), L"789"},
      // Mixed operands stay unambiguous, and the left one tells the type.
      {(fromInt + 1).ToString() + (fromInt + CDecimal(1)).ToString() + (decimal + fromInt).ToString(), L"448"},
  };
  for (const auto& [actual, expected] : rows) EXPECT_TEXT(expected, actual);
  EXPECT_TRUE(fromInt < 4 && fromInt == CDecimal(3) && fromTime == time && decimal > fromInt && bytes == L"x");
  EXPECT_EQ(3, static_cast<int>(fromInt));
}

TEST(PublicInterface, ExceptionsAreConstructedFromEachOther) {
  const CRkException root(L"outer", CRkInvalidStateException(L"inner"));
  const CRkOverFlowException other(L"other");
  EXPECT_TEXT(L"outer\ninner", CopyInitialised<CRkException>(root));
  EXPECT_TEXT(L"outer\ninner", CopyInitialised<CRkValidationException>(root));
  EXPECT_TEXT(L"other", CopyInitialised<CRkInvalidValueException>(other));
  EXPECT_TEXT(L"other", CopyInitialised<CRkInvalidNamespaceException>(other));
  EXPECT_TEXT(L"other", CopyInitialised<CRkInvalidStateException>(other));
  EXPECT_TEXT(L"other", CopyInitialised<CRkInvalidParamException>(other));
  EXPECT_TEXT(L"outer\ninner", CopyInitialised<CRkOverFlowException>(root));

  CRkException* inner = root.GetInnerException();
  const CRkException* constant = root.GetInnerException();
  EXPECT_EQ(constant, inner);
  EXPECT_TEXT(L"inner", inner->GetMessage());
}

TEST(PublicInterface, NamesWhatTheLibraryIsMadeOf) {
  EXPECT_TEXT(L"TWFu", CBase64::Encode(reinterpret_cast<const unsigned char*>("Man"), 3));

  const UTF8 utf8[] = {0xF0, 0x9F, 0x98, 0x80};
  const UTF8* source = utf8;
  UTF16 units[2];
  UTF16* target = units;
  EXPECT_EQ(conversionOK, ConvertUTF8toUTF16(&source, std::end(utf8), &target, std::end(units), strictConversion));
  EXPECT_EQ(0xD83D, units[0]);
  EXPECT_TRUE(IsLegalUTF8(utf8, 4));

  CXmlDocument document;
  CExpatReader reader(document);
  reader.CreateParser();
  reader.Cleanup();
}

TEST(PublicInterface, DigitsAreAStandardVector) {
  using Digits = std::vector<wchar_t>;
  const Digits twelve = {2, 1}, five = {5};
  Digits r, rest;
  CBigInteger::Add(twelve, five, r);
  EXPECT_EQ((Digits{7, 1}), r);
  CBigInteger::Subtract(r, five, r);
  EXPECT_EQ(twelve, r);
  CBigInteger::Multiply(twelve, five, r);
  EXPECT_EQ((Digits{0, 6}), r);
  CBigInteger::Multiply(twelve, 3, r);
  EXPECT_EQ((Digits{6, 3}), r);
  CBigInteger::Divide(twelve, five, r, rest);
  EXPECT_EQ((Digits{2}), r);
  EXPECT_EQ((Digits{2}), rest);
  CBigInteger::ShiftLeft(rest, 1);
  EXPECT_EQ((Digits{0, 2}), rest);
  CBigInteger::Build(L"0120", r);
  EXPECT_EQ((Digits{0, 2, 1}), r);
  CBigInteger::Build(21u, r);
  EXPECT_EQ((Digits{1, 2}), r);
  CBigInteger::BuildDWORDLONG(30, r);
  EXPECT_EQ((Digits{0, 3}), r);
  CBigInteger::BuildDouble(41.2, r);
  EXPECT_EQ((Digits{1, 4}), r);
  CBigInteger::Pow10(2, r);
  EXPECT_EQ((Digits{0, 0, 1}), r);
  r = {1, 0, 0};
  CBigInteger::Clean(r);
  EXPECT_EQ((Digits{1}), r);
  EXPECT_EQ(1, CBigInteger::Compare(twelve, five));
  EXPECT_EQ(2, CBigInteger::Position(twelve));
  const Digits digits = CBigInteger(12).GetDigits();
  EXPECT_EQ(twelve, digits);
}

TEST(PublicInterface, VocabularyTablesAreStandardContainers) {
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

TEST(PublicInterface, RemovedElementsMayBeDeleted) {
  CXmlDocument document;
  document.LoadXml("<r><a/><b><c/></b></r>");
  CXmlElement* const root = document.GetDocumentElement();
  const std::unique_ptr<CXmlElement> removed(root->RemoveLastChildElement());
  EXPECT_TEXT(L"b", removed->GetLocalName());
  delete root->RemoveLastChildElement();
  EXPECT_EQ(nullptr, root->GetFirstElement());
  root->CreateNewChildElement()->SetElementName(L"d");
  EXPECT_TEXT(L"/r/d", root->GetFirstElement()->GetXPath());
  EXPECT_TEXT(L"c", removed->GetFirstElement()->GetLocalName());
  delete new CXmlElement(&document, root);
}

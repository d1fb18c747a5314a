#include "RkXmlLib16/collections/ValueCollections.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <type_traits>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/io/TextStream.h"
#include "RkXmlLib16/xml/XmlTextWriter.h"

using namespace RkXmlTest;

namespace {

constexpr auto kCollapse = CWhitespaceUtils::collapse;

template <class Col>
std::unique_ptr<Col> New(int minOccurs = 0, int maxOccurs = -1, const wchar_t* maxInclusive = nullptr,
                         long maxLength = -1) {
  return std::make_unique<Col>(L"v", L"", minOccurs, maxOccurs, nullptr, -1, maxLength, nullptr, maxInclusive, nullptr,
                               nullptr, -1, -1, -1, kCollapse, nullptr);
}

// Notes what it is told, as "type" or "type:index".
class CNotes : public IEventSink {
 public:
  virtual ~CNotes() = default;
  void OnEvent(CXmlObjectBase*, MsgType type, void* data) override {
    text += std::to_string(type);
    if (type == MsgType_ItemRemoving || type == MsgType_ItemRemoved)
      text += ":" + (data == nullptr ? std::string("-") : std::to_string(*static_cast<int*>(data)));
    text += " ";
  }
  std::string Take() { return std::exchange(text, ""); }
  std::string text;
};

// Writes elements and kinds in short form: "v=1.5/11 ".
class CKindWriter : public CXmlWriter {
 public:
  void WriteComment(const std::wstring&) override {}
  void WritePI(const std::wstring&) override {}
  void WriteInlineSchema(const std::wstring&) override {}
  void WriteStartElement(const std::wstring& name, const std::wstring&) override { text += name + L"="; }
  void WriteString(const std::wstring& value, ItemType type) override {
    text += value + L"/" + std::to_wstring(type) + L" ";
  }
  void WriteEndElement() override {}
  void WriteAttributeString(const std::wstring&, const std::wstring&, const std::wstring&, ItemType) override {}
  void WriteAttributeType(const std::wstring&, const std::wstring&, ItemType) override {}
  void WriteAttributeNil() override {}
  std::wstring text;
};

template <class Col>
std::wstring Written(const Col& col, const CSerializationContext& context = CSerializationContext()) {
  CKindWriter writer;
  col.ToXml_Int(&writer, false, L"", context, false);
  return writer.text;
}

// The elements of one value each, read by the collection, and the name of the element it gives back.
template <class Col>
std::wstring ReadInto(Col& col, const std::wstring& content) {
  CXmlDocument document;
  document.LoadXml((L"<r>" + content + L"</r>").c_str());
  CXmlElement* const root = document.GetDocumentElement();
  CXmlElement* const rest = col.FromXml_Int(root, root->GetFirstElement(), CSerializationContext(), false);
  return rest == nullptr ? L"" : rest->GetLocalName().ToString();
}

struct Row {
  const char* name;
  std::unique_ptr<CXmlTypeCollection> (*create)(int minOccurs, int maxOccurs);
  const wchar_t* text;     // as read
  const wchar_t* written;  // value and kind
  ItemType kind;
};

template <class Col>
std::unique_ptr<CXmlTypeCollection> Create(int minOccurs, int maxOccurs) {
  return New<Col>(minOccurs, maxOccurs);
}

const Row kRows[] = {
    {"hexBinary", Create<ChexBinaryCol>, L" 0aFF ", L"0AFF/1", ItemType_hexBinary},
    {"base64Binary", Create<Cbase64BinaryCol>, L"AQID", L"AQID/2", ItemType_base64Binary},
    {"byte", Create<Ci1Col>, L"-128", L"-128/3", ItemType_byte},
    {"short", Create<Ci2Col>, L"-32768", L"-32768/4", ItemType_short},
    {"int", Create<Ci4Col>, L" 3000000000 ", L"3000000000/5", ItemType_int},
    {"long", Create<Ci8Col>, L"-9", L"-9/6", ItemType_long},
    {"unsignedByte", Create<Cui1Col>, L"255", L"255/7", ItemType_unsignedByte},
    {"unsignedShort", Create<Cui2Col>, L"65535", L"65535/8", ItemType_unsignedShort},
    {"unsignedInt", Create<Cui4Col>, L"7", L"7/9", ItemType_unsignedInt},
    {"unsignedLong", Create<Cui8Col>, L"18446744073709551615", L"18446744073709551615/10", ItemType_unsignedLong},
    {"float", Create<Cr4Col>, L"1.50", L"1.5/11", ItemType_float},
    {"double", Create<Cr8Col>, L"0.1", L"0.1/12", ItemType_double},
    {"duration", Create<CdurationCol>, L"P1DT2H", L"P1DT2H/13", ItemType_duration},
    {"gYear", Create<CyearCol>, L"2024", L"2024/16", ItemType_gYear},
    {"gMonth", Create<CmonthCol>, L"--05", L"--05/17", ItemType_gMonth},
    {"gDay", Create<CdayCol>, L"---07", L"---07/18", ItemType_gDay},
    {"string", Create<CstringCol>, L" a  b ", L"a b/23", ItemType_string},
    {"boolean", Create<CbooleanCol>, L"1", L"true/24", ItemType_boolean},
    {"decimal", Create<CdecimalCol>, L"12.5", L"12.5/25", ItemType_decimal},
    {"integer", Create<CintegerCol>, L"123456789012345678901234567890", L"123456789012345678901234567890/26",
     ItemType_integer},
    // Every kind of date is written as a dateTime.
    {"date", Create<CdateCol>, L"2024-02-29", L"2024-02-29/20", ItemType_date},
    {"time", Create<CtimeCol>, L"08:30:00", L"08:30:00/20", ItemType_time},
    {"dateTime", Create<CdatetimeCol>, L"2024-02-29T08:30:00", L"2024-02-29T08:30:00/20", ItemType_dateTime},
    {"gYearMonth", Create<CyearMonthCol>, L"2024-02", L"2024-02/20", ItemType_gYearMonth},
    {"gMonthDay", Create<CmonthDayCol>, L"--02-29", L"--02-29/20", ItemType_gMonthDay},
};

class ValueCollection : public testing::TestWithParam<Row> {};

// The values by range, by index and by a standard algorithm, when places at the front have gone.
template <class Col>
void ExpectRange(const std::vector<const wchar_t*>& texts) {
  const auto col = New<Col>();
  for (const wchar_t* text : texts) col->AddFromString(text);
  col->Remove(0);
  int index = 0;
  for (const auto& value : *col) EXPECT_EQ(col->Item(index++), value);
  EXPECT_EQ(col->GetCount(), index);
  EXPECT_EQ(1, std::distance(col->begin(), std::find(col->begin(), col->end(), col->Item(1))));
  static_assert(std::is_same_v<typename Col::value_type, std::decay_t<decltype(col->Item(0))>>);
}

TEST(ValueCollections, ErrorsOfWritingTellTheItem) {
  CTextStream stream;
  CXmlTextWriter writer(stream);
  writer.SetWellFormedOutput(true);
  writer.WriteStartElement(L"r", L"");
  const auto texts = New<CstringCol>();
  texts->Add(L"a");
  texts->Add(L"\x01");
  try {
    texts->ToXml_Int(&writer, false, L"", CSerializationContext(), false);
    ADD_FAILURE() << "written";
  } catch (const CRkException& e) {
    EXPECT_TEXT(L"/v[2]", e.GetLocation().GetPath());
  }
}

TEST(ValueCollections, AreStandardRangesOfTheirValues) {
  ExpectRange<CstringCol>({L"a", L"b", L"c"});
  ExpectRange<CbooleanCol>({L"true", L"true", L"false", L"true"});
  ExpectRange<Ci4Col>({L"1", L"2", L"3"});
  ExpectRange<CdecimalCol>({L"1", L"2.5", L"3"});
  ExpectRange<CdateCol>({L"2024-02-29", L"2024-03-01", L"2024-03-02"});
  const auto none = New<CstringCol>();
  EXPECT_TRUE(none->begin() == none->end());
}

}  // namespace

TEST_P(ValueCollection, ReadsChecksAndWrites) {
  const Row& row = GetParam();
  const auto col = row.create(1, 2);
  EXPECT_EQ(row.kind, col->GetItemType());
  EXPECT_TEXT(L"w", ReadInto(*col, std::wstring(L"<v>") + row.text + L"</v><v>" + row.text + L"</v><w/>"));
  EXPECT_EQ(2, col->GetCount());
  EXPECT_TEXT(std::wstring(L"v=") + row.written + L" v=" + row.written + L" ", Written(*col));

  col->AddFromString(row.text);
  EXPECT_THROWS(CRkValidationException, L"The Maximum number of [v] elements allowed in this collection is 2",
                Written(*col));
  EXPECT_THROWS(CRkInvalidParamException, L"Index 3 is out of range, use 0 - 3", col->Remove(3));
  EXPECT_THROWS(CRkInvalidParamException, L"Index -1 is out of range, use 0 - 3", col->Remove(-1));
  col->Clear();
  EXPECT_EQ(0, col->GetCount());
  EXPECT_THROWS(CRkValidationException, L"The Minimum number of [v] elements allowed in this collection is 1",
                Written(*col));
  CSerializationContext lenient;
  lenient.SetIgnoreInvalidCollectionCounts(true);
  EXPECT_TEXT(L"", Written(*col, lenient));
}

TEST_P(ValueCollection, TellsItsListeners) {
  const auto col = GetParam().create(0, -1);
  CNotes notes;
  col->AddEventListener(&notes);
  for (int i = 0; i < 5; ++i) col->AddFromString(GetParam().text);
  EXPECT_EQ("1 2 0 1 2 0 1 2 0 1 2 0 1 2 0 ", notes.Take());
  col->Remove(3);  // told with its index, afterwards always 0
  EXPECT_EQ("3:3 4:0 0 ", notes.Take());
  EXPECT_THROW(col->Remove(9), CRkInvalidParamException);
  EXPECT_EQ("3:9 ", notes.Take());
  col->Clear();
  EXPECT_EQ("3:0 4:0 0 3:0 4:0 0 3:0 4:0 0 3:0 4:0 0 ", notes.Take());
}

INSTANTIATE_TEST_SUITE_P(All, ValueCollection, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ValueCollectionsTest, InsertsAnywhere) {
  const auto col = New<Ci4Col>();
  for (const long value : {1L, 2L, 3L}) col->Add(value);
  col->Remove(0);
  col->AddAt(0, -1);
  col->AddAt(2, -2);
  EXPECT_EQ((std::vector<long>{-1, 2, -2, 3}), std::vector<long>(col->begin(), col->end()));
  EXPECT_THROWS(CRkInvalidParamException, L"Index 4 is out of range, use 0 - 4", col->Item(4));
}

TEST(ValueCollectionsTest, RefusedValuesChangeNothing) {
  CNotes notes;
  const auto numbers = New<Ci4Col>(0, -1, L"9");
  numbers->AddEventListener(&notes);
  EXPECT_THROWS(CRkException, L"Invalid Value for v [10]", numbers->Add(10));
  EXPECT_THROWS(CRkInvalidParamException, L"Index out of range", numbers->AddAt(5, 1));
  EXPECT_THROWS(CRkInvalidParamException, L"Index out of range", numbers->AddAt(-1, 1));
  EXPECT_EQ("1 1 1 ", notes.Take());  // the listeners have been told before
  EXPECT_EQ(0, numbers->GetCount());
  const auto texts = New<CstringCol>(0, -1, nullptr, 2);
  EXPECT_THROWS(CRkException, L"Invalid Value for v [abc].", texts->Add(L"abc"));
  EXPECT_THROWS(CRkInvalidValueException, L"The value [x] can not be converted to a i4", numbers->AddFromString(L"x"));
}

TEST(ValueCollectionsTest, DatesMustBeOfTheKind) {
  const CDateTime dateTime(L"2024-02-29T08:30:00");
  const CDateTime date(2024, 2, 29);
  CNotes notes;
  const auto dates = New<CdateCol>(0, -1, L"2024-12-31");
  dates->AddEventListener(&notes);
  EXPECT_THROWS(CRkInvalidParamException, L"Dates added to this collection must be of type dt_date",
                dates->Add(dateTime));
  EXPECT_THROWS(CRkException, L"Invalid Value for v [2025-01-01].", dates->Add(CDateTime(2025, 1, 1)));
  EXPECT_EQ("", notes.Take());  // a date is checked before anybody is told
  EXPECT_THROWS(CRkInvalidParamException, L"Index out of range", dates->AddAt(1, date));
  EXPECT_EQ("1 ", notes.Take());
  dates->Add(date);
  EXPECT_EQ(1, dates->GetCount());
  const std::wstring wrong = L"Dates added to this collection must be of type ";
  EXPECT_THROWS(CRkInvalidParamException, wrong + L"dt_time", New<CtimeCol>()->Add(date));
  EXPECT_THROWS(CRkInvalidParamException, wrong + L"dt_dateTime", New<CdatetimeCol>()->Add(date));
  EXPECT_THROWS(CRkInvalidParamException, wrong + L"dt_gYearMonth", New<CyearMonthCol>()->Add(date));
  EXPECT_THROWS(CRkInvalidParamException, wrong + L"dt_gMonthDay", New<CmonthDayCol>()->Add(date));
}

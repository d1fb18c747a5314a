// Every record of every content model, kind and cardinality, on one small body: written and read, absent, in the
// wrong place.
#include "Expect.h"
#include "fixtures/Records.h"

using namespace RkXmlTest;

namespace {

constexpr auto kSeq = kSequence;
enum class Card { Mnd, Opt, Col };

constexpr wchar_t kXsi[] = L"xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";

// <m><v>5</v></m>; the abstract class's concrete one is called "derived".
const Table& ChildTable(bool derived) {
  static const Table child(ClassInfo(kSequence, L"m"), {Prim<CElementInfoSeqPrimOpt>(L"v", 0)});
  static const Table concrete(ClassInfo(kSequence, L"derived"), {Prim<CElementInfoSeqPrimOpt>(L"v", 0)});
  return derived ? concrete : child;
}

Object CreateChildObject(int classId, const wchar_t* elementName) {
  EXPECT_EQ(7, classId);
  const Object child = CTableClass::Create(ChildTable(false));
  child->SetElementName(elementName);
  return child;
}

Object CreateDerived(CXmlElement* element) {
  if (CClassfactoryBase::GetElementType(element) != L"derived") return nullptr;
  return CTableClass::Create(ChildTable(true));
}

// Two members as they stand in the document, and a collection for 1 to 2 of them.
struct Kind {
  const wchar_t *first, *second;
  CXmlCollectionBase* (*newCollection)();
};
const Kind kCls = {L"<m><v>1</v></m>", L"<m><v>2</v></m>",
                   []() -> CXmlCollectionBase* { return new CTableCol(L"m", L"", 1, 2, CreateChildObject, 7); }};
const Kind kAbsCls = {L"<m xsi:type=\"derived\"><v>1</v></m>", L"<m xsi:type=\"derived\"><v>2</v></m>",
                      []() -> CXmlCollectionBase* { return new CTableCol(L"m", L"", 1, 2, CreateDerived); }};
const Kind kPrim = {L"<m>1</m>", L"<m>2</m>", [] { return Values<Ci4Col>(L"m", 1, 2); }};
const Kind kEnum = {L"<m>red</m>", L"<m>green</m>",
                    [] { return Values<CstringCol>(L"m", 1, 2, CWhitespaceUtils::none); }};
const Kind kUntpd = {L"<m a=\"1\"><x/></m>", L"<m a=\"2\"><x/></m>",
                     []() -> CXmlCollectionBase* { return new CElementCol(L"m", L"", 1, 2); }};

struct Case {
  XmlElementGroupType group;
  const Kind& kind;
  Card card;
  const char* name;
  CElementInfo* (*newRecord)();

  // A class "r" whose only member is the record's.
  Table NewTable() const {
    Table::Initial initial;
    if (card == Card::Col) {
      initial = [this](RkVariant& value) { value.SetXmlCollection(kind.newCollection()); };
    } else if (card == Card::Mnd && Is(kCls)) {
      initial = [](RkVariant& value) { value.SetXmlObject(CreateChildObject(7, L"m")); };
    } else if (card == Card::Mnd && Is(kUntpd)) {
      initial = [](RkVariant& value) { value.SetXmlObject(new CElement(L"m")); };
    }
    return Table(ClassInfo(group, L"r"), {newRecord()}, {}, {initial});
  }

  bool Is(const Kind& k) const { return &kind == &k; }
  std::wstring Members() const { return std::wstring(kind.first) + (card == Card::Col ? kind.second : L""); }
  static std::wstring Document(const std::wstring& content) {
    return L"<r " + std::wstring(kXsi) + L">" + content + L"</r>";
  }

  // A wildcard collection of an all group takes elements whatever the name of its record.
  bool TakesAnyName() const { return group == kAll && Is(kUntpd) && card == Card::Col; }

  // How the absence of the member shows when an empty <r> is read.
  std::wstring Absent() const {
    if (group == kChoice) return kNoChoice;
    if (card == Card::Col) return kNotRead + L"The Minimum number of [m] elements allowed in this collection is 1";
    if (card == Card::Opt) return L"nothing";
    if (group == kAll) return kNotRead + L"Failed to find the mandatory element [m].";
    if (Is(kAbsCls)) return L"CRkException: Failed to find a suitable substitution element for [m].\nPath: /r";
    return Missing(L"m");
  }

  // How writing the unset member fails.
  std::wstring Unset() const {
    if (group == kChoice) return kNotWritten + kNoneSet;
    if (card == Card::Col) return kNotWritten + L"The Minimum number of [m] elements allowed in this collection is 1";
    return card == Card::Mnd ? kNotWritten + L"The Property [m] is mandatory, it may not be NULL" : L"nothing";
  }
};

#define RECORD(group, kind, card, ...)                                                                           \
  {                                                                                                              \
    k##group, k##kind, Card::card, #group #kind #card,                                                           \
        []() { return static_cast<CElementInfo*>(new CElementInfo##group##kind##card(L"m", L"", __VA_ARGS__)); } \
  }
#define PRIMITIVE false, ItemType_int, nullptr, CWhitespaceUtils::collapse, NoFacets(), nullptr
#define ENUMERATION false, ColourToString, ColourFromString, nullptr

// A choice has no mandatory members; a collection of enumerations in an all group is abstract.
const Case kCases[] = {
    RECORD(Seq, Cls, Mnd, 0, kOwn, CreateChildObject, 7, true),
    RECORD(Seq, Cls, Opt, 0, kOwn, CreateChildObject, 7),
    RECORD(Seq, Cls, Col, 0, kOwn),
    RECORD(Seq, AbsCls, Mnd, 0, kOwn, CreateDerived),
    RECORD(Seq, AbsCls, Opt, 0, kOwn, CreateDerived),
    RECORD(Seq, AbsCls, Col, 0, kOwn),
    RECORD(Seq, Prim, Mnd, 0, PRIMITIVE),
    RECORD(Seq, Prim, Opt, 0, PRIMITIVE),
    RECORD(Seq, Prim, Col, 0),
    RECORD(Seq, Enum, Mnd, 0, ENUMERATION),
    RECORD(Seq, Enum, Opt, 0, ENUMERATION),
    RECORD(Seq, Enum, Col, 0),
    RECORD(Seq, Untpd, Mnd, 0, L"##any", L""),
    RECORD(Seq, Untpd, Opt, 0, L"##any", L""),
    RECORD(Seq, Untpd, Col, 0),
    RECORD(Choice, Cls, Opt, 0, kOwn, CreateChildObject, 7),
    RECORD(Choice, Cls, Col, 0, kOwn),
    RECORD(Choice, AbsCls, Opt, 0, kOwn, CreateDerived),
    RECORD(Choice, AbsCls, Col, 0, kOwn),
    RECORD(Choice, Prim, Opt, 0, PRIMITIVE),
    RECORD(Choice, Prim, Col, 0),
    RECORD(Choice, Enum, Opt, 0, ENUMERATION),
    RECORD(Choice, Enum, Col, 0),
    RECORD(Choice, Untpd, Opt, 0, L"##any", L""),
    RECORD(Choice, Untpd, Col, 0),
    RECORD(All, Cls, Mnd, 0, kOwn, CreateChildObject, 7, true),
    RECORD(All, Cls, Opt, 0, kOwn, CreateChildObject, 7),
    RECORD(All, Cls, Col, 0, kOwn),
    RECORD(All, AbsCls, Mnd, 0, kOwn, CreateDerived, 0),
    RECORD(All, AbsCls, Opt, 0, kOwn, CreateDerived),
    RECORD(All, AbsCls, Col, 0, kOwn),
    RECORD(All, Prim, Mnd, 0, PRIMITIVE),
    RECORD(All, Prim, Opt, 0, PRIMITIVE),
    RECORD(All, Prim, Col, 0),
    RECORD(All, Enum, Mnd, 0, ENUMERATION),
    RECORD(All, Enum, Opt, 0, ENUMERATION),
    RECORD(All, Untpd, Mnd, 0, L"##any", L""),
    RECORD(All, Untpd, Opt, 0, L"##any", L""),
    RECORD(All, Untpd, Col, 0),
};

class RecordMatrix : public TableTest, public testing::WithParamInterface<Case> {};

}  // namespace

TEST_P(RecordMatrix, WritesWhatItRead) {
  const Table table = GetParam().NewTable();
  const std::wstring xml = Case::Document(GetParam().Members());
  CSerializationContext context;
  context.GetNamespaceAliases().Add(L"xsi", L"http://www.w3.org/2001/XMLSchema-instance");
  EXPECT_TEXT(xml, Write(*Read(table, xml.c_str()), context));
}

TEST_P(RecordMatrix, ReportsAnAbsentMember) {
  const Table table = GetParam().NewTable();
  EXPECT_TEXT(GetParam().Absent(), Thrown([&] { Read(table, L"<r/>"); }));
  // A foreign element does not stand for it.
  const bool accepted = Thrown([&] { Read(table, L"<r><foreign/></r>"); }) == L"nothing";
  EXPECT_EQ(GetParam().TakesAnyName(), accepted);
}

TEST_P(RecordMatrix, RefusesToWriteAnUnsetMember) {
  const Table table = GetParam().NewTable();
  const auto object = CTableClass::Create(table);
  if (GetParam().card != Card::Col) (*object)[0].SetInvalid();
  EXPECT_TEXT(GetParam().Unset(), Thrown([&] { Write(*object); }));
}

// A choice is written as optional by no record, though one inside a choice is read so.
TEST_P(RecordMatrix, RefusesToWriteAnEmptyChoice) {
  const Case& c = GetParam();
  if (c.card == Card::Col || c.Is(kPrim) || c.Is(kEnum)) return;
  static const Table choice(ClassInfo(kChoice, L"c"), {Prim<CElementInfoChoicePrimOpt>(L"a", 0)});
  const Table table = c.NewTable();
  const auto object = CTableClass::Create(table);
  (*object)[0].SetXmlObject(CTableClass::Create(choice));
  EXPECT_TEXT(kNotWritten + L"Failed to convert the element [c] to XML\n" + kNoneSet, Thrown([&] { Write(*object); }));
}

TEST_P(RecordMatrix, LeniencyAcceptsWhatItShould) {
  const Case& c = GetParam();
  const Table table = c.NewTable();
  const auto reads = [&](const CSerializationContext& context) {
    return Thrown([&] { Read(table, L"<r/>", context); }) == L"nothing";
  };
  const bool always = c.group != kChoice && c.card == Card::Opt;
  EXPECT_EQ(always || (c.card == Card::Col && c.group != kChoice), reads(With(kCounts)));
  EXPECT_EQ(always || c.group == kChoice, reads(With(kMissingChoice)));
  const bool relaxed = c.group == kSeq && c.card == Card::Mnd && !c.Is(kAbsCls) && !c.Is(kUntpd);
  EXPECT_EQ(always || relaxed, reads(With(kMissingElements)));
}

TEST_P(RecordMatrix, SkipsForeignElementsOnlyWhenAsked) {
  const Case& c = GetParam();
  if (c.TakesAnyName()) return;
  const Table table = c.NewTable();
  const auto ignore = With(kUnknownElements);
  const std::wstring before = Case::Document(L"<foreign/>" + c.Members());
  const std::wstring after = Case::Document(c.Members() + L"<foreign/><foreign/>");
  const auto has = [&](const std::wstring& xml) {
    return Write(*Read(table, xml.c_str(), ignore)).find(L"</m>") != std::wstring::npos;
  };
  EXPECT_TRUE(has(after));
  EXPECT_TEXT(Unread(L"foreign"), Thrown([&] { Read(table, after.c_str()); }));
  // A sequence looks past foreign elements for mandatory values and classes only; an optional member or a collection
  // that is the last one is offered what is left.
  const bool never = c.group == kSeq && c.card == Card::Mnd && (c.Is(kAbsCls) || c.Is(kUntpd));
  const bool countFirst = c.group == kSeq && c.card == Card::Col;
  if (never || countFirst)
    EXPECT_NE(L"nothing", Thrown([&] { Read(table, before.c_str(), ignore); }));
  else
    EXPECT_TRUE(has(before));
}

INSTANTIATE_TEST_SUITE_P(All, RecordMatrix, testing::ValuesIn(kCases),
                         [](const auto& row) { return std::string(row.param.name); });

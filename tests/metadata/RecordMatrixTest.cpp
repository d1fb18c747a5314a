// Every record of every content model, kind and cardinality, on one small body: written and read, absent, in the
// wrong place.
#include <memory>

#include "Expect.h"
#include "fixtures/Records.h"

using namespace RkXmlTest;

namespace {

enum class Group { Seq, Choice, All };
enum class Kind { Cls, AbsCls, Prim, Enum, Untpd };
enum class Card { Mnd, Opt, Col };

constexpr wchar_t kXsi[] = L"xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";

// <m><v>5</v></m>; the abstract class's concrete one is called "derived".
const Table& ChildTable(bool derived) {
  const auto make = [](const wchar_t* name) {
    return new Table(ClassInfo(kSequence, name), {Prim<CElementInfoSeqPrimOpt>(L"v", 0)});
  };
  static const std::unique_ptr<Table> child(make(L"m"));
  static const std::unique_ptr<Table> concrete(make(L"derived"));
  return derived ? *concrete : *child;
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

#define RKXML_NEW(kindAndCard, ...)                                                                \
  (group == Group::Seq ? static_cast<CElementInfo*>(new CElementInfoSeq##kindAndCard(__VA_ARGS__)) \
                       : static_cast<CElementInfo*>(new CElementInfoAll##kindAndCard(__VA_ARGS__)))
#define RKXML_NEW_ANY(kindAndCard, ...)                                                                  \
  (group == Group::Choice ? static_cast<CElementInfo*>(new CElementInfoChoice##kindAndCard(__VA_ARGS__)) \
                          : RKXML_NEW(kindAndCard, __VA_ARGS__))

CElementInfo* NewRecord(Group group, Kind kind, Card card, const wchar_t* name = L"m") {
  const auto own = XmlElementType_Element;
  switch (kind) {
    case Kind::Cls:
      if (card == Card::Mnd) return RKXML_NEW(ClsMnd, name, L"", 0, own, CreateChildObject, 7, true);
      if (card == Card::Opt) return RKXML_NEW_ANY(ClsOpt, name, L"", 0, own, CreateChildObject, 7);
      return RKXML_NEW_ANY(ClsCol, name, L"", 0, own);
    case Kind::AbsCls:
      if (card == Card::Mnd && group == Group::All)
        return new CElementInfoAllAbsClsMnd(name, L"", 0, own, CreateDerived, 0);
      if (card == Card::Mnd) return new CElementInfoSeqAbsClsMnd(name, L"", 0, own, CreateDerived);
      if (card == Card::Opt) return RKXML_NEW_ANY(AbsClsOpt, name, L"", 0, own, CreateDerived);
      return RKXML_NEW_ANY(AbsClsCol, name, L"", 0, own);
    case Kind::Prim:
      if (card == Card::Mnd)
        return group == Group::Seq ? Prim<CElementInfoSeqPrimMnd>(name, 0) : Prim<CElementInfoAllPrimMnd>(name, 0);
      if (card == Card::Opt && group == Group::Choice) return Prim<CElementInfoChoicePrimOpt>(name, 0);
      if (card == Card::Opt)
        return group == Group::Seq ? Prim<CElementInfoSeqPrimOpt>(name, 0) : Prim<CElementInfoAllPrimOpt>(name, 0);
      return RKXML_NEW_ANY(PrimCol, name, L"", 0);
    case Kind::Enum:
      if (card == Card::Mnd) return RKXML_NEW(EnumMnd, name, L"", 0, false, ColourToString, ColourFromString, nullptr);
      if (card == Card::Opt)
        return RKXML_NEW_ANY(EnumOpt, name, L"", 0, false, ColourToString, ColourFromString, nullptr);
      if (group == Group::Seq) return new CElementInfoSeqEnumCol(name, L"", 0);
      return new CElementInfoChoiceEnumCol(name, L"", 0);
    case Kind::Untpd:
      if (card == Card::Mnd) return RKXML_NEW(UntpdMnd, name, L"", 0, L"##any", L"");
      if (card == Card::Opt) return RKXML_NEW_ANY(UntpdOpt, name, L"", 0, L"##any", L"");
      return RKXML_NEW_ANY(UntpdCol, name, L"", 0);
  }
  return nullptr;
}

// A collection of the kind, with 1 to 2 items.
CXmlCollectionBase* NewCollection(Kind kind) {
  switch (kind) {
    case Kind::Cls:
      return new CTableCol(L"m", L"", 1, 2, CreateChildObject, 7);
    case Kind::AbsCls:
      return new CTableCol(L"m", L"", 1, 2, CreateDerived);
    case Kind::Prim:
      return Values<Ci4Col>(L"m", 1, 2);
    case Kind::Enum:
      return Values<CstringCol>(L"m", 1, 2, CWhitespaceUtils::none);
    case Kind::Untpd:
      return new CElementCol(L"m", L"", 1, 2);
  }
  return nullptr;
}

struct Case {
  Group group;
  Kind kind;
  Card card;

  // A class "r" whose only member is the record's.
  std::unique_ptr<Table> NewTable() const {
    static constexpr XmlElementGroupType kGroups[] = {kSequence, kChoice, kAll};
    Table::Initial initial;
    if (card == Card::Col) {
      initial = [k = kind](RkVariant& value) { value.SetXmlCollection(NewCollection(k)); };
    } else if (card == Card::Mnd && kind == Kind::Cls) {
      initial = [](RkVariant& value) { value.SetXmlObject(CreateChildObject(7, L"m")); };
    } else if (card == Card::Mnd && kind == Kind::Untpd) {
      initial = [](RkVariant& value) { value.SetXmlObject(new CElement(L"m")); };
    }
    return std::make_unique<Table>(ClassInfo(kGroups[static_cast<int>(group)], L"r"),
                                   std::vector<CElementInfo*>{NewRecord(group, kind, card)},
                                   std::vector<CAttributeInfo*>{}, std::vector<Table::Initial>{initial});
  }

  // The member as it stands in the document.
  std::wstring Item(wchar_t number) const {
    const std::wstring n(1, number);
    switch (kind) {
      case Kind::Cls:
        return L"<m><v>" + n + L"</v></m>";
      case Kind::AbsCls:
        return L"<m xsi:type=\"derived\"><v>" + n + L"</v></m>";
      case Kind::Prim:
        return L"<m>" + n + L"</m>";
      case Kind::Enum:
        return number == L'1' ? L"<m>red</m>" : L"<m>green</m>";
      case Kind::Untpd:
        return L"<m a=\"" + n + L"\"><x/></m>";
    }
    return L"";
  }
  std::wstring Members() const { return Item(L'1') + (card == Card::Col ? Item(L'2') : L""); }
  static std::wstring Document(const std::wstring& content) {
    return L"<r " + std::wstring(kXsi) + L">" + content + L"</r>";
  }

  // A wildcard collection of an all group takes elements whatever the name of its record.
  bool TakesAnyName() const { return group == Group::All && kind == Kind::Untpd && card == Card::Col; }

  // How the absence of the member shows when an empty <r> is read.
  std::wstring Absent() const {
    if (group == Group::Choice) return kNoChoice;
    if (card == Card::Col) return kNotRead + L"The Minimum number of [m] elements allowed in this collection is 1";
    if (card == Card::Opt) return L"nothing";
    if (group == Group::All) return kNotRead + L"Failed to find the mandatory element [m].";
    if (kind == Kind::AbsCls) return L"CRkException: Failed to find a suitable substitution element for [m].\nPath: /r";
    return Missing(L"m");
  }

  // How writing the unset member fails.
  std::wstring Unset() const {
    if (group == Group::Choice)
      return kNotWritten +
             L"This element is a choice, and as such must have at one (and only one) valid item, currently there "
             L"are none set";
    if (card == Card::Col) return kNotWritten + L"The Minimum number of [m] elements allowed in this collection is 1";
    return card == Card::Mnd ? kNotWritten + L"The Property [m] is mandatory, it may not be NULL" : L"nothing";
  }
};

std::vector<Case> AllCases() {
  std::vector<Case> cases;
  for (const Group group : {Group::Seq, Group::Choice, Group::All})
    for (const Kind kind : {Kind::Cls, Kind::AbsCls, Kind::Prim, Kind::Enum, Kind::Untpd})
      for (const Card card : {Card::Mnd, Card::Opt, Card::Col}) {
        if (group == Group::Choice && card == Card::Mnd) continue;                     // a choice has none
        if (group == Group::All && kind == Kind::Enum && card == Card::Col) continue;  // abstract
        cases.push_back({group, kind, card});
      }
  return cases;
}

std::string NameOf(const testing::TestParamInfo<Case>& row) {
  static const char* const kGroups[] = {"Seq", "Choice", "All"};
  static const char* const kKinds[] = {"Cls", "AbsCls", "Prim", "Enum", "Untpd"};
  static const char* const kCards[] = {"Mnd", "Opt", "Col"};
  return std::string(kGroups[static_cast<int>(row.param.group)]) + kKinds[static_cast<int>(row.param.kind)] +
         kCards[static_cast<int>(row.param.card)];
}

class RecordMatrix : public TableTest, public testing::WithParamInterface<Case> {};

}  // namespace

TEST_P(RecordMatrix, WritesWhatItRead) {
  const auto table = GetParam().NewTable();
  const std::wstring xml = Case::Document(GetParam().Members());
  CSerializationContext context;
  context.GetNamespaceAliases().Add(L"xsi", L"http://www.w3.org/2001/XMLSchema-instance");
  EXPECT_WIDE_EQ(xml, Write(*Read(*table, xml.c_str()), context));
}

TEST_P(RecordMatrix, ReportsAnAbsentMember) {
  const auto table = GetParam().NewTable();
  EXPECT_WIDE_EQ(GetParam().Absent(), Thrown([&] { Read(*table, L"<r/>"); }));
  // A foreign element does not stand for it.
  const bool accepted = Thrown([&] { Read(*table, L"<r><foreign/></r>"); }) == L"nothing";
  EXPECT_EQ(GetParam().TakesAnyName(), accepted);
}

TEST_P(RecordMatrix, RefusesToWriteAnUnsetMember) {
  const auto table = GetParam().NewTable();
  const auto object = CTableClass::Create(*table);
  if (GetParam().card != Card::Col) (*object)[0].SetInvalid();
  EXPECT_WIDE_EQ(GetParam().Unset(), Thrown([&] { Write(*object); }));
}

TEST_P(RecordMatrix, LeniencyAcceptsWhatItShould) {
  const Case& c = GetParam();
  const auto table = c.NewTable();
  const auto reads = [&](const CSerializationContext& context) {
    return Thrown([&] { Read(*table, L"<r/>", context); }) == L"nothing";
  };
  const bool always = c.group != Group::Choice && c.card == Card::Opt;
  EXPECT_EQ(always || (c.card == Card::Col && c.group != Group::Choice), reads(With(kCounts)));
  EXPECT_EQ(always || c.group == Group::Choice, reads(With(kMissingChoice)));
  const bool relaxed = c.group == Group::Seq && c.card == Card::Mnd && c.kind != Kind::AbsCls && c.kind != Kind::Untpd;
  EXPECT_EQ(always || relaxed, reads(With(kMissingElements)));
}

TEST_P(RecordMatrix, SkipsForeignElementsOnlyWhenAsked) {
  const Case& c = GetParam();
  if (c.TakesAnyName()) return;
  const auto table = c.NewTable();
  const auto ignore = With(kUnknownElements);
  const std::wstring before = Case::Document(L"<foreign/>" + c.Members());
  const std::wstring after = Case::Document(c.Members() + L"<foreign/><foreign/>");
  const auto has = [&](const std::wstring& xml) {
    return Write(*Read(*table, xml.c_str(), ignore)).find(L"</m>") != std::wstring::npos;
  };
  EXPECT_TRUE(has(after));
  EXPECT_WIDE_EQ(Unread(L"foreign"), Thrown([&] { Read(*table, after.c_str()); }));
  // A sequence looks past foreign elements for mandatory values and classes only; an optional member or a collection
  // that is the last one is offered what is left.
  const bool never = c.group == Group::Seq && c.card == Card::Mnd && (c.kind == Kind::AbsCls || c.kind == Kind::Untpd);
  const bool countFirst = c.group == Group::Seq && c.card == Card::Col;
  if (never || countFirst)
    EXPECT_NE(L"nothing", Thrown([&] { Read(*table, before.c_str(), ignore); }));
  else
    EXPECT_TRUE(has(before));
}

INSTANTIATE_TEST_SUITE_P(All, RecordMatrix, testing::ValuesIn(AllCases()), NameOf);

// Choices, all groups and inline groups: what is read, what is given back, and what an attempt leaves behind.
#include <algorithm>

#include "Expect.h"
#include "fixtures/Records.h"

using namespace RkXmlTest;

namespace {

using ContentModelTest = TableTest;

// Unknown elements.
const std::wstring kFew = Repeat(100, L"<x/>"), kLots = Repeat(100000, L"<x/>");

// The outcome of reading a root element with this content.
std::wstring Content(const Table& table, const std::wstring& content,
                     const CSerializationContext& context = CSerializationContext()) {
  return Outcome(table, L"<r>" + content + L"</r>", context);
}

// A choice that repeats: each round reads one member's run, until no member takes what is next.
class CRepeatingChoice : public CTableClass {
 public:
  using CTableClass::CTableClass;
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* current, const CSerializationContext& context,
                           bool) override {
    long itemsRead = 1;
    while (current != nullptr && itemsRead > 0) {
      itemsRead = 0;
      for (int member : {0, 1})
        Choice_Read_Collection((*this)[member].GetXmlCollection(), parent, current, itemsRead, context);
    }
    return current;
  }
};

}  // namespace

TEST_F(ContentModelTest, ChoiceTakesOneMember) {
  const Table child(ClassInfo(kSequence, L"c"), {Prim<CElementInfoSeqPrimOpt>(L"v", 0)});
  const Table table(ClassInfo(kChoice, L"r"),
                    {Prim<CElementInfoChoicePrimOpt>(L"a", 0), Cls<CElementInfoChoiceClsOpt>(L"c", 1),
                     new CElementInfoChoiceCol(L"n", L"", 2), Enum<CElementInfoChoiceEnumOpt>(L"e", 3)},
                    {}, {nullptr, nullptr, Ints(L"n", 1, 2)});
  Classes() = {&child};
  const auto unknown = With(kUnknownElements);
  const Rows<CSerializationContext, Wide, std::wstring> rows = {
      {With(), L"<a>1</a>", L"<r><a>1</a></r>"},
      {With(), L"<c><v>1</v></c>", L"<r><c><v>1</v></c></r>"},
      {With(), L"<n>1</n><n>2</n>", L"<r><n>1</n><n>2</n></r>"},
      {With(), L"<e>red</e>", L"<r><e>red</e></r>"},
      {With(), L"", kNoChoice},
      {With(), L"<x/>", kNoChoice},
      {With(), L"<a>1</a><b/>", Unread(L"b")},
      {With(), L"<e>red</e><a>1</a>", Unread(L"a")},
      {With(), L"<n>1</n><n>2</n><n>3</n>",
       kNotRead + L"The Maximum number of [n] elements allowed in this collection is 2"},
      {With(kCounts), L"<n>1</n><n>2</n><n>3</n>", L"<r><n>1</n><n>2</n><n>3</n></r>"},
      {unknown, L"<x/><x/><a>1</a><x/>", L"<r><a>1</a></r>"},
      {unknown, L"<x/>", kNoChoice},
      {unknown, L"<a>1</a><c/>", L"<r><a>1</a></r>"},
      {With(kMissingChoice), L"", L"<r/>"},
      {With(kMissingChoice), L"<x/>", Unread(L"x")},
      {With(kMissingChoice, kUnknownElements), L"<x/>", L"<r/>"},
  };
  for (const auto& [context, content, outcome] : rows) EXPECT_TEXT(outcome, Content(table, content, context));
}

TEST_F(ContentModelTest, EmptyChoiceNeedsAReason) {
  const auto record = [] { return Prim<CElementInfoChoicePrimOpt>(L"a", 0); };
  const Table strict(ClassInfo(kChoice, L"r"), {record()});
  const Table optional(ClassInfo(kChoice, L"r", kOwn, /*contentMayBeEmpty=*/true), {record()});
  EXPECT_TEXT(L"<r/>", Write(*CTableClass::Create(strict), With(kMissingChoice)));
  EXPECT_TEXT(L"<r/>", Write(*CTableClass::Create(optional)));
  EXPECT_TEXT(L"<r/>", Content(optional, L""));
  EXPECT_TEXT(Unread(L"x"), Content(optional, L"<x/>"));

  // A choice inside a choice is read as optional.
  const Table inner(ClassInfo(kChoice, L"c"), {record()});
  const Table outer(ClassInfo(kChoice, L"r"), {Cls<CElementInfoChoiceClsOpt>(L"c", 0)});
  Classes() = {&inner};
  EXPECT_TEXT(L"nothing", Thrown([&] { Read(outer, L"<r><c/></r>"); }));
}

TEST_F(ContentModelTest, ChoiceOfInlineGroupsTakesOnlyAWholeOne) {
  const Table ab(ClassInfo(kSequence, L"ab", kInline), {Prim(L"a", 0), Prim(L"b", 1)});
  const Table ac(ClassInfo(kSequence, L"ac", kInline), {Prim(L"a", 0), Prim(L"c", 1)});
  const Table table(ClassInfo(kChoice, L"r"), {Cls<CElementInfoChoiceClsOpt>(L"ab", 0, 0, kInline),
                                               Cls<CElementInfoChoiceClsOpt>(L"ac", 1, 1, kInline)});
  Classes() = {&ab, &ac};
  EXPECT_TEXT(L"<r><a>1</a><b>2</b></r>", Content(table, L"<a>1</a><b>2</b>"));
  EXPECT_TEXT(L"<r><a>1</a><c>2</c></r>", Content(table, L"<a>1</a><c>2</c>"));
  EXPECT_TEXT(kNoChoice, Content(table, L"<a>1</a>"));
  EXPECT_TEXT(kNoChoice, Content(table, L""));
  const auto object = Read(table, L"<r><a>1</a><c>2</c></r>");
  EXPECT_EQ(nullptr, (*object)[0].GetXmlObject().Get());  // the attempt is taken out again
  EXPECT_TEXT(L"Member1", object->GetSelected());
}

TEST_F(ContentModelTest, RepeatingChoiceGathersItsMembers) {
  static const Table group(ClassInfo(kSequence, L"g", kInline),
                           {new CElementInfoSeqCol(L"a", L"", 0), new CElementInfoSeqCol(L"b", L"", 1)}, {},
                           {Ints(L"a", 0, 3), Ints(L"b", 0, -1)});
  const auto create = [](int, const wchar_t*) -> Object { return new CRepeatingChoice(group); };
  const Table table(ClassInfo(kSequence, L"r"), {new CElementInfoSeqClsOpt(L"g", L"", 0, kInline, create, 0),
                                                 Prim<CElementInfoSeqPrimOpt>(L"z", 1)});
  EXPECT_TEXT(L"<r><a>1</a><a>4</a><b>2</b><b>3</b><b>5</b><z>6</z></r>",
              Content(table, L"<a>1</a><b>2</b><b>3</b><a>4</a><b>5</b><z>6</z>"));
  EXPECT_TEXT(L"<r><z>6</z></r>", Content(table, L"<z>6</z>"));
  EXPECT_TEXT(kNotRead + L"The Maximum number of [a] elements allowed in this collection is 3",
              Content(table, L"<a>1</a><b>2</b><a>3</a><a>4</a><a>5</a>"));
}

// A collection in an inline choice that has too few items answers no, keeps none of them, and another member may
// follow.
TEST_F(ContentModelTest, RefusedCollectionLeavesNothingBehind) {
  const Table group(ClassInfo(kChoice, L"g", kInline),
                    {new CElementInfoChoicePrimCol(L"n", L"", 0), new CElementInfoChoicePrimCol(L"n", L"", 1)}, {},
                    {Ints(L"n", 2, 2), Ints(L"n", 1, 1)});
  const Table table(ClassInfo(kSequence, L"r"), {MandatoryCls(L"g", 0, 0, kInline)}, {}, {NewChild(group)});
  Classes() = {&group};
  EXPECT_TEXT(L"<r><n>1</n></r>", Content(table, L"<n>1</n>"));
  EXPECT_TEXT(L"<r><n>1</n><n>2</n></r>", Content(table, L"<n>1</n><n>2</n>"));
  const auto object = Read(table, L"<r><n>1</n></r>");
  auto* const member = static_cast<CTableClass*>((*object)[0].GetXmlObject().Get());
  EXPECT_EQ(0, (*member)[0].GetXmlCollection()->GetCount());
}

TEST_F(ContentModelTest, InlineGroupsReadFromThePlaceOfTheirOwner) {
  const Table group(ClassInfo(kSequence, L"g", kInline), {Prim(L"a", 0), Prim(L"b", 1)},
                    {Attribute(L"q", 2, /*optional=*/true)});
  const Table loose(ClassInfo(kSequence, L"g", kInline), {Prim<CElementInfoSeqPrimOpt>(L"a", 0)});
  const auto owner = [&](CElementInfo* record, Table::Initial initial = nullptr) {
    auto* info = new CParentElementInfo(kSequence, kOwn, L"r", L"", /*strictAttributes=*/false, false, -1,
                                        ItemType_none, nullptr, false);
    return Table(info, {record, Prim<CElementInfoSeqPrimOpt>(L"z", 1)}, {}, {std::move(initial)});
  };
  const auto mandatory = [&](const Table& member, bool required) {
    return owner(MandatoryCls(L"g", 0, 0, kInline, required), NewChild(member));
  };
  const Table all(ClassInfo(kAll, L"g", kInline),
                  {Prim<CElementInfoAllPrimMnd>(L"a", 0), Prim<CElementInfoAllPrimMnd>(L"b", 1),
                   new CElementInfoAllCol(L"n", L"", 2)},
                  {}, {nullptr, nullptr, Ints(L"n", 0, 1)});
  const Table choice(ClassInfo(kChoice, L"g", kInline), {Prim<CElementInfoChoicePrimOpt>(L"a", 0)});
  Classes() = {&group, &loose, &all, &choice};
  const Table inAll = owner(Cls(L"g", 0, 2, kInline));
  const Table inChoice = owner(Cls(L"g", 0, 3, kInline));
  const Table required = mandatory(group, true);
  const Table notRequired = mandatory(loose, false);
  const Table optional = owner(Cls(L"named", 0, 0, kInline));
  const Table repeated = owner(new CElementInfoSeqClsCol(L"g", L"", 0, kInline), [](RkVariant& value) {
    value.SetXmlCollection(new CTableCol(L"g", L"", 0, -1, CreateClass, 0, kInline));
  });
  const Rows<const Table&, CSerializationContext, Wide, std::wstring> rows = {
      {required, With(), L"<a>1</a><b>2</b><z>3</z>", L"<r><a>1</a><b>2</b><z>3</z></r>"},
      {required, With(), L"<z>3</z>", Missing(L"g")},
      {required, With(), L"", Missing(L"g")},
      {required, With(), L"<a>1</a><z>3</z>", Missing(L"g")},
      {notRequired, With(), L"<a>1</a><z>3</z>", L"<r><a>1</a><z>3</z></r>"},
      {notRequired, With(), L"<z>3</z>", L"<r><z>3</z></r>"},
      {notRequired, With(), L"<x/><a>1</a>", Unread(L"x")},
      {notRequired, With(kUnknownElements), L"<x/><a>1</a>", L"<r><a>1</a></r>"},
      {optional, With(), L"<a>1</a><b>2</b>", L"<r><a>1</a><b>2</b></r>"},
      {optional, With(), L"<z>3</z>", L"<r><z>3</z></r>"},
      {optional, With(), L"<a>1</a>", Unread(L"a")},
      {repeated, With(), L"<a>1</a><b>2</b><a>3</a><b>4</b><z>5</z>",
       L"<r><a>1</a><b>2</b><a>3</a><b>4</b><z>5</z></r>"},
      {repeated, With(), L"<a>1</a><b>2</b><a>3</a>", Unread(L"a")},
      {repeated, With(), L"", L"<r/>"},
      {inAll, With(), L"<a>1</a>", Unread(L"a")},
      {inAll, With(kUnknownElements), L"<b>1</b><a>2</a><x/><z>3</z>", L"<r><a>2</a><b>1</b><z>3</z></r>"},
      {inChoice, With(kUnknownElements), L"<z>3</z><a>1</a>", L"<r><z>3</z></r>"},
  };
  for (const auto& [table, context, content, outcome] : rows) EXPECT_TEXT(outcome, Content(table, content, context));
  EXPECT_EQ(nullptr, (*Read(optional, L"<r><z>3</z></r>"))[0].GetXmlObject().Get());
  Read(inAll, L"<r><a>1</a><b>2</b><n>1</n><n>2</n></r>");  // only the writer counts

  // The attributes of the group stand on the owner's element.
  for (const Table* table : {&required, &optional, &repeated})
    EXPECT_TEXT(L"<r q=\"7\"><a>1</a><b>2</b></r>", Write(*Read(*table, L"<r q='7'><a>1</a><b>2</b></r>")));
}

// The last record that answers no while unknown elements are skipped ends the sequence when none is left, so a
// mandatory member behind an inline group is not asked for.
TEST_F(ContentModelTest, SkippingToTheEndBehindAGroupEndsTheSequenceIntended) {
  const Table group(ClassInfo(kSequence, L"g", kInline), {Prim<CElementInfoSeqPrimOpt>(L"a", 0)});
  const Table table(ClassInfo(kSequence, L"r"), {MandatoryCls(L"g", 0, 0, kInline, /*required=*/false), Prim(L"b", 1)},
                    {}, {NewChild(group)});
  EXPECT_TEXT(L"nothing", Thrown([&] { Read(table, L"<r><x/></r>", With(kUnknownElements)); }));
  EXPECT_TEXT(Missing(L"b"), Thrown([&] { Read(table, L"<r/>", With(kUnknownElements)); }));
}

// A group is offered every place in turn and looks to the end each time; that must not be quadratic, nor find what
// stands before the place.
TEST_F(ContentModelTest, GroupsAmongManyUnknownElementsAreFoundQuickly) {
  const Table pa(ClassInfo(kSequence, L"pa", kInline), {Prim(L"p", 0), Prim(L"a", 1)});
  const Table qa(ClassInfo(kSequence, L"qa", kInline), {Prim(L"q", 0), Prim(L"a", 1)});
  const Table table(ClassInfo(kChoice, L"r"), {Cls<CElementInfoChoiceClsOpt>(L"pa", 0, 0, kInline),
                                               Cls<CElementInfoChoiceClsOpt>(L"qa", 1, 1, kInline)});
  Classes() = {&pa, &qa};
  const auto unknown = With(kUnknownElements);
  EXPECT_TEXT(L"<r><q>1</q><a>2</a></r>",
              Content(table, kFew + L"<q>1</q>" + kFew + L"<a>2</a>" + kFew + L"<p>3</p>" + kFew, unknown));
  EXPECT_TEXT(L"<r><p>3</p><a>4</a></r>",
              Content(table, kFew + L"<a>1</a>" + kFew + L"<p>3</p>" + kFew + L"<a>4</a>" + kFew, unknown));
  EXPECT_TEXT(kNoChoice, Content(table, Repeat(100000, L"<x/><p>1</p>"), unknown));
}

// The same with records that are asked about each element.
TEST_F(ContentModelTest, GroupsOfClassesAndCollectionsAreFoundQuicklyToo) {
  const Table leaf(ClassInfo(kSequence, L"a"), {});
  const Table one(ClassInfo(kSequence, L"one", kInline), {MandatoryCls(L"a", 0, 2)});
  const Table two(ClassInfo(kSequence, L"two", kInline), {new CElementInfoSeqPrimCol(L"b", L"", 0)}, {},
                  {Ints(L"b", 2, 2)});
  const Table table(ClassInfo(kChoice, L"r"), {Cls<CElementInfoChoiceClsOpt>(L"one", 0, 0, kInline),
                                               Cls<CElementInfoChoiceClsOpt>(L"two", 1, 1, kInline)});
  Classes() = {&one, &two, &leaf};
  const auto unknown = With(kUnknownElements);
  EXPECT_TEXT(L"<r><a/></r>", Content(table, kFew + L"<b>1</b><b>2</b>" + kFew + L"<a/>" + kFew, unknown));
  EXPECT_TEXT(L"<r><b>2</b><b>3</b></r>", Content(table, kFew + L"<b>1</b><b>2</b><b>3</b>" + kFew, unknown));
  EXPECT_TEXT(kNoChoice, Content(table, kLots + L"<b>1</b>" + kFew, unknown));
}

// The same with a required group within another: each place of the outer is one of many of the inner.
TEST_F(ContentModelTest, RequiredGroupsWithinGroupsAreFoundQuicklyToo) {
  const Table inner(ClassInfo(kSequence, L"inner", kInline), {Prim(L"a", 0), Prim(L"b", 1)});
  const Table outer(ClassInfo(kSequence, L"outer", kInline), {MandatoryCls(L"inner", 0, 0, kInline)}, {},
                    {NewChild(inner)});
  const Table table(ClassInfo(kChoice, L"r"), {Cls<CElementInfoChoiceClsOpt>(L"outer", 0, 1, kInline)});
  Classes() = {&inner, &outer};
  const auto unknown = With(kUnknownElements);
  EXPECT_TEXT(L"<r><a>2</a><b>3</b></r>",
              Content(table, kFew + L"<b>1</b>" + kFew + L"<a>2</a>" + kFew + L"<b>3</b>" + kFew, unknown));
  EXPECT_TEXT(kNoChoice, Content(table, kLots + L"<b>1</b>" + kFew, unknown));

  // Where each place begins the inner group and none ends it, all are read again from each.
  EXPECT_TEXT(kNoChoice, Content(table, Repeat(1000, L"<a>1</a>"), unknown));
  EXPECT_TEXT(L"CRkException: Limit exceeded: elements in failed attempts 1000000.\nPath: /r",
              Content(table, Repeat(1500, L"<a>1</a>"), unknown));
}

TEST_F(ContentModelTest, AllGroupIsReadInAnyOrder) {
  const Table child(ClassInfo(kSequence, L"c"), {Prim<CElementInfoSeqPrimOpt>(L"v", 0)});
  const Table table(ClassInfo(kAll, L"r"),
                    {Prim<CElementInfoAllPrimMnd>(L"a", 0), Enum<CElementInfoAllEnumOpt>(L"e", 1),
                     MandatoryCls<CElementInfoAllClsMnd>(L"c", 2), new CElementInfoAllCol(L"n", L"", 3)},
                    {}, {nullptr, nullptr, NewChild(child), Ints(L"n", 0, 2)});
  Classes() = {&child};
  std::vector<std::wstring> members = {L"<a>1</a>", L"<c><v>2</v></c>", L"<e>red</e>", L"<n>3</n><n>4</n>"};
  const std::wstring written = L"<r><a>1</a><e>red</e><c><v>2</v></c><n>3</n><n>4</n></r>";
  do {
    std::wstring content;
    for (const std::wstring& member : members) content += member;
    EXPECT_TEXT(written, Content(table, content));
    EXPECT_TEXT(written, Content(table, L"<x/>" + content + L"<x/>", With(kUnknownElements)));
  } while (std::next_permutation(members.begin(), members.end()));

  const auto unknown = With(kUnknownElements);
  EXPECT_TEXT(written, Content(table, members[3] + L"<x/>" + members[2] + members[1] + L"<x/>" + members[0], unknown));
  EXPECT_TEXT(Unread(L"x"), Content(table, members[1] + members[0] + L"<x/>"));
  EXPECT_TEXT(Unread(L"a"), Content(table, L"<c/><a>1</a><a>2</a>"));  // each member once
  EXPECT_TEXT(L"<r><a>1</a><c/><n>1</n><n>2</n></r>", Content(table, L"<n>1</n><a>1</a><n>2</n><c/>"));
  EXPECT_TEXT(kNotRead + L"Failed to find the mandatory element [c].", Content(table, members[0]));
  EXPECT_TEXT(kNotRead + L"The Maximum number of [n] elements allowed in this collection is 2",
              Content(table, L"<a>1</a><c/><n>1</n><n>2</n><n>3</n>"));
}

// Members are not asked once more behind the last unknown element: a wildcard in a group would ask for its element.
TEST_F(ContentModelTest, AllGroupEndsWithTheLastUnknownElement) {
  const Table group(ClassInfo(kSequence, L"D", kInline), {new CElementInfoSeqUntpdMnd(L"c", L"", 0, L"##any", L"")}, {},
                    {[](RkVariant& value) { value.SetXmlObject(new CElement(L"c", L"", L"##any", L"")); }});
  const Table table(ClassInfo(kAll, L"r"), {MandatoryCls<CElementInfoAllClsMnd>(L"D", 0, 0, kInline)}, {},
                    {NewChild(group)});
  const auto unknown = With(kUnknownElements);
  EXPECT_TEXT(kNotRead + L"Failed to find the mandatory element [D].", Content(table, L"<x/>", unknown));
  EXPECT_TEXT(L"<r><c/></r>", Content(table, L"<x/><c/><x/>", unknown));
}

TEST_F(ContentModelTest, AllClassMayBeMissingWhenItIsNotRequired) {
  const Table child(ClassInfo(kSequence, L"c"), {});
  for (const bool required : {false, true})
    for (const XmlElementType memberType : {kOwn, kInline}) {
      const Table table(ClassInfo(kAll, L"r"), {MandatoryCls<CElementInfoAllClsMnd>(L"c", 0, 0, memberType, required)},
                        {}, {NewChild(child)});
      const bool accepted = Thrown([&] { Read(table, L"<r/>"); }) == L"nothing";
      EXPECT_EQ(!required && memberType == kOwn, accepted);
    }
}

// An inline abstract member answers no at the end of the children, and reads in place elsewhere.
TEST_F(ContentModelTest, InlineAbstractMembersReadInPlace) {
  static const Table group(ClassInfo(kSequence, L"g", kInline), {Prim(L"a", 0)});
  const auto create = [](CXmlElement* element) -> Object {
    EXPECT_NE(nullptr, element);
    return CTableClass::Create(group);
  };
  for (const bool mandatory : {true, false}) {
    CElementInfo* const record =
        mandatory ? static_cast<CElementInfo*>(new CElementInfoAllAbsClsMnd(L"g", L"", 0, kInline, create, 0))
                  : static_cast<CElementInfo*>(new CElementInfoAllAbsClsOpt(L"g", L"", 0, kInline, create));
    const Table table(ClassInfo(kAll, L"r"), {record});
    EXPECT_TEXT(L"<r><a>1</a></r>", Content(table, L"<a>1</a>"));
    EXPECT_EQ(mandatory, Thrown([&] { Read(table, L"<r/>"); }) != L"nothing");
  }
}

TEST_F(ContentModelTest, WildcardsObeyNameAndNamespace) {
  const auto table = [](CElementInfo* record, Table::Initial initial) {
    return Table(ClassInfo(kSequence, L"r"), {record}, {}, {std::move(initial)});
  };
  const Table::Initial element = [](RkVariant& value) {
    value.SetXmlObject(new CElement(L"w", L"", L"##other", L"urn:t"));
  };
  const Table::Initial elements = [](RkVariant& value) { value.SetXmlCollection(new CElementCol(L"w", L"", 0, -1)); };
  const Table any = table(new CElementInfoSeqUntpdMnd(L"AnyElement", L"urn:n", 0, L"##other", L"urn:t"), element);
  const Table named = table(new CElementInfoSeqUntpdMnd(L"w", L"urn:n", 0, L"##other", L"urn:t"), element);
  const Table optional = table(new CElementInfoSeqUntpdOpt(L"w", L"", 0, L"##other", L"urn:t"), nullptr);
  const Table namedMany = table(new CElementInfoSeqUntpdCol(L"w", L"", 0), elements);
  const std::wstring w = L"<w xmlns=\"urn:w\"/>";
  const std::wstring ofTarget = L"<w xmlns=\"urn:t\"/>";
  const std::wstring other = L"<v xmlns=\"urn:w\"/>";
  const std::wstring notFound = L"CRkException: Failed to find the required element from namespace [urn:n].\nPath: /r";
  const auto reads = [](const Table& t, const std::wstring& content) {
    return Thrown([&] { Read(t, (L"<r>" + content + L"</r>").c_str()); });
  };
  EXPECT_TEXT(L"nothing", reads(any, w));
  EXPECT_TEXT(L"nothing", reads(any, other));
  EXPECT_TEXT(notFound, reads(any, ofTarget));
  EXPECT_TEXT(notFound, reads(named, other));
  EXPECT_TEXT(L"nothing", reads(optional, w));
  EXPECT_NE(L"nothing", reads(optional, other));
  EXPECT_NE(L"nothing", reads(optional, ofTarget));
  EXPECT_EQ(2, (*Read(namedMany, (L"<r>" + w + w + L"</r>").c_str()))[0].GetXmlCollection()->GetCount());
  EXPECT_NE(L"nothing", reads(namedMany, w + other));
  EXPECT_TEXT(kNotRead + L"Serialization Data Error : The collection should be a CElementCol, it was not!",
              reads(table(new CElementInfoSeqUntpdCol(L"w", L"", 0), Ints(L"w", 0, -1)), w));
}

#include "RkXmlLib16/core/XmlObjectBase.h"

#include <string>

#include "Expect.h"
#include "RkXmlLib16/core/SerializationContext.h"
#include "RkXmlLib16/core/SmartPtr.h"
#include "RkXmlLib16/wildcards/ElementCol.h"
#include "RkXmlLib16/xml/ElementTree.h"

using namespace RkXmlLib16;

namespace {

class CCounted : public CElement {
 public:
  CCounted() { ++live; }
  ~CCounted() override { --live; }
  static int live;
};
int CCounted::live = 0;

TEST(XmlObjectBase, TheLastReleaseDeletes) {
  auto* const object = new CCounted;
  EXPECT_EQ(0, object->GetRefCount());
  EXPECT_EQ(1, object->AddRef());
  EXPECT_EQ(2, object->AddRef());
  EXPECT_EQ(1, object->Release());
  EXPECT_EQ(1, CCounted::live);
  EXPECT_EQ(0, object->Release());
  EXPECT_EQ(0, CCounted::live);
}

TEST(SmartPtr, CountsThroughEveryTransfer) {
  {
    CSmartPtr<CCounted> a(new CCounted);
    CSmartPtr<CXmlObjectBase> b = a;
    EXPECT_EQ(2, a->GetRefCount());
    b = std::move(a);
    EXPECT_EQ(nullptr, a.Get());
    EXPECT_EQ(1, b->GetRefCount());
    CXmlObjectBase* const raw = b.Detach();
    EXPECT_EQ(1, raw->GetRefCount());
    b.Attach(raw);
    const CSmartPtr<CXmlObjectBase>& same = b;
    b = same;
    EXPECT_EQ(1, b->GetRefCount());
  }
  EXPECT_EQ(0, CCounted::live);
}

constexpr wchar_t kAlreadySet[] =
    L"The Property [a] is already set. Only one element within this class bay be set at a time";

// One call on a choice whose selected member is `selected`; `after` is null where `error` is thrown.
TEST(ChoiceHelpers, FollowTheSelectedMember) {
  CElement object;
  const struct {
    const wchar_t* call;
    const wchar_t* name;
    long argument;  // valid, value or count
    const wchar_t* selected;
    const wchar_t* after;
    const wchar_t* error;
  } kRows[] = {
      {L"select", L"a", 1, L"", L"a", nullptr},
      {L"select", L"a", 0, L"", L"a", nullptr},
      {L"select", L"a", 1, L"a", L"a", nullptr},
      {L"select", L"a", 0, L"a", L"", nullptr},
      {L"select", L"b", 0, L"a", L"a", nullptr},
      {L"select", L"b", 1, L"a", nullptr, kAlreadySet},
      {L"valid", L"a", 1, L"a", L"a", nullptr},
      {L"valid", L"b", 0, L"a", L"", nullptr},
      {L"valid", L"b", 1, L"a", nullptr,
       L"The Property a is already set. Only one element within this class bay be set at a time"},
      {L"valid", L"b", 1, L"", nullptr,
       L"The Property  is already set. Only one element within this class bay be set at a time"},
      {L"changed", L"a", 0, L"a", L"", nullptr},
      {L"changed", L"a", 2, L"a", L"a", nullptr},
      {L"changed", L"a", 1, L"", L"a", nullptr},
      {L"changed", L"a", 0, L"", L"", nullptr},
      {L"changed", L"b", 0, L"a", L"a", nullptr},
      {L"changed", L"b", 1, L"a", nullptr, kAlreadySet},
  };
  for (const auto& row : kRows) {
    std::wstring selected = row.selected;
    const auto call = [&] {
      const std::wstring name = row.call;
      if (name == L"select")
        CXmlObjectBase::Choice_SelectElement(row.name, row.argument != 0 ? &object : nullptr, selected);
      if (name == L"valid") CXmlObjectBase::Choice_SetElementValid(row.argument != 0, row.name, selected);
      if (name == L"changed") CXmlObjectBase::Choice_CollectionChanged(row.name, row.argument, selected);
    };
    if (row.error != nullptr) {
      EXPECT_RK_THROWS(CRkInvalidStateException, row.error, call());
    } else {
      call();
    }
    EXPECT_WIDE_EQ(row.after != nullptr ? row.after : row.selected, selected);
  }
}

TEST(ChoiceHelpers, ReadACollectionOnceAndCheckItsCount) {
  CXmlDocument document;
  document.LoadXml(L"<r><a/><a/><b xmlns='urn:b'/></r>");
  CXmlElement* const root = document.GetDocumentElement();
  CXmlElement* current = root->GetFirstElement();
  long itemsRead = 0;
  CElementCol col(L"a", L"", 0, 1, L"##local", L"");
  EXPECT_RK_THROWS(CRkValidationException, L"The Maximum number of [a] elements allowed in this collection is 1",
                   CXmlObjectBase::Choice_Read_Collection(&col, root, current, itemsRead, GetDefaultContext()));
  EXPECT_EQ(0, itemsRead);
  EXPECT_WIDE_EQ(L"b", current->GetLocalName().c_str());
  CXmlObjectBase::Choice_Read_Collection(&col, root, current, itemsRead, GetDefaultContext());
  EXPECT_EQ(0, itemsRead);  // nothing consumed, nothing checked
}

TEST(SetterGuards, NameWhatIsWrong) {
  CElement e(L"actual");
  EXPECT_RK_THROWS(CRkInvalidParamException, L"The Property [P] is mandatory, it may node be NULL",  // sic
                   CXmlObjectBase::Throw_IfPropertyIsNull(nullptr, L"P"));
  CXmlObjectBase::Throw_IfPropertyIsNull(&e, L"P");
  EXPECT_RK_THROWS(
      CRkInvalidParamException,
      L"This property requires an element with the name Actual the element being set has the element name actual",
      CXmlObjectBase::Throw_IfElementNameDiffers(&e, L"Actual"));
  CXmlObjectBase::Throw_IfElementNameDiffers(&e, L"actual");
  CXmlObjectBase::Throw_IfElementNameDiffers(nullptr, L"actual");
}

TEST(ElementName, MatchesUnderTheRulesOfTheContext) {
  CXmlDocument document;
  document.LoadXml(L"<a xmlns='urn:n'/>");
  const CXmlElement* const a = document.GetDocumentElement();
  CSerializationContext ignoring;
  ignoring.SetIgnoreNamespaces(true);
  CSerializationContext without;
  without.SetSchemaType(SchemaType_NoNamespaces);
  const CElement object;
  EXPECT_TRUE(object.DoesElementNameMatch(GetDefaultContext(), a, L"a", L"urn:n"));
  EXPECT_FALSE(object.DoesElementNameMatch(GetDefaultContext(), a, L"a", L""));
  EXPECT_FALSE(object.DoesElementNameMatch(GetDefaultContext(), a, L"A", L"urn:n"));
  EXPECT_TRUE(object.DoesElementNameMatch(ignoring, a, L"a", L"urn:other"));
  EXPECT_TRUE(object.DoesElementNameMatch(without, a, L"a", nullptr));
  EXPECT_FALSE(object.DoesElementNameMatch(without, a, L"b", L"urn:n"));
  EXPECT_FALSE(object.DoesElementNameMatch(ignoring, nullptr, L"a", L""));
}

}  // namespace

#include "RkXmlLib16/object/XmlObjectBase.h"

#include <string>

#include "Expect.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/wildcards/ElementCol.h"

using namespace RkXmlTest;

namespace {

class CCounted : public CElement {
 public:
  CCounted() { ++live; }
  ~CCounted() override { --live; }
  static inline int live = 0;
};

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

// One call on a choice whose selected member is `selected`; `after` tells the member that is selected then, or the
// failure.
TEST(ChoiceHelpers, FollowTheSelectedMember) {
  using Call = void (*)(Wide name, bool set, std::wstring& selected);
  const Call select = [](Wide name, bool set, std::wstring& selected) {
    CElement object;
    CXmlObjectBase::Choice_SelectElement(name, set ? &object : nullptr, selected);
  };
  const Call valid = [](Wide name, bool set, std::wstring& selected) {
    CXmlObjectBase::Choice_SetElementValid(set, name, selected);
  };
  const Call changed = [](Wide name, bool set, std::wstring& selected) {
    CXmlObjectBase::Choice_CollectionChanged(name, set ? 2 : 0, selected);
  };
  const Rows<Call, Wide, bool, Wide, std::wstring> rows = {{select, L"a", true, L"", L"a"},
                                                           {select, L"a", false, L"", L"a"},
                                                           {select, L"a", true, L"a", L"a"},
                                                           {select, L"a", false, L"a", L""},
                                                           {select, L"b", false, L"a", L"a"},
                                                           {select, L"b", true, L"a", L"The Property [a]"},
                                                           {valid, L"a", true, L"a", L"a"},
                                                           {valid, L"b", false, L"a", L""},
                                                           {valid, L"b", true, L"a", L"The Property a"},
                                                           {valid, L"b", true, L"", L"The Property "},
                                                           {changed, L"a", false, L"a", L""},
                                                           {changed, L"a", true, L"a", L"a"},
                                                           {changed, L"a", true, L"", L"a"},
                                                           {changed, L"a", false, L"", L""},
                                                           {changed, L"b", false, L"a", L"a"},
                                                           {changed, L"b", true, L"a", L"The Property [a]"}};
  for (const auto& [call, name, set, before, after] : rows) {
    std::wstring selected = before;
    if (after.size() > 1) {
      EXPECT_THROWS(CRkInvalidStateException,
                    after + L" is already set. Only one element within this class bay be set at a time",
                    call(name, set, selected));
      EXPECT_TEXT(before, selected);
    } else {
      call(name, set, selected);
      EXPECT_TEXT(after, selected);
    }
  }
}

TEST(ChoiceHelpers, ReadACollectionOnceAndCheckItsCount) {
  CXmlDocument document;
  document.LoadXml(L"<r><a/><a/><b xmlns='urn:b'/></r>");
  CXmlElement* const root = document.GetDocumentElement();
  CXmlElement* current = root->GetFirstElement();
  long itemsRead = 0;
  CElementCol col(L"a", L"", 0, 1, L"##local", L"");
  EXPECT_THROWS(CRkValidationException, L"The Maximum number of [a] elements allowed in this collection is 1",
                CXmlObjectBase::Choice_Read_Collection(&col, root, current, itemsRead, GetDefaultContext()));
  EXPECT_EQ(0, itemsRead);
  EXPECT_TEXT(L"b", current->GetLocalName().c_str());
  CXmlObjectBase::Choice_Read_Collection(&col, root, current, itemsRead, GetDefaultContext());
  EXPECT_EQ(0, itemsRead);  // nothing consumed, nothing checked
  CElementCol rest(L"b", L"", 0, -1, L"##any", L"");
  for (int round = 0; round < 2; ++round) {
    CXmlObjectBase::Choice_Read_Collection(&rest, root, current, itemsRead, GetDefaultContext());
    EXPECT_EQ(1, itemsRead);
    EXPECT_EQ(1, rest.GetCount());
    EXPECT_EQ(round == 0 ? nullptr : root->GetFirstElement(), current);
    current = root->GetFirstElement();
  }
}

TEST(SetterGuards, NameWhatIsWrong) {
  CElement e(L"actual");
  EXPECT_THROWS(CRkInvalidParamException, L"The Property [P] is mandatory, it may node be NULL",  // sic
                CXmlObjectBase::Throw_IfPropertyIsNull(nullptr, L"P"));
  CXmlObjectBase::Throw_IfPropertyIsNull(&e, L"P");
  EXPECT_THROWS(
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
  EXPECT_TRUE(without.GetIgnoreNamespaces() && !without.GetIgnoreNamespacesFlag());
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

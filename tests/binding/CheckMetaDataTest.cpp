// Each mistake in hand-written metadata is named with its class and record.
#include "RkXmlLib16/binding/CheckMetaData.h"

#include "Expect.h"
#include "RkXmlLib16/RkXmlLib16.h"
#include "fixtures/Records.h"

using namespace RkXmlTest;

namespace {

class CheckMetaDataTest : public TableTest {};

// An accessor as a generator emits it: it leaves the variant alone for a number that it does not know.
class CCarefulClass : public CTableClass {
 public:
  CCarefulClass(const Table& table, int count) : CTableClass(table), m_count(count) {}
  void AccessProperty(int index, bool get, RkVariant& value) override {
    if (index == 99) throw CRkInvalidParamException(L"No such property.");
    if (!get && index == 1) throw CRkInvalidParamException(L"Not mine.");
    if (index >= 0 && index < m_count) CTableClass::AccessProperty(index, get, value);
  }

 private:
  int m_count;
};

std::wstring FaultsOf(CXmlGeneratedClass& object) {
  std::wstring all;
  for (const CMetaDataFault& fault : CheckMetaData(object)) all += fault.GetText() + L"\n";
  return all;
}

Table::Initial Holds(const wchar_t* text) {
  return [=](RkVariant& value) { value.SetString(text); };
}

CSmartPtr<CXmlObjectBase> MakesNothing(int, const wchar_t*) { return nullptr; }
CSmartPtr<CXmlObjectBase> Fails(int, const wchar_t*) { throw CRkException(L"No class."); }

}  // namespace

TEST_F(CheckMetaDataTest, NamesEachMistake) {
  const auto none = static_cast<ClassFactory>(nullptr);
  const auto noneAbstract = static_cast<AbstractClassFactory>(nullptr);
  const struct {
    CElementInfo* record;
    Table::Initial initial;
    const wchar_t* fault;
  } rows[] = {
      {Prim(L"m", 7), {}, L"the accessor does not know the property 7"},
      {Prim(L"m", 99), {}, L"the property 99 cannot be read: No such property."},
      {Prim(L"m", 1, ItemType_string), Holds(L"x"), L"the property 1 cannot be set: Not mine."},
      {Prim(L"m", 1), Holds(L"x"), L"the property 1 is string where the record says int"},
      {Prim(L"m", 1, ItemType_int, false, L"x"),
       {},
       L"the default value is not of its type: The value [x] can not be "
       L"converted to a i4"},
      {Prim(L"m", 0), {}, L"the property 0 is that of [@a] too"},
      {Enum(L"m", 1), Holds(L"red"), L"the property 1 is string where the record says int"},
      {new CElementInfoSeqEnumOpt(L"m", L"", 1, false, nullptr, nullptr, nullptr),
       {},
       L"a function of the enumeration is a null pointer"},
      {new CElementInfoSeqClsOpt(L"m", L"", 1, kOwn, none, 0), {}, L"the factory is a null pointer"},
      {new CElementInfoChoiceClsOpt(L"m", L"", 1, kOwn, none, 0), {}, L"the factory is a null pointer"},
      {new CElementInfoAllAbsClsOpt(L"m", L"", 1, kOwn, noneAbstract), {}, L"the factory is a null pointer"},
      {new CElementInfoSeqClsOpt(L"m", L"", 1, kOwn, MakesNothing, 3),
       {},
       L"the factory makes nothing for the class number 3"},
      {new CElementInfoSeqClsOpt(L"m", L"", 1, kOwn, Fails, 3), {}, L"the factory fails: No class."},
      {Cls(L"m", 1), Holds(L"x"), L"the property 1 is string where the record says an object"},
      {new CElementInfoSeqPrimCol(L"m", L"", 1), {}, L"the collection has not been created"},
      {new CElementInfoSeqPrimCol(L"m", L"", 1), Holds(L"x"), L"the property 1 is not a collection"},
      {new CElementInfoSeqUntpdCol(L"m", L"", 1), Ints(L"m", 0, -1), L"the property 1 is not a CElementCol"},
  };
  const Table child(ClassInfo(kSequence, L"m"), {});
  Classes() = {&child};
  for (const auto& [record, initial, fault] : rows) {
    const bool shared = record->GetPropertyIndex() == 0;
    const Table table(ClassInfo(kSequence, L"r"), {record}, {Attribute(L"a", 0, true)}, {{}, initial});
    CCarefulClass object(table, 2);
    EXPECT_TEXT(std::wstring(L"(anonymous namespace)::CCarefulClass [") + (shared ? L"@a" : L"m") + L"]: " +
                    (shared ? L"the property 0 is that of [m] too" : fault) + L"\n",
                FaultsOf(object));
  }
}

TEST_F(CheckMetaDataTest, LooksAtAttributesContentAndHeldObjects) {
  const Table child(ClassInfo(kSequence, L"c"), {Prim(L"v", 0)}, {}, {Holds(L"x")});
  Classes() = {&child};
  const Table table(ClassInfo(kSequence, L"r"), {Cls(L"c", 0), new CElementInfoSeqClsCol(L"i", L"", 1, kOwn)},
                    {Attribute(L"a", 2, false), new CAttributeInfoAny(L"any", L"", 3, true, L"##any", L"", nullptr)},
                    {{},
                     [](RkVariant& value) { value.SetXmlCollection(new CTableCol(L"i", L"", 0, -1, CreateClass, 0)); },
                     Holds(L"x")});
  CTableClass item(child);
  item.AddRef();  // as if it lay on the heap
  {
    CCarefulClass object(table, 4);
    dynamic_cast<CTableCol&>(*object[1].GetXmlCollection()).Add(&item);
    const std::wstring inChild = L"RkXmlTest::CTableClass [v]: the property 0 is string where the record says int\n";
    const std::wstring here = L"(anonymous namespace)::CCarefulClass ";
    EXPECT_TEXT(inChild + here + L"[i]: the collection holds an object on the stack\n" + inChild + here +
                    L"[@a]: the property 2 is string where the record says int\n" + here +
                    L"[@any]: the collection has not been created\n",
                FaultsOf(object));
  }
}

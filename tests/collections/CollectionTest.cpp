#include "RkXmlLib16/collections/Collection.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/collections/ValueCollections.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/io/TextStream.h"
#include "RkXmlLib16/wildcards/AttributeCol.h"
#include "RkXmlLib16/wildcards/Element.h"
#include "RkXmlLib16/wildcards/ElementCol.h"
#include "RkXmlLib16/xml/XmlTextWriter.h"

using namespace RkXmlTest;

namespace {

class CItem : public CElement {
 public:
  explicit CItem(wchar_t label) : m_label(label) { ++live; }
  ~CItem() override { --live; }
  wchar_t m_label;
  static inline int live = 0;
};

wchar_t LabelOf(const void* item) { return item != nullptr ? static_cast<const CItem*>(item)->m_label : L'0'; }

class CItemCol : public CXmlCollection {
 public:
  CItemCol(int minOccurs, int maxOccurs) : CXmlCollection(L"item", L"urn:i", minOccurs, maxOccurs) {}
  void ToXml_Int(CXmlWriter*, bool, const wchar_t*, const CSerializationContext&, bool) const override {}
  CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* first, const CSerializationContext&, bool) override {
    return first;
  }
  std::wstring Labels() const {
    std::wstring labels, backwards;
    for (CNode* node = GetFirstNode(); node != nullptr; node = node->GetNext()) labels += LabelOf(node->GetItem());
    for (CNode* node = GetLastNode(); node != nullptr; node = node->GetPrevious())
      backwards += LabelOf(node->GetItem());
    EXPECT_EQ(labels, std::wstring(backwards.rbegin(), backwards.rend()));
    EXPECT_EQ(labels.size(), static_cast<std::size_t>(GetCount()));
    return labels;
  }
};

// Notes each notification as a word; `react` runs after that.
class CListener : public IEventSink {
 public:
  explicit CListener(std::wstring& log, std::wstring name = L"") : m_log(log), m_name(std::move(name)) {}
  void OnEvent(CXmlObjectBase* source, MsgType type, void* data) override {
    static constexpr const wchar_t* kWords[] = {L"change", L"adding", L"added", L"removing", L"removed"};
    m_log += m_name + kWords[type];
    if (type == MsgType_ItemAdding || type == MsgType_ItemAdded) {
      m_log += LabelOf(data);
    } else if (data != nullptr) {
      m_log += std::to_wstring(*static_cast<int*>(data));
    }
    m_log += L' ';
    m_source = source;
    if (react) react(type);
  }

  std::function<void(MsgType)> react;
  CXmlObjectBase* m_source = nullptr;

 private:
  std::wstring& m_log;
  std::wstring m_name;
};

class Collection : public testing::Test {
 protected:
  void TearDown() override {
    col.Clear();
    EXPECT_EQ(0, CItem::live);
  }
  static CItem* New(wchar_t label) { return new CItem(label); }

  CItemCol col{0, -1};
  std::wstring log;
};

TEST_F(Collection, IsWalkedAsAStandardRangeWithoutItsNullItems) {
  for (const wchar_t label : {L'0', L'a', L'0', L'0', L'b', L'c', L'0'})
    col.AppendItem(label == L'0' ? nullptr : New(label));
  std::wstring labels;
  for (CXmlObjectBase& item : col) labels += LabelOf(&item);
  EXPECT_TEXT(L"abc", labels);
  const auto isC = [](const CXmlObjectBase& item) { return LabelOf(&item) == L'c'; };
  EXPECT_EQ(2, std::distance(col.begin(), std::find_if(col.begin(), col.end(), isC)));
  col.Clear();
  col.AppendItem(nullptr);
  EXPECT_TRUE(col.begin() == col.end());

  CElementCol elements;
  elements.Add(new CElement);
  elements.Item(0)->SetElementName(L"e");
  for (CElement& element : elements) EXPECT_TEXT(L"e", element.GetElementName());
  CAttributeCol attributes;
  attributes.Add(L"n", L"v");
  for (const CAttribute& attribute : attributes) EXPECT_TEXT(L"v", attribute.GetValue());
}

TEST_F(Collection, InsertsWhereAskedAndHoldsOneReference) {
  CItem* const b = New(L'b');
  col.AppendItem(b);
  EXPECT_EQ(1, b->GetRefCount());
  col.PrependItem(New(L'a'));
  col.AddItemAt(2, New(L'd'));
  col.AddItemAt(2, nullptr);
  col.AddAfterItem(b, New(L'c'));
  col.AddAfterItem(nullptr, New(L'<'));
  col.AddBeforeItem(b, New(L'B'));
  col.AddBeforeItem(nullptr, New(L'>'));
  EXPECT_TEXT(L"<aBbc0d>", col.Labels());
  col.Remove(3);
  EXPECT_TEXT(L"<aBc0d>", col.Labels());
  EXPECT_EQ(6, CItem::live);
}

TEST_F(Collection, RefusesBadPositionsAndStaysAsItWas) {
  CItem loose(L'x');  // on the stack: a failed insertion may not take a reference
  for (const wchar_t label : {L'a', L'b', L'c'}) col.AppendItem(New(label));
  EXPECT_THROWS(CRkInvalidParamException, L"Index out of range", col.AddItemAt(-1, &loose));
  EXPECT_THROWS(CRkInvalidParamException, L"Index out of range", col.AddItemAt(4, &loose));
  EXPECT_THROWS(CRkInvalidParamException, L"Index 3 is out of range, use 0 - 3", col.GetNodeAtIndex(3));
  EXPECT_THROWS(CRkInvalidParamException, L"Index -1 is out of range, use 0 - 3", col.Remove(-1));
  const wchar_t* const notFound = L"The object was not found in the collection";
  EXPECT_THROWS(CRkInvalidParamException, notFound, col.GetNodeForItem(&loose));
  EXPECT_THROWS(CRkInvalidParamException, notFound, col.RemoveNode(nullptr));
  CListener listener(log);
  col.AddEventListener(&listener);
  EXPECT_THROWS(CRkInvalidParamException, L"Index out of range", col.AddItemAt(9, &loose));
  EXPECT_TEXT(L"", log);
  EXPECT_THROWS(CRkInvalidParamException, notFound, col.AddAfterItem(&loose, &loose));
  EXPECT_TEXT(L"addingx ", log);
  EXPECT_TEXT(L"abc", col.Labels());
  col.RemoveEventListener(&listener);
}

TEST_F(Collection, NotifiesInOrder) {
  CListener listener(log);
  col.AddEventListener(&listener);
  const Rows<Wide, std::function<void()>> kRows = {
      {L"addinga addeda change ", [&] { col.AppendItem(New(L'a')); }},
      {L"addingb addedb change ", [&] { col.PrependItem(New(L'b')); }},
      {L"addingc addedc change ", [&] { col.AddItemAt(1, New(L'c')); }},
      {L"adding0 added0 change ", [&] { col.AddBeforeItem(nullptr, nullptr); }},
      {L"removing removed change ", [&] { col.Remove(2); }},
      {L"removing removed change removing removed change removing removed change ", [&] { col.Clear(); }},
      {L"removing7 ", [&] { col.FireOnCollectionRemove(7); }},
      {L"removed0 ", [&] { col.FireOnCollectionRemoveComplete(0); }},
  };
  for (const auto& [expected, change] : kRows) {
    log.clear();
    change();
    EXPECT_TEXT(expected, log);
  }
  EXPECT_EQ(&col, listener.m_source);
  col.RemoveEventListener(&listener);
}

TEST_F(Collection, ListenersMayJoinAndLeaveDuringANotification) {
  CListener first(log, L"1"), second(log, L"2"), third(log, L"3");
  for (IEventSink* sink : {&first, &second, &first}) col.AddEventListener(sink);
  second.react = [&](IEventSink::MsgType) {
    col.RemoveEventListener(&first);  // both places
    col.RemoveEventListener(&second);
    col.AddEventListener(&third);
  };
  col.FireOnCollectionChange();
  EXPECT_TEXT(L"1change 2change 3change ", log);
  log.clear();
  col.FireOnCollectionChange();
  EXPECT_TEXT(L"3change ", log);
  col.RemoveEventListener(&third);
}

TEST_F(Collection, ListenersMayChangeTheCollectionDuringANotification) {
  CListener listener(log);
  col.AddEventListener(&listener);
  for (const wchar_t label : {L'a', L'b', L'c'}) col.AppendItem(New(label));

  bool busy = false;
  const auto once = [&busy](const std::function<void()>& change) {
    return [&busy, change](IEventSink::MsgType) {
      if (busy) return;
      busy = true;
      change();
      busy = false;
    };
  };
  listener.react = once([&] { col.Remove(0); });  // the very node whose removal is announced
  col.Remove(0);
  EXPECT_TEXT(L"bc", col.Labels());
  listener.react = once([&] { col.Clear(); });  // the index is no longer there when the item would be inserted
  CItem loose(L'x');
  EXPECT_THROWS(CRkInvalidParamException, L"Index out of range", col.AddItemAt(2, &loose));
  listener.react = [&](IEventSink::MsgType type) {
    if (type == IEventSink::MsgType_ItemAdded) col.Remove(0);  // the item goes before the notifications end
  };
  col.AppendItem(New(L'd'));
  EXPECT_EQ(0, col.GetCount());
  col.RemoveEventListener(&listener);
}

TEST_F(Collection, DestructionIsSilentAndReleasesTheItems) {
  CListener listener(log);
  const CSmartPtr<CItem> kept(New(L'k'));
  {
    CItemCol local(0, -1);
    local.AppendItem(kept.Get());
    local.AppendItem(New(L'l'));
    local.AddEventListener(&listener);
  }
  EXPECT_TEXT(L"", log);
  EXPECT_EQ(1, CItem::live);
  EXPECT_EQ(1, kept->GetRefCount());
}

TEST_F(Collection, ReadingByIndexFollowsEveryChange) {
  std::vector<int> model;
  unsigned random = 1;
  for (int step = 0; step < 2000; ++step) {
    random = random * 1103515245 + 12345;
    const int size = static_cast<int>(model.size());
    const int at = static_cast<int>(random >> 8) % (size + 1);
    if (random % 3 != 0 || at == size) {
      col.AddItemAt(at, New(static_cast<wchar_t>(step)));
      model.insert(model.begin() + at, step);
    } else {
      col.Remove(at);
      model.erase(model.begin() + at);
    }
    for (int i : {at, at / 2, static_cast<int>(model.size()) - 1}) {
      if (i < 0 || i >= static_cast<int>(model.size())) continue;
      ASSERT_EQ(model[static_cast<std::size_t>(i)], LabelOf(col.GetNodeAtIndex(i)->GetItem()));
    }
  }
}

TEST(CollectionCount, LimitsAreTestedMaximumFirst) {
  EXPECT_THROWS(
      CRkException,
      L"CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic error)",
      CItemCol(0, -1).GetTargetNamespace());
  CSerializationContext lenient;
  lenient.SetIgnoreInvalidCollectionCounts(true);
  const Rows<int, int, int, Wide> kRows = {
      {1, -1, 0, L"The Minimum number of [item] elements allowed in this collection is 1"},
      {1, -1, 100, nullptr},
      {0, 2, 3, L"The Maximum number of [item] elements allowed in this collection is 2"},
      {5, 2, 3, L"The Maximum number of [item] elements allowed in this collection is 2"},
      {2, 2, 2, nullptr},
      {0, 0, 0, nullptr},
  };
  for (const auto& [minOccurs, maxOccurs, count, error] : kRows) {
    CItemCol col(minOccurs, maxOccurs);
    for (int i = 0; i < count; ++i) col.AppendItem(nullptr);
    EXPECT_EQ(error == nullptr, col.IsValidCount(GetDefaultContext()));
    if (error != nullptr)
      EXPECT_THROWS(CRkValidationException, error, col.ValidateCount(GetDefaultContext()));
    else
      col.ValidateCount(GetDefaultContext());
    EXPECT_TRUE(col.IsValidCount(lenient));
    col.ValidateCount(lenient);
  }
}

// Under AddressSanitizer these tell whether memory is used after it was freed.
TEST(CollectionMisuse, ListenersMayReleaseTheCollection) {
  using Change = std::function<void(CItemCol&)>;
  const Change changes[] = {
      [](CItemCol& col) { col.AppendItem(new CItem(L'x')); },
      [](CItemCol& col) { col.PrependItem(nullptr); },
      [](CItemCol& col) { col.AddItemAt(1, nullptr); },
      [](CItemCol& col) { col.AddAfterItem(nullptr, nullptr); },
      [](CItemCol& col) { col.AddBeforeItem(nullptr, nullptr); },
      [](CItemCol& col) { col.Remove(0); },
      [](CItemCol& col) { col.Clear(); },
  };
  std::wstring log;
  for (const Change& change : changes) {
    for (const auto when : {IEventSink::MsgType_ItemAdding, IEventSink::MsgType_ItemAdded,
                            IEventSink::MsgType_ItemRemoving, IEventSink::MsgType_CollectionChanged}) {
      auto* const col = new CItemCol(0, -1);
      CSmartPtr<CItemCol> owner(col);
      col->AppendItem(new CItem(L'a'));
      CListener first(log), second(log);
      first.react = [&](IEventSink::MsgType type) {
        if (type == when) owner = nullptr;
      };
      col->AddEventListener(&first);
      col->AddEventListener(&second);
      change(*col);
    }
  }
  CSmartPtr<Ci4Col> numbers(new Ci4Col(L"n", L"", 0, -1, nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1, -1,
                                       -1, CWhitespaceUtils::collapse, nullptr));
  CListener releasing(log);
  numbers->Add(1);
  Ci4Col* const borrowed = numbers.Get();
  borrowed->AddEventListener(&releasing);
  releasing.react = [&](IEventSink::MsgType) { numbers = nullptr; };
  borrowed->Clear();
  EXPECT_EQ(0, CItem::live);
}

// An item whose getters change the collection that it is written from.
TEST(CollectionMisuse, ItemsMayChangeTheCollectionWhileItIsWritten) {
  class CRestless : public CElement {
   public:
    CRestless(const wchar_t* name, CElementCol& col, std::function<void(CElementCol&)> act)
        : CElement(name), m_col(col), m_act(std::move(act)) {}
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const wchar_t* uri, const CSerializationContext& context,
                   bool isOptional) const override {
      m_act(m_col);
      CElement::ToXml_Int(writer, isRoot, uri, context, isOptional);
    }

   private:
    CElementCol& m_col;
    std::function<void(CElementCol&)> m_act;
  };
  const Rows<std::function<void(CElementCol&)>, Wide> rows = {
      {[](CElementCol& col) { col.Remove(0); }, L"<r><x/><a/><b/></r>"},
      {[](CElementCol& col) { col.Remove(1); }, L"<r><x/><b/></r>"},
      {[](CElementCol& col) { col.Clear(); }, L"<r><x/></r>"},
      {[](CElementCol& col) { col.Add(new CElement(L"c")); }, L"<r><x/><a/><b/><c/></r>"},
  };
  for (const auto& [act, written] : rows) {
    CElementCol col(L"", L"", 0, -1, L"##any", L"");
    col.Add(new CRestless(L"x", col, act));
    col.Add(new CElement(L"a"));
    col.Add(new CElement(L"b"));
    CTextStream stream;
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(false);
    writer.WriteStartElement(L"r", L"");
    col.ToXml_Int(&writer, false, L"", GetDefaultContext(), false);
    writer.WriteEndElement();
    EXPECT_TEXT(written, stream.ToString());
    writer.Close();
  }
}

}  // namespace

// The classes that rkxml makes of the examples' schemas while this program is built.
#include <gtest/gtest.h>

#include "Differential.h"
#include "constructs.h"
#include "gpx.h"
#include "order.h"
#include "other.h"
#include "support/Cases.h"

namespace RkXmlSchema {
namespace {

using namespace RkXmlLib16;
namespace fs = std::filesystem;
using RkXmlTest::ReadFile;

const fs::path kExamples = RKXML_EXAMPLES;

template <class Action>
std::string FailureOf(Action&& action) {
  try {
    action();
  } catch (const CRkException& e) {
    return e.what();
  }
  return "";
}

// Beginning and end of a long document.
std::string Shortened(std::string text, const std::string& last) {
  const std::size_t end = text.rfind(last);
  std::size_t keep = 0;
  for (int i = 0; i < 6; ++i) keep = text.find(last, keep + 1);
  return text.substr(0, keep) + text.substr(end);
}

TEST(GeneratedTest, MakesTheSameOfDocumentsAsObjectsWithoutClasses) {
  int count = 0;
  const CDifferential orders({kExamples / "order/order.xsd"}, order::kSchema);
  EXPECT_EQ(orders.CompareVariants(ReadFile(kExamples / "data/order.xml"), count), L"");
  EXPECT_GT(count, 300);
  const CDifferential tracks({kExamples / "gpx/gpx.xsd"}, GPX_1_1::kSchema);
  const std::string track = ReadFile(kExamples / "data/track.gpx");
  EXPECT_EQ(tracks.Compare(track), L"");
  EXPECT_EQ(tracks.CompareVariants(Shortened(track, "<trkpt"), count), L"");
  EXPECT_GT(count, 300);
}

TEST(GeneratedTest, SaysTheSameOfEveryConstruct) {
  int count = 0;
  const CDifferential both({fs::path(RKXML_FOLDER) / "constructs.xsd"}, constructs::kSchema);
  EXPECT_EQ(both.CompareVariants(ReadFile(fs::path(RKXML_FOLDER) / "constructs.xml"), count), L"");
  EXPECT_GT(count, 300);
  for (const std::string& document : RkXmlTest::ReadLines(fs::path(RKXML_FOLDER) / "documents.txt"))
    EXPECT_EQ(both.Compare(document), L"") << document;
  // Names with prefixes of the document's own, defaults, blocked types.
  const std::string whole = ReadFile(fs::path(RKXML_FOLDER) / "constructs.xml");
  for (const char* parts :
       {"<t:blocked xsi:type='t:cheap'>1</t:blocked>", "<t:free xsi:type='t:cheap'>1</t:free>",
        "<t:unextended xsi:type='t:sizes'>1 2</t:unextended>", "<t:unextended xsi:type='t:upper'/>",
        "<t:unextended xsi:type='t:lowest'/>", "<t:fixedName xmlns:y='urn:test:constructs'>y:name</t:fixedName>",
        "<t:fixedName>q:name</t:fixedName>", "<t:mark/>", "<t:mark>kStringValues</t:mark>"}) {
    std::string document = whole;
    EXPECT_EQ(both.Compare(document.insert(document.rfind("</"), parts)), L"") << parts;
  }
}

TEST(GeneratedTest, ResolvesNames) {
  const auto root = constructs::NewRoot();
  root->SetNamespace_(CBinaryData());  // not GetNamespace of every object
  root->SetListAttribute(L"1");
  root->SetList(L"1 2 3");
  root->GetOrAddTextWith_value()->SetValue(CDecimal(L"1.5"));
  EXPECT_EQ(constructs::EWordFromText(L"2.0"), constructs::EWord::v2_0);
  EXPECT_EQ(constructs::EWordFromText(L"int"), constructs::EWord::int_);
  EXPECT_EQ(constructs::EWordFromText(L"EOF"), constructs::EWord::EOF_);
  EXPECT_NE(constructs::EWordFromText(L"+"), constructs::EWordFromText(L"-"));
  // The type of one enumeration in a restriction is another one of the same name.
  const auto large = other::NewLarge();
  large->SetLevel(constructs::ELevel::low);
  large->SetSizeAttribute(other::ESize::L);
  EXPECT_FALSE(large->HasSize());
  const auto upper = constructs::NewUpper();
  upper->SetLevel(constructs::ELevel::u01f600a);
  EXPECT_NE(upper->ToXmlUtf8(false).find(" level=\"\U0001F600a\""), std::string::npos);
  constructs::CBase* const narrow = root->GetOrAddNarrow();
  narrow->SetX(L"kept by the base");
  EXPECT_TRUE(narrow->HasX());
}

TEST(GeneratedTest, GuardsItsMembers) {
  const auto order = order::NewOrder();
  EXPECT_EQ(FailureOf([&] { order->SetId(L"7"); }).substr(0, 24), "Invalid Value for id [7]");
  EXPECT_FALSE(order->HasId());
  EXPECT_EQ(order->GetCurrency(), order::ECurrencyType::EUR);
  EXPECT_NE(FailureOf([&] { order->SetCurrency(static_cast<order::ECurrencyType>(3)); }), "");
  EXPECT_EQ(order->GetCurrency(), order::ECurrencyType::EUR);
  order->SetId(L"RK-1");
  EXPECT_EQ(FailureOf([&] { order->ToXml(); }), "/order: The Property [customer] is mandatory, it may not be NULL");
  order->ClearId();
  EXPECT_NE(FailureOf([&] { order->ToXml(); }).find("The Property [id] is mandatory, it may not be NULL"),
            std::string::npos);

  order::CPaymentType* const payment = order->GetOrAddPayment();
  payment->SetCash(CDecimal(L"5.00"));
  EXPECT_NE(FailureOf([&] { payment->GetOrAddCard(); }).find("The Property [cash] is already set."), std::string::npos);
  EXPECT_EQ(payment->GetCard(), nullptr);
  payment->ClearCash();
  payment->GetOrAddCard()->SetNumber(L"123456789012");
  EXPECT_STREQ(payment->GetSelected(), L"card");
  EXPECT_FALSE(payment->GetCard()->HasExpires());

  const CSmartPtr<order::CPersonType> person(new order::CPersonType);
  order->SetCustomer(person);
  person->SetName(L"Ada");
  EXPECT_EQ(person->GetElementName(), L"customer");
  EXPECT_EQ(order->GetLines(), nullptr);
  order->GetOrAddLines()->GetChoice()->AddNew()->GetOrAddService()->SetName(L"work");
  EXPECT_EQ(order->GetLines()->GetChoice()->GetCount(), 1);
}

TEST(GeneratedTest, MembersThatARestrictionLeavesOutAreNotWritten) {
  const CSmartPtr<constructs::CNarrow> narrow(new constructs::CNarrow);
  narrow->SetX(L"1");
  narrow->GetChild()->AddNew()->SetX(L"2");
  EXPECT_EQ(narrow->GetChild()->GetCount(), 1);
  const std::string xml = narrow->ToXmlUtf8();
  EXPECT_NE(xml.find("1"), std::string::npos);
  EXPECT_EQ(xml.find("child"), std::string::npos);
  narrow->FromXml(xml.c_str());
  EXPECT_EQ(narrow->GetChild()->GetCount(), 0);
}

// A person without its first member, the address.
class CNamedPerson : public order::CPersonType {
 public:
  RkXmlLib16Data::CElementInfo** GetClassElementInfo() const override { return CPersonType::GetClassElementInfo() + 1; }
};

TEST(GeneratedTest, RecordsOfADerivedClassAreWritten) {
  const CSmartPtr<CNamedPerson> person(new CNamedPerson);
  person->SetName(L"Ada");
  person->SetEmail(L"ada@example.org");
  EXPECT_EQ(person->ToXmlUtf8().find("ada@"), std::string::npos);
  EXPECT_NE(person->ToXmlUtf8().find("Ada"), std::string::npos);
}

}  // namespace
}  // namespace RkXmlSchema

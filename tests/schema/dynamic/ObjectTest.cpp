// Objects without classes as a program uses them: properties by name, and what a setter refuses.
#include <gtest/gtest.h>

#include "Documents.h"

namespace RkXmlSchema {
namespace {

using namespace RkXmlLib16;

const CSchemaUnderTest& TheSchema() {
  static const CSchemaUnderTest schema(std::vector<std::filesystem::path>{RKXML_TEST_DATA "/object.xsd"});
  return schema;
}

CSmartPtr<CDynamicObject> New(const wchar_t* element) { return TheSchema().Get().NewDocument({L"urn:t", element}); }

RkVariant Number(long number) {
  RkVariant value;
  value.SetI4(number);
  return value;
}

RkVariant Text(const wchar_t* text) {
  RkVariant value;
  value.SetString(text);
  return value;
}

TEST(DynamicObject, PropertiesAreSetAndReadByName) {
  const auto r = New(L"r");
  EXPECT_EQ(r->GetDeclaration()->name.localName, L"r");
  EXPECT_EQ(r->Get(L"@a").GetI4(), 7);
  EXPECT_TRUE(r->Get(L"day").IsNil());
  for (const wchar_t* unset : {L"n", L"c", L"item", L"items"}) EXPECT_FALSE(r->Get(unset).IsValid());
  r->Set(L"n", Number(3));
  r->Set(L"c", Text(L"blue"));
  r->Set(L"d", Text(L"1.50"));  // of another type: by its text
  r->Set(L"@a", RkVariant());
  const auto item = r->GetOrCreateObject(L"item");
  EXPECT_EQ(static_cast<CDynamicObject*>(item.Get())->GetDeclaration()->name.localName, L"item");
  static_cast<CDynamicObject*>(item.Get())->Set(L"n", Number(1));
  const auto items = r->GetCollection(L"items");
  auto* const added = static_cast<CDynamicCollection*>(items.Get())->AddNew();
  added->Set(L"n", Number(2));
  EXPECT_EQ(added->GetDeclaration()->name.localName, L"items");
  EXPECT_EQ(r->Get(L"d").GetDecimal().ToString(), L"1.5");
  EXPECT_EQ(r->ToXml(false, false),
            L"<AA:r xmlns:AA=\"urn:t\"><AA:n>3</AA:n><AA:c>blue</AA:c><AA:d>1.5</AA:d><AA:item><AA:n>1</AA:n></AA:item>"
            L"<AA:items><AA:n>2</AA:n></AA:items><AA:day xmlns:AB=\"http://www.w3.org/2001/XMLSchema-instance\" "
            L"AB:nil=\"true\"/></AA:r>");
  CSerializationContext withoutDefaults;
  withoutDefaults.SetNoOptionalAttributeDefaultOutput(true);
  for (const long a : {7L, 8L}) {
    r->Set(L"@a", Number(a));
    EXPECT_NE(r->ToXml(false, false).find(L" a=\"" + std::to_wstring(a)), std::wstring::npos);
    EXPECT_EQ(r->ToXml(false, false, EOLType_LF, withoutDefaults).find(L" a=\"8\"") != std::wstring::npos, a == 8);
  }
  r->Set(L"item", RkVariant());
  EXPECT_EQ(r->Get(L"item").GetXmlObject(), nullptr);
}

TEST(DynamicObject, ASetterLeavesTheObjectAsItWasWhenItRefuses) {
  const auto r = New(L"r");
  r->Set(L"n", Number(3));
  r->Set(L"c", Text(L"red"));
  RkVariant object;
  object.SetXmlObject(CSmartPtr<CElement>(new CElement(L"e")));
  EXPECT_THROW(r->Set(L"n", Number(10)), CRkException);
  EXPECT_THROW(r->Set(L"c", Text(L"green")), CRkInvalidValueException);
  EXPECT_THROW(r->Set(L"n", object), CRkInvalidParamException);
  EXPECT_THROW(r->Set(L"item", object), CRkInvalidParamException);
  EXPECT_THROW(r->Set(L"item", Number(1)), CRkInvalidParamException);
  EXPECT_THROW(r->Set(L"items", object), CRkInvalidParamException);
  EXPECT_THROW(r->Set(L"none", Number(1)), CRkInvalidParamException);
  EXPECT_THROW(r->Get(L"none"), CRkInvalidParamException);
  EXPECT_EQ(r->Get(L"n").GetI4(), 3);
  EXPECT_EQ(r->Get(L"c").GetString(), L"red");
}

TEST(DynamicObject, OneMemberOfAChoice) {
  CSmartPtr<CXmlCollectionBase> kept;
  {
    const auto either = New(L"either");
    kept = either->GetCollection(L"y");
    auto& ys = static_cast<Ci4Col&>(*kept);
    ys.Add(1);
    EXPECT_THROW(either->Set(L"x", Number(1)), CRkInvalidStateException);
    ys.Remove(0);
    either->Set(L"x", Number(1));
    EXPECT_THROW(ys.Add(2), CRkInvalidStateException);
    const auto other = New(L"either");
    static_cast<Ci4Col&>(*other->GetCollection(L"y")).Add(1);
    EXPECT_THROW(either->Set(L"y", other->Get(L"y")), CRkInvalidStateException);
    EXPECT_EQ(either->GetSelected(), std::wstring_view(L"x"));
  }
  EXPECT_NO_THROW(static_cast<Ci4Col&>(*kept).Add(3)) << "the object is gone";
}

TEST(DynamicObject, ManyPropertiesAndMixedText) {
  const auto many = New(L"many");
  for (const int i : {299, 0, 64, 65, 128, 63}) many->Set((L"e" + std::to_wstring(i)).c_str(), Number(i));
  many->Set(L"e65", RkVariant());
  EXPECT_EQ(many->ToXml(false, false),
            L"<AA:many xmlns:AA=\"urn:t\"><AA:e0>0</AA:e0><AA:e63>63</AA:e63><AA:e64>64</AA:e64><AA:e128>128</AA:e128>"
            L"<AA:e299>299</AA:e299></AA:many>");
  const auto text = New(L"text");
  EXPECT_EQ(text->Get(L"#text").GetString(), L"");
  EXPECT_EQ(text->ToXml(false, false), L"<AA:text xmlns:AA=\"urn:t\"/>");
}

}  // namespace
}  // namespace RkXmlSchema

#include "RkXmlLib16/object/Variant.h"
#include "RkXmlLib16/types/Conversions.h"

#include <malloc.h>

#include <utility>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/wildcards/Element.h"

using namespace RkXmlTest;

namespace {

// An object that tells when it goes.
class CProbe : public CElement {
 public:
  ~CProbe() override { gone = true; }
  static inline bool gone = false;
};

const Rows<ItemType, Wide, std::wstring> kKinds = {
    {ItemType_hexBinary, L"hexBinary", L"00AB"},
    {ItemType_base64Binary, L"base64Binary", L"TWFu"},
    {ItemType_byte, L"i1", L"-128"},
    {ItemType_short, L"i2", L"-32768"},
    {ItemType_int, L"i4", L"3000000000"},
    {ItemType_long, L"i8", L"-9223372036854775808"},
    {ItemType_unsignedByte, L"ui1", L"255"},
    {ItemType_unsignedShort, L"ui2", L"65535"},
    {ItemType_unsignedInt, L"ui4", L"4294967296"},
    {ItemType_unsignedLong, L"ui8", L"18446744073709551615"},
    {ItemType_float, L"r4", L"0.1"},
    {ItemType_double, L"r8", L"0.1"},
    {ItemType_duration, L"duration", L"P1Y2M3DT4H5M6.5S"},
    {ItemType_gYearMonth, L"yearMonth", L"2024-02"},
    {ItemType_gMonthDay, L"monthDay", L"--02-29"},
    {ItemType_gYear, L"year", L"2024"},
    {ItemType_gMonth, L"month", L"--05"},
    {ItemType_gDay, L"day", L"---07"},
    {ItemType_date, L"date", L"2024-02-29Z"},
    {ItemType_dateTime, L"datetime", L"2024-02-29T01:02:03.5-05:30"},
    {ItemType_time, L"time", L"01:02:03"},
    {ItemType_char, L"char", L"\U0001F600"},
    {ItemType_string, L"string", L"  some text, longer than a short string  "},
    {ItemType_boolean, L"boolean", L"true"},
    {ItemType_decimal, L"decimal", L"-123456789012345678901234567890.05"},
    {ItemType_integer, L"integer", L"-123456789012345678901234567890"},
};

}  // namespace

TEST(Variant, EveryKindRoundTripsThroughTextCopiesAndMoves) {
  RkVariant reused;
  for (const auto& [type, name, text] : kKinds) {
    reused.FromString(text, type);
    EXPECT_EQ(type, reused.GetItemType());
    EXPECT_TEXT(name, reused.GetType());
    EXPECT_TEXT(text, reused.ToString());
    for (const auto& [otherType, otherName, otherText] : kKinds) {
      RkVariant target;
      target.FromString(otherText, otherType);
      target = reused;
      ASSERT_EQ(text, target.ToString());
      RkVariant moved(std::move(target));
      ASSERT_EQ(text, moved.ToString());
      target = std::move(moved);
      target.FromString(target.ToString());  // by the current type
      ASSERT_EQ(text, target.ToString());
      target.SetUnused();
      EXPECT_FALSE(target.IsValid());
      target.FromString(otherText, otherType);
      ASSERT_EQ(otherText, RkVariant(target).ToString()) << "after " << text;
      target.FromString(text, type);  // the kind before it was unused
      ASSERT_EQ(text, target.ToString()) << "after " << otherText;
    }
    std::wstring scratch;
    TextSpace space(scratch);
    EXPECT_TEXT(text, reused.GetText(space));
    // Nil keeps the type, and the next value ends it.
    reused.SetNil();
    EXPECT_TRUE(reused.IsNil() && reused.IsValid());
    EXPECT_TEXT(name, reused.GetType());
    reused.FromString(text);
    EXPECT_FALSE(reused.IsNil());
    EXPECT_TEXT(text, reused.ToString());
  }
}

TEST(Variant, StartsInvalidAndTellsWrongTypes) {
  RkVariant v;
  EXPECT_FALSE(v.IsValid());
  EXPECT_THROWS(CRkException, L"Invalid Type 0", v.GetType());
  EXPECT_THROWS(CRkException, L"Invalid Type 0 to convert to string", v.ToString());
  EXPECT_THROWS(CRkException, L"Invalid Type 0 to convert to string", v.FromString(L"1"));
  EXPECT_THROWS(CRkException, L"Invalid Type 30 to convert to string", v.FromString(L"1", static_cast<ItemType>(30)));
  v.SetNil();
  EXPECT_TRUE(v.IsValid() && v.IsNil());
  EXPECT_EQ(ItemType_none, v.GetItemType());
  v.SetI4(42);
  EXPECT_FALSE(v.IsNil());
  EXPECT_THROWS(CRkException, L"Invalid Type 5", v.GetI8());
  EXPECT_THROWS(CRkException, L"Invalid Type 5", v.GetString());
  EXPECT_EQ(nullptr, v.GetXmlObject().Get());
  v.SetDecimal(CDecimal(L"1.5"));
  v.SetNil();
  EXPECT_TEXT(L"0", v.GetDecimal().ToString());
  v.SetInvalid();
  EXPECT_FALSE(v.IsValid());
}

TEST(Variant, FormatsReachNumbersOnly) {
  RkVariant v;
  v.SetR8(2.5);
  EXPECT_TEXT(L"2.50", v.ToString(L"%.2f"));
  v.SetDecimal(CDecimal(L"2.5"));
  EXPECT_TEXT(L"2.50", v.ToString(L"%.2f"));
  EXPECT_TEXT(L"2.5", v.ToString(L"G"));
  v.SetDate(CDateTime(2024, 2, 29));
  EXPECT_TEXT(L"2024-02-29", v.ToString(L"yyyy"));
}

TEST(Variant, CountsTheObjectItHolds) {
  auto* const object = new CProbe;
  RkVariant v;
  v.SetXmlObject(object);
  EXPECT_THROWS(CRkException, L"Invalid Type 27", v.GetType());
  EXPECT_THROWS(CRkException, L"Invalid Type 27 to convert to string", v.ToString());
  EXPECT_EQ(1, object->GetRefCount());
  {
    RkVariant copy(v);
    EXPECT_EQ(2, object->GetRefCount());
    copy = v;
    EXPECT_EQ(2, object->GetRefCount());
    RkVariant moved(std::move(copy));
    EXPECT_EQ(2, object->GetRefCount());
    EXPECT_EQ(object, moved.GetXmlObject().Get());
    moved.SetI4(1);
    EXPECT_EQ(1, object->GetRefCount());
  }
  v = *&v;
  v.SetXmlObject(object);  // the only reference is not lost on the way
  EXPECT_FALSE(CProbe::gone);
  v.SetXmlObject(nullptr);
  EXPECT_TRUE(CProbe::gone);
  EXPECT_EQ(nullptr, v.GetXmlObject().Get());
}

TEST(Variant, LetsAnObjectGoWhateverItKeeps) {
  for (const auto& [type, name, text] : kKinds) {
    for (const bool isUnused : {true, false}) {
      CProbe::gone = false;
      RkVariant v;
      v.FromString(text, type);
      v.SetUnused();
      v.SetXmlObject(new CProbe);
      if (isUnused) v.SetUnused();
      v.FromString(text, type);
      EXPECT_TRUE(CProbe::gone) << text;
    }
  }
  RkVariant v;
  v.SetXmlObject(nullptr);
  v.SetUnused();
  EXPECT_FALSE(v.IsValid());
}

TEST(Variant, SharesOctetsWhileTheyAreItsValue) {
  for (const bool isCovered : {false, true}) {
    unsigned char bytes[] = {1, 2, 3};
    CBinaryData octets(bytes, 3, /*copy=*/true);
    const unsigned char* const own = std::as_const(octets).GetData();
    RkVariant v;
    v.SetDecimal(CDecimal(L"1"));
    v.SetUnused();
    v.SetHexBinary(octets);
    if (isCovered) v.SetDecimal(CDecimal(L"2"));
    v.SetUnused();
    octets[0] = 9;
    EXPECT_EQ(own, std::as_const(octets).GetData());  // shared ones would have been copied
  }
}

TEST(Variant, CopiesTakeNothingButTheValue) {
  RkVariant v;
  v.SetString(std::wstring(1000, L's'));
  v.SetUnused();
  v.FromString(std::wstring(2000, L'7'), ItemType_decimal);
  v.SetUnused();
  v.SetI4(1);
  const std::size_t before = mallinfo2().uordblks;
  const std::vector<RkVariant> copies(100, v);
  const RkVariant moved(std::move(v));
  EXPECT_GT(100 * sizeof(RkVariant) + 1000, mallinfo2().uordblks - before);
  EXPECT_TEXT(L"1", copies.back().ToString());
  EXPECT_TEXT(L"1", moved.ToString());
}

TEST(Variant, TakesItsOwnValueAgain) {
  RkVariant v;
  v.SetString(L"a text that is longer than a short string");
  v.SetString(v.GetString());
  v.SetString(std::wstring_view(v.GetString()).substr(2, 4));
  EXPECT_TEXT(L"text", v.GetString());
  v.SetString(std::move(const_cast<std::wstring&>(v.GetString())));
  EXPECT_TEXT(L"text", v.GetString());
  v.SetDate(CDateTime(2024, 2, 29));
  v.SetDateTime(v.GetDate());
  EXPECT_EQ(ItemType_dateTime, v.GetItemType());
  EXPECT_TEXT(L"2024-02-29", v.GetDateTime().ToString());
}

TEST(Variant, AValueThatCannotBeReadLeavesTheOneBefore) {
  const Rows<ItemType, Wide, Wide, Wide> rows = {
      {ItemType_decimal, L"46.630016", L"-7", L"46.63x"},
      {ItemType_decimal, L"46.630016", L"12345678901234567890.5", L"1.2.3"},
      {ItemType_dateTime, L"2024-02-29T23:59:59Z", L"2023-01-01T00:00:00", L"2023-02-29T23:59:59Z"},
      {ItemType_int, L"12", L"-3", L"12x"},
      {ItemType_double, L"0.5", L"-0.25", L"1..5"},
  };
  for (const auto& [type, text, next, malformed] : rows) {
    RkVariant value;
    value.FromString(text, type);
    EXPECT_THROW(value.FromString(malformed, type), CRkInvalidValueException);
    EXPECT_TEXT(text, value.ToString());
    value.SetUnused();
    EXPECT_THROWS(CRkException, L"Unknown WhitespaceRule",
                  value.FromString(next, type, static_cast<CWhitespaceUtils::WhitespaceRule>(7)));
    EXPECT_FALSE(value.IsValid());
    value.SetNil();
    value.FromString(next, type);
    EXPECT_FALSE(value.IsNil());
    EXPECT_TEXT(next, value.ToString());
  }
}

TEST(Variant, ReadsIntoKeptStorageAsIntoAFreshOne) {
  const auto read = [](RkVariant& value, const std::wstring& text, ItemType type) {
    try {
      value.FromString(text, type);
      return value.ToString();
    } catch (const CRkException& e) {
      return L"refused: " + e.GetMessage();
    }
  };
  const std::wstring characters = L"-+019.:TZ ";
  std::vector<std::pair<ItemType, std::wstring>> texts;
  for (std::size_t n = 0; n < 10000; ++n) {
    std::wstring text;
    for (std::size_t rest = n; rest != 0; rest /= 10) text += characters[rest % 10];
    texts.emplace_back(ItemType_decimal, text);
  }
  const std::wstring date = L"2024-02-29T23:59:59.125+01:30";
  for (std::size_t length = 0; length <= date.size(); ++length) {
    for (std::size_t at = 0; at < length; ++at) {
      for (const wchar_t c : characters) {
        std::wstring text = date.substr(0, length);
        text[at] = c;
        texts.emplace_back(ItemType_dateTime, text);
      }
    }
  }
  RkVariant kept;
  for (const auto& [type, text] : texts) {
    kept.FromString(type == ItemType_decimal ? L"46.630016" : L"2000-01-01T00:00:00Z", type);
    kept.SetUnused();
    RkVariant fresh;
    ASSERT_EQ(Narrow(read(fresh, text, type)), Narrow(read(kept, text, type))) << Narrow(text);
  }
}

#include "Expect.h"
#include "RkXmlLib16/core/SerializationContext.h"
#include "RkXmlLib16/json/JsonContext.h"
#include "fixtures/Records.h"

namespace RkXmlTest {
namespace {

constexpr bool kNillable = true;

// Texts that were read hold a character above U+FFFF as a pair, so the text here does too.
// A generated class with an attribute, a text, a nillable number and two collections, of objects and of numbers.
class JsonObjects : public testing::Test {
 protected:
  JsonObjects() {
    Classes() = {&m_item};
    m_object = Read(m_owner,
                    L"<owner id='7'><text/><item><n>0</n></item><item><n>1</n></item><item><n>2</n></item>"
                    L"<v>0</v><v>1</v><v>2</v></owner>");
    (*m_object)[1].SetString(L"a <b> & \u20AC\xD83D\xDE00");
  }
  ~JsonObjects() override { m_object = nullptr; }

  std::wstring ReadBack(const CSerializationContext& context) {
    const CSmartPtr<CTableClass> copy = CTableClass::Create(m_owner);
    copy->FromJson(m_object->ToJson(true, EOLType_LF, context).c_str(), context);
    return Write(*copy);
  }

  const Table m_item{ClassInfo(XmlElementGroupType_Sequence, L"item"), {Prim(L"n", 0)}};
  const Table m_owner{
      ClassInfo(XmlElementGroupType_Sequence, L"owner"),
      {Prim(L"text", 1, ItemType_string), Prim<CElementInfoSeqPrimOpt>(L"none", 2, ItemType_int, kNillable),
       new CElementInfoSeqClsCol(L"item", L"", 3, XmlElementType_Element), new CElementInfoSeqPrimCol(L"v", L"", 4)},
      {Attribute(L"id", 0, false)},
      {[](RkVariant&) {}, [](RkVariant&) {}, [](RkVariant&) {},
       [](RkVariant& value) { value.SetXmlCollection(new CTableCol(L"item", L"", 0, -1, CreateClass, 0)); },
       [](RkVariant& value) {
         value.SetXmlCollection(new Ci4Col(L"v", L"", 0, -1, nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1,
                                           -1, -1, CWhitespaceUtils::collapse, nullptr));
       }}};
  CSmartPtr<CTableClass> m_object;
};

TEST_F(JsonObjects, DefaultOutputGivesAnEqualObjectWithoutQuotes) {
  for (const JsonRoundTrip mode : {JsonRoundTrip_Markers, JsonRoundTrip_Namespaces}) {
    CSerializationContext context;
    context.GetJsonContext()->SetSupportRoundtrip(mode);
    EXPECT_WIDE_EQ(Write(*m_object), ReadBack(context));
  }
  EXPECT_WIDE_EQ(
      L"{\"owner\": {\"@id\": 7,\"text\": \"a <b> & \u20AC\xD83D\xDE00\",\"item\": [{\"n\": 0},{\"n\": 1},{\"n\": 2}],"
      L"\"v\": 0,\"v\": 1,\"v\": 2}}",
      m_object->ToJson(false, EOLType_LF, CSerializationContext()));
}

}  // namespace
}  // namespace RkXmlTest

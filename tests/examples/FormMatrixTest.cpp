#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "RkXmlLib16/RkXmlLib16.h"
#include "gpx.h"
#include "order.h"
#include "support/Bytes.h"

#if __has_include(<nlohmann/json.hpp>)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#include <nlohmann/json.hpp>
#pragma GCC diagnostic pop
#endif

using namespace RkXmlLib16;
using RkXmlTest::BytesOf;

namespace {

// One way to write an object and to read it into a new object of its class.
struct RoundTrip {
  const char* name;
  void (*run)(const CXmlObjectBase& from, CXmlObjectBase& to, const CSerializationContext& context);
};

template <CompressionType kCompression, bool kFormatted>
void ByXml(const CXmlObjectBase& from, CXmlObjectBase& to, const CSerializationContext& context) {
  to.FromXmlStream(from.ToXmlStream(true, kFormatted, XmlEncoding_UTF8, EOLType_CRLF, context, kCompression), context);
}

void ByWideXml(const CXmlObjectBase& from, CXmlObjectBase& to, const CSerializationContext& context) {
  CXmlDocument document(context);
  document.LoadXmlWide(from.ToXml(false, true, EOLType_LF, context));
  to.FromXmlElement(document.GetDocumentElement(), context);
}

template <CompressionType kCompression, bool kFormatted>
void ByJson(const CXmlObjectBase& from, CXmlObjectBase& to, const CSerializationContext& context) {
  context.GetJsonContext()->SetStrictOutput(true);
#ifdef NLOHMANN_JSON_VERSION_MAJOR
  EXPECT_TRUE(nlohmann::json::accept(BytesOf(from.ToJsonStream(kFormatted, XmlEncoding_UTF8, EOLType_LF, context))));
#endif
  to.FromJsonStream(from.ToJsonStream(kFormatted, XmlEncoding_UTF8, EOLType_LF, context, kCompression), context);
}

template <CompressionType kCompression, FInfoDecl kDeclaration, bool kTyped>
void ByFastInfoset(const CXmlObjectBase& from, CXmlObjectBase& to, const CSerializationContext& context) {
  if (kTyped) context.GetFIContext()->SetSuggestedValues();
  to.FromXmlStream(from.ToFastInfosetStream(kDeclaration, context, kCompression), context);
}

const RoundTrip kRoundTrips[] = {
    {"XML text", ByXml<CompressionType_None, true>},
    {"compact XML text", ByXml<CompressionType_None, false>},
    {"XML text in gzip", ByXml<CompressionType_GZip, true>},
    {"XML text in zlib", ByXml<CompressionType_ZLib, false>},
    {"wide XML text", ByWideXml},
    {"JSON", ByJson<CompressionType_None, true>},
    {"compact JSON in gzip", ByJson<CompressionType_GZip, false>},
    {"Fast Infoset", ByFastInfoset<CompressionType_None, FInfoDecl_None, false>},
    {"typed Fast Infoset", ByFastInfoset<CompressionType_None, FInfoDecl_Version10, true>},
    {"typed Fast Infoset in zlib", ByFastInfoset<CompressionType_ZLib, FInfoDecl_Version11StandaloneNo, true>},
};

class FormMatrix : public testing::TestWithParam<RoundTrip> {
 protected:
  template <class Root>
  void CheckRoundTrip(const wchar_t* file, void (*change)(Root&) = nullptr) {
    Root from;
    from.FromXmlFile((L"" RKXML_EXAMPLE_DATA + std::wstring(file)).c_str());
    if (change != nullptr) change(from);
    CSerializationContext context;
    context.SetEscapeCDATA(true);
    context.SetDefaultNamespaceURI(from.GetTargetNamespace());
    context.GetNamespaceAliases().Add(L"xsi", L"http://www.w3.org/2001/XMLSchema-instance");
    context.GetNamespaceAliases().Add(L"audit", L"urn:example:audit");
    context.GetNamespaceAliases().Add(L"hike", L"https://example.org/xmlns/hike/1");
    Root to;
    GetParam().run(from, to, context);
    // As bytes, because a character above U+FFFF may be one wide character or two.
    const std::string expected = BytesOf(from.ToXmlStream());
    const std::string actual = BytesOf(to.ToXmlStream());
    const std::size_t at = static_cast<std::size_t>(
        std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end()).first - expected.begin());
    EXPECT_TRUE(expected == actual) << GetParam().name << ", expected ..." << expected.substr(at, 200) << "\nfound ..."
                                    << actual.substr(std::min(at, actual.size()), 200);
  }
};

TEST_P(FormMatrix, ATrackArrivesAsItWas) { CheckRoundTrip<Gpx::CGpxType>(L"/track.gpx"); }

TEST_P(FormMatrix, AnOrderArrivesAsItWas) { CheckRoundTrip<Order::COrderType>(L"/order.xml"); }

TEST_P(FormMatrix, SmallObjectsAndHardTextsArriveAsTheyWere) {
  CheckRoundTrip<Order::COrderType>(L"/order.xml", [](Order::COrderType& order) {
    const CSmartPtr<Order::CPersonType> person(new Order::CPersonType(L"customer"));
    person->SetName(L"\"<&>\\ ]]> \U0001F600 \n end");
    person->SetBorn(CDateTime(1999, 2, 28));
    order.SetCustomer(person);
    order.GetLines()->GetChoice()->Clear();
    Order::CServiceType* const service = order.GetLines()->GetChoice()->AddNew()->GetOrAddService();
    service->SetName(L"<![CDATA[]]><a>");
    service->SetTime(CDateTimeSpan(2, 30, 0));
    service->SetPrice(CDecimal(L"0.05"));
    order.GetPayment()->SetCard(nullptr);
    order.GetPayment()->SetCash(CDecimal(L"0.05"));
    order.SetDueNil();
    order.GetNote()->Clear();
    order.SetAnyElement(nullptr);
  });
}

INSTANTIATE_TEST_SUITE_P(RoundTrips, FormMatrix, testing::ValuesIn(kRoundTrips),
                         [](const auto& trip) { return "RoundTrip" + std::to_string(trip.index); });

TEST(Examples, DescribeTheirClassesRight) {
  Gpx::CGpxType track;
  track.FromXmlFile(RKXML_EXAMPLE_DATA "/track.gpx");
  Order::COrderType order;
  order.FromXmlFile(RKXML_EXAMPLE_DATA "/order.xml");
  for (CXmlGeneratedClass* object :
       {static_cast<CXmlGeneratedClass*>(&track), static_cast<CXmlGeneratedClass*>(&order)})
    for (const CMetaDataFault& fault : CheckMetaData(*object)) ADD_FAILURE() << ToUtf8(fault.GetText());
}

}  // namespace

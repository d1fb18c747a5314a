#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/RkXmlLib16.h"
#include "gpx.h"
#include "order.h"
#include "support/Bytes.h"
#include "support/Pieces.h"

using namespace RkXmlTest;

namespace {

const CSerializationContext& Context() {
  static const CSerializationContext context = [] {
    CSerializationContext c;
    c.GetNamespaceAliases().Add(L"g", L"http://www.topografix.com/GPX/1/1");
    c.GetNamespaceAliases().Add(L"o", L"urn:example:order");
    c.GetNamespaceAliases().Add(L"a", L"urn:example:audit");
    c.GetNamespaceAliases().Add(L"h", L"https://example.org/xmlns/hike/1");
    c.GetNamespaceAliases().Add(L"xsi", L"http://www.w3.org/2001/XMLSchema-instance");
    c.GetJsonContext()->SetSupportRoundtrip(JsonRoundTrip_Namespaces);
    c.GetJsonContext()->SetStrictOutput(true);
    c.SetJoinSurrogatePairs(true);
    return c;
  }();
  return context;
}

// Only objects that a parent made know that their type is that of the schema, so nothing is said about it.
std::wstring TextOf(const CXmlObjectBase& object) {
  CSerializationContext context(Context());
  context.SetWriteTypeAttribute(false);
  return object.ToXml(false, false, EOLType_LF, context);
}

// The document in each form.
template <class Root>
std::vector<std::string> FormsOf(const Root& root) {
  return {BytesOf(root.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_CRLF, Context(), CompressionType_None)),
          BytesOf(root.ToXmlStream(false, false, XmlEncoding_UTF8, EOLType_LF, Context(), CompressionType_GZip)),
          BytesOf(root.ToFastInfosetStream(FInfoDecl_None, Context())),
          BytesOf(root.ToFastInfosetStream(FInfoDecl_None, Context(), CompressionType_ZLib)),
          BytesOf(root.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, Context())),
          BytesOf(root.ToJsonStream(false, XmlEncoding_UTF8, EOLType_LF, Context(), CompressionType_GZip))};
}

template <class Object>
void ExpectObjects(const std::vector<std::string>& forms, const wchar_t* path,
                   const std::vector<std::wstring>& expected) {
  for (const std::string& bytes : forms) {
    for (std::size_t slice = 1; slice < 2 * bytes.size(); slice *= 3) {
      std::vector<std::wstring> objects;
      const auto count = ForEachObject<Object>(CSlicedSource(bytes, slice), path, Context(), [&](Object& object) {
        objects.push_back(TextOf(object));
        return true;
      });
      EXPECT_EQ(objects, expected) << slice << bytes.substr(0, 30);
      EXPECT_EQ(count, expected.size());
    }
  }
}

TEST(ObjectStreamTest, GivesTheObjectsOfTheExamplesInEveryForm) {
  Gpx::CGpxType gpx;
  gpx.FromXmlFile(RKXML_EXAMPLE_DATA "/track.gpx", Context());
  std::vector<std::wstring> points;
  for (const Gpx::CTrkType& track : *gpx.GetTrk())
    for (const Gpx::CTrksegType& segment : *track.GetTrkseg())
      for (const Gpx::CWptType& point : *segment.GetTrkpt()) points.push_back(TextOf(point));
  ASSERT_FALSE(points.empty());
  ExpectObjects<Gpx::CWptType>(FormsOf(gpx), L"/g:gpx/g:trk/trkseg/trkpt", points);
  ExpectObjects<Gpx::CMetadataType>(FormsOf(gpx), L"/gpx/metadata", {TextOf(*gpx.GetMetadata())});
  ExpectObjects<Gpx::CGpxType>(FormsOf(gpx), L"/*", {TextOf(gpx)});

  Order::COrderType order;
  order.FromXmlFile(RKXML_EXAMPLE_DATA "/order.xml", Context());
  ExpectObjects<Order::CPaymentType>(FormsOf(order), L"/o:order/payment", {TextOf(*order.GetPayment())});
  ExpectObjects<Order::COrderType>(FormsOf(order), L"/order", {TextOf(order)});
}

constexpr char kTwoKinds[] =
    "<gpx xmlns='http://www.topografix.com/GPX/1/1' version='1.1' creator='me'><metadata><name>n</name></metadata>"
    "<wpt lat='1' lon='2'/><trk><name>first</name><trkseg><trkpt lat='3' lon='4'/></trkseg></trk>"
    "<trk><trkseg><trkpt lat='91' lon='4'/><trkpt lat='5' lon='6'><foo/></trkpt>\n<trkpt lat='7' lon='8'/></trkseg>"
    "</trk></gpx>";

TEST(ObjectStreamTest, ReadsSeveralClassesInOnePassAndStops) {
  CMemorySource source(kTwoKinds, sizeof kTwoKinds - 1);
  CObjectStream stream(source, Context());
  const std::size_t metadata = stream.AddPath<Gpx::CMetadataType>(L"/gpx/metadata");
  const std::size_t points = stream.AddPath<Gpx::CWptType>(L"/gpx/wpt");
  stream.AddPath<Gpx::CWptType>(L"/gpx/trk/trkseg/trkpt");
  ASSERT_TRUE(stream.Next());
  EXPECT_EQ(stream.GetPathNumber(), metadata);
  EXPECT_EQ(stream.Get<Gpx::CMetadataType>().GetName(), L"n");
  EXPECT_EQ(stream.GetElement().GetParentElement()->GetAttribute(L"creator", L""), L"me");
  ASSERT_TRUE(stream.Next());
  EXPECT_EQ(stream.GetPathNumber(), points);
  const CSmartPtr<CXmlObjectBase> kept = &stream.GetObject();
  ASSERT_TRUE(stream.Next());
  EXPECT_EQ(stream.Get<Gpx::CWptType>().GetLat().ToString(), L"3");
  EXPECT_EQ(static_cast<Gpx::CWptType&>(*kept).GetLat().ToString(), L"1");
  EXPECT_THROW(stream.Next(), CRkException);  // the latitude
  EXPECT_FALSE(stream.Next());

  int calls = 0;
  const auto stop = [&](Gpx::CWptType&, const CXmlElement& element) {
    EXPECT_EQ(element.GetLocalName(), L"trkpt");
    return ++calls < 1;
  };
  EXPECT_EQ(ForEachObject<Gpx::CWptType>(CMemorySource(kTwoKinds, sizeof kTwoKinds - 1), L"/gpx/trk/trkseg/trkpt",
                                         Context(), stop),
            1u);
  const auto fail = [](Gpx::CWptType&) { throw std::out_of_range("mine"); };
  EXPECT_THROW(
      ForEachObject<Gpx::CWptType>(CMemorySource(kTwoKinds, sizeof kTwoKinds - 1), L"/gpx/wpt", Context(), fail),
      std::out_of_range);
}

TEST(ObjectStreamTest, GoesOnBehindBadObjectsWithAnErrorHandler) {
  CErrorCollector errors;
  CSerializationContext context(Context());
  context.SetErrorHandler(&errors);
  std::wstring latitudes;
  const auto collect = [&](const Gpx::CWptType& point) { latitudes += point.GetLat().ToString() + L" "; };
  const std::string xml = kTwoKinds;
  ForEachObject<Gpx::CWptType>(CSlicedSource(xml, 3), L"/gpx/trk/trkseg/trkpt", context, collect);
  EXPECT_EQ(latitudes, L"3 7 ");

  // The errors are those of reading it whole, at the same places.
  CErrorCollector whole;
  context.SetErrorHandler(&whole);
  Gpx::CGpxType gpx;
  gpx.FromXml(xml.c_str(), context);
  ASSERT_EQ(errors.GetErrorCount(), whole.GetErrorCount());
  for (std::size_t i = 0; i < errors.GetErrorCount(); ++i)
    EXPECT_EQ(Describe(*errors.GetErrors()[i]), Describe(*whole.GetErrors()[i]));
  EXPECT_EQ(errors.GetErrors()[0]->GetLocation().GetPath(), L"/gpx/trk[2]/trkseg[1]/trkpt[1]/@lat");

  // What is not well-formed ends it.
  errors.Clear();
  context.SetErrorHandler(&errors);
  latitudes.clear();
  EXPECT_THROW(ForEachObject<Gpx::CWptType>(CSlicedSource(xml.substr(0, xml.size() - 3), 100), L"/gpx/trk/trkseg/trkpt",
                                            context, collect),
               CRkException);
  EXPECT_EQ(latitudes, L"3 7 ");
  EXPECT_EQ(errors.GetErrors().back()->GetCode(), RkErrorCode_XmlMalformed);

  // A handler that has seen enough.
  struct Strict : IErrorHandler {
    bool OnError(const CRkException&) override {
      ++count;
      return false;
    }
    int count = 0;
  } strict;
  context.SetErrorHandler(&strict);
  EXPECT_THROW(ForEachObject<Gpx::CWptType>(CSlicedSource(xml, 100), L"/gpx/trk/trkseg/trkpt", context, collect),
               CRkException);
  EXPECT_EQ(strict.count, 1);
}

}  // namespace

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>

#include "RkXmlLib16/RkXmlLib16.h"
#include "gpx.h"
#include "order.h"
#include "support/Bytes.h"
#include "support/TempFile.h"

using namespace RkXmlLib16;
using RkXmlTest::BytesOf;

namespace {

void WriteIfAny(CDocumentWriter& writer, const CXmlObjectBase* object) {
  if (object != nullptr) writer.WriteObject(*object);
}

template <class Items>
void WriteItems(CDocumentWriter& writer, const Items& items) {
  writer.BeginCollection();
  for (const auto& item : items) writer.WriteObject(item);
  writer.EndCollection();
}

// The track point by point, the rest object by object.
void WritePieces(CDocumentWriter& writer, const Gpx::CGpxType& gpx) {
  writer.WriteStartElement(gpx);
  WriteIfAny(writer, gpx.GetMetadata());
  WriteItems(writer, *gpx.GetWpt());
  WriteItems(writer, *gpx.GetRte());
  writer.BeginCollection();
  for (const Gpx::CTrkType& track : *gpx.GetTrk()) {
    writer.WriteStartElement(track);
    if (track.HasName()) writer.WriteTextElement(L"name", track.GetNamespace(), track.GetName());
    if (track.HasType()) writer.WriteTextElement(L"type", track.GetNamespace(), track.GetType());
    WriteIfAny(writer, track.GetExtensions());
    writer.BeginCollection();
    for (const Gpx::CTrksegType& segment : *track.GetTrkseg()) {
      writer.WriteStartElement(segment);
      WriteItems(writer, *segment.GetTrkpt());
      WriteIfAny(writer, segment.GetExtensions());
      writer.WriteEndElement();
    }
    writer.EndCollection();
    writer.WriteEndElement();
  }
  writer.EndCollection();
  WriteIfAny(writer, gpx.GetExtensions());
  writer.WriteEndElement();
}

// The lines are groups without an element of their own.
void WritePieces(CDocumentWriter& writer, const Order::COrderType& order) {
  const std::wstring orders = order.GetNamespace();
  writer.WriteStartElement(order);
  WriteIfAny(writer, order.GetCustomer());
  WriteIfAny(writer, order.GetDelivery());
  writer.WriteStartElement(*order.GetLines());
  WriteItems(writer, *order.GetLines()->GetChoice());
  writer.WriteEndElement();
  WriteIfAny(writer, order.GetPayment());
  ASSERT_TRUE(order.IsDueNil());
  writer.WriteStartElement(L"due", orders);
  writer.WriteNil();
  writer.WriteEndElement();
  writer.BeginCollection();
  writer.WriteObject(*order.GetNote(), orders);
  writer.EndCollection();
  WriteIfAny(writer, order.GetAnyElement());
  writer.WriteEndElement();
}

// A form: the whole object as bytes, and a writer for its pieces.
struct Pieces {
  const char* name;
  CBinaryData (*whole)(const CXmlObjectBase&, const CSerializationContext&, CompressionType);
  std::unique_ptr<CDocumentWriter> (*open)(CByteTarget, const CSerializationContext&, CompressionType);
  void (*set)(CSerializationContext&);
};

template <bool kFormatted, EOLType kEol>
CBinaryData WholeXml(const CXmlObjectBase& object, const CSerializationContext& context, CompressionType compression) {
  return object.ToXmlStream(true, kFormatted, XmlEncoding_UTF8, kEol, context, compression);
}
template <bool kFormatted, EOLType kEol>
std::unique_ptr<CDocumentWriter> OpenXml(CByteTarget to, const CSerializationContext& context,
                                         CompressionType compression) {
  return std::make_unique<CXmlDocumentWriter>(std::move(to), compression, context, true, kFormatted, kEol);
}

template <bool kFormatted>
CBinaryData WholeJson(const CXmlObjectBase& object, const CSerializationContext& context, CompressionType compression) {
  return object.ToJsonStream(kFormatted, XmlEncoding_UTF8, EOLType_LF, context, compression);
}
template <bool kFormatted>
std::unique_ptr<CDocumentWriter> OpenJson(CByteTarget to, const CSerializationContext& context,
                                          CompressionType compression) {
  return std::make_unique<CJsonDocumentWriter>(std::move(to), compression, context, kFormatted);
}

template <FInfoDecl kDeclaration>
CBinaryData WholeFastInfoset(const CXmlObjectBase& object, const CSerializationContext& context,
                             CompressionType compression) {
  return object.ToFastInfosetStream(kDeclaration, context, compression);
}
template <FInfoDecl kDeclaration>
std::unique_ptr<CDocumentWriter> OpenFastInfoset(CByteTarget to, const CSerializationContext& context,
                                                 CompressionType compression) {
  return std::make_unique<CFastInfosetDocumentWriter>(std::move(to), compression, context, kDeclaration);
}

void SetNothing(CSerializationContext& /*context*/) {}
template <JsonRoundTrip kMode, bool kStrict>
void SetJson(CSerializationContext& context) {
  context.GetJsonContext()->SetSupportRoundtrip(kMode);
  context.GetJsonContext()->SetStrictOutput(kStrict);
}
void SetTyped(CSerializationContext& context) { context.GetFIContext()->SetSuggestedValues(); }

const Pieces kForms[] = {
    {"Xml", WholeXml<true, EOLType_LF>, OpenXml<true, EOLType_LF>, SetNothing},
    {"CompactXmlWithoutAliases", WholeXml<false, EOLType_CRLF>, OpenXml<false, EOLType_CRLF>,
     [](CSerializationContext& context) {
       context.SetDefaultNamespaceURI(L"");
       context.GetNamespaceAliases() = CNamespaceAliasMap();
       context.GetProcessingInstructions().push_back(L"<?go now?>");
       context.SetInLineSchema(L"<schema/>");
     }},
    {"Json", WholeJson<true>, OpenJson<true>, SetNothing},
    {"StrictJson", WholeJson<true>, OpenJson<true>, SetJson<JsonRoundTrip_Namespaces, true>},
    {"CompactMarkersJson", WholeJson<false>, OpenJson<false>, SetJson<JsonRoundTrip_Markers, true>},
    {"PlainJson", WholeJson<true>, OpenJson<true>, SetJson<JsonRoundTrip_Plain, false>},
    {"FastInfoset", WholeFastInfoset<FInfoDecl_None>, OpenFastInfoset<FInfoDecl_None>, SetNothing},
    {"TypedFastInfoset", WholeFastInfoset<FInfoDecl_Version10>, OpenFastInfoset<FInfoDecl_Version10>, SetTyped},
};

class PiecesTest : public testing::TestWithParam<Pieces> {
 protected:
  // The order or the track, once as it is and once with so many items that all buffers fill.
  template <class Root>
  void CheckPieces(const wchar_t* file, void (*grow)(Root&)) {
    Root root;
    root.FromXmlFile((L"" RKXML_EXAMPLE_DATA + std::wstring(file)).c_str());
    CSerializationContext context;
    context.SetDefaultNamespaceURI(root.GetTargetNamespace());
    context.GetNamespaceAliases().Add(L"xsi", L"http://www.w3.org/2001/XMLSchema-instance");
    context.GetNamespaceAliases().Add(L"audit", L"urn:example:audit");
    context.GetNamespaceAliases().Add(L"hike", L"https://example.org/xmlns/hike/1");
    context.GetAdditionalRootAttributes()->Add(L"extra", L"1", L"urn:example:audit");
    GetParam().set(context);
    CheckSame(root, context);
    grow(root);
    CheckSame(root, context);
  }

 private:
  template <class Root>
  void CheckSame(const Root& root, const CSerializationContext& context) {
    for (const CompressionType compression : {CompressionType_None, CompressionType_GZip, CompressionType_ZLib}) {
      SCOPED_TRACE(compression);
      const std::string whole = BytesOf(GetParam().whole(root, context, compression));
      std::string called;
      const auto take = [&called](const unsigned char* bytes, std::size_t count) {
        called.append(reinterpret_cast<const char*>(bytes), count);
        return true;
      };
      ASSERT_NO_FATAL_FAILURE(WriteAll(root, take, context, compression));
      EXPECT_TRUE(called == whole) << "expected\n" << whole.substr(0, 3000) << "\nfound\n" << called.substr(0, 3000);

      std::ostringstream stream;
      ASSERT_NO_FATAL_FAILURE(WriteAll(root, stream, context, compression));
      EXPECT_TRUE(stream.str() == whole);

      if (compression == CompressionType_ZLib) continue;
      const RkXmlTest::CTempFile file;
      const std::string name = file.Path();
      ASSERT_NO_FATAL_FAILURE(WriteAll(root, name, context, compression));
      EXPECT_TRUE(file.Bytes() == whole);
    }
  }

  template <class Root, class Target>
  void WriteAll(const Root& root, Target& target, const CSerializationContext& context, CompressionType compression) {
    const std::unique_ptr<CDocumentWriter> writer = GetParam().open(target, context, compression);
    WritePieces(*writer, root);
    writer->End();
  }
};

TEST_P(PiecesTest, ATrackIsTheSameAsWhole) {
  CheckPieces<Gpx::CGpxType>(L"/track.gpx", [](Gpx::CGpxType& gpx) {
    auto* const points = gpx.GetTrk()->Item(0)->GetTrkseg()->Item(0)->GetTrkpt();
    for (int i = 0; i < 800; ++i) {
      Gpx::CWptType* const point = points->AddNew();
      point->SetLat(CDecimal(i % 90));
      point->SetLon(CDecimal(i % 180));
      point->SetName(L"P\u00FCnkt \U0001F600 " + std::to_wstring(i * 7919));
    }
  });
}

TEST_P(PiecesTest, AnOrderIsTheSameAsWhole) {
  CheckPieces<Order::COrderType>(L"/order.xml", [](Order::COrderType& order) {
    for (int i = 0; i < 1200; ++i) {
      Order::CServiceType* const service = order.GetLines()->GetChoice()->AddNew()->GetOrAddService();
      service->SetName(L"Service " + std::to_wstring(i * 104729));
      service->SetTime(CDateTimeSpan(0, static_cast<unsigned long long>(i), 0));
      service->SetPrice(CDecimal(i));
    }
    order.GetNote()->Clear();
  });
}

INSTANTIATE_TEST_SUITE_P(Forms, PiecesTest, testing::ValuesIn(kForms),
                         [](const auto& form) { return std::string(form.param.name); });

}  // namespace

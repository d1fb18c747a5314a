// Bytes as JSON into a tree, with and without the code path for plain documents: the same XML text, names, texts and
// places, the same error. The first byte chooses the settings, as for the target json.
#include "Check.h"
#include "tests/support/LoadText.h"

using namespace Fuzz;

namespace {

std::wstring Load(CSerializationContext context, bool scans, const std::string& text) {
  CErrorCollector told;
  context.SetErrorHandler(&told);
  context.SetScanPlainXml(scans);
  CXmlDocument document(context);
  CBinaryData xml;
  std::wstring loaded = RkXmlTest::DescribeLoad(document, told, [&](CXmlDocument& target) {
    CXmlDocument json(context);
    json.SetIndentsJson(false);
    xml = json.LoadJson(text.c_str());
    target.LoadConverted(xml, json);
  });
  return loaded += TextOf({reinterpret_cast<const char*>(xml.GetData()), xml.GetLength()});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  CSerializationContext context;
  context.GetJsonContext()->SetSupportRoundtrip(data[0] % 4 == 1   ? JsonRoundTrip_Plain
                                                : data[0] % 4 == 2 ? JsonRoundTrip_Markers
                                                                   : JsonRoundTrip_Namespaces);
  context.GetJsonContext()->GetAllowComments((data[0] & 4) != 0);
  if ((data[0] & 8) != 0) context.GetJsonContext()->SetRootElementName(L"root");
  context.SetWellFormedOutput((data[0] & 16) != 0);
  context.SetJoinSurrogatePairs((data[0] & 32) != 0);
  if ((data[0] & 64) != 0) context.SetSchemaType(SchemaType_NoNamespaces);
  if ((data[0] & 128) != 0) {
    context.GetLimits().SetMaxExpansionRatio(2);
    context.GetLimits().SetExpansionRatioFrom(8);
  }
  const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  const std::wstring scanned = Load(context, true, text);
  const std::wstring parsed = Load(context, false, text);
  Require(scanned == parsed, "converted as it is parsed", L"--- converted" + scanned + L"\n--- parsed" + parsed);
  return 0;
}

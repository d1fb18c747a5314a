// Bytes, up to a NUL, as XML text into a tree, narrow and wide, with and without the scanner for plain documents: the
// same names, declarations, texts and places, the same error, the same notes of what is left out.
#include "Check.h"
#include "tests/support/LoadText.h"

using namespace Fuzz;

namespace {

template <class Text>
std::wstring Load(CSerializationContext context, bool scans, const Text& text) {
  CErrorCollector told;
  context.SetErrorHandler(&told);
  context.SetScanPlainXml(scans);
  CXmlDocument document(context);
  document.SetInputStays(true);
  return RkXmlTest::DescribeLoad(document, told, [&](CXmlDocument& loaded) {
    loaded.LoadXml(text.c_str());
    Require(scans || !loaded.WasScanned(), "the parser parses");
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The length chooses the settings.
  CSerializationContext context;
  context.SetStripCDATA((size & 1) == 0);
  context.SetJoinSurrogatePairs((size & 2) != 0);
  if ((size & 12) == 12) {
    context.GetLimits().SetMaxElementDepth(4);
    context.GetLimits().SetMaxNodes(12);
    context.GetLimits().SetMaxCharacters(200);
  }
  const auto require = [&context](const auto& text) {
    const std::wstring scanned = Load(context, true, text);
    const std::wstring parsed = Load(context, false, text);
    Require(scanned == parsed, "scanned as it is parsed", L"--- scanned" + scanned + L"\n--- parsed" + parsed);
  };
  require(std::string(reinterpret_cast<const char*>(data), size));
  require(std::wstring(data, data + size));
  return 0;
}

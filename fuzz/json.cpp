// Bytes as JSON into CElement: what was read is the same after each form.
#include "Check.h"

using namespace Fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  CSerializationContext context = MakeContext();
  // The first byte chooses the settings.
  CJsonContext& json = *context.GetJsonContext();
  json.SetSupportRoundtrip(data[0] % 4 == 1   ? JsonRoundTrip_Plain
                           : data[0] % 4 == 2 ? JsonRoundTrip_Markers
                                              : JsonRoundTrip_Namespaces);
  json.GetAllowComments((data[0] & 4) != 0);
  if ((data[0] & 8) != 0) json.SetRootElementName(L"root");
  CElement tree;
  if (ReadBothWays(tree, context, [&](CElement& into, const CSerializationContext& settings) {
        into.FromJsonStream(const_cast<std::uint8_t*>(data + 1), size - 1, settings);
      }))
    CheckAllForms(tree);
  return 0;
}

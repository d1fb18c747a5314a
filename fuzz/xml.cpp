// Bytes as any document into CElement: what was read is the same after each form.
#include "Check.h"

using namespace Fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CElement tree;
  CSerializationContext context = MakeContext();
  if (ReadBothWays(tree, context, [&](CElement& into, const CSerializationContext& settings) {
        into.FromXmlStream(const_cast<std::uint8_t*>(data), size, settings);
      }))
    CheckAllForms(tree);
  return 0;
}

// Octets behind the header of a Fast Infoset into CElement: what was read is the same after each form.
#include <vector>

#include "Check.h"

using namespace Fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::uint8_t> document{0xE0, 0x00, 0x00, 0x01};
  document.insert(document.end(), data, data + size);
  CElement tree;
  CSerializationContext context = MakeContext();
  if (ReadBothWays(tree, context, [&](CElement& into, const CSerializationContext& settings) {
        into.FromXmlStream(document.data(), document.size(), settings);
      }))
    CheckAllForms(tree);
  return 0;
}

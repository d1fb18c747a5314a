#include "Load.h"

#include <algorithm>

#include "Text.h"

using namespace RkXmlLib16;

namespace {

bool IsDamaged(const Bytes& bytes) {
  const CBinaryData inner = Unwrapped(bytes);
  return inner.GetLength() == bytes.size() && std::equal(bytes.begin(), bytes.end(), inner.GetData());
}

}  // namespace

void LoadDocument(CXmlDocument& document, const Options& options, Bytes& bytes) {
  try {
    options.from->load(document, bytes);
  } catch (const CRkException& e) {
    const std::string file = options.input == "-" ? "standard input" : ForTerminal(options.input);
    // Bytes in a damaged wrapper are taken as they are, and what the parser says about them helps nobody.
    if (WrapperOf(bytes) == Wrapper::Gzip && IsDamaged(bytes)) {
      throw DocumentError(file + ": the gzip data is damaged or cut short");
    }
    throw DocumentError(file + ": " + Reason(e));
  }
}

Wrapper WrapperOf(const Bytes& bytes) {
  if (bytes.size() < 2) return Wrapper::None;
  if (bytes[0] == 0x1F && bytes[1] == 0x8B) return Wrapper::Gzip;                             // RFC 1952, 2.3.1
  if ((bytes[0] & 0x0F) == 8 && (bytes[0] * 256 + bytes[1]) % 31 == 0) return Wrapper::Zlib;  // RFC 1950, 2.2
  return Wrapper::None;
}

CBinaryData Unwrapped(const Bytes& bytes) {
  CBinaryData copy;
  copy.SetBuffer(bytes.data(), bytes.size());
  unsigned long length = 0;
  unsigned char* data = copy.ReleaseData(&length);
  CRkZip::Decompress(&data, &length);
  return CBinaryData(data, length, /*copy=*/false);
}

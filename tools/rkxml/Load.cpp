#include "Load.h"

#include "Text.h"

using namespace RkXmlLib16;

void LoadDocument(CXmlDocument& document, const Options& options, Bytes& bytes) {
  try {
    options.from->load(document, bytes);
  } catch (const CRkException& e) {
    const std::string file = options.input == "-" ? "standard input" : ForTerminal(options.input);
    // Bytes in a damaged wrapper are taken as they are, and what the parser says about them helps nobody.
    CBinaryData content;
    if (WrapperOf(bytes) == Wrapper::Gzip && Unwrap(bytes, options, content) == InflateResult::NotCompressed) {
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

InflateResult Unwrap(const Bytes& bytes, const Options& options, CBinaryData& content) {
  const CReadLimits& limits = options.limits;
  return CRkZip::Inflate(bytes.data(), bytes.size(),
                         {limits.GetMaxInflatedBytes(), limits.GetMaxInflationRatio(), limits.GetInflationRatioFrom()},
                         content);
}

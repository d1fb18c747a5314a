// Bytes as a gzip or zlib stream: inflating keeps to its limits, and what comes out survives both wrappers.
#include <algorithm>
#include <memory>

#include "Check.h"

using namespace Fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr InflateLimits kLimits{200000, 300, 50000};
  CBinaryData content;
  if (CRkZip::Inflate(data, size, kLimits, content) != InflateResult::Inflated) {
    Require(content.GetLength() == 0, "nothing is handed out unless all of it is");
    return 0;
  }
  const std::size_t length = content.GetLength();
  Require(length <= kLimits.maxBytes, "no more bytes than allowed");
  Require(length <= std::max<std::size_t>(kLimits.ratioFrom, size * kLimits.maxRatio), "no higher ratio than allowed");

  auto copy = std::make_unique<unsigned char[]>(size);
  std::copy(data, data + size, copy.get());
  unsigned char* raw = copy.release();
  unsigned long rawLength = size;
  CRkZip::Decompress(&raw, &rawLength);
  copy.reset(raw);
  Require(rawLength == length && std::equal(raw, raw + rawLength, content.GetData()),
          "both code paths inflate the same");

  for (const CompressionType type : {CompressionType_GZip, CompressionType_ZLib}) {
    CBinaryData again = content;
    if (!Succeeds([&] { CRkZip::CompressData(again, type); })) continue;  // it would not shrink
    CBinaryData back;
    if (length == 0) continue;
    Require(CRkZip::Inflate(again.GetData(), again.GetLength(), {}, back) == InflateResult::Inflated && back == content,
            "the same after compressing and inflating");
  }
  return 0;
}

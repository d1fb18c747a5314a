#include "Load.h"

#include "Encoding.h"
#include "Text.h"

using namespace RkXmlLib16;

namespace {

bool LooksLikeJson(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\r\n", text.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0);
  return start != std::string_view::npos && (text[start] == '{' || text[start] == '[');
}

// What helps to understand why `text` is no XML.
std::string AboutXml(std::string_view text, const std::string& reason) {
  if (LooksLikeJson(text)) return " (JSON text is read with --from json)";
  if (reason.rfind("unknown encoding", 0) != 0) return {};
  return " (it is " + ForTerminal(DeclaredEncoding(text)) + "; readable are UTF-8, UTF-16, ISO-8859-1 and US-ASCII)";
}

}  // namespace

void LoadDocument(CXmlDocument& document, const Options& options, Bytes& bytes) {
  try {
    options.from->load(document, bytes);
  } catch (const CRkException& e) {
    const std::string file = options.input == "-" ? "standard input" : ForTerminal(options.input);
    // Bytes in a damaged wrapper are taken as they are, and what the parser says about them helps nobody.
    CBinaryData content;
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (WrapperOf(bytes) != Wrapper::None) {
      const InflateResult result = Unwrap(bytes, options, content);
      if (result == InflateResult::Inflated) {
        text = {reinterpret_cast<const char*>(content.GetData()), content.GetLength()};
      } else if (result == InflateResult::NotCompressed && WrapperOf(bytes) == Wrapper::Gzip) {
        throw DocumentError(file + ": the gzip data is damaged or cut short");
      }
    }
    const std::string about = options.from == FindForm("xml") ? AboutXml(text, ForTerminal(e.GetMessage())) : "";
    throw DocumentError(file + (e.GetLocation().IsKnown() ? ":" : ": ") + Reason(e) + about);
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

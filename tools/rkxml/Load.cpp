#include "Load.h"

#include "Encoding.h"
#include "Gzip.h"
#include "Text.h"

using namespace RkXmlLib16;

namespace {

bool LooksLikeJson(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\r\n", text.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0);
  return start != std::string_view::npos && (text[start] == '{' || text[start] == '[');
}

// What helps to understand why what begins with `text` is no XML.
std::string AboutXml(std::string_view text, const std::string& reason) {
  if (LooksLikeJson(text)) return " (JSON text is read with --from json)";
  if (reason.rfind("unknown encoding", 0) != 0) return {};
  return " (it is " + ForTerminal(DeclaredEncoding(text)) + "; readable are UTF-8, UTF-16, ISO-8859-1 and US-ASCII)";
}

}  // namespace

void LoadDocument(CXmlDocument& document, const Options& options, const InputFile& file) {
  Bytes bytes = file.ReadAll();
  try {
    options.from->load(document, bytes);
  } catch (const CRkException& e) {
    ThrowUnreadable(e, options, file);
  }
}

void ThrowUnreadable(const CRkException& e, const Options& options, const InputFile& file) {
  const std::string name = options.input == "-" ? "standard input" : ForTerminal(options.input);
  // Bytes in a damaged wrapper are taken as they are, and what the parser says about them helps nobody.
  if (e.GetCode() != RkErrorCode_LimitExceeded && IsDamagedGzip(file))
    throw DocumentError(name + ": the gzip data is damaged or cut short");
  const Content content = LookInto(file, /*toEnd=*/false);
  const std::string about = options.from == FindForm("xml") ? AboutXml(content.start, ForTerminal(e.GetMessage())) : "";
  throw DocumentError(name + (e.GetLocation().IsKnown() ? ":" : ": ") + Reason(e) + about);
}

#include <algorithm>
#include <cstdio>
#include <optional>
#include <unordered_set>

#include "Commands.h"
#include "Encoding.h"
#include "Gzip.h"
#include "Octets.h"
#include "Progress.h"
#include "Scan.h"
#include "Text.h"

using namespace RkXmlLib16;

namespace {

void Line(const char* name, const std::string& value) { std::printf("%-12s%s\n", name, value.c_str()); }

// Namespaces whose prefix was bound anew further on come last.
void ShowNamespaces(const Scan& scan) {
  auto namespaces = scan.declared;
  std::unordered_set<std::wstring> known{std::wstring(CXmlWriter::XML_NAMESPACE)};
  for (const auto& [prefix, uri] : namespaces) known.insert(uri);
  for (const auto& [uri, isOfAttribute] : scan.namespaces)
    if (known.insert(uri).second) namespaces.emplace_back(L"(rebound)", uri);
  if (namespaces.empty()) Line("namespaces", "none");
  const char* title = "namespaces";
  for (const auto& [prefix, uri] : namespaces) {
    std::string shown = prefix.empty() ? "(default)" : ForTerminal(prefix);
    shown.resize(std::max<std::size_t>(shown.size(), 9), ' ');
    Line(title, shown + "  " + ForTerminal(uri));
    title = "";
  }
}

// The document need not be one that can be read.
void ListOctets(const Options& options) {
  const InputFile file(options.input);
  Bytes bytes = file.ReadAll();
  CBinaryData content;
  const CReadLimits& limits = options.limits;
  const InflateLimits inflateLimits = {limits.GetMaxInflatedBytes(), limits.GetMaxInflationRatio(),
                                       limits.GetInflationRatioFrom()};
  const bool wrapped = CRkZip::Inflate(bytes.data(), bytes.size(), inflateLimits, content) == InflateResult::Inflated;
  const unsigned char* const octets = wrapped ? content.GetData() : bytes.data();
  const std::string_view text(reinterpret_cast<const char*>(octets), wrapped ? content.GetLength() : bytes.size());
  if (!IsFastInfoset(text)) throw DocumentError(ForTerminal(options.input) + " is no Fast Infoset");
  ShowOctets(text);
  if (std::fflush(stdout) != 0) throw FileError("cannot write the standard stream");
}

Scan ScanInput(const InputFile& file, const Options& options, Progress& progress) {
  CSerializationContext context;
  context.GetLimits() = options.limits;
  options.json.ApplyTo(context);
  Notes notes(Question::None);
  try {
    return ScanDocument(file, options, context, progress, notes);
  } catch (const DocumentError&) {
    if (options.from != FindForm("json")) throw;
    return ScanWhole(file, options, context);
  }
}

}  // namespace

void Show(const Options& options) {
  if (options.octets) return ListOctets(options);
  std::optional<Progress> progress(std::in_place);
  progress->Begin("reading", 0);
  const InputFile file(options.input);
  const Scan scan = ScanInput(file, options, *progress);
  const Content content = LookInto(file, /*toEnd=*/true);
  progress.reset();

  Line("form", scan.isFastInfoset ? "Fast Infoset" : options.from->title);
  const std::uint64_t length = file.GetLength();
  if (content.wrapper != Wrapper::None) {
    Line("wrapper", content.wrapper == Wrapper::Gzip ? "gzip" : "zlib");
    const std::string ratio = std::to_string((content.length + length / 2) / length);
    Line("bytes", Grouped(length) + " (" + Grouped(content.length) + " unwrapped, " + ratio + " times)");
  } else {
    Line("wrapper", "none");
    Line("bytes", Grouped(length));
  }
  Line("encoding", scan.isFastInfoset ? "binary" : EncodingOf(content.start));
  Line("root", ForTerminal(scan.root));
  ShowNamespaces(scan);
  Line("elements", Grouped(scan.elements));
  Line("attributes", Grouped(scan.attributes));
  Line("nodes", Grouped(scan.elements + scan.attributes));
  Line("characters", Grouped(scan.characters));
  Line("depth", Grouped(scan.depth));
  if (std::fflush(stdout) != 0) throw FileError("cannot write the standard stream");
}

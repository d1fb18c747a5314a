#include <cstdio>
#include <optional>

#include "Gzip.h"
#include "Load.h"
#include "Progress.h"
#include "Schema.h"
#include "Text.h"
#include "Tree.h"

using namespace RkXmlLib16;

namespace {

bool IsMixed(const TreeWalk& element) {
  const CXmlText text = element->GetText();
  return element->GetFirstElement() != nullptr && text.View().find_first_not_of(L" \t\n") != std::wstring_view::npos;
}

// What a tree cannot keep of the document, in words; empty when it keeps everything.
std::string LeftOut(const CErrorCollector& collector, const CXmlDocument& document) {
  std::string text;
  const auto add = [&text](const std::string& what) { text += (text.empty() ? "" : ", ") + what; };
  for (const CRkDropped& dropped : collector.GetDropped()) add(ForTerminal(dropped.GetName()));
  unsigned long long mixed = 0;
  for (TreeWalk walk(document); walk; walk.Next()) mixed += IsMixed(walk) ? 1 : 0;
  if (mixed != 0) add("mixed content in " + Grouped(mixed) + (mixed == 1 ? " element" : " elements"));
  return text;
}

// The document as an object of the schema: its values are typed, and repeated elements are known.
CSmartPtr<CXmlObjectBase> ToTyped(const Schema& schema, const Options& options, const CXmlDocument& document,
                                  CSerializationContext& context) {
  const bool hasNamespaces = options.from != FindForm("json") || options.json.mode == JsonRoundTrip_Namespaces;
  context.SetIgnoreNamespaces(!hasNamespaces);
  const ValidatedDocument result = ReadBySchema(schema, document, context, options.input);
  context.SetIgnoreNamespaces(false);
  if (result.errors.empty()) return result.object;
  std::string lines;
  for (const std::string& error : result.errors) lines += (lines.empty() ? "" : "\n") + error;
  if (!options.force) throw DocumentError(lines + "\n(--force converts it without the schema)");
  std::fprintf(stderr, "%s\n", lines.c_str());
  return nullptr;
}

}  // namespace

void Convert(const Options& options) {
  Progress progress;
  CSerializationContext context;
  context.GetLimits() = options.limits;
  context.SetIndentChars(options.layout.indent.c_str());
  options.json.ApplyTo(context);

  CErrorCollector collector;
  if (!options.quiet) context.SetErrorHandler(&collector);
  std::string leftOut;
  std::optional<Schema> schema;  // outlives the object
  CSmartPtr<CXmlObjectBase> object;
  {
    Bytes bytes = ReadFile(options.input);
    progress.Read(bytes.size());
    CXmlDocument document(progress.Counter(), context);
    LoadDocument(document, options, bytes);
    bytes = Bytes();
    context.SetErrorHandler(nullptr);
    if (!options.quiet) leftOut = LeftOut(collector, document);
    context.TakeNamespaces(document);
    if (options.to->needsPrefixes) AddPrefixes(document, context);
    if (options.UsesSchema()) {
      schema.emplace(options,
                     options.followLocations ? SchemaLocations(document, options.input) : std::vector<std::wstring>());
      if (!options.quiet) std::fputs(schema->GetUnchecked().c_str(), stderr);
      object = ToTyped(*schema, options, document, context);
      if (object != nullptr) context.GetFIContext()->SetSuggestedValues();
    }
    if (object == nullptr) {
      object = CSmartPtr<CXmlObjectBase>(new CElement);
      object->FromXmlElement(document.GetDocumentElement(), context);
    }
  }
  progress.Writing();
  const CBinaryData output = options.to->write(*object, options.layout, context);
  Bytes zipped;
  if (options.layout.gzip) zipped = Gzip(output.GetData(), output.GetLength());
  const unsigned char* const data = options.layout.gzip ? zipped.data() : output.GetData();
  const std::size_t length = options.layout.gzip ? zipped.size() : output.GetLength();
  progress.Written(length);
  WriteFile(options.output, data, length);
  if (!leftOut.empty()) std::fprintf(stderr, "rkxml: not kept: %s: --quiet to be silent\n", leftOut.c_str());
}

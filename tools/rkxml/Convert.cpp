#include "Convert.h"

#include <cstdio>
#include <memory>
#include <optional>

#include "Gzip.h"
#include "Input.h"
#include "Load.h"
#include "Progress.h"
#include "Scan.h"
#include "Schema.h"
#include "TagWriter.h"
#include "Text.h"

using namespace RkXmlLib16;

namespace {

bool IsMixed(const TreeWalk& element) {
  return element->GetFirstElement() != nullptr && !CWhitespaceUtils::IsBlank(element->GetText());
}

unsigned long long CountMixed(const CXmlDocument& document) {
  unsigned long long mixed = 0;
  for (TreeWalk walk(document); walk; walk.Next()) mixed += IsMixed(walk) ? 1 : 0;
  return mixed;
}

// What is not kept of the document, in words; empty when everything is.
std::string LeftOut(const CErrorCollector& collector, unsigned long long mixed) {
  std::string text;
  const auto add = [&text](const std::string& what) { text += (text.empty() ? "" : ", ") + what; };
  for (const CRkDropped& dropped : collector.GetDropped()) add(ForTerminal(dropped.GetName()));
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

std::unique_ptr<CDocumentWriter> OpenOutput(OutputFile& output, const Options& options,
                                            const CSerializationContext& context, Progress& progress) {
  const auto take = [&output, &progress](const unsigned char* bytes, std::size_t count) {
    output.Write(bytes, count);
    progress.TellWritten(output.GetLength());
    return true;
  };
  return options.to->open(take, options.layout, context);
}

void WriteObject(const CXmlObjectBase& object, const Options& options, const CSerializationContext& context,
                 Progress& progress) {
  OutputFile output(options.output);
  if (options.layout.encoding == XmlEncoding_UTF8) {
    const std::unique_ptr<CDocumentWriter> writer = OpenOutput(output, options, context, progress);
    writer->WriteObject(object);
    writer->End();
  } else {
    const CBinaryData text = options.to->write(object, options.layout, context);
    Bytes zipped;
    if (options.layout.gzip) zipped = Gzip(text.GetData(), text.GetLength());
    output.Write(options.layout.gzip ? zipped.data() : text.GetData(),
                 options.layout.gzip ? zipped.size() : text.GetLength());
  }
  output.Complete();
}

CSerializationContext ContextOf(const Options& options) {
  CSerializationContext context;
  context.GetLimits() = options.limits;
  context.SetIndentChars(options.layout.indent.c_str());
  options.json.ApplyTo(context);
  return context;
}

}  // namespace

void ConvertWhole(const Options& options, const InputFile& input, Progress& progress, std::string& leftOut) {
  CSerializationContext context = ContextOf(options);
  CErrorCollector collector;
  if (!options.quiet) context.SetErrorHandler(&collector);
  std::optional<Schema> schema;  // outlives the object
  CSmartPtr<CXmlObjectBase> object;
  {
    progress.Begin("reading", 0);
    CXmlDocument document(context);
    LoadDocument(document, options, input);
    context.SetErrorHandler(nullptr);
    if (!options.quiet) leftOut = LeftOut(collector, CountMixed(document));
    context.TakeNamespaces(document);
    if (options.to->needsPrefixes) AddPrefixes(document, context);
    if (options.UsesSchema()) {
      schema.emplace(options,
                     options.followLocations ? SchemaLocations(document, options.input) : std::vector<std::string>());
      if (!options.quiet) std::fputs(schema->GetUnchecked().c_str(), stderr);
      object = ToTyped(*schema, options, document, context);
      if (object != nullptr) context.GetFIContext()->SetSuggestedValues();
    }
    if (object == nullptr) {
      object = CSmartPtr<CXmlObjectBase>(new CElement);
      object->FromXmlElement(document.GetDocumentElement(), context);
    }
  }
  progress.Begin("writing", 0);
  WriteObject(*object, options, context, progress);
}

bool ConvertInPieces(const Options& options, const InputFile& input, Progress& progress, std::string& leftOut) {
  if (options.UsesSchema() || options.layout.encoding != XmlEncoding_UTF8) return false;
  const bool isToJson = options.to == FindForm("json");
  CSerializationContext context = ContextOf(options);
  CErrorCollector collector;
  if (!options.quiet) context.SetErrorHandler(&collector);
  Notes notes(isToJson ? Question::IsRow : Question::IsMixed);
  Scan scan;
  try {
    scan = ScanDocument(input, options, context, progress, notes);
  } catch (const DocumentError&) {
    // What JSON holds may come in an order that only a tree can take.
    if (options.from == FindForm("json")) return false;
    throw;
  }
  if (isToJson && !scan.isPlain) return false;
  if (options.to->needsPrefixes) AddPrefixes(scan.namespaces, context);
  context.SetErrorHandler(nullptr);
  context.SetEscapeCDATA(true);  // sections have been read as the text that they are
  progress.Begin("converting", input.GetLength());
  OutputFile output(options.output);
  const std::unique_ptr<CDocumentWriter> writer = OpenOutput(output, options, context, progress);
  InputStream stream(input, options, context, progress);
  TagWriter tags(notes);
  while (stream.Next()) {
    if (stream.GetEvent() == InputStream::Event::Start)
      tags.Start(*writer, *stream->GetElement());
    else if (stream.GetEvent() == InputStream::Event::Text)
      tags.Text(stream->GetText());
    else
      tags.End(*writer);
  }
  writer->End();
  output.Complete();
  if (!options.quiet) leftOut = LeftOut(collector, isToJson ? scan.mixed : 0);
  return true;
}

void Convert(const Options& options) {
  std::string leftOut;
  {
    Progress progress;
    progress.Begin("reading", 0);
    const InputFile input(options.input);
    if (!ConvertInPieces(options, input, progress, leftOut)) ConvertWhole(options, input, progress, leftOut);
  }
  if (!leftOut.empty()) std::fprintf(stderr, "rkxml: not kept: %s: --quiet to be silent\n", leftOut.c_str());
}

#include <cstdio>

#include "Gzip.h"
#include "Load.h"
#include "Progress.h"
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
  CElement element;
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
    element.FromXmlElement(document.GetDocumentElement(), context);
  }
  progress.Writing();
  const CBinaryData output = options.to->write(element, options.layout, context);
  Bytes zipped;
  if (options.layout.gzip) zipped = Gzip(output.GetData(), output.GetLength());
  const unsigned char* const data = options.layout.gzip ? zipped.data() : output.GetData();
  const std::size_t length = options.layout.gzip ? zipped.size() : output.GetLength();
  progress.Written(length);
  WriteFile(options.output, data, length);
  if (!leftOut.empty()) std::fprintf(stderr, "rkxml: not kept: %s: --quiet to be silent\n", leftOut.c_str());
}

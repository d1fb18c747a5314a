#include "Load.h"
#include "Progress.h"
#include "Text.h"
#include "Tree.h"

using namespace RkXmlLib16;

namespace {

CBinaryData Write(const CElement& element, const Options& options, const CSerializationContext& context) {
  try {
    return options.to->write(element, options.layout, context);
  } catch (const CRkException& e) {
    // The library never lets a document grow by compression.
    if (options.layout.gzip && Reason(e).rfind("Failed to compress data", 0) == 0) {
      throw DocumentError("the document is too small to shrink by gzip, write it without");
    }
    throw;
  }
}

}  // namespace

void Convert(const Options& options) {
  Progress progress;
  CSerializationContext context;
  context.GetLimits() = options.limits;
  context.SetIndentChars(options.layout.indent.c_str());
  options.json.ApplyTo(context);

  CElement element;
  {
    Bytes bytes = ReadFile(options.input);
    progress.Read(bytes.size());
    CXmlDocument document(progress.Counter(), context);
    LoadDocument(document, options, bytes);
    bytes = Bytes();
    KeepPrefixes(document, context);
    if (options.to->needsPrefixes) AddPrefixes(document, context);
    element.FromXmlElement(document.GetDocumentElement(), context);
  }
  progress.Writing();
  const CBinaryData output = Write(element, options, context);
  progress.Written(output.GetLength());
  WriteFile(options.output, output.GetData(), output.GetLength());
}

#include "Gzip.h"
#include "Load.h"
#include "Progress.h"
#include "Tree.h"

using namespace RkXmlLib16;

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
}

#include "GpxFile.h"

namespace Gpx {

namespace {

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

CSerializationContext ReadFile(CGpxType& gpx, const std::string& name) {
  CXmlDocument document;
  if (EndsWith(name, ".json") || EndsWith(name, ".json.gz")) {
    const CBinaryData xml = document.LoadJsonFile(name);
    document.LoadXmlStream(xml.GetData(), xml.GetLength());
  } else {
    document.Load(name);
  }
  gpx.FromXmlElement(document.GetDocumentElement());

  CSerializationContext context;
  context.TakeNamespaces(document);
  context.GetJsonContext()->SetStrictOutput(true);  // quotation marks in names survive only so
  return context;
}

void WriteFile(const CGpxType& gpx, const std::string& name, const CSerializationContext& context) {
  const bool wrapped = EndsWith(name, ".gz");
  const std::string plain = wrapped ? name.substr(0, name.size() - 3) : name;
  const CompressionType compression = wrapped ? CompressionType_GZip : CompressionType_None;
  if (EndsWith(plain, ".json")) {
    gpx.ToJsonFile(name, /*formatted=*/true, XmlEncoding_UTF8, EOLType_LF, context, compression);
  } else if (EndsWith(plain, ".finf")) {
    gpx.ToFastInfosetFile(name, FInfoDecl_None, context, compression);
  } else {
    gpx.ToXmlFile(name, /*includeDocumentHeader=*/true, /*formatted=*/true, XmlEncoding_UTF8, EOLType_LF, context,
                  compression);
  }
}

}  // namespace Gpx

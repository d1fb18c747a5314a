#include "GpxFile.h"

namespace Gpx {

namespace {

bool EndsWith(const std::wstring& text, const std::wstring& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

std::wstring Wide(const char* utf8) {
  std::string bytes(utf8);
  return CEncoder::Utf8ToUnicode(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
}

CSerializationContext ReadFile(CGpxType& gpx, const char* fileName) {
  const std::wstring name = Wide(fileName);
  CXmlDocument document;
  if (EndsWith(name, L".json") || EndsWith(name, L".json.gz")) {
    const CBinaryData xml = document.LoadJsonFile(name.c_str());
    document.LoadXmlStream(xml.GetData(), xml.GetLength());
  } else {
    document.Load(name.c_str());
  }
  gpx.FromXmlElement(document.GetDocumentElement());

  CSerializationContext context;
  context.TakeNamespaces(document);
  context.GetJsonContext()->SetStrictOutput(true);  // quotation marks in names survive only so
  return context;
}

void WriteFile(const CGpxType& gpx, const char* fileName, const CSerializationContext& context) {
  const std::wstring name = Wide(fileName);
  const bool wrapped = EndsWith(name, L".gz");
  const std::wstring plain = wrapped ? name.substr(0, name.size() - 3) : name;
  const CompressionType compression = wrapped ? CompressionType_GZip : CompressionType_None;
  if (EndsWith(plain, L".json")) {
    gpx.ToJsonFile(name.c_str(), /*formatted=*/true, XmlEncoding_UTF8, EOLType_LF, context, compression);
  } else if (EndsWith(plain, L".finf")) {
    gpx.ToFastInfosetFile(name.c_str(), FInfoDecl_None, context, compression);
  } else {
    gpx.ToXmlFile(name.c_str(), /*includeDocumentHeader=*/true, /*formatted=*/true, XmlEncoding_UTF8, EOLType_LF,
                  context, compression);
  }
}

}  // namespace Gpx

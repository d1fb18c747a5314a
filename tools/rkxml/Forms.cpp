#include "Forms.h"

#include <algorithm>
#include <utility>

using namespace RkXmlLib16;

namespace {

CompressionType CompressionOf(const Layout& layout) {
  return layout.gzip ? CompressionType_GZip : CompressionType_None;
}

void LoadXml(CXmlDocument& document, Bytes& bytes) { document.LoadXmlStream(bytes.data(), bytes.size()); }

std::unique_ptr<CDocumentWriter> OpenXml(CByteTarget target, const Layout& layout,
                                         const CSerializationContext& context) {
  return std::make_unique<CXmlDocumentWriter>(std::move(target), CompressionOf(layout), context,
                                              /*includeDocumentHeader=*/true, layout.pretty, layout.eol);
}

CBinaryData WriteXml(const CXmlObjectBase& object, const Layout& layout, const CSerializationContext& context) {
  return object.ToXmlStream(/*includeDocumentHeader=*/true, layout.pretty, layout.encoding, layout.eol, context);
}

void LoadJson(CXmlDocument& document, Bytes& bytes) {
  CXmlDocument json(document.GetContext());
  json.SetIndentsJson(false);
  const CBinaryData xml = json.LoadJsonStream(bytes.data(), bytes.size());
  try {
    document.LoadConverted(xml, json);
  } catch (const CRkException& e) {
    throw CRkException(L"the JSON text makes no XML document: " + e.GetMessage());
  }
}

std::unique_ptr<CDocumentWriter> OpenJson(CByteTarget target, const Layout& layout,
                                          const CSerializationContext& context) {
  return std::make_unique<CJsonDocumentWriter>(std::move(target), CompressionOf(layout), context, layout.pretty,
                                               layout.eol);
}

CBinaryData WriteJson(const CXmlObjectBase& object, const Layout& layout, const CSerializationContext& context) {
  return object.ToJsonStream(layout.pretty, layout.encoding, layout.eol, context);
}

// The texts of an element that was read have no types, so beside the suggested encodings all of them are tried under
// the numeric alphabet, which halves numbers.
std::unique_ptr<CDocumentWriter> OpenFastInfoset(CByteTarget target, const Layout& layout,
                                                 const CSerializationContext& context) {
  CFastInfosetContext& settings = *context.GetFIContext();
  if (layout.typed) {
    settings.SetSuggestedValues();
    settings.SetEncoding(ItemType_string, {FIStringEncoding_RestrictedAlphabet, FIRestrictedAlphabet_Numeric});
  }
  return std::make_unique<CFastInfosetDocumentWriter>(std::move(target), CompressionOf(layout), context,
                                                      layout.declaration);
}

bool EndsWith(std::string_view text, std::string_view ending) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return text.size() >= ending.size() && std::equal(ending.rbegin(), ending.rend(), text.rbegin(),
                                                    [&](char a, char b) { return lower(a) == lower(b); });
}

}  // namespace

void JsonMapping::ApplyTo(const CSerializationContext& context) const {
  CJsonContext& settings = *context.GetJsonContext();
  settings.SetSupportRoundtrip(mode);
  settings.SetRootElementName(rootName.c_str());
  settings.SetStrictOutput(true);
}

const std::vector<Form>& Forms() {
  static const std::vector<Form> forms = {
      {"xml",
       "XML text",
       {".xml",     ".xsd",   ".xsl",    ".xslt", ".rng",     ".wsdl",    ".wadl", ".xhtml",    ".svg",
        ".mml",     ".smil",  ".ttml",   ".gpx",  ".kml",     ".gml",     ".tcx",  ".osm",      ".rss",
        ".atom",    ".rdf",   ".owl",    ".skos", ".xbrl",    ".dae",     ".x3d",  ".musicxml", ".plist",
        ".fodt",    ".fods",  ".fodp",   ".dbk",  ".dita",    ".ditamap", ".tei",  ".opf",      ".ncx",
        ".xlf",     ".xliff", ".tmx",    ".xmi",  ".graphml", ".gexf",    ".xspf", ".xaml",     ".csproj",
        ".vcxproj", ".resx",  ".nuspec", ".ui",   ".qrc",     ".jnlp"},
       LoadXml,
       OpenXml,
       WriteXml,
       /*needsPrefixes=*/false},
      {"json", "JSON text", {".json"}, LoadJson, OpenJson, WriteJson, /*needsPrefixes=*/true},
      {"finf", "Fast Infoset", {".finf"}, LoadXml, OpenFastInfoset, /*write=*/nullptr, /*needsPrefixes=*/false},
  };
  return forms;
}

std::string FormNames(const char* separator) {
  std::string names;
  for (const Form& form : Forms()) names += (names.empty() ? "" : separator) + std::string(form.name);
  return names;
}

const Form* FindForm(std::string_view name) {
  const auto& forms = Forms();
  const auto found = std::find_if(forms.begin(), forms.end(), [&](const Form& form) { return name == form.name; });
  return found == forms.end() ? nullptr : &*found;
}

const Form* FormOfFile(std::string_view fileName) {
  if (IsGzipName(fileName)) fileName.remove_suffix(3);
  fileName.remove_prefix(fileName.rfind('/') + 1);
  for (const Form& form : Forms()) {
    for (const std::string_view ending : form.fileEndings) {
      if (EndsWith(fileName, ending)) return &form;
    }
  }
  return fileName.find('.') == std::string_view::npos ? &Forms().front() : nullptr;
}

bool IsGzipName(std::string_view fileName) { return EndsWith(fileName, ".gz"); }

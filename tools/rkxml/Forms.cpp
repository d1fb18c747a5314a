#include "Forms.h"

#include <algorithm>

using namespace RkXmlLib16;

namespace {

void LoadXml(CXmlDocument& document, Bytes& bytes) { document.LoadXmlStream(bytes.data(), bytes.size()); }

CBinaryData WriteXml(const CXmlObjectBase& object, const Layout& layout, const CSerializationContext& context) {
  return object.ToXmlStream(/*includeDocumentHeader=*/true, layout.pretty, layout.encoding, layout.eol, context,
                            layout.gzip ? CompressionType_GZip : CompressionType_None);
}

void LoadJson(CXmlDocument& document, Bytes& bytes) {
  const CBinaryData xml = document.LoadJsonStream(bytes.data(), bytes.size());
  try {
    document.LoadXmlStream(xml.GetData(), xml.GetLength());
  } catch (const CRkException& e) {
    throw CRkException(L"the JSON text makes no XML document: " + e.GetMessage());
  }
}

CBinaryData WriteJson(const CXmlObjectBase& object, const Layout& layout, const CSerializationContext& context) {
  return object.ToJsonStream(layout.pretty, layout.encoding, layout.eol, context,
                             layout.gzip ? CompressionType_GZip : CompressionType_None);
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
      {"xml", "XML text", {".xml"}, LoadXml, WriteXml, /*needsPrefixes=*/false},
      {"json", "JSON text", {".json"}, LoadJson, WriteJson, /*needsPrefixes=*/true},
  };
  return forms;
}

const Form* FindForm(std::string_view name) {
  const auto& forms = Forms();
  const auto found = std::find_if(forms.begin(), forms.end(), [&](const Form& form) { return name == form.name; });
  return found == forms.end() ? nullptr : &*found;
}

const Form& FormOfFile(std::string_view fileName) {
  if (IsGzipName(fileName)) fileName.remove_suffix(3);
  for (const Form& form : Forms()) {
    for (const std::string_view ending : form.fileEndings) {
      if (EndsWith(fileName, ending)) return form;
    }
  }
  return Forms().front();
}

bool IsGzipName(std::string_view fileName) { return EndsWith(fileName, ".gz"); }

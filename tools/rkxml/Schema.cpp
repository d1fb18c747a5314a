#include "Schema.h"

#include <sstream>
#include <unordered_set>

#include "Text.h"
#include "Tree.h"

using namespace RkXmlLib16;
using namespace RkXmlSchema;

namespace {

bool IsRelativeFile(const std::wstring& location) {
  return !location.empty() && location[0] != L'/' && location.find(L':') == std::wstring::npos;
}

}  // namespace

std::string Lines(const std::vector<Diagnostic>& diagnostics, Severity severity) {
  std::string lines;
  for (const Diagnostic& diagnostic : diagnostics)
    if (diagnostic.severity == severity) lines += ForTerminal(diagnostic.ToString()) + "\n";
  return lines;
}

std::unique_ptr<CSchemaSet> ReadSchemas(const Options& options, const std::vector<std::string>& locations) {
  SchemaOptions schemaOptions;
  schemaOptions.catalogFile = FromUtf8(options.catalog);
  auto schemas = std::make_unique<CSchemaSet>(schemaOptions);
  for (const auto* const files : {&options.schemas, &locations})
    for (const std::string& file : *files) schemas->AddFile(CFileName(file));
  if (!schemas->Resolve()) throw SchemaError(Lines(schemas->GetDiagnostics(), Severity::Error));
  return schemas;
}

Schema::Schema(const Options& options, const std::vector<std::string>& locations) {
  m_set = ReadSchemas(options, locations);
  m_binding = std::make_unique<CBinding>(*m_set);
  m_dynamic = std::make_unique<CDynamicSchema>(*m_binding);
}

std::string Schema::GetUnchecked() const {
  return Lines(m_set->GetDiagnostics(), Severity::Warning) + Lines(m_binding->GetUnchecked(), Severity::Warning);
}

std::vector<std::string> SchemaLocations(const CXmlDocument& document, const std::string& file) {
  const std::size_t slash = file.rfind('/');
  const std::string folder = slash == std::string::npos ? std::string() : file.substr(0, slash + 1);
  std::vector<std::string> files;
  std::unordered_set<std::wstring> known;
  const auto add = [&](const std::wstring& location) {
    if (IsRelativeFile(location) && known.insert(location).second) files.push_back(folder + ToUtf8(location));
  };
  for (TreeWalk walk(document); walk; walk.Next()) {
    std::wistringstream pairs(walk->GetAttribute(L"schemaLocation", kInstanceNamespace).ToString());
    for (std::wstring uri, location; pairs >> uri >> location;) add(location);
    add(CWhitespaceUtils::Collapse(walk->GetAttribute(L"noNamespaceSchemaLocation", kInstanceNamespace).ToString()));
  }
  return files;
}

ValidatedDocument ReadBySchema(const Schema& schema, const CXmlDocument& document, CSerializationContext& context,
                               const std::string& file) {
  ValidatedDocument result;
  CErrorCollector collector;
  const std::string name = file == "-" ? "standard input" : ForTerminal(file);
  const auto tell = [&](const CRkException& e) {
    result.errors.push_back(name + (e.GetLocation().IsKnown() ? ":" : ": ") + Reason(e));
  };
  context.SetErrorHandler(&collector);
  try {
    result.object = schema.Get().NewFor(*document.GetDocumentElement(), context);
    result.object->FromXmlElement(document.GetDocumentElement(), context);
  } catch (const CRkException& e) {
    if (!collector.HasErrors()) tell(e);
  }
  context.SetErrorHandler(nullptr);
  for (const auto& error : collector.GetErrors()) tell(*error);
  if (collector.GetErrorCount() > collector.GetErrors().size())
    result.errors.push_back(name + ": " + Grouped(collector.GetErrorCount() - collector.GetErrors().size()) +
                            " more errors");
  return result;
}

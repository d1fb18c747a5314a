#include <cstdio>
#include <optional>

#include "Load.h"
#include "Schema.h"
#include "Text.h"

using namespace RkXmlLib16;

namespace {

// One file that is to be checked.
class CheckedFile {
 public:
  CheckedFile(const Options& options, const std::string& file) : m_options(options) {
    m_options.input = file;
    if (m_options.from == nullptr) m_options.from = FormOfFile(file);
    if (m_options.from == nullptr) m_options.from = FindForm("xml");
    m_context.GetLimits() = options.limits;
    options.json.ApplyTo(m_context);
    const bool hasNamespaces = m_options.from != FindForm("json") || options.json.mode == JsonRoundTrip_Namespaces;
    m_context.SetIgnoreNamespaces(!hasNamespaces);
  }

  // Reads the file and gives it to `use`. What is wrong with it goes to `out`; false when there is anything.
  template <class Use>
  bool Load(std::FILE* out, Use&& use) {
    try {
      const InputFile file(m_options.input);
      CXmlDocument document(m_context);
      LoadDocument(document, m_options, file);
      return use(document, m_context);
    } catch (const FileError& e) {
      if (out != nullptr) std::fprintf(out, "%s\n", e.what());
    } catch (const DocumentError& e) {
      if (out != nullptr) std::fprintf(out, "%s\n", e.what());
    }
    return false;
  }

 private:
  Options m_options;
  CSerializationContext m_context;
};

std::vector<std::string> FindLocations(const Options& options) {
  std::vector<std::string> all;
  for (const std::string& file : options.inputs) {
    CheckedFile(options, file).Load(nullptr, [&](const CXmlDocument& document, CSerializationContext&) {
      const std::vector<std::string> found = SchemaLocations(document, file);
      all.insert(all.end(), found.begin(), found.end());
      return true;
    });
  }
  return all;
}

}  // namespace

bool Check(const Options& options) {
  std::optional<Schema> schema;
  if (options.UsesSchema()) {
    schema.emplace(options, options.followLocations ? FindLocations(options) : std::vector<std::string>());
    if (!options.quiet) std::fputs(schema->GetUnchecked().c_str(), stderr);
  }
  bool good = true;
  for (const std::string& file : options.inputs) {
    good &= CheckedFile(options, file).Load(stdout, [&](const CXmlDocument& document, CSerializationContext& context) {
      if (!schema) return true;
      const ValidatedDocument result = ReadBySchema(*schema, document, context, file);
      for (const std::string& error : result.errors) std::printf("%s\n", error.c_str());
      return result.errors.empty();
    });
  }
  if (std::fflush(stdout) != 0) throw FileError("cannot write the standard stream");
  return good;
}

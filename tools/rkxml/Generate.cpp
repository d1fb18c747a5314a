#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Commands.h"
#include "Files.h"
#include "Schema.h"
#include "Text.h"
#include "schema/bind/Binding.h"
#include "schema/emit/Emitter.h"

using namespace RkXmlLib16;
using namespace RkXmlSchema;

namespace {

// The folder and those around it.
void MakeFolder(const std::string& folder) {
  for (std::size_t at = 0; at != std::string::npos;) {
    at = folder.find('/', at + 1);
    const std::string part = folder.substr(0, at);
    if (::mkdir(part.c_str(), 0777) != 0 && errno != EEXIST)
      throw FileError("cannot make the folder " + ForTerminal(part) + ": " + std::strerror(errno));
  }
}

bool Holds(const std::string& name, const std::string& text) {
  if (::access(name.c_str(), R_OK) != 0) return false;
  const Bytes bytes = ReadFile(name);
  return std::equal(bytes.begin(), bytes.end(), text.begin(), text.end(),
                    [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); });
}

// A file that holds the text already keeps its time, so that only what changed is compiled again.
void Write(const std::string& name, const std::string& text) {
  if (!Holds(name, text)) WriteFile(name, reinterpret_cast<const unsigned char*>(text.data()), text.size());
}

// A name as make takes it.
std::string ForMake(const std::string& name) {
  std::string escaped;
  for (const char c : name) {
    if (c == ' ' || c == '#') escaped += '\\';
    if (c == '$') escaped += '$';
    escaped += c;
  }
  return escaped;
}

}  // namespace

void Generate(const Options& options) {
  const std::unique_ptr<CSchemaSet> set = ReadSchemas(options, {});
  const CSchemaSet& schemas = *set;
  std::fputs(Lines(schemas.GetDiagnostics(), Severity::Warning).c_str(), stderr);
  const CBinding binding(schemas);

  EmitOptions emit;
  emit.generator = "rkxml " RKXML_TOOL_VERSION;
  for (const auto& [uri, name] : options.namespaces) {
    const std::wstring wanted = FromUtf8(uri);
    const auto& documents = schemas.GetDocuments();
    if (std::none_of(documents.begin(), documents.end(),
                     [&](const SchemaDocument& document) { return document.targetNamespace == wanted; }))
      throw UsageError("no schema has the target namespace '" + ForTerminal(uri) + "'", "--namespace is not used");
    emit.namespaces[wanted] = name;
  }
  const std::vector<EmittedFile> files = EmitClasses(binding, emit);

  std::string folder = options.folder.empty() ? "." : options.folder;
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  const auto pathOf = [&](const EmittedFile& file) { return folder == "." ? file.name : folder + "/" + file.name; };
  if (!options.list && folder != ".") MakeFolder(folder);
  for (const EmittedFile& file : files) {
    if (!options.list) Write(pathOf(file), file.text);
    std::printf("%s\n", pathOf(file).c_str());
  }
  if (!options.depfile.empty()) {
    std::string rule;
    for (const EmittedFile& file : files) rule += (rule.empty() ? "" : " ") + ForMake(pathOf(file));
    rule += ":";
    for (const SchemaDocument& document : schemas.GetDocuments()) rule += " \\\n  " + ForMake(ToUtf8(*document.file));
    Write(options.depfile, rule + "\n");
  }
  if (std::fflush(stdout) != 0) throw FileError("cannot write the standard stream");
}

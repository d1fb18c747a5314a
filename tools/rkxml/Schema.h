#ifndef RKXML_TOOL_SCHEMA_H
#define RKXML_TOOL_SCHEMA_H

#include <memory>
#include <string>
#include <vector>

#include "Commands.h"
#include "schema/dynamic/DynamicObject.h"

// Reads the schemas of the options and `locations` beside them. Throws SchemaError.
std::unique_ptr<RkXmlSchema::CSchemaSet> ReadSchemas(const Options& options, const std::vector<std::string>& locations);
// A line each.
std::string Lines(const std::vector<RkXmlSchema::Diagnostic>& diagnostics, RkXmlSchema::Severity severity);

// The schemas of a call, ready to read documents.
class Schema {
 public:
  // As ReadSchemas.
  Schema(const Options& options, const std::vector<std::string>& locations);

  const RkXmlSchema::CDynamicSchema& Get() const { return *m_dynamic; }
  // What the schemas say that is not checked, a line each.
  std::string GetUnchecked() const;

 private:
  std::unique_ptr<RkXmlSchema::CSchemaSet> m_set;
  std::unique_ptr<RkXmlSchema::CBinding> m_binding;
  std::unique_ptr<RkXmlSchema::CDynamicSchema> m_dynamic;
};

// The relative files that xsi:schemaLocation and xsi:noNamespaceSchemaLocation of the document name, as seen from the
// folder of `file`.
std::vector<std::string> SchemaLocations(const RkXmlLib16::CXmlDocument& document, const std::string& file);

// A document against the schema.
struct ValidatedDocument {
  RkXmlLib16::CSmartPtr<RkXmlSchema::CDynamicObject> object;  // null when not even the root fits
  std::vector<std::string> errors;                            // a line each
};
ValidatedDocument ReadBySchema(const Schema& schema, const RkXmlLib16::CXmlDocument& document,
                               RkXmlLib16::CSerializationContext& context, const std::string& file);

#endif

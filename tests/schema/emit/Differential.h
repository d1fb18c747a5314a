#ifndef RKXMLLIB16_TESTS_SCHEMA_EMIT_DIFFERENTIAL_H
#define RKXMLLIB16_TESTS_SCHEMA_EMIT_DIFFERENTIAL_H

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "schema/dynamic/DynamicObject.h"

namespace RkXmlSchema {

// Generated classes beside objects without classes of the same schemas.
class CDifferential {
 public:
  CDifferential(const std::vector<std::filesystem::path>& schemas, const RkXmlLib16::SchemaModel& classes);

  // What the two make differently of the document, "" for nothing: its errors, else the bytes in every form, and those
  // of an object that is read again from each form.
  std::wstring Compare(const std::string& document) const;
  // The same for the document and everything that one change by rule makes of it, or about `most` of these, spread over
  // the document. `count` gets the number of documents.
  std::wstring CompareVariants(const std::string& document, int& count, std::size_t most = SIZE_MAX) const;

 private:
  CSchemaSet m_set;
  std::unique_ptr<CBinding> m_binding;
  std::unique_ptr<CDynamicSchema> m_dynamic;
  const RkXmlLib16::SchemaModel& m_classes;
};

}  // namespace RkXmlSchema

#endif

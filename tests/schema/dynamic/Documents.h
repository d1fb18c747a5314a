#ifndef RKXMLLIB16_TESTS_SCHEMA_DYNAMIC_DOCUMENTS_H
#define RKXMLLIB16_TESTS_SCHEMA_DYNAMIC_DOCUMENTS_H

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "schema/dynamic/DynamicObject.h"

namespace RkXmlSchema {

// A schema, bound and ready to read documents.
class CSchemaUnderTest {
 public:
  explicit CSchemaUnderTest(const std::vector<std::filesystem::path>& files);
  explicit CSchemaUnderTest(const std::string& text);

  bool IsUsable() const { return m_dynamic != nullptr; }
  std::wstring GetErrors() const;
  const CDynamicSchema& Get() const { return *m_dynamic; }
  const CBinding& GetBinding() const { return *m_binding; }

  // "" for a valid document, else what is wrong with it.
  std::wstring Check(const std::filesystem::path& file) const;
  std::wstring CheckText(const std::string& xml) const;

 private:
  void Bind();

  CSchemaSet m_set;
  std::unique_ptr<CBinding> m_binding;
  std::unique_ptr<CDynamicSchema> m_dynamic;
};

// The message and the path of a failure, in one line.
std::wstring Describe(const RkXmlLib16::CRkException& e);

// Reads the document and writes it as XML, JSON and Fast Infoset, each of which has to come back as it was. The first
// difference, or "".
std::wstring RoundTrip(const CSchemaUnderTest& schema, const std::filesystem::path& file);
std::wstring RoundTripText(const CSchemaUnderTest& schema, const std::string& xml);

}  // namespace RkXmlSchema

#endif

#ifndef RKXMLLIB16_TESTS_SUPPORT_SCHEMAS_H
#define RKXMLLIB16_TESTS_SUPPORT_SCHEMAS_H

#include <memory>
#include <string>

#include "schema/components/SchemaSet.h"

namespace RkXmlSchema {

// The parts within an xs:schema with target namespace "urn:t", bound to the prefix t.
inline std::string Schema(const std::string& parts) {
  return "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:t' targetNamespace='urn:t' "
         "elementFormDefault='qualified'>\n" +
         parts + "</xs:schema>";
}

inline std::unique_ptr<CSchemaSet> Read(const std::string& parts) {
  auto set = std::make_unique<CSchemaSet>();
  set->AddText(Schema(parts), L"test.xsd");
  set->Resolve();
  return set;
}

// All lines, without the folder of the file.
inline std::wstring Lines(const CSchemaSet& set) {
  std::wstring lines;
  for (const Diagnostic& d : set.GetDiagnostics()) {
    const std::wstring line = d.ToString();
    const std::size_t file = line.find(L"test.xsd");
    lines += (file == std::wstring::npos ? line : line.substr(file)) + L'\n';
  }
  return lines;
}

}  // namespace RkXmlSchema

#endif

#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_DIAGNOSTIC_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_DIAGNOSTIC_H

#include <string>

namespace RkXmlSchema {

// A place in a schema document. The file name belongs to the schema set, which outlives its components; null for
// built-in components. Lines and columns count from 1; 0 when not known.
struct SourceLocation {
  const std::wstring* file = nullptr;
  unsigned long line = 0;
  unsigned long column = 0;

  // "orders.xsd:12:5", without what is not known; empty for a built-in component.
  std::wstring ToString() const;
};

enum class Severity { Warning, Error };

// One line about a schema.
struct Diagnostic {
  Severity severity = Severity::Error;
  SourceLocation location;
  std::wstring message;

  // "orders.xsd:12:5: error: The type definition [tns:item] is not declared."
  std::wstring ToString() const;
};

}  // namespace RkXmlSchema

#endif

// C++ classes for the documents of a schema: the classes of a binding as text. docs/generated-names.md tells the names.
#ifndef RKXMLLIB16_SCHEMA_EMIT_EMITTER_H
#define RKXMLLIB16_SCHEMA_EMIT_EMITTER_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "schema/bind/Binding.h"

namespace RkXmlSchema {

struct EmitOptions {
  // The C++ namespace ("my::order") for a target namespace; others get one from their URI.
  std::map<std::wstring, std::string> namespaces;
  std::string generator = "rkxml";  // who made the sources, for their first line
};

// Whether generated code can stand in a namespace called so ("my::order"): each part is an identifier, and no keyword,
// macro, function of the C library or name of this library.
bool IsNamespaceName(std::string_view name);

// One header or source, in UTF-8.
struct EmittedFile {
  std::string name;  // without a folder
  std::string text;
};

// A header and one or more sources for each schema document. The same binding always gives the same text.
std::vector<EmittedFile> EmitClasses(const CBinding& binding, const EmitOptions& options = {});

}  // namespace RkXmlSchema

#endif

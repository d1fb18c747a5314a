#ifndef RKXML_TOOL_FORMS_H
#define RKXML_TOOL_FORMS_H

#include <RkXmlLib16/RkXmlLib16.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Files.h"

// How the output is to look.
struct Layout {
  bool pretty = true;
  std::wstring indent = L"\t";
  RkXmlLib16::EOLType eol = RkXmlLib16::EOLType_LF;
  RkXmlLib16::XmlEncoding encoding = RkXmlLib16::XmlEncoding_UTF8;
  bool gzip = false;                                               // in a gzip wrapper
  RkXmlLib16::FInfoDecl declaration = RkXmlLib16::FInfoDecl_None;  // of Fast Infoset
  bool typed = false;                                              // likewise: values in their machine form
};

// How JSON and XML are mapped to each other.
struct JsonMapping {
  RkXmlLib16::JsonRoundTrip mode = RkXmlLib16::JsonRoundTrip_Namespaces;
  std::wstring rootName;  // of an element around the whole input; empty for none

  void ApplyTo(const RkXmlLib16::CSerializationContext& context) const;
};

// A form that documents have. To add one, add a row to the table in Forms.cpp.
struct Form {
  const char* name;                           // as --from and --to take it
  const char* title;                          // as people call it
  std::vector<std::string_view> fileEndings;  // in lower case
  void (*load)(RkXmlLib16::CXmlDocument& document, Bytes& bytes);
  // For text in UTF-8, and for bytes that are no text.
  std::unique_ptr<RkXmlLib16::CDocumentWriter> (*open)(RkXmlLib16::CByteTarget target, const Layout& layout,
                                                       const RkXmlLib16::CSerializationContext& context);
  // For text in other encodings; null where there is none.
  RkXmlLib16::CBinaryData (*write)(const RkXmlLib16::CXmlObjectBase& object, const Layout& layout,
                                   const RkXmlLib16::CSerializationContext& context);
  bool needsPrefixes;  // it writes only namespaces whose prefixes the settings tell
};

const std::vector<Form>& Forms();

// The names of all forms.
std::string FormNames(const char* separator);

// The form with this name, or null.
const Form* FindForm(std::string_view name);

// The form that the ending of a file name tells, with or without ".gz" behind it: XML for a name without ending, null
// for an unknown ending.
const Form* FormOfFile(std::string_view fileName);

// Whether the file name ends in ".gz".
bool IsGzipName(std::string_view fileName);

#endif

#ifndef RKXML_TOOL_COMMANDS_H
#define RKXML_TOOL_COMMANDS_H

#include <string>

#include "Options.h"

// The commands. They throw FileError, CRkException, DocumentError and, with a schema, SchemaError.
void Convert(const Options& options);
void Show(const Options& options);
void Split(const Options& options);
// Whether all documents can be read; tells the errors of those that cannot.
bool Check(const Options& options);
// Writes C++ classes for schemas, or tells their names.
void Generate(const Options& options);

// The help of a command, or of the tool for Command::None.
std::string Help(Command command);

// A document that is bad in a way that the tool can say better than the library.
class DocumentError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The schema cannot be used; a line for each reason.
class SchemaError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

#endif

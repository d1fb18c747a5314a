#ifndef RKXML_TOOL_OPTIONS_H
#define RKXML_TOOL_OPTIONS_H

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Forms.h"

enum class Command { None, Convert, Show, Check, Generate, Split };

// What the command line asks for.
struct Options {
  Command command = Command::None;
  bool help = false;
  bool version = false;
  std::string input;
  std::string output;
  std::vector<std::string> inputs;  // of check
  const Form* from = nullptr;       // never null once parsed
  const Form* to = nullptr;         // of convert and split: never null once parsed
  Layout layout;
  JsonMapping json;
  RkXmlLib16::CReadLimits limits;
  std::vector<std::string> schemas;
  std::string catalog;                                          // of schema locations; empty for none
  bool followLocations = false;                                 // take schemas from xsi:schemaLocation too
  bool force = false;                                           // convert what is not valid, without the schema
  std::string folder = ".";                                     // of generate: where the sources go
  std::vector<std::pair<std::string, std::string>> namespaces;  // of generate: target namespace, C++ namespace
  std::string depfile;           // of generate: what it read, as a make rule; empty for none
  bool list = false;             // of generate: only tell the names of the sources
  std::string path;              // of split: the elements to count
  unsigned long long count = 0;  // of split: so many of them in a document
  bool octets = false;           // show the octets of a Fast Infoset
  bool quiet = false;            // do not tell what a conversion leaves out, or what a schema says that is not checked

  bool UsesSchema() const { return !schemas.empty() || followLocations; }
};

// A wrong call: the reason, and on the next line what may help.
class UsageError : public std::runtime_error {
 public:
  UsageError(const std::string& reason, std::string hint) : std::runtime_error(reason), m_hint(std::move(hint)) {}
  const std::string& GetHint() const { return m_hint; }

 private:
  std::string m_hint;
};

// Throws UsageError.
Options ParseOptions(int argc, const char* const* argv);

#endif

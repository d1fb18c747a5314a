#include <cstdio>

#include "Load.h"
#include "Text.h"

using namespace RkXmlLib16;

bool Check(const Options& options) {
  bool good = true;
  for (const std::string& file : options.inputs) {
    Options one = options;
    one.input = file;
    if (one.from == nullptr) one.from = FormOfFile(file);
    if (one.from == nullptr) one.from = FindForm("xml");
    CSerializationContext context;
    context.GetLimits() = options.limits;
    options.json.ApplyTo(context);
    try {
      Bytes bytes = ReadFile(file);
      CXmlDocument document(context);
      LoadDocument(document, one, bytes);
    } catch (const FileError& e) {
      std::printf("%s\n", e.what());
      good = false;
    } catch (const DocumentError& e) {
      std::printf("%s\n", e.what());
      good = false;
    }
  }
  if (std::fflush(stdout) != 0) throw FileError("cannot write the standard stream");
  return good;
}

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <new>

#include "Commands.h"
#include "Text.h"

namespace {

enum ExitCode { kDone = 0, kFailed = 1, kWrongCall = 2 };

int Run(const Options& options) {
  if (options.help) {
    std::fputs(Help(options.command).c_str(), stdout);
  } else if (options.version) {
    std::puts("rkxml " RKXML_TOOL_VERSION);
  } else if (options.command == Command::Convert) {
    Convert(options);
  } else if (options.command == Command::Check) {
    return Check(options) ? kDone : kFailed;
  } else if (options.command == Command::Generate) {
    Generate(options);
  } else if (options.command == Command::Split) {
    Split(options);
  } else {
    Show(options);
  }
  return kDone;
}

// The program's name stands out on a terminal, unless the user wants no colours (see no-color.org).
void Complain(const std::string& reason) {
  const char* noColor = std::getenv("NO_COLOR");
  const bool colored = ::isatty(STDERR_FILENO) != 0 && (noColor == nullptr || *noColor == '\0');
  std::fprintf(stderr, colored ? "\033[1;31mrkxml:\033[0m %s\n" : "rkxml: %s\n", reason.c_str());
}

int Fail(const std::string& reason) {
  Complain(reason);
  return kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(ParseOptions(argc, argv));
  } catch (const UsageError& e) {
    Complain(std::string(e.what()) + " (" + e.GetHint() + ")");
    return kWrongCall;
  } catch (const SchemaError& e) {
    std::fputs(e.what(), stderr);
    return kWrongCall;
  } catch (const FileError& e) {
    return Fail(e.what());
  } catch (const DocumentError& e) {
    return Fail(e.what());
  } catch (const RkXmlLib16::CRkException& e) {
    return Fail(Reason(e));
  } catch (const std::bad_alloc&) {
    return Fail("not enough memory");
  }
}

#include <cstdio>
#include <new>

#include "Commands.h"
#include "Text.h"

namespace {

enum ExitCode { kDone = 0, kFailed = 1, kWrongCall = 2 };

void Run(const Options& options) {
  if (options.help) {
    std::fputs(Help(options.command).c_str(), stdout);
  } else if (options.version) {
    std::puts("rkxml " RKXML_TOOL_VERSION);
  } else if (options.command == Command::Convert) {
    Convert(options);
  } else {
    Show(options);
  }
}

int Fail(const std::string& reason) {
  std::fprintf(stderr, "rkxml: %s\n", reason.c_str());
  return kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    Run(ParseOptions(argc, argv));
    return kDone;
  } catch (const UsageError& e) {
    std::fprintf(stderr, "rkxml: %s (%s)\n", e.what(), e.GetHint().c_str());
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

// Runs every operation of the benchmark on its documents a few times: the training run of the profile-guided build.
// scripts/tune.sh builds and runs it.

#include <RkXmlLib16/RkXmlLib16.h>

#include <cstdio>

#include "Operations.h"

int main() {
  constexpr std::size_t kBytesForEachOperation = 2 << 20;
  try {
    for (const Bench::Subject& subject : Bench::MakeSubjects({{"1 KB", 1000}, {"100 KB", 100000}}))
      for (const Bench::Operation& operation : subject.operations)
        for (std::size_t done = 0; done < kBytesForEachOperation; done += subject.bytes) {
          operation.prepare();
          operation.run();
          operation.finish();
        }
    return 0;
  } catch (const RkXmlLib16::CRkException& e) {
    std::fprintf(stderr, "train: %s\n", RkXmlLib16::ToUtf8(e.GetFullMessage()).c_str());
    return 1;
  }
}

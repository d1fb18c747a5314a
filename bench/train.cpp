// Goes every road of the benchmarks' documents a few times: what a build that records a profile learns from.
// scripts/tune.sh builds and runs it.

#include <RkXmlLib16/RkXmlLib16.h>

#include <cstdio>

#include "Roads.h"

int main() {
  constexpr std::size_t kBytesForEachRoad = 2 << 20;
  try {
    for (const Bench::Subject& subject : Bench::MakeSubjects({{"1 KB", 1000}, {"100 KB", 100000}}))
      for (const Bench::Road& road : subject.roads)
        for (std::size_t done = 0; done < kBytesForEachRoad; done += subject.bytes) {
          road.prepare();
          road.run();
          road.finish();
        }
    return 0;
  } catch (const RkXmlLib16::CRkException& e) {
    std::fprintf(stderr, "train: %ls\n", e.GetFullMessage().c_str());
    return 1;
  }
}

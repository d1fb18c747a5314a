// Measures every operation on a document, each as a ratio to bare expat on the same XML bytes in the same run.
// scripts/bench.sh builds and runs it; --large adds documents of 100 MB.

#include <RkXmlLib16/RkXmlLib16.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "AllocationCount.h"
#include "Operations.h"

using Bench::Operation;
using Bench::Subject;
using RkXmlLib16::CRkException;

namespace {

using Clock = std::chrono::steady_clock;

void PrintSizes(const Subject& subject) {
  const auto ratio = [&subject](std::size_t bytes) {
    return static_cast<double>(bytes) / static_cast<double>(subject.bytes);
  };
  std::printf("%s: %zu bytes of XML, %zu elements; JSON %.2f, Fast Infoset %.3f, typed %.3f, gzip %.3f of it\n",
              subject.name.c_str(), subject.bytes, subject.elements, ratio(subject.jsonBytes), ratio(subject.finfBytes),
              ratio(subject.finfTypedBytes), ratio(subject.gzipBytes));
}

double Median(std::vector<double> values) {
  if (values.empty()) return 0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Keeps the time of every repetition; the tables are made of their medians.
class MedianReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs)
      if (run.run_type == Run::RT_Iteration)
        m_seconds[run.run_name.function_name].push_back(run.real_accumulated_time /
                                                        static_cast<double>(run.iterations));
  }
  double Seconds(const std::string& name) const {
    const auto at = m_seconds.find(name);
    return at == m_seconds.end() ? 0 : Median(at->second);
  }

 private:
  std::map<std::string, std::vector<double>> m_seconds;
};

// Small documents are repeated until so much XML was worked on.
constexpr std::size_t kBytesPerRepetition = 4 << 20;

std::string Key(const Subject& subject, const Operation& operation) { return subject.name + ": " + operation.name; }

void Register(const Subject& subject, const Operation& operation) {
  benchmark::RegisterBenchmark(Key(subject, operation).c_str(),
                               [&operation](benchmark::State& state) {
                                 for (auto _ : state) {
                                   operation.prepare();
                                   const auto start = Clock::now();
                                   operation.run();
                                   const std::chrono::duration<double> time = Clock::now() - start;
                                   state.SetIterationTime(time.count());
                                   operation.finish();
                                 }
                               })
      ->UseManualTime()
      ->Iterations(std::max<benchmark::IterationCount>(
          1, static_cast<benchmark::IterationCount>(kBytesPerRepetition / subject.bytes)));
}

void PrintTable(const Subject& subject, const MedianReporter& times) {
  std::printf("\n%s\n%-40s %9s %12s %13s %12s\n", subject.name.c_str(), "operation", "MB/s", "ratio", "allocations",
              "peak memory");
  std::printf("%-40s %9s %12s %13s %12s\n", "", "", "to expat", "per element", "times input");
  const double baseline = times.Seconds(Key(subject, subject.operations.front()));
  for (const Operation& operation : subject.operations) {
    const double seconds = times.Seconds(Key(subject, operation));
    if (seconds == 0) continue;
    operation.prepare();
    RkXmlLib16::FreeKeptMemory();
    Bench::StartCounting();
    operation.run();
    const Bench::HeapUse heap = Bench::StopCounting();
    operation.finish();
    std::printf("%-40s %9.1f %12.2f %13.2f %12.2f\n", operation.name.c_str(),
                static_cast<double>(subject.bytes) / seconds / 1e6, seconds / baseline,
                static_cast<double>(heap.allocations) / static_cast<double>(subject.elements),
                static_cast<double>(heap.peakBytes) / static_cast<double>(subject.bytes));
  }
}

// Nanoseconds for each byte of XML, by size: growth with the size would show here.
void PrintGrowth(const std::vector<Subject>& subjects, const MedianReporter& times) {
  std::printf("\ncost in ns per byte of XML, by size\n%-40s", "operation");
  for (const Subject& subject : subjects) std::printf(" %12s", subject.name.c_str());
  std::printf("\n");
  for (std::size_t i = 0; i < subjects.front().operations.size(); ++i) {
    std::printf("%-40s", subjects.front().operations[i].name.c_str());
    for (const Subject& subject : subjects)
      std::printf(" %12.2f",
                  times.Seconds(Key(subject, subject.operations[i])) * 1e9 / static_cast<double>(subject.bytes));
    std::printf("\n");
  }
}

}  // namespace

int main(int argc, char** argv) {
  bool large = false;
  std::vector<char*> arguments;
  for (int i = 0; i < argc; ++i) {
    if (std::strcmp(argv[i], "--large") == 0) {
      large = true;
    } else {
      arguments.push_back(argv[i]);
    }
  }
  std::string interleave = "--benchmark_enable_random_interleaving=true";
  std::string repetitions = "--benchmark_repetitions=5";
  arguments.insert(arguments.begin() + 1, {interleave.data(), repetitions.data()});
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());

  try {
    std::vector<Bench::Size> sizes = {{"1 KB", 1000}, {"100 KB", 100000}, {"10 MB", 10485760}};
    if (large) sizes.push_back({"100 MB", 104857600});
    const std::vector<Subject> subjects = Bench::MakeSubjects(sizes);
    for (const Subject& subject : subjects) PrintSizes(subject);
    for (const Subject& subject : subjects)
      for (const Operation& operation : subject.operations) Register(subject, operation);

    MedianReporter times;
    benchmark::RunSpecifiedBenchmarks(&times);
    for (const Subject& subject : subjects) PrintTable(subject, times);
    PrintGrowth(subjects, times);
    return 0;
  } catch (const CRkException& e) {
    std::fprintf(stderr, "bench: %s\n", RkXmlLib16::ToUtf8(e.GetFullMessage()).c_str());
    return 1;
  }
}

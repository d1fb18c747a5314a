// Measures every road of a document, each as a ratio to bare expat on the same XML bytes in the same run.
// scripts/bench.sh builds and runs it; --large adds documents of 100 MB.

#include <RkXmlLib16/RkXmlLib16.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "AllocationCount.h"
#include "Documents.h"
#include "Expat.h"
#include "Gpx.h"
#include "Order.h"

using namespace RkXmlLib16;

namespace {

using Clock = std::chrono::steady_clock;

// One road of one document: `run` is timed, `prepare` and `finish` are not.
struct Road {
  std::string name;
  std::function<void()> prepare = [] {};
  std::function<void()> run;
  std::function<void()> finish = [] {};
};

struct Subject {
  std::string name;
  std::size_t bytes;     // of XML text
  std::size_t elements;  // in it
  std::vector<Road> roads;
  std::shared_ptr<void> held;  // what the roads work on
};

template <class Root>
struct Held {
  std::string xml;
  CBinaryData json, finf, finfTyped, gzip;
  CSerializationContext context, typed;
  CSmartPtr<Root> object;  // filled
  CSmartPtr<Root> target;
  std::unique_ptr<CXmlDocument> document;
  CBinaryData out;
};

unsigned char* Bytes(const std::string& text) {
  return const_cast<unsigned char*>(reinterpret_cast<const unsigned char*>(text.data()));
}

// The C library puts off joining small pieces of memory that were freed until someone asks for a larger one. Done where
// objects are dropped, it costs no road that comes after.
void SettleHeap() {
  const std::vector<char> larger(4096);
  benchmark::DoNotOptimize(larger.data());
}

template <class Root>
Subject MakeSubject(const std::string& name, std::string&& xml) {
  auto held = std::make_shared<Held<Root>>();
  Held<Root>& h = *held;
  h.xml = std::move(xml);
  h.object = new Root;
  h.context.SetDefaultNamespaceURI(h.object->GetTargetNamespace());
  h.context.GetNamespaceAliases().Add(L"xsi", L"http://www.w3.org/2001/XMLSchema-instance");
  h.context.GetNamespaceAliases().Add(L"tp", L"urn:example:trackpoint");
  h.typed = h.context;
  h.typed.GetFIContext();
  h.object->FromXmlStream(Bytes(h.xml), h.xml.size(), h.context);
  h.json = h.object->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, h.context, CompressionType_None);
  h.finf = h.object->ToFastInfosetStream(FInfoDecl_None, h.context, CompressionType_None);
  h.typed.GetFIContext()->SetSuggestedValues();
  h.finfTyped = h.object->ToFastInfosetStream(FInfoDecl_None, h.typed, CompressionType_None);
  h.gzip = h.object->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, h.context, CompressionType_GZip);

  const auto fresh = [&h] { h.target = new Root; };
  const auto drop = [&h] {
    h.target = nullptr;
    SettleHeap();
  };
  const auto clear = [&h] { h.out.Clear(); };
  const auto newDocument = [&h] { h.document = std::make_unique<CXmlDocument>(h.context); };
  const auto dropDocument = [&h] { h.document.reset(); };
  const auto load = [&h] { h.document->LoadXmlStream(Bytes(h.xml), h.xml.size()); };
  const auto read = [&h] { h.target->FromXmlStream(Bytes(h.xml), h.xml.size(), h.context); };

  Subject subject{name, h.xml.size(), 0, {}, held};
  subject.elements = Bench::ParseWithBareExpat(h.xml);
  auto& roads = subject.roads;
  roads.push_back({"bare expat", [] {}, [&h] { Bench::ParseWithBareExpat(h.xml); }});
  roads.push_back({"XML bytes to tree", newDocument, load, dropDocument});
  roads.push_back({"XML bytes to objects", fresh, read, drop});
  roads.push_back({"objects to XML bytes", clear, [&h] {
                     h.out = h.object->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, h.context,
                                                   CompressionType_None);
                   }});
  roads.push_back({"objects to JSON bytes", clear, [&h] {
                     h.out =
                         h.object->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, h.context, CompressionType_None);
                   }});
  roads.push_back({"objects to Fast Infoset", clear,
                   [&h] { h.out = h.object->ToFastInfosetStream(FInfoDecl_None, h.context, CompressionType_None); }});
  roads.push_back({"objects to Fast Infoset, typed", clear,
                   [&h] { h.out = h.object->ToFastInfosetStream(FInfoDecl_None, h.typed, CompressionType_None); }});
  roads.push_back({"objects to XML bytes, gzip", clear, [&h] {
                     h.out = h.object->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, h.context,
                                                   CompressionType_GZip);
                   }});
  roads.push_back({"JSON bytes to objects", fresh, [&h] { h.target->FromJsonStream(h.json, h.context); }, drop});
  roads.push_back({"Fast Infoset to tree", newDocument,
                   [&h] { h.document->LoadXmlStream(h.finf.GetData(), h.finf.GetLength()); }, dropDocument});
  roads.push_back({"Fast Infoset to objects", fresh, [&h] { h.target->FromXmlStream(h.finf, h.context); }, drop});
  roads.push_back(
      {"Fast Infoset, typed, to objects", fresh, [&h] { h.target->FromXmlStream(h.finfTyped, h.context); }, drop});
  roads.push_back({"XML bytes, gzip, to objects", fresh, [&h] { h.target->FromXmlStream(h.gzip, h.context); }, drop});
  roads.push_back({"destruction of the tree",
                   [=] {
                     newDocument();
                     load();
                   },
                   dropDocument});
  roads.push_back({"destruction of the objects",
                   [=] {
                     fresh();
                     read();
                   },
                   drop});
  std::printf("%s: %zu bytes of XML, %zu elements; JSON %.2f, Fast Infoset %.3f, typed %.3f, gzip %.3f of it\n",
              name.c_str(), h.xml.size(), subject.elements,
              static_cast<double>(h.json.GetLength()) / static_cast<double>(h.xml.size()),
              static_cast<double>(h.finf.GetLength()) / static_cast<double>(h.xml.size()),
              static_cast<double>(h.finfTyped.GetLength()) / static_cast<double>(h.xml.size()),
              static_cast<double>(h.gzip.GetLength()) / static_cast<double>(h.xml.size()));
  return subject;
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

std::string Key(const Subject& subject, const Road& road) { return subject.name + ": " + road.name; }

void Register(const Subject& subject, const Road& road) {
  benchmark::RegisterBenchmark(Key(subject, road).c_str(),
                               [&road](benchmark::State& state) {
                                 for (auto _ : state) {
                                   road.prepare();
                                   const auto start = Clock::now();
                                   road.run();
                                   const std::chrono::duration<double> time = Clock::now() - start;
                                   state.SetIterationTime(time.count());
                                   road.finish();
                                 }
                               })
      ->UseManualTime()
      ->Iterations(std::max<benchmark::IterationCount>(
          1, static_cast<benchmark::IterationCount>(kBytesPerRepetition / subject.bytes)));
}

void PrintTable(const Subject& subject, const MedianReporter& times) {
  std::printf("\n%s\n%-34s %9s %12s %13s %12s\n", subject.name.c_str(), "road", "MB/s", "ratio", "allocations",
              "peak memory");
  std::printf("%-34s %9s %12s %13s %12s\n", "", "", "to expat", "per element", "times input");
  const double floor = times.Seconds(Key(subject, subject.roads.front()));
  for (const Road& road : subject.roads) {
    const double seconds = times.Seconds(Key(subject, road));
    if (seconds == 0) continue;
    road.prepare();
    Bench::StartCounting();
    road.run();
    const Bench::HeapUse heap = Bench::StopCounting();
    road.finish();
    std::printf("%-34s %9.1f %12.2f %13.2f %12.2f\n", road.name.c_str(),
                static_cast<double>(subject.bytes) / seconds / 1e6, seconds / floor,
                static_cast<double>(heap.allocations) / static_cast<double>(subject.elements),
                static_cast<double>(heap.peakBytes) / static_cast<double>(subject.bytes));
  }
}

// Nanoseconds for each byte of XML, by size: growth with the size would show here.
void PrintGrowth(const std::vector<Subject>& subjects, const MedianReporter& times) {
  std::printf("\ncost in ns per byte of XML, by size\n%-34s", "road");
  for (const Subject& subject : subjects) std::printf(" %12s", subject.name.c_str());
  std::printf("\n");
  for (std::size_t i = 0; i < subjects.front().roads.size(); ++i) {
    std::printf("%-34s", subjects.front().roads[i].name.c_str());
    for (const Subject& subject : subjects)
      std::printf(" %12.2f", times.Seconds(Key(subject, subject.roads[i])) * 1e9 / static_cast<double>(subject.bytes));
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
    std::vector<std::pair<std::string, std::size_t>> sizes = {{"1 KB", 1000}, {"100 KB", 100000}, {"10 MB", 10485760}};
    if (large) sizes.emplace_back("100 MB", 104857600);
    std::vector<Subject> subjects;
    subjects.reserve(2 * sizes.size());
    for (const auto& [name, bytes] : sizes)
      subjects.push_back(MakeSubject<Gpx::CGpxType>("GPX " + name, Bench::MakeGpx(bytes)));
    for (const auto& [name, bytes] : sizes)
      subjects.push_back(MakeSubject<Order::COrderType>("order " + name, Bench::MakeOrder(bytes)));
    for (const Subject& subject : subjects)
      for (const Road& road : subject.roads) Register(subject, road);

    MedianReporter times;
    benchmark::RunSpecifiedBenchmarks(&times);
    for (const Subject& subject : subjects) PrintTable(subject, times);
    PrintGrowth(subjects, times);
    return 0;
  } catch (const CRkException& e) {
    std::fprintf(stderr, "bench: %ls\n", e.GetFullMessage().c_str());
    return 1;
  }
}

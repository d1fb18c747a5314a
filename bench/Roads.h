#ifndef RKXMLLIB16_BENCH_ROADS_H
#define RKXMLLIB16_BENCH_ROADS_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Bench {

// One road of one document: `run` is timed, `prepare` and `finish` are not.
struct Road {
  std::string name;
  std::function<void()> prepare = [] {};
  std::function<void()> run;
  std::function<void()> finish = [] {};
};

struct Subject {
  std::string name;
  std::size_t bytes = 0;     // of XML text
  std::size_t elements = 0;  // in it
  std::size_t jsonBytes = 0, finfBytes = 0, finfTypedBytes = 0, gzipBytes = 0;
  std::vector<Road> roads;
  std::shared_ptr<void> held;  // what the roads work on
};

// A track, an order and a list of waypoints, each of about these sizes in bytes; `name` calls the size.
struct Size {
  std::string name;
  std::size_t bytes;
};
std::vector<Subject> MakeSubjects(const std::vector<Size>& sizes);

}  // namespace Bench

#endif

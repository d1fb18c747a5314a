#ifndef RKXMLLIB16_BENCH_OPERATIONS_H
#define RKXMLLIB16_BENCH_OPERATIONS_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Bench {

// One operation on one document: `run` is timed, `prepare` and `finish` are not.
struct Operation {
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
  std::vector<Operation> operations;
  std::shared_ptr<void> held;  // what the operations work on
};

// A track, an order and a list of waypoints, each of about these sizes in bytes; `name` calls the size.
struct Size {
  std::string name;
  std::size_t bytes;
};
std::vector<Subject> MakeSubjects(const std::vector<Size>& sizes);

}  // namespace Bench

#endif

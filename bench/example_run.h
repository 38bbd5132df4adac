#ifndef SYMFOLD_BENCH_EXAMPLE_RUN_H
#define SYMFOLD_BENCH_EXAMPLE_RUN_H

#include <memory>
#include <string>
#include <vector>

#include "host/symmetry/detection_run.h"

namespace symfold {

// An example of examples/ at some size: "wreath M=20 K=10".
struct Family {
  const char* name;
  std::vector<std::string> constants;

  std::string title() const;
};

ComposedModel read_example(const Family& family);

// Runs the detection of an example without a log, in a directory of its own that goes with the result.
class ExampleRun {
 public:
  explicit ExampleRun(const Family& family);
  ~ExampleRun();
  ExampleRun(const ExampleRun&) = delete;
  ExampleRun& operator=(const ExampleRun&) = delete;

  DetectionRun& run() { return *run_; }
  std::string graph_file() const { return directory_ + "/model_comp_graph"; }

 private:
  std::string directory_;
  std::unique_ptr<DetectionRun> run_;
};

}  // namespace symfold

#endif  // SYMFOLD_BENCH_EXAMPLE_RUN_H

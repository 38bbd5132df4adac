// Whole runs, from the model file to the last state: the full state space beside the folded one, detection
// included.

#include <benchmark/benchmark.h>

#include <optional>

#include "bench/example_run.h"
#include "host/chain/exploration.h"

namespace symfold {
namespace {

const std::vector<Family> kFamilies = {
    {"philosophers", {"N=8"}},  {"philosophers", {"N=10"}},
    {"philosophers", {"N=12"}}, {"star", {"N=12"}},
    {"star", {"N=16"}},         {"arms", {"N=8"}},
    {"wreath", {"M=4", "K=4"}}, {"clients_servers", {"K=4", "M=5"}},
    {"complete", {"K=3"}},      {"hypercube", {"d=4", "T=4"}},
};

void explore(benchmark::State& state, const Family& family, bool folds) {
  std::size_t states = 0;
  for (auto _ : state) {
    std::optional<ExampleRun> example;
    std::optional<LabelSearch> search;
    if (folds) search.emplace(example.emplace(family).run().detector());
    const ComposedModel model = read_example(family);
    const StateLayout layout =
        folds ? StateLayout(model, example->run().detector().SSOrder) : StateLayout(model);
    Exploration exploration(model, layout, folds ? &*search : nullptr, false);
    exploration.run({}, [](const ExplorationFigures&) { return true; });
    states = exploration.figures().states;
  }
  state.counters["states"] = static_cast<double>(states);
  state.counters["states_per_second"] =
      benchmark::Counter(static_cast<double>(states), benchmark::Counter::kIsIterationInvariantRate);
}

const bool kRegistered = [] {
  for (const Family& family : kFamilies) {
    for (const bool folds : {false, true}) {
      benchmark::RegisterBenchmark(((folds ? "folded/" : "full/") + family.title()).c_str(), explore, family,
                                   folds)
          ->Unit(benchmark::kMillisecond)
          ->MeasureProcessCPUTime()
          ->UseRealTime();
    }
  }
  return true;
}();

}  // namespace
}  // namespace symfold

// Whole runs, from the model file to the last state: the full state space beside those folded by greedy and
// by exact labels, detection included.

#include <benchmark/benchmark.h>

#include <memory>
#include <optional>

#include "bench/example_run.h"
#include "host/chain/exploration.h"
#include "host/symmetry/label_search.h"

namespace symfold {
namespace {

const std::vector<Family> kFamilies = {
    {"philosophers", {"N=8"}},   {"philosophers", {"N=10"}}, {"philosophers", {"N=12"}},
    {"polling", {"N=14"}},       {"torus", {"W=4", "H=3"}},  {"hypercube", {"d=4", "T=4"}},
    {"star", {"N=14"}},          {"arms", {"N=7"}},          {"wreath", {"M=4", "K=4"}},
    {"multiprocessor", {"M=4"}}, {"cluster", {"N=6"}},       {"clients_servers", {"K=4", "M=5"}},
    {"peer2peer", {"N=6"}},      {"complete", {}},           {"two_speeds", {"N=14"}},
};

enum class Symmetry { kOff, kFast, kExact };

const char* name_of(Symmetry symmetry) {
  return symmetry == Symmetry::kOff ? "off/" : symmetry == Symmetry::kFast ? "fast/" : "exact/";
}

// A model's symmetries and the labeller by them.
class Folding {
 public:
  Folding(const Family& family, Symmetry symmetry) : example_(family) {
    if (symmetry == Symmetry::kFast) {
      labeller_ = std::make_unique<LabelSearch>(example_.run().detector());
    } else {
      labeller_ = std::make_unique<ExactLabelSearch>(example_.run().detector());
    }
  }

  const std::vector<std::string>& order() { return example_.run().detector().SSOrder; }
  Labeller* labeller() { return labeller_.get(); }

 private:
  ExampleRun example_;
  std::unique_ptr<Labeller> labeller_;
};

void explore(benchmark::State& state, const Family& family, Symmetry symmetry) {
  std::size_t states = 0;
  for (auto _ : state) {
    const ComposedModel model = read_example(family);
    std::optional<Folding> folding;
    if (symmetry != Symmetry::kOff) folding.emplace(family, symmetry);
    const StateLayout layout = folding ? StateLayout(model, folding->order()) : StateLayout(model);
    Exploration exploration(model, layout, folding ? folding->labeller() : nullptr, false);
    exploration.run({}, [](const ExplorationFigures&) { return true; });
    states = exploration.figures().states;
  }
  state.counters["states"] = static_cast<double>(states);
  state.counters["states_per_second"] =
      benchmark::Counter(static_cast<double>(states), benchmark::Counter::kIsIterationInvariantRate);
}

const bool kRegistered = [] {
  for (const Family& family : kFamilies) {
    for (const Symmetry symmetry : {Symmetry::kOff, Symmetry::kFast, Symmetry::kExact}) {
      benchmark::RegisterBenchmark((name_of(symmetry) + family.title()).c_str(), explore, family, symmetry)
          ->Unit(benchmark::kMillisecond);
    }
  }
  return true;
}();

}  // namespace
}  // namespace symfold

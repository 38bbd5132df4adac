// Whole runs, from the model file to the last state: the full state space beside those folded by greedy and
// by exact labels, detection included.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "bench/example_family.h"
#include "host/chain/exploration.h"
#include "host/symmetry/folding.h"

namespace symfold {
namespace {

const std::vector<Family> kFamilies = {
    {"philosophers", {"N=8"}},   {"philosophers", {"N=10"}}, {"philosophers", {"N=12"}},
    {"polling", {"N=14"}},       {"torus", {"W=4", "H=3"}},  {"hypercube", {"d=4", "T=4"}},
    {"star", {"N=14"}},          {"arms", {"N=7"}},          {"wreath", {"M=4", "K=4"}},
    {"multiprocessor", {"M=4"}}, {"cluster", {"N=6"}},       {"clients_servers", {"K=4", "M=5"}},
    {"peer2peer", {"N=6"}},      {"complete", {}},           {"two_speeds", {"N=14"}},
};

void explore(benchmark::State& state, const Family& family, Symmetry symmetry) {
  std::size_t states = 0;
  for (auto _ : state) {
    const ComposedModel model = read_example(family);
    const Folding folding(model, symmetry);
    const std::unique_ptr<Labeller> labeller = folding.make_labeller();
    Exploration exploration(model, folding.order(), labeller.get(), false);
    exploration.run({}, [](const ExplorationFigures&) { return true; });
    states = exploration.figures().states;
  }
  state.counters["states"] = static_cast<double>(states);
  state.counters["states_per_second"] =
      benchmark::Counter(static_cast<double>(states), benchmark::Counter::kIsIterationInvariantRate);
}

const bool kRegistered = [] {
  for (const Family& family : kFamilies) {
    for (const Symmetry symmetry : kSymmetries) {
      benchmark::RegisterBenchmark((to_string(symmetry) + ("/" + family.title())).c_str(), explore, family,
                                   symmetry)
          ->Unit(benchmark::kMillisecond);
    }
  }
  return true;
}();

}  // namespace
}  // namespace symfold

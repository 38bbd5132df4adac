// Detection over the families of examples/: the automorphism search, the strong generating set with its
// proof, and the whole run from the model to the permutation file, diagnostics dropped.

#include <benchmark/benchmark.h>

#include "bench/example_run.h"
#include "components/schreier_sims.h"
#include "engines/automorphism_search.h"
#include "engines/graph_file.h"

namespace symfold {
namespace {

const std::vector<Family> kFamilies = {
    {"star", {"N=50"}},
    {"star", {"N=200"}},
    {"philosophers", {"N=100"}},
    {"philosophers", {"N=1000"}},
    {"arms", {"N=100"}},
    {"routers", {"W=20", "H=20"}},
    {"wreath", {"M=10", "K=10"}},
    {"wreath", {"M=20", "K=10"}},
    {"hypercube", {"d=8"}},
    {"complete", {"K=20"}},
    {"clients_servers", {"K=10", "M=10"}},
    {"tandem", {"N=1000"}},
};

void automorphisms(benchmark::State& state, const Family& family) {
  const ExampleRun example(family);
  const GraphFileResult file = read_graph_file(example.graph_file());
  for (auto _ : state) benchmark::DoNotOptimize(find_automorphisms(file.graph).base.data());
  state.counters["vertices"] = file.graph.vertex_count();
}

void strong_generators(benchmark::State& state, const Family& family) {
  ExampleRun example(family);
  const SymmetryDetection& detector = example.run().detector();
  const int n = static_cast<int>(detector.GraphNodes.size());
  for (auto _ : state) {
    SchreierSims chain(n, static_cast<int>(detector.OrigPermutations.size()));
    if (!detector.SGSOrbitLengths.empty()) chain.SetKnownOrder(detector.SGSOrbitLengths);
    std::vector<int> base;
    benchmark::DoNotOptimize(chain.Go(detector.OrigPermutations, base).data());
  }
}

void whole_detection(benchmark::State& state, const Family& family) {
  for (auto _ : state) benchmark::DoNotOptimize(ExampleRun(family).run().detector().Bases.data());
}

const bool kRegistered = [] {
  for (const Family& family : kFamilies) {
    const std::string title = family.title();
    benchmark::RegisterBenchmark(("automorphisms/" + title).c_str(), automorphisms, family);
    benchmark::RegisterBenchmark(("strong_generators/" + title).c_str(), strong_generators, family);
    benchmark::RegisterBenchmark(("whole_detection/" + title).c_str(), whole_detection, family)
        ->Unit(benchmark::kMillisecond);
  }
  return true;
}();

}  // namespace
}  // namespace symfold

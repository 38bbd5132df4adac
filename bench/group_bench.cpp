// Detection over the families of examples/: the automorphism search; the strong generating set with its proof
// and the Schreier trees of all base points, from the search's generators; and the whole run from the model
// file to the tables, in memory. The search alone also over random graphs, most of them
// without symmetry.

#include <benchmark/benchmark.h>

#include <iostream>

#include "bench/composition_graphs.h"
#include "bench/example_family.h"
#include "components/saucy_obj.h"
#include "components/schreier_sims.h"
#include "components/schreier_tree.h"
#include "detector/graph/graph_names.h"
#include "engines/reduction/automorphism_search.h"
#include "host/symmetry/detection.h"

namespace symfold::detail {
namespace {

const std::vector<Family> kFamilies = {
    {"star", {"N=50"}},
    {"star", {"N=200"}},
    {"philosophers", {"N=100"}},
    {"philosophers", {"N=500"}},
    {"philosophers", {"N=1000"}},
    {"arms", {"N=100"}},
    {"routers", {"W=20", "H=20"}},
    {"wreath", {"M=10", "K=10"}},
    {"wreath", {"M=20", "K=10"}},
    {"wreath", {"M=20", "K=20"}},
    {"hypercube", {"d=7"}},
    {"hypercube", {"d=8"}},
    {"complete", {"K=20"}},
    {"complete", {"K=36"}},
    {"clients_servers", {"K=10", "M=10"}},
    {"clients_servers", {"K=20", "M=20"}},
    {"tandem", {"N=1000"}},
};

void search(benchmark::State& state, const ColouredGraph& graph) {
  for (auto _ : state) benchmark::DoNotOptimize(find_automorphisms(graph).base.data());
  state.counters["vertices"] = graph.vertex_count();
}

NumberedGraph numbered_example(const Family& family) {
  const Detection detection(read_example(family), nullptr, false);
  return number_graph(detection.detector().GraphNodes, detection.detector().GraphEdges, std::cerr);
}

void automorphisms(benchmark::State& state, const Family& family) {
  const NumberedGraph graph = numbered_example(family);
  std::vector<Edge> edges;
  for (const auto& [from, to] : graph.edges) edges.push_back({from, to});
  search(state, {graph.vertex_count, graph.boundaries, edges});
}

void random_automorphisms(benchmark::State& state, const GraphParts& parts) {
  search(state, {parts.n, parts.boundaries, parts.edges});
}

void strong_generators(benchmark::State& state, const Family& family) {
  const NumberedGraph graph = numbered_example(family);
  saucy_obj search;
  saucy_struct* begun = search.saucy_begin_graph(graph.vertex_count, graph.boundaries, graph.edges, "graph");
  search.saucy_init(begun);
  search.saucy_search(begun);
  search.saucy_end(begun);
  const int n = search.generators.empty() ? 0 : search.generators.front().GetN();
  for (auto _ : state) {
    SchreierSims chain(n, static_cast<int>(search.generators.size()));
    chain.SetKnownOrder(search.orbit_lengths);
    std::vector<int> base;
    SchreierTree trees;
    trees.n = n;
    trees.SetPerms(chain.Go(search.generators, base));
    for (const int point : base) {
      trees.CreateTree(point);
      benchmark::DoNotOptimize(trees.CountPathPermutations());
    }
  }
  state.counters["vertices"] = n;
}

void whole_detection(benchmark::State& state, const Family& family) {
  for (auto _ : state) {
    const Detection detection(read_example(family), nullptr, false);
    benchmark::DoNotOptimize(detection.detector().Bases.data());
  }
}

const bool kRegistered = [] {
  for (const Family& family : kFamilies) {
    const std::string title = family.title();
    benchmark::RegisterBenchmark(("automorphisms/" + title).c_str(), automorphisms, family);
    benchmark::RegisterBenchmark(("strong_generators/" + title).c_str(), strong_generators, family);
    benchmark::RegisterBenchmark(("whole_detection/" + title).c_str(), whole_detection, family)
        ->Unit(benchmark::kMillisecond);
  }
  for (const NamedGraph& graph : graph_families({1'000, 10'000})) {
    if (graph.name.starts_with("random"))
      benchmark::RegisterBenchmark(("automorphisms/" + graph.name).c_str(), random_automorphisms,
                                   graph.parts);
  }
  return true;
}();

}  // namespace
}  // namespace symfold::detail

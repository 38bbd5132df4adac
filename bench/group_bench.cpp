// Detection over the families of examples/: the automorphism search; the strong generating set with its proof
// and the Schreier trees of all base points, from the search's generators; and the whole run from the model
// file to the tables, in memory. The search alone also over random graphs, most of them
// without symmetry, and over graphs with directions and weights.

#include <benchmark/benchmark.h>

#include <algorithm>
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

// Directions and weights as they are, and coded in a graph without them: a weight as that many parallel
// edges; a directed edge as a vertex in its middle with a double edge to its head.
void weighted_automorphisms(benchmark::State& state, const std::vector<WeightedEdge>& edges, bool is_coded) {
  int n = 0;
  for (const WeightedEdge& edge : edges) n = std::max({n, edge.from + 1, edge.to + 1});
  if (!is_coded) {
    search(state, ColouredGraph::weighted(n, {}, edges));
    return;
  }
  std::vector<Edge> coded;
  std::vector<int> boundaries;
  int end = n;
  for (const auto& [from, to, weight, is_directed] : edges) {
    if (is_directed) coded.insert(coded.end(), {{from, end}, {end, to}, {end, to}});
    if (!is_directed) coded.insert(coded.end(), static_cast<std::size_t>(weight), {from, to});
    if (is_directed && end++ == n) boundaries.push_back(n);
  }
  search(state, {end, boundaries, coded});
}

std::vector<WeightedEdge> directed_ring(int n) {
  std::vector<WeightedEdge> edges;
  for (int v = 0; v < n; ++v) edges.push_back({v, (v + 1) % n, 1, true});
  return edges;
}

std::vector<WeightedEdge> directed_torus(int width) {
  std::vector<WeightedEdge> edges;
  for (int v = 0; v < width * width; ++v) {
    const int row = v - v % width;
    edges.push_back({v, row + (v + 1) % width, 1, true});
    edges.push_back({v, (v + width) % (width * width), 1, true});
  }
  return edges;
}

// The weight is the dimension's.
std::vector<WeightedEdge> weighted_hypercube(int dimension) {
  std::vector<WeightedEdge> edges;
  for (int v = 0; v < 1 << dimension; ++v) {
    for (int k = 0; k < dimension; ++k) {
      if ((v >> k & 1) == 0) edges.push_back({v, v + (1 << k), static_cast<std::uint64_t>(k) + 1, false});
    }
  }
  return edges;
}

// Between every two vertices an edge; the weight is that of the larger one's block of ten.
std::vector<WeightedEdge> weighted_complete_graph(int n) {
  std::vector<WeightedEdge> edges;
  for (int v = 0; v < n; ++v) {
    for (int w = v + 1; w < n; ++w) edges.push_back({v, w, static_cast<std::uint64_t>(w) / 10 + 1, false});
  }
  return edges;
}

void register_weighted(const std::string& name, const std::vector<WeightedEdge>& edges) {
  benchmark::RegisterBenchmark(("weighted/" + name).c_str(), weighted_automorphisms, edges, false);
  benchmark::RegisterBenchmark(("weighted/" + name + ", coded").c_str(), weighted_automorphisms, edges, true);
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
  register_weighted("directed ring n=10000", directed_ring(10'000));
  register_weighted("directed torus 100x100", directed_torus(100));
  register_weighted("weighted hypercube d=12", weighted_hypercube(12));
  register_weighted("weighted complete graph n=200", weighted_complete_graph(200));
  return true;
}();

}  // namespace
}  // namespace symfold::detail

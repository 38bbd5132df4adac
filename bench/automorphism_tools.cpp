#include "bench/automorphism_tools.h"

#include <nauty/nausparse.h>
#include <nauty/traces.h>
#include <time.h>

#include <algorithm>
#include <bliss/graph.hh>
#include <cmath>
#include <cstddef>
#include <numeric>

#ifdef SYMFOLD_HAS_DEJAVU
#include <dejavu.h>
#endif

#include "engines/reduction/automorphism_search.h"

namespace symfold::detail {
namespace {

double processor_seconds() {
  timespec time;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <class Search>
double seconds_of(const Search& search) {
  const double start = processor_seconds();
  search();
  return processor_seconds() - start;
}

Measurement run_symfold(const GraphParts& parts) {
  const ColouredGraph graph(parts.n, parts.boundaries, parts.edges);
  AutomorphismGroup group;
  const double seconds = seconds_of([&] { group = find_automorphisms(graph); });
  double log_order = 0;
  for (const int length : group.orbit_lengths) log_order += std::log10(length);
  return {seconds, log_order};
}

// The graph, and the colours as the end of each cell, as nauty and Traces take them.
class SparseGraph {
 public:
  explicit SparseGraph(const GraphParts& parts)
      : first_(static_cast<std::size_t>(parts.n), 0),
        degree_(first_.size(), 0),
        colour_order_(first_.size()),
        continues_(first_.size(), 1),
        orbits_(first_.size()) {
    const ColouredGraph graph(parts.n, parts.boundaries, parts.edges);
    for (int v = 0; v < parts.n; ++v) {
      const auto neighbours = graph.neighbours(v);
      const auto i = static_cast<std::size_t>(v);
      first_[i] = ends_.size();
      degree_[i] = static_cast<int>(neighbours.size());
      ends_.insert(ends_.end(), neighbours.begin(), neighbours.end());
    }
    std::iota(colour_order_.begin(), colour_order_.end(), 0);
    for (const int boundary : parts.boundaries) continues_[static_cast<std::size_t>(boundary) - 1] = 0;
    continues_.back() = 0;
    graph_ = {ends_.size(), first_.data(), parts.n,        degree_.data(), ends_.data(),
              nullptr,      first_.size(), degree_.size(), ends_.size(),   0};
  }
  SparseGraph(const SparseGraph&) = delete;
  SparseGraph& operator=(const SparseGraph&) = delete;

  Measurement run_nauty() {
    static DEFAULTOPTIONS_SPARSEGRAPH(options);
    statsblk stats;
    options.defaultptn = FALSE;
    const double seconds = seconds_of([&] {
      sparsenauty(&graph_, colour_order_.data(), continues_.data(), orbits_.data(), &options, &stats,
                  nullptr);
    });
    return {seconds, std::log10(stats.grpsize1) + stats.grpsize2};
  }

  Measurement run_traces() {
    static DEFAULTOPTIONS_TRACES(options);
    TracesStats stats;
    options.defaultptn = FALSE;
    const double seconds = seconds_of([&] {
      Traces(&graph_, colour_order_.data(), continues_.data(), orbits_.data(), &options, &stats, nullptr);
    });
    return {seconds, std::log10(stats.grpsize1) + stats.grpsize2};
  }

 private:
  std::vector<size_t> first_;
  std::vector<int> degree_, ends_, colour_order_, continues_, orbits_;
  sparsegraph graph_;
};

Measurement run_nauty(const GraphParts& parts) { return SparseGraph(parts).run_nauty(); }
Measurement run_traces(const GraphParts& parts) { return SparseGraph(parts).run_traces(); }

std::vector<int> colours_of(const GraphParts& parts) {
  std::vector<int> colours(static_cast<std::size_t>(parts.n), 0);
  for (const int boundary : parts.boundaries) colours[static_cast<std::size_t>(boundary)] = 1;
  std::partial_sum(colours.begin(), colours.end(), colours.begin());
  return colours;
}

Measurement run_bliss(const GraphParts& parts) {
  bliss::Graph graph;
  for (const int colour : colours_of(parts)) graph.add_vertex(static_cast<unsigned>(colour));
  for (const Edge& edge : parts.edges)
    graph.add_edge(static_cast<unsigned>(edge.from), static_cast<unsigned>(edge.to));
  bliss::Stats stats;
  const double seconds = seconds_of([&] { graph.find_automorphisms(stats, nullptr, nullptr); });
  return {seconds, static_cast<double>(std::log10(stats.get_group_size_approx()))};
}

#ifdef SYMFOLD_HAS_DEJAVU
Measurement run_dejavu(const GraphParts& parts) {
  const std::vector<int> colours = colours_of(parts);
  std::vector<int> degree(colours.size(), 0);
  for (const Edge& edge : parts.edges) {
    ++degree[static_cast<std::size_t>(edge.from)];
    ++degree[static_cast<std::size_t>(edge.to)];
  }
  dejavu::static_graph graph;
  graph.initialize_graph(parts.n, static_cast<int>(parts.edges.size()));
  for (std::size_t v = 0; v < colours.size(); ++v) graph.add_vertex(colours[v], degree[v]);
  for (const Edge& edge : parts.edges) {
    const auto [low, high] = std::minmax(edge.from, edge.to);
    graph.add_edge(static_cast<unsigned>(low), static_cast<unsigned>(high));
  }
  graph.get_sgraph();  // makes the form that is searched
  dejavu::solver solver;
  solver.set_print(false);
  const double seconds = seconds_of([&] { solver.automorphisms(&graph); });
  const dejavu::big_number order = solver.get_automorphism_group_size();
  return {seconds, static_cast<double>(std::log10(order.mantissa)) + order.exponent};
}
#endif

}  // namespace

const std::vector<Tool>& automorphism_tools() {
  static const std::vector<Tool> tools = {
      {"symfold", run_symfold, true}, {"nauty", run_nauty, true},
      {"Traces", run_traces, true},   {"bliss", run_bliss, true},
#ifdef SYMFOLD_HAS_DEJAVU
      {"dejavu", run_dejavu, false},
#endif
  };
  return tools;
}

}  // namespace symfold::detail

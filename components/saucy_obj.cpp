#include "components/saucy_obj.h"

#include <cstddef>
#include <iostream>
#include <string>
#include <utility>

#include "engines/base/point_vector.h"
#include "engines/graph/graph_reader.h"
#include "engines/reduction/automorphism_search.h"

namespace symfold {

struct saucy_struct {
  detail::ColouredGraph graph;
  std::string name;  // for messages
};

namespace {

constexpr std::size_t kMaxMoves = std::size_t{1} << 28;

std::string expectation(const std::string& what, std::size_t low, std::size_t high, long long got) {
  const std::string range =
      low == high ? std::to_string(low) : std::to_string(low) + " to " + std::to_string(high);
  return "expected " + what + " (" + range + "), got " + std::to_string(got);
}

// The first value that a graph file must not have either; empty if there is none.
std::string fault_of(int vertex_count, const std::vector<int>& boundaries,
                     const std::vector<std::pair<int, int>>& edges) {
  if (vertex_count < 0 || vertex_count > detail::kMaxVertices)
    return expectation("the number of vertices", 0, detail::kMaxVertices, vertex_count);
  const auto n = static_cast<std::size_t>(vertex_count);
  if (n == 0 && !edges.empty())
    return expectation("the number of edges", 0, 0, static_cast<long long>(edges.size()));
  const std::size_t colours = n == 0 && boundaries.empty() ? 0 : boundaries.size() + 1;
  if (colours > n)
    return expectation("the number of colours", n == 0 ? 0 : 1, n, static_cast<long long>(colours));
  std::size_t low = 1;
  for (std::size_t i = 0; i < boundaries.size(); ++i) {
    const int boundary = boundaries[i];
    const std::size_t high = n - (boundaries.size() - i);  // later boundaries need room, too
    if (boundary < 0 || static_cast<std::size_t>(boundary) < low || static_cast<std::size_t>(boundary) > high)
      return expectation("the first vertex of a colour", low, high, boundary);
    low = static_cast<std::size_t>(boundary) + 1;
  }
  for (const auto& [from, to] : edges) {
    if (from < 0 || from >= vertex_count) return expectation("an edge's vertex", 0, n - 1, from);
    if (to < 0 || to >= vertex_count) return expectation("an edge's other vertex", 0, n - 1, to);
  }
  return "";
}

}  // namespace

saucy_obj::saucy_obj() : errors(&std::cerr) {}

void saucy_obj::report(const std::string& message) const {
  if (errors != nullptr) *errors << message << std::endl;
}

saucy_struct* saucy_obj::saucy_begin2(char* file_name) {
  if (file_name == nullptr) {
    report("error: expected the name of a graph file, got none");
    return nullptr;
  }
  detail::GraphFileResult result = detail::read_graph_file(file_name);
  if (!result.error.empty()) {
    report(result.error);
    return nullptr;
  }
  return new saucy_struct{std::move(result.graph), file_name};
}

saucy_struct* saucy_obj::saucy_begin_graph(int vertex_count, const std::vector<int>& boundaries,
                                           const std::vector<std::pair<int, int>>& edges,
                                           const std::string& name) {
  if (const std::string fault = fault_of(vertex_count, boundaries, edges); !fault.empty()) {
    report(name + ": error: " + fault);
    return nullptr;
  }
  std::vector<detail::Edge> graph_edges;
  graph_edges.reserve(edges.size());
  for (const auto& [from, to] : edges) graph_edges.push_back({from, to});
  return new saucy_struct{detail::ColouredGraph(vertex_count, boundaries, graph_edges), name};
}

void saucy_obj::saucy_init(saucy_struct*) {
  generators.clear();
  base.clear();
  orbit_lengths.clear();
  is_complete = false;
}

void saucy_obj::saucy_search(saucy_struct* state) {
  if (state == nullptr) return;
  const int n = state->graph.vertex_count();
  detail::AutomorphismGroup group = detail::find_automorphisms(state->graph, {.max_moves = kMaxMoves});
  if (!group.is_complete) {
    report(state->name +
           ": the search for symmetries has ended before it was complete; those found by then are used");
  }
  generators.reserve(group.generators.size());
  for (std::size_t g = 0; g < group.generators.size(); ++g) generators.emplace_back(n, group.generators[g]);
  base = std::move(group.base);
  orbit_lengths = std::move(group.orbit_lengths);
  is_complete = group.is_complete;
}

void saucy_obj::saucy_end(saucy_struct* state) { delete state; }

}  // namespace symfold

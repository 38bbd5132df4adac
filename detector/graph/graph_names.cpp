#include "detector/graph/graph_names.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace symfold::detail {
namespace {

// Calls `visit` with every cycle of at least two points, smallest point first.
template <class Visit>
void walk_cycles(const Permutation& permutation, Visit visit) {
  std::vector<int> points;
  permutation.VisitMoves([&points](int point, int) { points.push_back(point); });
  std::vector<char> is_done(points.size(), 0);
  std::vector<int> cycle;
  const auto is_new = [&](int point) {
    const auto place = std::lower_bound(points.begin(), points.end(), point) - points.begin();
    const auto i = static_cast<std::size_t>(place);
    return i < points.size() && points[i] == point && std::exchange(is_done[i], 1) == 0;
  };
  for (const int start : points) {
    cycle.clear();
    for (int point = start; is_new(point); point = permutation[point]) cycle.push_back(point);
    if (!cycle.empty()) visit(cycle);
  }
}

}  // namespace

EdgeEndpoints find_endpoints(const NameIndex& nodes, const ModelCompGraphEdge& edge,
                             std::ostream& diagnostics) {
  const EdgeEndpoints ends{nodes.find(edge.From.Name), nodes.find(edge.To.Name)};
  if (!ends.found()) {
    diagnostics << "error: index not found" << std::endl;
    diagnostics << edge.From.Name << " : " << edge.To.Name << std::endl;
  }
  return ends;
}

NumberedGraph number_graph(const std::vector<ModelCompGraphNode>& nodes,
                           const std::vector<ModelCompGraphEdge>& edges, std::ostream& diagnostics) {
  NumberedGraph graph{static_cast<int>(nodes.size()), {}, {}};
  for (std::size_t i = 1; i < nodes.size(); ++i) {
    if (nodes[i].Type != nodes[i - 1].Type) graph.boundaries.push_back(static_cast<int>(i));
  }
  const NameIndex index(nodes);
  graph.edges.reserve(edges.size());
  for (const ModelCompGraphEdge& edge : edges) {
    const EdgeEndpoints ends = find_endpoints(index, edge, diagnostics);
    if (ends.found()) graph.edges.emplace_back(ends.from, ends.to);
  }
  return graph;
}

std::string named_cycles(const std::vector<ModelCompGraphNode>& nodes, const Permutation& permutation,
                         const std::function<std::string(const ModelCompGraphNode&)>& name_of,
                         std::size_t max_names, std::size_t max_cycles) {
  std::string text;
  std::size_t count = 0;
  const auto node = [&](int point) -> const ModelCompGraphNode& {
    return nodes[static_cast<std::size_t>(point)];
  };
  walk_cycles(permutation, [&](const std::vector<int>& cycle) {
    if (!node(cycle.front()).PrivateOrJoin || ++count > max_cycles) return;
    for (std::size_t i = 0; i < std::min(cycle.size(), max_names); ++i) {
      text += (i == 0 ? "(" : " ") + name_of(node(cycle[i]));
    }
    text += cycle.size() > max_names ? " ... " + std::to_string(cycle.size()) + ")" : ")";
  });
  if (count > max_cycles) text += " ... " + std::to_string(count) + " cycles";
  return text.empty() ? "()" : text;
}

}  // namespace symfold::detail

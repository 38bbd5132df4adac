#include "detector/graph/graph_names.h"

#include <ostream>

namespace symfold::detail {

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

}  // namespace symfold::detail

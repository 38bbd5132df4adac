// The graph file "model_comp_graph", the automorphism engine's input:
//
//   7 6 5 2 3 4 6      7 nodes, 6 edges, 5 colours; the first vertex of every colour but the first
//   3 4                an edge between the vertices 3 and 4
//   ...
//
// The number of colours is the number of runs of one type, so that a type without a node (the joins' type in
// a model without joins) is not counted. An edge that leads to no node is left out, and not counted either.

#include <fstream>
#include <iostream>

#include "detector/graph/edge_endpoints.h"
#include "detector/symmetry_detection.h"

namespace symfold {

void SymmetryDetection::PrintMCG() {
  std::ofstream out("model_comp_graph", std::ios::trunc);
  if (!out) {
    std::cout << "error: can't open model_comp_graph" << std::endl;
    return;
  }
  std::vector<std::size_t> boundaries;
  for (std::size_t i = 1; i < GraphNodes.size(); ++i) {
    if (GraphNodes[i].Type != GraphNodes[i - 1].Type) boundaries.push_back(i);
  }
  const NameIndex nodes(GraphNodes);
  std::vector<EdgeEndpoints> edges;
  for (const ModelCompGraphEdge& edge : GraphEdges) {
    const EdgeEndpoints ends = find_endpoints(nodes, edge);
    if (ends.found()) edges.push_back(ends);
  }
  const std::size_t colours = GraphNodes.empty() ? 0 : boundaries.size() + 1;
  out << GraphNodes.size() << " " << edges.size() << " " << colours;
  for (const std::size_t boundary : boundaries) out << " " << boundary;
  out << "\n";
  for (const EdgeEndpoints& ends : edges) out << ends.from << " " << ends.to << "\n";
}

}  // namespace symfold

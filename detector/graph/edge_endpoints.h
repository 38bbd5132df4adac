#ifndef SYMFOLD_DETECTOR_GRAPH_EDGE_ENDPOINTS_H
#define SYMFOLD_DETECTOR_GRAPH_EDGE_ENDPOINTS_H

#include <iostream>

#include "components/model_comp_graph.h"
#include "detector/graph/node_names.h"

namespace symfold {

// The node indices of an edge's ends, -1 for an end whose name is no node.
struct EdgeEndpoints {
  int from;
  int to;
  bool found() const { return from >= 0 && to >= 0; }
};

// Looks both ends up and reports, in two lines on standard output, an edge that leads to no node.
inline EdgeEndpoints find_endpoints(const NameIndex& nodes, const ModelCompGraphEdge& edge) {
  const EdgeEndpoints ends{nodes.find(edge.From.Name), nodes.find(edge.To.Name)};
  if (!ends.found()) {
    std::cout << "error: index not found" << std::endl;
    std::cout << edge.From.Name << " : " << edge.To.Name << std::endl;
  }
  return ends;
}

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_GRAPH_EDGE_ENDPOINTS_H

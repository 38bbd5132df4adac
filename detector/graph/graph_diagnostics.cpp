// The graph for a person: node and edge lists on standard output, and "mcg.viz" in the DOT language.

#include <fstream>
#include <iostream>

#include "detector/graph/edge_endpoints.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

// The name as a DOT identifier: its first arrow becomes an underscore.
std::string dot_name(const std::string& name) {
  const auto arrow = name.find(kNameArrow);
  if (arrow == std::string::npos) return name;
  return name.substr(0, arrow) + '_' + name.substr(arrow + kNameArrow.size());
}

}  // namespace

void SymmetryDetection::PrintGraphNodes() {
  std::cout << "There are " << GraphNodes.size() << " GraphNodes" << std::endl;
  for (std::size_t i = 0; i < GraphNodes.size(); ++i) {
    const ModelCompGraphNode& node = GraphNodes[i];
    std::cout << "\ti: " << i << "\tName: " << node.Name << "\tType: " << node.Type
              << "\tPrivateOrJoin: " << (node.PrivateOrJoin ? 1 : 0) << "\tStateSize: " << node.StateSize
              << std::endl;
  }
}

void SymmetryDetection::PrintGraphEdges() {
  const NameIndex nodes(GraphNodes);
  std::cout << "GraphEdges: " << GraphEdges.size() << std::endl;
  for (const ModelCompGraphEdge& edge : GraphEdges) {
    find_endpoints(nodes, edge);
    std::cout << edge.From.Name << " -- " << edge.To.Name << std::endl;
  }
  std::cout << std::endl;
}

// An edge that leads to no node gets no line: a viewer would draw a node that the graph has not.
void SymmetryDetection::WriteMCGViz() {
  std::ofstream out("mcg.viz", std::ios::trunc);
  if (!out) {
    std::cout << "error: can't open mcg.viz" << std::endl;
    return;
  }
  const NameIndex nodes(GraphNodes);
  out << "graph structs {\n";
  for (const ModelCompGraphEdge& edge : GraphEdges) {
    if (!find_endpoints(nodes, edge).found()) continue;
    out << "  " << dot_name(edge.From.Name) << " -- " << dot_name(edge.To.Name) << ";\n";
  }
  out << "}\n";
}

}  // namespace symfold

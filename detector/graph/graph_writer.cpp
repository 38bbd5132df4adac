// The graph written down: its nodes and edges among the diagnostics; "mcg.viz", in the DOT language, for a
// graph viewer; and "model_comp_graph", the automorphism engine's input, which looks like this:
//
//   7 6 5 2 3 4 6      7 nodes, 6 edges, 5 colours; the first vertex of every colour but the first
//   3 4                an edge between the vertices 3 and 4
//   ...

#include <fstream>
#include <ostream>

#include "detector/graph/graph_names.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

// The name as a DOT identifier: its first arrow becomes an underscore.
std::string dot_name(const std::string& name) {
  const auto arrow = name.find(detail::kNameArrow);
  if (arrow == std::string::npos) return name;
  return name.substr(0, arrow) + '_' + name.substr(arrow + detail::kNameArrow.size());
}

}  // namespace

void SymmetryDetection::PrintGraphNodes() {
  diagnostics() << "There are " << GraphNodes.size() << " GraphNodes" << std::endl;
  for (std::size_t i = 0; i < GraphNodes.size(); ++i) {
    const ModelCompGraphNode& node = GraphNodes[i];
    diagnostics() << "\ti: " << i << "\tName: " << node.Name << "\tType: " << node.Type
                  << "\tPrivateOrJoin: " << (node.PrivateOrJoin ? 1 : 0) << "\tStateSize: " << node.StateSize
                  << std::endl;
  }
}

void SymmetryDetection::PrintGraphEdges() {
  const detail::NameIndex nodes(GraphNodes);
  diagnostics() << "GraphEdges: " << GraphEdges.size() << std::endl;
  for (const ModelCompGraphEdge& edge : GraphEdges) {
    detail::find_endpoints(nodes, edge, diagnostics());
    diagnostics() << edge.From.Name << " -- " << edge.To.Name << std::endl;
  }
  diagnostics() << std::endl;
}

void SymmetryDetection::PrintMCG() {
  std::ofstream out("model_comp_graph", std::ios::trunc);
  if (!out) {
    diagnostics() << "error: can't open model_comp_graph" << std::endl;
    return;
  }
  PrintMCG(out);
}

void SymmetryDetection::PrintMCG(std::ostream& out) {
  const detail::NumberedGraph graph = detail::number_graph(GraphNodes, GraphEdges, diagnostics());
  const std::size_t colours = GraphNodes.empty() ? 0 : graph.boundaries.size() + 1;
  out << graph.vertex_count << " " << graph.edges.size() << " " << colours;
  for (const int boundary : graph.boundaries) out << " " << boundary;
  out << "\n";
  for (const auto& [from, to] : graph.edges) out << from << " " << to << "\n";
}

void SymmetryDetection::WriteMCGViz() {
  std::ofstream out("mcg.viz", std::ios::trunc);
  if (!out) {
    diagnostics() << "error: can't open mcg.viz" << std::endl;
    return;
  }
  WriteMCGViz(out);
}

// An edge that leads to no node gets no line: a viewer would draw a node that the graph has not.
void SymmetryDetection::WriteMCGViz(std::ostream& out) {
  const detail::NameIndex nodes(GraphNodes);
  out << "graph structs {\n";
  for (const ModelCompGraphEdge& edge : GraphEdges) {
    if (!detail::find_endpoints(nodes, edge, diagnostics()).found()) continue;
    out << "  " << dot_name(edge.From.Name) << " -- " << dot_name(edge.To.Name) << ";\n";
  }
  out << "}\n";
}

}  // namespace symfold

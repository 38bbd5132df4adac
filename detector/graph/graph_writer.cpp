// The graph written down: its nodes and edges among the diagnostics; "mcg.viz", in the DOT language, for a
// graph viewer; and "model_comp_graph", the automorphism engine's input, which looks like this:
//
//   7 6 5 2 3 4 6      7 nodes, 6 edges, 5 colours; the first vertex of every colour but the first
//   3 4                an edge between the vertices 3 and 4
//   ...

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <ostream>
#include <unordered_set>

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

bool every_type_has_a_node(const std::vector<std::string>& types,
                           const std::vector<ModelCompGraphNode>& nodes) {
  std::unordered_set<std::string_view> used;
  for (const ModelCompGraphNode& node : nodes) used.insert(node.Type);
  return std::all_of(types.begin(), types.end(),
                     [&](const std::string& type) { return used.contains(type); });
}

// Creates or truncates a file in the working directory. A file that cannot be written to its end is removed,
// so that nobody takes it for a whole one. Returns what went wrong with the writing; a file that cannot be
// opened is reported on `diagnostics`.
template <class Fill>
std::string written_here(const char* name, std::ostream& diagnostics, Fill fill) {
  std::ofstream out(name, std::ios::trunc);
  if (!out) {
    diagnostics << "error: can't open " << name << std::endl;
    return "";
  }
  errno = 0;
  fill(out);
  out.close();
  if (out) return "";
  const std::string reason = errno == 0 ? "write failed" : std::strerror(errno);
  std::remove(name);
  return std::string(name) + ": error: cannot be written: " + reason;
}

}  // namespace

void SymmetryDetection::PrintGraphNodes() {
  diagnostics() << "There are " << std::to_string(GraphNodes.size()) << " GraphNodes" << std::endl;
  for (std::size_t i = 0; i < GraphNodes.size(); ++i) {
    const ModelCompGraphNode& node = GraphNodes[i];
    diagnostics() << "\ti: " << std::to_string(i) << "\tName: " << node.Name << "\tType: " << node.Type
                  << "\tPrivateOrJoin: " << (node.PrivateOrJoin ? '1' : '0')
                  << "\tStateSize: " << std::to_string(node.StateSize) << std::endl;
  }
}

void SymmetryDetection::PrintGraphEdges() {
  const detail::NameIndex nodes(GraphNodes);
  diagnostics() << "GraphEdges: " << std::to_string(GraphEdges.size()) << std::endl;
  for (const ModelCompGraphEdge& edge : GraphEdges) {
    detail::find_endpoints(nodes, edge, diagnostics());
    diagnostics() << edge.From.Name << " -- " << edge.To.Name << std::endl;
  }
  diagnostics() << std::endl;
}

void SymmetryDetection::PrintMCG() {
  const std::string error =
      written_here("model_comp_graph", diagnostics(), [this](std::ostream& out) { PrintMCG(out); });
  if (!error.empty()) Refuse(error);
}

// The number of colours is that of the node types. If one of them has no node (the joins' type in a model
// without joins), then it is the number of runs, of which the engine reads one boundary less.
void SymmetryDetection::PrintMCG(std::ostream& out) {
  const detail::NumberedGraph graph = detail::number_graph(GraphNodes, GraphEdges, diagnostics());
  const bool has_all_types = !GraphNodes.empty() && every_type_has_a_node(NodeTypes, GraphNodes);
  std::string text = std::to_string(graph.vertex_count) + ' ' + std::to_string(graph.edges.size()) + ' ' +
                     std::to_string(has_all_types ? NodeTypes.size() : graph.run_count());
  for (const int boundary : graph.boundaries) text += ' ' + std::to_string(boundary);
  text += '\n';
  for (const auto& [from, to] : graph.edges) {
    text += std::to_string(from) + ' ' + std::to_string(to) + '\n';
  }
  out << text;
}

void SymmetryDetection::WriteMCGViz() {
  const std::string error =
      written_here("mcg.viz", diagnostics(), [this](std::ostream& out) { WriteMCGViz(out); });
  if (!error.empty()) Refuse(error);
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

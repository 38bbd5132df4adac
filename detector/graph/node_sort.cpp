// The node sort: nodes of one type stand together, as the colouring of the graph file wants them. A node's
// index after it is its vertex number everywhere later. The exchanges are fixed, and they do not keep the
// order of the nodes that give way: A B B A becomes A A B B with the two B exchanged.

#include <numeric>
#include <ostream>
#include <utility>

#include "detector/graph/graph_names.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

void print_map(std::ostream& out, const char* title, const std::vector<int>& map) {
  std::string line;
  for (const int index : map) {
    line += std::to_string(index);
    line += "  ";
  }
  out << title << std::endl << line << std::endl;
}

}  // namespace

// Types are numbered once, so that the passes, one per type over all nodes, compare numbers and not names.
void SymmetryDetection::FindMCG_Sort() {
  std::vector<int> map(GraphNodes.size());
  std::iota(map.begin(), map.end(), 0);
  print_map(diagnostics(), "Map: ", map);
  const detail::NameIndex types(NodeTypes);
  std::vector<int> type_of;
  type_of.reserve(GraphNodes.size());
  for (const ModelCompGraphNode& node : GraphNodes) type_of.push_back(types.find(node.Type));
  std::size_t position = 0;
  for (int type = 0; type < static_cast<int>(NodeTypes.size()); ++type) {
    for (std::size_t i = 0; i < type_of.size(); ++i) {
      if (type_of[i] != type) continue;
      SwapNodes(static_cast<int>(i), static_cast<int>(position));
      std::swap(map[i], map[position]);
      std::swap(type_of[i], type_of[position]);
      ++position;
    }
  }
  print_map(diagnostics(), "Map After: ", map);
}

void SymmetryDetection::SwapNodes(int a, int b) {
  ModelCompGraphNode& first = GraphNodes[static_cast<std::size_t>(a)];
  ModelCompGraphNode& second = GraphNodes[static_cast<std::size_t>(b)];
  std::swap(first.Name, second.Name);
  std::swap(first.Type, second.Type);
}

int SymmetryDetection::FindIndex(std::string name) {
  for (std::size_t i = 0; i < GraphNodes.size(); ++i) {
    if (GraphNodes[i].Name == name) return static_cast<int>(i);
  }
  return -1;
}

}  // namespace symfold

// The node sort: nodes of one type stand together, as the colouring of the graph file wants them. A node's
// index after it is its vertex number everywhere later. The exchanges are fixed, and they do not keep the
// order of the nodes that give way: A B B A becomes A A B B with the two B exchanged.

#include <functional>
#include <numeric>
#include <ostream>
#include <queue>
#include <utility>

#include "detector/graph/graph_names.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

using PositionHeap = std::priority_queue<int, std::vector<int>, std::greater<>>;

void print_map(std::ostream& out, const char* title, const std::vector<int>& map) {
  std::string line;
  for (const int index : map) {
    line += std::to_string(index);
    line += "  ";
  }
  out << title << std::endl << line << std::endl;
}

}  // namespace

// The exchanges are those of one pass per type over all nodes: the pass exchanges every node of its type, in
// order, with the node at the next position, from the end of the types before on. Heaps of the positions of
// each type make the same exchanges without the passes, in time n log n for n nodes.
//
// Proof. Before the pass of a type, the positions up to `position` hold earlier types, so the pass meets its
// nodes in ascending order; it exchanges none twice, because a node that gives way is of another type: a node
// of its own type left of the one at hand stands left of `position` already. What gives way stands at
// `position`, the first place of all that no pass has filled, so it is the first of its type. Its type's heap
// loses the smallest entry and gains the place that it moves to.
//
// Types that are not in NodeTypes have no pass and share one heap.
void SymmetryDetection::FindMCG_Sort() {
  std::vector<int> map(GraphNodes.size());
  std::iota(map.begin(), map.end(), 0);
  print_map(diagnostics(), "Map: ", map);
  const detail::NameIndex types(NodeTypes);
  std::vector<std::size_t> type_of;  // by index before the sort
  std::vector<PositionHeap> positions(NodeTypes.size() + 1);
  for (const ModelCompGraphNode& node : GraphNodes) {
    const int type = types.find(node.Type);
    type_of.push_back(type < 0 ? NodeTypes.size() : static_cast<std::size_t>(type));
    positions[type_of.back()].push(static_cast<int>(type_of.size()) - 1);
  }
  int position = 0;
  for (std::size_t type = 0; type < NodeTypes.size(); ++type) {
    for (; !positions[type].empty(); ++position) {
      const int from = positions[type].top();
      positions[type].pop();
      if (from == position) continue;
      int& displaced = map[static_cast<std::size_t>(position)];
      PositionHeap& others = positions[type_of[static_cast<std::size_t>(displaced)]];
      others.pop();
      others.push(from);
      SwapNodes(from, position);
      std::swap(displaced, map[static_cast<std::size_t>(from)]);
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

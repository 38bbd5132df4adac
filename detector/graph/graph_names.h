// Names of graph nodes: the join name convention, look-ups by name, and the graph by numbers in place of
// names.

#ifndef SYMFOLD_DETECTOR_GRAPH_GRAPH_NAMES_H
#define SYMFOLD_DETECTOR_GRAPH_GRAPH_NAMES_H

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "components/model_comp_graph.h"
#include "components/permutation.h"

namespace symfold::detail {

// Stands between the name of a join or submodel and the name of a variable in a node's name.
inline constexpr std::string_view kNameArrow = "->";

// The part of a node's name before the first arrow; empty if there is none.
inline std::string_view join_name(std::string_view name) {
  const auto arrow = name.find(kNameArrow);
  return arrow == std::string_view::npos ? std::string_view() : name.substr(0, arrow);
}

inline bool has_arrow(std::string_view name) { return name.find(kNameArrow) != std::string_view::npos; }

// Finds the first of a list of names in constant time, while a scan of the list takes linear time for each
// look-up. Owns copies of the names; a later name equal to an earlier one is not found.
class NameIndex {
 public:
  NameIndex() = default;
  explicit NameIndex(const std::vector<ModelCompGraphNode>& nodes) {
    for (const ModelCompGraphNode& node : nodes) append(node.Name);
  }
  explicit NameIndex(const std::vector<std::string>& names) {
    for (const std::string& name : names) append(name);
  }

  // Appends the name of the next position. Returns false if an earlier position has it already.
  bool append(const std::string& name) { return first_.try_emplace(name, size_++).second; }

  // The first position of this name, or -1.
  int find(const std::string& name) const {
    const auto found = first_.find(name);
    return found == first_.end() ? -1 : found->second;
  }

 private:
  std::unordered_map<std::string, int> first_;
  int size_ = 0;
};

// The node indices of an edge's ends, -1 for an end whose name is no node.
struct EdgeEndpoints {
  int from;
  int to;
  bool found() const { return from >= 0 && to >= 0; }
};

// Looks both ends up. Reports an edge that leads to no node in two lines on `diagnostics`.
EdgeEndpoints find_endpoints(const NameIndex& nodes, const ModelCompGraphEdge& edge,
                             std::ostream& diagnostics);

// The graph as the automorphism engine takes it: vertices are node indices, a colour is a run of nodes of one
// type. So a type without a node (the joins' type in a model without joins) is no colour. An edge that leads
// to no node is left out.
struct NumberedGraph {
  int vertex_count;
  std::vector<int> boundaries;  // the first vertex of every colour but the first
  std::vector<std::pair<int, int>> edges;

  std::size_t run_count() const { return vertex_count == 0 ? 0 : boundaries.size() + 1; }
};

NumberedGraph number_graph(const std::vector<ModelCompGraphNode>& nodes,
                           const std::vector<ModelCompGraphEdge>& edges, std::ostream& diagnostics);

// The permutation of the nodes in disjoint cycles of real nodes, smallest first, "()" if it moves none. A
// cycle of more than `max_names` names is cut, and "... N" tells their number; so are more than `max_cycles`
// cycles.
std::string named_cycles(const std::vector<ModelCompGraphNode>& nodes, const Permutation& permutation,
                         const std::function<std::string(const ModelCompGraphNode&)>& name_of,
                         std::size_t max_names, std::size_t max_cycles);

}  // namespace symfold::detail

#endif  // SYMFOLD_DETECTOR_GRAPH_GRAPH_NAMES_H

// Names of graph nodes: the join name convention and look-ups by name.

#ifndef SYMFOLD_DETECTOR_GRAPH_NODE_NAMES_H
#define SYMFOLD_DETECTOR_GRAPH_NODE_NAMES_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "components/model_comp_graph.h"

namespace symfold {

// Between a join's or submodel's name and a variable's name in the name of a node.
inline constexpr std::string_view kNameArrow = "->";

// The part of a node's name before the first arrow; empty when there is none.
inline std::string_view join_name(std::string_view name) {
  const auto arrow = name.find(kNameArrow);
  return arrow == std::string_view::npos ? std::string_view() : name.substr(0, arrow);
}

inline bool has_arrow(std::string_view name) { return name.find(kNameArrow) != std::string_view::npos; }

// Finds the first of a list of names in constant time, where a scan of the list would take linear time per
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

  // Appends the name of the next position. False when an earlier position has it already.
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

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_GRAPH_NODE_NAMES_H

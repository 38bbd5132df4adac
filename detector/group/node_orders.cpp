// The partitions by name: in graph-node order (GNOrder) and in state-vector order (SSOrder, the host's).

#include <algorithm>
#include <ostream>
#include <utility>

#include "detector/graph/graph_names.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

int index_of(const std::vector<std::string>& names, const std::string& name) {
  const auto found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

}  // namespace

// A submodel stands at its own position, a join at the position of the first of its nodes.
void SymmetryDetection::FindGraphNodeOrder() {
  detail::NameIndex added;
  for (const ModelCompGraphNode& node : GraphNodes) {
    if (!node.PrivateOrJoin) continue;
    diagnostics() << "gn_name: " << node.Name << std::endl;
    if (detail::has_arrow(node.Name)) {
      std::string name = GetJoinName(node.Name);
      if (added.append(name)) GNOrder.push_back(std::move(name));
    } else {
      added.append(node.Name);
      GNOrder.push_back(node.Name);
    }
  }
}

void SymmetryDetection::FindSSOrder() {}

int SymmetryDetection::FindIndexSSOrder(std::string name) { return index_of(SSOrder, name); }

int SymmetryDetection::FindIndexGNOrder(std::string name) { return index_of(GNOrder, name); }

}  // namespace symfold

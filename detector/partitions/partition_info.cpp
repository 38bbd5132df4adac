// The partition table: byte size and offset of every partition of the state vector, in graph-node order.

#include <algorithm>
#include <ostream>
#include <unordered_map>

#include "detector/graph/graph_names.h"
#include "detector/partitions/byte_sizes.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

// Entry i: the bytes of node i and of all later nodes of the same join. Grouping is by the exact join name,
// so that the nodes of a join J12 are not taken for nodes of J1.
std::vector<int> bytes_from_here_on(const std::vector<ModelCompGraphNode>& nodes) {
  std::unordered_map<std::string_view, int> join_bytes;
  std::vector<int> bytes(nodes.size(), 0);
  for (std::size_t i = nodes.size(); i-- > 0;) {
    if (!detail::has_arrow(nodes[i].Name)) continue;
    int& total = join_bytes[detail::join_name(nodes[i].Name)];
    total = add_bytes(total, nodes[i].StateSize);
    bytes[i] = total;
  }
  return bytes;
}

}  // namespace

void SymmetryDetection::CreatePartitionInfo() {
  int offset = 0;
  const auto append_partition = [&](int size) {
    PartitionInfo.push_back(size);
    StaticCumPartitionInfo.push_back(offset);
    CumPartitionInfo.push_back(offset);
    offset = add_bytes(offset, size);
  };
  const std::vector<int> join_bytes = bytes_from_here_on(GraphNodes);
  detail::NameIndex handled;
  for (std::size_t i = 0; i < GraphNodes.size(); ++i) {
    const ModelCompGraphNode& node = GraphNodes[i];
    if (!node.PrivateOrJoin) continue;
    diagnostics() << "gn_name: " << node.Name << std::endl;
    if (!detail::has_arrow(node.Name)) {
      diagnostics() << "atomic_model_name: " << node.Name << std::endl;
      append_partition(node.StateSize);
    } else if (const std::string join = GetJoinName(node.Name); handled.append(join)) {
      diagnostics() << "join_model_name: " << join << std::endl;
      append_partition(join_bytes[i]);
    }
  }
  diagnostics() << "AFTER CREATE: " << std::endl;
  PrintPartitionInfo();
}

void SymmetryDetection::PrintPartitionInfo() {
  diagnostics() << "There are " << std::to_string(PartitionInfo.size()) << " Partitions" << std::endl;
  diagnostics() << "PartitionInfo\tCumPartitionInfo\tStaticCumPartitionInfo" << std::endl;
  const std::size_t rows =
      std::min({PartitionInfo.size(), CumPartitionInfo.size(), StaticCumPartitionInfo.size()});
  for (std::size_t k = 0; k < rows; ++k) {
    diagnostics() << std::to_string(PartitionInfo[k]) << "\t" << std::to_string(CumPartitionInfo[k]) << "\t"
                  << std::to_string(StaticCumPartitionInfo[k]) << std::endl;
  }
  diagnostics() << std::endl;
}

}  // namespace symfold

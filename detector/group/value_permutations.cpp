// The value-permutation table: for each base point, the points of its orbit under the whole group, each with
// the permutations of its path in the Schreier tree. The points are graph-node indices.

#include <algorithm>
#include <ostream>
#include <string>

#include "components/schreier_tree.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

constexpr std::size_t kGiB = std::size_t{1} << 30;
constexpr std::size_t kMaxTableBytes = 4 * kGiB;

// Says what a table of `base_count` base points would need if as many as `counted` of them need these bytes.
std::string too_large(std::size_t bytes, std::size_t counted, std::size_t base_count) {
  const std::size_t tenths = 10 * (bytes / counted) * base_count / kGiB;
  return "expected tables of at most " + std::to_string(kMaxTableBytes / kGiB) + " GiB, got " +
         std::to_string(base_count) + (base_count == 1 ? " base point" : " base points") +
         " that would need about " + std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) +
         " GiB; exact labels need no tables";
}

// The points ascend and are distinct. Returns an empty text if the table fits.
std::string find_table_limit(SchreierTree& tree, const std::vector<int>& points, int partition_count) {
  std::size_t bytes = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    tree.SetRootValue(points[i]);
    tree.CreateTree(points[i]);
    bytes += tree.CountTableBytes(partition_count);
    if (bytes > kMaxTableBytes) return too_large(bytes, i + 1, points.size());
  }
  return "";
}

}  // namespace

// Trees are built for base points alone, in ascending order, which is the order of Bases. A table that would
// not fit is given up before it is made.
void SymmetryDetection::FindMCG_FindST() {
  SchreierTree tree;
  tree.n = static_cast<int>(GraphNodes.size());
  tree.SetPerms(SGS);
  tree.PrintPerms(diagnostics());
  std::vector<int> points = SGSBase;
  std::erase_if(points, [&](int point) { return point < 0 || point >= tree.GetN(); });
  std::sort(points.begin(), points.end());
  std::vector<int> roots = points;
  roots.erase(std::unique(roots.begin(), roots.end()), roots.end());
  const auto real_count =
      std::ranges::count_if(GraphNodes, [](const ModelCompGraphNode& node) { return node.PrivateOrJoin; });
  TableLimit = find_table_limit(tree, roots, static_cast<int>(real_count));
  if (!TableLimit.empty()) {
    Refuse(TableLimit);
    HasWholeGroup = false;
    return;
  }
  Bases.insert(Bases.end(), points.begin(), points.end());
  for (const int root : roots) {
    tree.SetRootValue(root);
    tree.CreateTree(root);
    VPerms[root] = tree.GetAllPermutationsToRoot();
  }
}

void SymmetryDetection::PrintPermutations() {
  diagnostics() << "All VPerms" << std::endl;
  for (const int base : Bases) {
    diagnostics() << "Base: " << std::to_string(base) << std::endl;
    for (const ValPerms& record : VPerms[base]) diagnostics() << record << std::endl;
  }
}

}  // namespace symfold

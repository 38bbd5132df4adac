// The value-permutation table: for each base point, the points of its orbit under the whole group, each with
// the permutations of its path in the Schreier tree. The points are graph-node indices.

#include <algorithm>
#include <ostream>
#include <string>

#include "components/schreier_tree.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

// The images of all permutations of the table together: 4 GiB.
constexpr std::size_t kMaxImages = std::size_t{1} << 30;

// The points ascend and are distinct. Returns the first one whose tree makes the table too large, -1 if the
// table fits.
int first_point_too_many(SchreierTree& tree, const std::vector<int>& points) {
  std::size_t images = 0;
  for (const int point : points) {
    tree.SetRootValue(point);
    tree.CreateTree(point);
    images += tree.CountPathPermutations() * static_cast<std::size_t>(tree.GetN());
    if (images > kMaxImages) return point;
  }
  return -1;
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
  if (const int point = first_point_too_many(tree, roots); point >= 0) {
    Refuse("expected a value-permutation table of at most " + std::to_string(kMaxImages) +
           " images, got more at base point " + std::to_string(point));
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

// The value-permutation table: per base point, the points of its orbit under the whole group, each with the
// permutations of its path in the Schreier tree. The points are graph-node indices.

#include <iostream>
#include <set>
#include <string>

#include "components/schreier_tree.h"
#include "detector/refusal.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

// Of all permutations of the table together: 4 GiB.
constexpr std::size_t kMostImages = std::size_t{1} << 30;

}  // namespace

// Trees are built for base points alone, in ascending order, which is the order of Bases. A table that would
// not fit is given up before it is made.
void SymmetryDetection::FindMCG_FindST() {
  SchreierTree tree;
  tree.n = static_cast<int>(GraphNodes.size());
  tree.SetPerms(SGS);
  tree.PrintPerms();
  const std::multiset<int> base_points(SGSBase.begin(), SGSBase.end());
  int built = -1;
  std::size_t image_count = 0;
  for (const int point : base_points) {
    if (point < 0 || point >= tree.GetN()) continue;
    Bases.push_back(point);
    if (point == built) continue;
    built = point;
    tree.SetRootValue(point);
    tree.CreateTree(point);
    image_count += tree.CountPathPermutations() * GraphNodes.size();
    if (image_count > kMostImages) {
      report_refusal("expected a value-permutation table of at most " + std::to_string(kMostImages) +
                     " images, got more at base point " + std::to_string(point));
      DropTables();
      return;
    }
    VPerms[point] = tree.GetAllPermutationsToRoot();
  }
}

void SymmetryDetection::PrintPermutations() {
  std::cout << "All VPerms" << std::endl;
  for (const int base : Bases) {
    std::cout << "Base: " << base << std::endl;
    for (const ValPerms& record : VPerms[base]) std::cout << record << std::endl;
  }
}

}  // namespace symfold

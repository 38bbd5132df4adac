// The value-permutation table: per base point, the points of its orbit under the whole group, each with the
// permutations of its path in the Schreier tree. The points are graph-node indices.

#include <iostream>
#include <set>

#include "components/schreier_tree.h"
#include "detector/symmetry_detection.h"

namespace symfold {

// Trees are built for base points alone, in ascending order, which is the order of Bases.
void SymmetryDetection::FindMCG_FindST() {
  SchreierTree tree;
  tree.n = static_cast<int>(GraphNodes.size());
  tree.SetPerms(SGS);
  tree.PrintPerms();
  const std::multiset<int> base_points(SGSBase.begin(), SGSBase.end());
  int built = -1;
  for (const int point : base_points) {
    if (point < 0 || point >= tree.GetN()) continue;
    Bases.push_back(point);
    if (point == built) continue;
    built = point;
    tree.SetRootValue(point);
    tree.CreateTree(point);
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

// Schreier trees: the orbit of a point, each orbit point with the generators on its path from the root.

#ifndef SYMFOLD_COMPONENTS_SCHREIER_TREE_H
#define SYMFOLD_COMPONENTS_SCHREIER_TREE_H

#include <cstddef>
#include <iosfwd>
#include <vector>

#include "components/permutation.h"

namespace symfold {

class SchreierTree {
 public:
  // The number of points, written by the caller before anything else.
  int n = 0;

  // The generators of all trees from now on. One that is no permutation of n points is left out.
  void SetPerms(std::vector<Permutation> perms);

  // Writes the generators to standard output or to `out`, a line each.
  void PrintPerms();
  void PrintPerms(std::ostream& out);

  int GetN() const { return n; }

  // Announces the root of the next tree.
  void SetRootValue(int r);

  // Builds the tree of the root r, breadth-first: first with those generators that fix every point below r,
  // to closure, and only then with all of them. So the path of a point that the stabiliser of the points
  // below r reaches disturbs none of these. A root that is no point gives an empty tree. Cost: the number of
  // (orbit point, generator that moves it) pairs; no permutation is copied.
  void CreateTree(int r);

  // The number of permutations in all records of the latest tree.
  std::size_t CountPathPermutations() const;

  // The points of the latest tree without its root, breadth-first, each with its path: Perms[0], applied
  // first, moves the root, and the last one arrives at Value.
  std::vector<ValPerms> GetAllPermutationsToRoot();

 private:
  void grow(int smallest_allowed);

  std::vector<Permutation> perms_;
  std::vector<int> smallest_moved_;       // per generator, n for the identity
  std::vector<std::size_t> first_mover_;  // per point, where its generators begin in movers_
  std::vector<int> movers_;               // the generators that move the point, ascending
  int root_ = -1;
  std::vector<int> found_;   // the tree's points in the order found, root first
  std::vector<int> parent_;  // per point, or -1
  std::vector<int> via_;     // per point, the generator that moves its parent to it
  std::vector<int> depth_;   // per point, -1 outside the tree
};

}  // namespace symfold

#endif  // SYMFOLD_COMPONENTS_SCHREIER_TREE_H

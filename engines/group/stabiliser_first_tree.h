// Schreier trees that reach a point, if they can, without moving a point below the root.
//
// A tree first grows, to closure, with those generators that fix every point below the root, and only then
// with all of them. So the path of a point that the stabiliser of the points below the root reaches moves
// none of these.

#ifndef SYMFOLD_ENGINES_GROUP_STABILISER_FIRST_TREE_H
#define SYMFOLD_ENGINES_GROUP_STABILISER_FIRST_TREE_H

#include <cstddef>
#include <vector>

#include "engines/base/sparse_permutation.h"
#include "engines/group/orbit_tree.h"

namespace symfold::detail {

class StabiliserFirstTree {
 public:
  // The generators, permutations of 0 .. point_count - 1, are numbered in their order. Keeps no reference to
  // them. Takes 8 bytes for each move.
  StabiliserFirstTree(int point_count, const PermutationList& generators);

  // Builds the tree of a new root, a point. Points are found breadth-first, generators tried in their order.
  // Cost: the number of pairs of an orbit point and a generator that moves it.
  void build(int root);

  void clear() { tree_.clear(); }

  int point_count() const { return first_step_.size() - 1; }
  const OrbitTree& tree() const { return tree_; }

 private:
  struct Step {
    int generator;
    int image;
  };

  void grow(int smallest_allowed);

  PointVector<int> smallest_moved_;      // by generator; the number of points for the identity
  PointVector<std::size_t> first_step_;  // by point, and one more
  std::vector<Step> steps_;              // point after point, of the generators that move it
  OrbitTree tree_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_STABILISER_FIRST_TREE_H

// A whole stabiliser chain in one spanning forest of the points.
//
// By the base rule (stabiliser_chain.h), the orbit of base point b under the stabiliser of all points below b
// is b's class under the strong generators that move no point below b. With b going down, these classes only
// grow. So a forest is built as in Kruskal's algorithm: for b from the largest base point down, an edge from
// x to y joins two classes if a generator with smallest moved point b carries x to y. The path in the forest
// between two points of a class has edges of this class alone, so it is a product of generators that move no
// point below b. There are no trees by base point: for 30,000 interchangeable points they would have 4.5 *
// 10^8 entries, and the forest has 29,999 edges.
//
// Example: (0 1), (1 2), (2 3) make the path 0 - 1 - 2 - 3. The orbit of 1 under the stabiliser of 0 is
// {1, 2, 3}, and (1 2), then (2 3) carry 1 to 3.
//
// Cost: near-linear in the supports of the generators. An element is carried along a path at the cost of the
// generators on it; a run of one generator counts as one.

#ifndef SYMFOLD_ENGINES_GROUP_STABILISER_FOREST_H
#define SYMFOLD_ENGINES_GROUP_STABILISER_FOREST_H

#include <span>
#include <vector>

#include "engines/group/work_permutation.h"

namespace symfold::detail {

// Only read once it is made.
class StabiliserForest {
 public:
  // The generators, permutations of 0 .. degree-1 other than the identity, are strong relative to the base
  // rule. They must outlive the forest.
  StabiliserForest(int degree, const PermutationList& generators);

  const std::vector<int>& base() const { return base_; }
  const std::vector<int>& orbit_lengths() const { return orbit_lengths_; }

  // The length of the longest path from a root of the forest.
  int depth() const { return depth_.empty() ? 0 : *std::ranges::max_element(depth_); }

  // Returns true if an element of the group that moves no point below `base_point` carries it to the point.
  bool reaches(int base_point, int point) const {
    return class_of(base_point, base_point) == class_of(point, base_point);
  }

  // Multiplies by elements of the group until the identity is left, and returns true, or until the smallest
  // moved point has an image outside its orbit: then the group lacks the permutation.
  bool sift(WorkPermutation& permutation) const;

  // Multiplies by an element of the group such that the point is fixed. Its image is in its orbit.
  void bring_back(int point, WorkPermutation& permutation) const;

  // Returns true if the group has this element. The permutation becomes the identity.
  bool contains(WorkPermutation& permutation) const {
    const bool is_member = sift(permutation);
    permutation.set_identity();
    return is_member;
  }

  // Returns the element that moves no point below the base point, carries it to the point, which it reaches,
  // and has the lexicographically smallest images, point after point. So it depends on the group alone.
  // `work` is the identity before and after.
  SparsePermutation smallest_carrier(int base_point, int point, WorkPermutation& work) const;

  // Returns strong generators that depend on the group alone: for each base point, from the last one up, as
  // few of its smallest carriers as make its orbit whole, the smallest point not reached yet first.
  //
  // They show the finest direct decomposition: if the group is a direct product of groups on disjoint sets of
  // points, each smallest carrier moves points of one of them, because the images of the other points are
  // chosen independently, and the smallest ones are the points themselves.
  PermutationList canonical_generators() const;

 private:
  // Two classes that became one.
  struct Merger {
    int level;     // the base point at which they did; the number of points for a single point
    int smallest;  // member
    int left;      // the classes before, as numbers of mergers
    int right;
  };
  // A generator, or its inverse, so many times.
  struct Run {
    int generator;
    int power;
  };

  int class_of(int point, int level) const {
    while (joined_at_[point] >= level) point = joined_to_[point];
    return point;
  }
  std::vector<Run> path(int from, int to) const;
  SparsePermutation powered(const Run& run) const;
  template <class Apply>
  void apply(const Run& run, const Apply& apply) const;
  int next_level(int from, const SparsePermutation& moves) const;
  int smallest_fixed_member(int base_point, int bound, const WorkPermutation& permutation) const;
  std::vector<int> joined_classes(int base_point) const;

  const PermutationList& generators_;
  PermutationList inverses_;
  std::vector<int> base_;
  std::vector<int> orbit_lengths_;
  PointVector<int> next_base_;  // by point: the smallest base point that is not below; the degree for none
  // A disjoint-set forest by size without path compression, so that the classes of every level can be found:
  // the links made at this base point or a larger one. -1 at roots.
  PointVector<int> joined_at_;
  PointVector<int> joined_to_;
  std::vector<Merger> mergers_;  // the points first
  PointVector<int> whole_;       // by base point: its orbit as a merger
  // The spanning forest. The edge carries the parent to the point by this generator, or by the inverse of
  // ~edge_. The parent of a root is -1.
  PointVector<int> parent_;
  PointVector<int> depth_;
  PointVector<int> edge_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_STABILISER_FOREST_H

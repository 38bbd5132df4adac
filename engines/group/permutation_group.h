// A permutation group of the points 0 .. n-1 as a value.
//
// It is held as generators that cost what they move, so a group of exchanges of 30,000 parts takes a few
// megabytes. Base and orbit lengths follow one rule: the next base point is the smallest point that the
// stabiliser of the base points so far still moves. The generators are strong: those that fix all points
// below a base point generate the stabiliser of these points. So the orbit lengths and the order, which is
// their product, are proved, in one of two ways.
//
//  - from_strong_generators: by the search that found the generators, which is the caller's word.
//  - generated_by: here. Generators that move disjoint sets of points are proved apart. Exchanges that
//    connect blocks of points prove every permutation of the blocks, by exchanges of blocks that are
//    neighbours in the order of their smallest points, and then the groups inside the blocks (the proof is in
//    generated_group.cpp). A generator all of whose cycles have lengths that divide the one of its smallest
//    point is strong alone. For everything else random products are sifted until 64 in a row are in the group
//    that is known. Then it is proved by relations between points (engines/group/relation_proof.h), or else
//    because all Schreier generators are in it. If these are too many (some 10^9 steps), the group is called
//    a part: what it holds is in the generated group, and only with probability 2^-64 something is missing,
//    if the products are uniformly random. Alternating groups of many pairs of objects are such groups.
//
// What the group is of, its maker says: if a search for symmetries ended early, those found generate a part
// of all symmetries, and the group is made with Extent::part. It is then no less proved, but not whole.
//
// Example: the group that (0 2) and (1 2) generate has the base 0, 1, the orbit lengths 3, 2 and the order 6.

#ifndef SYMFOLD_ENGINES_GROUP_PERMUTATION_GROUP_H
#define SYMFOLD_ENGINES_GROUP_PERMUTATION_GROUP_H

#include <memory>
#include <vector>

#include "engines/base/sparse_permutation.h"

namespace symfold {

// Copies share what has been worked out about the group. Threads: const members may be called from any number
// of threads.
class PermutationGroup {
 public:
  // Whether the group is all of what was looked for, or certainly a subgroup of it.
  enum class Extent { whole, part };

  // The trivial group.
  explicit PermutationGroup(int degree = 0, Extent extent = Extent::whole);

  // The group that these permutations of 0 .. degree-1 generate, the identity left out. Their moves are in
  // ascending order of points. Cost: near-linear in the supports, if disjoint sets and exchanges prove all
  // (see above); otherwise a Schreier-Sims run on the points of each factor that they do not prove. If that
  // would take too long, the group is called a part, whatever `extent` says. Throws
  // std::invalid_argument if an entry is no such permutation.
  static PermutationGroup generated_by(int degree, const PermutationList& generators,
                                       Extent extent = Extent::whole);

  // The same from generators that are known to be strong relative to the base rule, as those of an
  // automorphism search are, none of them the identity. Cost: near-linear in their supports.
  static PermutationGroup from_strong_generators(int degree, PermutationList generators,
                                                 Extent extent = Extent::whole);

  int degree() const { return degree_; }
  bool is_trivial() const { return generators().size() == 0; }
  bool is_whole() const { return extent_ == Extent::whole; }

  // Strong relative to the base.
  const PermutationList& generators() const;

  // Ascending, with the length of each base point's orbit under the stabiliser of those before, at least 2.
  // The product of the lengths is the order.
  const std::vector<int>& base() const;
  const std::vector<int>& orbit_lengths() const;

  // Returns true if the group has this element. The moves are a permutation of the points, ascending. Cost:
  // by base point that is moved on the way, the generators on a path between two points
  // (engines/group/stabiliser_forest.h). For exchanges of neighbours it is constant.
  bool contains(const SparsePermutation& moves) const;

  // Returns true if an element carries the base point to this point and fixes every point below it.
  bool reaches(int base_point, int point) const;

  // Returns the element with the lexicographically smallest images among those that carry the base point to
  // this point and fix every point below the base point; empty if there is none.
  SparsePermutation smallest_carrier(int base_point, int point) const;

  // Returns the same group with strong generators that depend on the group alone. They show its finest
  // decomposition into a direct product of groups on disjoint sets of points: each moves points of one set.
  PermutationGroup with_canonical_generators() const;

 private:
  struct Chain;

  PermutationGroup(int degree, PermutationList generators, Extent extent);

  int degree_;
  Extent extent_;
  std::shared_ptr<Chain> chain_;
};

}  // namespace symfold

#endif  // SYMFOLD_ENGINES_GROUP_PERMUTATION_GROUP_H

// A permutation group of the points 0 .. n-1 as a value.
//
// It is held as generators that cost what they move, so a group of exchanges of 30,000 parts takes less than
// a megabyte. Base and orbit lengths follow one rule: the next base point is the smallest point that the
// stabiliser of the base points so far still moves (stabiliser_chain.h).
//
// Example: the group that (0 2) and (1 2) generate has the base 0, 1, the orbit lengths 3, 2 and the order 6.

#ifndef SYMFOLD_ENGINES_GROUP_PERMUTATION_GROUP_H
#define SYMFOLD_ENGINES_GROUP_PERMUTATION_GROUP_H

#include <memory>
#include <vector>

#include "engines/base/sparse_permutation.h"

namespace symfold {

namespace detail {
class Membership;
}  // namespace detail

// Copies share what has been worked out about the group. Threads: a group is only read once it is made.
class PermutationGroup {
 public:
  // The trivial group.
  explicit PermutationGroup(int degree = 0);

  // The group that these permutations of 0 .. degree-1 generate, the identity left out. Their moves are in
  // ascending order of points. Cost: a Schreier-Sims run, unless the generators are strong as they stand.
  static PermutationGroup generated_by(int degree, const PermutationList& generators);

  // The same from generators that are known to be strong relative to the base rule, as those of an
  // automorphism search are. Cost: linear in their supports.
  static PermutationGroup from_strong_generators(int degree, PermutationList generators);

  int degree() const { return degree_; }
  bool is_trivial() const { return generators_.size() == 0; }

  // Strong relative to the base.
  const PermutationList& generators() const { return generators_; }

  // Ascending, with the length of each base point's orbit under the stabiliser of those before, at least 2.
  // The product of the lengths is the order.
  const std::vector<int>& base() const { return base_; }
  const std::vector<int>& orbit_lengths() const { return orbit_lengths_; }

  // Returns true if the group has this element. The moves are a permutation of the points.
  bool contains(const SparsePermutation& moves) const;

 private:
  int degree_;
  PermutationList generators_;
  std::vector<int> base_;
  std::vector<int> orbit_lengths_;
  std::shared_ptr<detail::Membership> membership_;
};

}  // namespace symfold

#endif  // SYMFOLD_ENGINES_GROUP_PERMUTATION_GROUP_H

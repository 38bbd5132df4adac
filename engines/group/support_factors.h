// Generators that move disjoint sets of points: the group is the direct product of the groups that each set
// sees, one factor for each class of points that generators move together.

#ifndef SYMFOLD_ENGINES_GROUP_SUPPORT_FACTORS_H
#define SYMFOLD_ENGINES_GROUP_SUPPORT_FACTORS_H

#include <vector>

#include "engines/base/sparse_permutation.h"

namespace symfold::detail {

// A factor on its points, which are numbered in their order. All of them are moved.
struct SupportFactor {
  std::vector<int> points;  // ascending
  PermutationList generators;

  int degree() const { return static_cast<int>(points.size()); }
};

// Returns the factors in the order of their first points. Generators keep their order. If the generators are
// strong relative to the base rule (stabiliser_chain.h), those of each factor are: the stabiliser of some
// points in a direct product is the product of the stabilisers in the factors. Cost: near-linear in the
// degree and the supports.
std::vector<SupportFactor> support_factors(int degree, const PermutationList& generators);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_SUPPORT_FACTORS_H

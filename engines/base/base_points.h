// Reads the base and the orbit lengths off strong generators.
//
// The base is fixed by one rule: the next base point is the smallest point that the stabiliser of the base
// points so far still moves. So the generators of that stabiliser are those whose smallest moved point is at
// least the base point, and its orbits are the classes of points that these generators join.

#ifndef SYMFOLD_ENGINES_BASE_BASE_POINTS_H
#define SYMFOLD_ENGINES_BASE_BASE_POINTS_H

#include <vector>

#include "engines/base/sparse_permutation.h"

namespace symfold::detail {

// Appends the base, ascending, and the length of each base point's orbit, at least 2, as read off the
// generators. They are those of the generators' group exactly if the generators are strong. The generators
// must be permutations of 0 .. n-1 other than the identity. Cost: linear in n and the generators' supports.
void read_base(int n, const PermutationList& generators, std::vector<int>& base,
               std::vector<int>& orbit_lengths);
void read_base(int n, const std::vector<SparsePermutation>& generators, std::vector<int>& base,
               std::vector<int>& orbit_lengths);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_BASE_BASE_POINTS_H

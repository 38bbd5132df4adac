// Strong generating sets from any generators: the Schreier-Sims method.
//
// The chain is kept per point p: the generators that fix every point below p, and the orbit of p under them
// with a tree that leads back. Sifting a permutation takes its smallest moved point p, and where the image of
// p lies in the orbit of p, multiplies by the inverse of the path to that image, so that p is fixed; and so
// on. What gets stuck is no product of generators of the chain so far, and joins them. First come random
// elements of the group, which fill the chain quickly; then every Schreier generator is sifted, which proves
// it complete (C. C. Sims, Computational methods in the study of permutation groups, 1970; A. Seress,
// Permutation Group Algorithms, 2003, ch. 4; random elements: F. Celler, C. R. Leedham-Green, S. H. Murray,
// A. C. Niemeyer and E. A. O'Brien, Generating random elements of a finite group, Communications in Algebra
// 23, 1995).
//
// Example: (0 1 2) and (0 1) of the points 0, 1, 2. The orbit of 0 is complete; the product "(0 1 2), then (0
// 1)" moves 1 and 2 only, gets stuck at point 1 and becomes the generator (1 2) there.
//
// Cost: for each level, orbit length times generators times the cost of sifting, about the degree times the
// lengths of the paths. Meant for groups of moderate degree; large ones come with a known order.

#ifndef SYMFOLD_ENGINES_GROUP_STRONG_GENERATORS_H
#define SYMFOLD_ENGINES_GROUP_STRONG_GENERATORS_H

#include <vector>

#include "engines/base/sparse_permutation.h"

namespace symfold::detail {

// Strong generators, relative to the base rule of stabiliser_chain.h, of the group that permutations of 0 ..
// n-1 generate. Orbit lengths known from elsewhere, where given, end the work as soon as they are reached;
// lengths that never are have no effect.
std::vector<SparsePermutation> strong_generators(int n, const std::vector<SparsePermutation>& generators,
                                                 const std::vector<int>& known_lengths, int quiet_sifts = 20);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_STRONG_GENERATORS_H

// Proof that generators are strong, by relations between points that the group keeps.
//
// The orbits that the generators show are a lower bound of the order. For an upper bound, some orbits of the
// group on pairs of points are made into coloured arcs. The base points are singled out, one after the other,
// and each time the points are split by what the arcs around them show, until nothing splits. No element that
// fixes the base points so far carries a point into another cell. So the cell of the next base point holds
// its orbit under their stabiliser; and if all cells hold one point at the end, only the identity fixes all
// base points. If each cell is as long as the orbit that the generators show, both bounds are the same.
//
// The ring 0 1 2 3 4 5 with its rotation and its mirror that fixes 0: the generators show an orbit of 6
// points and one of 2, of the base points 0 and 1. The arcs lead to both neighbours. When 0 is singled out,
// the cells are {0} {1 5} {2 4} {3}, and then 1 tells 5, 2 and 4 apart: 6 * 2 elements are all.
//
// A group that permutes n objects in every way has some n levels, and a proof by Schreier generators takes
// about n^3 products of long permutations; this one takes n refinements.

#ifndef SYMFOLD_ENGINES_GROUP_RELATION_PROOF_H
#define SYMFOLD_ENGINES_GROUP_RELATION_PROOF_H

#include "engines/base/sparse_permutation.h"
#include "engines/group/stabiliser_forest.h"

namespace symfold::detail {

// Returns true if it is proved that the generators of the forest, permutations of 0 .. degree-1 that move all
// points, are strong relative to the base rule. Returns false for some that are: if other permutations keep
// the same relations, or if these are not seen in a limited number of arcs. Cost: the arcs, at most 2^20,
// times the generators, and as many refinements as there are base points.
bool are_proved_strong(int degree, const PermutationList& generators, const StabiliserForest& forest);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_RELATION_PROOF_H

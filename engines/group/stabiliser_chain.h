// Stabiliser chains: how a permutation group is taken apart into orbits.
//
// The base is fixed by one rule: the next base point is the smallest point that the stabiliser of the base
// points so far still moves. So the stabiliser G(b) of the base points below base point b fixes every point
// below b. Its generators among a strong generating set are those whose smallest moved point is at least b.
// The order of the group is the product of the lengths of the orbits of b under G(b). Example: for all
// permutations of 0, 1, 2 the base is 0, 1, the lengths are 3, 2, and (0 2), (1 2) are strong generators.

#ifndef SYMFOLD_ENGINES_GROUP_STABILISER_CHAIN_H
#define SYMFOLD_ENGINES_GROUP_STABILISER_CHAIN_H

#include <vector>

#include "engines/base/sparse_permutation.h"

namespace symfold::detail {

struct StabiliserChain {
  std::vector<int> base;           // ascending
  std::vector<int> orbit_lengths;  // by base point, at least 2
  std::vector<SparsePermutation> generators;
};

// Returns the stabiliser chain of the group that permutations of 0 .. n-1 generate. known_lengths may hold
// the orbit lengths of the group by the same rule. If the generators reach them, it is complete, because
// subgroups of the stabilisers have no longer orbits; the generators are then taken as they are, at the cost
// of their supports. Otherwise they are completed and verified (see strong_generators).
StabiliserChain complete_stabiliser_chain(int n, std::vector<SparsePermutation> generators,
                                          const std::vector<int>& known_lengths);

// The same with strong generators whose Schreier trees are shallow (see add_shortcuts).
StabiliserChain build_stabiliser_chain(int n, std::vector<SparsePermutation> generators,
                                       const std::vector<int>& known_lengths);

// Returns the base and the orbit lengths that the generators show as they stand, and the generators without
// identities. It is the stabiliser chain of their group exactly if they are strong.
StabiliserChain read_stabiliser_chain(int n, std::vector<SparsePermutation> generators);

// Returns strong generators, relative to this base rule, of the group that permutations of 0 .. n-1 generate.
// Orbit lengths known from elsewhere, if given, end the work as soon as they are reached; lengths that are
// never reached have no effect. Meant for groups of moderate degree, see stabiliser_chain_builder.h for the
// cost.
std::vector<SparsePermutation> strong_generators(int n, const std::vector<SparsePermutation>& generators,
                                                 const std::vector<int>& known_lengths);

// Adds redundant generators to a complete stabiliser chain, so that its Schreier trees are shallow
// (shallow_trees.cpp). A base point gets some only if its tree, breadth-first by the generators that fix all
// points below it, is deeper than max(2, log2 of its orbit's length).
void add_shortcuts(int n, StabiliserChain& chain);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_STABILISER_CHAIN_H

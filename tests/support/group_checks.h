// The promises of the group engines, each checked against a group known member by member.

#ifndef SYMFOLD_TESTS_SUPPORT_GROUP_CHECKS_H
#define SYMFOLD_TESTS_SUPPORT_GROUP_CHECKS_H

#include <vector>

#include "components/permutation.h"
#include "engines/reduction/automorphism_search.h"
#include "tests/oracles/automorphisms.h"

namespace symfold::detail {

// Returns the graph as it is read from its file's text.
ColouredGraph graph_of(const oracle::Graph& graph);

std::vector<oracle::Images> images_of(int n, const PermutationList& generators);
std::vector<Permutation> permutations_of(const std::vector<oracle::Images>& generators);

// Expects the base of the rule "smallest moved point first", with its orbit lengths, and generators that are
// strong relative to it.
void expect_strong(const oracle::Group& group, int n, const std::vector<oracle::Images>& generators,
                   const std::vector<int>& base, const std::vector<int>& orbit_lengths);

// Expects that SchreierSims returns such generators for the group, whatever it is told about the order, and
// that SchreierTree returns paths from every root to its whole orbit, which stay inside the stabiliser of all
// smaller points whenever they can.
void expect_stabiliser_chain_and_trees(const oracle::Group& group, int n,
                                       const std::vector<oracle::Images>& generators);

// Expects that the search finds exactly the automorphisms that trying all permutations finds, and checks the
// stabiliser chain and the trees that follow from them.
void expect_automorphisms(const oracle::Graph& graph);

}  // namespace symfold::detail

#endif  // SYMFOLD_TESTS_SUPPORT_GROUP_CHECKS_H

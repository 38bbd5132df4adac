// The promises of the group engines, each checked against a group known member by member.

#ifndef SYMFOLD_TESTS_SUPPORT_GROUP_CHECKS_H
#define SYMFOLD_TESTS_SUPPORT_GROUP_CHECKS_H

#include <vector>

#include "components/permutation.h"
#include "engines/reduction/automorphism_search.h"
#include "tests/oracles/automorphisms.h"

namespace symfold::detail {

// The graph by way of its file's text.
ColouredGraph graph_of(const oracle::Graph& graph);

std::vector<oracle::Images> images_of(int n, const PermutationList& generators);
std::vector<Permutation> permutations_of(const std::vector<oracle::Images>& generators);

// The base is the one of the rule "smallest moved point first", with its orbit lengths, and the generators
// are strong relative to it.
void expect_strong(const oracle::Group& group, int n, const std::vector<oracle::Images>& generators,
                   const std::vector<int>& base, const std::vector<int>& orbit_lengths);

// SchreierSims gives such a chain for the group, whatever it is told about the order, and SchreierTree gives
// paths from every root to its whole orbit, those inside the stabiliser of all smaller points first.
void expect_chain_and_trees(const oracle::Group& group, int n, const std::vector<oracle::Images>& generators);

// The search finds exactly the automorphisms that trying all permutations does, and chain and trees follow.
void expect_automorphisms(const oracle::Graph& graph);

}  // namespace symfold::detail

#endif  // SYMFOLD_TESTS_SUPPORT_GROUP_CHECKS_H

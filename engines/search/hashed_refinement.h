// A quick test that proves most graphs without symmetry to have none.
//
// Every vertex gets a hash of its colour, loops and degree. Then, round by round, it gets a new one from its
// own and the sum of its neighbours'. Vertices with different hashes are told apart by refinement (B.
// Weisfeiler and A. Leman, The reduction of a graph to canonical form, 1968). Once all hashes differ, the
// identity is the only automorphism, and no partition need be made: most random graphs end here after three
// or four rounds. Hashes that agree by chance only leave the question open.
//
// Example: in the path a-b-c-d with a loop at a, the first hashes leave b and c alike. One round later they
// differ, because only b has a neighbour with a loop.

#ifndef SYMFOLD_ENGINES_SEARCH_HASHED_REFINEMENT_H
#define SYMFOLD_ENGINES_SEARCH_HASHED_REFINEMENT_H

#include "engines/graph/coloured_graph.h"

namespace symfold::detail {

// Returns true only if the identity is the graph's one automorphism. Cost: a few passes over the edges.
bool is_rigid_by_hashes(const ColouredGraph& graph);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_SEARCH_HASHED_REFINEMENT_H

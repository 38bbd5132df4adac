// The automorphism group of a coloured graph.
//
// The graph is reduced to its vertices of degree three and more (degree_reduction.h), what is left is
// searched by individualisation and refinement (path_search.h), and each automorphism found there is lifted
// to the graph. Every generator is checked against the graph's edges before it is given out; should one fail,
// which takes two hashes that agree by chance, or should there be little to reduce, the graph is searched as
// it is.
//
// Example: a ring of 1,000 submodels has 4,000 vertices, all of degree two. The reduction leaves none to
// search, and gives the rotation by one submodel as the one generator.

#ifndef SYMFOLD_ENGINES_REDUCTION_AUTOMORPHISM_SEARCH_H
#define SYMFOLD_ENGINES_REDUCTION_AUTOMORPHISM_SEARCH_H

#include "engines/search/path_search.h"

namespace symfold::detail {

// Cost: near-linear in the graph and the support of the generators, where the search of what the reduction
// leaves is.
AutomorphismGroup find_automorphisms(const ColouredGraph& graph, const SearchLimits& limits = {});

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_REDUCTION_AUTOMORPHISM_SEARCH_H

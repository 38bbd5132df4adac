// The automorphism group of a coloured graph.
//
// The graph is reduced to its vertices of degree three and more (degree_reduction.h), what is left is
// searched by individualisation and refinement (path_search.h), and each automorphism found there is lifted
// to the graph. Every lifted generator is checked against the graph's edges. The graph is searched as it is
// if there is little to reduce, or if a check fails because two hashes agree by chance.
//
// Example: a ring of 1,000 submodels has 4,000 vertices, all of degree two. The reduction leaves none to
// search. The rotation by one submodel is the one generator.

#ifndef SYMFOLD_ENGINES_REDUCTION_AUTOMORPHISM_SEARCH_H
#define SYMFOLD_ENGINES_REDUCTION_AUTOMORPHISM_SEARCH_H

#include "engines/search/path_search.h"

namespace symfold::detail {

// Cost: near-linear in the graph and the support of the generators, if the search of the reduced graph is.
AutomorphismGroup find_automorphisms(const ColouredGraph& graph, const SearchLimits& limits = {});

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_REDUCTION_AUTOMORPHISM_SEARCH_H

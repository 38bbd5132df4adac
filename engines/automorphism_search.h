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

#ifndef SYMFOLD_ENGINES_AUTOMORPHISM_SEARCH_H
#define SYMFOLD_ENGINES_AUTOMORPHISM_SEARCH_H

#include <cstddef>
#include <limits>
#include <vector>

#include "engines/coloured_graph.h"
#include "engines/sparse_permutation.h"

namespace symfold {

struct AutomorphismGroup {
  PermutationList generators;      // none is the identity
  std::vector<int> base;           // each the smallest vertex moved by the stabiliser of those before
  std::vector<int> orbit_lengths;  // of the base points, each at least 2
  bool is_complete = true;         // false: the search stopped at the generator limit
};

struct SearchLimits {
  std::size_t generators = std::numeric_limits<std::size_t>::max();  // more of them end the search
  int descent_failures =
      10'000;  // more of them in a paired descent leave its question open; 0 forbids descents
};

// Cost: near-linear in the graph and the support of the generators, where the search of what the reduction
// leaves is.
AutomorphismGroup find_automorphisms(const ColouredGraph& graph, const SearchLimits& limits = {});

}  // namespace symfold

#endif  // SYMFOLD_ENGINES_AUTOMORPHISM_SEARCH_H

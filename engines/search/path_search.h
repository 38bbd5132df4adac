// The search itself for automorphisms of a coloured graph, by individualisation and refinement.
//
// First path. Starting with the equitable partition of the colours, the smallest vertex that shares its cell
// is individualised and the partition refined, until every cell has one member: levels 0, 1, .. with their
// vertices v0 < v1 < ... An automorphism that fixes all of these is the identity, so they hold a base.
//
// Other paths. From the deepest level up, the search asks for every w of the cell of v(i) if some
// automorphism fixes v0 .. v(i-1) and carries v(i) to w. It individualises w instead. If refinement runs as
// it did for v(i), the two sides pair the vertices of equal positions; otherwise there is no such
// automorphism. If the pairs do not settle the question, both sides descend where they differ
// (paired_descent.h). If descents keep choosing wrongly, one path on the right is compared with a tree on the
// left (subtree_match.h): in projective planes this takes a hundredth of the time. In the rare case that even
// this does not answer, the levels of the first path are followed with all choices that matter. The answer is
// already known for the members of v(i)'s orbit under the generators found so far, which all fix v0 ..
// v(i-1), and for the orbits of failed candidates. When all w of level i are answered, the orbit of v(i)
// under its stabiliser is known exactly. The order of the group is the product of these lengths, and the
// generators are a strong generating set (B. D. McKay, Practical graph isomorphism, Congressus Numerantium
// 30, 1981; J. S. Leon, Computing automorphism groups of combinatorial objects, 1984).
//
// Sparse generators. As soon as a path has told the moved vertices apart, the rest may stay as it is: after a
// refinement the new cells alone are examined (partial_image.h), and the outcome is checked against the edges
// of the moved vertices. So a generator costs about its support and not the graph. Tried and dropped:
// descending along the first path's levels alone, which is quadratic if the numbering interleaves the parts
// that are exchanged, as in trees numbered level by level.
//
// No path if none is needed. Most graphs without symmetry are recognised before the search
// (hashed_refinement.h). If candidates keep failing, which in a random regular graph would be nearly all
// vertices, the balls around them are hashed instead (ball_hashes.h), and the search begins anew with smaller
// cells.
//
// Example: a star with leaves 0 .. 3 around 4. First path 0, 1, 2. Level 2 finds (2 3), level 1 (1 3), level
// 0 (0 3): the largest vertex of an orbit stands for it, so 3 takes part in all of them, and every leaf is
// two steps from every other.
//
// Cost: near-linear in graph and support of generators if refinement sees the orbits, as in trees and in the
// graphs of composed models; exponential in the worst case, as for every known method of this kind.

#ifndef SYMFOLD_ENGINES_SEARCH_PATH_SEARCH_H
#define SYMFOLD_ENGINES_SEARCH_PATH_SEARCH_H

#include <cstddef>
#include <limits>
#include <vector>

#include "engines/base/sparse_permutation.h"
#include "engines/graph/coloured_graph.h"

namespace symfold::detail {

enum class SearchEnd { kComplete, kMoveLimit, kWorkBudget };

// If the search did not end by itself, the generators found by then are those of a subgroup. They are strong
// for it, and base and lengths are its own.
struct AutomorphismGroup {
  PermutationList generators;      // strong relative to the base; none is the identity
  std::vector<int> base;           // each the smallest vertex moved by the stabiliser of those before
  std::vector<int> orbit_lengths;  // of the base points, each at least 2
  bool is_complete = true;         // false: the group may be larger; `end` says why the search ended
  SearchEnd end = SearchEnd::kComplete;
};

struct SearchLimits {
  // The search ends when its generators have more moves.
  std::size_t max_moves = std::numeric_limits<std::size_t>::max();

  // The search ends when it has examined so many edges, or done work that costs about as much. One takes
  // about ten nanoseconds, so the default is about a minute.
  std::size_t max_work = 5'000'000'000;

  // A paired descent with more failures leaves its question open; 0 forbids descents.
  int max_descent_failures = 20;

  // False leaves all that descents leave open to the levels of the first path.
  bool matches_subtrees = true;
};

// Does the same as find_automorphisms (automorphism_search.h), on the graph as it is.
AutomorphismGroup search_paths(const ColouredGraph& graph, const SearchLimits& limits = {});

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_SEARCH_PATH_SEARCH_H

// The relations between points that a group keeps, as far as they are sparse.
//
// An orbital is an orbit of the group on pairs of points: the arcs from each point x to an orbit of x's
// stabiliser. In the group of a composition, orbitals with few arcs from a point are the relations "belongs
// to", "is joined to" and the like.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_ORBITALS_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_ORBITALS_H

#include <cstdint>
#include <vector>

#include "engines/largest_image/stabiliser_trees.h"

namespace symfold::detail {

// The arcs from the points of an orbit, equally many from each. ends[i * arity] and the next are the ends of
// those from points[i].
struct Relation {
  std::size_t arity;
  std::vector<std::uint32_t> points;
  std::vector<std::uint32_t> ends;
};

// Returns the sparsest orbitals and their inverses. They depend on the group alone, and are proved: each
// generator carries each of them onto itself.
std::vector<Relation> sparse_orbitals(const StabiliserTrees& trees);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_ORBITALS_H

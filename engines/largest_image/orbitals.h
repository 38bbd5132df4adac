// The relations between points that a group keeps, as far as they are sparse.
//
// An orbital is an orbit of the group on pairs of points: the arcs from each point x to an orbit of x's
// stabiliser. In the group of a composition, orbitals with few arcs from a point are the relations "belongs
// to", "is joined to" and the like. Often one orbit follows another, point by point: a part and a join of its
// own. Then a point of the first, a *leader*, stands for those that follow it.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_ORBITALS_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_ORBITALS_H

#include <cstdint>
#include <vector>

#include "engines/largest_image/stabiliser_trees.h"

namespace symfold::detail {

// The arcs from the leaders of an orbit, equally many from each. ends[i * arity] and the next are the ends of
// those from points[i]. Both are numbers of leaders.
struct Relation {
  std::size_t arity;
  std::vector<std::uint32_t> points;
  std::vector<std::uint32_t> ends;
};

struct Orbitals {
  std::vector<std::uint32_t> leaders;    // ascending
  std::vector<std::uint32_t> leader_of;  // by point, the number of its leader
  std::vector<Relation> relations;
};

// Returns the sparsest orbitals between leaders, and their inverses. They depend on the group alone, and are
// proved, as is what follows what: each generator carries each of them onto itself.
Orbitals sparse_orbitals(const StabiliserTrees& trees);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_ORBITALS_H

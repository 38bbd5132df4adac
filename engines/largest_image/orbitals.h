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

// The arcs of all relations between leaders. Those from one leader in one relation are a fan.
struct Fan {
  std::uint32_t relation;
  std::uint32_t begin;  // in `ends`
  std::uint32_t end;
};

// Returns the position that each position follows: itself for leaders. Of all positions with the same
// stabiliser in orbits of their own, the one in the orbit with the smallest position is the leader. Depends
// on the group alone, and is proved as below.
std::vector<std::uint32_t> leaders_of(const StabiliserTrees& trees);

struct Orbitals {
  std::vector<std::uint32_t> leaders;    // ascending
  std::vector<std::uint32_t> leader_of;  // by point, the number of its leader
  std::vector<std::uint32_t> begins;     // the fans of each leader, and at the end their number
  std::vector<Fan> fans;
  std::vector<std::uint32_t> ends;  // of the arcs, the numbers of leaders
};

// Returns the sparsest orbitals between leaders, and their inverses. They depend on the group alone, and are
// proved, as is what follows what: each generator carries each of them onto itself.
Orbitals sparse_orbitals(const StabiliserTrees& trees);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_ORBITALS_H

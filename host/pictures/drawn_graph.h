// What a drawing of a composed model shows: its submodels and joins in the colours of their orbits, or every
// orbit as one node.

#ifndef SYMFOLD_HOST_PICTURES_DRAWN_GRAPH_H
#define SYMFOLD_HOST_PICTURES_DRAWN_GRAPH_H

#include <cstddef>
#include <string>
#include <vector>

#include "host/model/composed_model.h"
#include "host/symmetry/symmetry_names.h"

namespace symfold {

struct DrawnOrbit {
  bool is_join = false;  // of joins, not of submodels
  std::vector<std::string> names;
};

struct DrawnNode {
  std::string name;  // no two nodes have the same
  std::string text;  // written at the node; empty for joins among many nodes
  std::string hint;  // shown when pointed at
  std::size_t orbit = 0;
};

// A shared variable of a submodel, in its join; between orbits, all such variables of one name.
struct DrawnEdge {
  std::size_t submodel = 0;  // nodes
  std::size_t join = 0;
  std::string text;  // of a variable, at the submodel's end; between orbits on the whole edge
  std::string hint;
};

struct DrawnGraph {
  std::vector<DrawnOrbit> orbits;  // of submodels, then of joins
  std::vector<DrawnNode> nodes;    // submodels, then joins
  std::vector<DrawnEdge> edges;
  bool is_collapsed = false;

  bool is_join(std::size_t node) const { return orbits[nodes[node].orbit].is_join; }
};

// Every submodel and every join is a node. If there are many, only the indices of submodels are written, and
// joins have no text. The edges of a small graph have the names of the submodels' variables.
DrawnGraph drawn_parts(const ComposedModel& model, const NamedOrbits& orbits);

// Every orbit is a node with the number of its parts. Between an orbit of submodels and one of joins there is
// an edge for each shared variable, with the number of times that it is shared.
DrawnGraph drawn_orbits(const ComposedModel& model, const NamedOrbits& orbits);

}  // namespace symfold

#endif  // SYMFOLD_HOST_PICTURES_DRAWN_GRAPH_H

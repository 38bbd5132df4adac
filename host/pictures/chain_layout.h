// Places for the nodes of a ring or of a line, which the general methods of drawing graphs crumple when they
// are long.

#ifndef SYMFOLD_HOST_PICTURES_CHAIN_LAYOUT_H
#define SYMFOLD_HOST_PICTURES_CHAIN_LAYOUT_H

#include <vector>

#include "host/pictures/drawn_graph.h"

namespace symfold {

// In inches; y grows upwards.
struct Position {
  double x = 0;
  double y = 0;
};

// The places of all nodes, where the graph is a ring, each node of which may carry one more node, or a line;
// else none. Short rings become circles; long ones run to and fro between two circles, long lines in rows.
// Neighbours are so far apart that submodels and joins of the given widths do not overlap. Cost: linear.
std::vector<Position> chain_positions(const DrawnGraph& graph, double submodel_width, double join_width);

}  // namespace symfold

#endif  // SYMFOLD_HOST_PICTURES_CHAIN_LAYOUT_H

// Places for the nodes of a line or of a ring. The general methods of drawing graphs crumple long ones.

#ifndef SYMFOLD_HOST_PICTURES_LINE_LAYOUT_H
#define SYMFOLD_HOST_PICTURES_LINE_LAYOUT_H

#include <vector>

#include "host/pictures/drawn_graph.h"

namespace symfold {

// In inches; y grows upwards.
struct Position {
  double x = 0;
  double y = 0;
};

// Returns the places of all nodes if the graph is a line, or a ring each node of which may carry one more
// node; else no places. Short rings become circles; long ones run to and fro between two circles, long lines
// in rows. Neighbours are so far apart that submodels and joins of the given widths do not overlap. Cost:
// linear.
std::vector<Position> line_positions(const DrawnGraph& graph, double submodel_width, double join_width);

}  // namespace symfold

#endif  // SYMFOLD_HOST_PICTURES_LINE_LAYOUT_H

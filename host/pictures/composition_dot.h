// The drawing of a composed model in the DOT language (Graphviz documentation, "DOT Language").

#ifndef SYMFOLD_HOST_PICTURES_COMPOSITION_DOT_H
#define SYMFOLD_HOST_PICTURES_COMPOSITION_DOT_H

#include <string>

#include "host/pictures/drawn_graph.h"

namespace symfold {

struct DrawingTitle {
  std::string model;
  std::string parts;        // "5 submodels, 5 joins"
  std::string group_order;  // in decimal, exact
};

// Returns an undirected graph: submodels as boxes, joins as dots, both filled with the colour of their orbit,
// and a legend with the title, the order of the group and the orbits, or the first ones of many. The graph's
// attributes name the layout that suits its size and shape, so that any of Graphviz's programs draws it as
// meant. The first line, a comment, has the whole order of the group; the legend shows the ends alone of an
// order of more than a thousand digits.
std::string composition_dot(const DrawnGraph& graph, const DrawingTitle& title);

}  // namespace symfold

#endif  // SYMFOLD_HOST_PICTURES_COMPOSITION_DOT_H

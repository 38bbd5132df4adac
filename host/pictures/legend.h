// The legend of a drawing, as one of Graphviz's HTML-like labels.

#ifndef SYMFOLD_HOST_PICTURES_LEGEND_H
#define SYMFOLD_HOST_PICTURES_LEGEND_H

#include <string>
#include <vector>

#include "host/pictures/drawn_graph.h"

namespace symfold {

struct DrawingTitle {
  std::string model;
  std::string parts;        // "5 submodels, 5 joins"
  std::string group_order;  // in decimal, exact
};

// Lines of text: the model, its parts and the order of the group, and a line for each orbit with its colour,
// size and names.
std::string legend(const DrawnGraph& graph, const DrawingTitle& title,
                   const std::vector<std::string>& colours);

}  // namespace symfold

#endif  // SYMFOLD_HOST_PICTURES_LEGEND_H

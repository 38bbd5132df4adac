// The records of the model composition graph: a vertex per submodel, per shared variable of a join and per
// submodel variable bound by a join; an edge between each bound variable and its join and its submodel.

#ifndef SYMFOLD_COMPONENTS_MODEL_COMP_GRAPH_H
#define SYMFOLD_COMPONENTS_MODEL_COMP_GRAPH_H

#include <string>

namespace symfold {

struct ModelCompGraphNode {
  std::string Type;            // colour class
  std::string Name;            // key by which edges and look-ups find the node
  bool PrivateOrJoin = false;  // the node stands for a stretch of the state vector
  int StateSize = 0;           // bytes of that stretch
};

struct ModelCompGraphEdge {
  ModelCompGraphNode From;
  ModelCompGraphNode To;
};

}  // namespace symfold

#endif  // SYMFOLD_COMPONENTS_MODEL_COMP_GRAPH_H

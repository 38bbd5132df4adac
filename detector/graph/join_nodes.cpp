// Join variable nodes: one per join and shared variable, all of one colour.

#include <iostream>
#include <utility>

#include "detector/graph/node_names.h"
#include "detector/symmetry_detection.h"

namespace symfold {

void SymmetryDetection::FindMCG_JoinNodes() {
  for (int j = 0; j < NumJoins; ++j) {
    const std::string name = Joins[j]->JoinName;
    std::cout << "joinName: " << name << std::endl;
    for (int k = 0; k < Joins[j]->NumSharedStateVars; ++k) {
      ModelCompGraphNode node;
      node.Name = name;
      node.Name += kNameArrow;
      node.Name += Joins[j]->SharedStateVarNames[k];
      node.Type = "join";
      node.PrivateOrJoin = true;
      node.StateSize = 2;
      GraphNodes.push_back(std::move(node));
    }
  }
}

std::string SymmetryDetection::GetJoinName(std::string name) { return std::string(join_name(name)); }

}  // namespace symfold

// Local variable nodes and the edges: every submodel variable that a join binds gets a node between the join
// variable node and the node of its submodel, coloured by the submodel's type and the variable's name.

#include <iostream>

#include "detector/graph/node_names.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

std::string arrow_joined(const std::string& owner, const char* variable) {
  std::string name = owner;
  name += kNameArrow;
  name += variable;
  return name;
}

}  // namespace

// Types are looked up in the nodes as they stand, local variable nodes included; the index grows with the
// nodes.
void SymmetryDetection::FindMCG_PrivateNodes() {
  NameIndex nodes(GraphNodes);
  NameIndex types(NodeTypes);
  const auto type_of = [&](const std::string& name) {
    const int index = nodes.find(name);
    return index < 0 ? std::string("unknown") : GraphNodes[static_cast<std::size_t>(index)].Type;
  };
  for (int j = 0; j < NumJoins; ++j) {
    const JoinModel& join = *Joins[j];
    const std::string join_model_name = join.JoinName;
    const std::string join_type = type_of(join_model_name);
    std::cout << "Number of Shared State Vars: " << join.NumSharedStateVars << std::endl;
    for (int k = 0; k < join.NumSharedStateVars; ++k) {
      ModelCompGraphNode shared;
      shared.Name = arrow_joined(join_model_name, join.SharedStateVarNames[k]);
      shared.Type = join_type;
      for (const SharedVarEntry* entry = join.SharedStateVars[k]; entry != nullptr; entry = entry->Next) {
        ModelCompGraphNode owner;
        owner.Name = entry->Model->ModelName;
        owner.Type = type_of(owner.Name);
        ModelCompGraphNode local;
        local.Name = arrow_joined(owner.Name, entry->Variable->VarName);
        local.Type = arrow_joined(owner.Type, entry->Variable->VarName);
        if (types.append(local.Type)) NodeTypes.push_back(local.Type);
        GraphNodes.push_back(local);
        nodes.append(local.Name);
        GraphEdges.push_back({shared, local});
        GraphEdges.push_back({local, owner});
      }
    }
  }
}

std::string SymmetryDetection::FindType(std::string name) {
  const int index = FindIndex(name);
  return index < 0 ? "unknown" : GraphNodes[static_cast<std::size_t>(index)].Type;
}

}  // namespace symfold

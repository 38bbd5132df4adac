// The nodes and edges that joins make. Every shared variable of a join has a node, all of one colour. Every
// submodel variable that a join binds gets a node between the join variable node and the node of its
// submodel, coloured by the submodel's type and the variable's name.

#include <ostream>
#include <utility>

#include "detector/graph/graph_names.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

std::string arrow_joined(const std::string& owner, const char* variable) {
  std::string name = owner;
  name += detail::kNameArrow;
  name += variable;
  return name;
}

}  // namespace

void SymmetryDetection::FindMCG_JoinNodes() {
  for (int j = 0; j < NumJoins; ++j) {
    const std::string name = Joins[j]->JoinName;
    diagnostics() << "joinName: " << name << std::endl;
    for (int k = 0; k < Joins[j]->NumSharedStateVars; ++k) {
      ModelCompGraphNode node;
      node.Name = arrow_joined(name, Joins[j]->SharedStateVarNames[k]);
      node.Type = "join";
      node.PrivateOrJoin = true;
      node.StateSize = 2;
      GraphNodes.push_back(std::move(node));
    }
  }
}

std::string SymmetryDetection::GetJoinName(std::string name) { return std::string(detail::join_name(name)); }

// Types are looked up in the nodes as they stand, local variable nodes included; the index grows with the
// nodes.
void SymmetryDetection::FindMCG_PrivateNodes() {
  detail::NameIndex nodes(GraphNodes);
  detail::NameIndex types(NodeTypes);
  const auto type_of = [&](const std::string& name) {
    const int index = nodes.find(name);
    return index < 0 ? std::string("unknown") : GraphNodes[static_cast<std::size_t>(index)].Type;
  };
  for (int j = 0; j < NumJoins; ++j) {
    const JoinModel& join = *Joins[j];
    const std::string join_model_name = join.JoinName;
    const std::string join_type = type_of(join_model_name);
    diagnostics() << "Number of Shared State Vars: " << std::to_string(join.NumSharedStateVars) << std::endl;
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

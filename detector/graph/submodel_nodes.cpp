// The driver of detection, and its first step: the submodel nodes from the file "types".

#include <fstream>
#include <iostream>
#include <typeinfo>
#include <utility>

#include "detector/graph/node_names.h"
#include "detector/refusal.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

constexpr const char* kJoinType = "join";

// The submodel nodes that the file lists; stops at the end of a file that holds fewer than it announces. None
// when one has the type of the joins: it could be exchanged with a join.
std::vector<ModelCompGraphNode> read_submodels(std::istream& in, int count) {
  std::vector<ModelCompGraphNode> nodes;
  ModelCompGraphNode node;
  node.PrivateOrJoin = true;
  for (int i = 0; i < count && in >> node.Name >> node.Type; ++i) {
    if (node.Type == kJoinType) {
      report_refusal("types: expected a submodel type other than \"join\" for " + node.Name);
      return {};
    }
    nodes.push_back(node);
  }
  return nodes;
}

}  // namespace

void SymmetryDetection::FindMCG() {
  InitFindMCG();
  FindMCG_JoinNodes();
  FindMCG_PrivateNodes();
  std::cout << "Before sort" << std::endl;
  PrintGraphNodes();
  FindMCG_Sort();
  PrintGraphNodes();
  PrintGraphEdges();
  PrintMCG();
  WriteMCGViz();
  FindMCG_FindAut();
  FindMCG_FindSS();
  FindMCG_FindST();
  FindGraphNodeOrder();
}

void SymmetryDetection::InitFindMCG() {
  std::ifstream in("types");
  if (!in) {
    std::cout << "Error: reading types file" << std::endl;
  } else {
    int count = 0;
    if (!(in >> count)) count = 0;
    std::cout << "There are : " << count << " submodels" << std::endl;
    NameIndex types;
    for (ModelCompGraphNode& node : read_submodels(in, count)) {
      if (types.append(node.Type)) NodeTypes.push_back(node.Type);
      GraphNodes.push_back(std::move(node));
    }
  }
  NodeTypes.emplace_back(kJoinType);
  std::cout << "RTTI test: " << std::endl;
  for (int j = 0; j < NumJoins; ++j) {
    const JoinModel& join = *Joins[j];
    std::cout << "join name: " << join.JoinName << "\tRTTI name: " << typeid(join).name() << std::endl;
  }
}

}  // namespace symfold

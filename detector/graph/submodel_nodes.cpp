// The driver of detection, and its first step: the submodel nodes from the list of submodels.

#include <fstream>
#include <locale>
#include <ostream>
#include <typeinfo>
#include <utility>

#include "detector/graph/graph_names.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

constexpr const char* kJoinType = "join";

// Returns the submodel nodes that the text lists. Stops at the end of a text that holds fewer than `count`.
// `refused` becomes the first one that has the type of the joins: it could be exchanged with a join.
std::vector<ModelCompGraphNode> read_submodels(std::istream& in, int count, std::string& refused) {
  std::vector<ModelCompGraphNode> nodes;
  ModelCompGraphNode node;
  node.PrivateOrJoin = true;
  for (int i = 0; i < count && in >> node.Name >> node.Type; ++i) {
    if (node.Type == kJoinType) {
      refused = node.Name;
      return {};
    }
    nodes.push_back(node);
  }
  return nodes;
}

}  // namespace

void SymmetryDetection::FindMCG() {
  InitFindMCG();
  MakeGraph();
  PrintMCG();
  WriteMCGViz();
  FindMCG_FindAut();
  MakeGroup();
}

void SymmetryDetection::FindMCG(std::istream& types) {
  InitFindMCG(types);
  MakeGraph();
  FindAutInMemory();
  MakeGroup();
}

void SymmetryDetection::FindMCGGroup(std::istream& types) {
  has_tables_ = false;
  FindMCG(types);
}

void SymmetryDetection::MakeGraph() {
  FindMCG_JoinNodes();
  FindMCG_PrivateNodes();
  diagnostics() << "Before sort" << std::endl;
  PrintGraphNodes();
  FindMCG_Sort();
  PrintGraphNodes();
  PrintGraphEdges();
}

void SymmetryDetection::MakeGroup() {
  MakeTables();
  FindGraphNodeOrder();
}

void SymmetryDetection::MakeTables() {
  FindMCG_FindSS();
  if (has_tables_) FindMCG_FindST();
}

void SymmetryDetection::InitFindMCG() {
  std::ifstream in("types");
  if (!in) diagnostics() << "Error: reading types file" << std::endl;
  InitFindMCG(in);
}

// Reads by a stream of its own, so that the locale of the caller's stream does not matter.
void SymmetryDetection::InitFindMCG(std::istream& types_text) {
  std::istream in(types_text ? types_text.rdbuf() : nullptr);
  in.imbue(std::locale::classic());
  if (in) {
    int count = 0;
    if (!(in >> count)) count = 0;
    diagnostics() << "There are : " << std::to_string(count) << " submodels" << std::endl;
    std::string refused;
    detail::NameIndex types;
    for (ModelCompGraphNode& node : read_submodels(in, count, refused)) {
      if (types.append(node.Type)) NodeTypes.push_back(node.Type);
      GraphNodes.push_back(std::move(node));
    }
    if (!refused.empty()) {
      input_fault_ = "types: expected a submodel type other than \"join\" for " + refused;
      Refuse(input_fault_);
    }
  }
  NodeTypes.emplace_back(kJoinType);
  diagnostics() << "RTTI test: " << std::endl;
  for (int j = 0; j < NumJoins; ++j) {
    const JoinModel& join = *Joins[j];
    diagnostics() << "join name: " << join.JoinName << "\tRTTI name: " << typeid(join).name() << std::endl;
  }
}

}  // namespace symfold

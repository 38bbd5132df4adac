// The automorphism group of the graph: generators from the automorphism engine, and a base and strong
// generating set of the same group.

#include <memory>
#include <ostream>
#include <string>

#include "components/schreier_sims.h"
#include "detector/graph/graph_names.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

constexpr const char* kGraphFile = "model_comp_graph";

}  // namespace

void SymmetryDetection::FindMCG_FindAut() {
  BeginSearch();
  std::string file_name = kGraphFile;
  FinishSearch(SaucyObj->saucy_begin2(file_name.data()));
}

void SymmetryDetection::FindAutInMemory() {
  const detail::NumberedGraph graph = detail::number_graph(GraphNodes, GraphEdges, diagnostics());
  BeginSearch();
  FinishSearch(SaucyObj->saucy_begin_graph(graph.vertex_count, graph.boundaries, graph.edges, kGraphFile));
}

void SymmetryDetection::BeginSearch() {
  SaucyObj = new saucy_obj();
  SaucyObj->errors = refusals_;
}

// The engine acts on the vertices of the graph that it was given. If that is not this detector's graph (its
// file could not be written and an older one stands in its place), the generators say nothing about the model
// and are not taken.
void SymmetryDetection::FinishSearch(saucy_struct* search) {
  const int node_count = static_cast<int>(GraphNodes.size());
  const auto end_search = [this, search](void*) {
    SaucyObj->saucy_end(search);
    delete SaucyObj;
    SaucyObj = nullptr;
  };
  const std::unique_ptr<void, decltype(end_search)> ended_in_any_case(this, end_search);
  SaucyObj->saucy_init(search);
  SaucyObj->saucy_search(search);
  OrigPermutations.emplace_back(node_count);
  SGSOrbitLengths.clear();
  const auto& generators = SaucyObj->generators;
  if (!generators.empty() && generators.front().GetN() != node_count) {
    Refuse(std::string(kGraphFile) + ": expected a graph of " + std::to_string(node_count) + " nodes, got " +
           std::to_string(generators.front().GetN()));
  } else {
    OrigPermutations.insert(OrigPermutations.end(), generators.begin(), generators.end());
    SGSOrbitLengths = SaucyObj->orbit_lengths;
    HasWholeGroup = SaucyObj->is_complete;
  }
  diagnostics() << "FindMCG_FindAut() Print OrigPermutations: Num:" << OrigPermutations.size() << std::endl;
  for (const Permutation& permutation : OrigPermutations) {
    diagnostics() << permutation << std::endl;
    if (permutation.IsIdentity()) diagnostics() << "\t\tIDENTITY" << std::endl;
  }
}

// The automorphism search has established the group's order: with it the stabiliser chain is proved complete
// at once.
void SymmetryDetection::FindMCG_FindSS() {
  const int node_count = static_cast<int>(GraphNodes.size());
  SchreierSims schreier_sims(node_count, static_cast<int>(OrigPermutations.size()));
  if (!SGSOrbitLengths.empty()) schreier_sims.SetKnownOrder(SGSOrbitLengths);
  SGS = schreier_sims.Go(OrigPermutations, SGSBase);
  SGSOrbitLengths = schreier_sims.OrbitLengths();
  if (SGS.empty()) SGS.emplace_back(node_count);
  diagnostics() << "SGS Size: " << SGS.size() << std::endl;
}

}  // namespace symfold

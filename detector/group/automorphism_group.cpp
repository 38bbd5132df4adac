// The automorphism group of the graph: generators from the automorphism engine, and a base and strong
// generating set of the same group.

#include <fstream>
#include <memory>
#include <ostream>
#include <string>

#include "components/schreier_sims.h"
#include "detector/graph/graph_names.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

constexpr const char* kGraphFile = "model_comp_graph";

// Reads numbers one by one and compares them with those that are expected.
class FileComparison {
 public:
  explicit FileComparison(std::istream& in) : in_(in) {}

  // Returns false, and notes the number that was read in its place, unless the next one is `expected`.
  bool has(std::size_t expected) {
    std::size_t number = 0;
    const bool is_read = static_cast<bool>(in_ >> number);
    got_ = is_read ? std::to_string(number) : "no number";
    return is_read && number == expected;
  }
  const std::string& got() const { return got_; }

 private:
  std::istream& in_;
  std::string got_;
};

// Says in names how the graph file differs from the detector's graph; empty if it does not.
std::string find_difference(std::istream& in, const detail::NumberedGraph& graph,
                            const std::vector<ModelCompGraphNode>& nodes) {
  FileComparison file(in);
  const auto differs = [&](const std::string& expected) {
    return "expected a graph " + expected + ", got " + file.got();
  };
  if (!file.has(nodes.size())) return differs("of " + std::to_string(nodes.size()) + " nodes");
  if (!file.has(graph.edges.size())) return differs("of " + std::to_string(graph.edges.size()) + " edges");
  const std::size_t colours = nodes.empty() ? 0 : graph.boundaries.size() + 1;
  if (!file.has(colours)) return differs("of " + std::to_string(colours) + " colours");
  for (const int first : graph.boundaries) {
    const auto node = static_cast<std::size_t>(first);
    if (!file.has(node)) return differs("with a colour from node " + nodes[node].Name + " on");
  }
  for (const auto& [from, to] : graph.edges) {
    const auto a = static_cast<std::size_t>(from);
    const auto b = static_cast<std::size_t>(to);
    if (file.has(a) && file.has(b)) continue;
    return differs("with the edge " + nodes[a].Name + " -- " + nodes[b].Name + " (" + std::to_string(a) +
                   " " + std::to_string(b) + ")");
  }
  return "";
}

}  // namespace

// The file may be another than the one that PrintMCG made: cut short by a full disk, or an old one that could
// not be overwritten. Then the generators are those of another model.
void SymmetryDetection::FindMCG_FindAut() {
  BeginSearch();
  std::string file_name = kGraphFile;
  saucy_struct* const search = SaucyObj->saucy_begin2(file_name.data());
  if (search != nullptr) {
    std::ifstream file(file_name);
    const std::string difference =
        find_difference(file, detail::number_graph(GraphNodes, GraphEdges, *nowhere_), GraphNodes);
    if (!difference.empty()) {
      input_fault_ = file_name + ": " + difference;
      Refuse(input_fault_);
    }
  }
  FinishSearch(search);
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

// Generators of another number of points cannot be carried on. Any others are taken as they are found: if
// they are those of another graph, VerifySymmetries refuses them.
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
  if (generators.empty() || generators.front().GetN() == node_count) {
    OrigPermutations.insert(OrigPermutations.end(), generators.begin(), generators.end());
    SGSOrbitLengths = SaucyObj->orbit_lengths;
    HasWholeGroup = SaucyObj->is_complete && input_fault_.empty();
  }
  diagnostics() << "FindMCG_FindAut() Print OrigPermutations: Num:" << std::to_string(OrigPermutations.size())
                << std::endl;
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
  if (!has_tables_) schreier_sims.OmitShortcuts();
  SGS = schreier_sims.Go(OrigPermutations, SGSBase);
  SGSOrbitLengths = schreier_sims.OrbitLengths();
  if (SGS.empty()) SGS.emplace_back(node_count);
  diagnostics() << "SGS Size: " << std::to_string(SGS.size()) << std::endl;
}

}  // namespace symfold

// Generators of the automorphism group of the graph in "model_comp_graph".

#include <iostream>
#include <string>

#include "detector/refusal.h"
#include "detector/symmetry_detection.h"

namespace symfold {

// The engine acts on the vertices of the file. Where that is not this detector's graph (it could not be
// written and an older one stands in its place), its generators say nothing about the model and are not
// taken.
void SymmetryDetection::FindMCG_FindAut() {
  const int node_count = static_cast<int>(GraphNodes.size());
  SaucyObj = new saucy_obj();
  std::string file_name = "model_comp_graph";
  saucy_struct* search = SaucyObj->saucy_begin2(file_name.data());
  SaucyObj->saucy_init(search);
  SaucyObj->saucy_search(search);
  OrigPermutations.emplace_back(node_count);
  SGSOrbitLengths.clear();
  const auto& generators = SaucyObj->generators;
  if (!generators.empty() && generators.front().GetN() != node_count) {
    report_refusal("model_comp_graph: expected a graph of " + std::to_string(node_count) + " nodes, got " +
                   std::to_string(generators.front().GetN()));
  } else {
    OrigPermutations.insert(OrigPermutations.end(), generators.begin(), generators.end());
    SGSOrbitLengths = SaucyObj->orbit_lengths;
    HasWholeGroup = SaucyObj->is_complete;
  }
  std::cout << "FindMCG_FindAut() Print OrigPermutations: Num:" << OrigPermutations.size() << std::endl;
  for (const Permutation& permutation : OrigPermutations) {
    std::cout << permutation << std::endl;
    if (permutation.IsIdentity()) std::cout << "\t\tIDENTITY" << std::endl;
  }
  SaucyObj->saucy_end(search);
  delete SaucyObj;
  SaucyObj = nullptr;
}

}  // namespace symfold

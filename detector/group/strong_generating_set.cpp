// Base and strong generating set of the automorphism group.

#include <iostream>

#include "components/schreier_sims.h"
#include "detector/symmetry_detection.h"

namespace symfold {

// The automorphism search has established the group's order: with it the chain is proved complete at once.
void SymmetryDetection::FindMCG_FindSS() {
  const int node_count = static_cast<int>(GraphNodes.size());
  SchreierSims chain(node_count, static_cast<int>(OrigPermutations.size()));
  if (!SGSOrbitLengths.empty()) chain.SetKnownOrder(SGSOrbitLengths);
  SGS = chain.Go(OrigPermutations, SGSBase);
  SGSOrbitLengths = chain.OrbitLengths();
  if (SGS.empty()) SGS.emplace_back(node_count);
  std::cout << "SGS Size: " << SGS.size() << std::endl;
}

}  // namespace symfold

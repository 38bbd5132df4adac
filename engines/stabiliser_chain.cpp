#include "engines/stabiliser_chain.h"

#include <algorithm>
#include <utility>

#include "engines/point_vector.h"
#include "engines/shallow_trees.h"
#include "engines/strong_generators.h"
#include "engines/union_find.h"

namespace symfold {

// From the largest smallest moved point down, each base point's generators join those of the stabilisers
// below it. The generators are chained by that point, the first ones first.
StabiliserChain read_chain(int n, std::vector<SparsePermutation> generators) {
  StabiliserChain chain;
  std::erase_if(generators, [](const SparsePermutation& moves) { return moves.empty(); });
  chain.generators = std::move(generators);
  PointVector<int> first(n, -1);
  PointVector<int> next(static_cast<int>(chain.generators.size()));
  for (int g = next.size() - 1; g >= 0; --g) {
    const int smallest = chain.generators[static_cast<std::size_t>(g)].front().point;
    next[g] = std::exchange(first[smallest], g);
  }
  UnionFind orbits(n);
  for (int p = n - 1; p >= 0; --p) {
    if (first[p] < 0) continue;
    for (int g = first[p]; g >= 0; g = next[g]) {
      for (const auto& [point, image] : chain.generators[static_cast<std::size_t>(g)])
        orbits.unite(point, image);
    }
    chain.base.push_back(p);
    chain.orbit_lengths.push_back(orbits.size_of_class(p));
  }
  std::reverse(chain.base.begin(), chain.base.end());
  std::reverse(chain.orbit_lengths.begin(), chain.orbit_lengths.end());
  return chain;
}

StabiliserChain build_stabiliser_chain(int n, std::vector<SparsePermutation> generators,
                                       const std::vector<int>& known_lengths) {
  StabiliserChain chain = read_chain(n, std::move(generators));
  if (chain.orbit_lengths != known_lengths) {
    chain = read_chain(n, strong_generators(n, chain.generators, known_lengths));
  }
  add_shortcuts(n, chain);
  return chain;
}

}  // namespace symfold

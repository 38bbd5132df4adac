#include "engines/stabiliser_chain.h"

#include <algorithm>
#include <utility>

#include "engines/shallow_trees.h"
#include "engines/strong_generators.h"
#include "engines/union_find.h"

namespace symfold {

// From the largest smallest moved point down, each base point's generators join those of the stabilisers
// below it.
StabiliserChain read_chain(int n, std::vector<SparsePermutation> generators) {
  StabiliserChain chain;
  std::erase_if(generators, [](const SparsePermutation& moves) { return moves.empty(); });
  chain.generators = std::move(generators);
  std::vector<const SparsePermutation*> order;
  for (const SparsePermutation& moves : chain.generators) order.push_back(&moves);
  std::stable_sort(order.begin(), order.end(), [](const SparsePermutation* a, const SparsePermutation* b) {
    return a->front().point > b->front().point;
  });
  UnionFind orbits(n);
  for (auto generator = order.begin(); generator != order.end();) {
    const int base_point = (*generator)->front().point;
    for (; generator != order.end() && (*generator)->front().point == base_point; ++generator) {
      for (const auto& [point, image] : **generator) orbits.unite(point, image);
    }
    chain.base.push_back(base_point);
    chain.orbit_lengths.push_back(orbits.size_of_class(base_point));
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

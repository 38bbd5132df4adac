#include "engines/stabiliser_chain.h"

#include <algorithm>
#include <utility>

#include "engines/point_vector.h"
#include "engines/shallow_trees.h"
#include "engines/strong_generators.h"
#include "engines/union_find.h"

namespace symfold {
namespace {

// From the largest smallest moved point down, each base point's generators join those of the stabilisers
// below it. The generators are chained by that point, the first ones first.
template <class Generators>
void read_base_of(int n, const Generators& generators, std::vector<int>& base,
                  std::vector<int>& orbit_lengths) {
  PointVector<int> first(n, -1);
  PointVector<int> next(static_cast<int>(generators.size()));
  for (int g = next.size() - 1; g >= 0; --g) {
    const int smallest = generators[static_cast<std::size_t>(g)].front().point;
    next[g] = std::exchange(first[smallest], g);
  }
  UnionFind orbits(n);
  for (int p = n - 1; p >= 0; --p) {
    if (first[p] < 0) continue;
    for (int g = first[p]; g >= 0; g = next[g]) {
      for (const auto& [point, image] : generators[static_cast<std::size_t>(g)]) orbits.unite(point, image);
    }
    base.push_back(p);
    orbit_lengths.push_back(orbits.size_of_class(p));
  }
  std::reverse(base.begin(), base.end());
  std::reverse(orbit_lengths.begin(), orbit_lengths.end());
}

}  // namespace

void read_base(int n, const PermutationList& generators, std::vector<int>& base,
               std::vector<int>& orbit_lengths) {
  read_base_of(n, generators, base, orbit_lengths);
}

StabiliserChain read_chain(int n, std::vector<SparsePermutation> generators) {
  StabiliserChain chain;
  std::erase_if(generators, [](const SparsePermutation& moves) { return moves.empty(); });
  chain.generators = std::move(generators);
  read_base_of(n, chain.generators, chain.base, chain.orbit_lengths);
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

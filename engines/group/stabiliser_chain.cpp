#include "engines/group/stabiliser_chain.h"

#include <algorithm>
#include <utility>

#include "engines/base/base_points.h"

namespace symfold::detail {

StabiliserChain read_stabiliser_chain(int n, std::vector<SparsePermutation> generators) {
  StabiliserChain chain;
  std::erase_if(generators, [](const SparsePermutation& moves) { return moves.empty(); });
  chain.generators = std::move(generators);
  read_base(n, chain.generators, chain.base, chain.orbit_lengths);
  return chain;
}

StabiliserChain complete_stabiliser_chain(int n, std::vector<SparsePermutation> generators,
                                          const std::vector<int>& known_lengths) {
  StabiliserChain chain = read_stabiliser_chain(n, std::move(generators));
  if (chain.orbit_lengths != known_lengths) {
    chain = read_stabiliser_chain(n, strong_generators(n, chain.generators, known_lengths));
  }
  return chain;
}

StabiliserChain build_stabiliser_chain(int n, std::vector<SparsePermutation> generators,
                                       const std::vector<int>& known_lengths) {
  StabiliserChain chain = complete_stabiliser_chain(n, std::move(generators), known_lengths);
  add_shortcuts(n, chain);
  return chain;
}

}  // namespace symfold::detail

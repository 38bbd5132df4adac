#include "components/schreier_sims.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "engines/group/stabiliser_chain.h"

namespace symfold {
namespace {

// The moves of a permutation of n points; none for the identity and for what is no such permutation.
detail::SparsePermutation sparse(const Permutation& permutation, int n) {
  detail::SparsePermutation moves;
  if (permutation.GetN() != n) return moves;
  std::vector<char> is_image(static_cast<std::size_t>(n), 0);
  for (int i = 0; i < n; ++i) {
    const int image = permutation[i];
    if (image < 0 || image >= n || std::exchange(is_image[static_cast<std::size_t>(image)], 1) != 0)
      return {};
    if (image != i) moves.push_back({i, image});
  }
  return moves;
}

}  // namespace

SchreierSims::SchreierSims(int n, int) : n_(std::max(n, 0)) {}

void SchreierSims::SetKnownOrder(std::vector<int> orbit_lengths) {
  known_lengths_ = std::move(orbit_lengths);
}

std::vector<Permutation> SchreierSims::Go(std::vector<Permutation> gens, std::vector<int>& base) {
  std::vector<detail::SparsePermutation> generators;
  generators.reserve(gens.size());
  for (const Permutation& permutation : gens) generators.push_back(sparse(permutation, n_));
  gens.clear();
  detail::StabiliserChain chain = detail::build_stabiliser_chain(n_, std::move(generators), known_lengths_);
  base = std::move(chain.base);
  orbit_lengths_ = std::move(chain.orbit_lengths);
  std::vector<Permutation> strong;
  for (const detail::SparsePermutation& moves : chain.generators) {
    Permutation& permutation = strong.emplace_back(n_);
    for (const auto& [point, image] : moves) permutation.GetP()[point] = image;
  }
  return strong;
}

}  // namespace symfold

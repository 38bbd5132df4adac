#include "components/schreier_sims.h"

#include <algorithm>
#include <utility>

#include "engines/group/stabiliser_chain.h"

namespace symfold {
namespace {

// Returns the moves of a permutation of n points; none for the identity and for any other value.
SparsePermutation sparse(const Permutation& permutation, int n) {
  SparsePermutation moves;
  if (permutation.GetN() != n || !permutation.IsPermutation()) return moves;
  moves.reserve(permutation.CountMoves());
  permutation.VisitMoves([&moves](int point, int image) { moves.push_back({point, image}); });
  return moves;
}

}  // namespace

SchreierSims::SchreierSims(int n, int) : n_(std::max(n, 0)) {}

void SchreierSims::SetKnownOrder(std::vector<int> orbit_lengths) {
  known_lengths_ = std::move(orbit_lengths);
}

std::vector<Permutation> SchreierSims::Go(std::vector<Permutation> gens, std::vector<int>& base) {
  std::vector<SparsePermutation> generators;
  generators.reserve(gens.size());
  for (const Permutation& permutation : gens) generators.push_back(sparse(permutation, n_));
  gens.clear();
  const auto build = has_shortcuts_ ? detail::build_stabiliser_chain : detail::complete_stabiliser_chain;
  detail::StabiliserChain chain = build(n_, std::move(generators), known_lengths_);
  base = std::move(chain.base);
  orbit_lengths_ = std::move(chain.orbit_lengths);
  std::vector<Permutation> strong;
  strong.reserve(chain.generators.size());
  for (const SparsePermutation& moves : chain.generators) strong.emplace_back(n_, moves);
  return strong;
}

}  // namespace symfold

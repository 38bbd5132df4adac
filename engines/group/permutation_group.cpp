#include "engines/group/permutation_group.h"

#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "engines/group/generated_group.h"
#include "engines/group/stabiliser_forest.h"

namespace symfold {

struct PermutationGroup::Chain {
  Chain(int degree, PermutationList list) : generators(std::move(list)), forest(degree, generators) {}

  // Room for one permutation, for one thread at a time.
  detail::WorkPermutation& work(int degree) {
    if (!room) room.emplace(degree);
    return *room;
  }

  const PermutationList generators;
  const detail::StabiliserForest forest;
  std::mutex mutex;
  std::optional<detail::WorkPermutation> room;
};

PermutationGroup::PermutationGroup(int degree, PermutationList generators, Extent extent)
    : degree_(degree), extent_(extent), chain_(std::make_shared<Chain>(degree, std::move(generators))) {}

PermutationGroup::PermutationGroup(int degree, Extent extent)
    : PermutationGroup(degree, PermutationList(), extent) {}

PermutationGroup PermutationGroup::generated_by(int degree, const PermutationList& generators,
                                                Extent extent) {
  detail::PermutationCheck check(degree);
  PermutationList list;
  for (std::size_t g = 0; g < generators.size(); ++g) {
    if (!check.is_permutation(generators[g])) {
      throw std::invalid_argument("expected moves of a permutation of " + std::to_string(degree) +
                                  " points in ascending order, got others as generator " + std::to_string(g));
    }
    if (!generators[g].empty()) list.push_back(generators[g]);
  }
  detail::StrongGenerators strong = detail::generate_strongly(degree, list);
  return {degree, std::move(strong.list), strong.are_proved ? extent : Extent::part};
}

PermutationGroup PermutationGroup::from_strong_generators(int degree, PermutationList generators,
                                                          Extent extent) {
  return {degree, std::move(generators), extent};
}

const PermutationList& PermutationGroup::generators() const { return chain_->generators; }
const std::vector<int>& PermutationGroup::base() const { return chain_->forest.base(); }
const std::vector<int>& PermutationGroup::orbit_lengths() const { return chain_->forest.orbit_lengths(); }

bool PermutationGroup::contains(const SparsePermutation& moves) const {
  const std::lock_guard lock(chain_->mutex);
  detail::WorkPermutation& work = chain_->work(degree_);
  work.then(moves);
  return chain_->forest.contains(work);
}

bool PermutationGroup::reaches(int base_point, int point) const {
  return chain_->forest.reaches(base_point, point);
}

SparsePermutation PermutationGroup::smallest_carrier(int base_point, int point) const {
  if (!reaches(base_point, point)) return {};
  const std::lock_guard lock(chain_->mutex);
  return chain_->forest.smallest_carrier(base_point, point, chain_->work(degree_));
}

PermutationGroup PermutationGroup::with_canonical_generators() const {
  return {degree_, chain_->forest.canonical_generators(), extent_};
}

}  // namespace symfold

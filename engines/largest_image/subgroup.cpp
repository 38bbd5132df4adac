#include "engines/largest_image/subgroup.h"

#include <algorithm>
#include <utility>

#include "engines/base/images.h"

namespace symfold::detail {
namespace {

// Permutations that a sample holds beside those that join orbits, or one more.
constexpr std::size_t kExtraInSample = 8;

}  // namespace

std::vector<const Images*> sample_of(const std::vector<Images>& permutations) {
  std::vector<const Images*> chosen;
  if (permutations.empty()) return chosen;
  UnionFind orbits(static_cast<int>(permutations[0].size()));
  const std::size_t stride = std::max<std::size_t>(permutations.size() / kExtraInSample, 1);
  for (std::size_t i = 0; i < permutations.size(); ++i) {
    const bool joins_orbits = unite_with_images(permutations[i], orbits);
    if (joins_orbits || i % stride == 0) chosen.push_back(&permutations[i]);
  }
  return chosen;
}

bool unite_with_images(const Images& permutation, UnionFind& orbits) {
  bool is_new = false;
  for (std::size_t x = 0; x < permutation.size(); ++x) {
    is_new = orbits.unite(static_cast<int>(x), static_cast<int>(permutation[x])) || is_new;
  }
  return is_new;
}

void build_tree(std::uint32_t root, const std::vector<const Images*>& permutations, OrbitTree& tree) {
  tree.set_root(static_cast<int>(root));
  tree.grow([&](int point, const auto& step) {
    for (std::size_t g = 0; g < permutations.size(); ++g) {
      step(static_cast<int>(g), static_cast<int>((*permutations[g])[static_cast<std::size_t>(point)]));
    }
  });
}

Subgroup::Subgroup(const PermutationGroup& group, const std::vector<bool>& has_value) : group_(group) {
  for (std::uint32_t i = 0; i < size(); ++i) {
    if (has_value[i]) positions_with_values_.push_back(i);
  }
  for (const SparsePermutation& moves : group.generators()) {
    Images& images = generators_.emplace_back(identity_images<Images>(size()));
    for (const auto& [point, image] : moves) {
      images[static_cast<std::size_t>(point)] = static_cast<std::uint32_t>(image);
    }
  }
}

bool Subgroup::contains(const Images& images) const {
  SparsePermutation moves;
  for (std::size_t c = 0; c < images.size(); ++c) {
    if (images[c] != c) moves.push_back({static_cast<int>(c), static_cast<int>(images[c])});
  }
  return group_.contains(moves);
}

std::vector<std::vector<std::uint32_t>> Subgroup::orbits() const {
  UnionFind classes(static_cast<int>(size()));
  for (const Images& generator : generators_) unite_with_images(generator, classes);
  std::vector<std::vector<std::uint32_t>> orbits = classes.lists<std::uint32_t>();
  std::erase_if(orbits, [](const auto& orbit) { return orbit.size() == 1; });
  std::stable_sort(orbits.begin(), orbits.end(),
                   [](const auto& a, const auto& b) { return a.size() < b.size(); });
  return orbits;
}

}  // namespace symfold::detail

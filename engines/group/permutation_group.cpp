#include "engines/group/permutation_group.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include "engines/base/base_points.h"
#include "engines/group/orbit_tree.h"
#include "engines/group/stabiliser_chain.h"

namespace symfold {
namespace detail {

// Carries elements to the identity along the stabiliser chain, base point after base point. The trees are
// made as they are needed.
class Membership {
 public:
  Membership(int degree, const PermutationList& generators) : steps_(degree) {
    for (std::size_t g = 0; g < generators.size(); ++g) {
      const auto moves = generators[g];
      smallest_.push_back(moves.front().point);
      inverses_.emplace_back();
      for (const auto& [point, image] : moves) {
        steps_[point].push_back({static_cast<int>(g), image});
        inverses_.back().push_back({image, point});
      }
      std::ranges::sort(inverses_.back(), {}, &PointMove::point);
    }
  }

  bool contains(const SparsePermutation& moves) {
    const std::lock_guard lock(mutex_);
    std::map<int, int> images;
    for (const auto& [point, image] : moves) images[point] = image;
    while (!images.empty()) {
      const auto [point, image] = *images.begin();
      const OrbitTree& tree = tree_of(point);
      if (!tree.contains(image)) return false;
      std::vector<int> path;
      tree.walk_to_root(image, [&path](int g) { path.push_back(g); });
      for (const int g : path) apply(inverses_[static_cast<std::size_t>(g)], images);
    }
    return true;
  }

 private:
  struct Step {
    int generator;
    int image;
  };

  // The tree of a point under the generators that fix all points below it.
  const OrbitTree& tree_of(int point) {
    const auto [found, is_new] = trees_.try_emplace(point, steps_.size());
    OrbitTree& tree = found->second;
    if (!is_new) return tree;
    tree.set_root(point);
    tree.grow([&](int x, const auto& step) {
      for (const auto& [generator, image] : steps_[x]) {
        if (smallest_[static_cast<std::size_t>(generator)] >= point) step(generator, image);
      }
    });
    return tree;
  }

  // Makes the element go on by another one, which moves few points.
  static void apply(const SparsePermutation& after, std::map<int, int>& images) {
    std::map<int, int> preimages;
    for (const auto& [point, image] : images) preimages[image] = point;
    for (const auto& [from, to] : after) {
      const auto before = preimages.find(from);
      const int point = before == preimages.end() ? from : before->second;
      if (point == to) {
        images.erase(point);
      } else {
        images[point] = to;
      }
    }
  }

  PointVector<std::vector<Step>> steps_;
  std::vector<int> smallest_;
  std::vector<SparsePermutation> inverses_;
  std::map<int, OrbitTree> trees_;
  std::mutex mutex_;
};

}  // namespace detail

PermutationGroup::PermutationGroup(int degree) : degree_(degree) {}

PermutationGroup PermutationGroup::generated_by(int degree, const PermutationList& generators) {
  std::vector<SparsePermutation> list;
  for (SparsePermutation moves : generators) {
    if (!moves.empty()) list.push_back(std::move(moves));
  }
  PermutationList strong;
  for (const SparsePermutation& moves : detail::strong_generators(degree, list, {})) strong.push_back(moves);
  return from_strong_generators(degree, std::move(strong));
}

PermutationGroup PermutationGroup::from_strong_generators(int degree, PermutationList generators) {
  PermutationGroup group(degree);
  group.generators_ = std::move(generators);
  detail::read_base(degree, group.generators_, group.base_, group.orbit_lengths_);
  group.membership_ = std::make_shared<detail::Membership>(degree, group.generators_);
  return group;
}

bool PermutationGroup::contains(const SparsePermutation& moves) const {
  return moves.empty() || (membership_ && membership_->contains(moves));
}

}  // namespace symfold

#include "engines/group/stabiliser_first_tree.h"

#include <span>

namespace symfold::detail {

StabiliserFirstTree::StabiliserFirstTree(int point_count, const PermutationList& generators)
    : smallest_moved_(static_cast<int>(generators.size()), point_count),
      first_step_(point_count + 1, 0),
      tree_(point_count) {
  for (int g = 0; g < smallest_moved_.size(); ++g) {
    const std::span<const PointMove> moves = generators[static_cast<std::size_t>(g)];
    if (!moves.empty()) smallest_moved_[g] = moves.front().point;
    for (const PointMove move : moves) ++first_step_[move.point];
  }
  // Running sums make each entry the end of its point's stretch; filling backwards leaves it at the
  // beginning.
  std::size_t total = 0;
  for (std::size_t& entry : first_step_) entry = total += entry;
  steps_.resize(total);
  for (int g = smallest_moved_.size() - 1; g >= 0; --g) {
    for (const auto& [point, image] : generators[static_cast<std::size_t>(g)]) {
      steps_[--first_step_[point]] = {g, image};
    }
  }
}

void StabiliserFirstTree::build(int root) {
  tree_.set_root(root);
  grow(root);
  grow(0);
}

void StabiliserFirstTree::grow(int smallest_allowed) {
  tree_.grow([&](int point, const auto& step) {
    for (std::size_t i = first_step_[point]; i < first_step_[point + 1]; ++i) {
      if (smallest_moved_[steps_[i].generator] >= smallest_allowed)
        step(steps_[i].generator, steps_[i].image);
    }
  });
}

}  // namespace symfold::detail

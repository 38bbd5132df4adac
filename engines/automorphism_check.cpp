#include "engines/automorphism_check.h"

#include <algorithm>

namespace symfold {

AutomorphismCheck::AutomorphismCheck(const ColouredGraph& graph)
    : graph_(graph), roles_(graph.vertex_count()), count_(graph.vertex_count(), 0) {
  for (int v = 0; v < roles_.size(); ++v) roles_[v] = {v, false};
}

// Points do not occur twice, so the moves are a permutation where every moved point is an image. Of two
// vertices that are exchanged one tells for both: what leads from the other one to a third vertex is seen
// there or, should that stay, among the edges of the first. (A weight may differ from end to end.)
bool AutomorphismCheck::is_automorphism(const SparsePermutation& moves) {
  for (const auto& [point, image] : moves) {
    roles_[point].image = image;
    roles_[image].is_image = true;
  }
  const auto is_seen_before = [this](PointMove move) {
    return move.image < move.point && roles_[move.image].image == move.point && !graph_.has_weights();
  };
  const bool is_kept = std::ranges::all_of(moves, [&](PointMove move) {
    if (is_seen_before(move)) return true;
    return roles_[move.point].is_image && move.point != move.image && keeps_edges(move);
  });
  for (const auto& [point, image] : moves) {
    roles_[point].image = point;
    roles_[image].is_image = false;
  }
  return is_kept;
}

// The images of the point's neighbours are to be the neighbours of its image, each with the same weight in
// all. As there are equally many, none is left over.
bool AutomorphismCheck::keeps_edges(PointMove move) {
  const auto neighbours = graph_.neighbours(move.point);
  const auto expected = graph_.neighbours(move.image);
  if (graph_.kind(move.point) != graph_.kind(move.image) || neighbours.size() != expected.size())
    return false;
  if (neighbours.size() == 1 && !graph_.has_weights()) return roles_[neighbours[0]].image == expected[0];
  if (neighbours.size() == 2 && !graph_.has_weights()) {
    const auto images = std::minmax(roles_[neighbours[0]].image, roles_[neighbours[1]].image);
    return images == std::minmax(expected[0], expected[1]);
  }
  const auto weights = graph_.weights(move.point);
  const auto expected_weights = graph_.weights(move.image);
  const auto weight = [](std::span<const std::uint64_t> list, std::size_t i) {
    return list.empty() ? 1 : list[i];
  };
  for (std::size_t i = 0; i < expected.size(); ++i) count_[expected[i]] += weight(expected_weights, i);
  for (std::size_t i = 0; i < expected.size(); ++i) count_[roles_[neighbours[i]].image] -= weight(weights, i);
  const bool is_kept = std::ranges::all_of(expected, [this](int v) { return count_[v] == 0; });
  for (const int v : expected) count_[v] = 0;
  for (const int v : neighbours) count_[roles_[v].image] = 0;
  return is_kept;
}

}  // namespace symfold

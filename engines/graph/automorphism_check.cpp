#include "engines/graph/automorphism_check.h"

#include <algorithm>

#include "engines/base/images.h"

namespace symfold::detail {

AutomorphismCheck::AutomorphismCheck(const ColouredGraph& graph)
    : graph_(graph), image_(identity_images(graph.vertex_count())) {}

// An exchange is its own inverse, so it is enough to check one of two exchanged vertices.
bool AutomorphismCheck::is_automorphism(const SparsePermutation& moves) {
  for (const auto& [point, image] : moves) image_[point] = image;
  const bool is_exchange =
      std::ranges::all_of(moves, [this](PointMove move) { return image_[move.image] == move.point; });
  const bool is_kept =
      (is_exchange || is_permutation(moves)) && std::ranges::all_of(moves, [&](PointMove move) {
        if (move.point == move.image) return false;
        return (is_exchange && move.image < move.point) || keeps_edges(move);
      });
  for (const PointMove move : moves) image_[move.point] = move.point;
  return is_kept;
}

// No point occurs twice, so it is enough that every moved point is an image.
bool AutomorphismCheck::is_permutation(const SparsePermutation& moves) {
  if (is_image_.empty()) is_image_.assign(image_.size(), 0);
  for (const PointMove move : moves) is_image_[move.image] = 1;
  const bool is_onto =
      std::ranges::all_of(moves, [this](PointMove move) { return is_image_[move.point] != 0; });
  for (const PointMove move : moves) is_image_[move.image] = 0;
  return is_onto;
}

// The images of the point's neighbours must be the neighbours of its image, with the same sum of weights for
// each. The numbers of neighbours are equal, so no image is left over.
bool AutomorphismCheck::keeps_edges(PointMove move) {
  const auto neighbours = graph_.neighbours(move.point);
  const auto expected = graph_.neighbours(move.image);
  if (graph_.kind(move.point) != graph_.kind(move.image) || neighbours.size() != expected.size())
    return false;
  if (neighbours.size() == 1 && !graph_.has_weights()) return image_[neighbours[0]] == expected[0];
  if (neighbours.size() == 2 && !graph_.has_weights()) {
    const auto images = std::minmax(image_[neighbours[0]], image_[neighbours[1]]);
    return images == std::minmax(expected[0], expected[1]);
  }
  if (count_.empty()) count_.assign(image_.size(), 0);
  const auto weights = graph_.weights(move.point);
  const auto expected_weights = graph_.weights(move.image);
  const auto weight = [](std::span<const std::uint64_t> list, std::size_t i) {
    return list.empty() ? 1 : list[i];
  };
  for (std::size_t i = 0; i < expected.size(); ++i) count_[expected[i]] += weight(expected_weights, i);
  for (std::size_t i = 0; i < expected.size(); ++i) count_[image_[neighbours[i]]] -= weight(weights, i);
  const bool is_kept = std::ranges::all_of(expected, [this](int v) { return count_[v] == 0; });
  for (const int v : expected) count_[v] = 0;
  for (const int v : neighbours) count_[image_[v]] = 0;
  return is_kept;
}

}  // namespace symfold::detail

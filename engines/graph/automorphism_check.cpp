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

// The images of the point's neighbours must be the neighbours of its image, with as many edges or the same
// weight.
bool AutomorphismCheck::keeps_edges(PointMove move) {
  const auto neighbours = graph_.neighbours(move.point);
  const auto expected = graph_.neighbours(move.image);
  if (graph_.kind(move.point) != graph_.kind(move.image) || neighbours.size() != expected.size())
    return false;
  if (graph_.has_weights()) return keeps_weights(move);
  if (neighbours.size() == 1) return image_[neighbours[0]] == expected[0];
  if (neighbours.size() == 2) {
    const auto images = std::minmax(image_[neighbours[0]], image_[neighbours[1]]);
    return images == std::minmax(expected[0], expected[1]);
  }
  if (mark_.empty()) mark_.assign(image_.size(), 0);
  // The numbers of neighbours are equal, so no image is left over.
  for (const int v : expected) ++mark_[v];
  for (const int v : neighbours) --mark_[image_[v]];
  const bool is_kept = std::ranges::all_of(expected, [this](int v) { return mark_[v] == 0; });
  for (const int v : expected) mark_[v] = 0;
  for (const int v : neighbours) mark_[image_[v]] = 0;
  return is_kept;
}

// A neighbour appears once, so equally many different images leave no neighbour over.
bool AutomorphismCheck::keeps_weights(PointMove move) {
  if (mark_.empty()) mark_.assign(image_.size(), 0);
  const auto neighbours = graph_.neighbours(move.point);
  const auto expected = graph_.neighbours(move.image);
  const auto weights = graph_.weights(move.point);
  const auto expected_weights = graph_.weights(move.image);
  for (std::size_t i = 0; i < expected.size(); ++i) mark_[expected[i]] = static_cast<int>(i) + 1;
  bool is_kept = true;
  for (std::size_t i = 0; i < neighbours.size() && is_kept; ++i) {
    const int place = mark_[image_[neighbours[i]]];
    is_kept = place > 0 && expected_weights[static_cast<std::size_t>(place) - 1] == weights[i];
  }
  for (const int v : expected) mark_[v] = 0;
  return is_kept;
}

}  // namespace symfold::detail

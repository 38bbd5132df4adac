#include "engines/automorphism_check.h"

#include <algorithm>

namespace symfold {

AutomorphismCheck::AutomorphismCheck(const ColouredGraph& graph)
    : graph_(graph), image_(identity_images(graph.vertex_count())), count_(graph.vertex_count(), 0) {}

bool AutomorphismCheck::is_automorphism(const SparsePermutation& moves) {
  if (!is_permutation(moves)) return false;
  for (const auto& [point, image] : moves) image_[point] = image;
  const bool is_kept =
      std::all_of(moves.begin(), moves.end(), [this](PointMove move) { return keeps_edges(move); });
  for (const auto& [point, image] : moves) image_[point] = point;
  return is_kept;
}

// Every moved point is an image exactly once.
bool AutomorphismCheck::is_permutation(const SparsePermutation& moves) {
  for (const auto& [point, image] : moves) count_[point] = 1;
  const bool is_one_to_one = std::all_of(moves.begin(), moves.end(), [this](PointMove move) {
    return move.point != move.image && count_[move.image]-- == 1;
  });
  for (const auto& [point, image] : moves) count_[point] = count_[image] = 0;
  return is_one_to_one;
}

// The images of the point's neighbours are to be the neighbours of its image, each as often.
bool AutomorphismCheck::keeps_edges(PointMove move) {
  const auto neighbours = graph_.neighbours(move.point);
  const auto expected = graph_.neighbours(move.image);
  if (graph_.colour(move.point) != graph_.colour(move.image) ||
      graph_.loops(move.point) != graph_.loops(move.image) || neighbours.size() != expected.size()) {
    return false;
  }
  for (const int v : expected) ++count_[v];
  bool is_kept = true;
  for (const int v : neighbours) is_kept = --count_[image_[v]] >= 0 && is_kept;
  for (const int v : expected) count_[v] = 0;
  for (const int v : neighbours) count_[image_[v]] = 0;
  return is_kept;
}

}  // namespace symfold

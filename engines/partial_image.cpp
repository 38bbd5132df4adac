#include "engines/partial_image.h"

#include <algorithm>
#include <cassert>

namespace symfold {

PartialImage::PartialImage(const OrderedPartition& left)
    : left_vertices_(left.vertex_count()),
      left_positions_(left.vertex_count()),
      image_(left.vertex_count(), -1),
      preimage_(left.vertex_count(), -1) {
  assert(left.is_discrete());
  for (int position = 0; position < left.vertex_count(); ++position) {
    left_vertices_[position] = left.vertex_at(position);
    left_positions_[left.vertex_at(position)] = position;
  }
}

bool PartialImage::read(const OrderedPartition& right, int first_split, SparsePermutation& moves) {
  moves.clear();
  const bool is_ready = collect(right, first_split);
  if (is_ready) close_chains(moves);
  for (const int from : sources_) image_[from] = preimage_[image_[from]] = -1;
  sources_.clear();
  return is_ready;
}

// A front that has become a single vertex counts as new; a larger front does not, however much it has lost.
bool PartialImage::collect(const OrderedPartition& right, int first_split) {
  for (int i = first_split; i < right.split_count(); ++i) {
    const auto [start, parent] = right.split_at(i);
    if (right.length(parent) == 1) add_pair(left_vertices_[parent], right.vertex_at(parent));
    const int length = right.length(start);
    if (length == 1) {
      add_pair(left_vertices_[start], right.vertex_at(start));
      continue;
    }
    for (const int v : right.members(start)) {
      if (left_positions_[v] < start || left_positions_[v] >= start + length) return false;
    }
  }
  return true;
}

void PartialImage::add_pair(int from, int to) {
  if (from == to || image_[from] >= 0) return;
  image_[from] = to;
  preimage_[to] = from;
  sources_.push_back(from);
}

void PartialImage::close_chains(SparsePermutation& moves) {
  for (const int from : sources_) {
    moves.push_back({from, image_[from]});
    if (preimage_[from] >= 0) continue;
    int end = from;
    while (image_[end] >= 0) end = image_[end];
    moves.push_back({end, from});
  }
  std::sort(moves.begin(), moves.end(), [](PointMove a, PointMove b) { return a.point < b.point; });
}

}  // namespace symfold

#include "engines/search/partial_image.h"

#include <algorithm>
#include <bit>
#include <tuple>
#include <utility>

#include "engines/base/mix.h"

namespace symfold::detail {
namespace {

// Clues of so few edges per vertex are always followed.
constexpr std::size_t kCheapCluesPerMover = 4;

int cell_at(const OrderedPartition& partition, int position) {
  return partition.cell_of(partition.vertex_at(position));
}

}  // namespace

int end_of_run(const OrderedPartition& left, const OrderedPartition& right, int v) {
  while (right.length(right.cell_of(v)) == 1) v = left.vertex_at(right.position_of(v));
  return v;
}

PartialImage::PartialImage(const ColouredGraph& graph)
    : graph_(graph), image_(graph.vertex_count(), -1), preimage_(graph.vertex_count(), -1) {}

bool PartialImage::read(const OrderedPartition& left, const OrderedPartition& right, int first_split,
                        SparsePermutation& moves) {
  latest_dense_clues_ = 0;
  collect(left, right, first_split);
  close_runs();
  const bool is_ready = follow_clues(left, right);
  close_runs();
  moves.clear();
  for (const int from : sources_) {
    if (is_ready) moves.push_back({from, image_[from]});
    preimage_[image_[from]] = -1;
    image_[from] = -1;
  }
  sources_.clear();
  left_movers_.clear();
  right_movers_.clear();
  std::sort(moves.begin(), moves.end(), [](PointMove a, PointMove b) { return a.point < b.point; });
  return is_ready;
}

// The front of a split counts as new if it has become a single vertex. A larger front does not, however much
// it has lost.
void PartialImage::collect(const OrderedPartition& left, const OrderedPartition& right, int first_split) {
  for (int i = first_split; i < right.split_count(); ++i) {
    const auto [start, parent] = right.split_at(i);
    if (right.length(parent) == 1) add_pair(left.vertex_at(parent), right.vertex_at(parent));
    if (right.length(start) == 1) {
      add_pair(left.vertex_at(start), right.vertex_at(start));
    } else {
      collect_movers(left, right, start);
    }
  }
}

void PartialImage::collect_movers(const OrderedPartition& left, const OrderedPartition& right, int cell) {
  const int end = cell + right.length(cell);
  for (int position = cell; position < end; ++position) {
    const int on_left = left.vertex_at(position);
    const int on_right = right.vertex_at(position);
    if (right.cell_of(on_left) != cell) left_movers_.push_back(on_left);
    const int left_position = left.position_of(on_right);
    if (left_position < cell || left_position >= end) right_movers_.push_back(on_right);
  }
}

// A vertex that stands in the same cell on both sides is guessed to stay.
int PartialImage::known_image(const OrderedPartition& left, const OrderedPartition& right, int v) const {
  if (image_[v] >= 0) return image_[v];
  return right.cell_of(v) == cell_at(right, left.position_of(v)) ? v : -1;
}

// Clues lead to pairs, and pairs to more clues. A few rounds go as far as hubs and links reach; long paths of
// the graph are left to refinement.
bool PartialImage::follow_clues(const OrderedPartition& left, const OrderedPartition& right) {
  constexpr int kMaxRounds = 6;
  for (int round = 0; round < kMaxRounds && !left_movers_.empty(); ++round) {
    const std::size_t known = sources_.size();
    if (!gather_left_clues(left, right)) return false;
    gather_right_clues(right);
    pair_unique_clues();
    if (sources_.size() < known + left_movers_.size() / 8 + 1) return false;
    std::erase_if(left_movers_, [this](int v) { return image_[v] >= 0; });
    std::erase_if(right_movers_, [this](int v) { return preimage_[v] >= 0; });
  }
  return left_movers_.empty();
}

// Returns false if the left has too few clues that are unique there.
bool PartialImage::gather_left_clues(const OrderedPartition& left, const OrderedPartition& right) {
  std::size_t max_clues = 0;
  for (const int v : left_movers_) max_clues += graph_.neighbours(v).size();
  if (max_clues > kCheapCluesPerMover * left_movers_.size()) {
    if (dense_clues_ > max_dense_clues_) return false;
    dense_clues_ += max_clues;
    latest_dense_clues_ += max_clues;
  }
  clues_.assign(std::bit_ceil(2 * max_clues + 1), {-1, -1, kNone, kNone});
  std::size_t unique = 0;
  for (const int v : left_movers_) {
    const int cell = cell_at(right, left.position_of(v));
    for (const int neighbour : graph_.neighbours(v)) {
      const int image = known_image(left, right, neighbour);
      if (image < 0) continue;
      Clue& clue = clue_at(cell, image);
      if (clue.on_left == kNone) {
        clue = {cell, image, v, kNone};
        ++unique;
      } else if (std::exchange(clue.on_left, kSeveral) != kSeveral) {
        --unique;
      }
    }
  }
  return unique > left_movers_.size() / 8;
}

void PartialImage::gather_right_clues(const OrderedPartition& right) {
  for (const int v : right_movers_) {
    for (const int neighbour : graph_.neighbours(v)) {
      Clue& clue = clue_at(right.cell_of(v), neighbour);
      if (clue.on_left != kNone) clue.on_right = clue.on_right == kNone ? v : kSeveral;
    }
  }
}

void PartialImage::pair_unique_clues() {
  unique_clues_.clear();
  for (const Clue& clue : clues_) {
    if (clue.on_left >= 0 && clue.on_right >= 0) unique_clues_.push_back(clue);
  }
  std::ranges::sort(unique_clues_, [](const Clue& a, const Clue& b) {
    return std::tie(a.cell, a.neighbour) < std::tie(b.cell, b.neighbour);
  });
  for (const Clue& clue : unique_clues_) add_pair(clue.on_left, clue.on_right);
}

// Returns the clue of this cell and neighbour, or the empty place for it.
PartialImage::Clue& PartialImage::clue_at(int cell, int neighbour) {
  const std::size_t mask = clues_.size() - 1;
  std::size_t place = mix(cell, neighbour) & mask;
  while (clues_[place].on_left != kNone &&
         (clues_[place].cell != cell || clues_[place].neighbour != neighbour)) {
    place = (place + 1) & mask;
  }
  return clues_[place];
}

// The first pair of a vertex is kept.
void PartialImage::add_pair(int from, int to) {
  if (from == to || image_[from] >= 0 || preimage_[to] >= 0) return;
  image_[from] = to;
  preimage_[to] = from;
  sources_.push_back(from);
}

void PartialImage::close_runs() {
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    const int from = sources_[i];
    if (preimage_[from] >= 0) continue;
    int end = from;
    while (image_[end] >= 0) end = image_[end];
    add_pair(end, from);
  }
}

}  // namespace symfold::detail

#include "engines/group/aligned_blocks.h"

#include <algorithm>
#include <numeric>

#include "engines/base/images.h"
#include "engines/base/union_find.h"

namespace symfold::detail {
namespace {

using Moves = std::span<const PointMove>;

// Returns the image of a point, itself if it is not moved.
int image_of(Moves moves, int point) {
  const auto move = std::ranges::lower_bound(moves, point, {}, &PointMove::point);
  return move != moves.end() && move->point == point ? move->image : point;
}

bool is_involution(Moves moves) {
  return std::ranges::all_of(moves,
                             [&](PointMove move) { return image_of(moves, move.image) == move.point; });
}

class ExchangeSearch {
 public:
  ExchangeSearch(int degree, const PermutationList& generators);

  std::optional<AlignedBlocks> run();

 private:
  Moves exchange(int i) const { return generators_[exchanges_[static_cast<std::size_t>(i)]]; }
  std::vector<int> first_block() const;
  std::vector<int> block_of_two() const;
  bool grow(std::vector<int> first);
  AlignedBlocks in_order() const;

  int degree_;
  const PermutationList& generators_;
  std::vector<std::size_t> exchanges_;          // involutions that may be exchanges of blocks
  std::size_t length_ = 0;                      // of the blocks
  PointVector<std::vector<int>> exchanges_of_;  // by point
  std::vector<std::vector<int>> blocks_;        // aligned with the first
  PointVector<int> block_of_;                   // -1 outside
};

ExchangeSearch::ExchangeSearch(int degree, const PermutationList& generators)
    : degree_(degree), generators_(generators), exchanges_of_(degree), block_of_(degree, -1) {
  for (std::size_t g = 0; g < generators.size(); ++g) {
    if (generators[g].size() < 2 * length_ || !is_involution(generators[g])) continue;
    if (generators[g].size() > 2 * length_) exchanges_.clear();
    length_ = generators[g].size() / 2;
    exchanges_.push_back(g);
  }
  for (std::size_t i = 0; i < exchanges_.size(); ++i) {
    for (const PointMove move : generators[exchanges_[i]])
      exchanges_of_[move.point].push_back(static_cast<int>(i));
  }
}

// Returns the points that the first exchange has in common with another one: if both are exchanges of blocks,
// a block. Empty if there are none.
std::vector<int> ExchangeSearch::first_block() const {
  for (const PointMove move : exchange(0)) {
    for (const int other : exchanges_of_[move.point]) {
      std::vector<int> common;
      for (const auto& [point, image] : exchange(0)) {
        if (image_of(exchange(other), point) != point) common.push_back(point);
      }
      if (common.size() == length_) return common;
    }
  }
  return {};
}

// Returns the one block of the only exchange: the points that the other generators move together lie in one
// block. Empty if that is not so.
std::vector<int> ExchangeSearch::block_of_two() const {
  UnionFind classes(degree_);
  for (std::size_t g = 0; g < generators_.size(); ++g) {
    if (g == exchanges_[0]) continue;
    for (const PointMove move : generators_[g]) classes.unite(generators_[g].front().point, move.point);
  }
  PointVector<char> is_second(degree_, 0);  // by root: whether the class is in the second block
  std::vector<int> block;
  for (const auto& [point, image] : exchange(0)) {
    const int own = classes.find(point);
    const int other = classes.find(image);
    if (own == other) return {};
    if (is_second[own] != 0) continue;
    is_second[other] = 1;
    block.push_back(point);
  }
  return block;
}

// Goes from block to block by the exchanges. An exchange that does not fit is left to those who split the
// generators.
bool ExchangeSearch::grow(std::vector<int> first) {
  for (const int point : first) block_of_[point] = 0;
  blocks_.push_back(std::move(first));
  for (std::size_t b = 0; b < blocks_.size(); ++b) {
    for (const int other : exchanges_of_[blocks_[b][0]]) {
      std::vector<int> images;
      images.reserve(length_);
      for (const int point : blocks_[b]) {
        const int image = image_of(exchange(other), point);
        if (block_of_[image] < 0) images.push_back(image);
      }
      if (images.size() != length_) continue;
      for (const int image : images) block_of_[image] = static_cast<int>(blocks_.size());
      blocks_.push_back(std::move(images));
    }
  }
  return blocks_.size() >= 2 && blocks_.size() * length_ == static_cast<std::size_t>(degree_);
}

AlignedBlocks ExchangeSearch::in_order() const {
  std::vector<std::pair<int, std::size_t>> order;  // smallest point, block
  order.reserve(blocks_.size());
  for (std::size_t b = 0; b < blocks_.size(); ++b) order.emplace_back(std::ranges::min(blocks_[b]), b);
  std::ranges::sort(order);
  const std::vector<int>& first = blocks_[order[0].second];
  std::vector<std::size_t> places(length_);
  std::iota(places.begin(), places.end(), std::size_t{0});
  std::ranges::sort(places, [&first](std::size_t a, std::size_t b) { return first[a] < first[b]; });
  AlignedBlocks result{static_cast<int>(length_), {}};
  result.points.reserve(static_cast<std::size_t>(degree_));
  for (const auto& entry : order) {
    for (const std::size_t place : places) result.points.push_back(blocks_[entry.second][place]);
  }
  return result;
}

std::optional<AlignedBlocks> ExchangeSearch::run() {
  if (exchanges_.empty()) return std::nullopt;
  std::vector<int> first = exchanges_.size() > 1 ? first_block() : block_of_two();
  if (first.size() != length_ || !grow(std::move(first))) return std::nullopt;
  return in_order();
}

}  // namespace

SparsePermutation AlignedBlocks::exchange(int a, int b) const {
  SparsePermutation moves;
  for (int k = 0; k < length; ++k) {
    const auto place = static_cast<std::size_t>(k);
    moves.push_back({block(a)[place], block(b)[place]});
    moves.push_back({block(b)[place], block(a)[place]});
  }
  std::ranges::sort(moves, {}, &PointMove::point);
  return moves;
}

SparsePermutation AlignedBlocks::inside(int b, const SparsePermutation& on_places) const {
  SparsePermutation moves;
  for (const auto& [place, image] : on_places) {
    moves.push_back({block(b)[static_cast<std::size_t>(place)], block(b)[static_cast<std::size_t>(image)]});
  }
  std::ranges::sort(moves, {}, &PointMove::point);
  return moves;
}

BlockAction::BlockAction(const AlignedBlocks& blocks)
    : blocks_(blocks),
      block_of_(static_cast<int>(blocks.points.size())),
      place_of_(block_of_.size()),
      images_(identity_images(block_of_.size())) {
  for (int i = 0; i < block_of_.size(); ++i) {
    const int point = blocks.points[static_cast<std::size_t>(i)];
    block_of_[point] = i / blocks.length;
    place_of_[point] = i % blocks.length;
  }
}

bool BlockAction::split(Moves moves) {
  inner_.clear();
  touched_.clear();
  for (const auto& [point, image] : moves) {
    images_[point] = image;
    touched_.push_back(block_of_[point]);
  }
  std::ranges::sort(touched_);
  touched_.erase(std::unique(touched_.begin(), touched_.end()), touched_.end());
  bool keeps_blocks = true;
  for (const int b : touched_) {
    const std::span<const int> block = blocks_.block(b);
    SparsePermutation on_places;
    for (const int point : block) {
      const int image = images_[point];
      keeps_blocks = keeps_blocks && block_of_[image] == block_of_[images_[block[0]]];
      if (place_of_[image] != place_of_[point]) on_places.push_back({place_of_[point], place_of_[image]});
    }
    if (!on_places.empty()) inner_.push_back(std::move(on_places));
  }
  for (const PointMove move : moves) images_[move.point] = move.point;
  return keeps_blocks;
}

std::optional<AlignedBlocks> find_exchanged_blocks(int degree, const PermutationList& generators) {
  return ExchangeSearch(degree, generators).run();
}

}  // namespace symfold::detail

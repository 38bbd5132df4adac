#include "engines/largest_image/block_search.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace symfold::detail {

BlockSearch::BlockSearch(const AlignedBlocks& blocks, std::unique_ptr<ImageSearch> inner)
    : block_length_(static_cast<std::size_t>(blocks.length)),
      positions_(blocks.points.begin(), blocks.points.end()),
      inner_(std::move(inner)),
      tuples_(positions_.size()),
      order_(static_cast<std::size_t>(blocks.count())) {}

BlockSearch::BlockSearch(const BlockSearch& other)
    : ImageSearch(other),
      block_length_(other.block_length_),
      positions_(other.positions_),
      inner_(other.inner_ ? other.inner_->clone() : nullptr),
      tuples_(other.tuples_),
      order_(other.order_) {}

bool BlockSearch::maximise(Placed* values) {
  for (std::size_t i = 0; i < positions_.size(); ++i) tuples_[i] = values[positions_[i]];
  bool is_exact = true;
  if (inner_) {
    for (std::size_t i = 0; i < tuples_.size(); i += block_length_) {
      if (!inner_->maximise(&tuples_[i])) is_exact = false;
    }
  }
  if (block_length_ > 1 || !order_by_counting()) {
    std::iota(order_.begin(), order_.end(), 0U);
    std::sort(order_.begin(), order_.end(),
              [this](std::uint32_t a, std::uint32_t b) { return sorts_before(a, b); });
  }
  std::size_t to = 0;
  for (const std::uint32_t block : order_) {
    for (std::size_t k = 0; k < block_length_; ++k)
      values[positions_[to++]] = tuples_[block * block_length_ + k];
  }
  return is_exact;
}

// For blocks of one position. Returns false if there are too many different values.
bool BlockSearch::order_by_counting() {
  constexpr std::size_t kMaxValues = 8;
  std::array<std::uint64_t, kMaxValues> values;  // descending
  std::array<std::uint32_t, kMaxValues + 1> ends{};
  std::size_t count = 0;
  for (const Placed& placed : tuples_) {
    std::size_t i = 0;
    while (i < count && values[i] > placed.value) ++i;
    if (i == count || values[i] != placed.value) {
      if (count == kMaxValues) return false;
      std::copy_backward(values.begin() + i, values.begin() + count, values.begin() + count + 1);
      std::copy_backward(ends.begin() + i, ends.begin() + count, ends.begin() + count + 1);
      values[i] = placed.value;
      ends[i] = 0;
      ++count;
    }
    ++ends[i];
  }
  std::exclusive_scan(ends.begin(), ends.end(), ends.begin(), 0U);
  for (std::uint32_t block = 0; block < tuples_.size(); ++block) {
    std::size_t i = 0;
    while (values[i] > tuples_[block].value) ++i;
    order_[ends[i]++] = block;
  }
  return true;
}

// Equal blocks stay in their order.
bool BlockSearch::sorts_before(std::uint32_t a, std::uint32_t b) const {
  const Placed* const first = &tuples_[a * block_length_];
  const Placed* const second = &tuples_[b * block_length_];
  for (std::size_t k = 0; k < block_length_; ++k) {
    if (first[k].value != second[k].value) return first[k].value > second[k].value;
  }
  return a < b;
}

}  // namespace symfold::detail

#include "engines/base/point_cells.h"

#include <bit>
#include <numeric>

#include "engines/base/mix.h"

namespace symfold::detail {

PointCells::PointCells(const std::vector<std::uint32_t>& begins)
    : order_(begins.back()), cell_of_(begins.back()), end_of_(begins.back()), cell_count_(begins.size() - 1) {
  std::iota(order_.begin(), order_.end(), 0U);
  for (std::size_t c = 0; c < cell_count_; ++c) set_cell(begins[c], begins[c + 1]);
  changed_.clear();
}

bool PointCells::split(const std::vector<std::uint64_t>& keys) {
  const std::size_t before = cell_count_;
  for (std::uint32_t begin = 0, end = 0; begin < order_.size(); begin = end) {
    end = end_of_[begin];
    if (end - begin == 1) continue;
    const std::uint64_t first = keys[order_[begin]];
    if (std::all_of(order_.begin() + begin + 1, order_.begin() + end,
                    [&](std::uint32_t point) { return keys[point] == first; })) {
      continue;
    }
    sort(begin, end, keys);
    for (std::uint32_t from = begin, to = begin; from < end; from = to) {
      while (to < end && keys[order_[to]] == keys[order_[from]]) ++to;
      if (from == begin) {
        end_of_[begin] = to;
      } else {
        set_cell(from, to);
      }
      ++cell_count_;
    }
    --cell_count_;
  }
  return cell_count_ != before;
}

// Small cells are sorted by insertion, large ones into as many buckets as points by hashes of their keys, and
// then by insertion, which moves few points because most buckets have few different keys.
void PointCells::sort(std::uint32_t begin, std::uint32_t end, const std::vector<std::uint64_t>& keys) {
  constexpr std::uint32_t kMaxInsertion = 24;
  if (end - begin <= kMaxInsertion) {
    for (std::uint32_t i = begin + 1; i < end; ++i) {
      const std::uint32_t point = order_[i];
      const std::uint64_t key = keys[point];
      std::uint32_t j = i;
      for (; j > begin && keys[order_[j - 1]] > key; --j) order_[j] = order_[j - 1];
      order_[j] = point;
    }
    return;
  }
  const auto bits = static_cast<unsigned>(std::bit_width(end - begin));
  bucket_ends_.assign((std::size_t{1} << bits) + 1, 0);
  hashed_.clear();
  for (std::uint32_t i = begin; i < end; ++i) {
    hashed_.emplace_back(mix(keys[order_[i]]) ^ mix(0), order_[i]);
    ++bucket_ends_[(hashed_.back().first >> (64 - bits)) + 1];
  }
  std::partial_sum(bucket_ends_.begin(), bucket_ends_.end(), bucket_ends_.begin());
  sorted_.resize(hashed_.size());
  for (const auto& hashed : hashed_) {
    const std::size_t bucket = hashed.first >> (64 - bits);
    sorted_[bucket_ends_[bucket]++] = hashed;
  }
  for (std::uint32_t i = 0; i < sorted_.size(); ++i) {
    const auto hashed = sorted_[i];
    std::uint32_t j = i;
    for (; j > 0 && sorted_[j - 1].first > hashed.first; --j) sorted_[j] = sorted_[j - 1];
    sorted_[j] = hashed;
  }
  for (std::uint32_t i = begin; i < end; ++i) order_[i] = sorted_[i - begin].second;
}

}  // namespace symfold::detail

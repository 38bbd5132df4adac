#include "detector/exact_labeller.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>

namespace symfold {
namespace {

// So many bytes of a partition are one value.
constexpr std::size_t kValueBytes = sizeof(std::uint64_t);

// The order of the values is that of the bytes. Two bytes, a variable of a model, are the usual case here as
// below.
std::uint64_t big_endian(const unsigned char* bytes, std::size_t count) {
  if (count == 2) return std::uint64_t{bytes[0]} << 8 | bytes[1];
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < count; ++i) value = value << 8 | bytes[i];
  return value;
}

void copy_partition(const unsigned char* from, unsigned char* to, std::size_t count) {
  if (count == 2) {
    to[0] = from[0];
    to[1] = from[1];
  } else {
    std::memcpy(to, from, count);
  }
}

// Throws std::invalid_argument if the first point_count images are no permutation.
detail::Images images_of(const Permutation& permutation, std::size_t point_count) {
  detail::Images images(point_count);
  std::vector<bool> is_image(point_count);
  for (std::size_t c = 0; c < point_count; ++c) {
    const int image = permutation[static_cast<int>(c)];
    if (image < 0 || static_cast<std::size_t>(image) >= point_count ||
        is_image[static_cast<std::size_t>(image)]) {
      throw std::invalid_argument("expected permutations of " + std::to_string(point_count) +
                                  " partitions, got another table");
    }
    is_image[static_cast<std::size_t>(image)] = true;
    images[c] = static_cast<std::uint32_t>(image);
  }
  return images;
}

// The tables Bases and VPerms, the permutations of each record multiplied in their order.
std::vector<detail::TableLevel> table_levels(const SymmetryDetection& detector, std::size_t point_count) {
  std::vector<detail::TableLevel> levels;
  for (const int base : detector.Bases) {
    const auto found = detector.VPerms.find(base);
    if (found == detector.VPerms.end()) continue;
    detail::TableLevel& level = levels.emplace_back();
    level.base = static_cast<std::size_t>(base);
    for (const ValPerms& record : found->second) {
      detail::Images images(point_count);
      std::iota(images.begin(), images.end(), 0U);
      for (const Permutation& step : record.Perms) {
        images = detail::composed(images_of(step, point_count), images);
      }
      level.records.push_back({static_cast<std::size_t>(record.Value), std::move(images)});
    }
  }
  return levels;
}

}  // namespace

// Positions of the search are partitions in the order of their offsets: table entry i is the partition i, and
// detection's tables list them so.
ExactGroup::ExactGroup(const SymmetryDetection& detector, const detail::SearchBounds& bounds) {
  std::size_t end = 0;
  for (std::size_t i = 0; i < detector.PartitionInfo.size(); ++i) {
    const int size = detector.PartitionInfo[i];
    const int offset = i < detector.CumPartitionInfo.size() ? detector.CumPartitionInfo[i] : -1;
    if (size < 0 || offset < 0 || static_cast<std::size_t>(offset) != end) {
      throw std::invalid_argument("expected partition " + std::to_string(i) + " at byte " +
                                  std::to_string(end) + ", got one of " + std::to_string(size) +
                                  " bytes at " + std::to_string(offset));
    }
    partitions_.push_back({end, static_cast<std::size_t>(size)});
    end += static_cast<std::size_t>(size);
  }
  state_size_ = end;
  std::vector<bool> has_bytes;
  for (const Partition& partition : partitions_) has_bytes.push_back(partition.size > 0);
  const detail::TableGroup group(std::move(has_bytes), table_levels(detector, partitions_.size()));
  for (const detail::Images& images : group.permutations()) {
    for (std::size_t c = 0; c < images.size(); ++c) {
      if (partitions_[c].size != partitions_[images[c]].size) {
        throw std::invalid_argument("expected permutations between partitions of equal size, got one from " +
                                    std::to_string(c) + " to " + std::to_string(images[c]));
      }
    }
  }
  search_ = detail::recognise(group, bounds);
}

ExactLabeller::ExactLabeller(const ExactGroup& group)
    : group_(group),
      search_(group.search_ ? group.search_->clone() : nullptr),
      word_(group.partitions_.size()),
      image_(group.state_size_) {
  for (std::uint32_t i = 0; i < word_.size(); ++i) {
    word_[i].source = i;
    if (group_.partitions_[i].size > kValueBytes) long_partitions_.push_back(i);
  }
}

bool ExactLabeller::find(const void* state, void* label) {
  const auto* const bytes = static_cast<const unsigned char*>(state);
  load(bytes);
  const bool is_exact = search_ == nullptr || search_->maximise(word_.data());
  ++label_count_;
  if (!is_exact) ++inexact_count_;
  std::copy_n(bytes, image_.size(), image_.begin());
  for (std::size_t p = 0; p < word_.size(); ++p) {
    if (word_[p].source == p) continue;
    const ExactGroup::Partition& to = group_.partitions_[p];
    copy_partition(bytes + group_.partitions_[word_[p].source].offset, image_.data() + to.offset, to.size);
  }
  std::copy(image_.begin(), image_.end(), static_cast<unsigned char*>(label));
  return is_exact;
}

void ExactLabeller::find_witness(short* witness) const {
  for (std::size_t p = 0; p < word_.size(); ++p) witness[word_[p].source] = static_cast<short>(p);
}

void ExactLabeller::load(const unsigned char* state) {
  for (std::uint32_t p = 0; p < word_.size(); ++p) {
    const ExactGroup::Partition& partition = group_.partitions_[p];
    word_[p] = {big_endian(state + partition.offset, std::min(partition.size, kValueBytes)), p};
  }
  if (!long_partitions_.empty()) rank_long_partitions(state);
}

// Values for partitions that are too long for one: their ranks among all of them. Only those of equal size
// are ever compared.
void ExactLabeller::rank_long_partitions(const unsigned char* state) {
  const auto order = [&](std::uint32_t a, std::uint32_t b) {
    const ExactGroup::Partition& first = group_.partitions_[a];
    const ExactGroup::Partition& second = group_.partitions_[b];
    if (first.size != second.size) return first.size < second.size ? -1 : 1;
    return std::memcmp(state + first.offset, state + second.offset, first.size);
  };
  std::sort(long_partitions_.begin(), long_partitions_.end(),
            [&](std::uint32_t a, std::uint32_t b) { return order(a, b) < 0; });
  std::uint64_t rank = 0;
  for (std::size_t i = 0; i < long_partitions_.size(); ++i) {
    if (i > 0 && order(long_partitions_[i - 1], long_partitions_[i]) != 0) ++rank;
    word_[long_partitions_[i]].value = rank;
  }
}

}  // namespace symfold

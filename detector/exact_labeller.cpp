#include "detector/exact_labeller.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

#include "engines/base/images.h"
#include "engines/largest_image/image_search.h"
#include "engines/largest_image/recognition.h"

namespace symfold {
namespace {

// So many bytes of a partition are one value.
constexpr std::size_t kValueBytes = sizeof(std::uint64_t);

// Returns a number whose order is that of the bytes. Two bytes, a variable of a model, are the usual case
// here and below.
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

// The moves of the product of a record's permutations, in their order.
SparsePermutation product_of(const ValPerms& record, std::size_t point_count) {
  auto images = detail::identity_images<std::vector<int>>(point_count);
  for (const Permutation& permutation : record.Perms) {
    if (permutation.GetN() != static_cast<int>(point_count) || !permutation.IsPermutation()) {
      throw std::invalid_argument("expected permutations of " + std::to_string(point_count) +
                                  " partitions, got another table");
    }
    for (int& image : images) image = permutation[image];
  }
  SparsePermutation moves;
  for (int c = 0; c < static_cast<int>(point_count); ++c) {
    if (const int image = images[static_cast<std::size_t>(c)]; image != c) moves.push_back({c, image});
  }
  return moves;
}

// Tables may hold anything, so the group is proved, whoever made them.
PermutationGroup group_of(const LabellingTables& tables) {
  const int degree = static_cast<int>(tables.sizes.size());
  PermutationList permutations;
  for (const LabellingTables::Base& base : tables.bases) {
    for (const ValPerms& record : base.records) {
      const SparsePermutation moves = product_of(record, tables.sizes.size());
      if (!moves.empty()) permutations.push_back(moves);
    }
  }
  const auto extent =
      tables.has_whole_group ? PermutationGroup::Extent::whole : PermutationGroup::Extent::part;
  return PermutationGroup::generated_by(degree, permutations, extent);
}

// Partitions follow each other.
std::vector<int> sizes_of(const LabellingTables& tables) {
  std::size_t end = 0;
  for (std::size_t i = 0; i < tables.sizes.size(); ++i) {
    const int size = tables.sizes[i];
    const int offset = i < tables.offsets.size() ? tables.offsets[i] : -1;
    if (size < 0 || offset < 0 || static_cast<std::size_t>(offset) != end) {
      throw std::invalid_argument("expected partition " + std::to_string(i) + " at byte " +
                                  std::to_string(end) + ", got one of " + std::to_string(size) +
                                  " bytes at " + std::to_string(offset));
    }
    end += static_cast<std::size_t>(size);
  }
  return {tables.sizes.begin(), tables.sizes.end()};
}

}  // namespace

ExactGroup::ExactGroup(const LabellingTables& tables) : ExactGroup(tables, detail::SearchBounds{}) {}

ExactGroup::ExactGroup(const LabellingTables& tables, const detail::SearchBounds& bounds)
    : ExactGroup(sizes_of(tables), tables, bounds) {}

ExactGroup::ExactGroup(const std::vector<int>& sizes, const LabellingTables& tables,
                       const detail::SearchBounds& bounds)
    : ExactGroup(group_of(tables), sizes, bounds) {}

ExactGroup::ExactGroup(const PermutationGroup& group, std::span<const int> sizes)
    : ExactGroup(group, sizes, detail::SearchBounds{}) {}

// Positions of the search are partitions in the order of their offsets: table entry i is the partition i, and
// detection's tables list them so.
ExactGroup::ExactGroup(const PermutationGroup& group, std::span<const int> sizes,
                       const detail::SearchBounds& bounds)
    : is_whole_(group.is_whole()) {
  if (static_cast<std::size_t>(group.degree()) != sizes.size()) {
    throw std::invalid_argument("expected a group of " + std::to_string(sizes.size()) +
                                " partitions, got one of " + std::to_string(group.degree()));
  }
  std::vector<bool> has_bytes;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    if (sizes[i] < 0) {
      throw std::invalid_argument("expected partition " + std::to_string(i) + " to have a size, got " +
                                  std::to_string(sizes[i]));
    }
    partitions_.push_back({state_size_, static_cast<std::size_t>(sizes[i])});
    state_size_ += partitions_.back().size;
    has_bytes.push_back(sizes[i] > 0);
  }
  for (std::size_t g = 0; g < group.generators().size(); ++g) {
    for (const auto& [point, image] : group.generators()[g]) {
      if (sizes[static_cast<std::size_t>(point)] == sizes[static_cast<std::size_t>(image)]) continue;
      throw std::invalid_argument("expected permutations between partitions of equal size, got one from " +
                                  std::to_string(point) + " to " + std::to_string(image));
    }
  }
  search_ = detail::recognise(group, has_bytes, bounds);
}

ExactGroup::~ExactGroup() = default;

struct ExactLabeller::WorkSpace {
  std::unique_ptr<detail::ImageSearch> search;
  std::vector<detail::Placed> values;  // by partition
  std::vector<unsigned char> image;
  std::vector<std::uint32_t> long_partitions;  // of more than 8 bytes
};

ExactLabeller::ExactLabeller(const ExactGroup& group) : group_(group), work_(std::make_unique<WorkSpace>()) {
  if (group.search_) work_->search = group.search_->clone();
  work_->values.resize(group.partitions_.size());
  work_->image.resize(group.state_size_);
  for (std::uint32_t i = 0; i < work_->values.size(); ++i) {
    work_->values[i].source = i;
    if (group_.partitions_[i].size > kValueBytes) work_->long_partitions.push_back(i);
  }
  partitions_ = group.partitions_.data();
  partition_count_ = group.partitions_.size();
  search_ = work_->search.get();
  values_ = work_->values.data();
  image_ = work_->image.data();
}

ExactLabeller::~ExactLabeller() = default;

// Stores of bytes may change anything but local variables, as far as a compiler knows.
bool ExactLabeller::find(const void* state, void* label) {
  const auto* const bytes = static_cast<const unsigned char*>(state);
  load(bytes);
  const bool is_largest = search_ == nullptr || search_->maximise(values_);
  const bool is_exact = is_largest && group_.is_whole_;
  if (!is_exact) ++inexact_count_;
  const ExactGroup::Partition* const partitions = partitions_;
  const detail::Placed* const values = values_;
  const std::size_t count = partition_count_;
  unsigned char* const image = image_;
  std::copy_n(bytes, group_.state_size_, image);
  for (std::size_t p = 0; p < count; ++p) {
    if (values[p].source == p) continue;
    const ExactGroup::Partition& to = partitions[p];
    copy_partition(bytes + partitions[values[p].source].offset, image + to.offset, to.size);
  }
  std::copy_n(image, group_.state_size_, static_cast<unsigned char*>(label));
  return is_exact;
}

void ExactLabeller::find_witness(short* witness) {
  for (std::size_t p = 0; p < partition_count_; ++p) witness[values_[p].source] = static_cast<short>(p);
}

void ExactLabeller::load(const unsigned char* state) {
  const auto count = static_cast<std::uint32_t>(partition_count_);
  for (std::uint32_t p = 0; p < count; ++p) {
    const ExactGroup::Partition& partition = partitions_[p];
    values_[p] = {big_endian(state + partition.offset, std::min(partition.size, kValueBytes)), p};
  }
  if (!work_->long_partitions.empty()) rank_long_partitions(state);
}

// A partition that is too long for one value gets its rank among all such partitions. Only those of equal
// size are ever compared.
void ExactLabeller::rank_long_partitions(const unsigned char* state) {
  const auto order = [&](std::uint32_t a, std::uint32_t b) {
    const ExactGroup::Partition& first = group_.partitions_[a];
    const ExactGroup::Partition& second = group_.partitions_[b];
    if (first.size != second.size) return first.size < second.size ? -1 : 1;
    return std::memcmp(state + first.offset, state + second.offset, first.size);
  };
  std::vector<std::uint32_t>& ranked = work_->long_partitions;
  std::sort(ranked.begin(), ranked.end(), [&](std::uint32_t a, std::uint32_t b) { return order(a, b) < 0; });
  std::uint64_t rank = 0;
  for (std::size_t i = 0; i < ranked.size(); ++i) {
    if (i > 0 && order(ranked[i - 1], ranked[i]) != 0) ++rank;
    work_->values[ranked[i]].value = rank;
  }
}

}  // namespace symfold

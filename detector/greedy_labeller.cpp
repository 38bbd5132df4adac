#include "detector/greedy_labeller.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <map>
#include <numeric>
#include <stdexcept>

#include "detector/labelling/move_plan.h"
#include "detector/symmetry_detection.h"

namespace symfold {

GreedyGroup::GreedyGroup(const LabellingTables& tables) : partition_count_(tables.sizes.size()) {
  const auto state_size = std::accumulate(tables.sizes.begin(), tables.sizes.end(), std::int64_t{0});
  if (state_size > detail::MovePlan::kMaxStateBytes) {
    throw std::length_error("the states are too large for greedy labels");
  }
  std::vector<std::span<const ValPerms>> records_of_base;
  std::size_t record_count = 0;
  for (const LabellingTables::Base& base : tables.bases) {
    records_of_base.push_back(base.records);
    record_count += base.records.size();
  }
  const bool is_countable = partition_count_ <= static_cast<std::size_t>(kMaxPartitions);
  if (is_countable && tables.offsets.size() >= partition_count_) {
    plan_ = detail::MovePlan::make(records_of_base, tables.sizes, tables.offsets,
                                   std::numeric_limits<std::size_t>::max());
  }
  if (plan_ == nullptr) {
    throw std::invalid_argument(
        "expected permutations between partitions of equal size that follow each other without gaps");
  }
  images_.reserve(record_count * partition_count_);
  for (const std::span<const ValPerms> records : records_of_base) add_witnesses(records);
}

GreedyGroup::~GreedyGroup() = default;

void GreedyGroup::add_witnesses(std::span<const ValPerms> records) {
  first_record_.push_back(witness_.size());
  std::map<int, std::size_t> place_of_value;
  for (const ValPerms& record : records) {
    const auto [place, is_new] = place_of_value.try_emplace(record.Value, images_.size());
    witness_.push_back(place->second);
    if (is_new) {
      images_.resize(images_.size() + partition_count_);
      std::iota(images_.end() - static_cast<std::ptrdiff_t>(partition_count_), images_.end(),
                std::int16_t{0});
    }
    std::int16_t* const images = images_.data() + place->second;
    for (const Permutation& permutation : record.Perms) {
      for (std::size_t c = 0; c < partition_count_; ++c) {
        images[c] = static_cast<std::int16_t>(permutation[images[c]]);
      }
    }
  }
}

const std::int16_t* GreedyGroup::witness_of(std::size_t base, int record) const {
  return images_.data() + witness_[first_record_[base] + static_cast<std::size_t>(record)];
}

GreedyLabeller::GreedyLabeller(const GreedyGroup& group)
    : group_(group),
      search_(std::make_unique<detail::MoveSearch>(*group.plan_)),
      choices_(group.plan_->step_count(), -1) {}

GreedyLabeller::~GreedyLabeller() = default;

bool GreedyLabeller::find(const void* state, void* label) {
  search_->start(static_cast<const unsigned char*>(state));
  for (std::size_t base = 0; base < choices_.size(); ++base) choices_[base] = search_->advance(base);
  const auto* const found = search_->current();
  std::copy_n(found, group_.plan_->state_size(), static_cast<unsigned char*>(label));
  return true;
}

void GreedyLabeller::find_witness(short* witness) {
  std::iota(witness, witness + group_.partition_count_, short{0});
  for (std::size_t base = 0; base < choices_.size(); ++base) {
    if (choices_[base] < 0) continue;
    const std::int16_t* const images = group_.witness_of(base, choices_[base]);
    for (std::size_t c = 0; c < group_.partition_count_; ++c) witness[c] = images[witness[c]];
  }
}

}  // namespace symfold

#include "detector/greedy_labeller.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "detector/labelling/chosen_moves.h"
#include "detector/labelling/move_plan.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

constexpr std::size_t kMaxPlanBytes = std::size_t{1} << 32;

// Tells why there is no plan: true if it would only have been too large.
bool is_sound(const LabellingTables& tables) {
  for (const LabellingTables::Base& base : tables.bases) {
    for (const ValPerms& record : base.records) {
      for (const Permutation& permutation : record.Perms) {
        if (!detail::keeps_sizes(permutation, tables.sizes)) return false;
      }
    }
  }
  return tables.sizes.size() <= std::size_t{kMaxPartitions} &&
         detail::is_tiling(tables.sizes, tables.offsets);
}

}  // namespace

GreedyGroup::GreedyGroup(const LabellingTables& tables) : partition_count_(tables.sizes.size()) {
  const auto state_size = std::accumulate(tables.sizes.begin(), tables.sizes.end(), std::int64_t{0});
  if (state_size > detail::MovePlan::kMaxStateBytes) {
    throw std::length_error("the states are too large for greedy labels");
  }
  std::vector<std::span<const ValPerms>> records;
  for (const LabellingTables::Base& base : tables.bases) records.push_back(base.records);
  if (partition_count_ <= std::size_t{kMaxPartitions} && tables.offsets.size() >= partition_count_) {
    plan_ = detail::MovePlan::make(records, tables.sizes, tables.offsets, kMaxPlanBytes);
  }
  if (plan_ != nullptr) {
    moves_ = std::make_unique<detail::ChosenMoves>(std::move(records), partition_count_);
    return;
  }
  if (is_sound(tables)) throw std::length_error("the symmetry group is too large for greedy labels");
  throw std::invalid_argument(
      "expected permutations between partitions of equal size that follow each other without gaps");
}

GreedyGroup::~GreedyGroup() = default;

GreedyLabeller::GreedyLabeller(const GreedyGroup& group)
    : group_(group),
      search_(std::make_unique<detail::MoveSearch>(*group.plan_)),
      choices_(group.plan_->step_count(), -1),
      inverse_(group.partition_count_),
      scratch_(group.partition_count_) {}

GreedyLabeller::~GreedyLabeller() = default;

bool GreedyLabeller::find(const void* state, void* label) {
  search_->start(static_cast<const unsigned char*>(state));
  for (std::size_t base = 0; base < choices_.size(); ++base) choices_[base] = search_->advance(base);
  const auto* const found = search_->current();
  std::copy_n(found, group_.plan_->state_size(), static_cast<unsigned char*>(label));
  return true;
}

void GreedyLabeller::find_witness(short* witness) {
  group_.moves_->find_witness(choices_, witness, inverse_.data(), scratch_.data());
}

}  // namespace symfold

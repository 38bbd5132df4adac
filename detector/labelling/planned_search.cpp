#include "detector/labelling/planned_search.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "detector/labelling/copying.h"
#include "engines/base/images.h"

namespace symfold::detail {
namespace {

// A larger plan is not made: labels are then found step by step.
constexpr std::size_t kMaxPlanBytes = std::size_t{1} << 30;

// The records of the last slot of each base point, as the search step by step looks them up.
std::vector<std::span<const ValPerms>> records_by_base(const SymmetryDetection& detector) {
  std::unordered_map<int, int> slot_of;
  for (int i = 0; i < detector.num_bases; ++i) slot_of[detector.static_bases[i]] = i;
  std::vector<std::span<const ValPerms>> records;
  for (int i = 0; i < detector.num_bases; ++i) {
    const int slot = slot_of.at(detector.static_bases[i]);
    records.emplace_back(detector.static_vperms[slot],
                         static_cast<std::size_t>(detector.static_num_vperms[slot]));
  }
  return records;
}

template <class T>
bool holds(const T* array, const std::vector<T>& values) {
  return compare_bytes(array, values.data(), values.size() * sizeof(T)) == 0;
}

template <class T>
void copy_to(T* array, const std::vector<T>& values) {
  copy_bytes(array, values.data(), values.size() * sizeof(T));
}

}  // namespace

std::unique_ptr<PlannedSearch> PlannedSearch::make(const SymmetryDetection& detector) {
  const auto partition_count = static_cast<std::size_t>(std::max(detector.num_partitions, 0));
  auto records = records_by_base(detector);
  auto plan = MovePlan::make(records, {detector.static_partition_sizes, partition_count},
                             {detector.static_partition_offsets, partition_count}, kMaxPlanBytes);
  if (plan == nullptr) return nullptr;
  return std::unique_ptr<PlannedSearch>(new PlannedSearch(std::move(plan), std::move(records), detector));
}

PlannedSearch::PlannedSearch(std::unique_ptr<const MovePlan> plan,
                             std::vector<std::span<const ValPerms>> records_of_base,
                             const SymmetryDetection& detector)
    : plan_(std::move(plan)),
      search_(*plan_),
      moves_(records_of_base, static_cast<std::size_t>(plan_->partition_count())),
      bases_(detector.static_bases, detector.static_bases + detector.num_bases),
      record_counts_(detector.static_num_vperms, detector.static_num_vperms + detector.num_bases),
      records_(detector.static_vperms, detector.static_vperms + detector.num_bases),
      sizes_(detector.static_partition_sizes, detector.static_partition_sizes + plan_->partition_count()),
      offsets_(detector.static_partition_offsets,
               detector.static_partition_offsets + plan_->partition_count()),
      inverse_(sizes_.size()),
      scratch_(sizes_.size()) {
  for (const std::span<const ValPerms> records : records_of_base) fill_orbits(records);
}

// A longer orbit overwrites the front of the buffer; what a base's last record makes of af_new_perm stays
// there unless a later base has records.
void PlannedSearch::fill_orbits(std::span<const ValPerms> records) {
  if (records.empty()) return;
  orbits_.resize(std::max(orbits_.size(), records.size()));
  for (std::size_t j = 0; j < records.size(); ++j) orbits_[j] = records[j].Value;
  last_perm_ = identity_images<std::vector<short>>(sizes_.size());
  for (const ValPerms& record : records) {
    if (record.Value != records.back().Value || record.Perms.empty()) continue;
    last_perm_ = identity_images<std::vector<short>>(sizes_.size());
    record.Perms.back().VisitMoves(
        [this](int c, int image) { last_perm_[static_cast<std::size_t>(image)] = static_cast<short>(c); });
  }
}

bool PlannedSearch::applies(const SymmetryDetection& detector, bool composes) const {
  return plan_->state_size() == detector.TotalStateSize &&
         plan_->partition_count() == detector.num_partitions &&
         (!composes || detector.num_partitions <= kMaxPartitions) &&
         detector.num_bases == static_cast<int>(bases_.size()) && detector.Bases == bases_ &&
         holds(detector.static_bases, bases_) && holds(detector.static_num_vperms, record_counts_) &&
         std::equal(records_.begin(), records_.end(), detector.static_vperms) &&
         holds(detector.static_partition_sizes, sizes_) && holds(detector.static_partition_offsets, offsets_);
}

void PlannedSearch::run(SymmetryDetection& detector, const void* state, bool composes) {
  const auto state_size = static_cast<std::size_t>(plan_->state_size());
  const MovePlan::Image last = plan_->last_image();
  const MovePlan::Image last_moved = plan_->last_moved_image();
  search_.start(static_cast<const unsigned char*>(state));
  for (std::size_t base = 0; base < bases_.size(); ++base) {
    if (base == last_moved.step) {
      copy_bytes(detector.af_state_scratch_b, search_.make_image(last_moved), state_size);
    }
    if (base == last.step) {
      const bool is_made = last_moved.step == base && last_moved.move == last.move;
      const unsigned char* image = is_made ? detector.af_state_scratch_b : search_.make_image(last);
      copy_bytes(detector.af_new_state, image, state_size);
      copy_bytes(detector.af_state_scratch_a, image, state_size);
    }
    const int choice = search_.advance(base);
    detector.af_choice[base] = choice;
    if (composes && choice >= 0) {
      moves_.compose_last(base, choice, detector.af_best_perm, detector.af_perm_scratch);
    }
  }
  fill_work_buffers(detector, composes);
}

// The other buffers depend on the state only through the last choice. Some are left alone if there are no
// bases or no records.
void PlannedSearch::fill_work_buffers(SymmetryDetection& detector, bool composes) const {
  const auto state_size = static_cast<std::size_t>(plan_->state_size());
  const std::size_t perm_size = sizes_.size() * sizeof(short);
  copy_bytes(detector.af_current_state, search_.current(), state_size);
  copy_bytes(detector.af_best_state, search_.current(), state_size);
  if (bases_.empty()) return;
  copy_bytes(detector.af_temp_best_perm, detector.af_identity_perm, perm_size);
  if (composes) {
    copy_bytes(detector.af_perm_scratch, detector.af_best_perm, perm_size);
    const std::size_t last_base = bases_.size() - 1;
    const int choice = detector.af_choice[last_base];
    if (choice >= 0) moves_.invert_last(last_base, choice, detector.af_temp_best_perm);
  }
  if (orbits_.empty()) return;
  copy_to(detector.af_new_perm, last_perm_);
  copy_to(detector.af_orbit, orbits_);
  copy_to(detector.af_orbit_copy, orbits_);
}

void PlannedSearch::find_witness(std::span<const int> choices, short* witness) {
  moves_.find_witness(choices, witness, inverse_.data(), scratch_.data());
}

}  // namespace symfold::detail

#include "host/symmetry/folding.h"

#include <algorithm>
#include <mutex>
#include <numeric>
#include <stdexcept>

#include "detector/exact_labeller.h"
#include "detector/greedy_labeller.h"
#include "detector/permfile/perm_table.h"
#include "engines/group/permutation_group.h"
#include "host/symmetry/detection.h"
#include "host/symmetry/run_directory.h"

namespace symfold {
namespace {

const std::string kNoText;
const std::vector<std::string> kNoNames;
const std::vector<int> kNoNumbers;
const std::vector<DetectionPhase> kNoPhases;

}  // namespace

const char* to_string(Symmetry symmetry) {
  switch (symmetry) {
    case Symmetry::kOff:
      return "off";
    case Symmetry::kFast:
      return "fast";
    case Symmetry::kExact:
      return "exact";
  }
  return "";
}

std::optional<Symmetry> symmetry_named(std::string_view name) {
  for (const Symmetry symmetry : kSymmetries) {
    if (name == to_string(symmetry)) return symmetry;
  }
  return std::nullopt;
}

// What the labellers share, made once.
struct Folding::Group {
  std::mutex being_made;
  std::optional<GreedyGroup> greedy;
  std::optional<ExactGroup> exact;
};

Folding::Folding(const ComposedModel& model, Symmetry symmetry, const FoldingFiles& files,
                 std::ostream* refusals)
    : symmetry_(symmetry), group_(std::make_unique<Group>()) {
  if (symmetry == Symmetry::kOff) return;
  require_countable_partitions(model);
  std::unique_ptr<RunDirectory> directory;
  if (!files.directory.empty()) directory = std::make_unique<RunDirectory>(files.directory);
  const bool needs_tables = symmetry == Symmetry::kFast || directory != nullptr;
  detection_ =
      std::make_unique<const Detection>(model, directory.get(), files.keeps_log, refusals,
                                        needs_tables ? DetectionGoal::kTables : DetectionGoal::kGroup);
}

Folding::Folding(const std::string& perm_file, Symmetry symmetry)
    : symmetry_(symmetry), group_(std::make_unique<Group>()) {
  auto table = std::make_unique<PermTable>();
  const std::string error = read_perm_file(perm_file, *table);
  if (!error.empty()) throw std::runtime_error(error);
  table_ = std::move(table);
}

Folding::~Folding() = default;

const std::string& Folding::unsound_reason() const {
  return detection_ ? detection_->unsound_reason() : kNoText;
}

void Folding::require_sound() const {
  if (!is_sound()) {
    throw UnsoundSymmetryError("error: the symmetries found do not hold: " + unsound_reason());
  }
}

const std::vector<std::string>& Folding::order() const {
  return detection_ ? detection_->detector().SSOrder : kNoNames;
}

const std::vector<int>& Folding::cell_sizes() const {
  if (detection_) return detection_->detector().PartitionInfo;
  return table_ ? table_->sizes : kNoNumbers;
}

std::size_t Folding::state_size() const {
  return std::accumulate(cell_sizes().begin(), cell_sizes().end(), std::size_t{0},
                         [](std::size_t sum, int size) { return sum + static_cast<std::size_t>(size); });
}

const std::vector<int>& Folding::orbit_lengths() const {
  return detection_ ? detection_->detector().SGSOrbitLengths : kNoNumbers;
}

const SymmetryDetection* Folding::detector() const { return detection_ ? &detection_->detector() : nullptr; }

const std::vector<DetectionPhase>& Folding::phases() const {
  return detection_ ? detection_->phases() : kNoPhases;
}

const std::string& Folding::refusals() const { return detection_ ? detection_->refusals() : kNoText; }

void Folding::make_group() const {
  try {
    if (symmetry_ == Symmetry::kFast) {
      group_->greedy.emplace(detection_ ? LabellingTables(detection_->detector()) : LabellingTables(*table_));
    } else if (detection_) {
      using Extent = PermutationGroup::Extent;
      const Extent extent = detection_->detector().HasWholeGroup ? Extent::whole : Extent::part;
      const auto group = PermutationGroup::from_strong_generators(static_cast<int>(cell_sizes().size()),
                                                                  detection_->cell_generators(), extent);
      group_->exact.emplace(group, cell_sizes());
    } else {
      group_->exact.emplace(LabellingTables(*table_));
    }
  } catch (const std::length_error& error) {
    throw GroupLimitError(std::string("error: ") + error.what());
  }
}

std::unique_ptr<Labeller> Folding::make_labeller() const {
  if (symmetry_ == Symmetry::kOff) return nullptr;
  require_sound();
  const std::lock_guard lock(group_->being_made);
  if (!group_->greedy && !group_->exact) make_group();
  if (group_->greedy) return std::make_unique<GreedyLabeller>(*group_->greedy);
  return std::make_unique<ExactLabeller>(*group_->exact);
}

}  // namespace symfold

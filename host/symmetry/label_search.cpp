#include "host/symmetry/label_search.h"

#include <stdexcept>

#include "host/symmetry/detection_log.h"
#include "host/symmetry/detection_run.h"

namespace symfold {
namespace {

ExactGroup make_group(const SymmetryDetection& detector) {
  try {
    return ExactGroup(detector);
  } catch (const std::length_error& error) {
    throw GroupLimitError(std::string("error: ") + error.what());
  }
}

}  // namespace

LabelSearch::LabelSearch(SymmetryDetection& detector) : detector_(detector) {
  const DetectionLog silent("");
  detector_.num_partitions = static_cast<int>(detector_.PartitionInfo.size());
  detector_.Initialize();
  detector_.ConvertSTLToStatic();
}

LabelSearch::~LabelSearch() {
  detector_.Cleanup();
  detector_.CleanStaticMembers();
}

ExactLabelSearch::ExactLabelSearch(const SymmetryDetection& detector)
    : group_(make_group(detector)), labeller_(group_) {}

}  // namespace symfold

#include "host/label_search.h"

#include "host/detection_log.h"

namespace symfold {

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

}  // namespace symfold

#include "detector/labelling_tables.h"

#include <map>

#include "detector/permfile/perm_table.h"
#include "detector/symmetry_detection.h"

namespace symfold {

LabellingTables::LabellingTables(const SymmetryDetection& detector)
    : sizes(detector.PartitionInfo),
      offsets(detector.CumPartitionInfo),
      has_whole_group(detector.HasWholeGroup || detector.OrigPermutations.empty()) {
  for (const int base : detector.Bases) {
    const auto found = detector.VPerms.find(base);
    if (found == detector.VPerms.end()) continue;
    bases.push_back({base, found->second});
  }
}

LabellingTables::LabellingTables(const PermTable& table) : sizes(table.sizes), offsets(table.offsets) {
  std::map<int, std::span<const ValPerms>> last_records;
  for (const auto& [base, records] : table.bases) last_records[base] = records;
  for (const auto& [base, records] : table.bases) bases.push_back({base, last_records.at(base)});
}

}  // namespace symfold

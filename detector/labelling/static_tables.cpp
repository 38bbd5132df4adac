// The labelling tables as plain arrays: a snapshot of Bases, VPerms and the partition table.

#include <algorithm>
#include <ostream>

#include "detector/labelling/planned_search.h"
#include "detector/symmetry_detection.h"

namespace symfold {

// The orbit buffers hold num_partitions values, or as many as the longest list if that is longer: repeated
// values can make it so.
void SymmetryDetection::ConvertSTLToStatic() {
  const auto partition_count = static_cast<std::size_t>(std::max(num_partitions, 0));
  if (PartitionInfo.size() < partition_count || CumPartitionInfo.size() < partition_count) {
    Refuse("num_partitions: expected at most the number of partitions, " +
           std::to_string(std::min(PartitionInfo.size(), CumPartitionInfo.size())) + ", got " +
           std::to_string(num_partitions));
    return;
  }
  num_bases = static_cast<int>(Bases.size());
  static_bases = new int[Bases.size()];
  std::copy(Bases.begin(), Bases.end(), static_bases);
  static_partition_offsets = new int[partition_count];
  static_partition_sizes = new int[partition_count];
  std::copy_n(CumPartitionInfo.begin(), partition_count, static_partition_offsets);
  std::copy_n(PartitionInfo.begin(), partition_count, static_partition_sizes);
  static_vperms = new ValPerms*[Bases.size()]();
  static_num_vperms = new int[Bases.size()]();
  std::size_t longest_orbit = partition_count;
  for (int i = 0; i < num_bases; ++i) {
    const std::vector<ValPerms>& records = VPerms[static_bases[i]];
    static_vperms[i] = new ValPerms[records.size()];
    std::copy(records.begin(), records.end(), static_vperms[i]);
    static_num_vperms[i] = static_cast<int>(records.size());
    longest_orbit = std::max(longest_orbit, records.size());
  }
  af_orbit = new int[longest_orbit];
  af_orbit_copy = new int[longest_orbit];
  af_choice = new int[Bases.size()];
  std::fill_n(af_choice, Bases.size(), -1);
  planned_ = detail::PlannedSearch::make(*this);
}

void SymmetryDetection::PrintStaticMembers() {
  diagnostics() << "Bases: " << std::endl;
  for (int i = 0; i < num_bases; ++i) diagnostics() << "  " << std::to_string(static_bases[i]) << std::endl;
  diagnostics() << "There are: " << std::to_string(num_partitions) << " Partitions" << std::endl;
  diagnostics() << "PartitionInfo\tCumPartitionInfo\tStaticCumPartitionInfo" << std::endl;
  for (int i = 0; i < num_partitions && static_partition_sizes != nullptr; ++i) {
    diagnostics() << std::to_string(static_partition_sizes[i]) << "\t"
                  << std::to_string(static_partition_offsets[i]) << std::endl;
  }
  diagnostics() << "Permutation Information: " << std::endl;
  for (int i = 0; i < num_bases; ++i) {
    diagnostics() << "  Base: " << std::to_string(static_bases[i]) << " has "
                  << std::to_string(static_num_vperms[i]) << " ValPerms" << std::endl;
    for (int j = 0; j < static_num_vperms[i]; ++j) {
      diagnostics() << "    Value: " << std::to_string(static_vperms[i][j].Value) << std::endl;
      for (const Permutation& permutation : static_vperms[i][j].Perms) {
        diagnostics() << "      " << permutation << std::endl;
      }
    }
  }
}

void SymmetryDetection::CleanStaticMembers() {
  for (int i = 0; i < num_bases; ++i) delete[] static_vperms[i];
  delete[] static_vperms;
  static_vperms = nullptr;
  for (int** array : {&static_bases, &static_partition_offsets, &static_partition_sizes, &static_num_vperms,
                      &af_orbit, &af_orbit_copy, &af_choice}) {
    delete[] * array;
    *array = nullptr;
  }
  num_bases = 0;
  planned_.reset();
}

}  // namespace symfold

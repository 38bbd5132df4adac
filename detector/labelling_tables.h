// The tables that labels are made from: what detection leaves behind and a permutation file holds.

#ifndef SYMFOLD_DETECTOR_LABELLING_TABLES_H
#define SYMFOLD_DETECTOR_LABELLING_TABLES_H

#include <span>
#include <vector>

#include "components/permutation.h"

namespace symfold {

class SymmetryDetection;
struct PermTable;

// A view: what it was made from must outlive it, unchanged.
struct LabellingTables {
  // The tables of a detector after TrimPermutations or ReadPermFile. Those that were not detected (read from
  // a permutation file, or set) are taken to be whole.
  LabellingTables(const SymmetryDetection& detector);

  // The tables of a permutation file. They are taken to be those of the whole group: the file does not say
  // it. If a base point occurs twice, its last records count for both, as they do for a detector that reads
  // the file.
  LabellingTables(const PermTable& table);

  struct Base {
    int point;
    std::span<const ValPerms> records;
  };

  std::span<const int> sizes;    // of each partition, in bytes
  std::span<const int> offsets;  // of each partition's first byte
  std::vector<Base> bases;       // in the order of the search
  bool has_whole_group = true;   // false if detection has refused a part of the symmetries
};

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_LABELLING_TABLES_H

// The symmetry classes of all states of a small model, by enumerating orbits.

#ifndef SYMFOLD_TESTS_ORACLES_STATE_CLASSES_H
#define SYMFOLD_TESTS_ORACLES_STATE_CLASSES_H

#include <string>
#include <vector>

#include "detector/symmetry_detection.h"

namespace symfold {

// All states in which partition c holds a value less than values[c], written as a little-endian number of
// sizes[c] bytes.
std::vector<std::string> all_states(const std::vector<int>& sizes, const std::vector<int>& values);

// The automorphism generators as permutations of the partitions. Requires that every join has one variable
// and that the state vector is in graph-node order.
std::vector<std::vector<int>> partition_generators(const SymmetryDetection& detector);

// Returns for each state the number of its class under the group that the partition permutations generate.
std::vector<int> classes_of(const std::vector<std::string>& states, const std::vector<int>& sizes,
                            const std::vector<std::vector<int>>& generators);

}  // namespace symfold

#endif  // SYMFOLD_TESTS_ORACLES_STATE_CLASSES_H

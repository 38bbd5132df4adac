// How the largest image under a group is best found, read off its permutations once.

#ifndef SYMFOLD_DETECTOR_LABELLING_EXACT_RECOGNITION_H
#define SYMFOLD_DETECTOR_LABELLING_EXACT_RECOGNITION_H

#include <memory>

#include "detector/labelling/exact/image_search.h"
#include "detector/labelling/exact/table_group.h"

namespace symfold {

struct SearchBounds {
  std::size_t most_candidates = 20'000;            // followed at a time, for each search
  std::size_t most_elements = 20'000;              // of a group that is listed
  std::size_t most_images = std::size_t{1} << 24;  // of a listed group or a chain
};

// The search for the whole group; null for the trivial one. What a group is taken for is proved: every
// permutation of the table is checked to be in the group recognised, and generators of that to be in the
// table's group. Throws std::length_error where a group fits no search within the bounds.
std::unique_ptr<ImageSearch> recognise(const TableGroup& group, const SearchBounds& bounds);

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_LABELLING_EXACT_RECOGNITION_H

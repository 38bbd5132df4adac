// How the largest image under a group is best found, read off its permutations once.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_RECOGNITION_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_RECOGNITION_H

#include <memory>

#include "engines/largest_image/image_search.h"
#include "engines/largest_image/table_group.h"

namespace symfold::detail {

struct SearchBounds {
  std::size_t max_candidates = 20'000;            // at least 1; followed at a time, for each search
  std::size_t max_elements = 20'000;              // of a group that is listed
  std::size_t max_images = std::size_t{1} << 26;  // entries in the tables of a search, 4 bytes each
};

// The search for the whole group; null for the trivial one. What a group is taken for is proved: every
// permutation of the table is checked to be in the group recognised, and generators of that to be in the
// table's group. Throws std::length_error where a group fits no search within the bounds.
//
// Cost, for orbits of length L and N positions in all: groups that are listed, a composition for each
// element; others a few times L * L to look for blocks, and N for each of the table's permutations; a chain,
// besides, a Schreier-Sims run.
std::unique_ptr<ImageSearch> recognise(const TableGroup& group, const SearchBounds& bounds);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_RECOGNITION_H

// Chooses a search for the largest image from the structure of the group.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_RECOGNITION_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_RECOGNITION_H

#include <memory>

#include "engines/largest_image/image_search.h"
#include "engines/largest_image/table_group.h"

namespace symfold::detail {

struct SearchBounds {
  std::size_t max_candidates = 20'000;            // at least 1; followed by a search at a time
  std::size_t max_elements = 20'000;              // of a group that is listed
  std::size_t max_images = std::size_t{1} << 26;  // entries in the tables of a search, 4 bytes each
};

// Returns the search for the whole group, null for the trivial one. The structure that is recognised is
// proved: every permutation of the table is in the recognised group, and generators of this are in the
// table's group. Throws std::length_error if a group fits no search within the bounds, std::invalid_argument
// if max_candidates is 0.
//
// Cost for orbits of length L and N positions in all: for groups that are listed, a composition for each
// element; for others, a few times L * L to look for blocks, and N for each of the table's permutations. A
// stabiliser chain needs a Schreier-Sims run besides.
std::unique_ptr<ImageSearch> recognise(const TableGroup& group, const SearchBounds& bounds);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_RECOGNITION_H

// Chooses a search for canonical images from the structure of the group.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_RECOGNITION_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_RECOGNITION_H

#include <memory>
#include <vector>

#include "engines/group/permutation_group.h"
#include "engines/largest_image/image_search.h"

namespace symfold::detail {

struct SearchBounds {
  std::size_t max_candidates = 20'000;            // at least 1; followed by a search at a time
  std::size_t max_elements = 20'000;              // of a group that is listed
  std::size_t max_images = std::size_t{1} << 26;  // entries in the tables of a search, 4 bytes each
};

// Returns the search for the whole group, null for the trivial one. has_value[c] is false if nothing lies at
// position c.
//
// The search depends on the group and the bounds alone: all steps start from canonical generators. They split
// the group into direct factors on disjoint sets of positions, and each factor goes to the first of these
// that fits, blocks with the group inside a block as a group of its own:
//
//  - rings that are long for a list, turned (ring_search.h);
//  - groups with long orbits and few elements for them, listed (list_search.h): the largest image;
//  - blocks that are permuted in every way: the largest image if it is found inside the blocks and their
//    positions are interleaved in one pattern, otherwise a canonical one (block_search.h);
//  - other groups with at most 64 elements, listed: the largest image;
//  - blocks that may be exchanged in each part of a structure: these are sorted, what is left has a group of
//    its own (tuft_search.h);
//  - objects that are permuted in every way (object_search.h);
//  - other groups with few elements for their orbits, listed: the largest image;
//  - all others, down a stabiliser chain (chain_search.h).
//
// Where nothing is said of the largest image, it is a canonical one, in general not the largest.
//
// What is recognised is proved by the group's own elements. Throws std::length_error if a group fits no
// search within the bounds, std::invalid_argument if max_candidates is 0.
//
// Cost: near-linear in the supports of the generators for groups whose generators have exchanges that show
// the blocks; for groups that are listed, their order times the positions; otherwise that of looking for
// blocks (block_recognition.h) and objects.
std::unique_ptr<ImageSearch> recognise(const PermutationGroup& group, const std::vector<bool>& has_value,
                                       const SearchBounds& bounds);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_RECOGNITION_H

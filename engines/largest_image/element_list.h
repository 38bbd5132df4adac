// All elements of small groups.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_ELEMENT_LIST_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_ELEMENT_LIST_H

#include <cstddef>
#include <vector>

#include "engines/group/permutation_group.h"
#include "engines/largest_image/image_search.h"

namespace symfold::detail {

// Returns the order of the group, or some number above the bound if it is above.
std::size_t order_of(const PermutationGroup& group, std::size_t bound);

// Returns all elements in lexicographic order. Cost: the order times the degree.
std::vector<Images> list_elements(const PermutationGroup& group);

// Returns the subgroup that fixes the first base point.
PermutationGroup stabiliser_of_first(const PermutationGroup& group);

Images images_of(const SparsePermutation& moves, std::size_t degree);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_ELEMENT_LIST_H

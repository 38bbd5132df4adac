// Recognises groups that permute objects in every way, and positions with the objects that they belong to.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_RECOGNITION_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_RECOGNITION_H

#include <cstddef>
#include <optional>

#include "engines/group/permutation_group.h"
#include "engines/largest_image/object_positions.h"

namespace symfold::detail {

// The objects are orbits of positions. The orbits of a position's stabiliser suggest to which objects it
// belongs: in each class of objects, all but those of the longest orbit. Objects of one orbit are in one
// role. Returns nothing if no such objects are found, or if trees or seats would have more than
// `max_entries`. What is returned is proved: the positions are distinct, each generator does to the positions
// what it does to the objects, and exchanging two neighbouring objects of a class is in the group, which so
// consists of all permutations of the objects. The group moves all points.
std::optional<ObjectPositions> recognise_objects(const PermutationGroup& group, std::size_t max_entries);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_RECOGNITION_H

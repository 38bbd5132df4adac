// Recognises groups that permute objects in every way, and positions with the objects that they belong to.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_RECOGNITION_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_RECOGNITION_H

#include <cstddef>
#include <optional>

#include "engines/largest_image/object_search.h"
#include "engines/largest_image/subgroup.h"

namespace symfold::detail {

// The objects are orbits of positions. The orbits of a position's stabiliser suggest to which objects it
// belongs: few objects are apart from the others of their class. Returns nothing if no such objects are
// found, or if their table would have more than `max_entries`. What is returned is proved: each generator
// does to the positions what it does to the objects, and exchanging two neighbouring objects of a class is in
// the group.
std::optional<ObjectPositions> recognise_objects(const Subgroup& group, std::size_t max_entries);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_RECOGNITION_H

// Whether a group permutes objects in every way, and positions with the objects that they belong to.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_RECOGNITION_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_RECOGNITION_H

#include <cstddef>
#include <optional>

#include "engines/largest_image/object_positions.h"
#include "engines/largest_image/subgroup.h"

namespace symfold::detail {

// The objects are orbits of positions. To which of them a position belongs is guessed from the orbits of its
// stabiliser: few objects stand apart from the others of their class. Proved: each generator does to the
// positions what it does to the objects, and exchanging two neighbouring objects of a class is in the group.
// Nothing where no such objects are found, or their table would have more than `max_entries`.
std::optional<ObjectPositions> recognise_objects(const Subgroup& group, std::size_t max_entries);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_RECOGNITION_H

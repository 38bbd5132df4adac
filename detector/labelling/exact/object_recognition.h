// Whether a group permutes objects in every way, and positions with the objects that they belong to.

#ifndef SYMFOLD_DETECTOR_LABELLING_EXACT_OBJECT_RECOGNITION_H
#define SYMFOLD_DETECTOR_LABELLING_EXACT_OBJECT_RECOGNITION_H

#include <cstddef>
#include <optional>

#include "detector/labelling/exact/object_positions.h"
#include "detector/labelling/exact/subgroup.h"

namespace symfold {

// The objects are orbits of positions. To which of them a position belongs is guessed from the orbits of its
// stabiliser: few objects stand apart from the others of their class. Proved: each generator does to the
// positions what it does to the objects, and exchanging two neighbouring objects of a class is in the group.
// Nothing where no such objects are found, or their table would have more than `most_entries`.
std::optional<ObjectPositions> recognise_objects(const Subgroup& group, std::size_t most_entries);

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_LABELLING_EXACT_OBJECT_RECOGNITION_H

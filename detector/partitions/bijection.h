#ifndef SYMFOLD_DETECTOR_PARTITIONS_BIJECTION_H
#define SYMFOLD_DETECTOR_PARTITIONS_BIJECTION_H

#include "components/permutation.h"

namespace symfold {

// True when every point of the permutation is the image of exactly one point. Linear in the number of points.
bool is_bijection(const Permutation& permutation);

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_PARTITIONS_BIJECTION_H

// A permutation as the list of the points that it moves: a generator of a large graph's group moves few
// points.

#ifndef SYMFOLD_ENGINES_SPARSE_PERMUTATION_H
#define SYMFOLD_ENGINES_SPARSE_PERMUTATION_H

#include <vector>

namespace symfold {

struct PointMove {
  int point;
  int image;  // never equal to point

  bool operator==(const PointMove&) const = default;
};

// The moves in ascending order of their points; empty for the identity.
using SparsePermutation = std::vector<PointMove>;

}  // namespace symfold

#endif  // SYMFOLD_ENGINES_SPARSE_PERMUTATION_H

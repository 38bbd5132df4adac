// Strong generators of a group that is given by any generators.

#ifndef SYMFOLD_ENGINES_GROUP_GENERATED_GROUP_H
#define SYMFOLD_ENGINES_GROUP_GENERATED_GROUP_H

#include <span>

#include "engines/base/point_vector.h"
#include "engines/base/sparse_permutation.h"

namespace symfold::detail {

// Tells permutations of 0 .. degree-1 from other lists of moves.
class PermutationCheck {
 public:
  explicit PermutationCheck(int degree) : uses_(degree, 0) {}

  // Returns true if the points ascend and are the images in another order. Cost: the moves.
  bool is_permutation(std::span<const PointMove> moves);

 private:
  PointVector<char> uses_;  // 0 between calls
};

struct StrongGenerators {
  PermutationList list;
  bool are_proved = true;  // that they are strong
};

// Returns generators of the same group that are strong relative to the base rule (stabiliser_chain.h), or
// that are very likely so if a proof would take too long. The generators are permutations of 0 .. degree-1,
// not the identity. Cost: see PermutationGroup::generated_by.
StrongGenerators generate_strongly(int degree, const PermutationList& generators);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_GENERATED_GROUP_H

// Random permutation groups of few points, of many kinds, in no order that a recogniser could count on.

#ifndef SYMFOLD_TESTS_SUPPORT_RANDOM_GROUP_H
#define SYMFOLD_TESTS_SUPPORT_RANDOM_GROUP_H

#include <random>
#include <string>
#include <vector>

#include "tests/oracles/automorphisms.h"

namespace symfold {

struct RandomGroup {
  std::string name;        // how it was made, "S3 wr D4"
  std::vector<int> sizes;  // of each position, in bytes; some are 0. Equal within an orbit
  std::vector<oracle::Images> generators;
};

inline constexpr int kMaxGroupPoints = 12;

// Returns a group that acts on 2 to kMaxGroupPoints positions: symmetric, alternating, dihedral, cyclic,
// affine and other groups, or one of random generators; their actions on tuples, subsets and partitions of
// points; direct, subdirect and wreath products, also in product action; in any case with the positions
// renumbered, and perhaps with fixed ones.
RandomGroup random_group(std::mt19937& random);

// Returns other generators of the same group.
std::vector<oracle::Images> other_generators(std::vector<oracle::Images> generators, std::mt19937& random);

// Returns a product of random generators.
oracle::Images random_element(const RandomGroup& group, std::mt19937& random);

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_RANDOM_GROUP_H

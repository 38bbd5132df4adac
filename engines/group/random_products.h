// Random elements of a group, from its generators.

#ifndef SYMFOLD_ENGINES_GROUP_RANDOM_PRODUCTS_H
#define SYMFOLD_ENGINES_GROUP_RANDOM_PRODUCTS_H

#include <random>
#include <vector>

#include "engines/base/point_vector.h"
#include "engines/base/sparse_permutation.h"

namespace symfold::detail {

// Product replacement (strong_generators.cpp), which begins with products of all generators, at least one.
// The seed is fixed, so every run is the same.
class RandomProducts {
 public:
  RandomProducts(int degree, const PermutationList& generators);

  SparsePermutation next();

 private:
  std::vector<PointVector<int>> products_;
  PointVector<int> running_;
  std::mt19937_64 random_{2003};
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_RANDOM_PRODUCTS_H

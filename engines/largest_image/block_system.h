// Partitions of the positions that permutations leave invariant: each permutation carries classes onto
// classes.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_SYSTEM_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_SYSTEM_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engines/base/union_find.h"
#include "engines/largest_image/image_search.h"

namespace symfold::detail {

class BlockSystem {
 public:
  // Every position is a class of its own.
  explicit BlockSystem(std::size_t position_count);

  // Returns the smallest member of the position's class.
  std::uint32_t first_member(std::uint32_t position) {
    return first_members_[classes_.find(static_cast<int>(position))];
  }

  // Replaces the partition by the finest invariant one that is coarser and has x and y in one class (M. D.
  // Atkinson, An algorithm for finding the blocks of a permutation group, Math. Comp. 29, 1975), if the
  // partition was invariant before. Returns by how many there are fewer classes.
  std::size_t unite_invariantly(std::uint32_t x, std::uint32_t y,
                                const std::vector<const Images*>& permutations);

  // Returns the classes as ascending lists, in the order of their first members.
  std::vector<std::vector<std::uint32_t>> lists() { return classes_.lists<std::uint32_t>(); }

 private:
  bool unite(std::uint32_t x, std::uint32_t y);  // returns true if they were in different classes

  UnionFind classes_;
  PointVector<std::uint32_t> first_members_;  // by root of the class
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_SYSTEM_H

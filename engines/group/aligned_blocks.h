// Blocks of points that a group permutes in every way, each point of a block with its place in it: symmetric
// groups and wreath products with one, read off exchanges among the generators.
//
// Three racks with a fan and two servers each, racks interchangeable and servers within a rack: the points
// (f0 s0 s1) (f1 s2 s3) (f2 s4 s5) are three blocks of length 3, f the place 0. An exchange of two blocks is
// an involution that carries each of the points of one to the point at the same place of the other.

#ifndef SYMFOLD_ENGINES_GROUP_ALIGNED_BLOCKS_H
#define SYMFOLD_ENGINES_GROUP_ALIGNED_BLOCKS_H

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "engines/base/point_vector.h"
#include "engines/base/sparse_permutation.h"

namespace symfold::detail {

// Disjoint blocks of equal length, block after block.
struct AlignedBlocks {
  int length;
  std::vector<int> points;

  int count() const { return static_cast<int>(points.size()) / length; }
  std::span<const int> block(int b) const {
    const auto block_length = static_cast<std::size_t>(length);
    return std::span(points).subspan(static_cast<std::size_t>(b) * block_length, block_length);
  }
  // The moves of the exchange of two blocks.
  SparsePermutation exchange(int a, int b) const;
  // The moves inside a block that are these on its places.
  SparsePermutation inside(int b, const SparsePermutation& on_places) const;
};

// What permutations do to blocks that cover 0 .. degree-1. Keeps a reference to the blocks.
class BlockAction {
 public:
  explicit BlockAction(const AlignedBlocks& blocks);

  // Returns false if the permutation carries a block to no block. Otherwise it is a product of permutations
  // inside blocks, then one of blocks that keeps all places.
  bool split(std::span<const PointMove> moves);

  // Of the permutation that was split last: what is not the identity of those inside blocks, on the places.
  const std::vector<SparsePermutation>& inner() const { return inner_; }

 private:
  const AlignedBlocks& blocks_;
  PointVector<int> block_of_;
  PointVector<int> place_of_;
  PointVector<int> images_;  // the identity between calls
  std::vector<int> touched_;
  std::vector<SparsePermutation> inner_;
};

// Returns blocks that cover 0 .. degree-1, such that exchanges among the generators connect all of them; so
// the generated group has every permutation of the blocks that keeps the places. The block with the smallest
// point is the first, with ascending points; the others follow by their smallest points. Looks at the
// involutions that move the most points only: exchanges of the outermost blocks. All points are moved. Cost:
// near-linear in the supports.
std::optional<AlignedBlocks> find_exchanged_blocks(int degree, const PermutationList& generators);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_ALIGNED_BLOCKS_H

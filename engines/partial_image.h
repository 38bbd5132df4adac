// Reads a candidate automorphism off two partitions that have been refined alike.
//
// The left one is discrete, its vertices in `left order`; the right one has been split alike up to some
// point. Where a cell of the right one has become a single vertex y at position p, the left order's x at p
// goes to y. Such pairs need not be a permutation yet: every open chain x -> y -> .. -> z is closed by z ->
// x, and all other vertices are guessed to stay, provided that every larger new cell holds the same vertices
// on both sides.
//
// Example: a path from leaf 0 of a star to leaf 3 has the one pair 0 -> 3, closed by 3 -> 0; the cell of the
// other leaves was never looked at. A guess is just that: the caller checks it against the graph.

#ifndef SYMFOLD_ENGINES_PARTIAL_IMAGE_H
#define SYMFOLD_ENGINES_PARTIAL_IMAGE_H

#include "engines/ordered_partition.h"
#include "engines/sparse_permutation.h"

namespace symfold {

class PartialImage {
 public:
  // The discrete left partition: order and positions are copied, later splits of the right one may follow.
  explicit PartialImage(const OrderedPartition& left);

  int left_vertex_at(int position) const { return left_vertices_[position]; }

  // Looks at the cells that the splits from `first_split` on have made. False where a larger new cell
  // differs; otherwise `moves` is the guess, the identity left out. Cost: the members of these cells and
  // sorting the moves.
  bool read(const OrderedPartition& right, int first_split, SparsePermutation& moves);

 private:
  bool collect(const OrderedPartition& right, int first_split);
  void add_pair(int from, int to);
  void close_chains(SparsePermutation& moves);

  PointVector<int> left_vertices_;
  PointVector<int> left_positions_;
  PointVector<int> image_;     // -1 everywhere between calls
  PointVector<int> preimage_;  // the same
  std::vector<int> sources_;   // the vertices with an image
};

}  // namespace symfold

#endif  // SYMFOLD_ENGINES_PARTIAL_IMAGE_H

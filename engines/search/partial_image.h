// Reads a candidate automorphism off two partitions that have been refined alike.
//
// The left one is at least as fine; the right one has been split alike up to some point. If a cell of the
// right one has become a single vertex y at position p, the left vertex x at p goes to y. Such pairs need not
// be a permutation yet: every open run x -> y -> .. -> z is closed by z -> x, and all other vertices are
// guessed to stay. Example: a path from leaf 0 of a star to leaf 3 has the one pair 0 -> 3, closed by 3 -> 0;
// the cell of the other leaves was never looked at.
//
// A larger new cell may hold vertices on the left that it does not hold on the right. They must move, and
// clues say where to. A vertex a goes to b in the same cell if, among the cell's vertices that must move, a
// is the only one on the left next to some x, and b the only one on the right next to the image of x.
// Example: every two of many servers share a link. Exchanging servers v and w must take the link v-x to w-x,
// because x stays. One refinement is enough, though it has told none of the links apart.
//
// The result is a guess: the caller checks it against the graph.

#ifndef SYMFOLD_ENGINES_SEARCH_PARTIAL_IMAGE_H
#define SYMFOLD_ENGINES_SEARCH_PARTIAL_IMAGE_H

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "engines/base/sparse_permutation.h"
#include "engines/graph/coloured_graph.h"
#include "engines/search/ordered_partition.h"

namespace symfold::detail {

// Follows the run of pairs that leads to v backwards and returns its end: the vertex to which v would go if
// the run were closed. Returns v itself if no pair leads to it.
int end_of_run(const OrderedPartition& left, const OrderedPartition& right, int v);

class PartialImage {
 public:
  // The graph must outlive this.
  explicit PartialImage(const ColouredGraph& graph);

  // Reads the cells of the right partition that its splits from `first_split` on have made. The left one must
  // have the same cells, or finer ones inside them. Returns true and the guess in `moves`, or false if there
  // is no clue for some vertex that must move. Cost: the members of these cells and the edges at the moved
  // vertices, times a logarithm.
  bool read(const OrderedPartition& left, const OrderedPartition& right, int first_split,
            SparsePermutation& moves);

  // Clues of dense graphs may be a waste: they decide at once in rook's graphs, and hardly ever in Hadamard
  // matrices. Those that led to no automorphism may have had so many edges more than those that did. Without
  // this limit, the search of such matrices and of block designs takes two to four times as long.
  void allow_dense_clues(std::size_t max_edges) { max_dense_clues_ = max_edges; }
  void note_success() { dense_clues_ -= std::min(dense_clues_, 2 * latest_dense_clues_); }

 private:
  // A vertex next to `neighbour` stands in `cell`. The neighbour is one of the right side; for left vertices,
  // the image of theirs.
  struct Clue {
    int cell;
    int neighbour;
    int on_left;  // the one such vertex, kNone or kSeveral
    int on_right;
  };
  static constexpr int kNone = -1;
  static constexpr int kSeveral = -2;

  void collect(const OrderedPartition& left, const OrderedPartition& right, int first_split);
  void collect_movers(const OrderedPartition& left, const OrderedPartition& right, int cell);
  int known_image(const OrderedPartition& left, const OrderedPartition& right, int v) const;
  bool follow_clues(const OrderedPartition& left, const OrderedPartition& right);
  bool gather_left_clues(const OrderedPartition& left, const OrderedPartition& right);
  void gather_right_clues(const OrderedPartition& right);
  void pair_unique_clues();
  Clue& clue_at(int cell, int neighbour);
  void add_pair(int from, int to);
  void close_runs();

  const ColouredGraph& graph_;

  // What the current call has read. Between calls images are -1; sources and movers are empty.
  PointVector<int> image_;
  PointVector<int> preimage_;
  std::vector<int> sources_;            // the vertices with an image
  std::vector<int> left_movers_;        // in a larger new cell on the left only, without an image yet
  std::vector<int> right_movers_;       // in a larger new cell on the right only, without a preimage yet
  std::size_t latest_dense_clues_ = 0;  // edges, in the latest call
  std::size_t dense_clues_ = 0;         // in all calls, less twice those of successful ones
  std::size_t max_dense_clues_ = std::numeric_limits<std::size_t>::max();
  std::vector<Clue> clues_;  // by open addressing; empty places have no left vertex
  std::vector<Clue> unique_clues_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_SEARCH_PARTIAL_IMAGE_H

// Hashes of the surroundings of vertices, for graphs in which refinement sees nothing.
//
// In a regular graph all vertices look alike to refinement. An individualised vertex tells the others apart,
// but doing so for each in turn takes the square of their number, or close to it. The cycles make the
// difference: a ball, which is all vertices up to some distance from its centre, has fewer members if short
// cycles pass through the centre. So a hash over the balls' members, by distance and cell, splits cells, at
// the cost of a walk around each vertex. An automorphism keeps it, as it keeps any number that does not
// depend on how vertices are named (vertex invariants: B. D. McKay and A. Piperno, Practical graph
// isomorphism, II, J. Symbolic Computation 60, 2014).
//
// Example: in a cubic graph a ball of radius two has ten members, but nine if a square passes through its
// centre. A few squares are enough for refinement to tell all vertices of a random cubic graph apart.
//
// If all vertices are equivalent this is a waste. So the balls may cost no more than the failed branches that
// they might have spared, and grow with them.

#ifndef SYMFOLD_ENGINES_SEARCH_BALL_HASHES_H
#define SYMFOLD_ENGINES_SEARCH_BALL_HASHES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engines/graph/coloured_graph.h"
#include "engines/search/ordered_partition.h"

namespace symfold::detail {

class BallHashes {
 public:
  // The graph must outlive this.
  explicit BallHashes(const ColouredGraph& graph);

  // True if failed branches have examined enough edges to pay for hashing.
  bool is_worthwhile(std::size_t failed_work) const { return failed_work >= min_failed_work_; }

  // Hashes the balls of the vertices that share a cell, one radius after the other, for about as long as the
  // failed branches have taken. The cells must be those of an equitable partition. Returns true if a cell
  // splits; `keys` then tells its parts apart, and tells all cells apart.
  bool split(const OrderedPartition& cells, std::size_t failed_work, PointVector<std::uint64_t>& keys);

 private:
  bool hash_all(const OrderedPartition& cells, std::size_t max_edges, PointVector<std::uint64_t>& keys);
  std::uint64_t hash_ball(const OrderedPartition& cells, int centre);

  const ColouredGraph& graph_;
  int radius_ = 2;
  std::size_t min_failed_work_ = 0;
  std::size_t examined_edges_ = 0;
  PointVector<int> centre_of_;  // the latest ball that a vertex was in
  std::vector<int> members_;    // of the current ball
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_SEARCH_BALL_HASHES_H

// What vertices have around them, for graphs in which refinement sees nothing.
//
// In a regular graph all vertices look alike to refinement. An individualised vertex tells the others apart,
// but doing so for each in turn takes the square of their number, or close to it. The cycles are what makes
// the difference: a ball, all vertices up to some distance, has fewer members where short cycles pass through
// it. So a hash over the balls' members, by distance and cell, splits cells, at the cost of a walk around
// each vertex; an automorphism keeps it, as it keeps any number that does not depend on how vertices are
// named (vertex invariants: B. D. McKay and A. Piperno, Practical graph isomorphism, II, J. Symbolic
// Computation 60, 2014).
//
// Example: in a cubic graph a ball of radius two has ten members, nine where a square passes through its
// centre. A few squares are enough for refinement to tell all vertices of a random cubic graph apart.
//
// Where all vertices are equivalent this is a waste. So the balls may cost no more than the failures that
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

  // Whether it is time to, after failures of the search that have looked at so many edges.
  bool is_due(std::size_t work) const { return work >= due_; }

  // Hashes the balls of the vertices that share a cell, of one radius after the other, for about as long as
  // the failures have taken. True where some cell splits; `keys` then tells its parts apart, and all cells,
  // which must be those of an equitable partition.
  bool split(const OrderedPartition& cells, std::size_t work, PointVector<std::uint64_t>& keys);

 private:
  bool hash_all(const OrderedPartition& cells, std::size_t budget, PointVector<std::uint64_t>& keys);
  std::uint64_t hash_ball(const OrderedPartition& cells, int centre);

  const ColouredGraph& graph_;
  int radius_ = 2;
  std::size_t due_ = 0;         // the work that makes it time
  std::size_t edges_ = 0;       // looked at
  PointVector<int> centre_of_;  // the latest ball that a vertex was in
  std::vector<int> members_;    // of the ball at hand
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_SEARCH_BALL_HASHES_H

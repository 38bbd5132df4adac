// Certifies automorphisms. Those that the search has found, or that were lifted from a reduced graph, become
// generators only after this check, which knows nothing of partitions and fibres.

#ifndef SYMFOLD_ENGINES_GRAPH_AUTOMORPHISM_CHECK_H
#define SYMFOLD_ENGINES_GRAPH_AUTOMORPHISM_CHECK_H

#include "engines/base/sparse_permutation.h"
#include "engines/graph/coloured_graph.h"

namespace symfold::detail {

class AutomorphismCheck {
 public:
  // The graph must outlive the check.
  explicit AutomorphismCheck(const ColouredGraph& graph);

  // Returns true if the moves are a permutation of the graph's vertices that keeps colours, loops, and the
  // number, or the weight seen from moved ends, of the edges between every two vertices. Only edges at moved
  // vertices can break that: the cost is the sum of their degrees. Precondition: points and images are
  // vertices, and no point occurs twice.
  bool is_automorphism(const SparsePermutation& moves);

 private:
  bool is_permutation(const SparsePermutation& moves);
  bool keeps_edges(PointMove move);
  bool keeps_weights(PointMove move);

  const ColouredGraph& graph_;
  PointVector<int> image_;  // of each vertex; the identity between calls

  // Allocated when first needed, since many graphs do not need them; zero between calls.
  PointVector<char> is_image_;  // of a moved point
  PointVector<int> mark_;       // of an expected neighbour: a number of edges, or a place
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GRAPH_AUTOMORPHISM_CHECK_H

// Certifies automorphisms: the search gives out no generator that has not passed this check, which knows
// nothing of partitions.

#ifndef SYMFOLD_ENGINES_AUTOMORPHISM_CHECK_H
#define SYMFOLD_ENGINES_AUTOMORPHISM_CHECK_H

#include <cstdint>

#include "engines/coloured_graph.h"
#include "engines/sparse_permutation.h"

namespace symfold {

class AutomorphismCheck {
 public:
  // The graph must outlive the check.
  explicit AutomorphismCheck(const ColouredGraph& graph);

  // Whether the moves are a permutation of the graph's vertices that keeps colours, loops and the number of
  // edges between every two vertices. Only edges at moved vertices can break that: the cost is the sum of
  // their degrees. Precondition: points and images are vertices, no point occurs twice.
  bool is_automorphism(const SparsePermutation& moves);

 private:
  bool keeps_edges(PointMove move);

  const ColouredGraph& graph_;
  struct Role {
    int image;
    bool is_image;  // of a moved point
  };

  PointVector<Role> roles_;           // of a point that is not moved, between calls
  PointVector<std::uint64_t> count_;  // zero between calls
};

}  // namespace symfold

#endif  // SYMFOLD_ENGINES_AUTOMORPHISM_CHECK_H

// What a degree reduction takes out of a graph, as trees of which each part knows what can take its place.
//
// A node is a vertex, a set or a sequence, and parts hang from it. Vertices and sets hold their parts in no
// order, sequences, which are the chains and cycles of the graph, in one that counts. The shape of a node is
// a number over the colours and loops of all that hangs from it: nodes that can take each other's place have
// the same one, others by a chance of about 1 in 2^64, which shows when one is carried to the other.
//
// Parts of one shape in a set are twins: exchanging two of them is a symmetry. The parts of a node stand in
// the order of shapes and, among twins, of their smallest vertices, and a node is carried to another one part
// by part in these orders. So these ways of carrying compose, and carrying a node to itself moves nothing,
// which is what keeps generators strong (degree_reduction.h).
//
// Example: a star of leaves 0, 1, 2 around 3, from which 4 hangs with a leaf 5 of its own. The shapes of 0, 1
// and 2 are equal; the exchanges are (0 2) and (1 2): the last twin takes part in all of them.
//
// Cost: linear, plus sorting the parts of nodes that have some of several shapes.

#ifndef SYMFOLD_ENGINES_REDUCTION_FIBRE_FOREST_H
#define SYMFOLD_ENGINES_REDUCTION_FIBRE_FOREST_H

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "engines/base/mix.h"
#include "engines/base/sparse_permutation.h"
#include "engines/graph/coloured_graph.h"

namespace symfold::detail {

using Shape = std::uint64_t;

class FibreForest {
 public:
  // Every vertex is a node of its own number, with nothing hanging from it. The graph must outlive this.
  explicit FibreForest(const ColouredGraph& graph);

  int node_count() const { return nodes_.size(); }
  Shape shape(int node) const {
    return nodes_[node].parent < 0 ? mix(nodes_[node].shape) : nodes_[node].shape;
  }
  int smallest_vertex(int node) const { return nodes_[node].smallest; }  // the vertex count in an empty set

  int add_set();

  // The members have got all that hangs from them. `shape` is a number over theirs in their order.
  int add_sequence(std::span<const int> members, Shape shape);

  // The child has got all that hangs from it.
  void hang(int child, int parent);

  // Puts the parts of vertices and sets in order; nothing is hung or added any more.
  void arrange();

  // The vertices and sets with several parts, once they are arranged; in ascending order.
  std::span<const int> branchings() const { return branchings_; }

  // The parts of a vertex or set, arranged.
  std::span<const int> parts(int node) const {
    return {parts_.data() + nodes_[node].first, std::size_t{nodes_[node].length}};
  }

  // Appends the moves that carry all vertices of one node to those of another one of the same shape; none
  // where they are the same. The members of a sequence are carried to those of the other one, or to its
  // members from the last to the first. The moves are in no order, and keep colours, loops and the edges
  // inside the nodes. False, with moves that mean nothing, where the two differ after all.
  bool carry(int from, int to, SparsePermutation& moves, bool is_reversed = false);

 private:
  void become_part(int node, int parent);
  void sort_parts(int node);

  // Compact, since every step goes to nodes that are far apart.
  struct Node {
    Shape shape = 0;   // a sum over itself and its parts until it is a part itself
    int smallest = 0;  // vertex
    int parent = -1;
    int first = 0;  // of its parts in parts_
    unsigned length : 31 = 0;
    unsigned is_sequence : 1 = 0;
  };

  const ColouredGraph& graph_;
  int vertex_count_;
  PointVector<Node> nodes_;
  std::vector<int> parts_;
  std::vector<int> branchings_;
  std::vector<std::pair<int, int>> pending_;  // nodes still to be carried
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_REDUCTION_FIBRE_FOREST_H

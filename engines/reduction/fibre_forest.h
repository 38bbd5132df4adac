// What a degree reduction takes out of a graph, as trees whose parts carry a hash of their isomorphism class.
//
// A node is a vertex, a set or a sequence, and other nodes, its parts, hang from it. Vertices and sets hold
// their parts in no order. Sequences, which are the core paths and cycles of the graph, hold them in an order
// that counts. The shape of a node is a hash of the colours, loops and edge weights of all that hangs from
// it, and of its own edge to what it hangs from: isomorphic nodes have the same shape. Others do by a chance
// of about 1 in 2^64, which shows when one is carried to the other.
//
// Parts of one shape in a set are twins: exchanging two of them is a symmetry. The parts of a node stand in
// the order of their shapes, twins in the order of their smallest vertices, and a node is carried to another
// one part by part in these orders. So these maps compose, and carrying a node to itself moves nothing, which
// keeps generators strong (degree_reduction.h).
//
// Example: a star of leaves 0, 1, 2 around 3, from which 4 hangs with a leaf 5 of its own. The shapes of 0, 1
// and 2 are equal. The exchanges are (0 2) and (1 2): the last twin takes part in all of them.
//
// Cost: linear, plus sorting the parts of nodes that have parts of several shapes.

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
  // Every vertex is a node with the vertex's number, from which nothing hangs. The graph must outlive this.
  explicit FibreForest(const ColouredGraph& graph);

  Shape shape(int node) const {
    return nodes_[node].parent < 0 ? mix(nodes_[node].shape) : nodes_[node].shape;
  }
  int smallest_vertex(int node) const { return nodes_[node].smallest; }  // the vertex count for an empty set

  // Adds an empty set and returns its node.
  int add_set();

  // Adds a sequence of nodes from which nothing more will hang, and returns its node. `shape` is a hash of
  // their shapes in their order.
  int add_sequence(std::span<const int> members, Shape shape);

  // Hangs the child, from which nothing more will hang, from a vertex or set, over an edge of this weight
  // seen from the child; 0 if the graph has no weights, or for no edge.
  void attach(int child, int parent, Shape weight = 0);

  // Puts the parts of vertices and sets in order. After this nothing is attached or added any more.
  void arrange();

  // The vertices and sets with several parts, in ascending order, once they are arranged.
  std::span<const int> branching_nodes() const { return branching_nodes_; }

  // The parts of a node, once they are arranged.
  std::span<const int> parts(int node) const {
    return {parts_.data() + nodes_[node].first, std::size_t{nodes_[node].length}};
  }

  // Appends the moves, in no order, that carry all vertices of one node to those of another one of the same
  // shape; no moves if the two are the same. The members of a sequence are carried to those of the other one
  // in their order, or in reversed order if is_reversed. The moves keep colours, loops and the edges inside
  // the nodes; the weights of these edges are not compared. Returns false, with moves that mean nothing, if
  // the two differ in spite of their shapes.
  bool carry(int from, int to, SparsePermutation& moves, bool is_reversed = false);

 private:
  void set_parent(int node, int parent);
  void sort_parts(int node);

  // Kept small, because every step goes to nodes that are far apart in memory.
  struct Node {
    Shape shape = 0;   // mixed once the node is a part; before that a sum over itself and its parts
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
  std::vector<int> branching_nodes_;
  std::vector<std::pair<int, int>> pending_;  // nodes still to be carried
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_REDUCTION_FIBRE_FOREST_H

// The chains of a graph's core: what is left when pendant trees are taken off is made of anchors, vertices
// with at least three edge ends, and of paths of vertices with two between them.
//
// A chain leads from anchor to anchor, perhaps back to the same one, with any number of inner vertices; an
// edge between anchors is a chain without any. A part of the core without anchors is a cycle. Example: in a
// model of submodels that are joined in pairs, submodel - local variable - join - local variable - submodel
// is a chain with three inner vertices.
//
// Cost: linear in the edges of the core.

#ifndef SYMFOLD_ENGINES_REDUCTION_CORE_CHAINS_H
#define SYMFOLD_ENGINES_REDUCTION_CORE_CHAINS_H

#include <cstddef>
#include <span>
#include <vector>

#include "engines/graph/coloured_graph.h"

namespace symfold::detail {

class CoreChains {
 public:
  struct Chain {
    int from;
    int to;
    std::size_t begin;  // of its inner vertices
    std::size_t end;
  };

  // `degree` counts each vertex's edge ends inside the core, 2 at least, and is 0 or less outside it.
  CoreChains(const ColouredGraph& graph, const PointVector<int>& degree);

  // Makes the inner vertex an anchor. To be followed by find().
  void add_anchor(int v) { is_anchor_[v] = 1; }

  // Finds all chains and cycles anew.
  void find();

  std::span<const int> core() const { return core_; }
  bool is_anchor(int v) const { return is_anchor_[v] != 0; }
  std::span<const Chain> chains() const { return chains_; }
  std::span<const Chain> cycles() const { return cycles_; }  // from and to mean nothing
  std::span<const int> inner_vertices(const Chain& chain) const {
    return std::span(inner_).subspan(chain.begin, chain.end - chain.begin);
  }

 private:
  void follow(int from, int first, std::vector<Chain>& found);
  int next_vertex(int before, int v) const;

  const ColouredGraph& graph_;
  const PointVector<int>& degree_;
  std::vector<int> core_;  // its vertices, in ascending order
  PointVector<char> is_anchor_;
  PointVector<char> is_inner_;  // of a chain or cycle found
  std::vector<Chain> chains_;
  std::vector<Chain> cycles_;
  std::vector<int> inner_;  // of all chains and cycles, one after the other
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_REDUCTION_CORE_CHAINS_H

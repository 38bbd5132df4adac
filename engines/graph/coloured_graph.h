// A graph with coloured vertices, stored for refinement: the neighbours of each vertex are consecutive. Its
// edges may have weights and directions.

#ifndef SYMFOLD_ENGINES_GRAPH_COLOURED_GRAPH_H
#define SYMFOLD_ENGINES_GRAPH_COLOURED_GRAPH_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engines/base/point_vector.h"

namespace symfold::detail {

struct Edge {
  int from;
  int to;
};

// The weight is a colour: only equality counts. A directed edge leads from `from` to `to`.
struct WeightedEdge {
  int from;
  int to;
  std::uint64_t weight;
  bool is_directed;
};

// An edge seen from one of its ends, with a weight that may differ from the weight seen from the other end.
struct HalfEdge {
  int from;
  int to;
  std::uint64_t weight;
};

// Vertices are 0 .. n-1. An automorphism keeps the colour of every vertex and, between every two vertices and
// at every vertex (loops), how many edges there are of each direction and weight.
class ColouredGraph {
 public:
  ColouredGraph() = default;

  // Colour c is that of the vertices from boundaries[c-1] (0 for c = 0) up to, not including, boundaries[c]
  // (n for the last). Preconditions: the boundaries ascend strictly within 1 .. n-1; all endpoints are
  // vertices.
  ColouredGraph(int n, const std::vector<int>& boundaries, const std::vector<Edge>& edges);

  // Colours and endpoints as above. All edges between two vertices become one, whose weight seen from an end
  // is a code of their directions and weights: equal codes stand for equal multisets, without chance. A graph
  // whose edges have no direction and one weight is stored as an unweighted one. Cost: edges are sorted.
  static ColouredGraph weighted(int n, const std::vector<int>& boundaries,
                                const std::vector<WeightedEdge>& edges);

  // Makes a simple graph with these weights; colour is by vertex. Preconditions: every edge is given from
  // both its ends, in ascending order of (from, to); none is a loop, no two have the same ends.
  ColouredGraph(const PointVector<int>& colour, const std::vector<HalfEdge>& edges);

  struct Kind {
    int colour = 0;
    int loops = 0;  // their number; with weights, a code of directions and weights

    bool operator==(const Kind&) const = default;
  };

  int vertex_count() const { return kinds_.size(); }
  Kind kind(int v) const { return kinds_[v]; }
  int colour(int v) const { return kinds_[v].colour; }
  int loops(int v) const { return kinds_[v].loops; }

  // The neighbours of v; loops are left out. In a graph without weights a neighbour appears once for each
  // edge, with weights once, and neighbours ascend.
  std::span<const int> neighbours(int v) const {
    const auto i = static_cast<std::size_t>(v);
    return {neighbours_.data() + first_[i], first_[i + 1] - first_[i]};
  }

  bool has_weights() const { return !weights_.empty(); }

  // The weights of the edges to these neighbours, seen from v. Empty if the graph has no weights: each edge
  // then has weight 1. If made from weighted edges, equal weights from one end mean equal weights from the
  // other.
  std::span<const std::uint64_t> weights(int v) const {
    if (weights_.empty()) return {};
    const auto i = static_cast<std::size_t>(v);
    return {weights_.data() + first_[i], first_[i + 1] - first_[i]};
  }

  // The weight, seen from v, of the edge to a neighbour. Precondition: the graph has weights. Cost:
  // logarithmic.
  std::uint64_t weight(int v, int neighbour) const;

 private:
  void set_half_edges(const std::vector<HalfEdge>& edges);

  PointVector<Kind> kinds_;
  std::vector<std::size_t> first_{0};  // of each vertex's neighbours, and the number of all
  std::vector<int> neighbours_;
  std::vector<std::uint64_t> weights_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GRAPH_COLOURED_GRAPH_H

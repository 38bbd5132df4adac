// An undirected graph with coloured vertices, stored for refinement: the neighbours of each vertex are
// consecutive.

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

// An edge seen from one of its ends, with a weight that may differ from the weight seen from the other end.
struct DirectedEdge {
  int from;
  int to;
  std::uint64_t weight;
};

// Vertices are 0 .. n-1. An automorphism keeps the colour of every vertex, the number of edges between every
// two vertices (parallel edges count), the weight of every edge from both its ends, and the number of loops
// at every vertex.
class ColouredGraph {
 public:
  ColouredGraph() = default;

  // Colour c is that of the vertices from boundaries[c-1] (0 for c = 0) up to, not including, boundaries[c]
  // (n for the last). Preconditions: the boundaries ascend strictly within 1 .. n-1; all endpoints are
  // vertices.
  ColouredGraph(int n, const std::vector<int>& boundaries, const std::vector<Edge>& edges);

  // Makes a simple graph with weights; colour is by vertex. Preconditions: every edge is given from both its
  // ends, in ascending order of `from`; none is a loop.
  ColouredGraph(const PointVector<int>& colour, const std::vector<DirectedEdge>& edges);

  struct Kind {
    int colour = 0;
    int loops = 0;

    bool operator==(const Kind&) const = default;
  };

  int vertex_count() const { return kinds_.size(); }
  Kind kind(int v) const { return kinds_[v]; }
  int colour(int v) const { return kinds_[v].colour; }
  int loops(int v) const { return kinds_[v].loops; }

  // The neighbours of v. A neighbour appears once for each edge; loops are left out.
  std::span<const int> neighbours(int v) const {
    const auto i = static_cast<std::size_t>(v);
    return {neighbours_.data() + first_[i], first_[i + 1] - first_[i]};
  }

  bool has_weights() const { return !weights_.empty(); }

  // The weights of the edges to these neighbours. Empty if the graph has no weights: each edge then has
  // weight 1.
  std::span<const std::uint64_t> weights(int v) const {
    if (weights_.empty()) return {};
    const auto i = static_cast<std::size_t>(v);
    return {weights_.data() + first_[i], first_[i + 1] - first_[i]};
  }

 private:
  PointVector<Kind> kinds_;
  std::vector<std::size_t> first_{0};  // of each vertex's neighbours, and the number of all
  std::vector<int> neighbours_;
  std::vector<std::uint64_t> weights_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GRAPH_COLOURED_GRAPH_H

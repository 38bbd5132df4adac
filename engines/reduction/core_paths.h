// The core of a graph as anchors and the paths between them. (These are paths of the graph; the paths of
// path_search.h are those of a search tree.)
//
// The core is what is left when pendant trees are taken off. It consists of anchors, which are vertices with
// at least three edge ends in the core, and of vertices with two. A core path leads from an anchor to an
// anchor, perhaps back to the same one, over any number of inner vertices with two edge ends each. An edge
// between anchors is a core path without inner vertices. A component of the core without anchors is a cycle.
// Example: if submodels are joined in pairs, submodel - local variable - join - local variable - submodel is
// a core path with three inner vertices.
//
// Cost: linear in the edges of the core.

#ifndef SYMFOLD_ENGINES_REDUCTION_CORE_PATHS_H
#define SYMFOLD_ENGINES_REDUCTION_CORE_PATHS_H

#include <cstddef>
#include <span>
#include <vector>

#include "engines/graph/coloured_graph.h"

namespace symfold::detail {

class CorePaths {
 public:
  struct Path {
    int from;
    int to;
    std::size_t begin;  // of its inner vertices
    std::size_t end;
  };

  // `degree` counts each vertex's edge ends inside the core, at least 2, and is 0 or less outside it. Graph
  // and degrees must outlive this. Nothing is found before find().
  CorePaths(const ColouredGraph& graph, const PointVector<int>& degree);

  // Makes an inner vertex an anchor, which takes effect with the next find().
  void add_anchor(int v) { is_anchor_[v] = 1; }

  // Finds all paths and cycles, in place of those found before.
  void find();

  std::span<const int> core() const { return core_; }
  bool is_anchor(int v) const { return is_anchor_[v] != 0; }
  std::span<const Path> paths() const { return paths_; }
  std::span<const Path> cycles() const { return cycles_; }  // from and to mean nothing
  std::span<const int> inner_vertices(const Path& path) const {
    return std::span(inner_).subspan(path.begin, path.end - path.begin);
  }

 private:
  void follow(int from, int first, std::vector<Path>& found);
  int next_vertex(int before, int v) const;

  const ColouredGraph& graph_;
  const PointVector<int>& degree_;
  std::vector<int> core_;  // its vertices, in ascending order
  PointVector<char> is_anchor_;
  PointVector<char> is_inner_;  // of a path or cycle found
  std::vector<Path> paths_;
  std::vector<Path> cycles_;
  std::vector<int> inner_;  // of all paths and cycles, one after the other
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_REDUCTION_CORE_PATHS_H

// Builds composition graphs: a vertex per submodel, per join, and per variable that a join binds, the latter
// between the other two and coloured by the submodel's type and the variable's name.

#ifndef SYMFOLD_BENCH_COMPOSITION_H
#define SYMFOLD_BENCH_COMPOSITION_H

#include <string>
#include <vector>

#include "engines/graph/coloured_graph.h"

namespace symfold::detail {

// What a ColouredGraph is made of.
struct GraphParts {
  int n = 0;
  std::vector<int> boundaries;
  std::vector<Edge> edges;
};

enum class GraphKind { kComposition, kBare };  // bare: a graph of other origin

struct NamedGraph {
  std::string name;
  GraphParts parts;
  GraphKind kind = GraphKind::kComposition;
};

// Parts are added in any order. finish() numbers them as detection does, by colour: types in the order of
// their numbers, joins, variables.
class Composition {
 public:
  static constexpr int kMaxTypes = 64;  // also the bound on the variables of a type

  // Preconditions: the type is in 0 .. kMaxTypes-1.
  int add_submodel(int type = 0) { return add(type); }

  // Adds submodels in a row and returns the first: the others' numbers follow.
  int add_submodels(int count, int type = 0);

  int add_join() { return add(kMaxTypes); }

  // Precondition: the variable is in 0 .. kMaxTypes-1.
  void bind(int join, int submodel, int variable = 0);

  // Adds a join of two submodels.
  void link(int a, int b, int a_variable = 0, int b_variable = 0);

  int vertex_count() const { return static_cast<int>(colours_.size()); }

  GraphParts finish() &&;

 private:
  int add(int colour) {
    colours_.push_back(colour);
    return static_cast<int>(colours_.size()) - 1;
  }

  std::vector<int> colours_;
  std::vector<Edge> edges_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_BENCH_COMPOSITION_H

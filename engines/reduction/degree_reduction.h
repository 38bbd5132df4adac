// Reduction of a graph to its vertices of degree three and more.
//
// Most vertices of a composition graph have degree one or two: local variables, and often submodels and
// joins. Pendant trees are taken off, leaf by leaf. In what is left, all core paths between two anchors are
// replaced by one edge, with a weight that tells what they are made of. What is taken out joins the fibre of
// a vertex or edge of the reduced graph (fibre_forest.h, core_paths.h). The automorphism group is then the
// product of
//
//   - the fibres' own symmetries: exchanges of twins, exchanges of parallel core paths, reversals of a core
//     path from a vertex back to it, exchanges of whole components that are trees or cycles, rotations and
//     reflections of cycles;
//   - one automorphism for each automorphism of the reduced graph: its lift, which carries fibres to fibres
//     in their fixed orders.
//
// Example: 255 submodels with a join between every two: 97,410 vertices shrink to 255, each two of them with
// the same weight between them.
//
// Strong generators stay strong. The reduced vertices are numbered by the smallest vertex of their own fibre
// and of those of their edges. To fix all vertices below some b is to fix the reduced vertices whose number
// comes from below b, and whatever in the fibres lies below b. Lifts of automorphisms that fix both ends of a
// fibre move nothing in it. One thing could break this: the middle of a reversible core path can be fixed
// without its ends being fixed. If such a middle comes before the fibres of both ends, it stays in the
// reduced graph, for all core paths of its kind.
//
// Shapes and weights are hashes. Two shapes that agree by chance show when one fibre is carried to another.
// So the fibres' own symmetries are automorphisms by their making: a tree hangs from one edge, a core path
// from its ends, and all edges inside are compared. If the graph has weights, shapes hash those of the edges
// inside and of the edge to what a fibre hangs from, each seen from one end, which determines the other; and
// each symmetry of a fibre is checked against the graph's weights, which costs as much as writing down its
// moves: the vertices that it moves have few edges outside the fibre. A lift need not be an automorphism,
// since weights can agree by chance. It has to be checked, and if the check fails, the graph has to be
// searched as it is.
//
// Cost: linear, but for sorting the core paths and anchors. That taking off all leaves again and again ends
// at one or two centres: C. Jordan, Sur les assemblages de lignes, 1869.

#ifndef SYMFOLD_ENGINES_REDUCTION_DEGREE_REDUCTION_H
#define SYMFOLD_ENGINES_REDUCTION_DEGREE_REDUCTION_H

#include <functional>
#include <span>
#include <vector>

#include "engines/reduction/core_paths.h"
#include "engines/reduction/fibre_forest.h"

namespace symfold::detail {

class DegreeReduction {
 public:
  using Visitor = std::function<bool(const SparsePermutation&)>;

  // Returns true if enough vertices have a degree below three for a reduction to pay.
  static bool is_worthwhile(const ColouredGraph& graph);

  // The graph must outlive this.
  explicit DegreeReduction(const ColouredGraph& graph);

  const ColouredGraph& reduced() const { return reduced_; }

  // Calls `visit` with the moves, in no order, of each of the strong generators of the fibres' own
  // symmetries. Stops and returns false if `visit` does, or if hashes turn out to agree by chance.
  bool for_each_fibre_symmetry(const Visitor& visit);

  // Writes the moves, in no order, of the lift of an automorphism of the reduced graph. The caller has to
  // check that they are an automorphism. Returns false if hashes turn out to agree by chance.
  bool lift(std::span<const PointMove> moves, SparsePermutation& lifted);

 private:
  // A core path seen from one of its ends, which are given by their reduced numbers.
  struct Arc {
    int from;
    int to;
    Shape shape;
    int smallest_vertex;
    int sequence;  // of the inner vertices; -1 for none
    bool is_reversed;
  };
  struct Cycle {
    int node;
    int period;
    int reflection;  // exchanges the positions i and reflection - i; -1 for none
  };

  PointVector<int> attach_trees();
  int attach_leaf(const PointVector<int>& degree, int v);
  Shape weight(int v, int neighbour) const;
  Shape forward_shape(const CorePaths::Path& path) const;
  Shape backward_shape(const CorePaths::Path& path) const;
  template <class Iterator>
  Shape shape_of_path(int from, Iterator begin, Iterator end, int to) const;
  template <class Iterator>
  void add_weights_around(Iterator begin, Iterator end, std::vector<Shape>& shapes) const;
  void keep_middles();
  void attach_loops();
  void attach_cycle(std::span<const int> vertices);
  void number_anchors();
  void make_arcs();
  void sort_arcs();
  void make_reduced_graph();

  bool visit_all(const Visitor& visit);
  bool exchange_twins(int node, const Visitor& visit);
  bool exchange_parallels(const Visitor& visit);
  bool reverse_loops(const Visitor& visit);
  bool rotate_and_reflect(const Cycle& cycle, const Visitor& visit);
  bool exchange(int a, int b, bool is_reversed, const Visitor& visit);
  bool lift_vertex(PointMove move, SparsePermutation& lifted);
  std::span<const Arc> arcs_between(int from, int to) const;

  const ColouredGraph& graph_;
  FibreForest forest_;
  int components_;           // the set of the components that are trees or cycles
  PointVector<int> degree_;  // inside the core; -1 for a vertex taken off
  CorePaths paths_;
  std::vector<int> reversible_loops_;
  std::vector<Cycle> cycles_;
  PointVector<int> anchors_;    // by reduced number
  PointVector<int> number_;     // of an anchor
  std::vector<Arc> arcs_;       // by from, to, shape and smallest vertex
  PointVector<int> first_arc_;  // per reduced vertex, and the number of all
  PointVector<int> image_;      // of reduced vertices; the identity between calls
  ColouredGraph reduced_;
  SparsePermutation moves_;  // of the current symmetry
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_REDUCTION_DEGREE_REDUCTION_H

// Reduction of a graph to its vertices of degree three and more.
//
// Most vertices of a composition graph have degree one or two: local variables, and often submodels and
// joins. Pendant trees are taken off, leaf by leaf; the chains of what is left are replaced by edges, with a
// weight that tells what the chains between two vertices are made of. What is taken out joins the fibre of a
// vertex or edge of the reduced graph (fibre_forest.h, core_chains.h). The automorphism group is then the
// product of
//
//   - the fibres' own symmetries: exchanges of twins, of parallel chains, of the two ends of a chain from a
//     vertex back to it; exchanges of whole components that are trees or cycles; rotations and reflections
//     of cycles;
//   - one automorphism for each of the reduced graph: its lift carries fibres to fibres in their fixed
//     orders.
//
// Example: 255 submodels with a join between every two: 97,410 vertices shrink to 255, each two of them with
// the same weight between them.
//
// Strong generators stay strong. The reduced vertices are numbered by the smallest vertex of their own fibre
// and of those of their edges. To fix all vertices below some b is to fix the reduced vertices whose number
// comes from below b, and whatever in the fibres lies below b; and lifts of automorphisms that fix both ends
// of a fibre move nothing in it. One thing could break this: the middle of a chain that can be turned round
// is fixed without its ends being so. Where such a middle comes before the fibres of both ends, it stays in
// the reduced graph, for all chains of its kind.
//
// Shapes and weights are hashes. Two shapes that agree by chance show when one fibre is carried to another.
// So the fibres' own symmetries are automorphisms by their making: a tree hangs by one edge, a chain by its
// ends, and all edges inside are compared. What is lifted need not be one, where weights agreed by chance,
// and is to be checked. The graph is then to be searched as it is.
//
// Cost: linear, but for sorting the chains and anchors. That taking off all leaves again and again ends at
// one or two centres: C. Jordan, Sur les assemblages de lignes, 1869.

#ifndef SYMFOLD_ENGINES_REDUCTION_DEGREE_REDUCTION_H
#define SYMFOLD_ENGINES_REDUCTION_DEGREE_REDUCTION_H

#include <functional>
#include <span>
#include <vector>

#include "engines/reduction/core_chains.h"
#include "engines/reduction/fibre_forest.h"

namespace symfold::detail {

class DegreeReduction {
 public:
  using Use = std::function<bool(const SparsePermutation&)>;

  // Whether enough vertices have a degree below three for a reduction to pay.
  static bool is_worthwhile(const ColouredGraph& graph);

  // The graph must outlive this.
  explicit DegreeReduction(const ColouredGraph& graph);

  const ColouredGraph& reduced() const { return reduced_; }

  // Gives `use` the moves, in no order, of strong generators of the fibres' own symmetries, until it returns
  // false. False then, and where hashes agreed by chance.
  bool for_each_own_symmetry(const Use& use);

  // The moves, in no order, of the lift of an automorphism of the reduced graph, which are to be checked.
  // False where hashes agreed by chance.
  bool lift(std::span<const PointMove> moves, SparsePermutation& lifted);

 private:
  // A chain seen from one of its ends, by reduced numbers.
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

  PointVector<int> take_off_trees();
  int hang_leaf(const PointVector<int>& degree, int v);
  void keep_middles();
  void hang_loops();
  void hang_cycle(std::span<const int> vertices);
  void number_anchors();
  void make_arcs();
  void sort_arcs();
  void make_reduced_graph();

  bool exchange_twins(int node, const Use& use);
  bool exchange_parallels(const Use& use);
  bool turn_loops(const Use& use);
  bool turn_cycle(const Cycle& cycle, const Use& use);
  bool exchange(int a, int b, bool is_reversed, const Use& use);
  bool lift_vertex(PointMove move, SparsePermutation& lifted);
  std::span<const Arc> arcs_between(int from, int to) const;

  const ColouredGraph& graph_;
  FibreForest forest_;
  int components_;           // the set of those that are trees or cycles
  PointVector<int> degree_;  // inside the core; -1 once taken off
  CoreChains chains_;
  std::vector<int> turning_loops_;
  std::vector<Cycle> cycles_;
  PointVector<int> anchors_;    // by reduced number
  PointVector<int> number_;     // of an anchor
  std::vector<Arc> arcs_;       // by from, to, shape and smallest vertex
  PointVector<int> first_arc_;  // per reduced vertex, and the number of all
  PointVector<int> image_;      // of reduced vertices; the identity between calls
  ColouredGraph reduced_;
  SparsePermutation moves_;  // of the symmetry at hand
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_REDUCTION_DEGREE_REDUCTION_H

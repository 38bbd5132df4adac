// The part of an automorphism search that answers questions with many wrong choices.
//
// As in paired_descent.h, the question is if an automorphism that fixes the earlier vertices of the first
// path carries its vertex v(i) to w. Below both nodes lies a tree: the next cell is a function of the cells
// alone, and each member of it leads to a child. An automorphism carries the whole left tree to the right
// one. So a single path is enough on the right: whatever it individualises, some path of the left tree is
// refined alike, and at its end the two sides show the automorphism. The left tree is the same for all w of a
// level. It is kept, with a hash of each child's trace, and grows only where a right path led. A right path
// is mostly refuted by its first hash.
//
// Children that known automorphisms carry into each other have like subtrees, and one of them is enough.
// Those that count are products of generators that fix the node's path.
//
// Example: a strongly regular graph without symmetry. All vertices look alike, but hardly any two pairs do.
// With n vertices and k in the cell, comparing w's members with v(i)'s one by one refines n k times; here k
// children are hashed once, and each w refines once.

#ifndef SYMFOLD_ENGINES_SEARCH_SUBTREE_MATCH_H
#define SYMFOLD_ENGINES_SEARCH_SUBTREE_MATCH_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "engines/base/sparse_permutation.h"
#include "engines/search/ordered_partition.h"
#include "engines/search/refinement.h"

namespace symfold::detail {

class SubtreeMatch {
 public:
  enum class Answer { kFound, kNone, kOpen };

  // The right side is changed in place. All references must outlive this.
  SubtreeMatch(const ColouredGraph& graph, OrderedPartition& right, Refiner& right_refiner,
               const PermutationList& generators, WorkBudget& budget);

  // Moves to a level, which is given by the number of splits before it and by its vertex v(i). `end` is the
  // end of the first path, with its splits. The generators found so far must fix v(0) .. v(i).
  void set_level(const OrderedPartition& end, int splits, int vertex);

  // Answers the question for the node in which w has been individualised on the right. The right side had
  // first_split splits before that. `attempt` tries to read an automorphism off the left side, which it gets,
  // and the right one. Returns kOpen if the left tree has grown too large or the budget is spent.
  Answer run(int first_split, const std::function<bool(const OrderedPartition& left)>& attempt);

 private:
  struct Node {
    int parent;
    int vertex;          // individualised last
    std::uint64_t hash;  // of the trace that led here
    bool is_hashed;
    int first_child = -1;  // -1 while it has not been expanded
    int children_end = -1;
    std::vector<std::size_t> generators;  // that fix the vertices of its path, once it has been expanded
  };
  struct RightStep {
    int cell;
    std::uint64_t hash;
  };

  Answer visit(int node, std::size_t depth);
  bool extend_right();
  void expand(int node, int cell);
  std::uint64_t hash_of_child(int child);
  void move_left_to(int node);
  std::uint64_t individualise_left(int vertex);
  int next_cell() const;

  OrderedPartition& right_;
  Refiner& right_refiner_;
  const PermutationList& generators_;
  WorkBudget& budget_;

  OrderedPartition left_;
  Refiner left_refiner_;
  Trace trace_;
  std::vector<Node> nodes_;       // of the left tree; the root has v(i) individualised
  std::vector<int> left_path_;    // nodes from the root to where the left side is
  std::vector<int> left_splits_;  // at these nodes
  std::vector<RightStep> right_path_;
  bool has_right_ended_ = false;  // no larger cell is left that could matter
  int first_split_ = 0;
  std::size_t generator_count_ = 0;   // at the start of the level
  std::size_t noted_generators_ = 0;  // at all nodes
  int splits_before_ = 0;
  int vertex_ = -1;
  const std::function<bool(const OrderedPartition&)>* attempt_ = nullptr;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_SEARCH_SUBTREE_MATCH_H

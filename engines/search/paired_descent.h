// The part of an automorphism search that follows the moved vertices.
//
// The search asks if an automorphism that fixes the earlier vertices of the first path carries its vertex
// v(i) to w (path_search.h). The left side is the first path's node below v(i), the right side the node below
// w in its place. If a new cell holds different vertices on the two sides, some vertex of the left must move.
// It is individualised on the left. On the right, the vertices of the same cell are individualised one after
// the other until refinement runs alike. Then the next such cell follows. An automorphism that carries v(i)
// to w carries the left vertex to one of them, so running out of choices proves that there is none. Along the
// first path's own levels, by contrast, a difference may show only after thousands of levels that have
// nothing to do with it, each with choices of its own.
//
// Example: many Petersen graphs side by side, numbered at random. The first path begins in each of them; the
// descent stays in the two that are to be exchanged.

#ifndef SYMFOLD_ENGINES_SEARCH_PAIRED_DESCENT_H
#define SYMFOLD_ENGINES_SEARCH_PAIRED_DESCENT_H

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "engines/search/ordered_partition.h"
#include "engines/search/refinement.h"

namespace symfold::detail {

class PairedDescent {
 public:
  enum class Answer { kFound, kNone, kOpen };

  // `end` is the end of the first path, with its splits. The right side is changed in place. The graph, the
  // right side, its refiner and the budget must outlive this.
  PairedDescent(const ColouredGraph& graph, const OrderedPartition& end, OrderedPartition& right,
                Refiner& right_refiner, WorkBudget& budget);

  const OrderedPartition& left() const { return left_; }

  // Moves to a level, which is given by the number of splits before it and by its vertex v(i). Each level
  // must have fewer splits than the one before.
  void set_level(int splits, int vertex);

  // Descends from the node in which w has been individualised on the right. The right side had first_split
  // splits before that. `attempt` tries to read an automorphism off the two sides; it may skip the attempt
  // unless is_last. Returns kFound if an attempt succeeds and kNone if there is no such automorphism. kOpen
  // proves nothing: no cell differs and yet the last attempt failed, refinement failed more often than
  // max_failures, or the budget is spent.
  Answer run(int first_split, int max_failures, const std::function<bool(bool is_last)>& attempt);

 private:
  struct Step {
    int split;         // of the right side, whose new cell differs
    int preferred;     // the vertex tried first on the right
    int latest;        // the latest one after it; the others are tried in ascending order
    int right_splits;  // in effect before the step
    int left_splits;   // in effect after the step
    std::size_t trace_begin;
    std::size_t trace_end;
  };

  void restart_left();
  bool take_step(int split, int on_left, int on_right);
  bool compare(const Step& step, int candidate);
  int backtrack();
  std::pair<int, int> differing_pair(int cell) const;

  OrderedPartition left_;
  Refiner left_refiner_;
  OrderedPartition& right_;
  Refiner& right_refiner_;
  WorkBudget& budget_;
  Trace trace_;  // of the steps, one after the other
  std::vector<Step> steps_;

  // The level. Its first descent individualises v(i) on the left, since many levels have no descent.
  int splits_before_ = 0;
  int vertex_ = -1;
  bool is_individualised_ = false;
  int splits_after_ = 0;  // v(i) has been individualised
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_SEARCH_PAIRED_DESCENT_H

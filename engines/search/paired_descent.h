// The part of an automorphism search that goes where the moved vertices are.
//
// Left stands the first path's node below v(i), right the node below w in its place. Wherever a new cell
// holds different vertices on the two sides, some vertex of the left must move: it is individualised, and on
// the right one vertex of the same cell after the other until refinement runs alike; then the next such cell.
// An automorphism that carries v(i) to w carries the left vertex to one of them, so that running out of
// choices is a proof that there is none. Along the first path's own levels, by contrast, a difference may
// show only after thousands of levels that have nothing to do with it, each with choices of its own.
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

  // Takes the end of the first path, with its splits; works on the right side in place. All must outlive
  // this.
  PairedDescent(const ColouredGraph& graph, const OrderedPartition& end, OrderedPartition& right,
                Refiner& right_refiner);

  const OrderedPartition& left() const { return left_; }

  // Tells the level: the left side's first splits, and v(i). Each has fewer splits than the one before.
  void return_to(int splits, int vertex);

  // From the node where w has been individualised on the right, which had first_split splits before.
  // `attempt` tries to read an automorphism off the two sides, as it thinks fit or, at the end, in any case.
  // kOpen: no cell differs and yet there is none, or refinement has failed more than so often; nothing is
  // proved.
  Answer run(int first_split, int max_failures, const std::function<bool(bool is_last)>& attempt);

 private:
  struct Step {
    int split;         // of the right side; its cell is the one that differs
    int preferred;     // the vertex tried first
    int latest;        // the latest one after it; they are tried in ascending order
    int right_splits;  // before the step
    int left_splits;   // after it
    std::size_t trace_begin;
    std::size_t trace_end;
  };

  void enter();
  bool take_step(int split, int on_left, int on_right);
  bool compare(const Step& step, int candidate);
  int next_candidate();
  std::pair<int, int> differing_pair(int cell) const;

  OrderedPartition left_;
  Refiner left_refiner_;
  OrderedPartition& right_;
  Refiner& right_refiner_;
  Trace trace_;  // of the steps, one after the other
  std::vector<Step> steps_;

  // The level. The first descent from it individualises v(i), since many levels have none.
  int base_splits_ = 0;
  int vertex_ = -1;
  bool is_entered_ = false;
  int level_splits_ = 0;  // once v(i) has been individualised
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_SEARCH_PAIRED_DESCENT_H

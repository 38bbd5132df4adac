#include "engines/search/paired_descent.h"

#include <algorithm>

#include "engines/search/partial_image.h"

namespace symfold::detail {

PairedDescent::PairedDescent(const ColouredGraph& graph, const OrderedPartition& end, OrderedPartition& right,
                             Refiner& right_refiner, WorkBudget& budget)
    : left_(end),
      left_refiner_(graph, left_, budget),
      right_(right),
      right_refiner_(right_refiner),
      budget_(budget) {}

void PairedDescent::set_level(int splits, int vertex) {
  splits_before_ = splits;
  vertex_ = vertex;
  is_individualised_ = false;
}

void PairedDescent::restart_left() {
  if (std::exchange(is_individualised_, true)) {
    left_.undo(splits_after_);
  } else {
    left_.undo(splits_before_);
    left_refiner_.individualise_and_record(vertex_, trace_);
    splits_after_ = left_.split_count();
  }
  trace_.clear();
  steps_.clear();
}

PairedDescent::Answer PairedDescent::run(int first_split, int max_failures,
                                         const std::function<bool(bool is_last)>& attempt) {
  if (max_failures == 0) return Answer::kOpen;
  restart_left();
  int failures = 0;
  for (int split = first_split; split < right_.split_count();) {
    const auto [on_left, on_right] = differing_pair(right_.split_at(split).start);
    if (on_left < 0) {
      ++split;
      continue;
    }
    bool has_same_trace = take_step(split, on_left, on_right);
    while (!has_same_trace) {
      if (budget_.is_spent()) return Answer::kOpen;
      const int candidate = backtrack();
      if (candidate < 0) return Answer::kNone;
      if (++failures > max_failures) return Answer::kOpen;
      has_same_trace = compare(steps_.back(), candidate);
    }
    if (attempt(false)) return Answer::kFound;
    split = steps_.back().split;
  }
  return attempt(true) ? Answer::kFound : Answer::kOpen;
}

bool PairedDescent::take_step(int split, int on_left, int on_right) {
  const std::size_t trace_begin = trace_.size();
  left_refiner_.individualise_and_record(on_left, trace_);
  steps_.push_back(
      {split, on_right, -1, right_.split_count(), left_.split_count(), trace_begin, trace_.size()});
  return compare(steps_.back(), on_right);
}

bool PairedDescent::compare(const Step& step, int candidate) {
  const std::span trace(trace_);
  return right_refiner_.individualise_and_compare(
      candidate, trace.subspan(step.trace_begin, step.trace_end - step.trace_begin));
}

// Takes both sides back to the deepest step that has a candidate left, and returns the candidate; -1 for
// none.
int PairedDescent::backtrack() {
  for (; !steps_.empty(); steps_.pop_back()) {
    Step& step = steps_.back();
    right_.undo(step.right_splits);
    budget_.spend(static_cast<std::size_t>(right_.length(right_.split_at(step.split).start)));
    step.latest = right_.next_member(right_.split_at(step.split).start, step.latest, step.preferred);
    if (step.latest < 0) continue;
    left_.undo(step.left_splits);
    trace_.resize(step.trace_end);
    return step.latest;
  }
  return -1;
}

// Returns a vertex that the cell holds on the left only, and one that it holds on the right only: the end of
// the run of pairs that leads to the former, if that end is such a vertex. Returns -1 twice if the cell holds
// the same vertices on both sides.
std::pair<int, int> PairedDescent::differing_pair(int cell) const {
  if (right_.length(cell) == 1) return {-1, -1};
  const auto on_left =
      std::ranges::find_if(left_.members(cell), [&](int v) { return right_.cell_of(v) != cell; });
  if (on_left == left_.members(cell).end()) return {-1, -1};
  const int end = end_of_run(left_, right_, *on_left);
  if (right_.cell_of(end) == cell && left_.cell_of(end) != cell) return {*on_left, end};
  return {*on_left,
          *std::ranges::find_if(right_.members(cell), [&](int v) { return left_.cell_of(v) != cell; })};
}

}  // namespace symfold::detail

#include "engines/search/paired_descent.h"

#include <algorithm>

#include "engines/search/partial_image.h"

namespace symfold::detail {

PairedDescent::PairedDescent(const ColouredGraph& graph, const OrderedPartition& end, OrderedPartition& right,
                             Refiner& right_refiner)
    : left_(end), left_refiner_(graph, left_), right_(right), right_refiner_(right_refiner) {}

void PairedDescent::return_to(int splits, int vertex) {
  base_splits_ = splits;
  vertex_ = vertex;
  is_entered_ = false;
}

void PairedDescent::enter() {
  if (std::exchange(is_entered_, true)) {
    left_.undo(level_splits_);
  } else {
    left_.undo(base_splits_);
    left_refiner_.individualise_and_record(vertex_, trace_);
    level_splits_ = left_.split_count();
  }
  trace_.clear();
  steps_.clear();
}

PairedDescent::Answer PairedDescent::run(int first_split, int max_failures,
                                         const std::function<bool(bool is_last)>& attempt) {
  if (max_failures == 0) return Answer::kOpen;
  enter();
  int failures = 0;
  for (int split = first_split; split < right_.split_count();) {
    const auto [on_left, on_right] = differing_pair(right_.split_at(split).start);
    if (on_left < 0) {
      ++split;
      continue;
    }
    bool is_alike = take_step(split, on_left, on_right);
    while (!is_alike) {
      const int candidate = next_candidate();
      if (candidate < 0) return Answer::kNone;
      if (++failures > max_failures) return Answer::kOpen;
      is_alike = compare(steps_.back(), candidate);
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

// Of the deepest step that has one left, to which both sides go back; -1 for none.
int PairedDescent::next_candidate() {
  for (; !steps_.empty(); steps_.pop_back()) {
    Step& step = steps_.back();
    right_.undo(step.right_splits);
    step.latest = right_.next_member(right_.split_at(step.split).start, step.latest, step.preferred);
    if (step.latest < 0) continue;
    left_.undo(step.left_splits);
    trace_.resize(step.trace_end);
    return step.latest;
  }
  return -1;
}

// A vertex that the cell holds on the left only, and one that it holds on the right only; the latter closes
// the chain of pairs that leads to the former, if it can. -1 where the cell holds the same vertices.
std::pair<int, int> PairedDescent::differing_pair(int cell) const {
  if (right_.length(cell) == 1) return {-1, -1};
  const auto on_left =
      std::ranges::find_if(left_.members(cell), [&](int v) { return right_.cell_of(v) != cell; });
  if (on_left == left_.members(cell).end()) return {-1, -1};
  const int closing = closing_vertex(left_, right_, *on_left);
  if (right_.cell_of(closing) == cell && left_.cell_of(closing) != cell) return {*on_left, closing};
  return {*on_left,
          *std::ranges::find_if(right_.members(cell), [&](int v) { return left_.cell_of(v) != cell; })};
}

}  // namespace symfold::detail

#include "engines/search/refinement.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "engines/base/mix.h"

namespace symfold::detail {
namespace {

std::uint64_t place_and_count(int place, std::uint64_t count) {
  return (static_cast<std::uint64_t>(place) << 32) + count;
}

// Returns what an edge of this weight counts: at most 2^32, so that sums over a vertex's edges do not
// overflow. Different weights may count alike; then vertices stay together that their weights would tell
// apart.
std::uint64_t count_of(std::uint64_t weight) { return 1 + (weight & 0xffffffff); }

}  // namespace

PointVector<std::uint64_t> colour_keys(const ColouredGraph& graph) {
  PointVector<std::uint64_t> keys(graph.vertex_count());
  for (int v = 0; v < keys.size(); ++v)
    keys[v] = place_and_count(graph.colour(v), static_cast<std::uint64_t>(graph.loops(v)));
  return keys;
}

Refiner::Refiner(const ColouredGraph& graph, OrderedPartition& partition, WorkBudget& budget)
    : graph_(graph),
      partition_(partition),
      budget_(budget),
      is_queued_(graph.vertex_count(), 0),
      count_(graph.vertex_count(), 0),
      touched_(graph.vertex_count(), 0) {}

void Refiner::refine_by(const PointVector<std::uint64_t>& keys) {
  std::vector<std::pair<std::uint64_t, int>> order;
  order.reserve(static_cast<std::size_t>(keys.size()));
  for (int v = 0; v < keys.size(); ++v) order.emplace_back(keys[v], v);
  if (!std::is_sorted(order.begin(), order.end())) std::sort(order.begin(), order.end());
  PointVector<int> starts;
  for (int position = 0; position < keys.size(); ++position) {
    const auto& [key, v] = order[static_cast<std::size_t>(position)];
    partition_.place(v, position);
    if (position == 0 || key != order[static_cast<std::size_t>(position) - 1].first)
      starts.push_back(position);
  }
  for (int i = starts.size() - 1; i > 0; --i) partition_.split(0, starts[i]);
  for (const int start : starts) enqueue(start);
  Trace unused;
  recorded_ = &unused;
  run();
}

void Refiner::individualise_and_record(int v, Trace& trace) {
  recorded_ = &trace;
  individualise(v);
  run();
}

bool Refiner::individualise_and_compare(int v, std::span<const std::uint64_t> trace) {
  recorded_ = nullptr;
  expected_ = trace;
  individualise(v);
  return run() && expected_.empty();
}

void Refiner::individualise(int v) {
  const int cell = partition_.cell_of(v);
  const int last = cell + partition_.length(cell) - 1;
  partition_.move_within_cell(v, last);
  partition_.split(cell, last);
  enqueue(last);
}

// Once every cell has a single member, nothing is left to split. On every path that happens at the same
// event.
bool Refiner::run() {
  bool has_same_trace = true;
  while (has_same_trace && queue_head_ < queue_.size() && !partition_.is_discrete()) {
    const int splitter = queue_[queue_head_++];
    is_queued_[splitter] = 0;
    has_same_trace = apply_splitter(splitter) && !budget_.is_spent();
  }
  clear_work();
  return has_same_trace;
}

// The members are copied because the splitter itself may be split or its members exchanged.
bool Refiner::apply_splitter(int splitter) {
  const auto members = partition_.members(splitter);
  splitter_members_.assign(members.begin(), members.end());
  unsplit_hash_ = 0;
  std::size_t edges = splitter_members_.size();
  for (const int v : splitter_members_) {
    const auto neighbours = graph_.neighbours(v);
    edges += neighbours.size();
    if (graph_.has_weights()) {
      const auto weights = graph_.weights(v);
      for (std::size_t i = 0; i < neighbours.size(); ++i) count_edge_to(neighbours[i], count_of(weights[i]));
    } else {
      for (const int neighbour : neighbours) count_edge_to(neighbour, 1);
    }
  }
  work_ += edges - splitter_members_.size();
  budget_.spend(edges);
  return split_touched_cells();
}

void Refiner::count_edge_to(int v, std::uint64_t count) {
  const int cell = partition_.cell_of(v);
  const int length = partition_.length(cell);
  if (length == 1) {
    unsplit_hash_ += mix(place_and_count(cell, count));
  } else if (std::exchange(count_[v], count_[v] + count) == 0) {
    if (touched_[cell]++ == 0) touched_cells_.push_back(cell);
    partition_.move_within_cell(v, cell + length - touched_[cell]);
  }
}

// The numbers of touched members are compared first. They tell most nodes apart before anything is sorted.
bool Refiner::split_touched_cells() {
  std::uint64_t touched_hash = std::exchange(unsplit_hash_, 0);
  for (const int cell : touched_cells_)
    touched_hash += mix(place_and_count(cell, static_cast<std::uint64_t>(touched_[cell])));
  if (!record_or_compare(touched_hash)) return false;
  std::sort(touched_cells_.begin(), touched_cells_.end());
  for (const int cell : touched_cells_) {
    if (!split_by_count(cell)) return false;
  }
  touched_cells_.clear();
  return record_or_compare(unsplit_hash_);
}

bool Refiner::split_by_count(int cell) {
  const int length = partition_.length(cell);
  int untouched = length - touched_[cell];
  gather_tail(cell, touched_[cell]);
  touched_[cell] = 0;
  const auto [fewest, most] = std::minmax_element(
      tail_.begin(), tail_.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  const bool is_uniform = fewest->first == most->first;
  if (is_uniform && untouched == 0) {
    unsplit_hash_ += mix(place_and_count(cell, fewest->first));
    return true;
  }
  if (!is_uniform) sort_tail(fewest->first, most->first);
  groups_.clear();
  int largest = 0;
  for (int begin = 0, i = 1; i <= static_cast<int>(tail_.size()); ++i) {
    const auto index = static_cast<std::size_t>(i);
    if (index < tail_.size() && tail_[index].first == tail_[index - 1].first) continue;
    groups_.emplace_back(begin, i);
    largest = std::max(largest, i - begin);
    begin = i;
  }
  if (untouched > 0 && untouched < largest) {
    // The untouched members leave the front. They are fewer than the touched ones, so moving them is cheap.
    const int begin = static_cast<int>(tail_.size());
    for (const int v : partition_.members(cell).first(static_cast<std::size_t>(untouched)))
      tail_.emplace_back(0, v);
    groups_.insert(groups_.begin(), {begin, begin + untouched});
    untouched = 0;
  }
  return arrange_groups(cell, untouched);
}

// Moves the counts of the cell's last members into tail_, leaving zero behind.
void Refiner::gather_tail(int cell, int length) {
  tail_.clear();
  for (const int v : partition_.members(cell).last(static_cast<std::size_t>(length))) {
    tail_.emplace_back(count_[v], v);
    count_[v] = 0;
  }
}

// Sorts by count. A small range of counts is sorted by counting how often each occurs.
void Refiner::sort_tail(std::uint64_t min_count, std::uint64_t max_count) {
  if (max_count - min_count >= tail_.size()) {
    std::ranges::sort(tail_, {}, [](const auto& entry) { return entry.first; });
    return;
  }
  const auto kind = [min_count](const auto& entry) {
    return static_cast<std::size_t>(entry.first - min_count);
  };
  ends_.assign(static_cast<std::size_t>(max_count - min_count) + 1, 0);
  for (const auto& entry : tail_) ++ends_[kind(entry)];
  std::partial_sum(ends_.begin(), ends_.end(), ends_.begin());
  sorted_tail_.resize(tail_.size());
  for (const auto& entry : tail_) sorted_tail_[--ends_[kind(entry)]] = entry;
  tail_.swap(sorted_tail_);
}

// Lays the groups out in ascending order of their counts behind the front, and makes each but the front a
// cell. The front is the untouched members, if there are any, and otherwise the first of the largest groups.
bool Refiner::arrange_groups(int cell, int untouched) {
  if (untouched == 0) {
    const auto largest = std::max_element(groups_.begin(), groups_.end(), [](const auto& a, const auto& b) {
      return a.second - a.first < b.second - b.first;
    });
    std::rotate(groups_.begin(), largest, largest + 1);
  }
  int position = cell + untouched;
  for (const auto& [begin, end] : groups_) {
    for (int i = begin; i < end; ++i) partition_.place(tail_[static_cast<std::size_t>(i)].second, position++);
  }
  const auto first_new = groups_.begin() + (untouched == 0 ? 1 : 0);
  if (untouched == 0)
    unsplit_hash_ += mix(place_and_count(cell, tail_[static_cast<std::size_t>(groups_.front().first)].first));
  for (auto group = groups_.end(); group != first_new;) {
    --group;
    const int length = group->second - group->first;
    position -= length;
    partition_.split(cell, position);
    enqueue(position);
    const std::uint64_t count = tail_[static_cast<std::size_t>(group->first)].first;
    if (!record_or_compare((static_cast<std::uint64_t>(position) << 32) + static_cast<std::uint64_t>(length)))
      return false;
    if (!record_or_compare(count)) return false;
  }
  return true;
}

bool Refiner::record_or_compare(std::uint64_t event) {
  if (recorded_ != nullptr) {
    recorded_->push_back(event);
    return true;
  }
  if (expected_.empty() || expected_.front() != event) return false;
  expected_ = expected_.subspan(1);
  return true;
}

void Refiner::enqueue(int cell) {
  if (is_queued_[cell] != 0) return;
  is_queued_[cell] = 1;
  queue_.push_back(cell);
}

// Clears the queue and the current splitter's work, wherever the refinement ended.
void Refiner::clear_work() {
  for (; queue_head_ < queue_.size(); ++queue_head_) is_queued_[queue_[queue_head_]] = 0;
  queue_.clear();
  queue_head_ = 0;
  for (const int cell : touched_cells_) {
    gather_tail(cell, touched_[cell]);
    touched_[cell] = 0;
  }
  touched_cells_.clear();
}

}  // namespace symfold::detail

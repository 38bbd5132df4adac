#include "engines/fibre_forest.h"

#include <algorithm>

#include "engines/spread.h"

namespace symfold {

FibreForest::FibreForest(const ColouredGraph& graph)
    : vertex_count_(graph.vertex_count()),
      own_(vertex_count_),
      hanging_(vertex_count_, 0),
      is_sequence_(vertex_count_, 0),
      smallest_(identity_images(vertex_count_)),
      parent_(vertex_count_, -1),
      first_(vertex_count_, 0),
      length_(vertex_count_, 0) {
  for (int v = 0; v < vertex_count_; ++v) own_[v] = spread(graph.colour(v), graph.loops(v));
}

Shape FibreForest::shape(int node) const { return spread(own_[node] + hanging_[node]); }

int FibreForest::add_set() {
  own_.push_back(0);
  hanging_.push_back(0);
  is_sequence_.push_back(0);
  smallest_.push_back(vertex_count_);
  parent_.push_back(-1);
  first_.push_back(0);
  length_.push_back(0);
  return node_count() - 1;
}

int FibreForest::add_sequence(std::span<const int> members, Shape shape) {
  const int node = add_set();
  own_[node] = shape;
  is_sequence_[node] = 1;
  first_[node] = static_cast<int>(parts_.size());
  length_[node] = static_cast<int>(members.size());
  parts_.insert(parts_.end(), members.begin(), members.end());
  for (const int member : members) {
    smallest_[node] = std::min(smallest_[node], smallest_[member]);
    parent_[member] = node;
  }
  return node;
}

void FibreForest::hang(int child, int parent) {
  hanging_[parent] += spread(shape(child) + 1);
  smallest_[parent] = std::min(smallest_[parent], smallest_[child]);
  parent_[child] = parent;
  ++length_[parent];
}

// The parts come in the order of their smallest vertices when each vertex is followed up to the largest node
// whose smallest one it is.
void FibreForest::arrange() {
  auto total = static_cast<int>(parts_.size());
  PointVector<int> end(node_count());  // of the parts placed so far
  for (int node = 0; node < node_count(); ++node) {
    if (is_sequence(node)) continue;
    first_[node] = end[node] = total;
    total += length_[node];
  }
  parts_.resize(static_cast<std::size_t>(total));
  for (int v = 0; v < vertex_count_; ++v) {
    for (int node = v; smallest_[node] == v && parent_[node] >= 0; node = parent_[node]) {
      if (!is_sequence(parent_[node])) parts_[static_cast<std::size_t>(end[parent_[node]]++)] = node;
    }
  }
  for (int node = 0; node < node_count(); ++node) {
    if (!is_sequence(node) && length_[node] > 1) sort_parts(node);
  }
}

void FibreForest::sort_parts(int node) {
  const auto begin = parts_.begin() + first_[node];
  const auto is_before = [this](int a, int b) { return shape(a) < shape(b); };
  if (!std::is_sorted(begin, begin + length_[node], is_before))
    std::stable_sort(begin, begin + length_[node], is_before);
}

bool FibreForest::carry(int from, int to, SparsePermutation& moves, bool is_reversed) {
  pending_.clear();
  bool is_alike = (from == to && !is_reversed) || carry_parts(from, to, is_reversed);
  if (from != to && from < vertex_count_ && to < vertex_count_) moves.push_back({from, to});
  while (is_alike && !pending_.empty()) {
    const auto [a, b] = pending_.back();
    pending_.pop_back();
    if (a == b) continue;
    is_alike = (a < vertex_count_) == (b < vertex_count_) && carry_parts(a, b, false);
    if (a < vertex_count_) moves.push_back({a, b});
  }
  return is_alike;
}

bool FibreForest::carry_parts(int from, int to, bool is_reversed) {
  const auto parts_from = parts(from);
  const auto parts_to = parts(to);
  if (parts_from.size() != parts_to.size()) return false;
  for (std::size_t i = 0; i < parts_from.size(); ++i) {
    pending_.emplace_back(parts_from[i], parts_to[is_reversed ? parts_to.size() - 1 - i : i]);
  }
  return true;
}

}  // namespace symfold

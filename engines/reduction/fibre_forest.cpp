#include "engines/reduction/fibre_forest.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace symfold::detail {

FibreForest::FibreForest(const ColouredGraph& graph) : graph_(graph), vertex_count_(graph.vertex_count()) {
  nodes_.reserve(vertex_count_ + vertex_count_ / 8 + 1);
  for (int v = 0; v < vertex_count_; ++v)
    nodes_.push_back({.shape = mix(graph.colour(v), graph.loops(v)), .smallest = v});
}

int FibreForest::add_set() {
  nodes_.push_back({.smallest = vertex_count_});
  return nodes_.size() - 1;
}

int FibreForest::add_sequence(std::span<const int> members, Shape shape) {
  const int node = add_set();
  nodes_[node].shape = shape;
  nodes_[node].is_sequence = 1;
  nodes_[node].first = static_cast<int>(parts_.size());
  nodes_[node].length = static_cast<unsigned>(members.size()) & 0x7fffffffU;
  parts_.insert(parts_.end(), members.begin(), members.end());
  for (const int member : members) set_parent(member, node);
  return node;
}

void FibreForest::attach(int child, int parent, Shape weight) {
  nodes_[child].shape += weight;
  set_parent(child, parent);
  Node& above = nodes_[parent];
  above.shape += nodes_[child].shape;
  ++above.length;
}

void FibreForest::set_parent(int node, int parent) {
  nodes_[node].shape = shape(node);
  nodes_[node].parent = parent;
  nodes_[parent].smallest = std::min(nodes_[parent].smallest, nodes_[node].smallest);
}

// The parts come in the order of their smallest vertices if each vertex is followed up to the largest node
// whose smallest vertex it is. Each node's range of parts_ is filled from its end, which leaves `first` at
// its beginning.
void FibreForest::arrange() {
  auto total = static_cast<int>(parts_.size());
  for (int i = 0; i < nodes_.size(); ++i) {
    Node& node = nodes_[i];
    if (node.is_sequence != 0) continue;
    node.first = total += static_cast<int>(node.length);
    if (node.length > 1) branching_nodes_.push_back(i);
  }
  parts_.resize(static_cast<std::size_t>(total));
  for (int v = vertex_count_ - 1; v >= 0; --v) {
    for (int part = v; nodes_[part].smallest == v && nodes_[part].parent >= 0;) {
      Node& above = nodes_[nodes_[part].parent];
      if (above.is_sequence == 0) parts_[static_cast<std::size_t>(--above.first)] = part;
      part = nodes_[part].parent;
    }
  }
  for (const int node : branching_nodes_) sort_parts(node);
}

void FibreForest::sort_parts(int node) {
  const auto begin = parts_.begin() + nodes_[node].first;
  const auto is_before = [this](int a, int b) { return shape(a) < shape(b); };
  if (!std::is_sorted(begin, begin + nodes_[node].length, is_before))
    std::stable_sort(begin, begin + nodes_[node].length, is_before);
}

// Goes on with the last pair of different parts; the other pairs wait.
bool FibreForest::carry(int from, int to, SparsePermutation& moves, bool is_reversed) {
  if (from == to && !is_reversed) return true;
  pending_.clear();
  for (int a = from, b = to;; is_reversed = false) {
    if ((a < vertex_count_) != (b < vertex_count_) || nodes_[a].length != nodes_[b].length) return false;
    if (a < vertex_count_) {
      if (graph_.kind(a) != graph_.kind(b)) return false;
      moves.push_back({a, b});
    }
    const auto parts_a = parts(a);
    const auto parts_b = parts(b);
    bool goes_on = false;
    for (std::size_t i = 0; i < parts_a.size(); ++i) {
      const int part = parts_b[is_reversed ? parts_b.size() - 1 - i : i];
      if (parts_a[i] == part) continue;
      if (std::exchange(goes_on, true)) pending_.emplace_back(a, b);
      a = parts_a[i];
      b = part;
    }
    if (goes_on) continue;
    if (pending_.empty()) return true;
    std::tie(a, b) = pending_.back();
    pending_.pop_back();
  }
}

}  // namespace symfold::detail

#include "engines/fibre_forest.h"

#include <algorithm>

#include "engines/spread.h"

namespace symfold {

FibreForest::FibreForest(const ColouredGraph& graph)
    : vertex_count_(graph.vertex_count()), nodes_(vertex_count_) {
  for (int v = 0; v < vertex_count_; ++v) {
    nodes_[v].own = spread(graph.colour(v), graph.loops(v));
    nodes_[v].smallest = v;
  }
}

Shape FibreForest::shape(int node) const { return spread(nodes_[node].own + nodes_[node].hanging); }

int FibreForest::add_set() {
  nodes_.push_back({.smallest = vertex_count_});
  return node_count() - 1;
}

int FibreForest::add_sequence(std::span<const int> members, Shape shape) {
  const int node = add_set();
  nodes_[node].own = shape;
  nodes_[node].is_sequence = true;
  nodes_[node].first = static_cast<int>(parts_.size());
  nodes_[node].length = static_cast<int>(members.size());
  parts_.insert(parts_.end(), members.begin(), members.end());
  for (const int member : members) {
    nodes_[node].smallest = std::min(nodes_[node].smallest, nodes_[member].smallest);
    nodes_[member].parent = node;
  }
  return node;
}

void FibreForest::hang(int child, int parent) {
  Node& above = nodes_[parent];
  above.hanging += spread(shape(child) + 1);
  above.smallest = std::min(above.smallest, nodes_[child].smallest);
  ++above.length;
  nodes_[child].parent = parent;
}

// The parts come in the order of their smallest vertices when each vertex is followed up to the largest node
// whose smallest one it is.
void FibreForest::arrange() {
  auto total = static_cast<int>(parts_.size());
  PointVector<int> end(node_count());  // of the parts placed so far
  for (int node = 0; node < node_count(); ++node) {
    if (is_sequence(node)) continue;
    nodes_[node].first = end[node] = total;
    total += nodes_[node].length;
  }
  parts_.resize(static_cast<std::size_t>(total));
  for (int v = 0; v < vertex_count_; ++v) {
    for (int node = v; nodes_[node].smallest == v && nodes_[node].parent >= 0; node = nodes_[node].parent) {
      if (!is_sequence(nodes_[node].parent))
        parts_[static_cast<std::size_t>(end[nodes_[node].parent]++)] = node;
    }
  }
  for (int node = 0; node < node_count(); ++node) {
    if (!is_sequence(node) && nodes_[node].length > 1) sort_parts(node);
  }
}

void FibreForest::sort_parts(int node) {
  const auto begin = parts_.begin() + nodes_[node].first;
  const auto is_before = [this](int a, int b) { return shape(a) < shape(b); };
  if (!std::is_sorted(begin, begin + nodes_[node].length, is_before))
    std::stable_sort(begin, begin + nodes_[node].length, is_before);
}

bool FibreForest::carry(int from, int to, SparsePermutation& moves, bool is_reversed) {
  if (from == to && !is_reversed) return true;
  pending_.assign(1, {from, to});
  bool is_alike = true;
  for (; is_alike && !pending_.empty(); is_reversed = false) {
    const auto [a, b] = pending_.back();
    pending_.pop_back();
    is_alike = (a < vertex_count_) == (b < vertex_count_) && nodes_[a].length == nodes_[b].length;
    if (!is_alike) break;
    if (a < vertex_count_) moves.push_back({a, b});
    const auto parts_a = parts(a);
    const auto parts_b = parts(b);
    for (std::size_t i = 0; i < parts_a.size(); ++i) {
      const int part = parts_b[is_reversed ? parts_b.size() - 1 - i : i];
      if (parts_a[i] != part) pending_.emplace_back(parts_a[i], part);
    }
  }
  return is_alike;
}

}  // namespace symfold

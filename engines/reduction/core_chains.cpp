#include "engines/reduction/core_chains.h"

#include <algorithm>

namespace symfold::detail {

CoreChains::CoreChains(const ColouredGraph& graph, const PointVector<int>& degree)
    : graph_(graph), degree_(degree), is_anchor_(degree.size(), 0), is_inner_(degree.size(), 0) {
  core_.reserve(static_cast<std::size_t>(std::ranges::count_if(degree, [](int d) { return d > 0; })));
  for (int v = 0; v < degree.size(); ++v) {
    if (degree[v] <= 0) continue;
    core_.push_back(v);
    is_anchor_[v] = degree[v] > 2 ? 1 : 0;
  }
}

void CoreChains::find() {
  for (const int v : inner_) is_inner_[v] = 0;
  chains_.clear();
  cycles_.clear();
  inner_.clear();
  for (const int v : core_) {
    if (!is_anchor(v)) continue;
    for (const int neighbour : graph_.neighbours(v)) {
      if (degree_[neighbour] <= 0 || is_inner_[neighbour] != 0) continue;
      if (!is_anchor(neighbour)) {
        follow(v, neighbour, chains_);
      } else if (v < neighbour) {
        chains_.push_back({v, neighbour, inner_.size(), inner_.size()});
      }
    }
  }
  for (const int v : core_) {
    if (!is_anchor(v) && is_inner_[v] == 0) follow(next_vertex(-1, v), v, cycles_);
  }
}

// To the next anchor, or around a cycle.
void CoreChains::follow(int from, int first, std::vector<Chain>& found) {
  const std::size_t begin = inner_.size();
  int before = from;
  int v = first;
  while (!is_anchor(v) && is_inner_[v] == 0) {
    is_inner_[v] = 1;
    inner_.push_back(v);
    const int next = next_vertex(before, v);
    before = v;
    v = next;
  }
  found.push_back({from, v, begin, inner_.size()});
}

// The other end of the other edge: `before` again where both lead there, the first one's where `before` is
// at neither.
int CoreChains::next_vertex(int before, int v) const {
  bool is_passed = false;
  for (const int neighbour : graph_.neighbours(v)) {
    if (neighbour == before && !is_passed) {
      is_passed = true;
    } else if (degree_[neighbour] > 0) {
      return neighbour;
    }
  }
  return before;
}

}  // namespace symfold::detail

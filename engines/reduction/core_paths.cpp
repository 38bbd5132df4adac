#include "engines/reduction/core_paths.h"

#include <algorithm>

namespace symfold::detail {

CorePaths::CorePaths(const ColouredGraph& graph, const PointVector<int>& degree)
    : graph_(graph), degree_(degree), is_anchor_(degree.size(), 0), is_inner_(degree.size(), 0) {
  core_.reserve(static_cast<std::size_t>(std::ranges::count_if(degree, [](int d) { return d > 0; })));
  for (int v = 0; v < degree.size(); ++v) {
    if (degree[v] <= 0) continue;
    core_.push_back(v);
    is_anchor_[v] = degree[v] > 2 ? 1 : 0;
  }
}

void CorePaths::find() {
  for (const int v : inner_) is_inner_[v] = 0;
  paths_.clear();
  cycles_.clear();
  inner_.clear();
  for (const int v : core_) {
    if (!is_anchor(v)) continue;
    for (const int neighbour : graph_.neighbours(v)) {
      if (degree_[neighbour] <= 0 || is_inner_[neighbour] != 0) continue;
      if (!is_anchor(neighbour)) {
        follow(v, neighbour, paths_);
      } else if (v < neighbour) {
        paths_.push_back({v, neighbour, inner_.size(), inner_.size()});
      }
    }
  }
  for (const int v : core_) {
    if (!is_anchor(v) && is_inner_[v] == 0) follow(next_vertex(-1, v), v, cycles_);
  }
}

// Follows the edges to the next anchor, or around a cycle.
void CorePaths::follow(int from, int first, std::vector<Path>& found) {
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

// Returns the neighbour reached by the edge that does not lead to `before`; for a double edge, `before`
// itself. Returns the first neighbour in the core if no edge leads to `before`.
int CorePaths::next_vertex(int before, int v) const {
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

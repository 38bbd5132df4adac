#include "engines/coloured_graph.h"

#include <utility>

namespace symfold {

ColouredGraph::ColouredGraph(int n, const std::vector<int>& boundaries, const std::vector<Edge>& edges)
    : colour_(n, 0), loops_(n, 0), first_(static_cast<std::size_t>(n) + 1, 0) {
  for (const int boundary : boundaries) colour_[boundary] = 1;
  for (int v = 1; v < n; ++v) colour_[v] += colour_[v - 1];
  for (const Edge& edge : edges) {
    if (edge.from == edge.to) {
      ++loops_[edge.from];
    } else {
      ++first_[static_cast<std::size_t>(edge.from)];
      ++first_[static_cast<std::size_t>(edge.to)];
    }
  }
  // Running sums make each entry the end of its vertex's stretch; filling backwards leaves it at the
  // beginning.
  std::size_t total = 0;
  for (std::size_t& entry : first_) entry = total += entry;
  neighbours_.resize(total);
  for (auto edge = edges.rbegin(); edge != edges.rend(); ++edge) {
    if (edge->from == edge->to) continue;
    neighbours_[--first_[static_cast<std::size_t>(edge->from)]] = edge->to;
    neighbours_[--first_[static_cast<std::size_t>(edge->to)]] = edge->from;
  }
}

ColouredGraph::ColouredGraph(PointVector<int> colour, const std::vector<DirectedEdge>& edges)
    : colour_(std::move(colour)),
      loops_(colour_.size(), 0),
      first_(static_cast<std::size_t>(colour_.size()) + 1, 0) {
  for (const DirectedEdge& edge : edges) {
    ++first_[static_cast<std::size_t>(edge.from) + 1];
    neighbours_.push_back(edge.to);
    weights_.push_back(edge.weight);
  }
  std::partial_sum(first_.begin(), first_.end(), first_.begin());
}

}  // namespace symfold

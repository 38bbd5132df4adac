#include "engines/graph/coloured_graph.h"

#include <numeric>

namespace symfold::detail {

ColouredGraph::ColouredGraph(int n, const std::vector<int>& boundaries, const std::vector<Edge>& edges)
    : kinds_(n), first_(static_cast<std::size_t>(n) + 1, 0) {
  for (const int boundary : boundaries) kinds_[boundary].colour = 1;
  for (int v = 1; v < n; ++v) kinds_[v].colour += kinds_[v - 1].colour;
  for (const Edge& edge : edges) {
    if (edge.from == edge.to) {
      ++kinds_[edge.from].loops;
    } else {
      ++first_[static_cast<std::size_t>(edge.from)];
      ++first_[static_cast<std::size_t>(edge.to)];
    }
  }
  // Running sums make each entry the end of its vertex's neighbours. Filling backwards moves it to their
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

ColouredGraph::ColouredGraph(const PointVector<int>& colour, const std::vector<DirectedEdge>& edges)
    : kinds_(colour.size()), first_(static_cast<std::size_t>(colour.size()) + 1, 0) {
  for (int v = 0; v < colour.size(); ++v) kinds_[v].colour = colour[v];
  neighbours_.reserve(edges.size());
  weights_.reserve(edges.size());
  for (const DirectedEdge& edge : edges) {
    ++first_[static_cast<std::size_t>(edge.from) + 1];
    neighbours_.push_back(edge.to);
    weights_.push_back(edge.weight);
  }
  std::partial_sum(first_.begin(), first_.end(), first_.begin());
}

}  // namespace symfold::detail

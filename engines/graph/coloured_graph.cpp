#include "engines/graph/coloured_graph.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <tuple>

#include "engines/base/mix.h"

namespace symfold::detail {
namespace {

// One of the edges between two vertices, seen from one of them.
struct EdgeView {
  enum class Direction { kNone, kOut, kIn };

  int from;
  int to;
  Direction direction;
  std::uint64_t weight;

  auto key() const { return std::tie(from, to, direction, weight); }
};

using Views = std::span<const EdgeView>;

// Every edge from both its ends, a loop once, in ascending order.
std::vector<EdgeView> views_of(const std::vector<WeightedEdge>& edges) {
  std::vector<EdgeView> views;
  views.reserve(2 * edges.size());
  for (const auto& [from, to, weight, is_directed] : edges) {
    using enum EdgeView::Direction;
    views.push_back({from, to, is_directed ? kOut : kNone, weight});
    if (from != to) views.push_back({to, from, is_directed ? kIn : kNone, weight});
  }
  std::ranges::sort(views, {}, &EdgeView::key);
  return views;
}

// Cuts the views into those that have the same ends.
std::vector<Views> cut_by_ends(const std::vector<EdgeView>& views) {
  std::vector<Views> cut;
  const auto has_other_ends = [](const EdgeView& a, const EdgeView& b) {
    return a.from != b.from || a.to != b.to;
  };
  for (auto begin = views.begin(); begin != views.end();) {
    const auto next = std::adjacent_find(begin, views.end(), has_other_ends);
    const auto end = next == views.end() ? next : std::next(next);
    cut.emplace_back(begin, end);
    begin = end;
  }
  return cut;
}

bool is_less(Views a, Views b) {
  return std::lexicographical_compare(
      a.begin(), a.end(), b.begin(), b.end(), [](const EdgeView& x, const EdgeView& y) {
        return std::tie(x.direction, x.weight) < std::tie(y.direction, y.weight);
      });
}

// Numbers the different multisets of (direction, weight) in ascending order from 1 on. Returns the number of
// each.
std::vector<int> number_multisets(const std::vector<Views>& multisets) {
  std::vector<std::size_t> order(multisets.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::sort(order, [&](std::size_t a, std::size_t b) { return is_less(multisets[a], multisets[b]); });
  std::vector<int> number(multisets.size());
  int last = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i == 0 || is_less(multisets[order[i - 1]], multisets[order[i]])) ++last;
    number[order[i]] = last;
  }
  return number;
}

bool has_one_undirected_weight(const std::vector<WeightedEdge>& edges) {
  return std::ranges::all_of(edges, [&edges](const WeightedEdge& edge) {
    return !edge.is_directed && edge.weight == edges.front().weight;
  });
}

}  // namespace

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

// A number seen from one end belongs to one number seen from the other end, where directions are exchanged.
// Numbers become weights by a bijection, so that sums of weights tell edges apart, too.
ColouredGraph ColouredGraph::weighted(int n, const std::vector<int>& boundaries,
                                      const std::vector<WeightedEdge>& edges) {
  if (has_one_undirected_weight(edges)) {
    std::vector<Edge> plain;
    plain.reserve(edges.size());
    for (const WeightedEdge& edge : edges) plain.push_back({edge.from, edge.to});
    return {n, boundaries, plain};
  }
  ColouredGraph graph(n, boundaries, {});
  const std::vector<EdgeView> views = views_of(edges);
  const std::vector<Views> multisets = cut_by_ends(views);
  const std::vector<int> number = number_multisets(multisets);
  std::vector<HalfEdge> half_edges;
  half_edges.reserve(multisets.size());
  for (std::size_t i = 0; i < multisets.size(); ++i) {
    const EdgeView& first = multisets[i].front();
    if (first.from == first.to) {
      graph.kinds_[first.from].loops = number[i];
    } else {
      half_edges.push_back({first.from, first.to, mix(static_cast<std::uint64_t>(number[i]))});
    }
  }
  graph.set_half_edges(half_edges);
  return graph;
}

ColouredGraph::ColouredGraph(const PointVector<int>& colour, const std::vector<HalfEdge>& edges)
    : kinds_(colour.size()) {
  for (int v = 0; v < colour.size(); ++v) kinds_[v].colour = colour[v];
  set_half_edges(edges);
}

void ColouredGraph::set_half_edges(const std::vector<HalfEdge>& edges) {
  first_.assign(static_cast<std::size_t>(kinds_.size()) + 1, 0);
  neighbours_.reserve(edges.size());
  weights_.reserve(edges.size());
  for (const HalfEdge& edge : edges) {
    ++first_[static_cast<std::size_t>(edge.from) + 1];
    neighbours_.push_back(edge.to);
    weights_.push_back(edge.weight);
  }
  std::partial_sum(first_.begin(), first_.end(), first_.begin());
}

std::uint64_t ColouredGraph::weight(int v, int neighbour) const {
  const auto list = neighbours(v);
  return weights(v)[static_cast<std::size_t>(std::ranges::lower_bound(list, neighbour) - list.begin())];
}

}  // namespace symfold::detail

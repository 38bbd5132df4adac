#include "host/pictures/line_layout.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace symfold {
namespace {

constexpr std::size_t kMaxCircle = 150;
constexpr std::size_t kMaxRow = 16;
constexpr double kGap = 0.12;  // between neighbours
constexpr double kRowHeight = 0.5;

// The way along a line or round a ring.
class Path {
 public:
  explicit Path(const DrawnGraph& graph) : neighbours_(graph.nodes.size()), carried_(graph.nodes.size()) {
    for (const DrawnEdge& edge : graph.edges) {
      neighbours_[edge.submodel].push_back(edge.join);
      neighbours_[edge.join].push_back(edge.submodel);
    }
    is_line_ = find_line();
    if (!is_line_ && !find_ring()) order_.clear();
  }

  bool is_line() const { return is_line_; }

  // Along the line or round the ring; empty if the graph is neither.
  const std::vector<std::size_t>& order() const { return order_; }

  // The nodes that a node of the ring carries: none or one.
  const std::vector<std::size_t>& carried_by(std::size_t node) const { return carried_[node]; }

 private:
  std::size_t degree(std::size_t node) const { return neighbours_[node].size(); }

  bool find_line() {
    const auto end = std::find_if(neighbours_.begin(), neighbours_.end(),
                                  [](const auto& neighbours) { return neighbours.size() == 1; });
    const bool is_thin = std::all_of(neighbours_.begin(), neighbours_.end(),
                                     [](const auto& neighbours) { return neighbours.size() <= 2; });
    if (end == neighbours_.end() || !is_thin) return false;
    walk(static_cast<std::size_t>(end - neighbours_.begin()));
    return order_.size() == neighbours_.size();
  }

  // Takes away the nodes with one neighbour; then all others must have two, on one ring.
  bool find_ring() {
    std::size_t taken = 0;
    for (std::size_t node = 0; node < neighbours_.size(); ++node) {
      if (degree(node) != 1) continue;
      const std::size_t carrier = neighbours_[node][0];
      if (degree(carrier) != 3) return false;
      carried_[carrier].push_back(node);
      ++taken;
    }
    std::size_t start = neighbours_.size();
    for (std::size_t node = neighbours_.size(); node-- > 0;) {
      if (degree(node) == 1) continue;
      if (degree(node) != 2 + carried_[node].size() || carried_[node].size() > 1) return false;
      start = node;
    }
    if (start == neighbours_.size()) return false;
    walk(start);
    return order_.size() + taken == neighbours_.size();
  }

  // From neighbour to neighbour, each once, without those that are carried.
  void walk(std::size_t start) {
    std::vector<bool> is_passed(neighbours_.size(), false);
    for (const auto& carried : carried_) {
      for (const std::size_t node : carried) is_passed[node] = true;
    }
    order_ = {start};
    is_passed[start] = true;
    for (std::size_t i = 0; i < order_.size(); ++i) {
      const auto& neighbours = neighbours_[order_[i]];
      const auto next = std::find_if(neighbours.begin(), neighbours.end(),
                                     [&](std::size_t node) { return !is_passed[node]; });
      if (next == neighbours.end()) return;
      is_passed[*next] = true;
      order_.push_back(*next);
    }
  }

  std::vector<std::vector<std::size_t>> neighbours_;  // one for each edge
  std::vector<std::vector<std::size_t>> carried_;
  std::vector<std::size_t> order_;
  bool is_line_ = false;
};

Position polar(double radius, double angle) { return {radius * std::sin(angle), radius * std::cos(angle)}; }

// A place on the way and, one step beside it, a place for the node that is carried there.
struct Place {
  Position own;
  Position carried;
};

std::vector<Place> circle(std::size_t count, double step) {
  const double radius = static_cast<double>(count) * step / (2 * std::numbers::pi);
  std::vector<Place> places;
  for (std::size_t i = 0; i < count; ++i) {
    const double angle = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(count);
    places.push_back({polar(radius, angle), polar(radius + step, angle)});
  }
  return places;
}

// Columns that run outwards and inwards by turns, `gap` apart where they are nearest. Their lengths differ by
// at most one place.
std::vector<Place> folded_ring(std::size_t count, double step, double gap) {
  const double inner_share = 0.6;  // inner radius by column length, roughly
  const double wanted =
      std::sqrt(static_cast<double>(count) * gap / (2 * std::numbers::pi * inner_share * step));
  const auto half = static_cast<std::size_t>(std::ceil(static_cast<double>(count) / wanted / 2));
  const std::size_t columns = 2 * half;
  const double turn = 2 * std::numbers::pi / static_cast<double>(columns);
  const double inner = gap / turn;
  std::vector<Place> places;
  for (std::size_t column = 0; column < columns; ++column) {
    const std::size_t length = count * (column + 1) / columns - count * column / columns;
    const double angle = turn * static_cast<double>(column);
    for (std::size_t i = 0; i < length; ++i) {
      const double radius = inner + step * static_cast<double>(column % 2 == 0 ? i : length - 1 - i);
      const Position own = polar(radius, angle);
      places.push_back({own, {own.x + step * std::cos(angle), own.y - step * std::sin(angle)}});
    }
  }
  return places;
}

std::vector<Place> rows(std::size_t count, double step) {
  const double wanted = std::sqrt(1.6 * static_cast<double>(count) * kRowHeight / step);
  const std::size_t length = count <= kMaxRow ? count : static_cast<std::size_t>(std::ceil(wanted));
  std::vector<Place> places;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t row = i / length;
    const std::size_t column = row % 2 == 0 ? i % length : length - 1 - i % length;
    const Position own = {static_cast<double>(column) * step, -static_cast<double>(row) * kRowHeight};
    places.push_back({own, own});
  }
  return places;
}

}  // namespace

std::vector<Position> line_positions(const DrawnGraph& graph, double submodel_width, double join_width) {
  const Path path(graph);
  const std::vector<std::size_t>& order = path.order();
  if (order.empty()) return {};
  const double step = (submodel_width + join_width) / 2 + kGap;
  const bool carries = order.size() < graph.nodes.size();
  const double column = carries ? submodel_width + step : std::max(submodel_width, join_width);
  const std::vector<Place> places = path.is_line() ? rows(order.size(), step)
                                    : order.size() <= kMaxCircle
                                        ? circle(order.size(), step)
                                        : folded_ring(order.size(), step, column + kGap);
  std::vector<Position> result(graph.nodes.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    result[order[i]] = places[i].own;
    for (const std::size_t node : path.carried_by(order[i])) result[node] = places[i].carried;
  }
  return result;
}

}  // namespace symfold

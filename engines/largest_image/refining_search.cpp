#include "engines/largest_image/refining_search.h"

#include <algorithm>
#include <utility>

#include "engines/base/mix.h"

namespace symfold::detail {
namespace {

// Symmetries that are kept for nodes opened later. Each is as long as there are points.
constexpr std::size_t kMaxSymmetries = 64;

}  // namespace

RefiningSearch::RefiningSearch(PointCells initial_cells, const std::vector<bool>& has_value,
                               std::size_t max_nodes)
    : cells_(initial_cells),
      initial_cells_(std::move(initial_cells)),
      max_nodes_(max_nodes),
      keys_(cells_.point_count()),
      best_source_(has_value.size()),
      source_(has_value.size()),
      image_(has_value.size()) {
  for (std::uint32_t p = 0; p < has_value.size(); ++p) {
    if (has_value[p]) positions_with_values_.push_back(p);
  }
}

bool RefiningSearch::maximise(Placed* values) {
  values_ = values;
  cells_ = initial_cells_;
  node_count_ = 0;
  symmetry_count_ = 0;
  traces_.clear();
  path_.clear();
  has_leaf_ = false;
  start();
  cells_.mark_all_changed();
  refine();
  explore(0);
  for (std::size_t p = 0; p < image_.size(); ++p) image_[p] = values[best_source_[p]];
  std::copy(image_.begin(), image_.end(), values);
  return node_count_ <= max_nodes_;
}

void RefiningSearch::refine() {
  while (!cells_.are_single()) {
    std::fill(keys_.begin(), keys_.end(), 0);
    add_keys(keys_);
    cells_.clear_changed();
    for (const std::uint64_t key : keys_) trace_ += key;
    trace_ = mix(trace_);
    if (!cells_.split(keys_)) return;
  }
}

bool RefiningSearch::refine_by(const std::vector<std::uint64_t>& keys) {
  if (!cells_.split(keys)) return false;
  refine();
  return true;
}

// Returns the depth of the node at which the search goes on; the node above this one is depth - 1. The root
// has depth 0, so what it returns has no meaning.
std::size_t RefiningSearch::explore(std::size_t depth) {
  const std::uint32_t cell = settle();
  if (!keep(depth, cell == kNone)) return depth - 1;
  if (cell == kNone) return reach_leaf(depth);
  open_node(depth, cell);
  const std::size_t member_count = nodes_[depth].members.size();
  for (std::size_t i = 0; i < member_count; ++i) {
    Node& node = nodes_[depth];
    const std::uint32_t point = node.members[i];
    if (was_tried(node, point)) continue;
    if (++node_count_ > max_nodes_ && has_leaf_) break;
    if (!node.tried.empty()) {
      cells_ = node.cells;
      restore(depth);
    }
    node.tried.push_back(point);
    path_.resize(depth);
    path_.push_back(point);
    trace_ = mix(cell);
    single_out(point);
    refine();
    const std::size_t next = explore(depth + 1);
    if (next < depth) return next;
  }
  return depth - 1;
}

void RefiningSearch::open_node(std::size_t depth, std::uint32_t cell) {
  if (nodes_.size() == depth)
    nodes_.push_back({cells_, {}, {}, UnionFind(static_cast<int>(cells_.point_count()))});
  Node& node = nodes_[depth];
  node.cells = cells_;
  node.members.assign(cells_.order().begin() + cell, cells_.order().begin() + cells_.end_of(cell));
  node.tried.clear();
  node.orbits.clear();
  unite_known(node.orbits);
  for (std::size_t s = 0; s < std::min(symmetry_count_, kMaxSymmetries); ++s) {
    if (fixes_path(symmetries_[s], depth)) unite_members(node, symmetries_[s]);
  }
  save(depth);
}

// The symmetry fixes the points singled out before, so it carries the cell onto itself.
void RefiningSearch::unite_members(Node& node, const Points& symmetry) {
  for (const std::uint32_t x : node.members)
    node.orbits.unite(static_cast<int>(x), static_cast<int>(symmetry[x]));
}

bool RefiningSearch::was_tried(Node& node, std::uint32_t point) const {
  const int orbit = node.orbits.find(static_cast<int>(point));
  return std::any_of(node.tried.begin(), node.tried.end(),
                     [&](std::uint32_t tried) { return node.orbits.find(static_cast<int>(tried)) == orbit; });
}

// Makes the trace of the current node a part of the best leaf's, unless it is below. Nodes of equal traces
// have equally many cells and are leaves or not alike, so leaves of equal traces have equal depths.
bool RefiningSearch::keep(std::size_t depth, bool is_leaf) {
  constexpr int kHashBits = 40;
  const std::uint64_t trace =
      (cells_.cell_count() << 1 | (is_leaf ? 1U : 0U)) << kHashBits | trace_ >> (64 - kHashBits);
  if (depth < traces_.size()) {
    if (trace == traces_[depth]) return true;
    if (trace < traces_[depth]) return false;
    traces_.resize(depth);
    has_leaf_ = false;
  }
  traces_.push_back(trace);
  return true;
}

std::size_t RefiningSearch::reach_leaf(std::size_t depth) {
  make_source(source_);
  const int order = has_leaf_ ? compare_with_best() : 1;
  if (order < 0) return depth - 1;
  if (order > 0) {
    has_leaf_ = true;
    std::swap(best_source_, source_);
    if (depth == 0) return 0;
    best_path_ = path_;
    best_order_ = leaf_order();
    return depth - 1;
  }
  const auto parting = static_cast<std::size_t>(
      std::mismatch(path_.begin(), path_.end(), best_path_.begin()).first - path_.begin());
  return add_symmetry(parting) ? parting : depth - 1;
}

int RefiningSearch::compare_with_best() const {
  for (const std::uint32_t position : positions_with_values_) {
    const std::uint64_t own = value(source_[position]);
    const std::uint64_t best = value(best_source_[position]);
    if (own != best) return own < best ? -1 : 1;
  }
  return 0;
}

// Takes the symmetry that carries the best leaf to the current one. Returns true if it fixes the points that
// both have singled out and carries the next one of the best leaf to the current leaf's, as it does unless
// traces agree by chance.
bool RefiningSearch::add_symmetry(std::size_t parting) {
  if (symmetries_.size() < kMaxSymmetries && symmetry_count_ == symmetries_.size())
    symmetries_.emplace_back(cells_.point_count());
  Points& symmetry = symmetries_[symmetry_count_ % kMaxSymmetries];
  const Points& order = leaf_order();
  for (std::size_t i = 0; i < order.size(); ++i) symmetry[best_order_[i]] = order[i];
  ++symmetry_count_;
  for (std::size_t depth = 0; depth <= parting && fixes_path(symmetry, depth); ++depth) {
    unite_members(nodes_[depth], symmetry);
  }
  return fixes_path(symmetry, parting) && name_of(symmetry[best_path_[parting]]) == name_of(path_[parting]);
}

bool RefiningSearch::fixes_path(const Points& symmetry, std::size_t depth) const {
  return std::all_of(path_.begin(), path_.begin() + static_cast<std::ptrdiff_t>(depth),
                     [&](std::uint32_t point) { return name_of(symmetry[point]) == name_of(point); });
}

}  // namespace symfold::detail

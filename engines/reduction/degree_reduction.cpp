#include "engines/reduction/degree_reduction.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <tuple>

#include "engines/base/images.h"
#include "engines/base/mix.h"
#include "engines/graph/automorphism_check.h"
#include "engines/reduction/cyclic_sequence.h"

namespace symfold::detail {
namespace {

int middle(std::span<const int> vertices) { return vertices[vertices.size() / 2]; }

}  // namespace

bool DegreeReduction::is_worthwhile(const ColouredGraph& graph) {
  int small = 0;
  for (int v = 0; v < graph.vertex_count(); ++v) small += graph.neighbours(v).size() < 3 ? 1 : 0;
  return small > graph.vertex_count() / 4;
}

DegreeReduction::DegreeReduction(const ColouredGraph& graph)
    : graph_(graph),
      forest_(graph),
      components_(forest_.add_set()),
      degree_(attach_trees()),
      paths_(graph, degree_) {
  paths_.find();
  keep_middles();
  attach_loops();
  for (const CorePaths::Path& cycle : paths_.cycles()) attach_cycle(paths_.inner_vertices(cycle));
  number_anchors();
  make_arcs();
  make_reduced_graph();
  forest_.arrange();
  image_ = identity_images(reduced_.vertex_count());
}

// Takes the pendant trees off layer by layer, so that a component that is a tree is rooted at its centre, or
// at a set of its two centres. Returns the degrees inside the core.
PointVector<int> DegreeReduction::attach_trees() {
  const int n = graph_.vertex_count();
  PointVector<int> degree(n);
  std::vector<int> leaves;
  for (int v = 0; v < n; ++v) {
    degree[v] = static_cast<int>(graph_.neighbours(v).size());
    if (degree[v] < 2) leaves.push_back(v);
  }
  std::vector<int> parents;
  std::vector<int> next;
  while (!leaves.empty()) {
    parents.clear();
    for (const int v : leaves) parents.push_back(attach_leaf(degree, v));
    next.clear();
    for (const int v : leaves) degree[v] = -1;
    for (const int parent : parents) {
      if (parent >= 0 && --degree[parent] == 1) next.push_back(parent);
    }
    leaves.swap(next);
  }
  return degree;
}

// Returns the neighbour from which the leaf hangs, -1 for a tree's root.
int DegreeReduction::attach_leaf(const PointVector<int>& degree, int v) {
  if (degree[v] == 0) {
    forest_.attach(v, components_);
    return -1;
  }
  const int parent =
      *std::ranges::find_if(graph_.neighbours(v), [&degree](int neighbour) { return degree[neighbour] > 0; });
  if (degree[parent] > 1) {
    forest_.attach(v, parent, weight(v, parent));
  } else if (v < parent) {
    const int centres = forest_.add_set();
    forest_.attach(v, centres, weight(v, parent));
    forest_.attach(parent, centres, weight(parent, v));
    forest_.attach(centres, components_);
  }
  return parent;
}

// Seen from v; 0 in a graph without weights.
Shape DegreeReduction::weight(int v, int neighbour) const {
  return graph_.has_weights() ? graph_.weight(v, neighbour) : 0;
}

Shape DegreeReduction::forward_shape(const CorePaths::Path& path) const {
  const auto inner = paths_.inner_vertices(path);
  return shape_of_path(path.from, inner.begin(), inner.end(), path.to);
}

Shape DegreeReduction::backward_shape(const CorePaths::Path& path) const {
  const auto inner = paths_.inner_vertices(path);
  return shape_of_path(path.to, inner.rbegin(), inner.rend(), path.from);
}

// Hashes the shapes of the inner vertices, and the weight of each edge seen from the end that is nearer to
// `from`.
template <class Iterator>
Shape DegreeReduction::shape_of_path(int from, Iterator begin, Iterator end, int to) const {
  Shape shape = 0;
  if (!graph_.has_weights()) {
    for (; begin != end; ++begin) shape = mix(shape + forest_.shape(*begin));
    return shape;
  }
  int before = from;
  for (; begin != end; before = *begin++)
    shape = mix(shape + graph_.weight(before, *begin) + forest_.shape(*begin));
  return mix(shape + graph_.weight(before, to));
}

// Makes anchors of the middles of reversible core paths, for every kind of which one path has its middle
// before the fibres of both ends. The halves are not reversible: their ends have different degrees.
void DegreeReduction::keep_middles() {
  const auto reversible_shape = [this](const CorePaths::Path& path) {
    const auto inner = paths_.inner_vertices(path);
    if (inner.size() % 2 == 0 || path.from == path.to) return Shape{0};
    const Shape shape = forward_shape(path);
    return shape == backward_shape(path) ? shape : 0;
  };
  std::vector<Shape> kept;
  for (const CorePaths::Path& path : paths_.paths()) {
    if (path.begin == path.end || forest_.shape(path.from) != forest_.shape(path.to)) continue;
    const int first = std::min(forest_.smallest_vertex(path.from), forest_.smallest_vertex(path.to));
    if (forest_.smallest_vertex(middle(paths_.inner_vertices(path))) < first)
      kept.push_back(reversible_shape(path));
  }
  std::sort(kept.begin(), kept.end());
  kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
  if (!kept.empty() && kept.front() == 0) kept.erase(kept.begin());
  if (kept.empty()) return;
  for (const CorePaths::Path& path : paths_.paths()) {
    if (std::ranges::binary_search(kept, reversible_shape(path)))
      paths_.add_anchor(middle(paths_.inner_vertices(path)));
  }
  paths_.find();
}

// Each loop is read in the direction of the smaller shape.
void DegreeReduction::attach_loops() {
  for (const CorePaths::Path& path : paths_.paths()) {
    if (path.from != path.to) continue;
    const auto inner = paths_.inner_vertices(path);
    std::vector<int> members(inner.begin(), inner.end());
    const Shape forwards = forward_shape(path);
    const Shape backwards = backward_shape(path);
    if (backwards < forwards) std::ranges::reverse(members);
    const int loop = forest_.add_sequence(members, std::min(forwards, backwards));
    if (forwards == backwards) reversible_loops_.push_back(loop);
    forest_.attach(loop, path.from);
  }
}

// Adds to each vertex's shape the weight of the edge to the next one, in the direction given.
template <class Iterator>
void DegreeReduction::add_weights_around(Iterator begin, Iterator end, std::vector<Shape>& shapes) const {
  for (auto v = begin; v != end; ++v) {
    const auto next = std::next(v) == end ? begin : std::next(v);
    shapes[static_cast<std::size_t>(v - begin)] += graph_.weight(*v, *next);
  }
}

// The cycle is read from the start and in the direction that make the sequence of shapes least.
void DegreeReduction::attach_cycle(std::span<const int> vertices) {
  const auto length = static_cast<int>(vertices.size());
  std::vector<int> members(vertices.begin(), vertices.end());
  std::vector<Shape> shapes;
  for (const int v : vertices) shapes.push_back(forest_.shape(v));
  std::vector<Shape> reversed(shapes.rbegin(), shapes.rend());
  if (graph_.has_weights()) {
    add_weights_around(members.begin(), members.end(), shapes);
    add_weights_around(members.rbegin(), members.rend(), reversed);
  }
  const int start = least_rotation(shapes);
  const int reversed_start = least_rotation(reversed);
  std::rotate(shapes.begin(), shapes.begin() + start, shapes.end());
  std::rotate(reversed.begin(), reversed.begin() + reversed_start, reversed.end());
  int reflection = -1;
  if (reversed < shapes) {
    std::ranges::reverse(members);
    std::rotate(members.begin(), members.begin() + reversed_start, members.end());
  } else {
    std::rotate(members.begin(), members.begin() + start, members.end());
    if (reversed == shapes) reflection = (2 * length - 1 - start - reversed_start) % length;
  }
  Shape shape = 1;
  for (const Shape member : std::min(shapes, reversed)) shape = mix(shape + member);
  const int node = forest_.add_sequence(members, shape);
  cycles_.push_back({node, cyclic_period(shapes), reflection});
  forest_.attach(node, components_);
}

void DegreeReduction::number_anchors() {
  for (const int v : paths_.core()) {
    if (paths_.is_anchor(v)) anchors_.push_back(v);
  }
  if (anchors_.empty()) return;
  number_.assign(graph_.vertex_count(), -1);
  PointVector<int> smallest(graph_.vertex_count());
  for (const int v : anchors_) smallest[v] = forest_.smallest_vertex(v);
  for (const CorePaths::Path& path : paths_.paths()) {
    for (const int v : paths_.inner_vertices(path)) {
      for (const int end : {path.from, path.to})
        smallest[end] = std::min(smallest[end], forest_.smallest_vertex(v));
    }
  }
  std::ranges::sort(anchors_, {}, [&smallest](int v) { return std::pair(smallest[v], v); });
  for (int i = 0; i < anchors_.size(); ++i) number_[anchors_[i]] = i;
}

void DegreeReduction::make_arcs() {
  for (const CorePaths::Path& path : paths_.paths()) {
    if (path.from == path.to) continue;
    const auto inner = paths_.inner_vertices(path);
    const Shape forwards = forward_shape(path);
    const int sequence = inner.empty() ? -1 : forest_.add_sequence(inner, forwards);
    const int smallest = inner.empty() ? graph_.vertex_count() : forest_.smallest_vertex(sequence);
    const int from = number_[path.from];
    const int to = number_[path.to];
    arcs_.push_back({from, to, forwards, smallest, sequence, false});
    arcs_.push_back({to, from, backward_shape(path), smallest, sequence, true});
  }
  sort_arcs();
}

// Groups the arcs by their first vertex, by counting, and then sorts each group.
void DegreeReduction::sort_arcs() {
  first_arc_.assign(anchors_.size() + 1, 0);
  for (const Arc& arc : arcs_) ++first_arc_[arc.from];
  std::partial_sum(first_arc_.begin(), first_arc_.end(), first_arc_.begin());
  std::vector<Arc> sorted(arcs_.size());
  for (const Arc& arc : arcs_) sorted[static_cast<std::size_t>(--first_arc_[arc.from])] = arc;
  arcs_.swap(sorted);
  const auto is_before = [](const Arc& a, const Arc& b) {
    return std::tie(a.to, a.shape, a.smallest_vertex) < std::tie(b.to, b.shape, b.smallest_vertex);
  };
  for (int v = 0; v < anchors_.size(); ++v)
    std::sort(arcs_.begin() + first_arc_[v], arcs_.begin() + first_arc_[v + 1], is_before);
}

// All arcs between two vertices become one edge, whose weight is a hash of their shapes.
void DegreeReduction::make_reduced_graph() {
  const int anchors = anchors_.size();
  std::vector<Shape> shapes;
  for (const int v : anchors_) shapes.push_back(forest_.shape(v));
  std::vector<Shape> colours = shapes;
  std::ranges::sort(colours);
  PointVector<int> colour(anchors);
  for (int i = 0; i < anchors; ++i) {
    const auto place = std::ranges::lower_bound(colours, shapes[static_cast<std::size_t>(i)]);
    colour[i] = static_cast<int>(place - colours.begin());
  }
  std::vector<HalfEdge> edges;
  for (std::size_t i = 0; i < arcs_.size(); ++i) {
    const Arc& arc = arcs_[i];
    const bool is_first = i == 0 || arcs_[i - 1].from != arc.from || arcs_[i - 1].to != arc.to;
    if (is_first) edges.push_back({arc.from, arc.to, 0});
    edges.back().weight = mix(edges.back().weight + mix(arc.shape));
  }
  reduced_ = ColouredGraph(colour, edges);
}

// Fibres are carried without a look at weights, which shapes may have hashed to the same number by chance.
bool DegreeReduction::for_each_fibre_symmetry(const Visitor& visit) {
  if (!graph_.has_weights()) return visit_all(visit);
  AutomorphismCheck check(graph_);
  return visit_all(
      [&](const SparsePermutation& moves) { return check.is_automorphism(moves) && visit(moves); });
}

bool DegreeReduction::visit_all(const Visitor& visit) {
  return std::ranges::all_of(forest_.branching_nodes(),
                             [&](int node) { return exchange_twins(node, visit); }) &&
         exchange_parallels(visit) && reverse_loops(visit) &&
         std::ranges::all_of(cycles_, [&](const Cycle& cycle) { return rotate_and_reflect(cycle, visit); });
}

bool DegreeReduction::exchange_twins(int node, const Visitor& visit) {
  const auto parts = forest_.parts(node);
  for (std::size_t last = parts.size(), i = parts.size(); i-- > 0;) {
    if (last == parts.size() || forest_.shape(parts[i]) != forest_.shape(parts[last])) {
      last = i;
    } else if (!exchange(parts[i], parts[last], false, visit)) {
      return false;
    }
  }
  return true;
}

// Each core path is taken once, as the arc from its end with the smaller number.
bool DegreeReduction::exchange_parallels(const Visitor& visit) {
  for (std::size_t last = arcs_.size(), i = arcs_.size(); i-- > 0;) {
    const Arc& arc = arcs_[i];
    const auto is_parallel = [&arc](const Arc& other) {
      return arc.from == other.from && arc.to == other.to && arc.shape == other.shape;
    };
    if (arc.from > arc.to || arc.sequence < 0) continue;
    if (last == arcs_.size() || !is_parallel(arcs_[last])) {
      last = i;
    } else if (!exchange(arc.sequence, arcs_[last].sequence, arc.is_reversed != arcs_[last].is_reversed,
                         visit)) {
      return false;
    }
  }
  return true;
}

bool DegreeReduction::reverse_loops(const Visitor& visit) {
  return std::ranges::all_of(reversible_loops_, [&](int loop) {
    moves_.clear();
    return forest_.carry(loop, loop, moves_, true) && (moves_.empty() || visit(moves_));
  });
}

// Visits the rotation by the period, in the direction that carries the smallest vertex to the smaller of its
// two images, and the reflection that fixes the smallest vertex, if there is one.
bool DegreeReduction::rotate_and_reflect(const Cycle& cycle, const Visitor& visit) {
  const auto members = forest_.parts(cycle.node);
  const auto length = static_cast<int>(members.size());
  const auto member = [&](int i) { return members[static_cast<std::size_t>(i % length)]; };
  const auto visit_images = [&](const auto& image) {
    moves_.clear();
    for (int i = 0; i < length; ++i) {
      if (!forest_.carry(member(i), member(image(i)), moves_)) return false;
    }
    return moves_.empty() || visit(moves_);
  };
  int first = 0;
  while (forest_.smallest_vertex(member(first)) != forest_.smallest_vertex(cycle.node)) ++first;
  const int back = length - cycle.period;
  const bool is_backwards =
      forest_.smallest_vertex(member(first + back)) < forest_.smallest_vertex(member(first + cycle.period));
  const int step = is_backwards ? back : cycle.period;
  if (!visit_images([&](int i) { return i + step; })) return false;
  if (cycle.reflection < 0) return true;
  const int sum = (2 * first - cycle.reflection) % cycle.period == 0 ? 2 * first : cycle.reflection;
  return visit_images([&](int i) { return sum - i + length; });
}

bool DegreeReduction::exchange(int a, int b, bool is_reversed, const Visitor& visit) {
  moves_.clear();
  if (!forest_.carry(a, b, moves_, is_reversed)) return false;
  for (std::size_t i = 0, there = moves_.size(); i < there; ++i)
    moves_.push_back({moves_[i].image, moves_[i].point});
  return visit(moves_);
}

std::span<const DegreeReduction::Arc> DegreeReduction::arcs_between(int from, int to) const {
  const std::span all(arcs_.begin() + first_arc_[from], arcs_.begin() + first_arc_[from + 1]);
  const auto begin = std::ranges::lower_bound(all, to, {}, &Arc::to);
  const auto end = std::ranges::upper_bound(begin, all.end(), to, {}, &Arc::to);
  return {begin, end};
}

// An arc between two moved vertices is lifted from its end with the smaller number.
bool DegreeReduction::lift(std::span<const PointMove> moves, SparsePermutation& lifted) {
  lifted.clear();
  for (const auto& [point, image] : moves) image_[point] = image;
  const bool is_alike = std::ranges::all_of(moves, [&](PointMove move) { return lift_vertex(move, lifted); });
  for (const auto& [point, image] : moves) image_[point] = point;
  return is_alike;
}

bool DegreeReduction::lift_vertex(PointMove move, SparsePermutation& lifted) {
  if (!forest_.carry(anchors_[move.point], anchors_[move.image], lifted)) return false;
  for (const int end : reduced_.neighbours(move.point)) {
    if (image_[end] != end && end < move.point) continue;
    const auto from = arcs_between(move.point, end);
    const auto to = arcs_between(move.image, image_[end]);
    if (from.size() != to.size()) return false;
    for (std::size_t i = 0; i < from.size(); ++i) {
      const bool is_reversed = from[i].is_reversed != to[i].is_reversed;
      if ((from[i].sequence < 0) != (to[i].sequence < 0)) return false;
      if (from[i].sequence >= 0 && !forest_.carry(from[i].sequence, to[i].sequence, lifted, is_reversed))
        return false;
    }
  }
  return true;
}

}  // namespace symfold::detail

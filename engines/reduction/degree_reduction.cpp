#include "engines/reduction/degree_reduction.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "engines/base/images.h"
#include "engines/base/mix.h"
#include "engines/reduction/cyclic_sequence.h"

namespace symfold::detail {
namespace {

template <class Iterator>
Shape shape_of(const FibreForest& forest, Iterator begin, Iterator end) {
  Shape shape = 0;
  for (; begin != end; ++begin) shape = mix(shape + forest.shape(*begin));
  return shape;
}

Shape forward_shape(const FibreForest& forest, std::span<const int> nodes) {
  return shape_of(forest, nodes.begin(), nodes.end());
}

Shape backward_shape(const FibreForest& forest, std::span<const int> nodes) {
  return shape_of(forest, nodes.rbegin(), nodes.rend());
}

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
      degree_(take_off_trees()),
      chains_(graph, degree_) {
  chains_.find();
  keep_middles();
  hang_loops();
  for (const CoreChains::Chain& cycle : chains_.cycles()) hang_cycle(chains_.inner_vertices(cycle));
  number_anchors();
  make_arcs();
  make_reduced_graph();
  forest_.arrange();
  image_ = identity_images(reduced_.vertex_count());
}

// Layer by layer, so that each tree is rooted at its centre; where there are two, at a set of both. Gives the
// degrees inside the core.
PointVector<int> DegreeReduction::take_off_trees() {
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
    for (const int v : leaves) parents.push_back(hang_leaf(degree, v));
    next.clear();
    for (const int v : leaves) degree[v] = -1;
    for (const int parent : parents) {
      if (parent >= 0 && --degree[parent] == 1) next.push_back(parent);
    }
    leaves.swap(next);
  }
  return degree;
}

// Gives the neighbour that it hangs from, -1 for a tree's root.
int DegreeReduction::hang_leaf(const PointVector<int>& degree, int v) {
  if (degree[v] == 0) {
    forest_.hang(v, components_);
    return -1;
  }
  const int parent =
      *std::ranges::find_if(graph_.neighbours(v), [&degree](int neighbour) { return degree[neighbour] > 0; });
  if (degree[parent] > 1) {
    forest_.hang(v, parent);
  } else if (v < parent) {
    const int centres = forest_.add_set();
    forest_.hang(v, centres);
    forest_.hang(parent, centres);
    forest_.hang(centres, components_);
  }
  return parent;
}

// Of chains that can be turned round, of any kind of which one has its middle before the fibres of both ends.
// The halves cannot be turned round: their ends have different degrees.
void DegreeReduction::keep_middles() {
  const auto turning_shape = [this](const CoreChains::Chain& chain) {
    const auto inner = chains_.inner_vertices(chain);
    if (inner.size() % 2 == 0 || chain.from == chain.to) return Shape{0};
    const Shape shape = forward_shape(forest_, inner);
    return shape == backward_shape(forest_, inner) ? shape : 0;
  };
  std::vector<Shape> kept;
  for (const CoreChains::Chain& chain : chains_.chains()) {
    if (chain.begin == chain.end || forest_.shape(chain.from) != forest_.shape(chain.to)) continue;
    const int first = std::min(forest_.smallest_vertex(chain.from), forest_.smallest_vertex(chain.to));
    if (forest_.smallest_vertex(middle(chains_.inner_vertices(chain))) < first)
      kept.push_back(turning_shape(chain));
  }
  std::sort(kept.begin(), kept.end());
  kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
  if (!kept.empty() && kept.front() == 0) kept.erase(kept.begin());
  if (kept.empty()) return;
  for (const CoreChains::Chain& chain : chains_.chains()) {
    if (std::ranges::binary_search(kept, turning_shape(chain)))
      chains_.add_anchor(middle(chains_.inner_vertices(chain)));
  }
  chains_.find();
}

// Read in the direction of the smaller shape.
void DegreeReduction::hang_loops() {
  for (const CoreChains::Chain& chain : chains_.chains()) {
    if (chain.from != chain.to) continue;
    const auto inner = chains_.inner_vertices(chain);
    std::vector<int> members(inner.begin(), inner.end());
    const Shape forwards = forward_shape(forest_, inner);
    const Shape backwards = backward_shape(forest_, inner);
    if (backwards < forwards) std::ranges::reverse(members);
    const int loop = forest_.add_sequence(members, std::min(forwards, backwards));
    if (forwards == backwards) turning_loops_.push_back(loop);
    forest_.hang(loop, chain.from);
  }
}

// Read from where and in the direction in which the shapes are least.
void DegreeReduction::hang_cycle(std::span<const int> vertices) {
  const auto length = static_cast<int>(vertices.size());
  std::vector<int> members(vertices.begin(), vertices.end());
  std::vector<Shape> shapes;
  for (const int v : vertices) shapes.push_back(forest_.shape(v));
  std::vector<Shape> reversed(shapes.rbegin(), shapes.rend());
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
  forest_.hang(node, components_);
}

void DegreeReduction::number_anchors() {
  for (const int v : chains_.core()) {
    if (chains_.is_anchor(v)) anchors_.push_back(v);
  }
  if (anchors_.empty()) return;
  number_.assign(graph_.vertex_count(), -1);
  PointVector<int> smallest(graph_.vertex_count());
  for (const int v : anchors_) smallest[v] = forest_.smallest_vertex(v);
  for (const CoreChains::Chain& chain : chains_.chains()) {
    for (const int v : chains_.inner_vertices(chain)) {
      for (const int end : {chain.from, chain.to})
        smallest[end] = std::min(smallest[end], forest_.smallest_vertex(v));
    }
  }
  std::ranges::sort(anchors_, {}, [&smallest](int v) { return std::pair(smallest[v], v); });
  for (int i = 0; i < anchors_.size(); ++i) number_[anchors_[i]] = i;
}

void DegreeReduction::make_arcs() {
  for (const CoreChains::Chain& chain : chains_.chains()) {
    if (chain.from == chain.to) continue;
    const auto inner = chains_.inner_vertices(chain);
    const Shape forwards = forward_shape(forest_, inner);
    const int sequence = inner.empty() ? -1 : forest_.add_sequence(inner, forwards);
    const int smallest = inner.empty() ? graph_.vertex_count() : forest_.smallest_vertex(sequence);
    const int from = number_[chain.from];
    const int to = number_[chain.to];
    arcs_.push_back({from, to, forwards, smallest, sequence, false});
    arcs_.push_back({to, from, backward_shape(forest_, inner), smallest, sequence, true});
  }
  sort_arcs();
}

// By counting those from each vertex, and then each stretch.
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

// All arcs between two vertices become one edge, whose weight is a number over their shapes.
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
  std::vector<DirectedEdge> edges;
  for (std::size_t i = 0; i < arcs_.size(); ++i) {
    const Arc& arc = arcs_[i];
    const bool is_first = i == 0 || arcs_[i - 1].from != arc.from || arcs_[i - 1].to != arc.to;
    if (is_first) edges.push_back({arc.from, arc.to, 0});
    edges.back().weight = mix(edges.back().weight + mix(arc.shape));
  }
  reduced_ = ColouredGraph(colour, edges);
}

bool DegreeReduction::for_each_own_symmetry(const Use& use) {
  return std::ranges::all_of(forest_.branchings(), [&](int node) { return exchange_twins(node, use); }) &&
         exchange_parallels(use) && turn_loops(use) &&
         std::ranges::all_of(cycles_, [&](const Cycle& cycle) { return turn_cycle(cycle, use); });
}

bool DegreeReduction::exchange_twins(int node, const Use& use) {
  const auto parts = forest_.parts(node);
  for (std::size_t last = parts.size(), i = parts.size(); i-- > 0;) {
    if (last == parts.size() || forest_.shape(parts[i]) != forest_.shape(parts[last])) {
      last = i;
    } else if (!exchange(parts[i], parts[last], false, use)) {
      return false;
    }
  }
  return true;
}

// Each chain is seen from its end of the smaller number.
bool DegreeReduction::exchange_parallels(const Use& use) {
  for (std::size_t last = arcs_.size(), i = arcs_.size(); i-- > 0;) {
    const Arc& arc = arcs_[i];
    const auto is_parallel = [&arc](const Arc& other) {
      return arc.from == other.from && arc.to == other.to && arc.shape == other.shape;
    };
    if (arc.from > arc.to || arc.sequence < 0) continue;
    if (last == arcs_.size() || !is_parallel(arcs_[last])) {
      last = i;
    } else if (!exchange(arc.sequence, arcs_[last].sequence, arc.is_reversed != arcs_[last].is_reversed,
                         use)) {
      return false;
    }
  }
  return true;
}

bool DegreeReduction::turn_loops(const Use& use) {
  return std::ranges::all_of(turning_loops_, [&](int loop) {
    moves_.clear();
    return forest_.carry(loop, loop, moves_, true) && (moves_.empty() || use(moves_));
  });
}

// By the period, the smallest vertex to the smaller of the two that it can go to; and round, so that it stays
// where it is, if the cycle allows that.
bool DegreeReduction::turn_cycle(const Cycle& cycle, const Use& use) {
  const auto members = forest_.parts(cycle.node);
  const auto length = static_cast<int>(members.size());
  const auto member = [&](int i) { return members[static_cast<std::size_t>(i % length)]; };
  const auto use_images = [&](const auto& image) {
    moves_.clear();
    for (int i = 0; i < length; ++i) {
      if (!forest_.carry(member(i), member(image(i)), moves_)) return false;
    }
    return moves_.empty() || use(moves_);
  };
  int first = 0;
  while (forest_.smallest_vertex(member(first)) != forest_.smallest_vertex(cycle.node)) ++first;
  const int back = length - cycle.period;
  const bool is_backwards =
      forest_.smallest_vertex(member(first + back)) < forest_.smallest_vertex(member(first + cycle.period));
  const int step = is_backwards ? back : cycle.period;
  if (!use_images([&](int i) { return i + step; })) return false;
  if (cycle.reflection < 0) return true;
  const int sum = (2 * first - cycle.reflection) % cycle.period == 0 ? 2 * first : cycle.reflection;
  return use_images([&](int i) { return sum - i + length; });
}

bool DegreeReduction::exchange(int a, int b, bool is_reversed, const Use& use) {
  moves_.clear();
  if (!forest_.carry(a, b, moves_, is_reversed)) return false;
  for (std::size_t i = 0, there = moves_.size(); i < there; ++i)
    moves_.push_back({moves_[i].image, moves_[i].point});
  return use(moves_);
}

std::span<const DegreeReduction::Arc> DegreeReduction::arcs_between(int from, int to) const {
  const std::span all(arcs_.begin() + first_arc_[from], arcs_.begin() + first_arc_[from + 1]);
  const auto begin = std::ranges::lower_bound(all, to, {}, &Arc::to);
  const auto end = std::ranges::upper_bound(begin, all.end(), to, {}, &Arc::to);
  return {begin, end};
}

// An arc between two moved vertices is lifted from its end of the smaller number.
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

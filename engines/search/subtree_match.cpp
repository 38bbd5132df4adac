#include "engines/search/subtree_match.h"

#include <algorithm>

#include "engines/base/mix.h"
#include "engines/base/union_find.h"

namespace symfold::detail {
namespace {

// A left tree with more nodes, or more generators noted at them, leaves the question open, so that its memory
// is bounded.
constexpr std::size_t kMaxNodes = 20'000;
constexpr std::size_t kMaxNoted = 2'000'000;

std::uint64_t hash_of(const Trace& trace) {
  std::uint64_t hash = trace.size();
  for (const std::uint64_t event : trace) hash = mix(hash + event);
  return hash;
}

}  // namespace

SubtreeMatch::SubtreeMatch(const ColouredGraph& graph, OrderedPartition& right, Refiner& right_refiner,
                           const PermutationList& generators, WorkBudget& budget)
    : right_(right),
      right_refiner_(right_refiner),
      generators_(generators),
      budget_(budget),
      left_(0),
      left_refiner_(graph, left_, budget) {}

void SubtreeMatch::set_level(const OrderedPartition& end, int splits, int vertex) {
  if (left_.vertex_count() == 0) left_ = end;
  splits_before_ = splits;
  vertex_ = vertex;
  generator_count_ = generators_.size();
  nodes_.clear();
  noted_generators_ = 0;
}

SubtreeMatch::Answer SubtreeMatch::run(int first_split,
                                       const std::function<bool(const OrderedPartition&)>& attempt) {
  if (nodes_.empty()) {
    left_.undo(splits_before_);
    individualise_left(vertex_);
    nodes_.push_back({-1, vertex_, 0, true, -1, -1, {}});
    for (std::size_t g = 0; g < generator_count_; ++g) nodes_[0].generators.push_back(g);
    left_path_ = {0};
    left_splits_ = {left_.split_count()};
  }
  first_split_ = first_split;
  attempt_ = &attempt;
  right_path_.clear();
  has_right_ended_ = false;
  return visit(0, 0);
}

SubtreeMatch::Answer SubtreeMatch::visit(int node, std::size_t depth) {
  if (budget_.is_spent() || nodes_.size() > kMaxNodes || noted_generators_ > kMaxNoted) return Answer::kOpen;
  move_left_to(node);
  if (depth == right_path_.size()) {
    if (has_right_ended_ || !extend_right()) return (*attempt_)(left_) ? Answer::kFound : Answer::kNone;
  }
  const RightStep step = right_path_[depth];
  if (nodes_[static_cast<std::size_t>(node)].first_child < 0) expand(node, step.cell);
  const auto [begin, end] = std::pair(nodes_[static_cast<std::size_t>(node)].first_child,
                                      nodes_[static_cast<std::size_t>(node)].children_end);
  for (int child = begin; child < end; ++child) {
    if (hash_of_child(child) != step.hash) continue;
    const Answer answer = visit(child, depth + 1);
    if (answer != Answer::kNone) return answer;
  }
  return budget_.is_spent() ? Answer::kOpen : Answer::kNone;
}

// Takes the right path one step further. Returns false if there is nothing to individualise.
bool SubtreeMatch::extend_right() {
  const int cell = next_cell();
  has_right_ended_ = cell < 0;
  if (has_right_ended_) return false;
  trace_.clear();
  right_refiner_.individualise_and_record(right_.vertex_at(cell), trace_);
  right_path_.push_back({cell, hash_of(trace_)});
  return true;
}

// The largest of the cells that the splits have made; if all of these are single vertices, the first one that
// has lost some.
int SubtreeMatch::next_cell() const {
  int best = -1;
  for (int i = first_split_; i < right_.split_count(); ++i) {
    const int cell = right_.split_at(i).start;
    if (right_.length(cell) > (best < 0 ? 1 : right_.length(best))) best = cell;
  }
  if (best >= 0) return best;
  for (int i = first_split_; i < right_.split_count(); ++i) {
    const int cell = right_.split_at(i).parent;
    if (right_.length(cell) > 1) return cell;
  }
  return -1;
}

void SubtreeMatch::expand(int node, int cell) {
  budget_.spend(static_cast<std::size_t>(left_.vertex_count()));
  UnionFind orbits(left_.vertex_count());
  std::vector<std::size_t> generators;
  const Node& expanded = nodes_[static_cast<std::size_t>(node)];
  const auto& inherited =
      node == 0 ? expanded.generators : nodes_[static_cast<std::size_t>(expanded.parent)].generators;
  for (const std::size_t g : inherited) {
    const auto moves = generators_[g];
    budget_.spend(moves.size());
    const auto place = std::ranges::lower_bound(moves, expanded.vertex, {}, &PointMove::point);
    if (place != moves.end() && place->point == expanded.vertex) continue;
    generators.push_back(g);
    for (const auto& [point, image] : moves) orbits.unite(point, image);
  }
  noted_generators_ += generators.size();
  nodes_[static_cast<std::size_t>(node)].generators = std::move(generators);
  const auto members = left_.members(cell);
  const std::vector<int> candidates(members.begin(), members.end());
  PointVector<char> is_taken(left_.vertex_count(), 0);
  const auto first_child = static_cast<int>(nodes_.size());
  for (const int v : candidates) {
    const int orbit = orbits.find(v);
    if (is_taken[orbit] != 0) continue;
    is_taken[orbit] = 1;
    nodes_.push_back({node, v, 0, false, -1, -1, {}});
  }
  nodes_[static_cast<std::size_t>(node)].first_child = first_child;
  nodes_[static_cast<std::size_t>(node)].children_end = static_cast<int>(nodes_.size());
}

// Children are hashed when they are first compared, because the first of them may lead to an automorphism.
std::uint64_t SubtreeMatch::hash_of_child(int child) {
  Node& node = nodes_[static_cast<std::size_t>(child)];
  if (node.is_hashed) return node.hash;
  move_left_to(node.parent);
  node.hash = individualise_left(node.vertex);
  node.is_hashed = !budget_.is_spent();
  left_.undo(left_splits_.back());
  return node.hash;
}

void SubtreeMatch::move_left_to(int node) {
  std::vector<int> path;
  for (int n = node; n >= 0; n = nodes_[static_cast<std::size_t>(n)].parent) path.push_back(n);
  std::reverse(path.begin(), path.end());
  std::size_t common = 0;
  while (common < path.size() && common < left_path_.size() && path[common] == left_path_[common]) ++common;
  left_path_.resize(common);
  left_splits_.resize(common);
  left_.undo(left_splits_.back());
  for (; common < path.size(); ++common) {
    individualise_left(nodes_[static_cast<std::size_t>(path[common])].vertex);
    left_path_.push_back(path[common]);
    left_splits_.push_back(left_.split_count());
  }
}

std::uint64_t SubtreeMatch::individualise_left(int vertex) {
  trace_.clear();
  left_refiner_.individualise_and_record(vertex, trace_);
  return hash_of(trace_);
}

}  // namespace symfold::detail

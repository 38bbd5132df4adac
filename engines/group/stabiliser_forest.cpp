#include "engines/group/stabiliser_forest.h"

#include <cstdlib>
#include <queue>
#include <utility>

#include "engines/base/union_find.h"

namespace symfold::detail {
namespace {

// Shorter runs are applied step by step.
constexpr int kMinPower = 4;

SparsePermutation inverted(std::span<const PointMove> moves) {
  SparsePermutation inverse;
  inverse.reserve(moves.size());
  for (const auto& [point, image] : moves) inverse.push_back({image, point});
  std::ranges::sort(inverse, {}, &PointMove::point);
  return inverse;
}

}  // namespace

StabiliserForest::StabiliserForest(int degree, const PermutationList& generators)
    : generators_(generators),
      next_base_(degree + 1, degree),
      joined_at_(degree, -1),
      joined_to_(degree, -1),
      whole_(degree, -1),
      parent_(degree, -1),
      depth_(degree, -1),
      edge_(degree, 0) {
  std::vector<std::vector<int>> generators_at(static_cast<std::size_t>(degree));
  for (std::size_t g = 0; g < generators.size(); ++g) {
    generators_at[static_cast<std::size_t>(generators[g].front().point)].push_back(static_cast<int>(g));
    inverses_.push_back(inverted(generators[g]));
  }
  PointVector<std::vector<std::pair<int, int>>> edges(degree);  // the point at the other end, the generator
  PointVector<int> size(degree, 1);
  PointVector<int> merger_of(degree);  // by root of a class
  PointVector<int> next_in_cycle(degree, -1);
  std::vector<PointMove> cycle_order;
  mergers_.reserve(2 * static_cast<std::size_t>(degree));
  for (int x = 0; x < degree; ++x) {
    merger_of[x] = x;
    mergers_.push_back({degree, x, -1, -1});
  }
  for (int p = degree - 1; p >= 0; --p) {
    for (const int g : generators_at[static_cast<std::size_t>(p)]) {
      // Cycle after cycle, so that paths have long runs of one generator.
      const auto moves = generators[static_cast<std::size_t>(g)];
      cycle_order.clear();
      for (const auto& [point, image] : moves) next_in_cycle[point] = image;
      for (const PointMove move : moves) {
        for (int point = move.point; next_in_cycle[point] >= 0;) {
          cycle_order.push_back({point, next_in_cycle[point]});
          point = std::exchange(next_in_cycle[point], -1);
        }
      }
      for (const auto& [point, image] : cycle_order) {
        int a = class_of(point, 0);
        int b = class_of(image, 0);
        if (a == b) continue;
        edges[point].emplace_back(image, g);
        edges[image].emplace_back(point, ~g);
        if (size[a] < size[b]) std::swap(a, b);
        joined_at_[b] = p;
        joined_to_[b] = a;
        size[a] += size[b];
        const int smallest = std::min(mergers_[static_cast<std::size_t>(merger_of[a])].smallest,
                                      mergers_[static_cast<std::size_t>(merger_of[b])].smallest);
        mergers_.push_back({p, smallest, merger_of[a], merger_of[b]});
        merger_of[a] = static_cast<int>(mergers_.size()) - 1;
      }
    }
    next_base_[p] = next_base_[p + 1];
    if (generators_at[static_cast<std::size_t>(p)].empty()) continue;
    next_base_[p] = p;
    base_.push_back(p);
    orbit_lengths_.push_back(size[class_of(p, 0)]);
    whole_[p] = merger_of[class_of(p, 0)];
  }
  std::ranges::reverse(base_);
  std::ranges::reverse(orbit_lengths_);

  std::vector<int> queue;
  for (int root = 0; root < degree; ++root) {
    if (depth_[root] >= 0) continue;
    depth_[root] = 0;
    queue.assign(1, root);
    for (std::size_t i = 0; i < queue.size(); ++i) {
      const int point = queue[i];
      for (const auto& [other, g] : edges[point]) {
        if (depth_[other] >= 0) continue;
        depth_[other] = depth_[point] + 1;
        parent_[other] = point;
        edge_[other] = g;
        queue.push_back(other);
      }
    }
  }
}

// Returns what carries one point to the other along the forest, in the order in which it is applied.
std::vector<StabiliserForest::Run> StabiliserForest::path(int from, int to) const {
  std::vector<Run> up;
  std::vector<Run> down;
  const auto add = [](std::vector<Run>& runs, int edge, int sign) {
    const int generator = edge >= 0 ? edge : ~edge;
    const int power = edge >= 0 ? sign : -sign;
    if (!runs.empty() && runs.back().generator == generator && (runs.back().power > 0) == (power > 0)) {
      runs.back().power += power;
    } else {
      runs.push_back({generator, power});
    }
  };
  while (from != to) {
    if (depth_[from] >= depth_[to]) {
      add(up, edge_[from], -1);
      from = parent_[from];
    } else {
      add(down, edge_[to], 1);
      to = parent_[to];
    }
  }
  up.insert(up.end(), down.rbegin(), down.rend());
  return up;
}

// Walks along each cycle once.
SparsePermutation StabiliserForest::powered(const Run& run) const {
  const auto generator = generators_[static_cast<std::size_t>(run.generator)];
  const auto index_of = [&generator](int point) {
    return static_cast<std::size_t>(std::ranges::lower_bound(generator, point, {}, &PointMove::point) -
                                    generator.begin());
  };
  SparsePermutation moves;
  std::vector<char> is_done(generator.size(), 0);
  std::vector<int> cycle;
  for (std::size_t i = 0; i < generator.size(); ++i) {
    if (is_done[i] != 0) continue;
    cycle.clear();
    for (std::size_t j = i; is_done[j] == 0; j = index_of(generator[j].image)) {
      is_done[j] = 1;
      cycle.push_back(generator[j].point);
    }
    const int length = static_cast<int>(cycle.size());
    const int shift = (run.power % length + length) % length;
    if (shift == 0) continue;
    for (int k = 0; k < length; ++k) {
      moves.push_back(
          {cycle[static_cast<std::size_t>(k)], cycle[static_cast<std::size_t>((k + shift) % length)]});
    }
  }
  std::ranges::sort(moves, {}, &PointMove::point);
  return moves;
}

template <class Apply>
void StabiliserForest::apply(const Run& run, const Apply& apply) const {
  const int times = std::abs(run.power);
  if (times >= kMinPower) {
    apply(powered(run));
    return;
  }
  const PermutationList& list = run.power > 0 ? generators_ : inverses_;
  for (int i = 0; i < times; ++i) apply(list[static_cast<std::size_t>(run.generator)]);
}

// Makes the smallest moved point a fixed one, again and again, by elements that move no point below it.
bool StabiliserForest::sift(WorkPermutation& permutation) const {
  std::priority_queue<int, std::vector<int>, std::greater<>> moved;
  std::size_t listed = 0;
  for (;;) {
    for (; listed < permutation.points().size(); ++listed) moved.push(permutation.points()[listed]);
    if (moved.empty()) return true;
    const int point = moved.top();
    const int image = permutation[point];
    if (image == point) {
      moved.pop();
      continue;
    }
    if (whole_[point] < 0 || !reaches(point, image)) return false;
    bring_back(point, permutation);
  }
}

void StabiliserForest::bring_back(int point, WorkPermutation& permutation) const {
  for (const Run& run : path(permutation[point], point)) {
    apply(run, [&](std::span<const PointMove> moves) { permutation.then(moves); });
  }
}

// Returns the first base point from `from` on at which a smaller image may be found: it is moved, or a point
// above it has an image below it. An image of a point that stays is smaller for no base point below it.
int StabiliserForest::next_level(int from, const SparsePermutation& moves) const {
  int next = joined_at_.size();
  for (const auto& [point, image] : moves) {
    const int first = next_base_[std::max(from, image < point ? image + 1 : point)];
    if (point >= from && first <= point) next = std::min(next, first);
  }
  return next;
}

// Returns the smallest point of the base point's orbit that the permutation fixes, or the bound if there is
// none below it. Opens the classes with the smallest members first.
int StabiliserForest::smallest_fixed_member(int base_point, int bound,
                                            const WorkPermutation& permutation) const {
  using Entry = std::pair<int, int>;  // smallest member, merger
  std::priority_queue<Entry, std::vector<Entry>, std::greater<>> open;
  const auto add = [&](int merger) {
    const int smallest = mergers_[static_cast<std::size_t>(merger)].smallest;
    if (smallest < bound) open.emplace(smallest, merger);
  };
  add(whole_[base_point]);
  while (!open.empty()) {
    const auto [smallest, number] = open.top();
    open.pop();
    const Merger& merger = mergers_[static_cast<std::size_t>(number)];
    if (merger.left < 0) {
      if (permutation[smallest] == smallest) return smallest;
      continue;
    }
    add(merger.left);
    add(merger.right);
  }
  return bound;
}

// At each base point in turn, the image becomes the smallest one that the points of its orbit have. The
// points between base points have no choice left.
SparsePermutation StabiliserForest::smallest_carrier(int base_point, int point, WorkPermutation& work) const {
  for (const Run& run : path(base_point, point)) {
    apply(run, [&](std::span<const PointMove> moves) { work.then(moves); });
  }
  SparsePermutation moves = work.moves();
  const int degree = joined_at_.size();
  for (int level = next_level(base_point + 1, moves); level < degree; level = next_level(level + 1, moves)) {
    int best = work[level];
    int source = level;
    for (const auto& [moved, image] : moves) {
      if (moved <= level || image >= best || !reaches(level, moved)) continue;
      best = image;
      source = moved;
    }
    const int fixed = smallest_fixed_member(level, best, work);
    if (fixed < best) source = fixed;
    if (source == level) continue;
    std::vector<Run> runs = path(level, source);
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
      apply(*run, [&](std::span<const PointMove> step) { work.after(step); });
    }
    moves = work.moves();
  }
  work.set_identity();
  return moves;
}

// Returns the smallest members of the classes that became one with the base point's at its level.
std::vector<int> StabiliserForest::joined_classes(int base_point) const {
  std::vector<int> smallest;
  std::vector<int> open{whole_[base_point]};
  while (!open.empty()) {
    const Merger& merger = mergers_[static_cast<std::size_t>(open.back())];
    open.pop_back();
    if (merger.level != base_point) {
      smallest.push_back(merger.smallest);
    } else {
      open.push_back(merger.left);
      open.push_back(merger.right);
    }
  }
  std::ranges::sort(smallest);
  return smallest;
}

PermutationList StabiliserForest::canonical_generators() const {
  const int degree = joined_at_.size();
  WorkPermutation work(degree);
  UnionFind reached(degree);
  PermutationList generators;
  for (auto base_point = base_.rbegin(); base_point != base_.rend(); ++base_point) {
    for (const int point : joined_classes(*base_point)) {
      if (reached.find(point) == reached.find(*base_point)) continue;
      const SparsePermutation carrier = smallest_carrier(*base_point, point, work);
      for (const auto& [moved, image] : carrier) reached.unite(moved, image);
      generators.push_back(carrier);
    }
  }
  return generators;
}

}  // namespace symfold::detail

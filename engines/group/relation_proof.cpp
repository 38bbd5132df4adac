#include "engines/group/relation_proof.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "engines/base/images.h"
#include "engines/base/mix.h"
#include "engines/base/point_cells.h"
#include "engines/base/point_vector.h"
#include "engines/base/union_find.h"
#include "engines/group/orbit_tree.h"
#include "engines/group/random_products.h"
#include "engines/group/work_permutation.h"

namespace symfold::detail {
namespace {

// Few arcs prove most groups and cost little, so they are tried first.
constexpr std::array<std::size_t, 3> kMaxArcs{std::size_t{1} << 12, std::size_t{1} << 16,
                                              std::size_t{1} << 20};
// Images of points, and of arcs, under all generators.
constexpr std::size_t kMaxImages = std::size_t{1} << 26;

// Each joins two parts of a suborbit with a chance of at least a half.
constexpr int kStabiliserElements = 32;

class RelationProof {
 public:
  RelationProof(int degree, const PermutationList& generators, const StabiliserForest& forest)
      : degree_(degree),
        forest_(forest),
        random_(degree, generators),
        orbits_(degree),
        tree_(degree),
        arcs_(degree) {
    for (std::size_t g = 0; g < generators.size(); ++g) {
      PointVector<int>& images = generators_.emplace_back(identity_images(degree));
      for (const auto& [point, image] : generators[g]) {
        images[point] = image;
        orbits_.unite(point, image);
      }
    }
  }

  bool run() {
    const std::vector<Points> orbits = orbits_.lists();
    for (const std::size_t max_arcs : kMaxArcs) {
      arcs_ = PointVector<std::vector<Arc>>(degree_);
      for (const Points& orbit : orbits)
        add_relations(orbit.front(), std::min(max_arcs, kMaxImages / generators_.size()) / orbits.size());
      if (bounds_order(orbits)) return true;
    }
    return false;
  }

 private:
  using Points = std::vector<int>;
  struct Arc {
    std::uint32_t relation;
    int end;
  };

  std::vector<Points> sparse_suborbits(int root);
  void add_relations(int root, std::size_t max_arcs);
  void make_relation(const Points& suborbit);
  bool is_kept() const;
  bool bounds_order(const std::vector<Points>& orbits) const;
  void refine(PointCells& cells) const;

  int degree_;
  const StabiliserForest& forest_;
  RandomProducts random_;
  std::vector<PointVector<int>> generators_;
  UnionFind orbits_;
  OrbitTree tree_;                      // of the latest root
  PointVector<Points> ends_;            // of the latest relation, by point in the tree
  PointVector<std::vector<Arc>> arcs_;  // of all relations and their inverses
  std::uint32_t relation_count_ = 0;
};

// Returns guesses of the orbits of the root's stabiliser, the shortest first, without those that hold all
// other points of an orbit: they say nothing.
std::vector<RelationProof::Points> RelationProof::sparse_suborbits(int root) {
  UnionFind parts(degree_);
  WorkPermutation work(degree_);
  for (int i = 0; i < kStabiliserElements; ++i) {
    work.then(random_.next());
    forest_.bring_back(root, work);
    for (const int point : work.points()) parts.unite(point, work[point]);
    work.set_identity();
  }
  std::vector<Points> chosen;
  for (Points& part : parts.lists()) {
    const int first = part.front();
    const int others = orbits_.size_of_class(first) - (tree_.contains(first) ? 1 : 0);
    if (first != root && static_cast<int>(part.size()) < others) chosen.push_back(std::move(part));
  }
  std::ranges::stable_sort(chosen, {}, &Points::size);
  return chosen;
}

void RelationProof::add_relations(int root, std::size_t max_arcs) {
  tree_.set_root(root);
  tree_.grow([&](int point, const auto& step) {
    for (std::size_t g = 0; g < generators_.size(); ++g) step(static_cast<int>(g), generators_[g][point]);
  });
  std::size_t arcs = 0;
  for (const Points& suborbit : sparse_suborbits(root)) {
    arcs += suborbit.size() * static_cast<std::size_t>(tree_.size());
    if (arcs > max_arcs) return;
    make_relation(suborbit);
    if (!is_kept()) continue;
    for (const int point : tree_.points()) {
      for (const int end : ends_[point]) {
        arcs_[point].push_back({relation_count_, end});
        arcs_[end].push_back({relation_count_ + 1, point});
      }
    }
    relation_count_ += 2;
  }
}

void RelationProof::make_relation(const Points& suborbit) {
  ends_ = PointVector<Points>(degree_);
  for (const int point : tree_.points()) {
    Points& ends = ends_[point];
    if (tree_.depth(point) == 0) {
      ends = suborbit;
      continue;
    }
    const PointVector<int>& images = generators_[static_cast<std::size_t>(tree_.generator(point))];
    for (const int end : ends_[tree_.parent(point)]) ends.push_back(images[end]);
  }
}

// Returns true if each generator carries each arc to one. If the suborbit was guessed too small, some
// generator carries an arc to none.
bool RelationProof::is_kept() const {
  PointVector<int> marks(degree_, -1);
  int mark = 0;
  for (const PointVector<int>& images : generators_) {
    for (const int point : tree_.points()) {
      for (const int end : ends_[images[point]]) marks[end] = mark;
      if (!std::ranges::all_of(ends_[point], [&](int end) { return marks[images[end]] == mark; }))
        return false;
      ++mark;
    }
  }
  return true;
}

// Returns true if the cells of the base points are as long as the orbits that the generators show.
bool RelationProof::bounds_order(const std::vector<Points>& orbits) const {
  std::vector<std::uint64_t> keys(static_cast<std::size_t>(degree_));
  for (std::size_t i = 0; i < orbits.size(); ++i) {
    for (const int point : orbits[i]) keys[static_cast<std::size_t>(point)] = i;
  }
  PointCells cells({0, static_cast<std::uint32_t>(degree_)});
  cells.split(keys);
  for (std::size_t i = 0; i < forest_.base().size(); ++i) {
    const auto base_point = static_cast<std::uint32_t>(forest_.base()[i]);
    const std::uint32_t cell = cells.cell_of(base_point);
    if (cells.size_of(cell) != static_cast<std::uint32_t>(forest_.orbit_lengths()[i])) return false;
    cells.clear_changed();
    cells.split_off(cell, [&](std::uint32_t point) { return point == base_point; });
    refine(cells);
  }
  return cells.are_single();
}

// Points of one cell have had equal keys before, so only arcs of points whose cell has changed are looked at.
void RelationProof::refine(PointCells& cells) const {
  std::vector<std::uint64_t> keys(cells.point_count());
  do {
    std::ranges::fill(keys, 0);
    for (const std::uint32_t point : cells.changed()) {
      const std::uint64_t colour = mix(cells.cell_of(point));
      for (const auto& [relation, end] : arcs_[static_cast<int>(point)])
        keys[static_cast<std::size_t>(end)] += mix(colour + relation);
    }
    cells.clear_changed();
  } while (cells.split(keys));
}

}  // namespace

bool are_proved_strong(int degree, const PermutationList& generators, const StabiliserForest& forest) {
  if (generators.size() > kMaxImages / static_cast<std::size_t>(degree)) return false;
  return RelationProof(degree, generators, forest).run();
}

}  // namespace symfold::detail

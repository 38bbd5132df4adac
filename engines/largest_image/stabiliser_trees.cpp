#include "engines/largest_image/stabiliser_trees.h"

#include <algorithm>

#include "engines/base/images.h"
#include "engines/base/mix.h"
#include "engines/base/union_find.h"
#include "engines/group/stabiliser_chain.h"

namespace symfold::detail {
namespace {

// Entries of dense images, 4 bytes each, so that they stay in a processor's caches.
constexpr std::size_t kMaxDenseEntries = std::size_t{1} << 20;

}  // namespace

StabiliserTrees::StabiliserTrees(const PermutationGroup& group) : degree_(group.degree()) {
  StabiliserChain chain{group.base(), group.orbit_lengths(), {}};
  for (SparsePermutation moves : group.generators()) chain.generators.push_back(std::move(moves));
  add_shortcuts(degree_, chain);
  generators_ = std::move(chain.generators);
  steps_.resize(degree());
  for (std::uint32_t g = 0; g < generators_.size(); ++g) {
    for (const auto& [point, image] : generators_[g])
      steps_[static_cast<std::size_t>(point)].push_back({g, static_cast<std::uint32_t>(image)});
  }
  OrbitTree tree(degree_);
  for (const int base : chain.base) {
    tree.set_root(base);
    tree.grow([&](int point, const auto& step) {
      for (const auto& [generator, image] : steps_[static_cast<std::size_t>(point)]) {
        if (generators_[generator].front().point >= base)
          step(static_cast<int>(generator), static_cast<int>(image));
      }
    });
    Level& level = levels_.emplace_back();
    level.base = static_cast<std::uint32_t>(base);
    level.orbit.assign(tree.points().begin(), tree.points().end());
    std::ranges::sort(level.orbit);
    const auto place_of = [&](int point) {
      return static_cast<std::uint32_t>(
          std::ranges::lower_bound(level.orbit, static_cast<std::uint32_t>(point)) - level.orbit.begin());
    };
    for (const std::uint32_t point : level.orbit) {
      const int x = static_cast<int>(point);
      const bool is_root = x == base;
      level.parents.push_back(is_root ? kNone : place_of(tree.parent(x)));
      level.generators.push_back(is_root ? kNone : static_cast<std::uint32_t>(tree.generator(x)));
    }
  }
  make_dense();
}

void StabiliserTrees::make_dense() {
  std::size_t entries = 0;
  for (const Level& level : levels_) entries += level.orbit.size() * degree();
  if (entries > kMaxDenseEntries) return;
  Images scratch;
  for (std::size_t i = 0; i < levels_.size(); ++i) {
    std::vector<Images> dense;
    for (const std::uint32_t point : levels_[i].orbit) {
      dense.push_back(identity_images<Images>(degree()));
      apply(i, point, dense.back(), scratch);
    }
    levels_[i].dense = std::move(dense);
  }
}

std::vector<std::uint32_t> StabiliserTrees::generators_of(std::size_t level) const {
  std::vector<std::uint32_t> chosen;
  for (std::uint32_t g = 0; g < generators_.size(); ++g) {
    if (static_cast<std::uint32_t>(generators_[g].front().point) >= levels_[level].base) chosen.push_back(g);
  }
  return chosen;
}

// If the path is a, then b, the product is "b after a", so b is applied to f first.
void StabiliserTrees::apply(std::size_t level, std::uint32_t point, Images& f, Images& scratch) const {
  const Level& own = levels_[level];
  auto place = static_cast<std::size_t>(std::ranges::lower_bound(own.orbit, point) - own.orbit.begin());
  if (!own.dense.empty()) {
    const Images& dense = own.dense[place];
    scratch.resize(f.size());
    for (std::size_t c = 0; c < f.size(); ++c) scratch[c] = f[dense[c]];
    std::swap(f, scratch);
    return;
  }
  for (; own.generators[place] != kNone; place = own.parents[place])
    apply_generator(own.generators[place], f, scratch);
}

void StabiliserTrees::apply_generator(std::size_t generator, Images& f, Images& scratch) const {
  const SparsePermutation& moves = generators_[generator];
  scratch.resize(moves.size());
  std::size_t i = 0;
  for (const PointMove& move : moves) scratch[i++] = f[static_cast<std::size_t>(move.image)];
  i = 0;
  for (const PointMove& move : moves) f[static_cast<std::size_t>(move.point)] = scratch[i++];
}

std::uint32_t StabiliserTrees::image_of(std::uint32_t point, std::size_t generator) const {
  const std::vector<Step>& steps = steps_[point];
  const auto step = std::ranges::find(steps, generator, &Step::generator);
  return step == steps.end() ? point : step->image;
}

void StabiliserTrees::grow_tree(std::uint32_t root, OrbitTree& tree) const {
  tree.set_root(static_cast<int>(root));
  tree.grow([&](int point, const auto& step) {
    for (const auto& [generator, image] : steps_[static_cast<std::size_t>(point)])
      step(static_cast<int>(generator), static_cast<int>(image));
  });
}

std::vector<std::uint32_t> guess_stabiliser_orbits(const StabiliserTrees& trees, std::uint32_t point,
                                                   int elements) {
  OrbitTree tree(static_cast<int>(trees.degree()));
  trees.grow_tree(point, tree);
  UnionFind orbits(static_cast<int>(trees.degree()));
  Images scratch;
  std::uint64_t seed = 0;
  const auto random = [&seed] { return mix(seed++); };
  for (int i = 0; i < elements; ++i) {
    Images f = trees.random_element(random);
    const auto from = static_cast<int>(std::ranges::find(f, point) - f.begin());
    tree.walk_to_root(from, [&](int g) { trees.apply_generator(static_cast<std::size_t>(g), f, scratch); });
    for (std::size_t x = 0; x < f.size(); ++x) orbits.unite(static_cast<int>(x), static_cast<int>(f[x]));
  }
  std::vector<std::uint32_t> smallest(trees.degree(), StabiliserTrees::kNone);
  std::vector<std::uint32_t> result(trees.degree());
  for (std::uint32_t x = 0; x < result.size(); ++x) {
    std::uint32_t& first = smallest[static_cast<std::size_t>(orbits.find(static_cast<int>(x)))];
    if (first == StabiliserTrees::kNone) first = x;
    result[x] = first;
  }
  return result;
}

}  // namespace symfold::detail

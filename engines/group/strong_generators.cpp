// Strong generating sets from any generators: the Schreier-Sims method.
//
// The stabiliser chain is kept by points p: the generators that fix every point below p, and the orbit of p
// under them as a tree. To sift a permutation means this: if its smallest moved point p has an image in the
// orbit of p, the permutation is multiplied by the inverse of the path to that image, so that p is fixed; and
// so on with the next smallest moved point. A permutation that gets stuck is no product of generators of the
// stabiliser chain so far, and joins them. First come random elements of the group, which fill the stabiliser
// chain quickly. Then every Schreier generator is sifted, which proves it complete (C. C. Sims, Computational
// methods in the study of permutation groups, 1970; A. Seress, Permutation Group Algorithms, 2003, ch. 4;
// random elements: F. Celler, C. R. Leedham-Green, S. H. Murray, A. C. Niemeyer and E. A. O'Brien, Generating
// random elements of a finite group, Communications in Algebra 23, 1995).
//
// Example: (0 1 2) and (0 1) of the points 0, 1, 2. The orbit of 0 is complete; the product "(0 1 2), then (0
// 1)" moves 1 and 2 only, gets stuck at point 1 and becomes the generator (1 2) there.
//
// Cost: for each level, orbit length times generators times the cost of sifting, about the degree times the
// lengths of the paths. Meant for groups of moderate degree; large ones come with a known order.

#include <algorithm>
#include <cstdint>
#include <random>
#include <utility>

#include "engines/base/images.h"
#include "engines/base/point_vector.h"
#include "engines/base/union_find.h"
#include "engines/group/orbit_tree.h"
#include "engines/group/stabiliser_chain.h"

namespace symfold::detail {
namespace {

using Images = PointVector<int>;

// images, then next.
void multiply(Images& images, const Images& next) {
  for (int& image : images) image = next[image];
}

class StabiliserChainBuilder {
 public:
  explicit StabiliserChainBuilder(int degree) : levels_(degree) {}

  // Returns true if the permutation was no product of the generators so far. Then it has joined them.
  bool absorb(Images images) {
    const int stuck = sift(images);
    if (stuck == levels_.size()) return false;
    add(std::move(images), stuck);
    return true;
  }

  // Sifts every Schreier generator of every level, from the last level up. After an addition it goes on from
  // the level of the addition.
  void verify() {
    for (int p = levels_.size() - 1; p >= 0; --p) {
      const int stuck = first_stuck_schreier_generator(p);
      if (stuck >= 0) p = stuck + 1;
    }
  }

  std::vector<int> orbit_lengths() const {
    std::vector<int> lengths;
    for (const Level& level : levels_) {
      if (!level.tree.empty()) lengths.push_back(level.tree.size());
    }
    return lengths;
  }

  // Returns generators that are enough for orbits as long as those of all.
  std::vector<Images> essential_generators() const {
    UnionFind orbits(levels_.size());
    std::vector<Images> kept;
    for (int p = levels_.size() - 1; p >= 0; --p) {
      for (const int g : levels_[p].generators) {
        const Generator& generator = generators_[g];
        if (generator.smallest != p || orbits.size_of_class(p) == levels_[p].tree.size()) continue;
        for (int x = p; x < levels_.size(); ++x) orbits.unite(x, generator.images[x]);
        kept.push_back(generator.images);
      }
    }
    return kept;
  }

 private:
  struct Generator {
    Images images;
    Images inverse;
    int smallest;  // of the points that it moves
  };
  // The level of point p. It has no generators if none was found that moves p and fixes all points below.
  struct Level {
    std::vector<int> generators;  // those whose smallest moved point is p or above
    OrbitTree tree;               // of p; empty while no generator moves p
  };

  // Multiplies until the smallest moved point has an image outside its orbit, and returns that point, or
  // until the identity is left, and returns the degree.
  int sift(Images& images) const {
    for (int p = 0; p < levels_.size(); ++p) {
      if (images[p] == p) continue;
      const Level& level = levels_[p];
      if (level.tree.empty() || !level.tree.contains(images[p])) return p;
      level.tree.walk_to_root(images[p], [&](int g) { multiply(images, generators_[g].inverse); });
    }
    return levels_.size();
  }

  void add(Images images, int smallest) {
    Images backwards = inverse(images);
    generators_.push_back({std::move(images), std::move(backwards), smallest});
    Level& own = levels_[smallest];
    if (own.tree.empty()) {
      own.tree = OrbitTree(levels_.size());
      own.tree.set_root(smallest);
    }
    for (int p = 0; p <= smallest; ++p) extend(levels_[p], generators_.size() - 1);
  }

  // The new generator is tried on the old points, all generators on the new ones.
  void extend(Level& level, int new_generator) {
    level.generators.push_back(new_generator);
    const int old_length = level.tree.size();
    for (int i = 0; i < level.tree.size(); ++i) {
      const int point = level.tree.points()[i];
      if (i < old_length) {
        reach(level.tree, point, new_generator);
      } else {
        for (const int g : level.generators) reach(level.tree, point, g);
      }
    }
  }

  void reach(OrbitTree& tree, int point, int g) {
    const int image = generators_[g].images[point];
    if (!tree.contains(image)) tree.add(image, point, g);
  }

  // Absorbs the first Schreier generator of level p that gets stuck. Returns the point where it did, or -1 if
  // none did.
  int first_stuck_schreier_generator(int p) {
    const Level& level = levels_[p];
    for (int i = 0; i < level.tree.size(); ++i) {
      const int point = level.tree.points()[i];
      const Images representative = path_to(level.tree, point);
      for (const int g : level.generators) {
        const int image = generators_[g].images[point];
        if (image != p && level.tree.generator(image) == g)
          continue;  // an edge of the tree makes the identity
        Images images = representative;
        multiply(images, generators_[g].images);
        const int stuck = sift(images);
        if (stuck == levels_.size()) continue;
        add(std::move(images), stuck);
        return stuck;
      }
    }
    return -1;
  }

  // The coset representative: carries the root to the point.
  Images path_to(const OrbitTree& tree, int point) const {
    Images backwards = identity_images(levels_.size());
    tree.walk_to_root(point, [&](int g) { multiply(backwards, generators_[g].inverse); });
    return inverse(backwards);
  }

  PointVector<Generator> generators_;
  PointVector<Level> levels_;
};

// Product replacement: one of a list of generators at a time is multiplied by another, and the running
// product of the changed ones is nearly uniform after a while. The seed is fixed, so every run is the same.
class RandomElements {
 public:
  explicit RandomElements(const std::vector<Images>& generators) : product_(generators.front()) {
    for (std::size_t i = 0; i < std::max<std::size_t>(generators.size(), 10); ++i) {
      slots_.push_back(generators[i % generators.size()]);
    }
    for (std::size_t i = 0; i < 50 + 5 * slots_.size(); ++i) next();
  }

  const Images& next() {
    const std::size_t to = random_() % slots_.size();
    const std::size_t from = (to + 1 + random_() % (slots_.size() - 1)) % slots_.size();
    multiply(slots_[to], random_() % 2 == 0 ? slots_[from] : inverse(slots_[from]));
    multiply(product_, slots_[to]);
    return product_;
  }

 private:
  std::vector<Images> slots_;
  Images product_;
  std::mt19937_64 random_{2003};
};

void fill(StabiliserChainBuilder& chain, const std::vector<Images>& generators,
          const std::vector<int>& known_lengths, int quiet_sifts) {
  RandomElements random(generators);
  for (int quiet = 0; quiet < quiet_sifts; ++quiet) {
    if (!chain.absorb(random.next())) continue;
    quiet = -1;
    if (chain.orbit_lengths() == known_lengths) return;
  }
}

}  // namespace

// Works on the moved points alone, renumbered in their order, so that the degree is small.
std::vector<SparsePermutation> strong_generators(int n, const std::vector<SparsePermutation>& generators,
                                                 const std::vector<int>& known_lengths, int quiet_sifts) {
  PointVector<int> number(n, 0);
  for (const SparsePermutation& moves : generators) {
    for (const PointMove move : moves) number[move.point] = 1;
  }
  PointVector<int> points;
  for (int x = 0; x < n; ++x) {
    if (number[x] == 0) continue;
    number[x] = points.size();
    points.push_back(x);
  }
  if (points.empty()) return {};

  std::vector<Images> dense;
  for (const SparsePermutation& moves : generators) {
    dense.push_back(identity_images(points.size()));
    for (const auto& [point, image] : moves) dense.back()[number[point]] = number[image];
  }
  StabiliserChainBuilder chain(points.size());
  for (const Images& images : dense) chain.absorb(images);
  if (chain.orbit_lengths() != known_lengths) fill(chain, dense, known_lengths, quiet_sifts);
  if (chain.orbit_lengths() != known_lengths) chain.verify();

  std::vector<SparsePermutation> strong;
  for (const Images& images : chain.essential_generators()) {
    SparsePermutation& moves = strong.emplace_back();
    for (int x = 0; x < images.size(); ++x) {
      if (images[x] != x) moves.push_back({points[x], points[images[x]]});
    }
  }
  return strong;
}

}  // namespace symfold::detail

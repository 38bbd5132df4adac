#include "engines/group/stabiliser_chain_builder.h"

#include <utility>

#include "engines/base/union_find.h"

namespace symfold::detail {

bool StabiliserChainBuilder::absorb(Images images) {
  const int stuck = sift(images);
  if (stuck == levels_.size()) return false;
  add(std::move(images), stuck);
  return true;
}

void StabiliserChainBuilder::verify() {
  for (int p = levels_.size() - 1; p >= 0; --p) {
    const int stuck = first_stuck_schreier_generator(p);
    if (stuck >= 0) p = stuck + 1;
  }
}

std::vector<int> StabiliserChainBuilder::orbit_lengths() const {
  std::vector<int> lengths;
  for (const Level& level : levels_) {
    if (!level.tree.empty()) lengths.push_back(level.tree.size());
  }
  return lengths;
}

std::vector<StabiliserChainBuilder::Images> StabiliserChainBuilder::essential_generators() const {
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

int StabiliserChainBuilder::sift(Images& images) const {
  for (int p = 0; p < levels_.size(); ++p) {
    if (images[p] == p) continue;
    const Level& level = levels_[p];
    if (level.tree.empty() || !level.tree.contains(images[p])) return p;
    level.tree.walk_to_root(images[p], [&](int g) { multiply(images, generators_[g].inverse); });
  }
  return levels_.size();
}

void StabiliserChainBuilder::add(Images images, int smallest) {
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
void StabiliserChainBuilder::extend(Level& level, int new_generator) {
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

void StabiliserChainBuilder::reach(OrbitTree& tree, int point, int g) {
  const int image = generators_[g].images[point];
  if (!tree.contains(image)) tree.add(image, point, g);
}

int StabiliserChainBuilder::first_stuck_schreier_generator(int p) {
  const Level& level = levels_[p];
  for (int i = 0; i < level.tree.size(); ++i) {
    const int point = level.tree.points()[i];
    const Images representative = path_to(level.tree, point);
    for (const int g : level.generators) {
      const int image = generators_[g].images[point];
      if (image != p && level.tree.generator(image) == g) continue;  // an edge of the tree makes the identity
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

StabiliserChainBuilder::Images StabiliserChainBuilder::path_to(const OrbitTree& tree, int point) const {
  Images backwards = identity_images(levels_.size());
  tree.walk_to_root(point, [&](int g) { multiply(backwards, generators_[g].inverse); });
  return inverse(backwards);
}

}  // namespace symfold::detail

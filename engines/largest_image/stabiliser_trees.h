// Coset representatives of the stabilisers of a group, in little room.
//
// For each base point of the group, the orbit of it under the stabiliser of the base points before is kept as
// a Schreier tree. Its paths are short (add_shortcuts) and its edges are sparse permutations, so to apply a
// representative costs what the permutations on a path move, and no more than the orbit's points are kept.
// Small groups have their representatives besides as dense images, which are applied in one pass.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_STABILISER_TREES_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_STABILISER_TREES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engines/base/images.h"
#include "engines/group/orbit_tree.h"
#include "engines/group/permutation_group.h"
#include "engines/largest_image/image_search.h"

namespace symfold::detail {

class StabiliserTrees {
 public:
  // A base point, the points of its orbit, ascending, and how each is reached: the generator of the last
  // edge and the place of the point before it; for the base point itself, no generator.
  struct Level {
    std::uint32_t base;
    std::vector<std::uint32_t> orbit;
    std::vector<std::uint32_t> parents;
    std::vector<std::uint32_t> generators;
    std::vector<Images> dense;  // the representatives, by place; empty if they are too many
  };
  static constexpr std::uint32_t kNone = UINT32_MAX;

  explicit StabiliserTrees(const PermutationGroup& group);

  std::size_t degree() const { return static_cast<std::size_t>(degree_); }
  const std::vector<Level>& levels() const { return levels_; }
  // Strong relative to the base.
  const std::vector<SparsePermutation>& generators() const { return generators_; }
  // Returns the generators that move no point below the base point of this level. They generate the
  // stabiliser of the base points before.
  std::vector<std::uint32_t> generators_of(std::size_t level) const;

  // Where the base point of the level goes to `point` of its orbit by u, replaces f by "f after u". `scratch`
  // is work space.
  void apply(std::size_t level, std::uint32_t point, Images& f, Images& scratch) const;
  // Replaces f by "f after this generator".
  void apply_generator(std::size_t generator, Images& f, Images& scratch) const;

  std::uint32_t image_of(std::uint32_t point, std::size_t generator) const;

  // Makes the tree of a point under all generators.
  void grow_tree(std::uint32_t root, OrbitTree& tree) const;

  // Returns a random element, uniformly if `random` returns uniform numbers.
  template <class Random>
  Images random_element(Random& random) const {
    Images f = identity_images<Images>(degree());
    Images scratch;
    for (std::size_t i = 0; i < levels_.size(); ++i)
      apply(i, levels_[i].orbit[random() % levels_[i].orbit.size()], f, scratch);
    return f;
  }

 private:
  struct Step {
    std::uint32_t generator;
    std::uint32_t image;
  };

  void make_dense();

  int degree_;
  std::vector<SparsePermutation> generators_;
  std::vector<std::vector<Step>> steps_;  // by point
  std::vector<Level> levels_;
};

// Returns the orbits of the stabiliser of a point, each by its smallest point, for all points. It is a guess
// to be proved, from so many random elements: each of them joins two parts of an orbit with a chance of at
// least a half, so orbits may come out too small.
std::vector<std::uint32_t> guess_stabiliser_orbits(const StabiliserTrees& trees, std::uint32_t point,
                                                   int elements = 32);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_STABILISER_TREES_H

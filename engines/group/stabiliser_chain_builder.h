// The Schreier-Sims method.
//
// The stabiliser chain is kept by points p: the generators that fix every point below p, and the orbit of p
// under them as a tree. To sift a permutation means this: if its smallest moved point p has an image in the
// orbit of p, the permutation is multiplied by the inverse of the path to that image, so that p is fixed; and
// so on with the next smallest moved point. A permutation that gets stuck is no product of generators of the
// stabiliser chain so far, and joins them. Once every Schreier generator sifts to the identity, the
// stabiliser chain is complete (C. C. Sims, Computational methods in the study of permutation groups, 1970;
// A. Seress, Permutation Group Algorithms, 2003, ch. 4).
//
// Example: (0 1 2) and (0 1) of the points 0, 1, 2. The orbit of 0 is complete; the product "(0 1 2), then (0
// 1)" moves 1 and 2 only, gets stuck at point 1 and becomes the generator (1 2) there.
//
// Cost of the verification: for each level, orbit length times generators times the cost of sifting, about
// the degree times the lengths of the paths.

#ifndef SYMFOLD_ENGINES_GROUP_STABILISER_CHAIN_BUILDER_H
#define SYMFOLD_ENGINES_GROUP_STABILISER_CHAIN_BUILDER_H

#include <vector>

#include "engines/base/images.h"
#include "engines/base/point_vector.h"
#include "engines/group/orbit_tree.h"

namespace symfold::detail {

// Permutations of the points 0 .. degree-1.
class StabiliserChainBuilder {
 public:
  using Images = PointVector<int>;

  explicit StabiliserChainBuilder(int degree) : levels_(degree) {}

  // Returns true if the permutation was no product of the generators so far. Then it has joined them.
  bool absorb(Images images);

  // Sifts every Schreier generator of every level, from the last level up. After an addition it goes on from
  // the level of the addition.
  void verify();

  std::vector<int> orbit_lengths() const;

  // Returns generators that are enough for orbits as long as those of all.
  std::vector<Images> essential_generators() const;

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
  int sift(Images& images) const;
  void add(Images images, int smallest);
  void extend(Level& level, int new_generator);
  void reach(OrbitTree& tree, int point, int g);
  // Absorbs the first Schreier generator of level p that gets stuck. Returns the point where it did, or -1 if
  // none did.
  int first_stuck_schreier_generator(int p);
  // The coset representative: carries the root to the point.
  Images path_to(const OrbitTree& tree, int point) const;

  PointVector<Generator> generators_;
  PointVector<Level> levels_;
};

// images, then next.
inline void multiply(PointVector<int>& images, const PointVector<int>& next) {
  for (int& image : images) image = next[image];
}

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_STABILISER_CHAIN_BUILDER_H

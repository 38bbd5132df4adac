// A group with dense generators, for recognition of objects and for searches down a stabiliser chain.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_SUBGROUP_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_SUBGROUP_H

#include <cstdint>
#include <vector>

#include "engines/base/union_find.h"
#include "engines/group/orbit_tree.h"
#include "engines/group/permutation_group.h"
#include "engines/largest_image/image_search.h"

namespace symfold::detail {

// The group must outlive it. has_value says by position whether values can differ there.
class Subgroup {
 public:
  Subgroup(const PermutationGroup& group, const std::vector<bool>& has_value);

  // The positions whose values can differ, ascending.
  const std::vector<std::uint32_t>& positions_with_values() const { return positions_with_values_; }

  std::size_t size() const { return static_cast<std::size_t>(group_.degree()); }
  const std::vector<Images>& generators() const { return generators_; }

  // Returns true if the group has this element.
  bool contains(const Images& images) const;

  // Returns the orbits that are longer than 1, each ascending, the shortest first.
  std::vector<std::vector<std::uint32_t>> orbits() const;

 private:
  const PermutationGroup& group_;
  std::vector<std::uint32_t> positions_with_values_;
  std::vector<Images> generators_;
};

// Returns a few of the permutations that have the same orbits as all, for guesses that are proved later.
std::vector<const Images*> sample_of(const std::vector<Images>& permutations);

// Unites each position with its image. Returns true if any two classes became one.
bool unite_with_images(const Images& permutation, UnionFind& orbits);

// Makes the tree of a point under the permutations, tried in their order and numbered by it.
void build_tree(std::uint32_t root, const std::vector<const Images*>& permutations, OrbitTree& tree);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_SUBGROUP_H

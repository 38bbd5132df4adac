// Groups with a rotation that carries the first position round all its orbit: rings of any length, in one
// direction or both.
//
// A ring of four forks and philosophers, f0 p0 f1 p1 f2 p2 f3 p3, is turned by a rotation with the cycles
// (f0 f1 f2 f3) and (p0 p1 p2 p3). The values are read as a sequence of pairs (f0 p0) (f1 p1) .. of which the
// rotations are the cyclic shifts. The canonical image is the shift with the largest sequence, which is found
// in linear time (Y. Shiloach, Fast canonization of circular strings, J. Algorithms 2, 1981). Elements that
// keep the first position, a mirror for instance, are tried first one after the other: every element of the
// group is such an element and then a rotation.
//
// The image is the largest one only if the positions are numbered as they are read. Lists of all elements
// (list_search.h) find the largest image of every small group; for a ring of 30,000 they would take 3.6 GB.
//
// Cost: linear in the positions, times the elements that keep the first position.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_RING_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_RING_SEARCH_H

#include <cstddef>
#include <memory>
#include <vector>

#include "engines/group/permutation_group.h"
#include "engines/largest_image/image_search.h"

namespace symfold::detail {

class RingSearch : public ImageSearch {
 public:
  // The rotation's images, and the elements that keep position 0, the identity among them. The rotation's
  // cycle of position 0 is its orbit, and the lengths of the other cycles divide its length.
  RingSearch(const Images& rotation, const std::vector<Images>& stabiliser);
  std::unique_ptr<ImageSearch> clone() const override { return std::make_unique<RingSearch>(*this); }
  bool maximise(Placed* values) override;

 private:
  struct Plan {
    std::size_t length;                               // of the sequence
    std::size_t width;                                // values in each of its entries: the cycles
    std::vector<std::uint32_t> positions;             // entry after entry
    std::vector<std::vector<std::uint32_t>> sources;  // of the values there, by element of the stabiliser
  };

  int compare(const std::vector<Placed>& a, std::size_t a_entry, const std::vector<Placed>& b,
              std::size_t b_entry) const;
  std::size_t largest_shift(const std::vector<Placed>& sequence) const;

  std::shared_ptr<const Plan> plan_;
  std::vector<Placed> sequence_;
  std::vector<Placed> best_;
};

// Returns nothing if the group has no such rotation among few elements, if more than a few elements keep
// position 0, or if the search would hold more than `max_images` entries. The rotation depends on the group
// alone. Every position is moved.
std::unique_ptr<ImageSearch> recognise_ring(const PermutationGroup& group, std::size_t max_images);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_RING_SEARCH_H

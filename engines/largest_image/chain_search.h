// Any group, level by level down its stabiliser chain.
//
// The base points ascend, and up to a base point every position is settled by the choices before it. At each
// level the candidates are images of the values. Every element of the level's transversal brings another
// value to the base point. The images with the largest one there go on, and of equal images one (S. Linton,
// Finding the smallest image of a set, ISSAC 2004; C. Jefferson, E. Jonauskyte, M. Pfeiffer, R. Waldecker,
// Minimal and canonical images, J. Algebra 521, 2019).
//
// Cost: at each level the candidates times the orbit, and a copy of the values for each image that ties. The
// number of candidates is bounded, because groups of many levels can make it exponential.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_CHAIN_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_CHAIN_SEARCH_H

#include <memory>
#include <utility>
#include <vector>

#include "engines/largest_image/image_search.h"

namespace symfold::detail {

// A base point, its orbit under the elements that fix all points below it, and such an element for each point
// of the orbit, which carries this point to the base point.
struct StabiliserLevel {
  std::uint32_t base;
  std::vector<std::uint32_t> orbit;
  std::vector<Images> transversal;
};

// Returns the levels of the stabiliser chain of the group that these permutations generate, base points
// ascending. They are proved complete. Empty if the transversals would have more than `max_images` entries.
std::vector<StabiliserLevel> make_stabiliser_levels(std::size_t point_count,
                                                    const std::vector<Images>& generators,
                                                    std::size_t max_images);

class ChainSearch : public ImageSearch {
 public:
  ChainSearch(std::size_t position_count, std::vector<StabiliserLevel> levels, std::size_t max_candidates);
  std::unique_ptr<ImageSearch> clone() const override { return std::make_unique<ChainSearch>(*this); }
  bool maximise(Placed* values) override;

 private:
  Placed* candidate(std::size_t i) { return candidates_.data() + i * position_count_; }
  bool descend(const StabiliserLevel& level);
  void keep_largest(std::size_t begin, std::size_t end);
  void merge_equal(std::size_t settled);

  std::size_t position_count_;
  std::shared_ptr<const std::vector<StabiliserLevel>> levels_;
  std::size_t max_candidates_;
  std::size_t candidate_count_ = 0;
  std::vector<Placed> candidates_;  // image after image
  std::vector<Placed> next_;
  std::vector<std::uint32_t> order_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_CHAIN_SEARCH_H
